// SPDX-License-Identifier: Apache-2.0
//
// The video properties header: the sample aspect ratio, and its log lines.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;

class VideoPropertiesChunk : public StreamsFixture {
  protected:
    AviFile mAvi = fileOf({mjpegStream()});
    VideoProperties mProperties;

    VideoPropertiesChunk() { mProperties.frameAspectRatio = 0x00090010; }

    // Adds the chunk with the given payload.
    void add(Bytes payload) {
        editStream(mAvi, 0,
                   [payload](Chunk& strl) { strl.add(Chunk("vprp", payload).marked("vprp")); });
    }

    void expectRatio(std::optional<int32_t> width, std::optional<int32_t> height) {
        EXPECT_EQ(width, int32Of(0, AMEDIAFORMAT_KEY_SAR_WIDTH));
        EXPECT_EQ(height, int32Of(0, AMEDIAFORMAT_KEY_SAR_HEIGHT));
        EXPECT_EQ(width ? 1u : 0u, mLog.count("set kKeySARWidth"));
    }
    void expectNoRatio() { expectRatio(std::nullopt, std::nullopt); }

    static std::string heading(const ChunkPlace& place) {
        return format("==== parseVPRP(pos: %lld, end: %lld, size: %zu) ====",
                      static_cast<long long>(place.dataOffset),
                      static_cast<long long>(place.dataOffset + place.dataSize),
                      static_cast<size_t>(place.dataSize));
    }
};

TEST_F(VideoPropertiesChunk, HighWordOfTheRatioIsItsWidth) {
    add(mProperties.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    expectRatio(9, 16);
    EXPECT_THAT(log(), Contains(debug("set kKeySARWidth 9, kKeySARHeight 16")));
}

TEST_F(VideoPropertiesChunk, RatioTermsAreUnsigned) {
    mProperties.frameAspectRatio = 0xFFFF8000;
    add(mProperties.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    expectRatio(65535, 32768);
}

TEST_F(VideoPropertiesChunk, RatioNeedsBothTerms) {
    for (const uint32_t ratio : {0u, 0x00040000u, 0x00000003u}) {
        SCOPED_TRACE(format("0x%08x", ratio));
        mProperties.frameAspectRatio = ratio;
        add(mProperties.toBytes());
        ASSERT_EQ(1u, open(mAvi));
        expectNoRatio();
    }
}

TEST_F(VideoPropertiesChunk, CutFieldDescriptorVoidsTheRatio) {
    Bytes payload = mProperties.toBytes();
    ASSERT_EQ(68u, payload.size());
    payload.resize(66);
    add(payload);
    ASSERT_EQ(1u, open(mAvi));
    expectNoRatio();
}

TEST_F(VideoPropertiesChunk, MissingSecondDescriptorVoidsTheRatio) {
    mProperties.fieldsPerFrame = 2;
    add(mProperties.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    expectNoRatio();
}

TEST_F(VideoPropertiesChunk, FurtherBytesDoNoHarm) {
    Bytes payload = mProperties.toBytes();
    payload.resize(120);
    add(payload);
    ASSERT_EQ(1u, open(mAvi));
    expectRatio(9, 16);
}

TEST_F(VideoPropertiesChunk, WithoutFieldsGivesTheRatio) {
    mProperties.fields.clear();
    add(mProperties.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    expectRatio(9, 16);
}

// 0x08000000 x 32 is 0 in 32 bits.
TEST_F(VideoPropertiesChunk, HugeFieldCountsVoidTheRatio) {
    for (const uint32_t count : {0x08000000u, 0x08000001u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(format("0x%08x", count));
        mProperties.fieldsPerFrame = count;
        add(mProperties.toBytes());
        ASSERT_EQ(1u, open(mAvi));
        expectNoRatio();
    }
}

TEST_F(VideoPropertiesChunk, UnderItsFixedPartIsIgnored) {
    Bytes payload = mProperties.toBytes();
    for (const size_t size : {0u, 1u, 2u, 24u, 34u}) {
        SCOPED_TRACE(size);
        payload.resize(size);
        add(payload);
        ASSERT_EQ(1u, open(mAvi));
        expectNoRatio();
    }
}

TEST_F(VideoPropertiesChunk, ThatCannotBeReadIsIgnored) {
    add(mProperties.toBytes());
    ASSERT_EQ(1u, openUnreadable(mAvi, "vprp", 60));
    expectNoRatio();
    EXPECT_THAT(log(), Not(Contains(dropped())));
}

TEST_F(VideoPropertiesChunk, EveryOneIsRead) {
    VideoProperties second = mProperties;
    second.frameAspectRatio = 0x00010002;
    mAvi.stream(0).properties = mProperties;
    add(second.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(1, int32Of(0, AMEDIAFORMAT_KEY_SAR_WIDTH));
    EXPECT_EQ(2, int32Of(0, AMEDIAFORMAT_KEY_SAR_HEIGHT));
    EXPECT_EQ(2u, mLog.count("set kKeySARWidth"));
}

TEST_F(VideoPropertiesChunk, IsNotLoggedUnasked) {
    add(mProperties.toBytes());
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("parseVPRP"));
    EXPECT_EQ(0u, mLog.count("VideoFormatToken"));
    EXPECT_EQ(0u, mLog.count("Field-"));
}

TEST_F(VideoPropertiesChunk, FixedFieldsAreLoggedOnRequest) {
    mProperties.formatToken = 1;
    mProperties.standard = 2;
    mProperties.verticalRefreshRate = 3;
    mProperties.horizontalTotalInT = 4;
    mProperties.verticalTotalInLines = 0xFFFFFFFF;
    mProperties.frameWidthInPixels = 6;
    mProperties.frameHeightInLines = 7;
    add(mProperties.toBytes());
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose(heading(mAvi.place("vprp"))),
                           verbose("VideoFormatToken:    1"),
                           verbose("VideoStandard:       2"),
                           verbose("VerticalRefreshRate: 3"),
                           verbose("HTotalInT:           4"),
                           verbose("VTotalInLines:       -1"),
                           verbose("FrameAspectRatio_H:  16"),
                           verbose("FrameAspectRatio_W:  9"),
                           verbose("FrameWidthInPixels:  6"),
                           verbose("FrameHeightInLines:  7"),
                           verbose("FieldPerFrame:       1"),
                           verbose("parseVPRP(): end..."),
                       }));
}

TEST_F(VideoPropertiesChunk, FieldDescriptorsAreLoggedOnRequest) {
    VideoField second;
    second.compressedHeight = 11;
    second.compressedWidth = 12;
    second.validHeight = 13;
    second.validWidth = 14;
    second.validXOffset = 15;
    second.validYOffset = 16;
    second.videoXOffsetInT = 17;
    second.videoYValidStartLine = 18;
    mProperties.fields.push_back(second);
    add(mProperties.toBytes());
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("Field-0:"),
                           verbose("CompressedBMHeight:   240"),
                           verbose("Field-1:"),
                           verbose("CompressedBMHeight:   11"),
                           verbose("CompressedBMWidth:    12"),
                           verbose("ValidBMHeight:        13"),
                           verbose("ValidBMWidth:         14"),
                           verbose("ValidBMXOffset:       15"),
                           verbose("ValidBMYOffset:       16"),
                           verbose("VideoXOffsetInT:      17"),
                           verbose("VideoYValidStartLine: 18"),
                       }));
}

