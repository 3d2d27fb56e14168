// SPDX-License-Identifier: Apache-2.0
#include "support/Switches.h"

#include <cutils/properties.h>
#include <stdlib.h>

namespace android {

Switches gSwitches;

static void readSwitch(const char* property, std::atomic<bool>* out) {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get(property, value, "0");
    // NOLINTNEXTLINE(cert-err34-c): text that is no number counts as 0, which is what atoi does
    out->store(atoi(value) != 0, std::memory_order_relaxed);
}

void readSwitches() {
    readSwitch("vendor.ruvo.avi.verbose.log", &gSwitches.verboseLog);
    readSwitch("vendor.ruvo.avi.extract.log", &gSwitches.extractLog);
    readSwitch("vendor.ruvo.avi.disable.audio", &gSwitches.disableAudio);
}

}  // namespace android
