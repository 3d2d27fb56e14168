// SPDX-License-Identifier: Apache-2.0
//
// The line about a chunk, with its time and its place in file and stream, and the one about the
// metadata of a buffer.

#include <unistd.h>

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ChunkLine : public DumpsTest {
  protected:
    // Builds, opens and reads the file's tracks, one after the other.
    void readTracks(AviFile* avi, size_t count = 1) {
        openFile(avi->build());
        countTracks();
        mLog.clear();
        for (size_t i = 0; i < count; ++i)
            readAll(i);
    }

    // The lines about chunks, with what stands for the time of a seek left out: without a seek it
    // is of no meaning.
    std::vector<std::string> chunkLines() const {
        std::vector<std::string> lines = debugLinesWith(" DTS/OFF/SZ/SYNC/TTSZ/SKTM/");
        for (std::string& line : lines) {
            size_t at = line.find("=(");
            for (int field = 0; field < 5; ++field)
                at = line.find(' ', at + 1);
            const size_t end = line.find(' ', at + 1);
            line.replace(at + 1, end - at - 1, "*");
        }
        return lines;
    }

    static unsigned long long offsetOf(const AviFile& avi, size_t stream, size_t chunk) {
        return avi.chunks(stream).at(chunk).place.dataOffset;
    }
    static int thread() { return static_cast<int>(gettid()); }
};

TEST_F(ChunkLine, TellsOfVideo) {
    AviFile avi = fileOf(mjpegStream(), {});
    avi.addChunk(0, {0xFF, 0xD8, 0, 0, 0x00, 9}, kKey);
    avi.addChunk(0, {0xFF, 0xD8, 0, 0, 0x02, 9, 9}, kNoFlags);
    readTracks(&avi);
    const std::string fields = " DTS/OFF/SZ/SYNC/TTSZ/SKTM/BRKIX/SSZ/TID=";
    EXPECT_THAT(
        chunkLines(),
        ElementsAre("[video/x-motion-jpeg][0][0/2][I]" + fields +
                        format("(0 %llx 6 1 0 * 0 0 %d)", offsetOf(avi, 0, 0), thread()),
                    "[video/x-motion-jpeg][0][1/2][P]" + fields +
                        format("(40000 %llx 7 0 0 * 0 0 %d)", offsetOf(avi, 0, 1), thread())));
}

TEST_F(ChunkLine, TellsWhetherTheIndexIsBroken) {
    AviFile avi = fileOf(mjpegStream(), chunksOf(2));
    avi.segment().index.copies = 0;
    readTracks(&avi);
    ASSERT_THAT(chunkLines(), SizeIs(2));
    EXPECT_NE(std::string::npos, chunkLines()[0].find(format(" 0 * 1 0 %d)", thread())));
}

TEST_F(ChunkLine, TellsOfAudioThatIsCountedInBytes) {
    Stream stream = alawStream();
    stream.header.sampleSize = 4;
    AviFile avi = fileOf(stream, {patternBytes(100), patternBytes(200), patternBytes(50)});
    readTracks(&avi);
    ASSERT_THAT(chunkLines(), SizeIs(3));
    const char* const kBefore[] = {"0", "100", "300"};
    const char* const kSizes[] = {"100", "200", "50"};
    const std::vector<int64_t> times = timesOf(readAll(0));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(format("[audio/g711-alaw][0][%zu/3] "
                         "DTS/OFF/SZ/SYNC/TTSZ/SKTM/BLCKM/SSZ/TID=(%lld %llx %s 1 %s * 0 4 %d)",
                         i, static_cast<long long>(times[i]), offsetOf(avi, 0, i), kSizes[i],
                         kBefore[i], thread()),
                  chunkLines()[i]);
    }
}

