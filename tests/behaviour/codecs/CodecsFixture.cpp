// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/codecs/CodecsFixture.h"

#include <algorithm>

namespace avitest {

using android::service::Fault;

namespace {

constexpr uint16_t kALawTag = 6;

std::string dump(const Bytes& bytes, const char* digits) {
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
        text += i % 16 == 15 ? '\n' : ' ';
    }
    return text;
}

}  // namespace

Bytes unit3(const Bytes& nal) {
    return Bytes{0, 0, 1} + nal;
}

Bytes unit4(const Bytes& nal) {
    return Bytes{0, 0, 0, 1} + nal;
}

std::vector<Bytes> videoSamples(const Bytes& first, size_t count, const Bytes& other) {
    const Bytes slice = unit4({0x41, 0x9A, 0x02, 0x05});
    std::vector<Bytes> samples(count, other.empty() ? slice : other);
    samples.front() = first;
    return samples;
}

AviFile codecFile(Stream stream, const std::vector<Bytes>& samples) {
    AviFile avi;
    const bool isVideo = std::holds_alternative<BitmapInfo>(stream.format);
    avi.addStream(std::move(stream));
    const size_t companion = avi.addStream(audioOfTag(kALawTag));
    for (size_t i = 0; i < samples.size(); ++i)
        avi.addChunk(0, samples[i], i == 0 || !isVideo ? kKey : kNoFlags);
    avi.addChunk(companion, patternBytes(48));
    return avi;
}

std::string hexOf(const Bytes& bytes) {
    return dump(bytes, "0123456789abcdef");
}

std::string upperHexOf(const Bytes& bytes) {
    return dump(bytes, "0123456789ABCDEF");
}

void CodecTest::openSamples(const Stream& stream, const std::vector<Bytes>& samples) {
    mLog.clear();
    AviFile avi = codecFile(stream, samples);
    ASSERT_EQ(open(avi), 2u);
}

void CodecTest::openSamplesLogged(const Stream& stream, const std::vector<Bytes>& samples) {
    setProperty(kExtractLogProperty, "1");
    openSamples(stream, samples);
}

void CodecTest::openSamplesWithout(const Stream& stream, const std::vector<Bytes>& samples,
                                   const std::vector<size_t>& unreadable) {
    mLog.clear();
    AviFile avi = codecFile(stream, samples);
    Bytes file = avi.build();
    std::vector<Fault> faults;
    for (const size_t sample : unreadable) {
        const ChunkPlace place = avi.chunks(0).at(sample).place;
        const auto begin = static_cast<off64_t>(place.dataOffset);
        faults.push_back(
            Fault::shortRead(1).onOffsets(begin, begin + static_cast<off64_t>(place.dataSize)));
    }
    ASSERT_EQ(openFaulty(std::move(file), faults), 2u);
}

}  // namespace avitest
