// SPDX-License-Identifier: Apache-2.0
#include "service/Extractor.h"

#include <gtest/gtest.h>

#include "tests/unit/service/GoodPluginFixture.h"

namespace android::service {
namespace {

class ExtractorTest : public GoodPluginTest {
  protected:
    SniffResult sniff(const std::string& text) {
        MemorySource source(bytesOf(text));
        return Extractor::sniff(mPlugin, source);
    }
    MemorySource mGood{bytesOf("GOODab")};
};

TEST_F(ExtractorTest, SniffTellsTheConfidence) {
    const SniffResult result = sniff("GOOD");
    EXPECT_TRUE(result.claimed);
    EXPECT_EQ(0.75f, result.confidence);
}

TEST_F(ExtractorTest, SniffFreesWhatTheSnifferLeft) {
    sniff("GOOD");
    EXPECT_EQ(0, objects().metas);
}

TEST_F(ExtractorTest, SourceWithoutCreatorIsNotClaimed) {
    const SniffResult result = sniff("else");
    EXPECT_FALSE(result.claimed);
    EXPECT_EQ(0, result.confidence) << "a confidence without a creator does not count";
}

TEST_F(ExtractorTest, ConfidenceOfZeroIsNotClaimed) {
    EXPECT_FALSE(sniff("ZERO").claimed);
}

TEST_F(ExtractorTest, UnwrittenConfidenceIsAnError) {
    try {
        sniff("NOCO");
        FAIL() << "no error";
    } catch (const PluginError& error) {
        EXPECT_EQ(PluginError::Kind::kConfidence, error.kind());
    }
    EXPECT_EQ(0, objects().metas);
}

TEST_F(ExtractorTest, OpenWithUnwrittenConfidenceIsAnError) {
    MemorySource source(bytesOf("NOCO"));
    EXPECT_THROW(Extractor::open(mPlugin, source), PluginError);
}

TEST_F(ExtractorTest, OpenOfAnUnclaimedSourceIsNull) {
    MemorySource source(bytesOf("else"));
    EXPECT_EQ(nullptr, Extractor::open(mPlugin, source));
}

TEST_F(ExtractorTest, OpenWithConfidenceZeroIsNull) {
    MemorySource source(bytesOf("ZERO"));
    EXPECT_EQ(nullptr, Extractor::open(mPlugin, source));
    EXPECT_EQ(0, objects().metas);
}

TEST_F(ExtractorTest, OpenIsNullWhenTheCreatorGivesNone) {
    MemorySource source(bytesOf("NULL"));
    EXPECT_EQ(nullptr, Extractor::open(mPlugin, source));
    EXPECT_EQ(0, objects().metas);
}

TEST_F(ExtractorTest, OpenGivesAnExtractorAndItsConfidence) {
    auto extractor = Extractor::open(mPlugin, mGood);
    ASSERT_NE(nullptr, extractor);
    EXPECT_EQ(0.75f, extractor->confidence());
    EXPECT_EQ(1, objects().extractors);
    EXPECT_EQ(0, objects().metas) << "freed once the creator had it";
}

TEST_F(ExtractorTest, DestructionFreesThePluginsExtractor) {
    auto extractor = Extractor::open(mPlugin, mGood);
    extractor.reset();
    EXPECT_EQ(0, objects().extractors);
}

TEST_F(ExtractorTest, OneSourceMayBeOpenedTwice) {
    auto first = Extractor::open(mPlugin, mGood);
    auto second = Extractor::open(mPlugin, mGood);
    first.reset();
    EXPECT_EQ(1u, second->countTracks());
}

TEST_F(ExtractorTest, QueriesAreForwarded) {
    auto extractor = Extractor::open(mPlugin, mGood);
    EXPECT_EQ(1u, extractor->countTracks());
    EXPECT_EQ(12u, extractor->flags());
    EXPECT_EQ("GoodExtractor", extractor->name());
    const FormatResult result = extractor->metaData();
    EXPECT_EQ(AMEDIA_OK, result.status);
    EXPECT_EQ("test/container", result.format.getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(ExtractorTest, NullNameIsEmpty) {
    MemorySource source(bytesOf("GOOD"));
    EXPECT_EQ("", Extractor::open(mPlugin, source)->name());
}

TEST_F(ExtractorTest, TrackMetaDataComesWithItsStatus) {
    auto extractor = Extractor::open(mPlugin, mGood);
    const FormatResult found = extractor->trackMetaData(0);
    EXPECT_EQ(AMEDIA_OK, found.status);
    EXPECT_EQ(1, found.format.getInt32(AMEDIAFORMAT_KEY_TRACK_ID));
    const FormatResult missing = extractor->trackMetaData(1);
    EXPECT_EQ(AMEDIA_ERROR_INVALID_PARAMETER, missing.status);
    EXPECT_TRUE(missing.format.entries().empty());
}

TEST_F(ExtractorTest, TrackMetaDataPassesTheFlags) {
    auto extractor = Extractor::open(mPlugin, mGood);
    EXPECT_EQ(0, extractor->trackMetaData(0).format.getInt32("flags"));
    EXPECT_EQ(
        1,
        extractor->trackMetaData(0, Extractor::kIncludeExtensiveMetaData).format.getInt32("flags"));
}

TEST_F(ExtractorTest, MediaCasIsPassed) {
    auto extractor = Extractor::open(mPlugin, mGood);
    const uint8_t token[] = {'o', 'k', '?'};
    EXPECT_EQ(AMEDIA_OK, extractor->setMediaCas(token, 2));
    EXPECT_EQ(AMEDIA_ERROR_UNSUPPORTED, extractor->setMediaCas(token, 3));
}

TEST_F(ExtractorTest, TrackOutOfRangeIsNull) {
    auto extractor = Extractor::open(mPlugin, mGood);
    EXPECT_EQ(nullptr, extractor->track(1));
}

TEST_F(ExtractorTest, TrackIsFreedWithItsObject) {
    auto extractor = Extractor::open(mPlugin, mGood);
    auto track = extractor->track(0);
    ASSERT_NE(nullptr, track);
    EXPECT_EQ(1, objects().tracks);
    track.reset();
    EXPECT_EQ(0, objects().tracks);
    EXPECT_EQ(1, objects().extractors);
}

TEST_F(ExtractorTest, EveryCallGivesANewTrack) {
    auto extractor = Extractor::open(mPlugin, mGood);
    auto first = extractor->track(0);
    auto second = extractor->track(0);
    EXPECT_NE(first->plain(), second->plain());
    EXPECT_EQ(2, objects().tracks);
}

TEST_F(ExtractorTest, TrackKeepsThePluginsExtractorAlive) {
    auto extractor = Extractor::open(mPlugin, mGood);
    auto track = extractor->track(0);
    extractor.reset();
    EXPECT_EQ(1, objects().extractors);
    EXPECT_EQ(AMEDIA_OK, track->getFormat().status);
    track.reset();
    EXPECT_EQ(0, objects().extractors);
}

}  // namespace
}  // namespace android::service
