// SPDX-License-Identifier: Apache-2.0
//
// HEVC: the configuration record made from the parameter sets at the start of the first sample.

#include "tests/behaviour/codecs/HevcFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

constexpr char kNoSequence[] =
    "generateHevcCodecData(): Found no sequence start! UNSUPPORTED HEVC!";

// The entry of one unit in the record.
Bytes entry(uint8_t array, const Bytes& unit) {
    return ByteWriter()
        .u8(array)
        .u8(0)
        .u8(1)
        .u8(static_cast<uint8_t>(unit.size() >> 8))
        .u8(static_cast<uint8_t>(unit.size()))
        .bytes(unit)
        .take();
}

class HevcConfiguration : public HevcTest {
  protected:
    const Bytes mSei = nal(0x4E, 9);
    const Bytes mArrays = entry(0xA0, mVps) + entry(0xA1, mSps) + entry(0xA2, mPps);

    void expectUnsupported(const Bytes& first) {
        openFirst(first);
        EXPECT_TRUE(isBad());
        EXPECT_EQ(record(), std::nullopt);
        EXPECT_THAT(log(), Contains(error(kNoSequence)));
    }
};

TEST_F(HevcConfiguration, SetsBecomeARecordOf109Bytes) {
    openFirst(mSets + unit4(mPicture));
    EXPECT_EQ(record(), kHevcRecordHeader + mArrays);
    EXPECT_EQ(record().value_or(Bytes()).size(), 109u);
    EXPECT_EQ(mimeType(), "video/hevc");
}

TEST_F(HevcConfiguration, ExtractLogTellsTheSearch) {
    const Bytes first = mSets + unit4(mPicture);
    openSamplesLogged(mStream, videoSamples(first));
    const std::string name = "generateHevcCodecData(): ";
    EXPECT_THAT(onlyLineWith(name + "First sample offset "),
                ::testing::EndsWith(", size " + std::to_string(first.size())));
    for (const char* text :
         {"VPS found @0", "SPS found @28", "PPS found @72",
          "Whole Seq Hdr found @83, VPS/SPS/PPS size 24/40/7", "NAL start @offset 83."})
        EXPECT_THAT(log(), Contains(verbose(name + text))) << text;
    EXPECT_THAT(log(),
                Contains(LineFrom(ANDROID_LOG_VERBOSE, name + "set HVCC seq hdr, size 109 @L")));
    EXPECT_THAT(log(), Contains(verbose(hexOf(kHevcRecordHeader + mArrays))));
}

TEST_F(HevcConfiguration, SequenceHeaderIsDumped) {
    openSamplesLogged(mStream, videoSamples(mSets + unit4(mPicture)));
    const Bytes rewritten =
        Bytes{0, 1, 0, 24} + mVps + Bytes{0, 1, 0, 40} + mSps + Bytes{0, 1, 0, 7} + mPps;
    EXPECT_THAT(log(), Contains(verbose(hexOf(rewritten))));
}

TEST_F(HevcConfiguration, ExtractLogOffSaysNothing) {
    openFirst(mSets + unit4(mPicture));
    EXPECT_EQ(mLog.count("generateHevcCodecData"), 0u);
}

TEST_F(HevcConfiguration, UnitsInFrontLeaveTheirLengthAsZerosBehind) {
    const Bytes front = unit4(nal(0x46, 296));
    openFirst(front + mSets + unit4(mPicture));
    EXPECT_EQ(record(), kHevcRecordHeader + mArrays + Bytes(300, 0));
}

TEST_F(HevcConfiguration, ThreeByteStartCodesAreNotFound) {
    expectUnsupported(unit3(mVps) + unit3(mSps) + unit3(mPps) + unit3(mPicture));
}

// The picture's code must have four bytes as well.
TEST_F(HevcConfiguration, ThreeByteCodeOfThePictureDoesNotEndTheHeader) {
    expectUnsupported(mSets + unit3(mPicture));
}

TEST_F(HevcConfiguration, SampleThatEndsWithItsSetsIsUnsupported) {
    expectUnsupported(mSets);
}

TEST_F(HevcConfiguration, SampleThatEndsInsideTheNextStartCodeIsUnsupported) {
    const Bytes whole = mSets + unit4(mPicture);
    for (size_t kept = 1; kept <= mSets.size() + 4; ++kept) {
        SCOPED_TRACE(kept);
        expectUnsupported(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(kept)));
    }
    openFirst(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(mSets.size() + 5)));
    EXPECT_EQ(record(), kHevcRecordHeader + mArrays);
}

