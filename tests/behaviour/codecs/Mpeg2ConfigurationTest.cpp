// SPDX-License-Identifier: Apache-2.0
//
// MPEG-1 and MPEG-2 video: the headers in front of the first picture, in a descriptor.

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

const LogLine kWrong = warning("Something wrong to generateMPEG2CodecData.");

Bytes headerOf(uint8_t code, size_t size) {
    return ByteWriter().u8(0).u8(0).u8(1).u8(code).fill(size - 4, 0x5B).take();
}

class Mpeg2Configuration : public CodecTest {
  protected:
    const Bytes mHeaders = headerOf(0xB3, 12) + headerOf(0xB5, 10) + headerOf(0xB8, 8);
    const Bytes mPicture = headerOf(0x00, 40);
    Stream mStream = videoStream("MPG2", 320, 240, 25);

    void openFirst(const Bytes& first) { openSamples(mStream, videoSamples(first)); }
    std::optional<Bytes> esds() { return buffer(AMEDIAFORMAT_KEY_ESDS); }
    void expectNothing() {
        EXPECT_EQ(esds(), std::nullopt);
        EXPECT_EQ(mimeType(), "video/mpeg2");
        EXPECT_THAT(log(), Contains(kWrong));
    }
};

TEST_F(Mpeg2Configuration, HeadersAreWrappedFieldByField) {
    openFirst(mHeaders + mPicture);

    const Bytes bytes = esds().value_or(Bytes());
    ASSERT_EQ(bytes.size(), 55u);
    const Bytes front(bytes.begin(), bytes.begin() + 25);
    EXPECT_EQ(front, (Bytes{0x03, 0x80, 0x34, 0, 0, 0, 0x04, 0x80, 0x2E, 0x40, 0,    0,   0,
                            0,    0,    0,    0, 0, 0, 0,    0,    0,    0x05, 0x80, 0x1E}));
    EXPECT_EQ(Bytes(bytes.begin() + 25, bytes.end()), mHeaders);
    EXPECT_EQ(mLog.count(kWrong.text), 0u);
}

TEST_F(Mpeg2Configuration, EveryMpegCodeIsConfigured) {
    for (const ChunkId fourcc :
         {ChunkId("MPG1"), ChunkId("mpg2"), ChunkId("MPEG"), ChunkId("mpgv")}) {
        SCOPED_TRACE(fourcc.text());
        mStream = videoStream(fourcc, 320, 240, 25);
        openFirst(mHeaders + mPicture);
        EXPECT_EQ(esds().value_or(Bytes()).size(), 55u);
    }
}

TEST_F(Mpeg2Configuration, SampleWithoutAPictureIsAllHeader) {
    const Bytes first = mHeaders + Bytes(200, 0x77);
    openFirst(first);
    const Bytes bytes = esds().value_or(Bytes());
    ASSERT_EQ(bytes.size(), first.size() + 25);
    EXPECT_EQ(Bytes(bytes.begin() + 25, bytes.end()), first);
    EXPECT_EQ(Bytes(bytes.begin() + 23, bytes.begin() + 25),
              (Bytes{0x81, static_cast<uint8_t>(first.size() & 0x7F)}));
}

TEST_F(Mpeg2Configuration, PictureCodeIsFoundAtAnyOffset) {
    for (size_t length = 1; length < 8; ++length) {
        SCOPED_TRACE(length);
        openFirst(Bytes(length, 0x42) + mPicture);
        EXPECT_EQ(esds().value_or(Bytes()).size(), length + 25);
    }
}

TEST_F(Mpeg2Configuration, PictureCodeAtTheVeryEndIsFound) {
    openFirst(mHeaders + Bytes{0, 0, 1, 0});
    EXPECT_EQ(esds().value_or(Bytes()).size(), 55u);
}

TEST_F(Mpeg2Configuration, CutPictureCodeBelongsToTheHeader) {
    openFirst(mHeaders + Bytes{0, 0, 1});
    EXPECT_EQ(esds().value_or(Bytes()).size(), 58u);
}

TEST_F(Mpeg2Configuration, SampleThatBeginsWithAPictureHasNoHeader) {
    openFirst(mPicture);
    expectNothing();
}

TEST_F(Mpeg2Configuration, UnreadableFirstSampleLeavesTheTrackUsable) {
    openSamplesWithout(mStream, videoSamples(mHeaders + mPicture), {0});
    expectNothing();
    EXPECT_FALSE(isBad());
}

// Two groups of seven bits do not hold more, and the descriptor says what is left.
TEST_F(Mpeg2Configuration, LengthsAbove16383LoseTheirUpperBits) {
    const size_t length = 16384 * 2 + 300;
    openFirst(Bytes(length, 0x42) + mPicture);
    const Bytes bytes = esds().value_or(Bytes());
    ASSERT_EQ(bytes.size(), length + 25);
    const auto lengthAt = [&](size_t i) { return (bytes[i] & 0x7F) << 7 | bytes[i + 1]; };
    EXPECT_EQ(lengthAt(1), 322);
    EXPECT_EQ(lengthAt(7), 316);
    EXPECT_EQ(lengthAt(23), 300);
}

TEST_F(Mpeg2Configuration, ExtractLogTellsTheSampleAndDumpsTheDescriptor) {
    openSamplesLogged(mStream, videoSamples(mHeaders + mPicture));
    EXPECT_THAT(onlyLineWith("Make ESDS for MPEG2"),
                ::testing::MatchesRegex(
                    "Make ESDS for MPEG2 from the first frame \\(sz 70, off [0-9a-f]+\\)"));
    EXPECT_THAT(log(), Contains(verbose(hexOf(esds().value_or(Bytes())))));
}

TEST_F(Mpeg2Configuration, ExtractLogOffSaysNothing) {
    openFirst(mHeaders + mPicture);
    EXPECT_EQ(mLog.count("Make ESDS"), 0u);
    EXPECT_EQ(mLog.count("generateMPEG2CodecData"), 0u);
}

}  // namespace
}  // namespace avitest
