// SPDX-License-Identifier: Apache-2.0
//
// The lines about how chunks of MPEG audio are cut into frames. A line names its chunk, where its
// read loaded one.

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr char kCut[] = " MP3HDR/START/FRMSZ/CHKSZ/BUFLEN/BITRATE/LAYER=";

class MpegAudioLog : public DumpsTest {
  protected:
    void read(const std::vector<Bytes>& chunks) {
        openStream(mp3Bytes(), chunks);
        readRun(0);
    }
};

TEST_F(MpegAudioLog, EachFrameIsToldWithItsHeader) {
    read({joined(frames(2)), frame(2)});
    EXPECT_THAT(
        debugLinesWith("MP3HDR/"),
        ElementsAre(
            std::string("[audio/mpeg][0][0/2]") + kCut + "(FFFB9000/0/417/834/834/128/1) OK",
            std::string("[audio/mpeg][0]") + kCut + "(FFFB9000/0/417/0/417/128/1) OK",
            std::string("[audio/mpeg][0][1/2]") + kCut + "(FFFB9000/0/417/417/417/128/1) OK"));
}

TEST_F(MpegAudioLog, FrameIsToldWithItsPlaceSizeAndBitRate) {
    constexpr uint32_t k320Kbps = 0xFFFBE000;
    const Bytes padded = frameOf(kHeader | kPaddingBit, 418, 1);
    const Bytes large = frameOf(k320Kbps, 1044, 2);
    read({joined(frames(2)), joined({noise(7), padded}), large});
    EXPECT_THAT(debugLinesWith("MP3HDR/"),
                ElementsAre(HasSubstr("=(FFFB9000/0/417/834/834/128/1) OK"),
                            HasSubstr("=(FFFB9000/0/417/0/417/128/1) OK"),
                            HasSubstr("=(FFFB9200/7/418/425/425/128/1) OK"),
                            HasSubstr("=(FFFBE000/0/1044/1044/1044/320/1) OK")));
}

TEST_F(MpegAudioLog, LayerIsTheFieldOfTheHeader) {
    constexpr uint32_t kLayer2 = 0xFFFD8000;  // 128 kbit/s at 44100 Hz
    openStream(mp3Bytes(16000, 0x50), {frameOf(kLayer2, 417), frameOf(kLayer2, 417, 1)});
    readRun(0);
    EXPECT_THAT(debugLinesWith("MP3HDR/").at(0), HasSubstr("=(FFFD8000/0/417/417/417/128/2) OK"));
}

TEST_F(MpegAudioLog, MissingHeaderIsNotOk) {
    read({joined(frames(2)), noise(300)});
    const std::string line = debugLinesWith("MP3HDR/").at(2);
    EXPECT_THAT(line, StartsWith(std::string("[audio/mpeg][0][1/2]") + kCut + "(0/-1/"));
    EXPECT_THAT(line, HasSubstr("/300/300/"));
    EXPECT_EQ(") ", line.substr(line.size() - 2));
}

// The bit rate is no part of what is looked for.
TEST_F(MpegAudioLog, HeaderThatIsNotValidIsNotOk) {
    constexpr uint32_t kBadBitRate = 0xFFFBF000;
    read({joined(frames(2)), frameOf(kBadBitRate, 300)});
    const std::string line = debugLinesWith("MP3HDR/").at(2);
    EXPECT_THAT(line, StartsWith(std::string("[audio/mpeg][0][1/2]") + kCut + "(FFFBF000/0/"));
    EXPECT_EQ(") ", line.substr(line.size() - 2));
}

TEST_F(MpegAudioLog, RestOfASplitFrameIsToldOf) {
    const Bytes all = joined(frames(3));
    read(split(all, {kFrameSize + 300, 400}));
    EXPECT_THAT(onlyDebugLineWith("Read remained 117 bytes"),
                ::testing::MatchesRegex("\\[audio/mpeg\\]\\[0\\]\\[[0-9]+\\] Read remained 117 "
                                        "bytes from next chunk 300/117/0 OK"));
    EXPECT_THAT(onlyDebugLineWith("Read remained 134 bytes"),
                ::testing::MatchesRegex("\\[audio/mpeg\\]\\[0\\]\\[1/3\\]\\[[0-9]+\\] Read "
                                        "remained 134 bytes from next chunk 283/134/400 OK"));
}

TEST_F(MpegAudioLog, FrameOfManyChunksIsToldOfPieceByPiece) {
    read(split(joined(frames(2)), {kFrameSize + 100, 50, 70}));
    EXPECT_THAT(debugLinesWith("Read remained"),
                ElementsAre(HasSubstr("Read remained 317 bytes from next chunk 100/50/0 OK"),
                            HasSubstr("Read remained 267 bytes from next chunk 150/70/0 OK"),
                            HasSubstr("Read remained 197 bytes from next chunk 220/197/0 OK")));
}

