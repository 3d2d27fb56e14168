// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;

class Samples : public ToolFixture {
  protected:
    std::string clip() { return write("clip.avi", mAvi.build()); }
    std::string crcOf(size_t stream, size_t chunk) {
        return crcText(mAvi.chunks(stream).at(chunk).data());
    }

    AviFile mAvi = smallFile();
};

TEST_F(Samples, TextHasALineASampleInTheOrderOfTheReads) {
    const ToolRun run = tool({"samples", clip(), "--track", "0"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(squeezed(run.out),
              "File clip.avi\n"
              "\n"
              "Track 0 video/x-motion-jpeg\n"
              "track index time sync size crc-32\n"
              "0 0 0.000000 sync 11 " +
                  crcOf(kVideo, 0) + "\n" + "0 1 0.040000 - 6 " + crcOf(kVideo, 1) + "\n" +
                  "0 2 0.080000 sync 9 " + crcOf(kVideo, 2) + "\n" +
                  "samples 3, key samples 2, bytes 26\n");
}

TEST_F(Samples, TextShowsAllTracksWithABlankLineBetween) {
    const ToolRun run = tool({"samples", clip()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(squeezed(run.out), HasSubstr("bytes 26\n\nTrack 1 audio/raw\n"));
    EXPECT_THAT(squeezed(run.out), HasSubstr(", bytes 2880\n"));
}

TEST_F(Samples, TextColumnsStandBelowEachOther) {
    const ToolRun run = tool({"samples", clip(), "--track", "0"});
    const std::vector<std::string> lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 8u) << run.out;
    for (size_t i = 4; i < 7; ++i) {
        EXPECT_EQ(lines[i].size(), lines[4].size());
        EXPECT_EQ(lines[i].rfind(' '), lines[3].rfind(' ')) << run.out;
        EXPECT_LE(lines[i].size(), 80u);
    }
}

TEST_F(Samples, JsonIsOneObjectWithEverySampleOfEveryTrack) {
    const ToolRun run = tool({"samples", clip(), "--json"});
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    EXPECT_EQ(json["file"], "clip.avi");
    ASSERT_EQ(json["tracks"].size(), 2u);
    const Json& video = json["tracks"][0];
    EXPECT_EQ(video["index"], 0);
    EXPECT_EQ(video["mime"], "video/x-motion-jpeg");
    EXPECT_EQ(video["limited"], false);
    ASSERT_EQ(video["samples"].size(), 3u);
    EXPECT_EQ(video["samples"][1], Json({{"index", 1},
                                         {"timeUs", 40000},
                                         {"sync", false},
                                         {"size", 6},
                                         {"crc32", crcOf(kVideo, 1)}}));
    EXPECT_EQ(video["samples"][2]["sync"], true);
    EXPECT_EQ(json["tracks"][1]["mime"], "audio/raw");
    EXPECT_FALSE(json.contains("error"));
}

TEST_F(Samples, TrackChoosesOneByItsIndex) {
    const Json json = parsed(tool({"samples", clip(), "--json", "--track", "1"}));
    ASSERT_EQ(json["tracks"].size(), 1u);
    EXPECT_EQ(json["tracks"][0]["index"], 1);
}

TEST_F(Samples, TrackBeyondTheLastIsAProblemOfTheFile) {
    const ToolRun run = tool({"samples", clip(), "--track", "2"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "avitool: clip.avi: has no track 2: it has 2 tracks, counted from 0\n");
}

TEST_F(Samples, TrackBeyondTheLastGivesJsonWithTheReason) {
    const ToolRun run = tool({"samples", clip(), "--json", "--track", "18446744073709551615"});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    EXPECT_EQ(json["tracks"], Json::array());
    EXPECT_EQ(json["error"], "has no track 18446744073709551615: it has 2 tracks, counted from 0");
}

TEST_F(Samples, LimitEndsEachTrackEarly) {
    const ToolRun run = tool({"samples", clip(), "--json", "--limit", "1"});
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    for (const Json& track : json["tracks"]) {
        EXPECT_EQ(track["samples"].size(), 1u);
        EXPECT_EQ(track["limited"], true);
    }
}

TEST_F(Samples, LimitIsToldInText) {
    const ToolRun run = tool({"samples", clip(), "--track", "0", "--limit", "2"});
    EXPECT_THAT(run.out, HasSubstr("samples 2, key samples 1, bytes 17, stopped by --limit\n"));
}

TEST_F(Samples, LimitOfZeroShowsTheTracksOnly) {
    const ToolRun run = tool({"samples", clip(), "--json", "--limit", "0"});
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    ASSERT_EQ(json["tracks"].size(), 2u);
    EXPECT_EQ(json["tracks"][0]["samples"], Json::array());
}

TEST_F(Samples, LimitBeyondTheEndChangesNothing) {
    const ToolRun run = tool({"samples", clip(), "--limit", "18446744073709551615"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, tool({"samples", clip()}).out);
}

TEST_F(Samples, NegativeTimesAreShownAsSuch) {
    const ToolRun run = failingTool("samples", "g");
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n0 1 -1.500000 - 3 "));
}

}  // namespace avitest
