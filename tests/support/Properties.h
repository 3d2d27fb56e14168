// SPDX-License-Identifier: Apache-2.0
//
// The system properties that steer the plug-in, set for a while. The plug-in reads them when an
// extractor is constructed, so a test sets them before it opens its file.
// Properties belong to the process: one thread sets them, while no other opens a file.

#pragma once

#include <string>

namespace avitest {

constexpr char kExtractLogProperty[] = "vendor.ruvo.avi.extract.log";
constexpr char kVerboseLogProperty[] = "vendor.ruvo.avi.verbose.log";
constexpr char kDisableAudioProperty[] = "vendor.ruvo.avi.disable.audio";

// Sets one property; its former value comes back with the end of the object's life.
class ScopedProperty {
  public:
    ScopedProperty(const std::string& name, const std::string& value);
    ScopedProperty(const ScopedProperty&) = delete;
    ScopedProperty& operator=(const ScopedProperty&) = delete;
    ~ScopedProperty();

  private:
    std::string mName;
    std::string mFormerValue;  // a property that was not set comes back empty, which reads the same
};

}  // namespace avitest
