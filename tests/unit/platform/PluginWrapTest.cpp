// SPDX-License-Identifier: Apache-2.0
//
// wrap(): a plug-in's tracks and extractor seen through their records.

#include <gtest/gtest.h>
#include <media/MediaExtractorPluginHelper.h>
#include <stdlib.h>

#include "tests/unit/platform/FakeBuffers.h"

namespace android {

namespace {

// Answers what the test sets and keeps what it was asked.
class FakeTrack : public MediaTrackHelper {
  public:
    explicit FakeTrack(bool* deleted) : mDeleted(deleted) {}
    ~FakeTrack() override { *mDeleted = true; }

    media_status_t start() override {
        mGroupAtStart = mBufferGroup;
        return AMEDIA_ERROR_IO;
    }
    media_status_t stop() override { return AMEDIA_ERROR_UNSUPPORTED; }
    media_status_t getFormat(AMediaFormat* format) override {
        mFormat = format;
        return AMEDIA_ERROR_MALFORMED;
    }
    media_status_t read(MediaBufferHelper** buffer, const ReadOptions* options) override {
        mSeeks = options->getSeekTo(&mSeekUs, &mMode);
        mNonBlocking = options->getNonBlocking();
        if (mGivesBuffer) mBufferGroup->acquire_buffer(buffer);
        return mReadStatus;
    }

    MediaBufferGroupHelper* mGroupAtStart = nullptr;
    AMediaFormat* mFormat = nullptr;
    bool mSeeks = false;
    int64_t mSeekUs = 0;
    ReadOptions::SeekMode mMode = ReadOptions::SEEK_PREVIOUS_SYNC;
    bool mNonBlocking = false;
    bool mGivesBuffer = true;
    media_status_t mReadStatus = AMEDIA_OK;

  private:
    bool* mDeleted = nullptr;
};

class WrappedTrack : public ::testing::Test {
  protected:
    void TearDown() override {
        mRecord->free(mRecord->data);
        free(mRecord);
        EXPECT_TRUE(mDeleted) << "free must delete the track";
    }

    void start() { mRecord->start(mRecord->data, &mGroup.mRecord); }

    media_status_t read(uint32_t options = 0, int64_t seekPosUs = 0) {
        return mRecord->read(mRecord->data, &mBuffer, options, seekPosUs);
    }

    bool mDeleted = false;
    FakeBufferGroup mGroup;
    CMediaBuffer mUntouched = {};
    CMediaBuffer* mBuffer = &mUntouched;
    FakeTrack* mTrack = new FakeTrack(&mDeleted);
    CMediaTrack* mRecord = wrap(mTrack);
};

TEST(Wrap, NullTrackGivesNull) {
    EXPECT_EQ(nullptr, wrap(static_cast<MediaTrackHelper*>(nullptr)));
}

TEST_F(WrappedTrack, StartGivesTheGroupBeforeStarting) {
    EXPECT_EQ(AMEDIA_ERROR_IO, mRecord->start(mRecord->data, &mGroup.mRecord));
    ASSERT_NE(nullptr, mTrack->mGroupAtStart);
    mTrack->mGroupAtStart->add_buffer(321);
    EXPECT_EQ(321u, mGroup.mAddedSize);
}

TEST_F(WrappedTrack, SecondStartUsesTheNewGroup) {
    start();
    FakeBufferGroup second;
    mRecord->start(mRecord->data, &second.mRecord);
    EXPECT_EQ(AMEDIA_OK, read());
    EXPECT_EQ(&second.mBuffers[0].mRecord, mBuffer);
}

TEST_F(WrappedTrack, StopAndGetFormatForward) {
    AMediaFormat* format = AMediaFormat_new();
    EXPECT_EQ(AMEDIA_ERROR_UNSUPPORTED, mRecord->stop(mRecord->data));
    EXPECT_EQ(AMEDIA_ERROR_MALFORMED, mRecord->getFormat(mRecord->data, format));
    EXPECT_EQ(format, mTrack->mFormat);
    AMediaFormat_delete(format);
}

TEST_F(WrappedTrack, ReadsAreBlockingUnlessTheTrackSaysOtherwise) {
    EXPECT_FALSE(mRecord->supportsNonBlockingRead(mRecord->data));
}

TEST_F(WrappedTrack, ReadGivesTheFrameworksBuffer) {
    start();
    EXPECT_EQ(AMEDIA_OK, read());
    EXPECT_EQ(&mGroup.mBuffers[0].mRecord, mBuffer);
    EXPECT_EQ(AMEDIA_OK, read());
    EXPECT_EQ(&mGroup.mBuffers[1].mRecord, mBuffer);
}

TEST_F(WrappedTrack, ReadBuildsOptionsFromBitsAndPosition) {
    start();
    read(CMediaTrackReadOptions::SEEK | CMediaTrackReadOptions::SEEK_CLOSEST, 123456);
    EXPECT_TRUE(mTrack->mSeeks);
    EXPECT_EQ(123456, mTrack->mSeekUs);
    EXPECT_EQ(MediaTrackHelper::ReadOptions::SEEK_CLOSEST, mTrack->mMode);
    EXPECT_FALSE(mTrack->mNonBlocking);
    read(CMediaTrackReadOptions::NONBLOCKING, 0);
    EXPECT_FALSE(mTrack->mSeeks);
    EXPECT_TRUE(mTrack->mNonBlocking);
}

TEST_F(WrappedTrack, FailedReadLeavesTheBufferPointer) {
    start();
    mTrack->mReadStatus = AMEDIA_ERROR_END_OF_STREAM;
    EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, read());
    EXPECT_EQ(&mUntouched, mBuffer);
}

TEST_F(WrappedTrack, ReadWithoutABufferLeavesTheBufferPointer) {
    start();
    mTrack->mGivesBuffer = false;
    EXPECT_EQ(AMEDIA_OK, read());
    EXPECT_EQ(&mUntouched, mBuffer);
}

// Overrides what an extractor must; with tracks 0 and 1.
class FakeExtractor : public MediaExtractorPluginHelper {
  public:
    explicit FakeExtractor(bool* deleted) : mDeleted(deleted) {}
    ~FakeExtractor() override { *mDeleted = true; }