TEST_F(VideoPropertiesChunk, CutFieldDescriptorIsNotLogged) {
    Bytes payload = mProperties.toBytes();
    payload.resize(66);
    add(payload);
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("FieldPerFrame:       1")));
    EXPECT_EQ(0u, mLog.count("Field-0"));
    EXPECT_THAT(log(), Contains(verbose("parseVPRP(): end...")));
}

TEST_F(VideoPropertiesChunk, UnderItsFixedPartIsDumpedOnly) {
    add({1, 2, 0xAB, 0xFF});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("01 02 ab ff ")));
    EXPECT_EQ(0u, mLog.count("VideoFormatToken"));
    EXPECT_THAT(log(), Contains(verbose("parseVPRP(): end...")));
}

TEST_F(VideoPropertiesChunk, BytesAreDumpedSixteenToALine) {
    add(Bytes(36, 0x5A));
    std::string line;
    for (int i = 0; i < 15; ++i)
        line += "5a ";
    line += "5a\n";
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose(line + line + "5a 5a 5a 5a ")));
}

TEST_F(VideoPropertiesChunk, OfLengthZeroIsOnlyAnnounced) {
    add({});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose(heading(mAvi.place("vprp")))));
    EXPECT_EQ(0u, mLog.count("parseVPRP(): end..."));
}

TEST_F(VideoPropertiesChunk, ThatCannotBeReadIsOnlyAnnounced) {
    setProperty(kExtractLogProperty, "1");
    add(mProperties.toBytes());
    ASSERT_EQ(1u, openUnreadable(mAvi, "vprp", 60));
    EXPECT_THAT(log(), Contains(verbose(heading(mAvi.place("vprp")))));
    EXPECT_EQ(0u, mLog.count("VideoFormatToken"));
    EXPECT_EQ(0u, mLog.count("parseVPRP(): end..."));
}

TEST_F(VideoPropertiesChunk, LongestIsRead) {
    add(mProperties.toBytes());
    ASSERT_EQ(1u, openWithLongChunk(mAvi, "vprp", 0x0FFFFFFE));
    expectRatio(9, 16);
    EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
}

TEST_F(VideoPropertiesChunk, LongerThanAnyIsNotRead) {
    setProperty(kExtractLogProperty, "1");
    add(mProperties.toBytes());
    for (const uint32_t size : {0x0FFFFFFFu, 0x10000000u}) {
        SCOPED_TRACE(format("0x%08x", size));
        mLog.clear();
        ASSERT_EQ(1u, openWithLongChunk(mAvi, "vprp", size));
        expectNoRatio();
        EXPECT_THAT(log(), Contains(TextWith("size: 268435456) ====")));
        EXPECT_EQ(0u, mLog.count("parseVPRP(): end..."));
        EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
    }
}

}  // namespace avitest
