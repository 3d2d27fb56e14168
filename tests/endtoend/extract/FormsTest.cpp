// SPDX-License-Identifier: Apache-2.0
// Which form a track takes, by its type and by what its format tells.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ExtractFixture.h"

namespace avitest {
namespace {

using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

constexpr uint16_t kTagMsAdpcm = 2;
constexpr uint16_t kTagALaw = 6;
constexpr uint16_t kTagAac = 0xFF;
constexpr uint16_t kTagAmr = 0x57;

class Form : public ExtractFixture {
  protected:
    // A track of chunks of these sizes, extracted into "out".
    ToolRun extract(const Stream& kind, const std::vector<size_t>& sizes) {
        AviFile avi;
        const size_t track = avi.addStream(kind);
        for (const size_t size : sizes)
            avi.addChunk(track, patternBytes(size), kKey);
        return tool({"extract", write("a.avi", avi.build()), "-o", "out"});
    }
    Bytes bytesIn(const std::string& name) const { return bytesOf(textIn(name)); }
    // AAC without headers.
    static Stream aac(uint16_t channels) {
        return frameAudioStream(kTagAac, channels, 44100, 1024);
    }
};

TEST_F(Form, OfVideoFollowsItsType) {
    struct Row {
        ChunkId fourcc;
        const char* file;
    };
    const Row rows[] = {{"MJPG", "a.0.mjpeg"}, {"mpg2", "a.0.m2v"},  {"mpg1", "a.0.m2v"},
                        {"FMP4", "a.0.m4v"},   {"H264", "a.0.h264"}, {"VP80", "a.0.bin"},
                        {"H263", "a.0.bin"},   {"XXXX", "a.0.bin"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fourcc.text());
        std::filesystem::remove_all(pathOf("out"));
        EXPECT_EQ(extract(videoStream(row.fourcc, 320, 240, 25), {50}).status, 0);
        EXPECT_THAT(filesIn("out"), UnorderedElementsAre("a.0.csv", row.file));
    }
}

TEST_F(Form, OfAudioThatHasNoneIsTheSamplesAlone) {
    EXPECT_EQ(extract(frameAudioStream(kTagAmr, 1, 8000, 160), {32, 32}).status, 0);
    EXPECT_EQ(bytesIn("out/a.0.bin").size(), 64u);
}

TEST_F(Form, OfAnOddNumberOfBytesInAWaveFileIsFilledUp) {
    EXPECT_EQ(extract(audioStream(kTagALaw, 1, 8000, 8000, 1, 8), {3}).status, 0);
    const Bytes file = bytesIn("out/a.0.wav");
    ASSERT_EQ(file.size(), 58u + 3 + 1);
    EXPECT_EQ(file.back(), 0);
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 8),
              ByteWriter().fourcc("RIFF").u32(62 - 8).take());
    EXPECT_EQ(Bytes(file.begin() + 50, file.begin() + 58),
              ByteWriter().fourcc("data").u32(3).take());
}

TEST_F(Form, OfAdpcmWithoutABlockIsTheSamplesAlone) {
    EXPECT_EQ(extract(audioStream(kTagMsAdpcm, 1, 8000, 4096, 0, 4), {100}).status, 0);
    EXPECT_EQ(filesIn("out"), (std::vector<std::string>{"a.0.bin", "a.0.csv"}));
}

TEST_F(Form, OfAacThatAdtsCannotTellIsTheSamplesAlone) {
    EXPECT_EQ(extract(aac(8), {100}).status, 0);
    EXPECT_EQ(filesIn("out"), (std::vector<std::string>{"a.0.bin", "a.0.csv"}));
}

TEST_F(Form, OfAacHasAHeaderInFrontOfEachFrame) {
    EXPECT_EQ(extract(aac(2), {100, 8184}).status, 0);
    EXPECT_EQ(bytesIn("out/a.0.aac").size(), 7u + 100 + 7 + 8184);
    EXPECT_THAT(textIn("out/a.0.csv"), HasSubstr("\n0,0,1,100,7\n"));
}

TEST_F(Form, OfAacFramesEndsBeforeOneThatIsTooLarge) {
    const ToolRun run = extract(aac(2), {100, 8185, 100});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              "avitool: a.avi: track 0: sample 1 of 8185 bytes is too large for a .aac file\n");
    EXPECT_EQ(bytesIn("out/a.0.aac").size(), 107u);
    EXPECT_THAT(run.out, HasSubstr("out/a.0.csv: track 0, list of 1 sample\n"));
}

}  // namespace
}  // namespace avitest
