// SPDX-License-Identifier: Apache-2.0
//
// What a fuzzer of the whole plug-in keeps from one input to the next: the plug-in's library, the
// trap for expected assertions, and the count of log lines. One for the whole program, never
// destroyed; used by one thread.
#pragma once

#include <cstdint>
#include <functional>

#include "fuzz/AssertionTrap.h"
#include "service/PluginLibrary.h"

namespace avifuzz {

class Session {
  public:
    /** The program's session; the first call loads the plug-in. */
    static Session& get();

    const android::service::PluginLibrary& plugin() const { return mPlugin; }

    /**
     * Does the work with one input, which may end in an expected assertion. After too many of those
     * the process ends with status 0, and scripts/fuzz.sh starts it again with the corpus it has.
     */
    void run(const std::function<void()>& work);

  private:
    Session();

    const android::service::PluginLibrary mPlugin;
    AssertionTrap mTrap;
    uint64_t mInputs = 0;
};

/** Lines that were logged so far, whatever their priority. */
uint64_t logLineCount();

}  // namespace avifuzz
