// SPDX-License-Identifier: Apache-2.0
//
// The plain function tables of extractor and track, called as the framework calls them.

#include <cstdlib>
#include <memory>

#include "service/BufferGroup.h"
#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::CMediaBuffer;
using android::CMediaExtractor;
using android::CMediaTrack;
using android::service::BufferGroup;
using android::service::BufferHandle;
using android::service::MediaFormat;
using android::service::MemorySource;
using android::service::PlainDataSource;

// Frees a table the way the framework does: the object through the table, then the record.
struct TableDeleter {
    template <typename Table>
    void operator()(Table* table) const {
        table->free(table->data);
        std::free(table);
    }
};
using ExtractorTable = std::unique_ptr<CMediaExtractor, TableDeleter>;
using TrackTable = std::unique_ptr<CMediaTrack, TableDeleter>;

class FunctionTables : public LoggedFixture {
  protected:
    FunctionTables() : mAvi(twoStreamFile()), mContent(mAvi.build()), mPlain(mContent) {
        float confidence = 0;
        const auto creator =
            pluginUnderTest().sniffer()(mPlain.get(), &confidence, nullptr, nullptr);
        mTable.reset(creator(mPlain.get(), nullptr));
    }

    TrackTable getTrack(size_t index) { return TrackTable(mTable->getTrack(mTable->data, index)); }

    AviFile mAvi;
    MemorySource mContent;
    PlainDataSource mPlain;
    ExtractorTable mTable;
};

TEST_F(FunctionTables, EveryExtractorEntryIsFilled) {
    EXPECT_NE(nullptr, mTable->data);
    EXPECT_NE(nullptr, mTable->free);
    EXPECT_NE(nullptr, mTable->countTracks);
    EXPECT_NE(nullptr, mTable->getTrack);
    EXPECT_NE(nullptr, mTable->getTrackMetaData);
    EXPECT_NE(nullptr, mTable->getMetaData);
    EXPECT_NE(nullptr, mTable->flags);
    EXPECT_NE(nullptr, mTable->setMediaCas);
    EXPECT_NE(nullptr, mTable->name);
}

TEST_F(FunctionTables, EveryTrackEntryIsFilled) {
    const TrackTable track = getTrack(0);
    EXPECT_NE(nullptr, track->data);
    EXPECT_NE(nullptr, track->free);
    EXPECT_NE(nullptr, track->start);
    EXPECT_NE(nullptr, track->stop);
    EXPECT_NE(nullptr, track->getFormat);
    EXPECT_NE(nullptr, track->read);
    EXPECT_NE(nullptr, track->supportsNonBlockingRead);
}

TEST_F(FunctionTables, CreatorIgnoresItsMeta) {
    float confidence = 0;
    const auto creator = pluginUnderTest().sniffer()(mPlain.get(), &confidence, nullptr, nullptr);
    const ExtractorTable table(creator(mPlain.get(), &confidence));
    EXPECT_EQ(2u, table->countTracks(table->data));
}

TEST_F(FunctionTables, CreatorReadsNothing) {
    EXPECT_EQ(1u, openCounted(mAvi.build()).callCount());  // the sniffer's
}

TEST_F(FunctionTables, CountTracks) {
    EXPECT_EQ(2u, mTable->countTracks(mTable->data));
}

TEST_F(FunctionTables, GetTrackOfNoTrackIsNull) {
    EXPECT_EQ(nullptr, getTrack(2));
}

TEST_F(FunctionTables, GetTrackGivesANewTableEachTime) {
    const TrackTable first = getTrack(0);
    const TrackTable second = getTrack(0);
    EXPECT_NE(first, second);
    EXPECT_NE(first->data, second->data);
}