    size_t countTracks() override { return 2; }
    MediaTrackHelper* getTrack(size_t index) override {
        return index < 2 ? new FakeTrack(&mTrackDeleted) : nullptr;
    }
    media_status_t getTrackMetaData(AMediaFormat* meta, size_t index, uint32_t flags) override {
        mMeta = meta;
        mIndex = index;
        mFlags = flags;
        return AMEDIA_ERROR_IO;
    }
    media_status_t getMetaData(AMediaFormat* meta) override {
        mMeta = meta;
        return AMEDIA_ERROR_MALFORMED;
    }

    bool mTrackDeleted = false;
    AMediaFormat* mMeta = nullptr;
    size_t mIndex = 0;
    uint32_t mFlags = 0;

  private:
    bool* mDeleted = nullptr;
};

// Also overrides what an extractor may.
class FakeNamedExtractor : public FakeExtractor {
  public:
    using FakeExtractor::FakeExtractor;

    uint32_t flags() const override { return CAN_PAUSE; }
    media_status_t setMediaCas(const uint8_t* casToken, size_t size) override {
        mCasToken = casToken;
        mCasSize = size;
        return AMEDIA_OK;
    }
    const char* name() override { return "named"; }

    const uint8_t* mCasToken = nullptr;
    size_t mCasSize = 0;
};

template <typename Extractor>
class WrappedExtractorOf : public ::testing::Test {
  protected:
    void TearDown() override {
        mRecord->free(mRecord->data);
        free(mRecord);
        EXPECT_TRUE(mDeleted) << "free must delete the extractor";
    }

    bool mDeleted = false;
    Extractor* mExtractor = new Extractor(&mDeleted);
    CMediaExtractor* mRecord = wrap(mExtractor);
};

using WrappedExtractor = WrappedExtractorOf<FakeExtractor>;
using WrappedNamedExtractor = WrappedExtractorOf<FakeNamedExtractor>;

TEST_F(WrappedExtractor, CountsTracks) {
    EXPECT_EQ(2u, mRecord->countTracks(mRecord->data));
}

TEST_F(WrappedExtractor, GetTrackGivesAWrappedTrack) {
    CMediaTrack* track = mRecord->getTrack(mRecord->data, 1);
    ASSERT_NE(nullptr, track);
    EXPECT_EQ(AMEDIA_ERROR_UNSUPPORTED, track->stop(track->data));
    track->free(track->data);
    free(track);
    EXPECT_TRUE(mExtractor->mTrackDeleted);
}

TEST_F(WrappedExtractor, NoTrackGivesNull) {
    EXPECT_EQ(nullptr, mRecord->getTrack(mRecord->data, 2));
}

TEST_F(WrappedExtractor, MetaDataCallsForward) {
    AMediaFormat* meta = AMediaFormat_new();
    EXPECT_EQ(AMEDIA_ERROR_MALFORMED, mRecord->getMetaData(mRecord->data, meta));
    EXPECT_EQ(meta, mExtractor->mMeta);
    EXPECT_EQ(AMEDIA_ERROR_IO,
              mRecord->getTrackMetaData(mRecord->data, nullptr, 7,
                                        MediaExtractorPluginHelper::kIncludeExtensiveMetaData));
    EXPECT_EQ(nullptr, mExtractor->mMeta);
    EXPECT_EQ(7u, mExtractor->mIndex);
    EXPECT_EQ(1u, mExtractor->mFlags);
    AMediaFormat_delete(meta);
}

TEST_F(WrappedExtractor, EverythingIsSeekableByDefault) {
    EXPECT_EQ(15u, mRecord->flags(mRecord->data));
}

TEST_F(WrappedExtractor, DescramblingIsRefusedByDefault) {
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, mRecord->setMediaCas(mRecord->data, nullptr, 0));
}

TEST_F(WrappedExtractor, NameIsUnspecifiedByDefault) {
    EXPECT_STREQ("<unspecified>", mRecord->name(mRecord->data));
}

TEST_F(WrappedNamedExtractor, OverriddenOperationsAreReached) {
    const uint8_t token[3] = {};
    EXPECT_EQ(4u, mRecord->flags(mRecord->data));
    EXPECT_STREQ("named", mRecord->name(mRecord->data));
    EXPECT_EQ(AMEDIA_OK, mRecord->setMediaCas(mRecord->data, token, sizeof(token)));
    EXPECT_EQ(token, mExtractor->mCasToken);
    EXPECT_EQ(3u, mExtractor->mCasSize);
}

TEST(ExtractorFlags, HaveThePublishedBits) {
    EXPECT_EQ(1, MediaExtractorPluginHelper::CAN_SEEK_BACKWARD);
    EXPECT_EQ(2, MediaExtractorPluginHelper::CAN_SEEK_FORWARD);
    EXPECT_EQ(4, MediaExtractorPluginHelper::CAN_PAUSE);
    EXPECT_EQ(8, MediaExtractorPluginHelper::CAN_SEEK);
}

}  // namespace

}  // namespace android
