// SPDX-License-Identifier: Apache-2.0
//
// Configuration that stands behind the bitmap header: AVC, HEVC, WMV and VC-1.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using android::service::Fault;
using ::testing::Contains;
using ::testing::Not;

namespace {

constexpr char kNoStartCode1[] =
    "parseSTRF(): Didn't find NAL(nalStart1 -1) in bad strfData(%zuB):";
constexpr char kNoStartCode2[] = "parseSTRF(): Didn't find NAL(nalStart2 0) in bad strfData(%zuB):";

// A decoder configuration record with prefixes of `lengthSize` bytes.
Bytes avcRecord(uint8_t lengthSize) {
    ByteWriter out;
    out.u8(1).u8(0x42).u8(0).u8(30).u8(static_cast<uint8_t>(0xFC | (lengthSize - 1)));
    out.u8(0xE1).u8(0).u8(4).bytes(Bytes{0x67, 0x42, 0, 30});
    out.u8(1).u8(0).u8(3).bytes(Bytes{0x68, 0xCE, 0x38});
    return out.take();
}

// A unit behind its length, a big-endian number of `lengthSize` bytes.
Bytes prefixed(uint8_t lengthSize, const Bytes& unit) {
    return ByteWriter()
        .fill(lengthSize - 1u)
        .u8(static_cast<uint8_t>(unit.size()))
        .bytes(unit)
        .take();
}

// Parameter sets between start codes of three bytes.
Bytes byteStream(uint8_t spsHeader, uint8_t ppsHeader) {
    return {0, 0, 1, spsHeader, 0x42, 0x10, 30, 0, 0, 1, ppsHeader, 0xCE, 0x38, 0x80};
}

std::string sized(const char* pattern, size_t size) {
    std::string text = pattern;
    text.replace(text.find("%zu"), 3, std::to_string(size));
    return text;
}

}  // namespace

class VideoConfiguration : public StreamsFixture {
  protected:
    void openVideo(ChunkId compression, const Bytes& extra) {
        AviFile avi = fileOf({videoWithExtra(compression, extra)});
        mLog.clear();
        ASSERT_EQ(1u, openLogged(avi));
    }

    std::optional<Bytes> buffer(const char* key) { return trackFormat(0).getBuffer(key); }

    void expectCodecDataKept() { EXPECT_EQ(0u, mLog.count("Didn't find NAL")); }
    void expectCodecDataDropped(size_t size) {
        EXPECT_THAT(log(), Contains(warning(sized(kNoStartCode1, size))));
        EXPECT_THAT(log(), Contains(warning(sized(kNoStartCode2, size))));
    }
};

TEST_F(VideoConfiguration, AvcRecordIsPublished) {
    const Bytes record = avcRecord(4);
    openVideo("H264", record);
    EXPECT_EQ(record, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(): mAVCStyle = 0")));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): mAVCSizeLength = 4")));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(): set kKeyAVCC data(18)")));
    EXPECT_EQ(2u, mLog.count("01 42 00 1e ff e1 00 04 67 42 00 1e 01 00 03 68\nce 38 "));
    expectCodecDataDropped(record.size());
}

TEST_F(VideoConfiguration, AvcRecordIsDescribedOnRequest) {
    openVideo("avc1", avcRecord(2));
    EXPECT_THAT(log(), Contains(verbose("parseAVCCodecSpecificData(): configurationVersion 1 "
                                        "profile 66 level 30 lengthSize 2")));
    EXPECT_THAT(log(), Contains(verbose("parseAVCCodecSpecificData(): numSeqParameterSets 1")));
    EXPECT_THAT(log(), Contains(verbose("parseAVCCodecSpecificData(): numPicParameterSets 1")));
}

TEST_F(VideoConfiguration, AvcRecordIsNotDescribedUnasked) {
    AviFile avi = fileOf({videoWithExtra("H264", avcRecord(4))});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(0u, mLog.count("mAVCStyle = "));
    EXPECT_EQ(0u, mLog.count("kKeyAVCC"));
    EXPECT_EQ(0u, mLog.count("configurationVersion"));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): mAVCSizeLength = 4")));
    expectCodecDataDropped(avcRecord(4).size());
}

