// SPDX-License-Identifier: Apache-2.0
// Tracks that fail: each is shown as such, told on standard error, and the others are read.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct FailingTrack {
    const char* name;
    char kind;
    const char* problem;
    int samples;
};

class TrackFailure : public ToolFixture, public ::testing::WithParamInterface<FailingTrack> {
  protected:
    // A failing track between two good ones.
    static std::string kinds() { return std::string("g") + GetParam().kind + "g"; }
    static std::string line() {
        return std::string("avitool: failing: track 1: ") + GetParam().problem + "\n";
    }
};

TEST_P(TrackFailure, IsShownByInfoBetweenTheOthers) {
    const ToolRun run = failingTool("info", kinds());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, line());
    const std::string text = squeezed(run.out);
    EXPECT_THAT(text, HasSubstr("\nTrack 2\nmime string test/g\nsamples 2\n"));
    EXPECT_THAT(text, HasSubstr(std::string("\n") + GetParam().problem + "\n"));
}

TEST_P(TrackFailure, IsShownBySamplesBetweenTheOthers) {
    const ToolRun run = failingTool("samples", kinds());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, line());
    EXPECT_THAT(run.out, HasSubstr(std::string("\n") + GetParam().problem + "\n\nTrack 2"));
}

TEST_P(TrackFailure, IsInTheJsonOfSamples) {
    const ToolRun run = failingTool("samples", kinds(), {"--json"});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    ASSERT_EQ(json["tracks"].size(), 3u);
    const Json& track = json["tracks"][1];
    EXPECT_EQ(track["samples"].size(), static_cast<size_t>(GetParam().samples));
    const Json error = track.contains("error") ? track["error"] : track["formatError"];
    EXPECT_THAT(std::string(GetParam().problem), StartsWith(error["what"].get<std::string>()));
    EXPECT_FALSE(json["tracks"][2].contains("error"));
}

constexpr FailingTrack kFailingTracks[] = {
    {"Start", 's', "cannot be started: AMEDIA_ERROR_INVALID_OPERATION (-10005)", 0},
    {"Read", 'r', "read fails after 2 samples: AMEDIA_ERROR_IO (-10007)", 2},
    {"OddStatus", 'u', "read fails after 2 samples: unknown status (-77)", 2},
    {"NoBuffer", 'm', "read gives no buffer after 1 sample: AMEDIA_OK (0)", 1},
    {"NoTrack", 'n', "the plug-in gives no track object", 0},
    {"NoFormat", 'f', "has no format: AMEDIA_ERROR_MALFORMED (-10001)", 2},
};
INSTANTIATE_TEST_SUITE_P(Each, TrackFailure, ::testing::ValuesIn(kFailingTracks),
                         [](const auto& instance) { return instance.param.name; });

class TrackFailureDetails : public ToolFixture {};

TEST_F(TrackFailureDetails, JsonHasNameAndNumberOfTheStatus) {
    const Json json = parsed(failingTool("info", "r", {"--json"}));
    EXPECT_EQ(json.at(0).at("tracks").at(0).at("error"),
              Json({{"what", "read fails after 2 samples"},
                    {"status", "AMEDIA_ERROR_IO"},
                    {"code", -10007}}));
}

TEST_F(TrackFailureDetails, AFailureBehindTheLimitIsNotMet) {
    const ToolRun run = failingTool("samples", "r", {"--limit", "2"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
}

TEST_F(TrackFailureDetails, ASampleWithoutATimeIsShownAsSuch) {
    EXPECT_THAT(squeezed(failingTool("samples", "t").out), HasSubstr("\n0 0 none sync 3 "));
    const Json json = parsed(failingTool("samples", "t", {"--json"}));
    EXPECT_TRUE(json.at("tracks").at(0).at("samples").at(0).at("timeUs").is_null());
}

TEST_F(TrackFailureDetails, AFailedAssertionOfThePlugInEndsWithALineAndNoCrash) {
    const ToolRun run = failingTool("samples", "a");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("avitool: failing: the plug-in aborts the extractor service: "
                                   "CHECK(mNext != 1) failed.\n"));
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n0 0 0.000000 sync 3 ")) << "what came before it";
}

TEST_F(TrackFailureDetails, AFileThatIsClaimedButNotOpenedIsRefused) {
    const ToolRun run = tool({"info", write("null", "NULL"), "--plugin", FAILING_PLUGIN});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: null: claimed as AVI, but the plug-in gives no extractor\n");
}

// What a player of a cut file sees: the track is over, not broken.
TEST_F(TrackFailureDetails, AChunkThatReachesBeyondTheFileEndsTheTrackWithoutFailure) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addChunk(0, bytesOf("whole"));
    avi.addChunk(0, bytesOf("cut short")).indexLength = 100000;
    const ToolRun run = tool({"samples", write("cut.avi", avi.build())});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(squeezed(run.out), HasSubstr("\nsamples 1, key samples 1, bytes 5\n"));
}

}  // namespace avitest
