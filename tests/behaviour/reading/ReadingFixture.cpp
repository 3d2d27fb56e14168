// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/reading/ReadingFixture.h"

#include <utility>

namespace avitest {

Stream alawStream() {
    constexpr uint16_t kALaw = 6;
    return audioStream(kALaw, 1, 8000, 8000, 1, 8);
}

Stream subtitleStream() {
    return videoStream("DXSB", 320, 240, 25);
}

Stream lengthPrefixedStream(unsigned prefixSize) {
    Stream stream = videoStream("H264", 320, 240, 25);
    const auto lengthSize = static_cast<uint8_t>(0xFC | (prefixSize - 1));
    // A configuration record with one parameter set of each kind.
    std::get<BitmapInfo>(stream.format).extra = {
        1, 0x42, 0, 0x1E, lengthSize, 0xE1, 0, 4, 0x67, 0x42, 0, 0x1E, 1, 0, 3, 0x68, 0xCE, 0x38};
    return stream;
}

AviFile fileOf(Stream stream, const std::vector<Bytes>& chunks) {
    AviFile avi;
    const size_t number = avi.addStream(std::move(stream));
    for (const Bytes& chunk : chunks)
        avi.addChunk(number, chunk);
    return avi;
}

void putIndexFirst(AviFile& avi) {
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"hdrl", "idx1", "movi"}); };
}

Bytes subtitleChunk(const std::string& from, const std::string& to) {
    return bytesOf("[" + from + "-" + to + "] a picture");
}

StartedTrack::StartedTrack(std::unique_ptr<Track> track) : mTrack(std::move(track)) {
    EXPECT_EQ(AMEDIA_OK, mTrack->start(mGroup));
}

StartedTrack::~StartedTrack() {
    EXPECT_EQ(AMEDIA_OK, mTrack->stop());
    EXPECT_EQ(0u, mGroup.heldCount()) << "buffers held after stop";
}

Sample StartedTrack::sample() {
    const ReadResult result = mTrack->read();
    EXPECT_EQ(AMEDIA_OK, result.status);
    return result.buffer ? sampleOf(result.buffer) : Sample();
}

std::string checkFailed(const std::string& expression) {
    std::string escaped;
    for (const char c : expression) {
        if (std::string("()[]{}*+?.|^$\\").find(c) != std::string::npos) escaped += '\\';
        escaped += c;
    }
    return "frameworks/av/media/libstagefright/avi/RuvoAVIExtractor:[0-9]+ CHECK\\(" + escaped +
           "\\) failed\\.";
}

}  // namespace avitest
