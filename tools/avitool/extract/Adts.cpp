// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/Adts.h"

namespace avitool {

namespace {

// What begins at `position` in bytes that somebody else owns.
struct View {
    const uint8_t* data = nullptr;
    size_t size = 0;

    bool skip(size_t count) {
        if (count > size) return false;
        data += count;
        size -= count;
        return true;
    }
};

// Goes into the descriptor that has to come next: u8 tag | length of one to four bytes, seven bits
// in each.
bool enter(uint8_t tag, View* view) {
    constexpr size_t kMaxLengthBytes = 4;
    constexpr uint8_t kMore = 0x80;
    if (view->size == 0 || view->data[0] != tag) return false;
    view->skip(1);
    size_t length = 0;
    bool more = true;
    for (size_t i = 0; more; ++i) {
        if (i == kMaxLengthBytes || view->size == 0) return false;
        length = length << 7 | (view->data[0] & 0x7Fu);
        more = (view->data[0] & kMore) != 0;
        view->skip(1);
    }
    if (length > view->size) return false;
    view->size = length;
    return true;
}

// u16 ES id | u8 flags, with optional fields of which these streams have none
constexpr size_t kEsFieldsSize = 3;
// u8 object type | u8 stream type | u24 buffer size | u32 maximal and u32 average bit rate
constexpr size_t kConfigFieldsSize = 13;

std::optional<View> specificInfo(const std::vector<uint8_t>& esds) {
    constexpr uint8_t kEsTag = 3;
    constexpr uint8_t kDecoderConfigTag = 4;
    constexpr uint8_t kSpecificInfoTag = 5;
    View view{esds.data(), esds.size()};
    const bool found = enter(kEsTag, &view) && view.skip(kEsFieldsSize) &&
                       enter(kDecoderConfigTag, &view) && view.skip(kConfigFieldsSize) &&
                       enter(kSpecificInfoTag, &view);
    return found ? std::optional<View>(view) : std::nullopt;
}

}  // namespace

// object type 5 | rate index 4 | channels 4 | ...
std::optional<AdtsHeaders> AdtsHeaders::fromEsds(const std::vector<uint8_t>& esds) {
    constexpr uint8_t kLastProfile = 3;
    constexpr uint8_t kLowComplexity = 2;
    constexpr uint8_t kSpectralBandReplication = 5;
    constexpr uint8_t kParametricStereo = 29;
    constexpr uint8_t kLastRateIndex = 12;
    constexpr uint8_t kLastChannels = 7;
    const std::optional<View> config = specificInfo(esds);
    if (!config || config->size < 2) return std::nullopt;
    const uint8_t* data = config->data;
    uint8_t type = data[0] >> 3;
    // Extensions of LC, whose core is what ADTS describes; decoders find them in the frames.
    if (type == kSpectralBandReplication || type == kParametricStereo) type = kLowComplexity;
    if (type == 0 || type - 1 > kLastProfile) return std::nullopt;
    AdtsHeaders headers;
    headers.mProfile = static_cast<uint8_t>(type - 1);
    headers.mRateIndex = static_cast<uint8_t>((data[0] & 7) << 1 | data[1] >> 7);
    headers.mChannels = data[1] >> 3 & 15;
    if (headers.mRateIndex > kLastRateIndex || headers.mChannels > kLastChannels) {
        return std::nullopt;
    }
    return headers;
}

// sync 12 | id 1 | layer 2 | no CRC 1 | profile 2 | rate index 4 | private 1 | channels 3 |
// original 1 | home 1 | copyright 2 | length 13 | fullness 11 | blocks - 1 2
std::optional<std::vector<uint8_t>> AdtsHeaders::forFrame(size_t frameSize) const {
    constexpr size_t kHeaderSize = 7;
    constexpr size_t kMaxLength = 0x1FFF;
    if (frameSize > kMaxLength - kHeaderSize) return std::nullopt;
    const size_t length = kHeaderSize + frameSize;
    constexpr uint8_t kVariableRate = 0x1F;  // the fullness that says nothing, its first five bits
    return std::vector<uint8_t>{
        0xFF,
        0xF1,
        static_cast<uint8_t>(mProfile << 6 | mRateIndex << 2 | mChannels >> 2),
        static_cast<uint8_t>((mChannels & 3u) << 6 | length >> 11),
        static_cast<uint8_t>(length >> 3 & 0xFF),
        static_cast<uint8_t>((length & 7u) << 5 | kVariableRate),
        0xFC,
    };
}

}  // namespace avitool