// The prefix's length decides where a unit begins.
TEST_F(VideoConfiguration, LengthPrefixesOfTheRecordSizeBecomeStartCodes) {
    for (uint8_t lengthSize = 1; lengthSize <= 4; ++lengthSize) {
        SCOPED_TRACE(int{lengthSize});
        AviFile avi;
        avi.addStream(videoWithExtra("H264", avcRecord(lengthSize)));
        const Bytes unit = {0x65, 0x88, 0x84, 0x21, 0x22};
        avi.addChunk(0, prefixed(lengthSize, unit));
        // The buffers are as large as the largest sample: this one leaves room for start codes.
        avi.addChunk(0, prefixed(lengthSize, Bytes(100, 0x41)));
        ASSERT_EQ(1u, open(avi));
        EXPECT_THAT(log(), Contains(debug(format("parseSTRF(): mAVCSizeLength = %d", lengthSize))));
        Bytes expected = {0, 0, 0, 1, 0x65, 0x88, 0x84, 0x21, 0x22};
        expected.resize(lengthSize + unit.size());  // the published length stays the chunk's
        const std::vector<Sample> samples = readAll(0);
        ASSERT_EQ(2u, samples.size());
        EXPECT_EQ(expected, samples[0].bytes);
    }
}

TEST_F(VideoConfiguration, AvcPadByteIsNotPublished) {
    Bytes record = avcRecord(4);
    record.push_back(0x77);
    openVideo("H264", record);
    EXPECT_EQ(record, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
}

TEST_F(VideoConfiguration, AvcByteStreamIsNoRecord) {
    openVideo("H264", byteStream(0x67, 0x68));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(): mAVCStyle = 1")));
    EXPECT_EQ(0u, mLog.count("mAVCSizeLength = "));
    EXPECT_EQ(0u, mLog.count("Not avc codec specific data"));
    expectCodecDataKept();
}

// Only the low five bits of the byte behind the start code are the unit's type.
TEST_F(VideoConfiguration, AvcPictureSetIsFoundWithAnyReferenceBits) {
    for (const uint8_t header : {0x08, 0x28, 0x48, 0x68, 0xE8}) {
        SCOPED_TRACE(int{header});
        openVideo("H264", byteStream(0x67, header));
        EXPECT_THAT(log(), Contains(verbose("parseSTRF(): mAVCStyle = 1")));
    }
}

TEST_F(VideoConfiguration, AvcStartCodesWithoutPictureSetAreNoRecordEither) {
    openVideo("H264", byteStream(0x67, 0x65));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(): mAVCStyle = 0")));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseAVCCodecSpecificData", "3EF")));
    EXPECT_THAT(log(), Contains(error("parseSTRF(): Not avc codec specific data")));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    expectCodecDataKept();
}

TEST_F(VideoConfiguration, AvcSequenceSetAloneDoesNotSettleTheFraming) {
    openVideo("H264", {0, 0, 0, 1, 0x67, 0x42, 0x10, 30});
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(): mAVCStyle = 0")));
    EXPECT_THAT(log(), Contains(error("parseSTRF(): Not avc codec specific data")));
    // Byte 4, which a record would have its prefix length in, is 0x67 here.
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): mAVCSizeLength = 4")));
}

TEST_F(VideoConfiguration, AvcMalformedRecordMeansStartCodes) {
    Bytes record = avcRecord(4);
    record.resize(record.size() - 2);
    AviFile avi;
    avi.addStream(videoWithExtra("H264", record));
    const Bytes sample = {0, 0, 0, 2, 0x65, 0x88};
    avi.addChunk(0, sample);
    ASSERT_EQ(1u, open(avi));
    EXPECT_THAT(log(), Contains(error("parseSTRF(): Not avc codec specific data")));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): mAVCSizeLength = 4")));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_EQ(std::vector<Bytes>(1, sample), readPayloads(0));
    expectCodecDataDropped(record.size());
}

TEST_F(VideoConfiguration, AvcExtraDataOfTwoBytesIsNoRecord) {
    openVideo("H264", {1, 0x42});
    EXPECT_THAT(log(), Contains(warning("parseSTRF(): skip invalid codec data 2 bytes")));
    EXPECT_THAT(log(), Contains(error("parseSTRF(): Not avc codec specific data")));
    EXPECT_EQ(0u, mLog.count("Didn't find NAL"));
}

TEST_F(VideoConfiguration, AvcWithoutExtraDataPublishesNothing) {
    openVideo("H264", {});
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_EQ(0u, mLog.count("mAVCStyle = "));
    EXPECT_EQ(0u, mLog.count("mAVCSizeLength = "));
    EXPECT_EQ(0u, mLog.count("Not avc codec specific data"));
}

TEST_F(VideoConfiguration, AvcRecordThatCannotBeReadAgainIsSkippedSilently) {
    AviFile avi = fileOf({videoWithExtra("H264", avcRecord(4))});
    editStream(avi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    const Bytes file = avi.build();
    const auto extraOffset = static_cast<off64_t>(avi.place("strf").dataOffset) + 40;
    ASSERT_EQ(1u, openFaulty(file, {}));
    std::vector<uint64_t> reads;
    const auto calls = mSources.back().calls();
    for (size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].offset == extraOffset) reads.push_back(i);
    }
    ASSERT_EQ(2u, reads.size());

    mLog.clear();
    ASSERT_EQ(1u, openFaulty(file, {Fault::shortRead(16).onCall(reads[1])}));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_EQ(0u, mLog.count("mAVCSizeLength = "));
    EXPECT_EQ(0u, mLog.count("Not avc codec specific data"));
    EXPECT_EQ(0u, mLog.count("parseSTRF(): error"));
    expectCodecDataDropped(18);
}