TEST_F(ChunkLine, TellsWhetherSoundIsReadByBlocks) {
    openStream(mp3Frames(), {noise(1152, 99), joined(frames(2)), frame(3)});
    readAll(0);
    ASSERT_FALSE(chunkLines().empty());
    for (const std::string& line : chunkLines())
        EXPECT_NE(std::string::npos, line.find(format("* 1 0 %d)", thread()))) << line;
}

TEST_F(ChunkLine, TellsOfSubtitles) {
    AviFile avi = fileOf(subtitleStream(), {subtitleChunk("00:00:01.500", "00:00:02.000")});
    readTracks(&avi);
    EXPECT_THAT(chunkLines(),
                ElementsAre(format("[text/vobsub][0][0/1] "
                                   "DTS/OFF/SZ/SYNC/TTSZ/SKTM/BRKIX/SSZ/TID=(1500000 %llx 37 0 0 "
                                   "* 0 0 %d)",
                                   offsetOf(avi, 0, 0), thread())));
}

// Only video has key flags that can be wrong.
TEST_F(ChunkLine, TellsOfNoBrokenIndexForSoundAndSubtitles) {
    AviFile avi = fileOf(mjpegStream(), chunksOf(2));
    avi.addChunk(avi.addStream(alawStream()), patternBytes(30));
    avi.addChunk(avi.addStream(subtitleStream()), subtitleChunk("00:00:01.500", "00:00:02.000"));
    avi.segment().index.copies = 0;
    readTracks(&avi, 3);
    ASSERT_THAT(chunkLines(), SizeIs(4));
    EXPECT_NE(std::string::npos, chunkLines()[0].find("BRKIX/SSZ/TID=(0 "));
    EXPECT_NE(std::string::npos, chunkLines()[0].find(format(" * 1 0 %d)", thread())));
    EXPECT_NE(std::string::npos, chunkLines()[2].find("BLCKM/SSZ/TID=(0 "));
    EXPECT_NE(std::string::npos, chunkLines()[2].find(format(" * 0 1 %d)", thread())));
    EXPECT_NE(std::string::npos, chunkLines()[3].find("BRKIX/SSZ/TID=(1500000 "));
    EXPECT_NE(std::string::npos, chunkLines()[3].find(format(" * 0 0 %d)", thread())));
}

TEST_F(ChunkLine, TellsOfAvcAndHevc) {
    openStream(videoStream("H264", 320, 240, 25), {{0, 0, 1, 0x65, 0x88, 1, 2}});
    readAll(0);
    ASSERT_THAT(chunkLines(), SizeIs(1));
    EXPECT_EQ(0u, chunkLines()[0].find("[video/avc][0][0/1][I] DTS/OFF/SZ/"));
}

TEST_F(ChunkLine, TellsWhereASeekWent) {
    openStream(mjpegStream(), chunksOf(20));
    StartedTrack started(track(0));
    for (const int64_t timeUs : {401234, 0}) {
        mLog.clear();
        started.track().read(android::SEEK, timeUs);
        const std::string line = onlyDebugLineWith(" DTS/OFF/SZ/SYNC/TTSZ/SKTM/");
        EXPECT_NE(std::string::npos,
                  line.find(format(" 30 1 0 %lld 0 0 ", static_cast<long long>(timeUs))))
            << line;
    }
}

TEST_F(ChunkLine, NegativeSeekTimeIs0) {
    openStream(mjpegStream(), chunksOf(3));
    StartedTrack started(track(0));
    started.track().read(android::SEEK, -5);
    EXPECT_NE(std::string::npos, onlyDebugLineWith(" DTS/OFF/").find(" 30 1 0 0 0 0 "));
}

