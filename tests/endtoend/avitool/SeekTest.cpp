// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;

// 25 frames a second, frames 0, 3 and 6 of eight key frames. A chunk of sound lasts 10 ms, so that
// the chunk at a frame's time begins with it.
class Seek : public ToolFixture {
  protected:
    static AviFile recording() {
        AviFile avi;
        avi.addStream(videoStream("MJPG", 320, 240, 25));
        avi.addStream(pcmStream(2, 48000, 16));
        addFrames(&avi, kVideo);
        addSound(&avi, kAudio);
        return avi;
    }
    static void addFrames(AviFile* avi, size_t stream) {
        for (uint32_t i = 0; i < 8; ++i)
            avi->addChunk(stream, patternBytes(20 + i, i), i % 3 == 0 ? kKey : kNoFlags);
    }
    static void addSound(AviFile* avi, size_t stream) {
        for (uint32_t i = 0; i < 32; ++i)
            avi->addChunk(stream, patternBytes(1920, i));
    }

    ToolRun seek(AviFile avi, const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"seek", write("clip.avi", avi.build())};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return tool(arguments);
    }
    Json seekJson(AviFile avi, const std::string& at, const std::string& mode = "previous") {
        const ToolRun run = seek(std::move(avi), {"--json", "--at", at, "--mode", mode});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        return parsed(run);
    }
};

TEST_F(Seek, PreviousLandsOnTheKeyFrameBefore) {
    const Json video = seekJson(recording(), "0.2")["tracks"][0];
    EXPECT_EQ(video["timeUs"], 120000);
    EXPECT_EQ(video["sync"], true);
    EXPECT_EQ(video["size"], 23);
    EXPECT_EQ(video["targetTimeUs"], nullptr);
}

TEST_F(Seek, PreviousOnAKeyFrameLandsOnIt) {
    EXPECT_EQ(seekJson(recording(), "0.12")["tracks"][0]["timeUs"], 120000);
}

TEST_F(Seek, NextLandsOnTheKeyFrameAfter) {
    const Json video = seekJson(recording(), "0.16", "next")["tracks"][0];
    EXPECT_EQ(video["timeUs"], 240000);
    EXPECT_EQ(video["size"], 26);
    EXPECT_EQ(video["targetTimeUs"], nullptr);
}

TEST_F(Seek, ClosestSyncLandsOnTheKeyFrameBefore) {
    const Json video = seekJson(recording(), "0.2", "closest-sync")["tracks"][0];
    EXPECT_EQ(video["timeUs"], 120000);
    EXPECT_EQ(video["targetTimeUs"], nullptr);
}

TEST_F(Seek, ClosestTellsTheFrameToShow) {
    const Json video = seekJson(recording(), "0.2", "closest")["tracks"][0];
    EXPECT_EQ(video["timeUs"], 120000);
    EXPECT_EQ(video["targetTimeUs"], 200000);
}

TEST_F(Seek, ModeIsPreviousByDefault) {
    const Json json = parsed(seek(recording(), {"--json", "--at", "0.2"}));
    EXPECT_EQ(json["mode"], "previous");
    EXPECT_EQ(json["tracks"][0]["timeUs"], 120000);
}

TEST_F(Seek, AudioFollowsTheVideo) {
    const Json json = seekJson(recording(), "0.2");
    ASSERT_EQ(json["tracks"].size(), 2u);
    EXPECT_EQ(json["tracks"][1]["timeUs"], 120000);
    EXPECT_EQ(json["tracks"][1]["fromVideoMs"], 0.0);
    EXPECT_EQ(json["tracks"][0]["fromVideoMs"], nullptr);
}

TEST_F(Seek, DifferenceOfTheAudioIsSigned) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addStream(pcmStream(2, 48000, 16));
    addFrames(&avi, kVideo);
    for (uint32_t i = 0; i < 10; ++i)
        avi.addChunk(kAudio, patternBytes(6000, i));  // 31.25 ms: block 5760 lies in the fourth
    const Json json = seekJson(avi, "0.2");
    EXPECT_EQ(json["tracks"][1]["timeUs"], 93750);
    EXPECT_EQ(json["tracks"][1]["fromVideoMs"], -26.25);
}

TEST_F(Seek, EveryAudioTrackIsShown) {
    AviFile avi = recording();
    addSound(&avi, avi.addStream(pcmStream(2, 48000, 16)));
    const Json json = seekJson(avi, "0.3", "next");
    EXPECT_EQ(json["tracks"][0]["endOfStream"], true);  // no key frame follows
    const Json again = seekJson(avi, "0.2", "next");
    ASSERT_EQ(again["tracks"].size(), 3u);
    for (const size_t track : {1, 2}) {
        EXPECT_EQ(again["tracks"][track]["track"], track);
        EXPECT_EQ(again["tracks"][track]["timeUs"], 240000);
    }
}

