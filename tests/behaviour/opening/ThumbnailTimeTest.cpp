// SPDX-License-Identifier: Apache-2.0
//
// The thumbnail time, which a track's format gets when extensive metadata is asked for.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Extractor;
using android::service::MediaFormat;
using ::testing::Contains;

constexpr uint32_t kExtensive = Extractor::kIncludeExtensiveMetaData;

class ThumbnailTime : public LoggedFixture {
  protected:
    MediaFormat formatWith(uint32_t flags, size_t track = 0) {
        return std::move(extractor().trackMetaData(track, flags).format);
    }
    size_t timesComputed() const { return mLog.count("Set thumbnail time"); }
};

// The thumbnail is the largest key frame: the last of these.
AviFile thumbnailAt(uint32_t index, uint32_t rate, uint32_t scale) {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("MJPG", 320, 240, rate, scale));
    for (uint32_t i = 0; i < index; ++i)
        avi.addChunk(video, {1, 2});
    avi.addChunk(video, {1, 2, 3, 4});
    return avi;
}

TEST_F(ThumbnailTime, IsThatOfTheLargestKeyFrame) {
    openFile(thumbnailAt(3, 25, 1).build());
    EXPECT_EQ(120000, formatWith(kExtensive).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

TEST_F(ThumbnailTime, TakesThePlaceOfTheDuration) {
    openFile(thumbnailAt(3, 25, 1).build());
    EXPECT_EQ(160000, formatWith(0).getInt64(AMEDIAFORMAT_KEY_DURATION));
    EXPECT_EQ(120000, formatWith(kExtensive).getInt64(AMEDIAFORMAT_KEY_DURATION));
}

TEST_F(ThumbnailTime, IsLogged) {
    openFile(thumbnailAt(3, 25, 1).build());
    formatWith(kExtensive);
    EXPECT_THAT(log(), Contains(debug("getTrackMetaData(): Set thumbnail time 120000, index 3")));
}

TEST_F(ThumbnailTime, IsComputedOnce) {
    openFile(thumbnailAt(3, 25, 1).build());
    formatWith(kExtensive);
    formatWith(kExtensive);
    EXPECT_EQ(1u, timesComputed());
}

TEST_F(ThumbnailTime, StaysInTheFormatForLaterQueries) {
    openFile(thumbnailAt(3, 25, 1).build());
    formatWith(kExtensive);
    EXPECT_EQ(120000, formatWith(0).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

TEST_F(ThumbnailTime, IsAskedForByBitZeroAlone) {
    openFile(thumbnailAt(3, 25, 1).build());
    EXPECT_FALSE(formatWith(0).contains(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_FALSE(formatWith(0xFFFFFFFE).contains(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_TRUE(formatWith(0xFFFFFFFF).contains(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

TEST_F(ThumbnailTime, ProductWrapsAt32Bits) {
    openFile(thumbnailAt(5000, 30000, 1001).build());
    const MediaFormat format = formatWith(kExtensive);
    EXPECT_EQ(45436, format.getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_EQ(45436, format.getInt64(AMEDIAFORMAT_KEY_DURATION));
    EXPECT_THAT(log(), Contains(debug("getTrackMetaData(): Set thumbnail time 45436, index 5000")));
}

TEST_F(ThumbnailTime, WrappedProductIsNotTakenForNegative) {
    // 3 * 1000 * 1000000 is above 2^31.
    openFile(thumbnailAt(3, 1000, 1000).build());
    EXPECT_EQ(3000000, formatWith(kExtensive).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

TEST_F(ThumbnailTime, TrackWithoutARateHasNone) {
    openFile(thumbnailAt(3, 0, 1).build());
    const auto before = formatWith(0).getInt64(AMEDIAFORMAT_KEY_DURATION);
    const MediaFormat format = formatWith(kExtensive);
    EXPECT_FALSE(format.contains(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_EQ(before, format.getInt64(AMEDIAFORMAT_KEY_DURATION));
    EXPECT_EQ(0u, timesComputed());
}

TEST_F(ThumbnailTime, AudioTrackHasNone) {
    openFile(twoStreamFile().build());
    const auto before = formatWith(0, 1).getInt64(AMEDIAFORMAT_KEY_DURATION);
    const MediaFormat format = formatWith(kExtensive, 1);
    EXPECT_FALSE(format.contains(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_EQ(before, format.getInt64(AMEDIAFORMAT_KEY_DURATION));
    EXPECT_EQ(0u, timesComputed());
}

TEST_F(ThumbnailTime, EachTrackGetsItsOwn) {
    AviFile avi;
    const size_t first = avi.addStream(mjpegStream());
    const size_t second = avi.addStream(mjpegStream());
    avi.addChunk(first, patternBytes(20));
    avi.addChunk(second, patternBytes(20));
    avi.addChunk(second, patternBytes(24));
    openFile(avi.build());
    EXPECT_EQ(0, formatWith(kExtensive, 0).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_EQ(40000, formatWith(kExtensive, 1).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
    EXPECT_EQ(2u, timesComputed());
}

TEST_F(ThumbnailTime, BadVideoTrackStillCountsAsVideo) {
    AviFile avi = videoFile();
    avi.addStream(mjpegStream());  // without samples
    openFile(avi.build());
    EXPECT_EQ(0, formatWith(kExtensive, 1).getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

}  // namespace
}  // namespace avitest
