// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/Wav.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace avitool {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint16_t kTagPcm = 1;

void add16(Bytes* out, uint16_t value) {
    out->push_back(static_cast<uint8_t>(value & 0xFF));
    out->push_back(static_cast<uint8_t>(value >> 8));
}

// Saturates.
void add32(Bytes* out, uint64_t wide) {
    const auto value =
        static_cast<uint32_t>(std::min<uint64_t>(wide, std::numeric_limits<uint32_t>::max()));
    add16(out, static_cast<uint16_t>(value & 0xFFFF));
    add16(out, static_cast<uint16_t>(value >> 16));
}

void addText(Bytes* out, std::string_view text) {
    for (const char character : text)
        out->push_back(static_cast<uint8_t>(character));
}

struct CodecRow {
    WavCodec codec;
    uint16_t tag;
    uint16_t bits;
    uint32_t blockHeaderBytes;  // a channel
    uint32_t headerFrames;
};
constexpr CodecRow kCodecs[] = {
    {WavCodec::kPcm16, kTagPcm, 16, 0, 0}, {WavCodec::kALaw, 6, 8, 0, 0},
    {WavCodec::kMuLaw, 7, 8, 0, 0},        {WavCodec::kMsAdpcm, 2, 4, 7, 2},
    {WavCodec::kImaAdpcm, 0x11, 4, 4, 1},
};

const CodecRow& rowOf(WavCodec codec) {
    return *std::find_if(std::begin(kCodecs), std::end(kCodecs),
                         [codec](const CodecRow& row) { return row.codec == codec; });
}

// The pairs that every writer of MS ADPCM uses; decoders know others only from here.
constexpr int16_t kMsCoefficients[][2] = {{256, 0}, {512, -256}, {0, 0},     {192, 64},
                                          {240, 0}, {460, -208}, {392, -232}};

// u16 frames per block | MS only: u16 pairs | pairs of i16
Bytes adpcmExtra(WavCodec codec, uint16_t framesPerBlock) {
    Bytes extra;
    add16(&extra, framesPerBlock);
    if (codec != WavCodec::kMsAdpcm) return extra;
    add16(&extra, static_cast<uint16_t>(std::size(kMsCoefficients)));
    for (const auto& pair : kMsCoefficients) {
        for (const int16_t value : pair)
            add16(&extra, static_cast<uint16_t>(value));
    }
    return extra;
}

}  // namespace

std::optional<WavHeader> WavHeader::make(WavCodec codec, int64_t channels, int64_t rate,
                                         uint32_t blockSize) {
    constexpr int64_t kMax16 = std::numeric_limits<uint16_t>::max();
    constexpr int64_t kMax32 = std::numeric_limits<uint32_t>::max();
    if (channels < 1 || channels > kMax16 || rate < 1 || rate > kMax32) return std::nullopt;
    const CodecRow& row = rowOf(codec);
    const bool isAdpcm = row.headerFrames != 0;
    const int64_t block = isAdpcm ? blockSize : channels * (row.bits / 8);
    if (block > kMax16) return std::nullopt;

    WavHeader header;
    header.mTag = row.tag;
    header.mChannels = static_cast<uint16_t>(channels);
    header.mRate = static_cast<uint32_t>(rate);
    header.mBlockSize = static_cast<uint16_t>(block);
    header.mBits = row.bits;
    if (!isAdpcm) return header;
    header.mBlockHeaderBytes = row.blockHeaderBytes * header.mChannels;
    header.mHeaderFrames = row.headerFrames;
    header.mFramesPerBlock = header.framesInBlock(header.mBlockSize);
    if (header.mFramesPerBlock == 0 || header.mFramesPerBlock > kMax16) return std::nullopt;
    header.mExtra = adpcmExtra(codec, static_cast<uint16_t>(header.mFramesPerBlock));
    return header;
}

// Of a block that may be cut.
uint64_t WavHeader::framesInBlock(uint64_t size) const {
    constexpr uint64_t kFramesPerByte = 2;
    if (size < mBlockHeaderBytes) return 0;
    return mHeaderFrames + (size - mBlockHeaderBytes) * kFramesPerByte / mChannels;
}

uint64_t WavHeader::framesIn(uint64_t dataSize) const {
    const uint64_t whole = dataSize / mBlockSize * mFramesPerBlock;
    return mHeaderFrames == 0 ? whole : whole + framesInBlock(dataSize % mBlockSize);
}

// u16 tag | u16 channels | u32 rate | u32 bytes a second | u16 block | u16 bits | u16 extra size |
// extra. Only PCM ends before the size.
void WavHeader::addFormat(Bytes* out) const {
    constexpr size_t kFieldsSize = 16;
    const bool isPcm = mTag == kTagPcm;
    addText(out, "fmt ");
    add32(out, isPcm ? kFieldsSize : kFieldsSize + 2 + mExtra.size());
    add16(out, mTag);
    add16(out, mChannels);
    add32(out, mRate);
    add32(out, uint64_t{mRate} * mBlockSize / mFramesPerBlock);
    add16(out, mBlockSize);
    add16(out, mBits);
    if (isPcm) return;
    add16(out, static_cast<uint16_t>(mExtra.size()));
    out->insert(out->end(), mExtra.begin(), mExtra.end());
}

std::vector<uint8_t> WavHeader::bytes(uint64_t dataSize) const {
    constexpr uint64_t kLengthFieldSize = 4;
    Bytes chunks;
    addText(&chunks, "WAVE");
    addFormat(&chunks);
    if (mTag != kTagPcm) {
        addText(&chunks, "fact");
        add32(&chunks, kLengthFieldSize);
        add32(&chunks, framesIn(dataSize));
    }
    addText(&chunks, "data");
    add32(&chunks, dataSize);
    Bytes header;
    addText(&header, "RIFF");
    add32(&header, chunks.size() + dataSize + dataSize % 2);
    header.insert(header.end(), chunks.begin(), chunks.end());
    return header;
}

}  // namespace avitool
