// SPDX-License-Identifier: Apache-2.0
//
// What a seek on an audio track logs.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

using testing::Contains;
using testing::ElementsAre;

class AudioSeekLog : public SeekingTest {
  protected:
    // The lines of one seek on a new track object of the only track.
    std::vector<LogLine> linesOf(AviFile avi, int64_t timeUs) {
        open(avi);
        StartedTrack audio(track(0));
        const LogCapture log;
        chunkAt(audio, kPrevious, timeUs);
        return seekLines(log);
    }
    // Five chunks of 100 ms.
    static AviFile byteFile() { return audioFile(alawStream(), {800, 800, 800, 800, 800}); }
    static AviFile frameFile() {
        Stream stream = frameAudioStream(0x57, 1, 8000, 160);
        stream.header.length = 50;  // one second
        return audioFile(stream, {20, 21, 22, 23, 24});
    }
};

// Chunks 2, 1 and 0 are probed; of the ends 300000, 200000 and 100000 us two exceed 150000.
TEST_F(AudioSeekLog, EveryProbeThatIsTooLate) {
    EXPECT_THAT(
        textsOf(linesOf(byteFile(), 150000)),
        ElementsAre("[audio/g711-alaw] seekTo index 2/300000 nearby seekTime 150000us @L#",
                    "[audio/g711-alaw] seekTo index 1/200000 nearby seekTime 150000us @L#"));
}

TEST_F(AudioSeekLog, ProbesGoUpwardsToo) {
    // 2 is too early, 4 is probed, then 3.
    EXPECT_THAT(
        textsOf(linesOf(byteFile(), 350000)),
        ElementsAre("[audio/g711-alaw] seekTo index 4/500000 nearby seekTime 350000us @L#",
                    "[audio/g711-alaw] seekTo index 3/400000 nearby seekTime 350000us @L#"));
}

TEST_F(AudioSeekLog, BeyondTheEndIsAnError) {
    for (const bool framed : {false, true}) {
        SCOPED_TRACE(framed);
        const std::vector<LogLine> lines = linesOf(framed ? frameFile() : byteFile(), 2000000);
        EXPECT_THAT(lines, Contains(error("getSampleIndexBySeekTime(): error -3F3 @line#")));
        const std::string mime = framed ? "audio/3gpp" : "audio/g711-alaw";
        EXPECT_EQ(lines.back(), error("[" + mime + "][0] end of stream @L#"));
    }
}

TEST_F(AudioSeekLog, FramesLogTheirIndex) {
    EXPECT_THAT(textsOf(linesOf(frameFile(), 410000)),
                ElementsAre("[audio/3gpp] seekTo index 2 nearby seekTime 410000us @L#"));
    EXPECT_THAT(textsOf(linesOf(frameFile(), 2000000)),
                Contains("[audio/3gpp] seekTo index 10 nearby seekTime 2000000us @L#"));
}

TEST_F(AudioSeekLog, SubtitlesLogNothing) {
    const Bytes chunk = subtitleChunk("00:00:01.000", "00:00:02.000");
    EXPECT_THAT(linesOf(fileOf(subtitleStream(), {chunk}), 410000), ElementsAre());
}

TEST_F(AudioSeekLog, LineNumbersAreNumbers) {
    AviFile avi = byteFile();
    open(avi);
    StartedTrack audio(track(0));
    const LogCapture log;
    chunkAt(audio, kPrevious, 150000);
    chunkAt(audio, kPrevious, 2000000);
    std::string all;
    for (const LogLine& line : log.lines())
        all += line.text + "\n";
    EXPECT_THAT(all, testing::ContainsRegex("nearby seekTime 150000us @L[0-9]+\n"));
    EXPECT_THAT(all, testing::ContainsRegex("error -3F3 @line[0-9]+\n"));
}

}  // namespace
}  // namespace avitest