TEST_F(FunctionTables, GetTrackMetaData) {
    MediaFormat format;
    EXPECT_EQ(AMEDIA_OK, mTable->getTrackMetaData(mTable->data, format.get(), 1, 0));
    EXPECT_EQ("audio/raw", format.getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(FunctionTables, GetTrackMetaDataOfNoTrackFails) {
    MediaFormat format;
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, mTable->getTrackMetaData(mTable->data, format.get(), 2, 0));
}

TEST_F(FunctionTables, GetTrackMetaDataWithoutAFormatGivesTheStatusOfTheCopy) {
    EXPECT_EQ(AMEDIA_ERROR_INVALID_PARAMETER,
              mTable->getTrackMetaData(mTable->data, nullptr, 0, 0));
}

TEST_F(FunctionTables, GetMetaData) {
    MediaFormat format;
    EXPECT_EQ(AMEDIA_OK, mTable->getMetaData(mTable->data, format.get()));
    EXPECT_EQ("video/avi", format.getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(FunctionTables, FlagsNameAndMediaCas) {
    EXPECT_EQ(255u, mTable->flags(mTable->data));
    EXPECT_STREQ("AVIExtractor", mTable->name(mTable->data));
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, mTable->setMediaCas(mTable->data, nullptr, 0));
}

TEST_F(FunctionTables, TrackGetFormat) {
    const TrackTable track = getTrack(0);
    MediaFormat format;
    EXPECT_EQ(AMEDIA_OK, track->getFormat(track->data, format.get()));
    EXPECT_EQ("video/x-motion-jpeg", format.getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(FunctionTables, TrackDoesNotSupportNonBlockingReads) {
    const TrackTable track = getTrack(0);
    EXPECT_FALSE(track->supportsNonBlockingRead(track->data));
}

TEST_F(FunctionTables, TrackReadHandsOutTheFrameworksBuffer) {
    BufferGroup group;
    const TrackTable track = getTrack(0);
    ASSERT_EQ(AMEDIA_OK, track->start(track->data, group.plain()));
    CMediaBuffer* buffer = nullptr;
    EXPECT_EQ(AMEDIA_OK, track->read(track->data, &buffer, 0, 0));
    const BufferHandle handle(buffer);
    ASSERT_TRUE(handle);
    EXPECT_EQ(mAvi.chunks(0)[0].data(), handle.bytes());
    EXPECT_EQ(AMEDIA_OK, track->stop(track->data));
}

TEST_F(FunctionTables, TrackReadThatFailsLeavesTheBufferPointerAlone) {
    BufferGroup group;
    const TrackTable track = getTrack(0);
    ASSERT_EQ(AMEDIA_OK, track->start(track->data, group.plain()));
    for (size_t i = 0; i < mAvi.chunks(0).size(); ++i) {
        CMediaBuffer* buffer = nullptr;
        ASSERT_EQ(AMEDIA_OK, track->read(track->data, &buffer, 0, 0));
        BufferHandle(buffer).release();
    }
    CMediaBuffer mine = {};
    CMediaBuffer* buffer = &mine;
    EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, track->read(track->data, &buffer, 0, 0));
    EXPECT_EQ(&mine, buffer);
    EXPECT_EQ(AMEDIA_OK, track->stop(track->data));
}

TEST_F(FunctionTables, TrackStartReplacesTheBufferGroup) {
    const TrackTable track = getTrack(0);
    {
        BufferGroup first;
        ASSERT_EQ(AMEDIA_OK, track->start(track->data, first.plain()));
        ASSERT_EQ(AMEDIA_OK, track->stop(track->data));
    }
    BufferGroup second;
    ASSERT_EQ(AMEDIA_OK, track->start(track->data, second.plain()));
    CMediaBuffer* buffer = nullptr;
    ASSERT_EQ(AMEDIA_OK, track->read(track->data, &buffer, 0, 0));
    EXPECT_EQ(1u, second.heldCount());
    BufferHandle(buffer).release();
    EXPECT_EQ(AMEDIA_OK, track->stop(track->data));
}

}  // namespace
}  // namespace avitest
