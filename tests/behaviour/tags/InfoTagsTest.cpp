// SPDX-License-Identifier: Apache-2.0
//
// The tags that are published with the file's format, their texts, and what the log tells of them.

#include "tests/behaviour/tags/TagsFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

class InfoTags : public TagsFixture {
  protected:
    // Texts of the file's format other than its type.
    size_t tagCount() {
        size_t texts = 0;
        for (const auto& entry : fileFormat().entries()) {
            const bool isText = std::holds_alternative<std::string>(entry.value);
            texts += isText && entry.name != AMEDIAFORMAT_KEY_MIME ? 1 : 0;
        }
        return texts;
    }
};

struct TagRow {
    const char* id;
    const char* key;  // null: none
};

void PrintTo(const TagRow& row, std::ostream* out) {
    *out << row.id;
}

constexpr TagRow kTags[] = {{"INAM", "title"}, {"IPRD", "album"}, {"IART", "albumartist"},
                            {"IGNR", "genre"}, {"ICRD", "year"},  {"ICMT", nullptr},
                            {"ICOP", nullptr}, {"ISFT", nullptr}};

class InfoTag : public InfoTags, public ::testing::WithParamInterface<TagRow> {};

TEST_P(InfoTag, SetsItsKeyOnly) {
    open(taggedFile({{ChunkId::of(GetParam().id), "Some text"}}));
    if (GetParam().key == nullptr) {
        EXPECT_EQ(0u, tagCount());
    } else {
        EXPECT_EQ("Some text", tag(GetParam().key));
        EXPECT_EQ(1u, tagCount());
    }
}

INSTANTIATE_TEST_SUITE_P(Table, InfoTag, ::testing::ValuesIn(kTags),
                         [](const auto& param) { return std::string(param.param.id); });

