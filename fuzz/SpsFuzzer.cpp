// SPDX-License-Identifier: Apache-2.0
//
// The check of AVC sequence parameter sets and the platform's parser after it:
// an input is a set with its header byte. What the check accepts must have a size, and must not end
// the process in the parser.
#include <media/stagefright/foundation/avc_utils.h>

#include "codec/SequenceParameterSet.h"
#include "fuzz/Entry.h"
#include "fuzz/Finding.h"

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (!android::isSaneSequenceParameterSet(data, size)) return 0;
    int32_t width = 0;
    int32_t height = 0;
    android::FindAVCDimensions(android::ABuffer::CreateAsCopy(data, size), &width, &height);
    if (width <= 0 || height <= 0) avifuzz::finding("accepted, but of %d x %d", width, height);
    return 0;
}
