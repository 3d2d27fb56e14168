// SPDX-License-Identifier: Apache-2.0
//
// Runs work that may end in a failed assertion of the plug-in, and comes back all the same.
//
// A failed assertion must not return, and leaving it by a longjmp would skip destructors with locks
// held. So the work runs on a thread of its own, which is parked for ever when one of the
// assertions that a file is known to reach fails in it; the next work gets a new thread. What the
// parked thread owns stays reachable from its stack, so that no leak is reported. liblog calls the
// aborter under a shared lock, which parked threads may keep as long as nobody sets another
// aborter. Every other failed assertion aborts the process: that is a finding.
//
// One for the whole program, used by one thread; never destroyed.
#pragma once

#include <cstddef>
#include <functional>
#include <list>

namespace avifuzz {

class AssertionTrap {
  public:
    /** Takes over liblog's aborter for good. */
    AssertionTrap();
    AssertionTrap(const AssertionTrap&) = delete;
    AssertionTrap& operator=(const AssertionTrap&) = delete;

    /** Runs `work` to its end or to such an assertion; answers whether it came to its end. */
    bool run(std::function<void()> work);

    /** Number of threads parked so far. */
    size_t parkedCount() const {
        return mWorkers.empty() ? 0 : mWorkers.size() - (mIsReady ? 1 : 0);
    }

  private:
    class Worker;

    void addWorker();
    static void onFatal(const char* message);

    std::list<Worker*> mWorkers;  // the last one is free to work if mIsReady, all others are parked
    bool mIsReady = false;
};

}  // namespace avifuzz
