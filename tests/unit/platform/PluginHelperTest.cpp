// SPDX-License-Identifier: Apache-2.0
//
// The helpers that call the framework's records, the read options and UUID().

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <media/MediaExtractorPluginHelper.h>
#include <stddef.h>

#include "tests/unit/platform/FakeBuffers.h"

namespace android {

namespace {

using ReadOptions = MediaTrackHelper::ReadOptions;

class DataSource : public ::testing::Test {
  protected:
    static DataSource* self(void* handle) { return static_cast<DataSource*>(handle); }

    off64_t mOffset = 0;
    void* mData = nullptr;
    size_t mSize = 0;
    CDataSource mRecord = {
        [](void* handle, off64_t offset, void* data, size_t size) -> ssize_t {
            self(handle)->mOffset = offset;
            self(handle)->mData = data;
            self(handle)->mSize = size;
            return -5;
        },
        [](void*, off64_t* size) -> status_t {
            *size = off64_t{1} << 40;
            return -6;
        },
        [](void*) -> uint32_t { return 0x80000001; },
        nullptr,
        this,
    };
    DataSourceHelper mHelper{&mRecord};
};

TEST_F(DataSource, ReadAtForwardsArgumentsAndAnswer) {
    char byte = 0;
    EXPECT_EQ(-5, mHelper.readAt(off64_t{1} << 33, &byte, 77));
    EXPECT_EQ(off64_t{1} << 33, mOffset);
    EXPECT_EQ(&byte, mData);
    EXPECT_EQ(77u, mSize);
}

TEST_F(DataSource, GetSizeForwardsValueAndStatus) {
    off64_t size = 0;
    EXPECT_EQ(-6, mHelper.getSize(&size));
    EXPECT_EQ(off64_t{1} << 40, size);
}

TEST_F(DataSource, FlagsAreForwarded) {
    EXPECT_EQ(0x80000001, mHelper.flags());
}

TEST_F(DataSource, CanBeReplacedBySubclass) {
    class Empty : public DataSourceHelper {
      public:
        using DataSourceHelper::DataSourceHelper;
        ssize_t readAt(off64_t, void*, size_t) override { return 0; }
    };
    Empty empty(&mRecord);
    DataSourceHelper& helper = empty;
    EXPECT_EQ(0, helper.readAt(1, nullptr, 1));
    EXPECT_EQ(0u, mSize) << "the record is not asked";
}

class BufferGroup : public ::testing::Test {
  protected:
    MediaBufferHelper* acquire() {
        MediaBufferHelper* buffer = nullptr;
        EXPECT_EQ(AMEDIA_OK, mHelper.acquire_buffer(&buffer));
        return buffer;
    }