// Sound goes where the pictures went, whatever time it was asked for.
TEST_F(ChunkLine, TellsWhereSoundFollowsThePicturesTo) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(alawStream());
    for (uint32_t i = 0; i < 50; ++i) {
        avi.addChunk(video, {0xFF, 0xD8, 0, 0, 0, 9}, i % 10 == 0 ? kKey : kNoFlags);
        avi.addChunk(audio, patternBytes(320, i));
    }
    openFileQuietly(avi);
    StartedTrack pictures(track(0));
    StartedTrack sound(track(1));
    pictures.track().read(android::SEEK, 500000);
    mLog.clear();
    sound.track().read(android::SEEK, 500000);
    EXPECT_NE(std::string::npos, onlyDebugLineWith(" DTS/OFF/").find(" 320 1 3200 400000 0 1 "));
}

TEST_F(ChunkLine, EmptyChunksAreNotToldOf) {
    openStream(mjpegStream(), {patternBytes(30), {}, patternBytes(30)});
    readAll(0);
    ASSERT_THAT(chunkLines(), SizeIs(2));
    EXPECT_EQ(0u, chunkLines()[1].find("[video/x-motion-jpeg][0][2/3]["));
}

TEST_F(ChunkLine, FramesThatAreCutFromARestHaveNone) {
    openStream(mp3Bytes(), {joined(frames(3)), frame(3)});
    readAll(0);
    EXPECT_THAT(chunkLines(), SizeIs(2));
}

TEST_F(ChunkLine, ChunkIsToldOfBeforeItsBufferAndItsDump) {
    openStream(mjpegStream(), {patternBytes(10)});
    StartedTrack started(track(0));
    started.sample();
    std::vector<std::string> kinds;
    for (const LogLine& line : log()) {
        for (const char* kind : {"DTS/OFF/", "mBuffer meta data", "TimeConsumed"}) {
            if (line.text.find(kind) != std::string::npos) kinds.push_back(kind);
        }
    }
    EXPECT_THAT(kinds, ElementsAre("DTS/OFF/", "mBuffer meta data", "TimeConsumed"));
}

class BufferLine : public DumpsTest {};

TEST_F(BufferLine, ShowsTheMetadataOfEachBuffer) {
    openStream(mjpegStream(), chunksOf(2));
    StartedTrack started(track(0));
    for (size_t i = 0; i < 2; ++i) {
        mLog.clear();
        const ReadResult result = started.read();
        EXPECT_EQ(format("[video/x-motion-jpeg][0][%zu] mBuffer meta data: ", i) +
                      result.buffer.metaData().toString(),
                  onlyDebugLineWith("mBuffer meta data"));
    }
}

TEST_F(BufferLine, ShowsTheTargetOfASeek) {
    openStream(mjpegStream(), chunksOf(20));
    StartedTrack started(track(0));
    started.track().read(android::SEEK | android::SEEK_CLOSEST, 400000);
    EXPECT_NE(std::string::npos, onlyDebugLineWith("mBuffer meta data").find("400000"));
}

TEST_F(BufferLine, NamesStreamAndChunkOfMpegAudioFrames) {
    AviFile avi;
    avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(mp3Bytes());
    avi.addChunk(0, patternBytes(30));
    avi.addChunk(audio, joined(frames(2)));
    avi.addChunk(audio, frame(2));
    openFileQuietly(avi);
    readAll(1);
    const std::vector<std::string> lines = debugLinesWith("mBuffer meta data: ");
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(0u, lines[0].find("[audio/mpeg][1][0] mBuffer meta data: "));
    EXPECT_EQ(0u, lines[1].find("[audio/mpeg][1][0] mBuffer meta data: "));
    EXPECT_EQ(0u, lines[2].find("[audio/mpeg][1][1] mBuffer meta data: "));
}

// Not being dumped for want of bytes is no reason.
TEST_F(BufferLine, IsThereForAnEmptyBuffer) {
    openStream(pcmStream(1, 8000, 24), {Bytes(1)});
    readAll(0);
    EXPECT_THAT(debugLinesWith("mBuffer meta data"), SizeIs(1));
    EXPECT_THAT(dumps(), IsEmpty());
}

}  // namespace
}  // namespace avitest
