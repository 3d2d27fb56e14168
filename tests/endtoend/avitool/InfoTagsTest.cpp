// SPDX-License-Identifier: Apache-2.0
// What `info` shows beyond formats and counts: the file's tags, and the plug-in's own account of
// each track.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// A file with these chunks in its INFO list.
Bytes taggedFile(std::vector<Chunk> tags) {
    AviFile avi = smallFile();
    avi.segment().beforeMovi.push_back(Chunk::list("INFO", std::move(tags)));
    return avi.build();
}

Chunk tag(ChunkId id, const std::string& text) {
    return Chunk(id, bytesOf(text));
}

}  // namespace

class InfoTags : public ToolFixture {
  protected:
    ToolRun info(const Bytes& file, const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"info", write("tagged.avi", file)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return tool(arguments);
    }
};

TEST_F(InfoTags, AreASectionOfTheirOwnInOneOrder) {
    const ToolRun run =
        info(taggedFile({tag("ICRD", "1999"), tag("IGNR", "Drama"), tag("IART", "Somebody"),
                         tag("IPRD", "Collected films"), tag("INAM", "A film")}));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n\nTags\n"
                                             "Title A film\n"
                                             "Album Collected films\n"
                                             "Album artist Somebody\n"
                                             "Genre Drama\n"
                                             "Year 1999\n"
                                             "\nTrack 0\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("albumartist")));
    EXPECT_THAT(squeezed(run.out), Not(HasSubstr("title string")));
}

TEST_F(InfoTags, StandBelowTheValuesOfTheFile) {
    const ToolRun run = info(taggedFile({tag("INAM", "A film")}));
    EXPECT_THAT(run.out, HasSubstr("\n  confidence        1.4\n"));
    EXPECT_THAT(run.out, HasSubstr("\n  Title             A film\n"));
}

TEST_F(InfoTags, OnlyThoseOfTheFileAreShown) {
    const ToolRun run = info(taggedFile({tag("IGNR", "Drama")}));
    EXPECT_THAT(squeezed(run.out), HasSubstr("\n\nTags\nGenre Drama\n\nTrack 0\n"));
    EXPECT_EQ(parsed(info(taggedFile({tag("IGNR", "Drama")}), {"--json"})).at(0).at("tags"),
              Json({{"genre", "Drama"}}));
}

TEST_F(InfoTags, WithoutAnyThereIsNoSection) {
    const Bytes file = smallFile().build();
    EXPECT_THAT(info(file).out, Not(HasSubstr("Tags")));
    EXPECT_EQ(parsed(info(file, {"--json"})).at(0).at("tags"), Json::object());
}

TEST_F(InfoTags, JsonHasThemBesideTheFormatsKeys) {
    const ToolRun run = info(taggedFile({tag("INAM", "A film"), tag("IPRD", "Collected films"),
                                         tag("IART", "Somebody"), tag("ICRD", "1999")}),
                             {"--json"});
    const Json file = parsed(run).at(0);
    EXPECT_EQ(file["tags"], Json({{"title", "A film"},
                                  {"album", "Collected films"},
                                  {"album_artist", "Somebody"},
                                  {"year", "1999"}}));
    EXPECT_EQ(file["format"]["title"], Json({{"type", "string"}, {"value", "A film"}}));
    EXPECT_EQ(file["format"]["albumartist"]["value"], "Somebody");
}

TEST_F(InfoTags, BytesThatAreNoUtf8AreEscapedOrReplaced) {
    const Bytes file = taggedFile({tag("INAM", "caf\xE9"), tag("IPRD", "caf\xC3\xA9")});
    const ToolRun text = info(file);
    EXPECT_THAT(squeezed(text.out), HasSubstr("\nTitle caf\\xe9\nAlbum caf\xC3\xA9\n"));
    const Json tags = parsed(info(file, {"--json"})).at(0).at("tags");
    EXPECT_EQ(tags["title"], "caf\xEF\xBF\xBD");
    EXPECT_EQ(tags["album"], "caf\xC3\xA9");
}

