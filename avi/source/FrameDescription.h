// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>

namespace android {

// What the start code at the beginning of MPEG-4 part 2 data announces (ISO/IEC 14496-2, 6.2), as
// text for the log; the code alone where it is another one. Bytes that are not there count as 0.
// Only closed descriptions end in a bracket: log filters look for these texts as they stand.
std::string describeMpeg4Start(const uint8_t* data, size_t size);

}  // namespace android
