// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

class InfoJson : public ToolFixture {};

TEST_F(InfoJson, IsAnArrayAlsoForOneFile) {
    const Json json = parsed(tool({"info", write("clip.avi", smallFile().build()), "--json"}));
    ASSERT_TRUE(json.is_array());
    ASSERT_EQ(json.size(), 1u);
    EXPECT_EQ(json[0]["file"], "clip.avi");
    EXPECT_EQ(json[0]["extractor"], "AVIExtractor");
    EXPECT_EQ(json[0]["confidence"], 1.4);
    EXPECT_EQ(json[0]["format"]["mime"]["type"], "string");
    EXPECT_EQ(json[0]["format"]["mime"]["value"], "video/avi");
    EXPECT_EQ(json[0]["tracks"].size(), 2u);
    EXPECT_FALSE(json[0].contains("error"));
}

TEST_F(InfoJson, ATrackHasItsFormatAndItsCounts) {
    AviFile avi = smallFile();
    const Json json = parsed(tool({"info", write("clip.avi", avi.build()), "--json"}));
    const Json video = json.at(0).at("tracks").at(0);
    EXPECT_EQ(video["index"], 0);
    EXPECT_EQ(video["format"]["width"], Json({{"type", "int32"}, {"value", 320}}));
    EXPECT_EQ(video["format"]["height"], Json({{"type", "int32"}, {"value", 240}}));
    EXPECT_EQ(video["format"]["durationUs"], Json({{"type", "int64"}, {"value", 120000}}));
    EXPECT_EQ(video["samples"], 3);
    EXPECT_EQ(video["keySamples"], 2);
    size_t bytes = 0;
    for (const MoviChunk& chunk : avi.chunks(kVideo))
        bytes += chunk.data().size();
    EXPECT_EQ(video["bytes"], bytes);
    const Json audio = json.at(0).at("tracks").at(1);
    EXPECT_EQ(audio["index"], 1);
    EXPECT_EQ(audio["format"]["channel-count"]["value"], 2);
    EXPECT_EQ(audio["bytes"], 2880);
}

TEST_F(InfoJson, ShowsEveryTypeOfEntryInTheFormatsOrder) {
    const ToolRun run = failingTool("info", "k", {"--json"});
    const Json format = parsed(run).at(0).at("tracks").at(0).at("format");
    std::vector<std::string> names;
    for (const auto& item : format.items())
        names.push_back(item.key());
    EXPECT_EQ(names, (std::vector<std::string>{"mime", "an-int64", "a-float", "a-double", "a-size",
                                               "a-rect", "title", "csd-0", "csd-1", "csd-2"}));
    EXPECT_EQ(format["an-int64"]["value"], INT64_MIN);
    EXPECT_EQ(format["a-float"], Json({{"type", "float"}, {"value", 0.1}}));
    EXPECT_EQ(format["a-double"], Json({{"type", "double"}, {"value", 2.25}}));
    EXPECT_EQ(format["a-size"], Json({{"type", "size_t"}, {"value", 7}}));
    EXPECT_EQ(format["a-rect"]["value"], Json::array({1, -2, 3, 4}));
    EXPECT_EQ(format["csd-0"], Json({{"type", "data"}, {"size", 3}, {"hex", "0001ab"}}));
    EXPECT_EQ(format["csd-1"], Json({{"type", "data"}, {"size", 0}, {"hex", ""}}));
}

TEST_F(InfoJson, KeepsALongBufferWhole) {
    const ToolRun run = failingTool("info", "k", {"--json"});
    const Json buffer = parsed(run).at(0).at("tracks").at(0).at("format").at("csd-2");
    std::string whole;
    for (int i = 0; i < 100; ++i)
        whole += "5a";
    EXPECT_EQ(buffer["hex"], whole);
}

TEST_F(InfoJson, ReplacesBytesThatAreNoUtf8) {
    const ToolRun run = failingTool("info", "k", {"--json"});
    const Json title = parsed(run).at(0).at("tracks").at(0).at("format").at("title");
    EXPECT_EQ(title["value"], "caf\xC3\xA9 \xEF\xBF\xBD\n");
}

TEST_F(InfoJson, AFileThatFailsKeepsItsPlaceWithTheReason) {
    const ToolRun run = tool({"info", "--json", "missing.avi", write("text", "hello, world"),
                              write("clip.avi", smallFile().build())});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    ASSERT_EQ(json.size(), 3u);
    EXPECT_EQ(json[0], Json({{"file", "missing.avi"}, {"error", "No such file or directory"}}));
    EXPECT_EQ(json[1], Json({{"file", "text"}, {"error", "not claimed as AVI (confidence 0)"}}));
    EXPECT_EQ(json[2]["tracks"].size(), 2u);
}

}  // namespace avitest
