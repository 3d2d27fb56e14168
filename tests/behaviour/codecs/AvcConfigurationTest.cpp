// SPDX-License-Identifier: Apache-2.0
//
// AVC samples with start codes: the configuration record made from the parameter sets in front of
// the first IDR picture.

#include "tests/behaviour/codecs/AvcFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::Not;

constexpr char kNoStartCode[] = "generateAvcCodecData(): Can't not find start code, offsetStart ";
constexpr char kNoSps[] = "generateAvcCodecData(): No SPS found!!! Try to play it anyway. @L";
constexpr char kNoPps[] = "generateAvcCodecData(): No PPS found!!! Try to play it anyway. @L";

LogLine noIdr(size_t offset, size_t prefixLength) {
    return error(kNoStartCode + std::to_string(offset) + ", prefixLen " +
                 std::to_string(prefixLength));
}

// A set with this sample aspect ratio.
Bytes spsOfRatio(uint32_t width, uint32_t height) {
    android::SpsFields fields;
    fields.vui = [=](android::SpsBits& bits) {
        bits.u(1, 1).u(8, 255).u(16, width).u(16, height).u(8, 0);
    };
    return fields.nal();
}

// A set with this aspect_ratio_idc.
Bytes spsOfRatioCode(uint32_t code) {
    android::SpsFields fields;
    fields.vui = [=](android::SpsBits& bits) { bits.u(1, 1).u(8, code).u(8, 0); };
    return fields.nal();
}

class AvcConfiguration : public AvcTest {};

TEST_F(AvcConfiguration, RecordHoldsTheSetsFieldByField) {
    openFirst(unit4(mSps) + unit4(mPps) + unit4(mSei) + unit4(mIdr));

    const Bytes csd = record().value_or(Bytes());
    const size_t n = mSps.size();
    ASSERT_EQ(csd.size(), n + mPps.size() + 11);
    EXPECT_EQ(csd[0], 1);
    EXPECT_EQ(csd[1], mSps[1]);
    EXPECT_EQ(csd[2], mSps[2]);
    EXPECT_EQ(csd[3], mSps[3]);
    EXPECT_EQ(csd[4], 0xFD);
    EXPECT_EQ(csd[5], 0xE1);
    EXPECT_EQ(csd[6] << 8 | csd[7], static_cast<int>(n));
    EXPECT_EQ(Bytes(csd.begin() + 8, csd.begin() + 8 + n), mSps);
    EXPECT_EQ(csd[8 + n], 1);
    EXPECT_EQ(csd[9 + n] << 8 | csd[10 + n], static_cast<int>(mPps.size()));
    EXPECT_EQ(Bytes(csd.begin() + 11 + n, csd.end()), mPps);
}

// The sets themselves are whole.
TEST_F(AvcConfiguration, LengthsAreCutTo16Bits) {
    const Bytes longSps = mSps + Bytes(0x10203 - mSps.size(), 0x55);
    const Bytes longPps = mPps + Bytes(0x1FFFF - mPps.size(), 0x66);
    for (const auto& [sps, pps] :
         {std::pair(mSps, longPps), std::pair(longSps, mPps), std::pair(longSps, longPps)}) {
        SCOPED_TRACE(testing::Message() << sps.size() << " and " << pps.size());
        openSets(sps, pps);
        const Bytes expected = ByteWriter()
                                   .bytes(Bytes{1, sps[1], sps[2], sps[3], 0xFD, 0xE1})
                                   .u8(static_cast<uint8_t>(sps.size() >> 8))
                                   .u8(static_cast<uint8_t>(sps.size()))
                                   .bytes(sps)
                                   .u8(1)
                                   .u8(static_cast<uint8_t>(pps.size() >> 8))
                                   .u8(static_cast<uint8_t>(pps.size()))
                                   .bytes(pps)
                                   .take();
        EXPECT_TRUE(record() == expected);  // without printing half a megabyte
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
    }
}

TEST_F(AvcConfiguration, SizeOfThePictureIsThatOfTheSet) {
    openSets(mSps, mPps);
    EXPECT_EQ(mimeType(), "video/avc");
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 288);
}

TEST_F(AvcConfiguration, LinesTellWhatWasFound) {
    openSets(mSps, mPps);
    const Bytes csd = record().value_or(Bytes());
    EXPECT_THAT(log(), Contains(debug("AVC Dimensions: 352 x 288 (0 : 0)")));
    EXPECT_THAT(log(), Contains(debug(format("avcC(%zuB):", csd.size()))));
    EXPECT_THAT(log(), Contains(debug(upperHexOf(csd))));
    EXPECT_THAT(log(),
                Contains(debug("found AVC codec config (352 x 288, Baseline-profile level 3.0)")));
}

