// SPDX-License-Identifier: Apache-2.0
//
// The list of RIFF chunks at the top level of a file, as its log lines tell it.

#include <cstring>

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::DataSource;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using ::testing::Contains;
using ::testing::Not;

// Reads 0 and 1 are the sniffer's and the parser's look at the first header.
constexpr uint64_t kFirstListingRead = 2;

class RiffListing : public LoggedFixture {
  protected:
    size_t riffsListed() const { return mLog.count("readMetaData(): RIFF"); }

    static std::string entry(size_t number, uint64_t size, uint64_t position) {
        return format("readMetaData(): RIFF%zu size %llu(%llX) @%llX(%llu)", number,
                      static_cast<unsigned long long>(size), static_cast<unsigned long long>(size),
                      static_cast<unsigned long long>(position),
                      static_cast<unsigned long long>(position));
    }
};

// An extension RIFF without content, 12 bytes.
Bytes emptyRiff() {
    return Chunk::list("AVIX", {}, "RIFF").toBytes();
}

TEST_F(RiffListing, OneRiffIsListedWithItsSizeAndPlace) {
    const Bytes file = videoFile().build();
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(Text(entry(0, file.size() - 8, 0))));
    EXPECT_EQ(1u, riffsListed());
}

TEST_F(RiffListing, EndsQuietlyAtTheEndOfTheFile) {
    openFile(videoFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("No more riff."));
}

TEST_F(RiffListing, EndsQuietlyBehindTheEndOfTheFile) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0x3FFFFFFF;
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(1u, riffsListed());
    EXPECT_EQ(0u, mLog.count("No more riff."));
}

TEST_F(RiffListing, StrayTailBytesEndItWithAWarning) {
    AviFile avi = videoFile();
    avi.trailing = Bytes(5, 0xEE);
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(warning("No more riff.")));
}

TEST_F(RiffListing, UpToElevenTailBytesAreNotRead) {
    for (size_t count = 1; count <= 11; ++count) {
        SCOPED_TRACE(count);
        AviFile avi = videoFile();
        avi.trailing = Bytes(count, 0xEE);
        openFile(avi.build());
        EXPECT_EQ(1u, countTracks());
        EXPECT_EQ(1u, mLog.count("No more riff."));
        mLog.clear();
    }
}

TEST_F(RiffListing, TwelveTailBytesAreTakenForAChunk) {
    AviFile avi = videoFile();
    avi.trailing = Bytes(12, 0);  // a chunk of size 0, then 4 bytes
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(1u, riffsListed());
    EXPECT_THAT(log(), Contains(warning("No more riff.")));
}

TEST_F(RiffListing, FurtherRiffsFollowInFileOrder) {
    AviFile avi = videoFile();
    avi.trailing = ByteWriter().bytes(emptyRiff()).bytes(emptyRiff()).take();
    const Bytes file = avi.build();
    openFile(file);
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(Text(entry(1, 4, file.size() - 24))));
    EXPECT_THAT(log(), Contains(Text(entry(2, 4, file.size() - 12))));
    EXPECT_EQ(3u, riffsListed());
}

TEST_F(RiffListing, RiffOfExactlyTheLastTwelveBytesIsListed) {
    AviFile avi = videoFile();
    avi.trailing = emptyRiff();
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(2u, riffsListed());
    EXPECT_EQ(0u, mLog.count("No more riff."));
}

TEST_F(RiffListing, OtherChunksAreSteppedOver) {
    AviFile avi = videoFile();
    avi.trailing = ByteWriter().bytes(Chunk("JUNK", Bytes(30)).toBytes()).bytes(emptyRiff()).take();
    const Bytes file = avi.build();
    openFile(file);
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(Text(entry(1, 4, file.size() - 12))));
    EXPECT_EQ(2u, riffsListed());
}

TEST_F(RiffListing, OddChunkHasNoPadByte) {
    AviFile avi = videoFile();
    avi.trailing =
        ByteWriter().bytes(Chunk("JUNK", Bytes(3)).unpadded().toBytes()).bytes(emptyRiff()).take();
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(2u, riffsListed());
}

TEST_F(RiffListing, RiffBehindAPadByteIsMissed) {
    AviFile avi = videoFile();
    avi.trailing = ByteWriter().bytes(Chunk("JUNK", Bytes(3)).toBytes()).bytes(emptyRiff()).take();
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(1u, riffsListed());
}

TEST_F(RiffListing, ReadsTwelveBytesAChunk) {
    AviFile avi = videoFile();
    avi.trailing = emptyRiff();
    const Bytes file = avi.build();
    FaultySource& source = openCounted(file);
    countTracks();
    const auto calls = source.calls();
    ASSERT_LT(kFirstListingRead + 1, calls.size());
    EXPECT_EQ(0, calls[kFirstListingRead].offset);
    EXPECT_EQ(12u, calls[kFirstListingRead].size);
    EXPECT_EQ(static_cast<off64_t>(file.size() - 12), calls[kFirstListingRead + 1].offset);
    EXPECT_EQ(12u, calls[kFirstListingRead + 1].size);
}

// A file of several GiB: its beginning, zeros, and an empty extension RIFF as its last 12 bytes.
class HugeSource : public DataSource {
  public:
    HugeSource(Bytes beginning, off64_t lastRiff)
        : mBeginning(std::move(beginning)), mEnd(emptyRiff()), mLastRiff(lastRiff) {}

    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        if (offset >= mLastRiff) return mEnd.readAt(offset - mLastRiff, data, size);
        std::memset(data, 0, size);
        mBeginning.readAt(offset, data, size);
        return static_cast<ssize_t>(size);
    }
    android::status_t getSize(off64_t* size) override {
        *size = mLastRiff + 12;
        return android::OK;
    }

  private:
    MemorySource mBeginning;
    MemorySource mEnd;
    off64_t mLastRiff;
};

TEST_F(RiffListing, PositionsAre64BitsWide) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0xFFFFFFFE;
    HugeSource source(avi.build(), off64_t{0x100000006});
    openSource(source);
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(Text(entry(0, 0xFFFFFFFE, 0))));
    EXPECT_THAT(log(), Contains(Text(entry(1, 4, 0x100000006))));
    openFile(avi.build());  // lets go of the source
}

class UnreadableListing : public RiffListing {
  protected:
    // The second of two RIFFs cannot be read while it is listed.
    void openUnreadable() {
        AviFile avi = videoFile();
        avi.trailing = emptyRiff();
        openCounted(avi.build()).inject(Fault::shortRead(11).onCall(kFirstListingRead + 1));
    }
};

TEST_F(UnreadableListing, IsAnIoError) {
    openUnreadable();
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error -3EC @line4424")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1004!")));
}

TEST_F(UnreadableListing, FirstRiffIsNotParsed) {
    openUnreadable();
    countTracks();
    EXPECT_EQ(0u, mLog.count("parseSTRL"));
    EXPECT_EQ(0u, mLog.count("happens when parse file!"));
}

TEST_F(UnreadableListing, IsTriedAgainFromAnEmptyList) {
    openUnreadable();
    EXPECT_EQ(0u, countTracks());
    mLog.clear();
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(2u, riffsListed());
    EXPECT_EQ(1u, mLog.count("readMetaData(): RIFF0 "));
    EXPECT_THAT(log(), Not(Contains(Text("readMetaData(): mInitCheck = -1004."))));
}

}  // namespace
}  // namespace avitest