TEST_F(Seek, TheVideoComesFirstAlsoWhereTheFileHasTheAudioFirst) {
    AviFile avi;
    avi.addStream(pcmStream(2, 48000, 16));
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    addSound(&avi, 0);
    addFrames(&avi, 1);
    const Json json = seekJson(avi, "0.2");
    EXPECT_EQ(json["tracks"][0]["mime"], "video/x-motion-jpeg");
    EXPECT_EQ(json["tracks"][1]["timeUs"], 120000);
}

TEST_F(Seek, NextBeyondTheEndIsTheEndOfEachStream) {
    const Json json = seekJson(recording(), "60", "next");
    for (const Json& track : json["tracks"]) {
        EXPECT_EQ(track["endOfStream"], true);
        for (const char* member : {"timeUs", "sync", "size", "targetTimeUs", "fromVideoMs"})
            EXPECT_EQ(track[member], nullptr) << member;
        EXPECT_FALSE(track.contains("error"));
    }
}

TEST_F(Seek, BackwardsFromBeyondTheEndLandsOnTheLastKeyFrame) {
    for (const char* mode : {"previous", "closest-sync", "closest"}) {
        SCOPED_TRACE(mode);
        const Json json = seekJson(recording(), "60", mode);
        EXPECT_EQ(json["tracks"][0]["timeUs"], 240000);
        EXPECT_EQ(json["tracks"][1]["timeUs"], 240000);
    }
    EXPECT_EQ(seekJson(recording(), "60", "closest")["tracks"][0]["targetTimeUs"], 280000);
}

TEST_F(Seek, TheLongestTimeIsTaken) {
    const Json json = seekJson(recording(), "9223372036854.775807");
    EXPECT_EQ(json["atUs"], INT64_MAX);
    EXPECT_EQ(json["tracks"][0]["timeUs"], 240000);
}

TEST_F(Seek, FractionsOfSecondsAreTakenToTheMicrosecond) {
    for (const char* at : {"1.5", "1.500000", "1.5000009", "01.50"})
        EXPECT_EQ(seekJson(recording(), at)["atUs"], 1500000) << at;
    EXPECT_EQ(seekJson(recording(), ".25")["atUs"], 250000);
    EXPECT_EQ(seekJson(recording(), "2.")["atUs"], 2000000);
    EXPECT_EQ(seekJson(recording(), "0")["atUs"], 0);
}

TEST_F(Seek, FileWithoutVideoSeeksItsAudio) {
    AviFile avi;
    avi.addStream(pcmStream(2, 48000, 16));
    addSound(&avi, 0);
    const Json json = seekJson(avi, "0.2");
    ASSERT_EQ(json["tracks"].size(), 1u);
    EXPECT_EQ(json["tracks"][0]["timeUs"], 200000);
    EXPECT_EQ(json["tracks"][0]["fromVideoMs"], nullptr);
}

TEST_F(Seek, FileWithoutAudioSeeksItsVideo) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    addFrames(&avi, 0);
    const Json json = seekJson(avi, "0.2");
    ASSERT_EQ(json["tracks"].size(), 1u);
    EXPECT_EQ(json["tracks"][0]["timeUs"], 120000);
}

TEST_F(Seek, JsonHasEveryMember) {
    EXPECT_EQ(seekJson(recording(), "0.2", "closest"), Json::parse(R"({
        "file": "clip.avi", "atUs": 200000, "mode": "closest", "tracks": [
        {"track": 0, "mime": "video/x-motion-jpeg", "endOfStream": false, "timeUs": 120000,
         "sync": true, "size": 23, "targetTimeUs": 200000, "fromVideoMs": null, "reads": 1},
        {"track": 1, "mime": "audio/raw", "endOfStream": false, "timeUs": 120000, "sync": true,
         "size": 1920, "targetTimeUs": null, "fromVideoMs": 0.0, "reads": 1}]})"));
}

// The last frame is read alone, any other with a look at its successor, which may be shown first.
TEST_F(Seek, ReadsAreThoseOfTheLanding) {
    AviFile avi;
    avi.addStream(videoStream("FMP4", 320, 240, 25));
    for (uint32_t i = 0; i < 8; ++i)
        avi.addChunk(0, patternBytes(20 + i, i));
    EXPECT_EQ(seekJson(avi, "0.24")["tracks"][0]["reads"], 2);
    EXPECT_EQ(seekJson(avi, "0.28")["tracks"][0]["reads"], 1);
}

