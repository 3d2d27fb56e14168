// SPDX-License-Identifier: Apache-2.0
#include <media/NdkMediaFormat.h>
#include <media/stagefright/foundation/ByteUtils.h>

#include <algorithm>
#include <cstring>

#include "codec/AacHeaders.h"
#include "codec/DtsHeaders.h"
#include "codec/Esds.h"
#include "codec/MpegAudioHeader.h"
#include "fuzz/parsers/Parsers.h"
#include "source/Conversions.h"
#include "source/MpegAudioCutter.h"
#include "support/MediaFormat.h"

namespace avifuzz {

using android::ABuffer;
using android::MpegAudioCut;
using android::sp;

namespace {

constexpr size_t kHeaderSize = android::kMpegAudioHeaderSize;

void checkAacConfig(const android::AacConfig& config) {
    const int32_t rate = android::aacRate(config.samplingFreqIndex);
    expect((rate < 0) == (config.samplingFreqIndex > android::kMaxAacFreqIndex),
           "an index up to the largest has a rate");
    uint8_t written[2];
    android::writeAudioSpecificConfig(config, written);
    if (config.profile > 30 || config.samplingFreqIndex > 15 || config.channels > 15) return;
    const android::AacConfig read = android::readAudioSpecificConfig(written);
    expect(read.samplingFreqIndex == config.samplingFreqIndex && read.channels == config.channels,
           "a configuration is read as it was written");
}

// What the cutter knows of a stream, by orders.
android::TrackInfo streamOf(Orders* orders) {
    android::TrackInfo info;
    info.mMP3Header = static_cast<uint32_t>(orders->word()) << 16 | orders->word();
    if (orders->flag()) info.mMP3Header |= 0xFFE00000;
    info.mBlockMode = orders->flag();
    info.mBlockAlign = orders->word();
    info.mScale = static_cast<uint32_t>(orders->number() & UINT32_MAX);
    info.mRate = static_cast<uint32_t>(orders->number() & UINT32_MAX);
    return info;
}

// Returns the bytes that the cut takes off its data.
size_t checkCut(const MpegAudioCut& cut, size_t length) {
    expect(cut.size > 0 || cut.kind == MpegAudioCut::Kind::kSpanning, "every cut takes a byte");
    expect(cut.start < length, "a cut begins in its data");
    const bool isInside = cut.size <= length - cut.start;
    expect(isInside != (cut.kind == MpegAudioCut::Kind::kSpanning),
           "only a frame that goes on reaches beyond its data");
    return isInside ? cut.start + cut.size : length;
}

bool isSame(const MpegAudioCut& a, const MpegAudioCut& b) {
    return a.kind == b.kind && a.start == b.start && a.size == b.size &&
           a.found.position == b.found.position && a.found.header == b.found.header;
}

}  // namespace

void fuzzAacHeaders(ParserBytes bytes) {
    uint8_t probe[android::kAdtsProbeBytes] = {};
    std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof(probe)), probe);
    if (android::isAdtsHeader(probe)) checkAacConfig(android::readAdtsHeader(probe));
    if (bytes.size() < 2) return;
    checkAacConfig(android::readAudioSpecificConfig(bytes.data()));
    const uint32_t rate = uint32_t{probe[0]} << 16 | uint32_t{probe[1]} << 8 | probe[2];
    const uint32_t index = android::aacFreqIndex(rate);
    expect(index <= android::kMaxAacFreqIndex, "every rate has an index");
}

void fuzzMpegAudioHeader(ParserBytes bytes) {
    for (size_t i = 0; i + kHeaderSize <= bytes.size(); ++i) {
        constexpr uint32_t kSync = 0xFFE00000;
        const uint32_t word = android::U32_AT(&bytes[i]);
        for (const uint32_t header : {word, word | kSync}) {
            size_t size = 0;
            uint32_t layer = 0;
            int bitRate = 0;
            int samples = 0;
            const bool isHeader =
                android::parseMP3Header(header, &size, &layer, &bitRate, &samples);
            expect(!isHeader || (header & kSync) == kSync, "a header begins with a sync");
            expect(!isHeader || (layer >= 1 && layer <= 3 && bitRate > 0 && samples >= 0),
                   "a header has a layer and a bit rate");
            expect(android::parseMP3Header(header, &size) == isHeader, "outputs may be null");
        }
    }
}

// A cutter remembers what it has searched; one that does not must cut the same.
void fuzzMpegAudioCutter(ParserBytes bytes) {
    const size_t ordered = std::min<size_t>(bytes.size(), 20);
    Orders orders(bytes.data(), ordered);
    const android::TrackInfo info = streamOf(&orders);
    const int64_t chunkTimeUs = orders.number();
    android::MpegAudioCutter cutter(info);
    android::MpegAudioCutter forgetful(info);
    cutter.setTime(orders.number());
    if (!cutter.isActive()) return;
    ParserBytes data(bytes.begin() + static_cast<std::ptrdiff_t>(ordered), bytes.end());
    while (!data.empty()) {
        const MpegAudioCut cut = cutter.cut(data.data(), data.size());
        forgetful.beginData();
        expect(isSame(cut, forgetful.cut(data.data(), data.size())), "memory changes no cut");
        if (cut.kind == MpegAudioCut::Kind::kHeaderless) {
            cutter.createHeader(data.data(), data.size());
        }
        expect(cutter.stamp(cut, chunkTimeUs) >= chunkTimeUs, "no cut is before its chunk");
        const size_t taken = checkCut(cut, data.size());
        // A new copy, so that reads in front of the data are seen.
        data = ParserBytes(data.begin() + static_cast<std::ptrdiff_t>(taken), data.end());
    }
}

void fuzzDtsHeaders(ParserBytes bytes) {
    uint32_t channels = 0;
    uint32_t rate = 0;
    android::parseDtsCoreHeader(bytes.data(), bytes.size(), &channels, &rate);
    android::parseDtsCoreHeader(bytes.data(), bytes.size(), nullptr, nullptr);
    expect(channels >= 2 && channels <= 9, "a core has channels");
    const android::MediaFormatPtr format(AMediaFormat_new());
    const sp<ABuffer> sample = ABuffer::CreateAsCopy(bytes.data(), bytes.size());
    const auto status = android::parseDtsMetaData(format.get(), sample);
    int32_t count = 0;
    const bool isSet = AMediaFormat_getInt32(format.get(), AMEDIAFORMAT_KEY_CHANNEL_COUNT, &count);
    expect(isSet == (status == android::OK), "a format is set when there is a frame");
}

void fuzzPcmConversions(ParserBytes bytes) {
    const size_t size = bytes.size();
    ParserBytes of32 = bytes;
    expect(android::narrowPcm32(of32.data(), size) == size / 2, "of four bytes two are kept");
    ParserBytes of24 = bytes;
    expect(android::narrowPcm24(of24.data(), size) == size * 2 / 3, "of three bytes two are kept");
    ParserBytes wide(2 * size);
    android::widenPcm8(bytes.data(), size, wide.data());
}

void fuzzEsds(ParserBytes bytes) {
    for (const auto form :
         {android::DescriptorLength::kOneByte, android::DescriptorLength::kTwoBytes}) {
        const sp<ABuffer> esds = android::makeEsds(bytes.data(), bytes.size(), form);
        if (esds == nullptr) continue;
        expect(esds->size() > bytes.size(), "a descriptor holds its information");
        const uint8_t* tail = esds->data() + (esds->size() - bytes.size());
        expect(bytes.empty() || std::memcmp(tail, bytes.data(), bytes.size()) == 0,
               "a descriptor ends with its information");
    }
}

}  // namespace avifuzz
