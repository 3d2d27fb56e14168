// SPDX-License-Identifier: Apache-2.0
//
// A fuzzer's entry for the check of AVC sequence parameter sets and the platform's parser after it:
// an input is a set with its header byte. What the check accepts must have a size, and must not end
// the process in the parser.
#include <media/stagefright/foundation/avc_utils.h>

#include <cstdio>
#include <cstdlib>

#include "avi/codec/SequenceParameterSet.h"

// libFuzzer calls it by name.
extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const uint8_t* data,
                                                                             size_t size) {
    if (!android::isSaneSequenceParameterSet(data, size)) return 0;
    int32_t width = 0;
    int32_t height = 0;
    android::FindAVCDimensions(android::ABuffer::CreateAsCopy(data, size), &width, &height);
    if (width > 0 && height > 0) return 0;
    std::fprintf(stderr, "sps: accepted, but of %d x %d\n", width, height);
    std::abort();
}
