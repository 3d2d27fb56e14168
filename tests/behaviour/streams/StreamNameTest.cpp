// SPDX-License-Identifier: Apache-2.0
//
// The stream name and the language that it tells.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using android::service::Fault;
using ::testing::Contains;

class StreamName : public StreamsFixture {
  protected:
    AviFile mAvi = fileOf({mjpegStream()});

    void setName(Bytes name) {
        editStream(mAvi, 0, [name](Chunk& strl) { strl.add(Chunk("strn", name).marked("strn")); });
    }

    std::optional<std::string> language() {
        return trackFormat(0).getString(AMEDIAFORMAT_KEY_LANGUAGE);
    }

    std::optional<std::string> languageOf(const std::string& name) {
        setName(bytesOf(name));
        return open(mAvi) == 1 ? language() : "no track";
    }
};

TEST_F(StreamName, TellsTheLanguage) {
    const std::pair<const char*, const char*> kCases[] = {
        {"en-", "eng"}, {"fr-", "fre"}, {"de-", "deu"},
        {"es-", "spa"}, {"jp-", "jpn"}, {"zh-", "chi"},
    };
    for (const auto& [name, expected] : kCases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(expected, languageOf(name));
        EXPECT_EQ(expected, languageOf(std::string("Audio ") + name + "XX stream"));
    }
}

TEST_F(StreamName, LanguageMayStandAnywhere) {
    EXPECT_EQ("fre", languageOf("Stream fr-CA"));
}

TEST_F(StreamName, WithoutKnownLanguageIsUndetermined) {
    for (const char* name : {"Subtitle", "en", "EN-", "En-US", "it-IT", "ja-JP", "-", "e n-"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ("und", languageOf(name));
    }
}

// The table's order decides, not the place in the name.
TEST_F(StreamName, FirstLanguageOfTheTableWins) {
    EXPECT_EQ("eng", languageOf("zh-TW en-US"));
    EXPECT_EQ("fre", languageOf("zh-TW de-AT fr-FR"));
    EXPECT_EQ("deu", languageOf("es-ES de-AT"));
    EXPECT_EQ("spa", languageOf("jp-JP es-ES"));
    EXPECT_EQ("jpn", languageOf("zh-TW jp-JP"));
}

TEST_F(StreamName, NeedNotBeTerminated) {
    setName(bytesOf("xde-"));
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ("deu", language());
}

TEST_F(StreamName, EndsAtItsTerminator) {
    setName(ByteWriter().bytes("name").u8(0).bytes("fr-").take());
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ("und", language());
}

TEST_F(StreamName, OfLengthZeroIsUndetermined) {
    setName({});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ("und", language());
}

TEST_F(StreamName, IsNeededForALanguage) {
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(std::nullopt, language());
}

TEST_F(StreamName, IsReadForAudioToo) {
    Stream stream = pcmStream();
    stream.name = "Stream jp-";
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ("jpn", language());
}

TEST_F(StreamName, ThatCannotBeReadIsUndetermined) {
    setName(bytesOf("Stream fr-CA"));
    ASSERT_EQ(1u, openUnreadable(mAvi, "strn", 11));
    EXPECT_EQ("und", language());
    EXPECT_EQ(0u, mLog.count("Something wrong"));
}

TEST_F(StreamName, IsLoggedOnRequest) {
    setName(bytesOf("Stream fr-CA"));
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("strn 'Stream fr-CA', language 'fre'")));
}

TEST_F(StreamName, IsNotLoggedUnasked) {
    setName(bytesOf("Stream fr-CA"));
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("strn '"));
}

TEST_F(StreamName, ThatCannotBeReadIsNotLogged) {
    setProperty(kExtractLogProperty, "1");
    setName(bytesOf("Stream fr-CA"));
    ASSERT_EQ(1u, openUnreadable(mAvi, "strn", 11));
    EXPECT_EQ(0u, mLog.count("strn '"));
}

TEST_F(StreamName, LongestNameIsRead) {
    setName(bytesOf("Stream fr-CA"));
    ASSERT_EQ(1u, openWithLongChunk(mAvi, "strn", 0x0FFFFFFE));
    EXPECT_EQ("fre", language());
    EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
}

TEST_F(StreamName, LongerThanAnyNameIsNotRead) {
    setName(bytesOf("Stream fr-CA"));
    for (const uint32_t size : {0x0FFFFFFFu, 0x10000000u}) {
        SCOPED_TRACE(format("0x%08x", size));
        ASSERT_EQ(1u, openWithLongChunk(mAvi, "strn", size));
        EXPECT_EQ("und", language());
        EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
    }
}

}  // namespace avitest
