// SPDX-License-Identifier: Apache-2.0
//
// NAL units as the tests of the codecs compare them.
#pragma once

#include <vector>

#include <media/stagefright/foundation/ABuffer.h>

#include "avi/codec/SequenceParameterSet.h"
#include "tests/unit/avi/ExactBytes.h"

namespace android {

inline std::vector<uint8_t> bytesOf(const sp<ABuffer>& buffer) {
    return {buffer->data(), buffer->data() + buffer->size()};
}

inline bool isSane(const std::vector<uint8_t>& nal) {
    const ExactBytes exact(nal);
    return isSaneSequenceParameterSet(exact.data(), exact.size());
}

}  // namespace android