TEST_F(AvcConfiguration, ProfileAndLevelAreNamed) {
    const struct {
        uint32_t profile;
        uint32_t level;
        const char* text;
    } kRows[] = {{66, 41, "Baseline-profile level 4.1"},
                 {77, 9, "Main-profile level 0.9"},
                 {88, 255, "Extended-profile level 25.5"},
                 {1, 51, "Unknown-profile level 5.1"}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.text);
        android::SpsFields fields;
        fields.profile = row.profile;
        fields.level = row.level;
        openSets(fields.nal(), mPps);
        EXPECT_THAT(log(),
                    Contains(debug(format("found AVC codec config (352 x 288, %s)", row.text))));
    }
}

TEST_F(AvcConfiguration, HighProfileIsNamed) {
    android::SpsFields fields;
    fields.profile = 100;
    fields.level = 40;
    fields.chroma = 1;
    openSets(fields.nal(), mPps);
    EXPECT_THAT(log(),
                Contains(debug("found AVC codec config (352 x 288, High-profile level 4.0)")));
}

TEST_F(AvcConfiguration, ExtractLogTellsTheSearch) {
    const Bytes first = unit4(mSps) + unit4(mPps) + unit4(mIdr);
    const size_t idrAt = first.size() - mIdr.size() - 4;
    openFirstLogged(first);
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_VERBOSE,
                                         "generateAvcCodecData(): First sample offset ")));
    EXPECT_THAT(onlyLineWith("First sample offset"),
                ::testing::EndsWith(", size " + std::to_string(first.size())));
    EXPECT_THAT(log(), Contains(verbose("generateAvcCodecData(): AVCPos 1")));
    EXPECT_THAT(log(), Contains(verbose("generateAvcCodecData(): Find I-frame done")));
    EXPECT_THAT(log(),
                Contains(verbose(format("generateAvcCodecData(): NAL start @offset %zu.", idrAt))));
}

TEST_F(AvcConfiguration, ExtractLogOffLeavesTheSearchOut) {
    openSets(mSps, mPps);
    for (const char* text : {"First sample offset", "AVCPos", "Find I-frame", "NAL start @"})
        EXPECT_EQ(mLog.count(text), 0u) << text;
}

TEST_F(AvcConfiguration, FirstSixtyFourBytesAreDumped) {
    const Bytes first = unit4(mSps) + unit4(mPps) + unit4(mIdr + patternBytes(200));
    openFirstLogged(first);
    EXPECT_THAT(log(), Contains(verbose(hexOf(Bytes(first.begin(), first.begin() + 64)))));
}

// The range keeps the picture's offset as its length, so that it reaches into the picture.
TEST_F(AvcConfiguration, DelimiterInFrontMovesTheRange) {
    const Bytes first = unit4(mDelimiter) + unit4(mSps) + unit4(mPps) + unit4(mIdr);
    const size_t spsAt = 7;
    const size_t idrAt = first.size() - mIdr.size() - 4;
    openFirstLogged(first);

    EXPECT_THAT(log(), Contains(verbose("generateAvcCodecData(): AVCPos 7")));
    const auto range = first.begin() + spsAt;
    EXPECT_THAT(log(), Contains(verbose(hexOf(Bytes(range, range + idrAt)))));
    const Bytes csd = record().value_or(Bytes());
    ASSERT_EQ(csd.size(), mSps.size() + mPps.size() + 11);
    EXPECT_EQ(Bytes(csd.begin() + 8, csd.begin() + 8 + mSps.size()), mSps);
    EXPECT_EQ(Bytes(csd.end() - mPps.size(), csd.end()), mPps);
}

TEST_F(AvcConfiguration, PictureShorterThanTheDelimiterLeavesTheRangeAtTheStart) {
    const Bytes first = unit4(mDelimiter) + unit4(mSps) + unit4(mPps) + unit3({0x65});
    const size_t idrAt = first.size() - 4;
    openFirstLogged(first);

    EXPECT_THAT(log(), Contains(verbose(hexOf(Bytes(first.begin(), first.begin() + idrAt)))));
    EXPECT_EQ(record().value_or(Bytes()).size(), mSps.size() + mPps.size() + 11);
}

TEST_F(AvcConfiguration, ThreeByteStartCodesAreFoundToo) {
    openFirst(unit3(mSps) + unit3(mPps) + unit3(mIdr));
    EXPECT_EQ(record().value_or(Bytes()).size(), mSps.size() + mPps.size() + 11);
}

TEST_F(AvcConfiguration, FirstSetOfEachKindIsTaken) {
    android::SpsFields other;
    other.widthInMbs = 45;
    openFirst(unit4(mSps) + unit4(other.nal()) + unit4(mPps) + unit4({0x68, 1, 2}) + unit4(mIdr));
    EXPECT_EQ(record().value_or(Bytes()).size(), mSps.size() + mPps.size() + 11);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
}

TEST_F(AvcConfiguration, PictureSetInFrontOfTheSequenceSetIsNotFound) {
    openFirst(unit4(mPps) + unit4(mSps) + unit4(mIdr + patternBytes(64, 3)));
    // The range begins at the sequence set and ends inside the picture.
    EXPECT_EQ(record(), std::nullopt);
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_ERROR, kNoPps)));
}

