// SPDX-License-Identifier: Apache-2.0
//
// The main header: its length, its fields, its log.

#include <algorithm>

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::Contains;

class AvihChunk : public LoggedFixture {
  protected:
    // The main header with its payload cut or filled up to `size` bytes.
    void openWithSize(size_t size) {
        AviFile avi = videoFile();
        avi.editHeaders = [size](Chunk& hdrl) { hdrl.child("avih").payload.resize(size); };
        openFile(avi.build());
    }
    void expectMalformed() {
        EXPECT_EQ(0u, countTracks());
        EXPECT_THAT(log(), Contains(error("parseAVIH(): error -3EF @line1981")));
        EXPECT_EQ(1u, mLog.count("parseHDRL(): parseAVIH err: -1007"));
        EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1007!")));
    }
};

TEST_F(AvihChunk, OfFiftySixBytesIsAccepted) {
    openWithSize(56);
    EXPECT_EQ(1u, countTracks());
}

TEST_F(AvihChunk, OfFiftyFourBytesIsMalformed) {
    openWithSize(54);
    expectMalformed();
}

TEST_F(AvihChunk, WithoutBytesIsMalformed) {
    openWithSize(0);
    expectMalformed();
}

TEST_F(AvihChunk, BytesBehindTheFieldsAreIgnored) {
    for (size_t size : {57u, 58u, 100u}) {
        SCOPED_TRACE(size);
        openWithSize(size);
        EXPECT_EQ(1u, countTracks());
    }
}

TEST_F(AvihChunk, UnreadablePayloadIsAnIoError) {
    AviFile avi = videoFile();
    const Bytes file = avi.build();
    const auto end = static_cast<off64_t>(avi.place("avih").dataOffset + 56);
    openCounted(file).inject(Fault::shortRead(55).onOffsets(end - 1, end));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseAVIH(): error -3EC @line1986")));
    EXPECT_EQ(1u, mLog.count("parseHDRL(): parseAVIH err: -1004"));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1004!")));
}

TEST_F(AvihChunk, WidthAndHeightAreTheDisplaySize) {
    AviFile avi = videoFile();
    avi.header.width = 640;
    avi.header.height = 360;
    openFile(avi.build());
    EXPECT_EQ(640, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
    EXPECT_EQ(360, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_HEIGHT));
}

// A main header of this size that declares as many streams.
Chunk otherHeader(uint32_t width, uint32_t height, uint32_t streams) {
    MainHeader header;
    header.width = width;
    header.height = height;
    header.streams = streams;
    return Chunk("avih", header.toBytes());
}

TEST_F(AvihChunk, SecondOneReplacesTheFirst) {
    AviFile avi = videoFile();
    avi.header.width = 640;
    avi.header.height = 360;
    avi.header.streams = 9;
    avi.editHeaders = [](Chunk& hdrl) { hdrl.insert(1, otherHeader(720, 576, 1)); };
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(720, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
    EXPECT_EQ(576, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_HEIGHT));
}

TEST_F(AvihChunk, SecondOneAfterAStreamLeavesItsSize) {
    AviFile avi = videoFile();
    avi.header.width = 640;
    avi.header.height = 360;
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(otherHeader(720, 576, 1)); };
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(640, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
    EXPECT_EQ(360, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_DISPLAY_HEIGHT));
}

TEST_F(AvihChunk, LastOneDeclaresTheStreams) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(otherHeader(320, 240, 2)); };
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(1u, mLog.count(",avih true, actual streams 1, expected streams 2"));
}

TEST_F(AvihChunk, SecondOneThatIsShortIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(Chunk("avih", Bytes(54))); };
    openFile(avi.build());
    expectMalformed();
}

// Every field with a value of its own.
AviFile withDistinctFields() {
    AviFile avi = videoFile();
    MainHeader& header = avi.header;
    header.microSecPerFrame = 101;
    header.maxBytesPerSec = 102;
    header.paddingGranularity = 103;
    header.flags = 104;
    header.totalFrames = 105;
    header.initialFrames = 9999;
    header.streams = 1;
    header.suggestedBufferSize = 107;
    header.width = 108;
    header.height = 109;
    header.reserved[0] = 110;
    header.reserved[1] = 111;
    header.reserved[2] = 112;
    header.reserved[3] = 0xFFFFFFFF;
    return avi;
}

TEST_F(AvihChunk, FieldsAreLoggedInOrder) {
    setProperty(kExtractLogProperty, "1");
    openFile(withDistinctFields().build());
    countTracks();
    const std::vector<LogLine> expected = {
        verbose("==== aviMainHeader ===="), verbose("   width:          108"),
        verbose("   height:         109"),  verbose("   streams:        1"),
        verbose("   flags:          104"),  verbose("   totalFrames:    105"),
        verbose("   msPerFrame:     101"),  verbose("   maxBytesPersec: 102"),
        verbose("   sugBufferSize:  107"),  verbose("   paddingGranularity: 103"),
        verbose("   reserved1: 110"),       verbose("   reserved2: 111"),
        verbose("   reserved3: 112"),       verbose("   reserved4: 4294967295"),
    };
    const std::vector<LogLine> lines = log();
    const auto found = std::search(lines.begin(), lines.end(), expected.begin(), expected.end());
    EXPECT_NE(lines.end(), found) << ::testing::PrintToString(lines);
}

TEST_F(AvihChunk, InitialFramesAreNotLogged) {
    setProperty(kExtractLogProperty, "1");
    openFile(withDistinctFields().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("9999"));
}

TEST_F(AvihChunk, FieldsAreNotLoggedByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openFile(withDistinctFields().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("aviMainHeader"));
    EXPECT_EQ(0u, mLog.count("reserved1"));
}

}  // namespace
}  // namespace avitest
