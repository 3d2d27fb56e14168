// SPDX-License-Identifier: Apache-2.0
//
// The outcome of the parse: what is remembered, what is tried again, how each query reports it.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::DataSource;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using android::service::Track;
using ::testing::Contains;
using ::testing::Not;

// Read 0 is the sniffer's, read 1 the first of the parse.
constexpr uint64_t kFirstParseRead = 1;

class ParseCache : public LoggedFixture {
  protected:
    // A file without a movi list: it parses to its end and fails there.
    static Bytes fileWithoutMovi() {
        AviFile avi = twoStreamFile();
        avi.segment().edit = [](Chunk& riff) { riff.children.resize(1); };
        return avi.build();
    }

    void queryAll() {
        countTracks();
        extractor().track(0);
        extractor().trackMetaData(0);
        extractor().metaData();
    }
};

TEST_F(ParseCache, SuccessIsRemembered) {
    FaultySource& source = openCounted(twoStreamFile().build());
    countTracks();
    source.reset();
    queryAll();
    EXPECT_EQ(0u, source.callCount());
    EXPECT_EQ(0u, source.getSizeCount());
}

TEST_F(ParseCache, RememberedSuccessIsNotLogged) {
    openFile(twoStreamFile().build());
    queryAll();
    EXPECT_EQ(0u, mLog.count("mInitCheck"));
}

TEST_F(ParseCache, FailureIsRememberedWithoutReadingAgain) {
    FaultySource& source = openCounted(fileWithoutMovi());
    EXPECT_EQ(0u, countTracks());
    source.reset();
    queryAll();
    EXPECT_EQ(0u, source.callCount());
    EXPECT_EQ(0u, source.getSizeCount());
}

TEST_F(ParseCache, FailureIsLoggedOnceByTheParse) {
    openFile(fileWithoutMovi());
    queryAll();
    EXPECT_EQ(1u, mLog.count("readMetaData(): error(-1007) happens when parse file!"));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1007) happens when parse file!")));
}

TEST_F(ParseCache, RememberedFailureIsLoggedByEveryLaterQuery) {
    openFile(fileWithoutMovi());
    countTracks();
    EXPECT_THAT(log(), Not(Contains(error("readMetaData(): mInitCheck = -1007."))));
    queryAll();
    EXPECT_EQ(4u, mLog.count("readMetaData(): mInitCheck = -1007."));
    EXPECT_THAT(log(), Contains(error("readMetaData(): mInitCheck = -1007.")));
}

TEST_F(ParseCache, CountTracksLogsTheFailureEachTime) {
    openFile(fileWithoutMovi());
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(2u, mLog.count("countTracks(): readMetaData() failed, err = -1007!"));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1007!")));
}

TEST_F(ParseCache, TrackOfAFileThatFailedIsNull) {
    openFile(fileWithoutMovi());
    EXPECT_EQ(nullptr, extractor().track(0));
}

TEST_F(ParseCache, TrackFormatOfAFileThatFailedIsAnUnknownError) {
    openFile(fileWithoutMovi());
    const auto result = extractor().trackMetaData(0);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, result.status);
    EXPECT_TRUE(result.format.entries().empty());
    EXPECT_THAT(log(), Contains(error("getTrackMetaData(): error -2710 @line1699")));
}

TEST_F(ParseCache, FileFormatOfAFileThatFailedIsAnUnknownError) {
    openFile(fileWithoutMovi());
    const auto result = extractor().metaData();
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, result.status);
    EXPECT_TRUE(result.format.entries().empty());
    EXPECT_THAT(log(), Contains(error("getMetaData(): error -2710 @line1670")));
}

TEST_F(ParseCache, FirstHeaderIsLogged) {
    const Bytes file = twoStreamFile().build();
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(debug(format("readMetaData(): ID 46464952, size %zX, type 20495641 "
                                             "@L4403",
                                             file.size() - 8))));
}

TEST_F(ParseCache, FileSizeIsLogged) {
    const Bytes file = twoStreamFile().build();
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(Text(format("readMetaData(): mFileSize: %zu.", file.size()))));
}

TEST_F(ParseCache, UnreadableFirstHeaderIsAnIoError) {
    openCounted(twoStreamFile().build()).inject(Fault::error(-EIO).onCall(kFirstParseRead));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error -3EC @line4399")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1004!")));
}

TEST_F(ParseCache, FirstHeaderCutShortIsAnIoError) {
    openCounted(twoStreamFile().build()).inject(Fault::shortRead(11).onCall(kFirstParseRead));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error -3EC @line4399")));
}

TEST_F(ParseCache, UnreadableFirstHeaderIsTriedAgain) {
    FaultySource& source = openCounted(twoStreamFile().build());
    source.inject(Fault::error(-EIO).onCall(kFirstParseRead));
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(2u, countTracks());
    EXPECT_THAT(log(), Not(Contains(Text("readMetaData(): mInitCheck = -1004."))));
}

TEST_F(ParseCache, EachQueryTriesTheFirstHeaderOnce) {
    FaultySource& source = openCounted(twoStreamFile().build());
    source.inject(Fault::error(-EIO));
    source.reset();
    queryAll();
    EXPECT_EQ(4u, source.callCount());
    EXPECT_EQ(0u, source.getSizeCount());
}

// Shows one content to the sniffer and, until it is mended, another to the parser.
class SwappedSource : public DataSource {
  public:
    SwappedSource(const Bytes& sniffed, const Bytes& parsed) : mSniffed(sniffed), mParsed(parsed) {}
    void mend() { mBroken = false; }

    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        const bool first = mReads++ == 0;
        return (first || !mBroken ? mSniffed : mParsed).readAt(offset, data, size);
    }
    android::status_t getSize(off64_t* size) override { return mSniffed.getSize(size); }

  private:
    MemorySource mSniffed;
    MemorySource mParsed;
    bool mBroken = true;
    int mReads = 0;
};

class NoRiff : public ParseCache {
  protected:
    NoRiff() { openSource(mSource); }
    ~NoRiff() override { openFile(twoStreamFile().build()); }  // lets go of mSource

    SwappedSource mSource{twoStreamFile().build(), Chunk::list("AVI ", {}, "RIFX").toBytes()};
};

TEST_F(NoRiff, IsUnsupported) {
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error -3F2 @line4406")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1010!")));
}

TEST_F(NoRiff, HeaderIsLoggedBeforeItIsRefused) {
    countTracks();
    EXPECT_THAT(log(),
                Contains(debug("readMetaData(): ID 58464952, size 4, type 20495641 @L4403")));
}

TEST_F(NoRiff, IsTriedAgain) {
    EXPECT_EQ(0u, countTracks());
    mSource.mend();
    EXPECT_EQ(2u, countTracks());
}

TEST_F(ParseCache, FileOfUnknownSizeHasNoMovi) {
    FaultySource& source = openCounted(twoStreamFile().build());
    source.failGetSize(android::UNKNOWN_ERROR);
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3EF @line4208")));
}

}  // namespace
}  // namespace avitest