TEST_F(AvcConfiguration, ReferenceBitsOfTheHeaderDoNotMatter) {
    Bytes sps = mSps;
    sps[0] = 0x27;
    openFirst(unit4(sps) + unit4({0x28, 0xCE, 0x3C}) + unit4({0x25, 0x88, 0x84}));
    EXPECT_EQ(record().value_or(Bytes()).size(), sps.size() + 3 + 11);
}

TEST_F(AvcConfiguration, NoIdrLeavesTheTrackAsItIs) {
    const Bytes first = unit4(mSps) + unit4(mPps) + unit4(mSlice);
    openFirst(first);
    expectUnchanged();
    EXPECT_THAT(log(), Contains(noIdr(first.size() - mSlice.size(), 4)));
}

TEST_F(AvcConfiguration, NoIdrBehindAThreeByteCodeTellsItsLength) {
    const Bytes first = unit4(mSps) + unit3(mSlice);
    openFirst(first);
    EXPECT_THAT(log(), Contains(noIdr(first.size() - mSlice.size(), 3)));
}

TEST_F(AvcConfiguration, NoStartCodeAtAllLeavesTheTrackAsItIs) {
    openFirst(Bytes(200, 0x55));
    expectUnchanged();
    EXPECT_THAT(log(), Contains(noIdr(0, 0)));
}

TEST_F(AvcConfiguration, RecordOfTheStreamFormatStays) {
    const Bytes csd = Bytes{1, 66, 0, 30, 0xFF, 0xE1, 0, static_cast<uint8_t>(mSps.size())} + mSps +
                      Bytes{1, 0, 5} + mPps + Bytes{0x40};
    std::get<BitmapInfo>(mStream.format).extra = csd;
    const Bytes slice = Bytes{0, 0, 0, 4} + mSlice;
    openSamples(mStream, videoSamples(Bytes{0, 0, 0, 11} + mIdr, 10, slice));

    EXPECT_EQ(record(), csd);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 320);
    EXPECT_THAT(log(), Contains(noIdr(0, 0)));
}

TEST_F(AvcConfiguration, NoSequenceSetPublishesNothing) {
    openFirstLogged(unit4(mPps) + unit4(mIdr));
    expectUnchanged();
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_ERROR, kNoSps)));
    EXPECT_THAT(
        log(), Contains(LineFrom(ANDROID_LOG_VERBOSE,
                                 "generateAvcCodecData(): MakeAVCCodecSpecificData ret -1007 @L")));
}

TEST_F(AvcConfiguration, SequenceSetBehindThePictureIsTooLate) {
    openFirst(unit4(mPps) + unit4(mIdr) + unit4(mSps));
    expectUnchanged();
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_ERROR, kNoSps)));
}

TEST_F(AvcConfiguration, NoPictureSetPublishesNothing) {
    openFirst(unit4(mSps) + unit4(mIdr));
    expectUnchanged();
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_ERROR, kNoPps)));
    EXPECT_THAT(log(), Contains(debug("AVC Dimensions: 352 x 288 (0 : 0)")));
}

TEST_F(AvcConfiguration, SampleThatBeginsWithThePictureHasNoSets) {
    openFirst(unit4(mIdr) + unit4(mSps) + unit4(mPps));
    expectUnchanged();
}

TEST_F(AvcConfiguration, UnreadableFirstSampleSpoilsTheTrack) {
    openSamplesWithout(mStream, videoSamples(unit4(mSps) + unit4(mPps) + unit4(mIdr)), {0});
    EXPECT_TRUE(isBad());
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("generateAvcCodecData", "3EC")));
}

TEST_F(AvcConfiguration, SquareOrUnknownRatioLeavesTheDefault) {
    for (const Bytes& sps :
         {spsOfRatioCode(0), spsOfRatioCode(1), spsOfRatio(1, 1), spsOfRatio(1, 0)}) {
        SCOPED_TRACE(testing::PrintToString(sps));
        openSets(sps, mPps);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 1);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 1);
        EXPECT_THAT(
            log(),
            Contains(debug("found AVC codec config (352 x 288, Baseline-profile level 3.0)")));
    }
}

TEST_F(AvcConfiguration, OtherRatiosArePublished) {
    for (const auto& [width, height] :
         {std::pair(16, 11), std::pair(1, 2), std::pair(2, 1), std::pair(65535, 65535)}) {
        SCOPED_TRACE(testing::Message() << width << ":" << height);
        openSets(spsOfRatio(static_cast<uint32_t>(width), static_cast<uint32_t>(height)), mPps);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), width);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), height);
        EXPECT_THAT(log(),
                    Contains(debug(format("AVC Dimensions: 352 x 288 (%d : %d)", width, height))));
        EXPECT_THAT(
            log(), Contains(debug(format(
                       "found AVC codec config (352 x 288, Baseline-profile level 3.0) SAR %d : %d",
                       width, height))));
    }
}

TEST_F(AvcConfiguration, RatioOfTheSetReplacesThatOfTheContainer) {
    mStream.properties = VideoProperties();
    openSets(spsOfRatio(16, 11), mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 16);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 11);
}

}  // namespace
}  // namespace avitest
