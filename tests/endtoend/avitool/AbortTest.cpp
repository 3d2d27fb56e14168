// SPDX-License-Identifier: Apache-2.0
// Files whose plug-in ends the process: the line says so, and what is known of everything else is
// shown all the same.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kAssertion[] = "the plug-in aborts the extractor service: CHECK(mNext != 1) failed.";
constexpr char kKilled[] = "the plug-in crashes: Killed";

struct Ending {
    const char* name;
    char kind;
    const char* reason;
};

class AbortingFile : public ToolFixture, public ::testing::WithParamInterface<Ending> {
  protected:
    // `info` of a file between two good ones.
    ToolRun infoOfThree(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"info",
                                              write("one", "TESTg"),
                                              write("bad", std::string("TESTg") + GetParam().kind),
                                              write("two", "TESTgg"),
                                              "--plugin",
                                              FAILING_PLUGIN};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return tool(arguments);
    }
};

TEST_P(AbortingFile, IsOneOfThreeInTheJson) {
    const ToolRun run = infoOfThree({"--json"});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    ASSERT_EQ(json.size(), 3u);
    EXPECT_EQ(json[0]["tracks"].size(), 1u);
    EXPECT_EQ(json[1], Json({{"file", "bad"}, {"error", GetParam().reason}}));
    EXPECT_EQ(json[2]["tracks"].size(), 2u);
}

TEST_P(AbortingFile, IsLeftOutOfTheTextWithALineThatNamesIt) {
    const ToolRun run = infoOfThree();
    EXPECT_EQ(run.status, 1);
    // The platform's log library has a line of its own before that one.
    EXPECT_THAT(run.err, EndsWith(std::string("avitool: bad: ") + GetParam().reason + "\n"));
    EXPECT_THAT(run.out, HasSubstr("File one\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("File bad\n")));
    EXPECT_THAT(run.out, HasSubstr("\n\nFile two\n"));
}

INSTANTIATE_TEST_SUITE_P(Each, AbortingFile,
                         ::testing::Values(Ending{"Assertion", 'a', kAssertion},
                                           Ending{"Signal", 'c', kKilled}),
                         [](const auto& instance) { return instance.param.name; });

class Abort : public ToolFixture {};

TEST_F(Abort, OfARealFileIsBesideAGoodOne) {
    AviFile avi;
    avi.addStream(frameAudioStream(0xFF, 2, 44100, 1024));
    constexpr uint8_t kIndex12[] = {0x16, 0x10};
    std::get<WaveFormat>(avi.stream(0).format).extra = Bytes(kIndex12, kIndex12 + 2);
    avi.addChunk(0, bytesOf("raw AAC"));
    const ToolRun run = tool(
        {"info", "--json", write("aac.avi", avi.build()), write("clip.avi", smallFile().build())});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    ASSERT_EQ(json.size(), 2u);
    EXPECT_THAT(json[0]["error"], HasSubstr("CHECK_LE( samplingFreqIndex,11u) failed: 12 vs. 11"));
    EXPECT_EQ(json[1]["tracks"].size(), 2u);
}

TEST_F(Abort, JsonOfSamplesHasWhatCameBeforeAndTheReason) {
    const Json json = parsed(failingTool("samples", "ga", {"--json"}));
    ASSERT_EQ(json["tracks"].size(), 2u);
    EXPECT_EQ(json["tracks"][0]["samples"].size(), 2u);
    EXPECT_EQ(json["tracks"][1]["samples"].size(), 1u);
    EXPECT_EQ(json["error"], kAssertion);
}

TEST_F(Abort, JsonOfExtractHasTheTracksBeforeAndTheReason) {
    const Json json = parsed(failingTool("extract", "ga", {"-o", "out", "--json"}));
    ASSERT_EQ(json["tracks"].size(), 1u);
    EXPECT_EQ(json["tracks"][0]["path"], "out/failing.0.bin");
    EXPECT_EQ(json["error"], kAssertion);
}

// Formats are asked for by every command.
TEST_F(Abort, JsonOfSeekHasTheReason) {
    const Json json = parsed(failingTool("seek", "gA", {"--at", "0", "--json"}));
    EXPECT_EQ(json["error"], "the plug-in aborts the extractor service: CHECK(mime) failed.");
}

}  // namespace avitest
