// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include "support/FourCC.h"

namespace android {

// The stream that a chunk id such as 01wb belongs to: its two leading decimal digits. The digits
// are not checked: an id without digits yields a number that no stream has.
uint32_t streamNumber(FourCC chunkId);

}  // namespace android