TEST_F(InfoTags, ControlCharactersDoNotReachTheTerminal) {
    const Bytes file = taggedFile({tag("INAM", "\x1B[2Ja\nfilm")});
    EXPECT_THAT(squeezed(info(file).out), HasSubstr("\nTitle \\x1b[2Ja\\x0afilm\n"));
    EXPECT_EQ(parsed(info(file, {"--json"})).at(0).at("tags").at("title"), "\x1B[2Ja\nfilm");
}

// C1 in one character, DEL, an override and an isolate of text that runs to the left, a separator
// of lines, and the Arabic letter mark.
constexpr char kInvisible[] = "\xC2\x9B|\x7F|\xE2\x80\xAE|\xE2\x81\xA6|\xE2\x80\xA8|\xD8\x9C";

TEST_F(InfoTags, CharactersThatDirectATerminalAreEscapedInText) {
    EXPECT_THAT(squeezed(info(taggedFile({tag("INAM", kInvisible)})).out),
                HasSubstr("\nTitle \\xc2\\x9b|\\x7f|\\xe2\\x80\\xae|\\xe2\\x81\\xa6|"
                          "\\xe2\\x80\\xa8|\\xd8\\x9c\n"));
}

TEST_F(InfoTags, CharactersThatDirectATerminalAreEscapedInJson) {
    const ToolRun run = info(taggedFile({tag("INAM", kInvisible)}), {"--json"});
    EXPECT_THAT(run.out,
                HasSubstr("\"title\": \"\\u009b|\\u007f|\\u202e|\\u2066|\\u2028|\\u061c\""));
    EXPECT_EQ(parsed(run).at(0).at("tags").at("title"), kInvisible);
}

TEST_F(InfoTags, NeighboursOfThoseCharactersAreShown) {
    const std::string title =
        "\xC2\xA0|~|\xE2\x80\x90|\xE2\x80\xA7|\xE2\x80\xAF|\xE2\x81\xA5|\xE2\x81\xB0|\xD8\x9B";
    const Bytes file = taggedFile({tag("INAM", title)});
    EXPECT_THAT(info(file).out, HasSubstr(title));
    EXPECT_THAT(info(file, {"--json"}).out, HasSubstr(title));
}

TEST_F(InfoTags, ALongTextIsShortenedForPeopleOnly) {
    const std::string title(3000, 'x');
    const Bytes file = taggedFile({tag("INAM", title)});
    EXPECT_THAT(info(file).out, HasSubstr("  " + std::string(200, 'x') + "...\n"));
    EXPECT_EQ(parsed(info(file, {"--json"})).at(0).at("tags").at("title"), title);
}

class TrackDump : public InfoTags {};

constexpr char kDump[] = "V RuvoAVIExtractor: Dump Track[";

TEST_F(TrackDump, OfEveryTrackIsInTheVerboseLogOfInfo) {
    const ToolRun run = info(smallFile().build(), {"--log", "verbose"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("V RuvoAVIExtractor: Dump Track[0]:\n"
                                   "V RuvoAVIExtractor:     mScale         1\n"
                                   "V RuvoAVIExtractor:     mRate          25\n"));
    EXPECT_THAT(run.err, HasSubstr("V RuvoAVIExtractor: Dump Track[1]:\n"));
    EXPECT_THAT(run.err, HasSubstr("V RuvoAVIExtractor:     mTotalSamples      "));
}

TEST_F(TrackDump, IsNotThereWhenSetSwitchesItOff) {
    const std::string off = "vendor.ruvo.avi.extract.log=0";
    const ToolRun run = info(smallFile().build(), {"--log", "verbose", "--set", off});
    EXPECT_NE(run.err, "");
    EXPECT_THAT(run.err, Not(HasSubstr(kDump)));
}

TEST_F(TrackDump, IsNotInTheLogOfOtherLevels) {
    EXPECT_THAT(info(smallFile().build(), {"--log", "debug"}).err, Not(HasSubstr("Dump Track")));
}

TEST_F(TrackDump, IsNotInTheLogOfOtherCommands) {
    const std::string file = write("clip.avi", smallFile().build());
    EXPECT_THAT(tool({"samples", file, "--log", "verbose"}).err, Not(HasSubstr(kDump)));
    EXPECT_THAT(
        tool({"samples", file, "--log", "verbose", "--set", "vendor.ruvo.avi.extract.log=1"}).err,
        HasSubstr(kDump));
}

}  // namespace avitest