// Without an index nobody knows the key frames: each on the way back is looked at.
TEST_F(Seek, ReadsCountTheKeyFrameChecks) {
    AviFile avi;
    avi.addStream(videoStream("FMP4", 320, 240, 25));
    for (uint32_t i = 0; i < 8; ++i) {
        const uint8_t type = i == 0 ? 0x10 : 0x50;
        avi.addChunk(0, ByteWriter().bytes(Bytes{0, 0, 1, 0xB6, type}).fill(20 + i).take());
    }
    avi.segment().index.copies = 0;
    const Json first = seekJson(avi, "0")["tracks"][0];
    const Json last = seekJson(avi, "0.28")["tracks"][0];
    EXPECT_EQ(last["timeUs"], 0);
    EXPECT_EQ(last["reads"].get<int>(), first["reads"].get<int>() + 7);
}

TEST_F(Seek, TextHasALineATrack) {
    const ToolRun run = seek(recording(), {"--at", "0.2", "--mode", "closest"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(squeezed(run.out),
              "File clip.avi\n"
              "Seek to 0.200000, mode closest\n"
              "\n"
              "track time sync size target from video reads type\n"
              "0 0.120000 sync 23 0.200000 - 1 video/x-motion-jpeg\n"
              "1 0.120000 sync 1920 - +0.000 ms 1 audio/raw\n");
}

TEST_F(Seek, TextColumnsStandBelowEachOther) {
    const ToolRun run = seek(recording(), {"--at", "0.2"});
    const std::vector<std::string> lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 6u) << run.out;
    for (size_t i = 3; i < 6; ++i) {
        EXPECT_EQ(lines[i].rfind(' '), lines[3].rfind(' ')) << run.out;
        EXPECT_LE(lines[i].size(), 110u);
    }
}

TEST_F(Seek, TextSaysEndOfStream) {
    const ToolRun run = seek(recording(), {"--at", "60", "--mode", "next"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n0 END_OF_STREAM - - - - 0 video/x-motion-jpeg\n"
                                             "1 END_OF_STREAM - - - - 0 audio/raw\n"));
}

TEST_F(Seek, UnreadableFileIsAProblem) {
    const ToolRun run = tool({"seek", "missing.avi", "--at", "1"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("avitool: missing.avi: "));
}

TEST_F(Seek, UnreadableFileGivesJsonWithTheReason) {
    const ToolRun run = tool({"seek", "missing.avi", "--at", "1", "--json"});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    EXPECT_EQ(json["tracks"], Json::array());
    EXPECT_TRUE(json.contains("error"));
}

TEST_F(Seek, FileWithNothingToSeekInIsAProblem) {
    const ToolRun run = failingTool("seek", "gg", {"--at", "0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: failing: has no video and no audio track\n");
}

TEST_F(Seek, TrackWithoutAFormatIsAProblem) {
    const ToolRun run = failingTool("seek", "gf", {"--at", "0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("avitool: failing: track 1: has no format"));
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n1 failed - - - - 0\ntrack 1: has no format"));
}

struct WrongSeek {
    const char* name;
    std::vector<std::string> arguments;
    const char* problem;
};

class WrongSeekUse : public ToolFixture, public ::testing::WithParamInterface<WrongSeek> {};

TEST_P(WrongSeekUse, EndsWithTwoAndALineThatSaysWhy) {
    std::vector<std::string> arguments = {"seek", write("clip.avi", smallFile().build())};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const ToolRun run = tool(arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(GetParam().problem));
}

const WrongSeek kWrongSeeks[] = {
    {"NoTime", {}, "--at is required"},
    {"NoValue", {"--at"}, "--at"},
    {"Negative", {"--at", "-1"}, "--at: '-1' is no time in seconds"},
    {"NegativeFraction", {"--at", "-0.5"}, "'-0.5' is no time"},
    {"Signed", {"--at", "+1"}, "'+1' is no time"},
    {"Empty", {"--at", ""}, "'' is no time"},
    {"Point", {"--at", "."}, "'.' is no time"},
    {"TwoPoints", {"--at", "1.2.3"}, "'1.2.3' is no time"},
    {"Clock", {"--at", "1:30"}, "'1:30' is no time"},
    {"Unit", {"--at", "5s"}, "'5s' is no time"},
    {"Exponent", {"--at", "1e3"}, "'1e3' is no time"},
    {"Blank", {"--at", " 1"}, "' 1' is no time"},
    {"NotANumber", {"--at", "nan"}, "'nan' is no time"},
    {"TooLong", {"--at", "9223372036854.775808"}, "is no time"},
    {"Mode", {"--at", "1", "--mode", "nearest"}, "--mode: 'nearest' is no seek mode"},
    {"ModeEmpty", {"--at", "1", "--mode", ""}, "--mode: '' is no seek mode"},
    {"Track", {"--at", "1", "--track", "0"}, "--track"},
    {"TwoFiles", {"b.avi", "--at", "1"}, "not expected: b.avi"},
};
INSTANTIATE_TEST_SUITE_P(Each, WrongSeekUse, ::testing::ValuesIn(kWrongSeeks),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace avitest
