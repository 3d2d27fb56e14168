// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// True when the platform's parameter-set parser can be trusted with this AVC sequence parameter set
// (a NAL unit with its header byte, ISO/IEC 14496-10, 7.3.2.1.1): that parser ends the process at
// data that is cut or absurd. Any thread.
bool isSaneSequenceParameterSet(const uint8_t* data, size_t size);

}  // namespace android
