// SPDX-License-Identifier: Apache-2.0
// `avitool extract` of files whose index lists the same bytes again and again.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ExtractFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Names = std::vector<std::string>;

class ExtractLimit : public ExtractFixture {
  protected:
    static constexpr size_t kChunkSize = 20000;

    // A chunk whose entry is there so many times.
    static Bytes repeated(size_t entries) {
        AviFile avi;
        avi.addStream(videoStream("MJPG", 320, 240, 25));
        avi.addChunk(0, patternBytes(kChunkSize, 1), kKey);
        avi.segment().index.edit = [entries](std::vector<Idx1Entry>& index) {
            const Idx1Entry first = index.front();
            index.assign(entries, first);
        };
        return avi.build();
    }
    // The most entries whose bytes are within 16 times the file that lists them.
    static size_t mostEntries() {
        size_t entries = 1;
        while ((entries + 1) * kChunkSize <= 16 * repeated(entries + 1).size())
            ++entries;
        return entries;
    }
};

TEST_F(ExtractLimit, MoreThanSixteenTimesTheFileNeedsForce) {
    const Bytes file = repeated(mostEntries() + 1);
    const ToolRun run = tool({"extract", write("many.avi", file), "-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              "avitool: many.avi: not extracted further, because --force is needed to "
              "write more than " +
                  std::to_string(16 * file.size()) + " bytes, 16 times the size of the file\n");
    EXPECT_THAT(filesIn("out"), IsEmpty());
}

TEST_F(ExtractLimit, TheReasonIsInTheJson) {
    const Json json = parsed(
        tool({"extract", write("many.avi", repeated(mostEntries() + 1)), "-o", "out", "--json"}));
    EXPECT_THAT(json["tracks"], IsEmpty());
    EXPECT_THAT(json["error"], HasSubstr("--force is needed to write more than"));
}

TEST_F(ExtractLimit, ForceWritesThemAll) {
    const size_t entries = mostEntries() + 1;
    const ToolRun run =
        tool({"extract", write("many.avi", repeated(entries)), "-o", "out", "--force"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(textIn("out/many.0.mjpeg").size(), entries * kChunkSize);
}

TEST_F(ExtractLimit, UpToSixteenTimesTheFileIsWritten) {
    const size_t entries = mostEntries();
    const ToolRun run = tool({"extract", write("many.avi", repeated(entries)), "-o", "out"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(textIn("out/many.0.mjpeg").size(), entries * kChunkSize);
}

// One track alone is within the limit.
TEST_F(ExtractLimit, CountsAllTracksTogether) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    for (size_t stream : {0, 1})
        avi.addChunk(stream, patternBytes(kChunkSize, 1), kKey);
    avi.segment().index.edit = [](std::vector<Idx1Entry>& index) {
        const std::vector<Idx1Entry> both = index;
        for (size_t i = 1; i < 20; ++i)
            index.insert(index.end(), both.begin(), both.end());
    };
    const ToolRun run = tool({"extract", write("two.avi", avi.build()), "-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(filesIn("out"), (Names{"two.0.csv", "two.0.mjpeg"}));
}

}  // namespace avitest