TEST_F(HevcConfiguration, MissingSetIsUnsupported) {
    expectUnsupported(unit4(mSps) + unit4(mPps) + unit4(mPicture));
    expectUnsupported(unit4(mVps) + unit4(mPps) + unit4(mPicture));
    expectUnsupported(unit4(mVps) + unit4(mSps) + unit4(mPicture));
}

TEST_F(HevcConfiguration, OtherHeaderBytesAreNoSets) {
    for (const uint8_t header : {0x41, 0xC0}) {
        SCOPED_TRACE(header);
        Bytes vps = mVps;
        vps[0] = header;
        expectUnsupported(unit4(vps) + unit4(mSps) + unit4(mPps) + unit4(mPicture));
    }
}

TEST_F(HevcConfiguration, HeaderThatEndsAtTheLastScannedPositionIsFound) {
    const size_t front = 999 - mSets.size();
    openFirst(unit4(nal(0x46, front - 4)) + mSets + unit4(mPicture));
    EXPECT_EQ(record(), kHevcRecordHeader + mArrays + Bytes(front, 0));
}

TEST_F(HevcConfiguration, HeaderThatEndsBehindTheScanIsUnsupported) {
    const size_t front = 1000 - mSets.size();
    expectUnsupported(unit4(nal(0x46, front - 4)) + mSets + unit4(mPicture));
}

TEST_F(HevcConfiguration, UnitBetweenTheSetsGoesWithTheSetInFront) {
    openFirst(unit4(mVps) + unit4(mSps) + unit4(mSei) + unit4(mPps) + unit4(mPicture));
    EXPECT_EQ(record(), kHevcRecordHeader + entry(0xA0, mVps) + entry(0xA1, mSps + unit4(mSei)) +
                            entry(0xA2, mPps));
}

TEST_F(HevcConfiguration, RepeatedPictureSetGoesWithTheSequenceSet) {
    openFirst(mSets + unit4(mPps) + unit4(mPicture));
    const Bytes csd = record().value_or(Bytes());
    // The length of the sequence set's entry reaches to the last picture set.
    const Bytes expected = kHevcRecordHeader + entry(0xA0, mVps) +
                           entry(0xA1, mSps + Bytes{0, 0, 0, 1} + mPps) + entry(0xA2, mPps);
    EXPECT_EQ(csd, expected);
}

TEST_F(HevcConfiguration, LastVideoSetOfSeveralCounts) {
    const Bytes other = nal(0x40, 12);
    openFirst(unit4(other) + mSets + unit4(mPicture));
    EXPECT_EQ(record(), kHevcRecordHeader + mArrays + Bytes(other.size() + 4, 0));
}

// A sample that begins with the version of a record is kept as it is, up to its pictures.
TEST_F(HevcConfiguration, SampleThatBeginsWithAVersionIsKept) {
    const Bytes front = {0x01, 0xFF, 0xFE};
    openFirst(front + mSets + unit4(mPicture));
    const Bytes rewritten =
        Bytes{0, 1, 0, 24} + mVps + Bytes{0, 1, 0, 40} + mSps + Bytes{0, 1, 0, 7} + mPps;
    EXPECT_EQ(record(), front + rewritten);
}

TEST_F(HevcConfiguration, OnlyVersion1IsOne) {
    for (const uint8_t first : {2, 3, 0x11, 0x81, 0xFF}) {
        SCOPED_TRACE(int{first});
        openFirst(Bytes{first, 0xFF, 0xFE} + mSets + unit4(mPicture));
        EXPECT_EQ(record(), kHevcRecordHeader + mArrays + Bytes(3, 0));
    }
}

TEST_F(HevcConfiguration, SetsOfTheStreamFormatStay) {
    const Bytes extra = unit4(nal(0x40, 10)) + unit4(nal(0x42, 10));
    std::get<BitmapInfo>(mStream.format).extra = extra;
    openFirst(mSets + unit4(mPicture));
    EXPECT_EQ(record(), extra);
    openFirst(Bytes(100, 0x33));
    EXPECT_EQ(record(), extra);
    EXPECT_FALSE(isBad());
}

TEST_F(HevcConfiguration, NineSamplesAreNotLookedAt) {
    openSamples(mStream, videoSamples(mSets + unit4(mPicture), 9));
    EXPECT_EQ(record(), std::nullopt);
    EXPECT_FALSE(isBad());
}

TEST_F(HevcConfiguration, UnreadableFirstSampleSpoilsTheTrack) {
    openSamplesWithout(mStream, videoSamples(mSets + unit4(mPicture)), {0});
    EXPECT_TRUE(isBad());
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("generateHevcCodecData", "3EC")));
}

}  // namespace
}  // namespace avitest
