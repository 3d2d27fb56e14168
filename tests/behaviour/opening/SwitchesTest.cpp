// SPDX-License-Identifier: Apache-2.0
//
// The three system properties: when they are read, which values count, what they switch.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Extractor;
using android::service::MemorySource;

class Switches : public LoggedFixture {
  protected:
    // Whether a parse of the file now open logs any verbose line.
    bool logsVerbosely() {
        mLog.clear();
        countTracks();
        return mLog.contains(ANDROID_LOG_VERBOSE, "");
    }

    bool showsHeaders() const {
        return mLog.contains(ANDROID_LOG_VERBOSE, "==== aviMainHeader ====");
    }
    bool showsChunks() const {
        return mLog.contains(ANDROID_LOG_VERBOSE, "parseFirstRIFF(): ID 0x5453494c:LIST at pos");
    }
};

TEST_F(Switches, AreOffByDefault) {
    openFile(twoStreamFile().build());
    EXPECT_FALSE(logsVerbosely());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(Switches, ExtractLogShowsWhatIsFound) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_TRUE(showsHeaders());
    EXPECT_FALSE(showsChunks());
}

TEST_F(Switches, VerboseLogShowsEachChunk) {
    setProperty(kVerboseLogProperty, "1");
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_TRUE(showsChunks());
    EXPECT_FALSE(showsHeaders());
}

TEST_F(Switches, BothLogsTogether) {
    openVerbosely(twoStreamFile().build());
    countTracks();
    EXPECT_TRUE(showsChunks());
    EXPECT_TRUE(showsHeaders());
}

TEST_F(Switches, DisableAudioDropsAudioStreams) {
    setProperty(kDisableAudioProperty, "1");
    openFile(twoStreamFile().build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ("video/x-motion-jpeg", trackFormat(0).getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(Switches, DisableAudioSwitchesNoLogOn) {
    setProperty(kDisableAudioProperty, "1");
    openFile(twoStreamFile().build());
    EXPECT_FALSE(logsVerbosely());
}

TEST_F(Switches, LogsDropNoAudio) {
    openVerbosely(twoStreamFile().build());
    EXPECT_EQ(2u, countTracks());
}

struct PropertyValue {
    const char* value;
    bool on;
};

TEST_F(Switches, ValueCountsByItsDecimalNumber) {
    const PropertyValue values[] = {
        {"0", false},  {"1", true},     {"2", true},  {"-1", true},   {"", false},  {"00", false},
        {"on", false}, {"true", false}, {" 1", true}, {"0x1", false}, {"1x", true},
    };
    for (const PropertyValue& item : values) {
        SCOPED_TRACE(item.value);
        setProperty(kExtractLogProperty, item.value);
        openFile(twoStreamFile().build());
        EXPECT_EQ(item.on, logsVerbosely());
        setProperty(kExtractLogProperty, "0");
        setProperty(kDisableAudioProperty, item.value);
        openFile(twoStreamFile().build());
        EXPECT_EQ(item.on ? 1u : 2u, countTracks());
        setProperty(kDisableAudioProperty, "0");
        setProperty(kVerboseLogProperty, item.value);
        openFile(twoStreamFile().build());
        EXPECT_EQ(item.on, logsVerbosely());
        setProperty(kVerboseLogProperty, "0");
    }
}

TEST_F(Switches, AreReadWhenTheExtractorIsConstructed) {
    openFile(twoStreamFile().build());
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    setProperty(kDisableAudioProperty, "1");
    EXPECT_FALSE(logsVerbosely());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(Switches, StayOnUntilTheNextExtractorIsConstructed) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    setProperty(kExtractLogProperty, "0");
    EXPECT_TRUE(logsVerbosely());
}

TEST_F(Switches, AreSharedByAllExtractorsOfTheProcess) {
    openFile(twoStreamFile().build());
    setProperty(kExtractLogProperty, "1");
    setProperty(kDisableAudioProperty, "1");
    MemorySource other(twoStreamFile().build());
    const auto second = Extractor::open(pluginUnderTest(), other);
    ASSERT_NE(nullptr, second);
    EXPECT_TRUE(logsVerbosely());
    EXPECT_EQ(1u, countTracks());
}

TEST_F(Switches, AreTurnedOffForAllExtractorsOfTheProcess) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    setProperty(kExtractLogProperty, "0");
    MemorySource other(twoStreamFile().build());
    const auto second = Extractor::open(pluginUnderTest(), other);
    ASSERT_NE(nullptr, second);
    EXPECT_FALSE(logsVerbosely());
}

}  // namespace
}  // namespace avitest
