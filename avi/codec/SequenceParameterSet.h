// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// True when the platform's parameter-set parser can be trusted with this AVC sequence parameter set
// (a NAL unit with its header byte, ISO/IEC 14496-10, 7.3.2.1.1): that parser ends the process
// where it reads over the end, which its own reading of some valid sets makes it do. A set that is
// true here has in every reading all the data it calls for and a size above 0 in both directions.
// Any thread.
bool isSaneSequenceParameterSet(const uint8_t* data, size_t size);

}  // namespace android
