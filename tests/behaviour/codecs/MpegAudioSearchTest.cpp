// SPDX-License-Identifier: Apache-2.0
//
// MPEG audio: the search for the first header that its successor confirms.

#include "tests/behaviour/codecs/MpegAudioBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;

// The bits that a frame and its successor share.
constexpr uint32_t kStreamBits = 0xFFFE0C00;

class MpegAudioSearch : public MpegAudioConfigTest {
  protected:
    const Bytes mHeader = headerBytes(kLayerIIIHeader);

    Bytes headerCut(size_t bytes) const {
        return Bytes(mHeader.begin(), mHeader.begin() + static_cast<ptrdiff_t>(bytes));
    }
};

TEST_F(MpegAudioSearch, FirstFrameIsFound) {
    openChunks({mpegFrame(), mpegFrame()});
    expectFound(0, 0);
}

TEST_F(MpegAudioSearch, JunkInTheSampleIsPassedOver) {
    openChunks({junk(7) + mpegFrame() + mpegFrame()});
    expectFound(0, 7);
}

TEST_F(MpegAudioSearch, JunkInFormerSamplesIsPassedOver) {
    openChunks({junk(100), junk(20), mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

TEST_F(MpegAudioSearch, JunkIsNotPlayed) {
    mStream.header.sampleSize = 1;
    mStream.header.scale = 1;
    mStream.header.rate = 16000;
    openChunks({junk(100), mpegFrame(), mpegFrame()});
    expectFound(1, 0);
    EXPECT_EQ(readPayloads(0), (std::vector<Bytes>{mpegFrame(), mpegFrame()}));
}

TEST_F(MpegAudioSearch, SamplesUnderFourBytesAreSkipped) {
    openChunks({{0xFF, 0xFB, 0x90}, {0xFF}, mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

TEST_F(MpegAudioSearch, CandidateWithoutASuccessorIsPassedOver) {
    openChunks({mHeader + junk(500) + mpegFrame() + mpegFrame()});
    expectFound(0, 504);
}

TEST_F(MpegAudioSearch, SuccessorMustAgreeInTheBitsOfTheStream) {
    for (int bit = 0; bit < 32; ++bit) {
        SCOPED_TRACE(bit);
        const uint32_t successor = kLayerIIIHeader ^ uint32_t { 1 } << bit;
        openChunks({mpegFrame() + headerBytes(successor) + junk(20)});
        const bool agrees = (kStreamBits >> bit & 1) == 0;
        EXPECT_EQ(mLog.count(foundAt(0, 0)), agrees ? 1u : 0u);
    }
}

TEST_F(MpegAudioSearch, SuccessorMayBeginTheNextSample) {
    openChunks({mpegFrame(), mpegFrame(), mpegFrame()});
    expectFound(0, 0);
}

TEST_F(MpegAudioSearch, SuccessorMayLieAcrossSamples) {
    for (size_t inside = 0; inside < 4; ++inside) {
        SCOPED_TRACE(inside);
        const Bytes next = mpegFrame();
        const auto cut = next.begin() + static_cast<ptrdiff_t>(inside);
        openChunks({mpegFrame() + Bytes(next.begin(), cut), Bytes(cut, next.end()), mpegFrame()});
        expectFound(0, 0);
    }
}

TEST_F(MpegAudioSearch, SuccessorAcrossSamplesThatDisagreesIsNone) {
    openChunks({mpegFrame() + headerCut(2), junk(50), mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

TEST_F(MpegAudioSearch, NextSampleMustHoldTheMissingBytes) {
    openChunks({mpegFrame() + headerCut(3), {0x00}, mpegFrame(), mpegFrame()});
    expectFound(0, 0);
    openChunks({mpegFrame() + headerCut(2), {0x90}, mpegFrame(), mpegFrame()});
    expectFound(2, 0);
    openChunks({mpegFrame(), headerCut(3), mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

// The size of the chunk counts, not the running total that the table holds.
TEST_F(MpegAudioSearch, NextSampleMustHoldTheMissingBytesWhereTheTableCountsBytes) {
    mStream.header.sampleSize = 1;
    openChunks({mpegFrame(), headerCut(3), mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

// A frame that is cut at the end of its chunk: what follows it is looked for at the next one's.
TEST_F(MpegAudioSearch, SuccessorOfACutFrameIsTheNextSample) {
    openChunks({mpegFrame(kLayerIIIHeader, 100), mpegFrame(), mpegFrame()});
    expectFound(0, 0);
    openChunks({mpegFrame(kLayerIIIHeader, 100), junk(317), mpegFrame(), mpegFrame()});
    expectFound(2, 0);
}

TEST_F(MpegAudioSearch, SearchGoesByChunksWhereTheTableCountsBytes) {
    mStream.header.sampleSize = 1;
    openChunks({junk(100), junk(30) + mpegFrame(), mpegFrame()});
    expectFound(1, 30);
}

TEST_F(MpegAudioSearch, LastFrameNeedsNoSuccessor) {
    openChunks({mpegFrame()});
    expectFound(0, 0);
    openChunks({mHeader});
    expectFound(0, 0);
    openChunks({junk(100), junk(5) + mpegFrame()});
    expectFound(1, 5);
}

TEST_F(MpegAudioSearch, LastSampleThatEndsInsideTheSuccessorNeedsNone) {
    for (size_t rest = 1; rest < 4; ++rest) {
        SCOPED_TRACE(rest);
        openChunks({mpegFrame() + junk(rest)});
        expectFound(0, 0);
    }
}

TEST_F(MpegAudioSearch, LastSampleThatHoldsTheSuccessorMustAgree) {
    openChunks({mpegFrame() + junk(4)});
    expectNone();
}

TEST_F(MpegAudioSearch, StreamWithoutAHeaderIsBad) {
    openChunks({junk(300), junk(300)});
    expectNone();
    EXPECT_EQ(mimeType(), "audio/x-unknown");
}

TEST_F(MpegAudioSearch, ReservedFieldsAreNoHeader) {
    for (const uint32_t header : {0xFFFBF000u, 0xFFFB0000u, 0xFFFB9C00u, 0xFFF99000u, 0xFFEB9000u,
                                  0xFFDB9000u, 0x7FFB9000u}) {
        SCOPED_TRACE(header);
        openChunks({mpegFrame(header), mpegFrame(header)});
        expectNone();
    }
}

TEST_F(MpegAudioSearch, UnreadableSampleSpoilsTheTrack) {
    openSamplesWithout(mStream, {junk(300), mpegFrame(), mpegFrame()}, {0});
    expectNone();
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("findMP3Header", "3EC")));
}

TEST_F(MpegAudioSearch, UnreadableSuccessorSpoilsTheTrack) {
    openSamplesWithout(mStream, {mpegFrame(), mpegFrame()}, {1});
    expectNone();
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("findMP3Header", "3EC")));
}

TEST_F(MpegAudioSearch, SamplesBehindTheFoundOneAreNotRead) {
    openSamplesWithout(mStream, {mpegFrame() + mpegFrame(), mpegFrame()}, {1});
    expectFound(0, 0);
}

class MpegAudioSearchLog : public MpegAudioSearch {
  protected:
    void openWith(const char* property, const std::vector<Bytes>& chunks) {
        setProperty(property, "1");
        openChunks(chunks);
    }
};

TEST_F(MpegAudioSearchLog, ExtractLogShowsTheSamples) {
    openWith(kExtractLogProperty, {junk(100), mpegFrame(), mpegFrame()});
    EXPECT_THAT(onlyLineWith("sample[0] size 100 offset "),
                ::testing::MatchesRegex("sample\\[0\\] size 100 offset [0-9]+, 15 15 15 15"));
    EXPECT_THAT(onlyLineWith("sample[1] size 417 offset "),
                ::testing::MatchesRegex("sample\\[1\\] size 417 offset [0-9]+, FF FB 90 00"));
    EXPECT_EQ(mLog.count("sample[2]"), 0u);
    EXPECT_EQ(mLog.count("max sample size"), 0u);
    EXPECT_EQ(mLog.count("Find header"), 0u);
}

TEST_F(MpegAudioSearchLog, VerboseLogShowsTheCandidates) {
    openWith(kVerboseLogProperty, {junk(10) + mHeader + junk(500), mpegFrame(), mpegFrame()});
    EXPECT_THAT(log(), Contains(verbose("findMP3Header(): max sample size 514")));
    EXPECT_EQ(mLog.count("sample[0]"), 0u);
    EXPECT_THAT(onlyLineWith("findMP3Header(): [0] Find header"),
                ::testing::MatchesRegex("findMP3Header\\(\\): \\[0\\] Find header/offset/size/test="
                                        "\\(fffb9000/[0-9a-f]+/417/15151515\\)"));
    EXPECT_THAT(onlyLineWith("findMP3Header(): [1] Find header"),
                ::testing::MatchesRegex("findMP3Header\\(\\): \\[1\\] Find header/offset/size/test="
                                        "\\(fffb9000/[0-9a-f]+/417/fffb9000\\)"));
}

TEST_F(MpegAudioSearchLog, VerboseLogShowsTheOffsetInTheFile) {
    setProperty(kVerboseLogProperty, "1");
    AviFile avi = codecFile(mStream, {junk(10) + mpegFrame()});
    Bytes file = avi.build();
    ASSERT_EQ(open(file), 2u);
    const uint64_t at = avi.chunks(0)[0].place.dataOffset + 10;
    EXPECT_THAT(
        log(),
        Contains(verbose(format("findMP3Header(): [0] Find header/offset/size=(fffb9000/%llx/417)",
                                static_cast<unsigned long long>(at)))));
}

TEST_F(MpegAudioSearchLog, BothSwitchesOffSayNothing) {
    openChunks({junk(100), mpegFrame(), mpegFrame()});
    for (const char* text : {"sample[", "max sample size", "Find header"})
        EXPECT_EQ(mLog.count(text), 0u) << text;
}

}  // namespace
}  // namespace avitest
