// SPDX-License-Identifier: Apache-2.0
#include "source/FrameDescription.h"

#include <stdio.h>

#include "support/PaddedBytes.h"

namespace android {

namespace {

constexpr uint32_t kSequenceStart = 0x000001B0;
constexpr uint32_t kSequenceEnd = 0x000001B1;
constexpr uint32_t kUserData = 0x000001B2;
constexpr uint32_t kGroupOfVopStart = 0x000001B3;
constexpr uint32_t kVisualObject = 0x000001B5;
constexpr uint32_t kVopStart = 0x000001B6;

std::string hexOf(uint32_t word) {
    char text[9];
    snprintf(text, sizeof(text), "%08x", word);
    return text;
}

std::string hexOf(uint8_t byte) {
    char text[3];
    snprintf(text, sizeof(text), "%02x", byte);
    return text;
}

const char* codingTypeText(uint8_t firstByte) {
    static constexpr const char* kTexts[] = {", VOP-I frame(0x", ", VOP-P frame(0x",
                                             ", VOP-B frame(0x", ", VOP-S frame(0x"};
    return kTexts[firstByte >> 6];
}

std::string describeSequence(const PaddedBytes& bytes) {
    std::string text = ", profile level=0x" + hexOf(bytes.byteAt(4));
    const uint32_t next = bytes.wordAt(5);
    if (next == kVisualObject) {
        text += ", VO start@0x" + hexOf(next) + ", VO Info=0x" + hexOf(bytes.byteAt(9));
    }
    return text + ")";
}

}  // namespace

std::string describeMpeg4Start(const uint8_t* data, size_t size) {
    const PaddedBytes bytes(data, size);
    const uint32_t word = bytes.wordAt(0);
    const std::string code = hexOf(word);
    switch (word) {
        case kVopStart:
            return "(VOP Start@0x" + code + codingTypeText(bytes.byteAt(4));
        case kSequenceStart:
            return "(VOS start@0x" + code + describeSequence(bytes);
        case kSequenceEnd:
            return "(VOS end@0x" + code + ")";
        case kUserData:
            return "(UserData start@0x" + code + ")";
        case kGroupOfVopStart:
            return "(Group VOP start@0x" + code + ")";
        case kVisualObject:
            return "(VO start@0x" + code + ")";
        default:
            return "(" + code;
    }
}

}  // namespace android
