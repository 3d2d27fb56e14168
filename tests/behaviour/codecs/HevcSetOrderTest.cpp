// SPDX-License-Identifier: Apache-2.0
//
// HEVC parameter sets in another order than video, sequence, picture. Each entry is as long as the
// way from the last set of its kind to the set that closed it, the beginning of the sample standing
// in for a set that had not come yet. The record keeps its length whatever its entries add up to.

#include "tests/behaviour/codecs/HevcFixture.h"

namespace avitest {
namespace {

const Bytes kCode = {0, 0, 0, 1};

// What a start code is overwritten with: one unit of this length, modulo 2^16.
Bytes prefix(int length) {
    return {0, 1, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
}

// The first `size` bytes.
Bytes head(const Bytes& bytes, size_t size) {
    return ByteWriter().bytes(bytes).cut(size).take();
}

// Entries of 28 (VPS), 44 (SPS) and 11 (PPS) bytes, start codes included.
class HevcSetOrder : public HevcTest {
  protected:
    // The record of a sequence header of `end` bytes with these entries after the array headers.
    static Bytes recordOf(size_t end, const Bytes& vps, const Bytes& sps, const Bytes& pps) {
        Bytes record =
            kHevcRecordHeader + Bytes{0xA0} + vps + Bytes{0xA1} + sps + Bytes{0xA2} + pps;
        record.resize(26 + end);
        return record;
    }
    void expectRecord(const Bytes& sets, const Bytes& expected) {
        openFirst(sets + unit4(mPicture));
        EXPECT_EQ(record(), expected);
        EXPECT_FALSE(isBad());
    }
};

TEST_F(HevcSetOrder, SequenceVideoPicture) {
    expectRecord(unit4(mSps) + unit4(mVps) + unit4(mPps),
                 recordOf(83, {}, prefix(68) + mSps + kCode + mVps, prefix(7) + mPps));
}

TEST_F(HevcSetOrder, SequencePictureVideo) {
    expectRecord(unit4(mSps) + unit4(mPps) + unit4(mVps),
                 recordOf(83, {}, prefix(40) + mSps, prefix(35) + mPps + kCode + mVps));
}

TEST_F(HevcSetOrder, PictureSequenceVideo) {
    const Bytes pps = prefix(79) + mPps + kCode + mSps + kCode + mVps;
    expectRecord(unit4(mPps) + unit4(mSps) + unit4(mVps),
                 recordOf(83, kCode + head(mVps, 7), {}, pps));
}

TEST_F(HevcSetOrder, PictureVideoSequence) {
    const Bytes pps = prefix(79) + mPps + prefix(24) + mVps + kCode + mSps;
    expectRecord(unit4(mPps) + unit4(mVps) + unit4(mSps), recordOf(83, prefix(24) + mVps, {}, pps));
}

TEST_F(HevcSetOrder, VideoPictureSequence) {
    const Bytes pps = prefix(51) + mPps + kCode + mSps;
    expectRecord(unit4(mVps) + unit4(mPps) + unit4(mSps),
                 recordOf(83, prefix(35) + mVps + prefix(51) + mPps, kCode + head(mSps, 24), pps));
}

// The entry of the first video set is copied from the second one, beyond the sequence header.
TEST_F(HevcSetOrder, VideoSetAgainAtTheEnd) {
    const Bytes again = nal(0x40, 12);
    expectRecord(mSets + unit4(again),
                 recordOf(99, kCode + again + kCode + head(mPicture, 8), prefix(40) + mSps,
                          prefix(23) + mPps + kCode + again));
}

TEST_F(HevcSetOrder, SequenceSetAgainAtTheEnd) {
    const Bytes again = nal(0x42, 10);
    const Bytes vps = prefix(79) + mVps + prefix(40) + mSps + prefix(21) + mPps;
    expectRecord(mSets + unit4(again), recordOf(97, vps, kCode + again + kCode + head(mPicture, 26),
                                                prefix(21) + mPps + kCode + again));
}

// What an entry lacks beyond the end of the sample is left out.
TEST_F(HevcSetOrder, EntryThatReachesBeyondTheSampleIsCut) {
    const Bytes again = nal(0x40, 12);
    openFirst(mSets + unit4(again) + unit4({0x26}));
    EXPECT_EQ(record(), recordOf(99, kCode + again + kCode + Bytes{0x26}, prefix(40) + mSps,
                                 prefix(23) + mPps + kCode + again));
    EXPECT_FALSE(isBad());
}

TEST_F(HevcSetOrder, UnitBeforeTheSetsCountsForTheSetThatHadNotCome) {
    const Bytes front = unit4(nal(0x46, 26));
    const Bytes vps = kCode + mVps + head(prefix(7) + mPps, 2);
    expectRecord(front + unit4(mSps) + unit4(mVps) + unit4(mPps),
                 recordOf(113, vps, prefix(68) + mSps + kCode + mVps, prefix(7) + mPps));
}

}  // namespace
}  // namespace avitest
