// SPDX-License-Identifier: Apache-2.0
#include "codec/Esds.h"

#include "support/ByteWriter.h"

namespace android {

namespace {

constexpr uint8_t kEsDescriptorTag = 0x03;
constexpr uint8_t kDecoderConfigTag = 0x04;
constexpr uint8_t kDecoderSpecificInfoTag = 0x05;

// MPEG-4 audio; the decoders go by the MIME type and accept it for MPEG-2 video too.
constexpr uint8_t kObjectType = 0x40;

constexpr size_t kEsFieldsSize = 3;      // u16 ES id | u8 flags
constexpr size_t kConfigZerosSize = 12;  // u8 stream type | u24 buffer | u32 max | u32 average
constexpr size_t kConfigFieldsSize = 1 + kConfigZerosSize;

size_t headerSize(DescriptorLength form) {
    return form == DescriptorLength::kOneByte ? 2 : 3;
}

void writeHeader(ByteWriter* out, uint8_t tag, size_t length, DescriptorLength form) {
    out->u8(tag);
    if (form == DescriptorLength::kTwoBytes) {
        out->u8((static_cast<uint32_t>(length >> 7) & 0x7F) | 0x80);
    }
    out->u8(length & 0x7F);
}

}  // namespace

sp<ABuffer> makeEsds(const uint8_t* info, size_t size, DescriptorLength form) {
    const size_t configLength = kConfigFieldsSize + headerSize(form) + size;
    const size_t esLength = kEsFieldsSize + headerSize(form) + configLength;
    ByteWriter out(headerSize(form) + esLength);
    if (!out.ok()) return nullptr;
    writeHeader(&out, kEsDescriptorTag, esLength, form);
    out.zeros(kEsFieldsSize);
    writeHeader(&out, kDecoderConfigTag, configLength, form);
    out.u8(kObjectType);
    out.zeros(kConfigZerosSize);
    writeHeader(&out, kDecoderSpecificInfoTag, size, form);
    out.bytes(info, size);
    return out.buffer();
}

}  // namespace android
