// SPDX-License-Identifier: Apache-2.0
//
// Times of video frames: by their place, corrected for the order in which B-frames are stored.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

// How a codec writes a frame of a given kind.
struct Codec {
    Stream stream;
    Bytes i, p, b;
};

Codec mpeg4() {
    return {videoStream("FMP4", 320, 240, 25),
            {0, 0, 1, 0xB6, 0x10, 1, 2},
            {0, 0, 1, 0xB6, 0x50, 1, 2},
            {0, 0, 1, 0xB6, 0x90, 1, 2}};
}

Codec avc() {
    return {videoStream("H264", 320, 240, 25),
            {0, 0, 0, 1, 0x65, 0x88, 1},
            {0, 0, 0, 1, 0x41, 0x9A, 1},
            {0, 0, 0, 1, 0x01, 0x9E, 1}};
}

Codec hevc() {
    Codec codec = avc();
    codec.stream = videoStream("HEVC", 320, 240, 25);
    return codec;
}

class FrameTimes : public ReadingTest {
  protected:
    // The times, in frames of 40 ms, of frames of these kinds: 'I', 'P', 'B' or '-' for an empty
    // one.
    std::vector<int64_t> placesOf(const Codec& codec, const std::string& kinds) {
        std::vector<Bytes> frames;
        for (const char kind : kinds) {
            frames.push_back(kind == 'I'   ? codec.i
                             : kind == 'P' ? codec.p
                             : kind == 'B' ? codec.b
                                           : Bytes());
        }
        openStream(codec.stream, frames);
        std::vector<int64_t> places = timesOf(readAll(0));
        for (int64_t& place : places)
            place = place % 40000 == 0 ? place / 40000 : -1;
        return places;
    }
};

TEST_F(FrameTimes, ReferenceFramesAreShownAfterTheBFramesBehindThem) {
    for (const Codec& codec : {mpeg4(), avc(), hevc()}) {
        EXPECT_EQ(placesOf(codec, "IPBBPBBP"), (std::vector<int64_t>{0, 3, 1, 2, 6, 4, 5, 7}));
    }
}

TEST_F(FrameTimes, FramesWithoutBFramesAreShownInTheirOrder) {
    for (const Codec& codec : {mpeg4(), avc()}) {
        EXPECT_EQ(placesOf(codec, "IPPIP"), (std::vector<int64_t>{0, 1, 2, 3, 4}));
    }
}

TEST_F(FrameTimes, PFrameInFourthPlaceFollowedByTwoBFrames) {
    const std::vector<int64_t> places = placesOf(mpeg4(), "IPPPPBB");
    EXPECT_EQ(places.at(4), 6);
}

TEST_F(FrameTimes, BFrameInSeventhPlace) {
    const std::vector<int64_t> places = placesOf(mpeg4(), "IPPPPPPB");
    EXPECT_EQ(places.at(7), 6);
}

TEST_F(FrameTimes, BFramesUpToTheEndAreCounted) {
    EXPECT_EQ(placesOf(mpeg4(), "IBBB"), (std::vector<int64_t>{3, 0, 1, 2}));
}

TEST_F(FrameTimes, BFrameInFirstPlaceHasTimeZero) {
    EXPECT_EQ(placesOf(mpeg4(), "BIP"), (std::vector<int64_t>{0, 1, 2}));
}

TEST_F(FrameTimes, EmptyFrameEndsTheRowOfBFrames) {
    EXPECT_EQ(placesOf(mpeg4(), "IPB-BP"), (std::vector<int64_t>{0, 2, 1, 3, 5}));
}

TEST_F(FrameTimes, OtherCodecsHaveNoBFrames) {
    Codec codec = mpeg4();
    codec.stream = mjpegStream();
    EXPECT_EQ(placesOf(codec, "IPBBP"), (std::vector<int64_t>{0, 1, 2, 3, 4}));
}

// The frame at hand is typed after its conversion, those behind it as they lie in the file, where
// a prefix is no start code.
TEST_F(FrameTimes, LengthPrefixedFramesKnowTheirOwnTypeOnly) {
    Codec codec = avc();
    codec.stream = lengthPrefixedStream(4);
    for (Bytes* frame : {&codec.i, &codec.p, &codec.b})
        (*frame)[3] = 3;
    EXPECT_EQ(placesOf(codec, "IPBP"), (std::vector<int64_t>{0, 1, 1, 3}));
}

TEST_F(FrameTimes, UnreadableFrameIsPassedOver) {
    const Codec codec = mpeg4();
    AviFile avi = fileOf(codec.stream, {codec.p, codec.b, codec.b, codec.p});
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    const auto begin = static_cast<off64_t>(avi.chunks(0)[1].place.dataOffset);
    source.inject(Fault::shortRead(3).onOffsets(begin, begin + 1));

    EXPECT_EQ(started.sample().timeUs, 40000);  // after the one B-frame that could be read
}

TEST_F(FrameTimes, OnlyTheFirst256BytesOfAFollowingFrameAreLookedAt) {
    struct Row {
        size_t codeAt;
        int64_t timeUs;
    };
    // The byte behind the code must lie in the first 256 bytes as well.
    for (const Row& row : {Row{251, 40000}, Row{252, 0}}) {
        SCOPED_TRACE(row.codeAt);
        const Codec codec = mpeg4();
        const Bytes late = ByteWriter().fill(row.codeAt, 0xFF).bytes(codec.b).fill(50).take();
        openStream(codec.stream, {codec.p, late});
        EXPECT_EQ(StartedTrack(track(0)).sample().timeUs, row.timeUs);
    }
}

TEST_F(FrameTimes, FrameAtHandIsLookedAtAsAWhole) {
    const Codec codec = mpeg4();
    const Bytes late = ByteWriter().fill(1000, 0xFF).bytes(codec.b).take();
    openStream(codec.stream, {codec.i, codec.p, late});

    EXPECT_EQ(timesOf(readAll(0)).at(2), 40000);
}

TEST_F(FrameTimes, TimeBaseIsScaleByRate) {
    struct Row {
        uint32_t rate, scale;
        std::vector<int64_t> times;
    };
    const Row rows[] = {{30000, 1001, {0, 33366, 66733}},
                        {0xFFFFFFFF, 1, {0, 0, 0}},
                        {1, 100000, {0, 100000000000, 200000000000}},
                        {25, 0, {0, 0, 0}},
                        {0, 1, {0, 0, 0}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rate);
        openStream(videoStream("MJPG", 320, 240, row.rate, row.scale),
                   {patternBytes(30), patternBytes(30), patternBytes(30)});
        EXPECT_EQ(timesOf(readAll(0)), row.times);
    }
}

}  // namespace
}  // namespace avitest