TEST_F(MpegAudioLog, RestThatIsMissingIsNotOk) {
    read({joined({frame(), slice(frame(1), 0, 300)})});
    const std::string line = onlyDebugLineWith("Read remained 117 bytes from next chunk 300/");
    EXPECT_EQ("/0 ", line.substr(line.size() - 3));
}

TEST_F(MpegAudioLog, RestThatIsReadShortIsNotOk) {
    AviFile avi = fileOf(mp3Bytes(), split(joined(frames(3)), {kFrameSize + 300, 400}));
    FaultySource& source = openCounted(avi.build());
    countTracks();
    const auto begin = static_cast<off64_t>(avi.chunks(0)[1].place.dataOffset);
    source.inject(Fault::shortRead(5).onOffsets(begin, begin + 100));
    mLog.clear();
    StartedTrack started(track(0));
    started.sample();
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, started.status());
    const std::string line = onlyDebugLineWith("Read remained");
    EXPECT_THAT(line, HasSubstr("Read remained 117 bytes from next chunk 300/5/0 "));
    EXPECT_EQ("/0 ", line.substr(line.size() - 3));
}

// Half a frame was loaded, and the other half is as long.
TEST_F(MpegAudioLog, RestAsLongAsItsChunkIsToldOfAsAWholeChunk) {
    const Bytes even = frameOf(kHeader | kPaddingBit, 418, 1);
    read({frame(), slice(even, 0, 209), slice(even, 209, 418), frame(2)});
    EXPECT_THAT(onlyDebugLineWith("chunk consumed with whole size "),
                ::testing::MatchesRegex("\\[audio/mpeg\\]\\[0\\]\\[1/4\\]\\[[0-9]+\\] chunk "
                                        "consumed with whole size 209\\.\\.\\."));
}

TEST_F(MpegAudioLog, RestOfAnotherLengthIsNotAWholeChunk) {
    read(split(joined(frames(3)), {kFrameSize + 300, 117}));
    EXPECT_THAT(debugLinesWith("chunk consumed with whole size "), IsEmpty());
}

TEST_F(MpegAudioLog, FewBytesThatAreLeftOfAChunkAreToldOf) {
    const Bytes second = frame(1);
    for (size_t left = 0; left <= 4; ++left) {
        SCOPED_TRACE(left);
        read({joined({frame(), slice(second, 0, 300)}),
              joined({slice(second, 300, kFrameSize), noise(left)}), frame(2)});
        EXPECT_EQ(format("[audio/mpeg][0][1/3] Only %zu bytes left@117 in this chunk with size "
                         "%zu...",
                         left, 117 + left),
                  onlyDebugLineWith("Only "));
    }
}

TEST_F(MpegAudioLog, FiveBytesAreEnough) {
    const Bytes second = frame(1);
    read({joined({frame(), slice(second, 0, 300)}),
          joined({slice(second, 300, kFrameSize), noise(5)}), frame(2)});
    EXPECT_THAT(debugLinesWith("Only "), IsEmpty());
}

TEST_F(MpegAudioLog, ShortChunksAreToldOfWithTheRestInFrontOfThem) {
    read({joined({frame(0), frame(1), noise(3)}), noise(1), frame(2)});
    EXPECT_EQ("[audio/mpeg][0][1/3] Only 4 bytes left@0 in this chunk with size 1...",
              onlyDebugLineWith("Only "));
}

TEST_F(MpegAudioLog, FewBytesAtTheEndOfTheStreamAreToldOf) {
    read({joined(frames(2)), noise(4)});
    EXPECT_EQ("[audio/mpeg][0][1/2] Only 4 bytes left@0 in this chunk with size 4...",
              onlyDebugLineWith("Only "));
}

// What follows a joined chunk is told without the type.
TEST_F(MpegAudioLog, JoinedChunkIsToldOfByItsNumber) {
    read({joined(frames(2)), noise(3), frame(2)});
    EXPECT_THAT(debugLinesWith("MP3HDR/"),
                ElementsAre(StartsWith("[audio/mpeg][0][0/3] "), StartsWith("[audio/mpeg][0] "),
                            StartsWith("[0][2/3] MP3HDR/START/FRMSZ/CHKSZ/BUFLEN/BITRATE/LAYER="
                                       "(FFFB9000/3/417/417/420/128/1) OK")));
    EXPECT_THAT(debugLinesWith(" DTS/OFF/").at(1), StartsWith("[0][2/3] DTS/OFF/"));
}

TEST_F(MpegAudioLog, VerboseLogTellsOfAllFrames) {
    setProperty(kVerboseLogProperty, "1");
    openStream(mp3Bytes(), std::vector<Bytes>(20, frame()));
    readAll(0);
    EXPECT_THAT(debugLinesWith("MP3HDR/"), SizeIs(20));
}

}  // namespace
}  // namespace avitest