TEST_F(InfoTags, FileWithoutThemHasItsTypeOnly) {
    open(fileOfLists({}));
    EXPECT_EQ(0u, tagCount());
    EXPECT_EQ("video/avi", tag(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(InfoTags, AllKindsAreFoundInOneList) {
    open(taggedFile({{"ISFT", "a writer"},
                     {"INAM", "a title"},
                     {"ICMT", "a comment"},
                     {"IPRD", "an album"},
                     {"IART", "somebody"},
                     {"ICOP", "a right"},
                     {"IGNR", "a genre"},
                     {"ICRD", "1999"}}));
    EXPECT_EQ("a title", tag("title"));
    EXPECT_EQ("an album", tag("album"));
    EXPECT_EQ("somebody", tag("albumartist"));
    EXPECT_EQ("a genre", tag("genre"));
    EXPECT_EQ("1999", tag("year"));
    EXPECT_EQ(5u, tagCount());
}

TEST_F(InfoTags, LaterOneOverwritesAnEarlierOne) {
    open(taggedFile({{"INAM", "first"}, {"IART", "somebody"}, {"INAM", "second"}}));
    EXPECT_EQ("second", title());
    EXPECT_EQ("somebody", tag("albumartist"));
}

TEST_F(InfoTags, IdsAreKnownInUpperCaseOnly) {
    open(taggedFile({{"inam", "a title"}}));
    EXPECT_EQ(std::nullopt, title());
    EXPECT_THAT(log(), Contains(warning("parseINFO(): unknown meta key " + idText("inam"))));
}

TEST_F(InfoTags, OddTextWithoutTerminatorIsWhole) {
    open(fileOfTags({Chunk("INAM", bytesOf("Hello")), Chunk("IART", bytesOf("x"))}));
    EXPECT_EQ("Hello", title());
    EXPECT_EQ("x", tag("albumartist"));
}

TEST_F(InfoTags, EvenTextWithoutTerminatorIsWhole) {
    open(fileOfTags({Chunk("INAM", bytesOf("Even"))}));
    EXPECT_EQ("Even", title());
}

// Only the byte behind the padding is replaced: a pad byte that is no NUL shows.
TEST_F(InfoTags, PadByteBelongsToTheText) {
    Chunk odd("INAM", bytesOf("Hello"));
    odd.padByte = '!';
    open(fileOfTags({odd}));
    EXPECT_EQ("Hello!", title());
}

TEST_F(InfoTags, TextEndsAtItsFirstNul) {
    open(fileOfTags({Chunk("INAM", {'A', 'B', 0, 'C', 'D', 0})}));
    EXPECT_EQ("AB", title());
}

TEST_F(InfoTags, TextIsNotConverted) {
    const std::string latin1 = "Caf\xE9 \xFF\xFE\x80";
    open(fileOfTags({Chunk("INAM", bytesOf(latin1))}));
    EXPECT_EQ(latin1, title());
}

TEST_F(InfoTags, EmptyOneIsAnEmptyText) {
    open(fileOfTags({Chunk("INAM"), Chunk("IART", bytesOf("x"))}));
    EXPECT_EQ("", title());
    EXPECT_EQ("x", tag("albumartist"));
}

TEST_F(InfoTags, EmptyOneOverwritesAnEarlierOne) {
    open(fileOfTags({Chunk("INAM", bytesOf("first")), Chunk("INAM")}));
    EXPECT_EQ("", title());
}

TEST_F(InfoTags, UpTo4096PaddedBytesArePublished) {
    for (const size_t size : {4094, 4095, 4096}) {
        SCOPED_TRACE(size);
        open(fileOfTags({Chunk("INAM", Bytes(size, 'x'))}));
        EXPECT_EQ(std::string(size, 'x'), title());
    }
}

TEST_F(InfoTags, LongerOnesAreSkippedAndTheWalkGoesOn) {
    for (const size_t size : {4097, 4098, 5000, 100000}) {
        SCOPED_TRACE(size);
        mLog.clear();
        openLogged(fileOfTags({Chunk("ICMT", Bytes(size, 'c')), Chunk("INAM", Bytes(size, 'x')),
                               Chunk("IART", bytesOf("Somebody"))}));
        EXPECT_EQ(std::nullopt, title());
        EXPECT_EQ("Somebody", tag("albumartist"));
        EXPECT_EQ(2u, keyLines());
        EXPECT_EQ(1u, valueLines());
    }
}

TEST_F(InfoTags, KeyAndValueAreLoggedWhileTheExtractLogIsOn) {
    openLogged(fileOfTags({Chunk("INAM", bytesOf("Hello")), Chunk("IPRD", bytesOf("B side"))}));
    EXPECT_THAT(log(), Contains(verbose("parseINFO(): meta key 0x4d414e49:INAM")));
    EXPECT_THAT(log(), Contains(verbose("parseINFO(): meta value Hello, size 6")));
    EXPECT_THAT(log(), Contains(verbose("parseINFO(): meta key 0x44525049:IPRD")));
    EXPECT_THAT(log(), Contains(verbose("parseINFO(): meta value B side, size 6")));
    EXPECT_EQ(2u, keyLines());
    EXPECT_EQ(2u, valueLines());
}

TEST_F(InfoTags, KeyAndValueAreNotLoggedByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    open(taggedFile({{"INAM", "Hello"}}));
    EXPECT_EQ(0u, mLog.count("parseINFO"));
}

TEST_F(InfoTags, NothingIsLoggedOfThemWithTheSwitchesOff) {
    open(taggedFile({{"INAM", "Hello"}, {"ICMT", "x"}}));
    EXPECT_EQ(0u, mLog.count("parseINFO"));
}

TEST_F(InfoTags, SkippedKindsAreNeverLogged) {
    openLogged(taggedFile({{"ICMT", "a comment"}, {"ICOP", "a right"}}));
    EXPECT_EQ(0u, mLog.count("parseINFO"));
}

TEST_F(InfoTags, UnknownKindIsReportedWhateverTheSwitches) {
    const LogLine report = warning("parseINFO(): unknown meta key 0x54465349:ISFT");
    for (const char* value : {"0", "1"}) {
        SCOPED_TRACE(value);
        mLog.clear();
        setProperty(kExtractLogProperty, value);
        open(taggedFile({{"ISFT", "a writer"}}));
        EXPECT_THAT(log(), Contains(report).Times(1));
        EXPECT_EQ(1u, mLog.count("parseINFO"));
    }
}

}  // namespace
}  // namespace avitest
