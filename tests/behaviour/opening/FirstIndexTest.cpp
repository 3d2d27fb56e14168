// SPDX-License-Identifier: Apache-2.0
//
// When the first RIFF's idx1 is used.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::Contains;

class FirstIndex : public LoggedFixture {};

TEST_F(FirstIndex, FillsTheTables) {
    AviFile avi = twoStreamFile();
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

TEST_F(FirstIndex, IsLoggedWhileTheExtractLogIsOn) {
    setProperty(kExtractLogProperty, "1");
    openFile(videoFile().build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): found idx, idx1Found: 0")).Times(1));
}

TEST_F(FirstIndex, IsNotLoggedByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openFile(videoFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("found idx"));
}

TEST_F(FirstIndex, SecondOneIsSkipped) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 2;
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): skip multiple idx1!")).Times(1));
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): found idx, idx1Found: 1")).Times(1));
}

TEST_F(FirstIndex, EachFurtherOneIsSkipped) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 4;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(3u, mLog.count("parseFirstRIFF(): skip multiple idx1!"));
}

TEST_F(FirstIndex, IsNotNeededInFrontOfTheHeaders) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"idx1", "hdrl", "movi"}); };
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): we already have index, ignore idx1!")));
    EXPECT_EQ(0u, mLog.count("samples added"));
}

TEST_F(FirstIndex, IgnoredOneDoesNotCountAsTheFirst) {
    AviFile avi = videoFile();
    avi.segment().index.copies = 2;
    avi.segment().edit = [](Chunk& riff) { std::swap(riff.children[0], riff.children[2]); };
    const Bytes file = avi.build();  // idx1, movi, hdrl, idx1
    openFile(file);
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(0u, mLog.count("skip multiple idx1!"));
}

TEST_F(FirstIndex, IsUsedForAFileOfSubtitlesAlone) {
    AviFile avi;
    const size_t subtitles = avi.addStream(videoStream("DXSB", 320, 64, 25));
    avi.addChunk(subtitles, patternBytes(40));
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("we already have index"));
}

TEST_F(FirstIndex, ErrorEndsTheParse) {
    AviFile avi = videoFile();
    avi.segment().afterIndex = {Chunk("STRY", Bytes(16))};
    const Bytes file = avi.build();
    const auto data = static_cast<off64_t>(avi.place("idx1.0").dataOffset);
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    // Behind the bytes that belong to the look at the chunk's header.
    openCounted(file).inject(Fault::error(-EIO).onOffsets(data + 4, data + 5));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1004) happens when parse file!")));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
    EXPECT_EQ(0u, mLog.count("finishParse"));
}

TEST_F(FirstIndex, OneBeyondTheFileIsIgnored) {
    AviFile avi = videoFile();
    const size_t size = avi.build().size();
    openFile(ByteWriter().bytes(avi.build()).cut(size - 1).take());
    countTracks();
    EXPECT_EQ(1u, mLog.count("Chunked file with wrong idx1"));
    EXPECT_EQ(0u, mLog.count("samples added"));
}

}  // namespace
}  // namespace avitest
