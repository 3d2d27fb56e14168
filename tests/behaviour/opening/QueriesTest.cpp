// SPDX-License-Identifier: Apache-2.0
//
// The extractor's queries on a file that parses, and what its destructor logs.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Extractor;
using android::service::FaultySource;
using android::service::MediaFormat;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class Queries : public LoggedFixture {};

TEST_F(Queries, CountTracks) {
    openFile(twoStreamFile().build());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(Queries, FirstQueryParsesWhicheverItIs) {
    openFile(twoStreamFile().build());
    EXPECT_NE(nullptr, extractor().track(1));

    openFile(twoStreamFile().build());
    EXPECT_EQ(AMEDIA_OK, extractor().trackMetaData(1).status);

    openFile(twoStreamFile().build());
    EXPECT_EQ(AMEDIA_OK, extractor().metaData().status);
}

TEST_F(Queries, FlagsNameAndMediaCasDoNotReadTheFile) {
    FaultySource& source = openCounted(twoStreamFile().build());
    source.reset();
    EXPECT_EQ(255u, extractor().flags());
    EXPECT_EQ("AVIExtractor", extractor().name());
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, extractor().setMediaCas(nullptr, 0));
    EXPECT_EQ(0u, source.callCount());
    EXPECT_EQ(0u, source.getSizeCount());
}

TEST_F(Queries, MediaCasWithATokenIsRefusedToo) {
    openFile(twoStreamFile().build());
    const uint8_t token[] = {1, 2, 3};
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, extractor().setMediaCas(token, sizeof(token)));
}

TEST_F(Queries, FlagsStayTheSameAfterTheParse) {
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_EQ(255u, extractor().flags());
}

TEST_F(Queries, FileFormatHasTheContainersMimeType) {
    openFile(twoStreamFile().build());
    EXPECT_EQ("video/avi", fileFormat().getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(Queries, TrackFormatsAreInStreamOrder) {
    openFile(twoStreamFile().build());
    EXPECT_EQ("video/x-motion-jpeg", trackFormat(0).getString(AMEDIAFORMAT_KEY_MIME));
    EXPECT_EQ("audio/raw", trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(Queries, TrackFormatIsACopy) {
    openFile(twoStreamFile().build());
    MediaFormat format = trackFormat(0);
    AMediaFormat_setString(format.get(), AMEDIAFORMAT_KEY_MIME, "video/changed");
    EXPECT_EQ("video/x-motion-jpeg", trackFormat(0).getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(Queries, CopyReplacesWhatTheFormatHeld) {
    openFile(twoStreamFile().build());
    MediaFormat format;
    AMediaFormat_setInt32(format.get(), "left-over", 1);
    const auto plain = extractor().plain();
    ASSERT_EQ(AMEDIA_OK, plain->getTrackMetaData(plain->data, format.get(), 0, 0));
    EXPECT_FALSE(format.contains("left-over"));
}

TEST_F(Queries, TrackFormatWithTheNumberOfTracksFails) {
    openFile(twoStreamFile().build());
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, extractor().trackMetaData(2).status);
    EXPECT_THAT(log(), Contains(error("getTrackMetaData(): error -2710 @line1713")));
    EXPECT_THAT(log(), Not(Contains(error("getTrackMetaData(): error -2710 @line1705"))));
}

TEST_F(Queries, TrackFormatBeyondTheNumberOfTracksFails) {
    openFile(twoStreamFile().build());
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, extractor().trackMetaData(3).status);
    EXPECT_THAT(log(), Contains(error("getTrackMetaData(): error -2710 @line1705")));
    EXPECT_THAT(log(), Not(Contains(error("getTrackMetaData(): error -2710 @line1713"))));
}

TEST_F(Queries, TrackFormatOfTheLargestIndexFails) {
    openFile(twoStreamFile().build());
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, extractor().trackMetaData(SIZE_MAX).status);
}

TEST_F(Queries, TrackBeyondTheNumberOfTracksIsNull) {
    openFile(twoStreamFile().build());
    for (size_t index : {size_t{2}, size_t{3}, SIZE_MAX}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(nullptr, extractor().track(index));
    }
}

TEST_F(Queries, OneTrackIsHandedOutSeveralTimes) {
    const AviFile avi = twoStreamFile();
    openFile(AviFile(avi).build());
    const auto first = track(0);
    const auto second = track(0);
    EXPECT_EQ(3u, readTrack(*first).samples.size());
    EXPECT_EQ(3u, readTrack(*second).samples.size());
}

class Destructor : public LoggedFixture {
  protected:
    // What the destructor of an extractor of this file logs, after `query`.
    template <typename Query>
    std::vector<LogLine> destroyAfter(Bytes file, Query query) {
        android::service::MemorySource source(std::move(file));
        auto opened = Extractor::open(pluginUnderTest(), source);
        if (opened == nullptr) return {};
        query(*opened);
        mLog.clear();
        opened.reset();
        return log();
    }
};

TEST_F(Destructor, LogsEveryTrackAndTheFileFormat) {
    std::string video;
    std::string audio;
    std::string file;
    const auto lines = destroyAfter(twoStreamFile().build(), [&](const Extractor& opened) {
        video = opened.trackMetaData(0).format.toString();
        audio = opened.trackMetaData(1).format.toString();
        file = opened.metaData().format.toString();
    });
    EXPECT_THAT(lines, ElementsAre(debug("delete track " + video), debug("delete track " + audio),
                                   error("delete file meta " + file)));
}

TEST_F(Destructor, OfAFileNobodyAskedAboutLogsTheEmptyFormat) {
    const auto lines = destroyAfter(twoStreamFile().build(), [](const Extractor&) {});
    EXPECT_THAT(lines, ElementsAre(error("delete file meta }")));
}

TEST_F(Destructor, FileFormatHasItsMimeTypeEvenIfTheParseFailed) {
    const Bytes empty = Chunk::list("AVI ", {}, "RIFF").toBytes();
    const auto lines =
        destroyAfter(empty, [](const Extractor& opened) { EXPECT_EQ(0u, opened.countTracks()); });
    EXPECT_THAT(lines, ElementsAre(error("delete file meta mime: string(video/avi)}")));
}

TEST_F(Destructor, TracksFoundBeforeAFailureAreFreedWithTheExtractor) {
    AviFile avi = twoStreamFile();
    avi.header.streams = 3;
    const auto lines = destroyAfter(
        avi.build(), [](const Extractor& opened) { EXPECT_EQ(0u, opened.countTracks()); });
    ASSERT_EQ(3u, lines.size());
    EXPECT_EQ(0u, lines[0].text.find("delete track "));
    EXPECT_EQ(0u, lines[1].text.find("delete track "));
}

}  // namespace
}  // namespace avitest