TEST_F(VideoConfiguration, AvcStartCodeOfThreeBytesAtTheBeginningIsFound) {
    openVideo("H264", {0, 0, 1, 0x68, 0xCE, 0x38});
    expectCodecDataKept();
}

TEST_F(VideoConfiguration, AvcStartCodeAtTheVeryEndIsFound) {
    openVideo("H264", {9, 9, 9, 0, 0, 1});
    expectCodecDataKept();
}

TEST_F(VideoConfiguration, AvcCutStartCodeIsNone) {
    openVideo("H264", {9, 9, 9, 9, 0, 0});
    expectCodecDataDropped(6);
}

TEST_F(VideoConfiguration, HevcParameterSetsArePublishedAsTheyAre) {
    const Bytes extra = {0, 0, 0, 1, 0x40, 1, 12, 1, 0, 0, 1, 0x42, 1, 1};
    openVideo("HEVC", extra);
    EXPECT_EQ(extra, buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
    EXPECT_THAT(log(), Contains(TextWith("parseSTRF(): set HVCC csd raw data @L")));
    EXPECT_EQ(2u, mLog.count("00 00 00 01 40 01 0c 01 00 00 01 42 01 01 "));
    expectCodecDataKept();
}

TEST_F(VideoConfiguration, HevcStartCodeMayComeLate) {
    const Bytes extra = {9, 9, 9, 9, 9, 0, 0, 1};
    openVideo("hvc1", extra);
    EXPECT_EQ(extra, buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
}

TEST_F(VideoConfiguration, HevcPadByteIsNotPublished) {
    const Bytes extra = {0, 0, 0, 1, 0x40, 1, 12};
    openVideo("hvc1", extra);
    EXPECT_EQ(extra, buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
}

TEST_F(VideoConfiguration, HevcFirstByteDoesNotDecide) {
    for (const uint8_t first : {0, 1, 2, 0x40, 0xFF}) {
        SCOPED_TRACE(int{first});
        const Bytes extra = {first, 9, 0, 0, 0, 1, 0x40, 1};
        openVideo("hvc1", extra);
        EXPECT_EQ(extra, buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
        expectCodecDataKept();
    }
}

TEST_F(VideoConfiguration, HevcWithoutStartCodeIsNotPublished) {
    openVideo("hev1", {1, 1, 0x60, 0, 0, 0, 0x90, 0});
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
    EXPECT_EQ(0u, mLog.count("set HVCC csd raw data"));
    expectCodecDataDropped(8);
}

TEST_F(VideoConfiguration, HevcIsNotTakenForAvc) {
    openVideo("HEVC", avcRecord(4));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_AVC));
    EXPECT_EQ(0u, mLog.count("mAVCStyle = "));
}

TEST_F(VideoConfiguration, WindowsMediaExtraDataIsPublished) {
    const Bytes extra = {0x4E, 0x29, 0x1A, 0x01, 0x77};
    for (const ChunkId code : {ChunkId("WMV3"), ChunkId("wmv3"), ChunkId("WVC1")}) {
        SCOPED_TRACE(code.text());
        openVideo(code, extra);
        EXPECT_EQ(extra, buffer(AMEDIAFORMAT_KEY_CSD_0));
        EXPECT_THAT(log(), Contains(verbose("WMV/VC1 extra data in STRF(5):")));
        EXPECT_EQ(2u, mLog.count("4e 29 1a 01 77 "));
    }
}

TEST_F(VideoConfiguration, WindowsMediaWithoutExtraDataIsKept) {
    for (const ChunkId code : {ChunkId("WMV3"), ChunkId("WVC1")}) {
        SCOPED_TRACE(code.text());
        openVideo(code, {});
        EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_0));
        EXPECT_NE("video/x-unknown", mime(0));
    }
}

TEST_F(VideoConfiguration, ExtraDataOfOtherCodecsIsNotPublished) {
    for (const ChunkId code :
         {ChunkId("FMP4"), ChunkId("MJPG"), ChunkId("XVID"), ChunkId("VP80")}) {
        SCOPED_TRACE(code.text());
        openVideo(code, avcRecord(4));
        for (const char* key :
             {AMEDIAFORMAT_KEY_CSD_0, AMEDIAFORMAT_KEY_CSD_AVC, AMEDIAFORMAT_KEY_CSD_HEVC}) {
            EXPECT_EQ(std::nullopt, buffer(key));
        }
        expectCodecDataKept();
    }
}

}  // namespace avitest