    FakeBufferGroup mGroup;
    MediaBufferGroupHelper mHelper{&mGroup.mRecord};
};

TEST_F(BufferGroup, InitForwardsWithoutGrowthByDefault) {
    EXPECT_TRUE(mHelper.init(3, 1000));
    EXPECT_EQ(3u, mGroup.mInitBuffers);
    EXPECT_EQ(1000u, mGroup.mInitSize);
    EXPECT_EQ(0u, mGroup.mInitGrowthLimit);
}

TEST_F(BufferGroup, InitForwardsTheGrowthLimit) {
    EXPECT_TRUE(mHelper.init(3, 1000, 8));
    EXPECT_EQ(8u, mGroup.mInitGrowthLimit);
}

TEST_F(BufferGroup, AddBufferForwardsTheSize) {
    mHelper.add_buffer(123);
    EXPECT_EQ(123u, mGroup.mAddedSize);
}

TEST_F(BufferGroup, HasBuffersIsForwarded) {
    EXPECT_FALSE(mHelper.has_buffers());
    mHelper.init(1, 1);
    EXPECT_TRUE(mHelper.has_buffers());
}

TEST_F(BufferGroup, AcquireBlocksForAnySizeByDefault) {
    acquire();
    EXPECT_FALSE(mGroup.mNonBlocking);
    EXPECT_EQ(0u, mGroup.mRequestedSize);
}

TEST_F(BufferGroup, AcquireForwardsItsArguments) {
    MediaBufferHelper* buffer = nullptr;
    EXPECT_EQ(AMEDIA_OK, mHelper.acquire_buffer(&buffer, true, 4000));
    EXPECT_TRUE(mGroup.mNonBlocking);
    EXPECT_EQ(4000u, mGroup.mRequestedSize);
}

TEST_F(BufferGroup, FailedAcquireGivesNullAndItsStatus) {
    mGroup.mAcquireStatus = AMEDIA_ERROR_UNKNOWN;
    MediaBufferHelper stale(nullptr);
    MediaBufferHelper* buffer = &stale;
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, mHelper.acquire_buffer(&buffer, true));
    EXPECT_EQ(nullptr, buffer);
}

TEST_F(BufferGroup, EachBufferHasOneHelperThatIsReused) {
    MediaBufferHelper* first = acquire();
    MediaBufferHelper* second = acquire();
    EXPECT_NE(first, second);
    first->release();
    second->release();
    EXPECT_EQ(first, acquire());
    EXPECT_EQ(second, acquire());
}

TEST_F(BufferGroup, ReleaseGoesToTheBufferAndKeepsTheHelper) {
    MediaBufferHelper* buffer = acquire();
    buffer->release();
    EXPECT_EQ(1, mGroup.mBuffers[0].mReleases);
    EXPECT_EQ(0, mGroup.mBuffers[1].mReleases);
    EXPECT_EQ(mGroup.mBuffers[0].mBytes, buffer->data());
}

TEST_F(BufferGroup, BufferOperationsAreForwarded) {
    MediaBufferHelper* buffer = acquire();
    EXPECT_EQ(mGroup.mBuffers[0].mBytes, buffer->data());
    EXPECT_EQ(FakeBuffer::kSize, buffer->size());
    EXPECT_EQ(mGroup.mBuffers[0].mFormat, buffer->meta_data());
    buffer->set_range(3, 5);
    EXPECT_EQ(3u, mGroup.mBuffers[0].mOffset);
    EXPECT_EQ(3u, buffer->range_offset());
    EXPECT_EQ(5u, buffer->range_length());
}

TEST(BufferGroupHelper, DestructorReleasesNoBuffer) {
    FakeBufferGroup group;
    {
        MediaBufferGroupHelper helper(&group.mRecord);
        MediaBufferHelper* buffer = nullptr;
        ASSERT_EQ(AMEDIA_OK, helper.acquire_buffer(&buffer));
    }
    EXPECT_EQ(0, group.mBuffers[0].mReleases);
}

TEST(TrackReadOptions, NoSeekBitMeansNoSeek) {
    int64_t timeUs = 55;
    ReadOptions::SeekMode mode = ReadOptions::SEEK_CLOSEST;
    EXPECT_FALSE(
        ReadOptions(CMediaTrackReadOptions::SEEK_NEXT_SYNC, 1000).getSeekTo(&timeUs, &mode));
    EXPECT_EQ(55, timeUs);
    EXPECT_EQ(ReadOptions::SEEK_CLOSEST, mode);
}

TEST(TrackReadOptions, SeekModeIsTheLowThreeBits) {
    for (uint32_t bits = 0; bits < 8; ++bits) {
        int64_t timeUs = 0;
        ReadOptions::SeekMode mode = ReadOptions::SEEK_PREVIOUS_SYNC;
        const uint32_t others = CMediaTrackReadOptions::SEEK | CMediaTrackReadOptions::NONBLOCKING;
        EXPECT_TRUE(ReadOptions(bits | others, 1000).getSeekTo(&timeUs, &mode));
        EXPECT_EQ(bits, static_cast<uint32_t>(mode));
    }
}

TEST(TrackReadOptions, SeekTimeIsPassedUnchanged) {
    for (int64_t position : {INT64_MIN, int64_t{-1}, int64_t{0}, INT64_MAX}) {
        int64_t timeUs = 55;
        ReadOptions::SeekMode mode = ReadOptions::SEEK_CLOSEST;
        EXPECT_TRUE(ReadOptions(CMediaTrackReadOptions::SEEK, position).getSeekTo(&timeUs, &mode));
        EXPECT_EQ(position, timeUs);
    }
}

TEST(TrackReadOptions, SeekModesMatchTheBits) {
    EXPECT_EQ(0, ReadOptions::SEEK_PREVIOUS_SYNC);
    EXPECT_EQ(1, ReadOptions::SEEK_NEXT_SYNC);
    EXPECT_EQ(2, ReadOptions::SEEK_CLOSEST_SYNC);
    EXPECT_EQ(3, ReadOptions::SEEK_CLOSEST);
    EXPECT_EQ(4, ReadOptions::SEEK_FRAME_INDEX);
}

TEST(TrackReadOptions, BitsHaveTheirPublishedValues) {
    EXPECT_EQ(0u, CMediaTrackReadOptions::SEEK_PREVIOUS_SYNC);
    EXPECT_EQ(1u, CMediaTrackReadOptions::SEEK_NEXT_SYNC);
    EXPECT_EQ(2u, CMediaTrackReadOptions::SEEK_CLOSEST_SYNC);
    EXPECT_EQ(3u, CMediaTrackReadOptions::SEEK_CLOSEST);
    EXPECT_EQ(4u, CMediaTrackReadOptions::SEEK_FRAME_INDEX);
    EXPECT_EQ(8u, CMediaTrackReadOptions::SEEK);
    EXPECT_EQ(16u, CMediaTrackReadOptions::NONBLOCKING);
}

TEST(TrackReadOptions, NonBlockingIsItsOwnBit) {
    EXPECT_TRUE(ReadOptions(CMediaTrackReadOptions::NONBLOCKING, 0).getNonBlocking());
    EXPECT_FALSE(ReadOptions(~uint32_t{CMediaTrackReadOptions::NONBLOCKING}, 0).getNonBlocking());
}

TEST(Uuid, BytesFollowTheText) {
    constexpr media_uuid_t uuid = UUID("01234567-89ab-CDEF-fedc-ba9876543210");
    EXPECT_THAT(uuid.b, ::testing::ElementsAre(0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef, 0xfe,
                                               0xdc, 0xba, 0x98, 0x76, 0x54, 0x32, 0x10));
}

TEST(Uuid, IsSixteenPlainBytes) {
    EXPECT_EQ(16u, sizeof(media_uuid_t));
    EXPECT_EQ(1u, alignof(media_uuid_t));
}

TEST(PluginDefinition, VersionsHaveThePublishedNumbers) {
    EXPECT_EQ(2u, EXTRACTORDEF_VERSION_NDK_V1);
    EXPECT_EQ(3u, EXTRACTORDEF_VERSION_NDK_V2);
}

TEST(PluginDefinition, FieldsLieInTheOrderOfTheBinaryInterface) {
    EXPECT_EQ(0u, offsetof(ExtractorDef, def_version));
    EXPECT_EQ(4u, offsetof(ExtractorDef, extractor_uuid));
    EXPECT_EQ(20u, offsetof(ExtractorDef, extractor_version));
    EXPECT_EQ(24u, offsetof(ExtractorDef, extractor_name));
    EXPECT_EQ(32u, offsetof(ExtractorDef, u.v2.sniff));
    EXPECT_EQ(32u, offsetof(ExtractorDef, u.v3.sniff));
    EXPECT_EQ(40u, offsetof(ExtractorDef, u.v3.supported_types));
    EXPECT_EQ(48u, sizeof(ExtractorDef));
}

}  // namespace

}  // namespace android
