// SPDX-License-Identifier: Apache-2.0
//
// The format of an audio stream: its length, the bytes behind it, what it publishes and logs. Extra
// data is watched through WMA, whose configuration shows it whole.

#include <media/NdkMediaFormatRuvo.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;

class AudioFormat : public StreamsFixture {
  protected:
    // Opens a WMA stream with these bytes behind the 16 of its header, and a video stream behind
    // it.
    size_t openWithRest(const Bytes& rest) {
        mAvi = fileOf({audioOfTag(0x161), mjpegStream()});
        editStream(mAvi, 0, [rest](Chunk& strl) {
            Bytes& payload = strl.child("strf").marked("strf").payload;
            payload.resize(16);
            payload.insert(payload.end(), rest.begin(), rest.end());
        });
        mLog.clear();
        return open(mAvi);
    }

    // The configuration behind its copy of the first 16 bytes: extra size and extra data. Audio is
    // the second track, as the video is put first.
    std::optional<Bytes> extra() {
        std::optional<Bytes> csd = trackFormat(1).getBuffer(AMEDIAFORMAT_KEY_CSD_0);
        if (csd && csd->size() >= 16) csd->erase(csd->begin(), csd->begin() + 16);
        return csd;
    }

    void expectSkipped(size_t bytes) {
        EXPECT_EQ(std::nullopt, extra());
        EXPECT_THAT(
            log(),
            Contains(warning(format("parseSTRF(): skip invalid codec data %zu bytes", bytes))));
    }

    AviFile mAvi;
};

TEST_F(AudioFormat, Of16BytesHasNoExtraData) {
    ASSERT_EQ(2u, openWithRest({}));
    EXPECT_EQ(std::nullopt, extra());
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
    EXPECT_EQ(0u, mLog.count("extra config data"));
}

TEST_F(AudioFormat, Under16BytesDropsTheStream) {
    for (const size_t size : {0u, 2u, 14u, 15u}) {
        SCOPED_TRACE(size);
        Stream stream = pcmStream();
        stream.edit = [size](Chunk& strl) { strl.child("strf").payload.resize(size); };
        EXPECT_FALSE(becomesTrack(stream));
        EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EF")));
    }
}

TEST_F(AudioFormat, ThatCannotBeReadDropsTheStream) {
    mAvi = fileOf({pcmStream(), mjpegStream()});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(1u, openUnreadable(mAvi, "strf", 15));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(AudioFormat, OneOrTwoBytesBehindTheHeaderAreSkipped) {
    for (const size_t size : {1u, 2u}) {
        SCOPED_TRACE(size);
        ASSERT_EQ(2u, openWithRest(Bytes(size)));
        expectSkipped(size);
    }
}

TEST_F(AudioFormat, ExtraSizeAloneIsSkipped) {
    setProperty(kExtractLogProperty, "1");
    ASSERT_EQ(2u, openWithRest({2, 0}));
    expectSkipped(2);
    EXPECT_THAT(log(), Contains(verbose("   size = 0")));
    EXPECT_EQ(0u, mLog.count("aHeader.size"));
}

TEST_F(AudioFormat, PadByteDoesNotMakeRoomForExtraData) {
    ASSERT_EQ(2u, openWithRest({5, 0, 0xA1}));
    expectSkipped(3);
    ASSERT_EQ(2u, openWithRest({4, 0, 0xA1}));
    expectSkipped(3);
    ASSERT_EQ(2u, openWithRest({1, 0, 0xA1}));
    EXPECT_EQ((Bytes{1, 0, 0xA1}), extra());
}

TEST_F(AudioFormat, ExtraDataIsAsLongAsItsSizeSays) {
    ASSERT_EQ(2u, openWithRest({3, 0, 0xA1, 0xA2, 0xA3, 0xA4}));
    EXPECT_EQ((Bytes{3, 0, 0xA1, 0xA2, 0xA3}), extra());
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
}

TEST_F(AudioFormat, ExtraDataMayFillTheChunk) {
    ASSERT_EQ(2u, openWithRest({4, 0, 0xA1, 0xA2, 0xA3, 0xA4}));
    EXPECT_EQ((Bytes{4, 0, 0xA1, 0xA2, 0xA3, 0xA4}), extra());
}

TEST_F(AudioFormat, ExtraSizeHas16Bits) {
    for (const uint16_t size : {0x00FE, 0x00FF, 0x0100, 0x1234, 0x7FFE, 0x8000, 0xFFFC}) {
        SCOPED_TRACE(format("0x%04x", size));
        const Bytes rest = ByteWriter().u16(size).bytes(patternBytes(size)).take();
        ASSERT_EQ(2u, openWithRest(rest));
        EXPECT_EQ(rest, extra());
    }
}

// That line is of video alone.
TEST_F(AudioFormat, ExtraDataIsNotLoggedAsThatOfVideo) {
    for (const uint16_t size : {24, 25, 60, 1000}) {
        SCOPED_TRACE(size);
        ASSERT_EQ(2u, openWithRest(ByteWriter().u16(size).bytes(patternBytes(size)).take()));
        EXPECT_EQ(0u, mLog.count("extra config data"));
    }
}

TEST_F(AudioFormat, ExtraSizeZeroGivesEmptyExtraData) {
    ASSERT_EQ(2u, openWithRest({0, 0, 0xA1, 0xA2}));
    EXPECT_EQ((Bytes{0, 0}), extra());
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
}

// Some writers count the size field itself: two bytes of the next chunk come along.
TEST_F(AudioFormat, ExtraSizeMayCountItsOwnField) {
    ASSERT_EQ(2u, openWithRest({6, 0, 0xA1, 0xA2, 0xA3, 0xA4}));
    EXPECT_EQ((Bytes{6, 0, 0xA1, 0xA2, 0xA3, 0xA4, 'L', 'I'}), extra());
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
}

TEST_F(AudioFormat, ExtraSizeBeyondTheChunkIsSkipped) {
    for (const uint8_t size : {7, 8, 0xFF}) {
        SCOPED_TRACE(int{size});
        ASSERT_EQ(2u, openWithRest({size, 0, 0xA1, 0xA2, 0xA3, 0xA4}));
        expectSkipped(6);
    }
}

TEST_F(AudioFormat, ExtraSizeThatCountsItsOwnFieldAtTheEndOfTheFileDropsTheStream) {
    mAvi = fileOf({audioWithExtra(0x161, patternBytes(4))});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf").payload[16] = 6; });
    Bytes file = mAvi.build();
    const ChunkPlace place = mAvi.place("strf");
    file.resize(place.dataOffset + place.dataSize + 1);
    EXPECT_EQ(0u, open(file));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

// What is compared is the rest of the chunk with its low 16 bits replaced by the extra size.
TEST_F(AudioFormat, RestOf64KiBComparesItsLowerHalf) {
    Bytes rest(0x10004);
    rest[0] = 4;
    rest[2] = 0xA1;
    ASSERT_EQ(2u, openWithRest(rest));
    EXPECT_EQ((Bytes{4, 0, 0xA1, 0, 0, 0}), extra());

    rest[0] = 5;
    ASSERT_EQ(2u, openWithRest(rest));
    expectSkipped(0x10004);
}

TEST_F(AudioFormat, ExtraSizeThatCannotBeReadDropsTheStream) {
    mAvi = fileOf({audioWithExtra(0x161, patternBytes(4)), mjpegStream()});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(1u, openUnreadable(mAvi, "strf", 17));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(AudioFormat, ExtraDataThatCannotBeReadDropsTheStream) {
    mAvi = fileOf({audioWithExtra(0x161, patternBytes(4)), mjpegStream()});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(1u, openUnreadable(mAvi, "strf", 21));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(AudioFormat, ExtraDataIsLoggedOnRequest) {
    mAvi = fileOf({audioWithExtra(0x161, {0x12, 0x10, 0xFE})});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("parseSTRF(): aHeader.size = 3"),
                           verbose("12 10 fe "),
                           verbose("parseSTRF(): profile 1, samplingFreqIndex 4, channelConfig 2"),
                       }));
}

TEST_F(AudioFormat, ExtraDataIsNotLoggedUnasked) {
    mAvi = fileOf({audioWithExtra(0x161, {0x12, 0x10, 0xFE})});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("aHeader.size"));
    EXPECT_EQ(0u, mLog.count("12 10 fe"));
    EXPECT_EQ(0u, mLog.count("samplingFreqIndex"));
}

// The profile is one less than the five bits, in 8 bits.
TEST_F(AudioFormat, ProfileZeroWrapsInTheLog) {
    mAvi = fileOf({audioWithExtra(0x161, {0x07, 0xFF})});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(
        log(),
        Contains(verbose("parseSTRF(): profile 255, samplingFreqIndex 15, channelConfig 15")));
}

TEST_F(AudioFormat, OneExtraByteTellsNoProfile) {
    mAvi = fileOf({audioWithExtra(0x161, {0x12})});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("12 ")));
    EXPECT_EQ(0u, mLog.count("samplingFreqIndex"));
}

TEST_F(AudioFormat, PublishesChannelsRateAndBlock) {
    Stream stream = audioStream(0x2000, 2, 48000, 24000, 1536);
    mAvi = fileOf({stream});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(2, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    EXPECT_EQ(48000, int32Of(0, AMEDIAFORMAT_KEY_SAMPLE_RATE));
    EXPECT_EQ(1536, int32Of(0, AMEDIAFORMAT_KEY_BLOCKALIGN));
    EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_WIDTH));
}

TEST_F(AudioFormat, FiveChannelsArePublishedAsSix) {
    const std::pair<uint16_t, int32_t> kCases[] = {{0, 0}, {1, 1}, {2, 2}, {4, 4},
                                                   {5, 6}, {6, 6}, {8, 8}};
    for (const auto& [channels, published] : kCases) {
        SCOPED_TRACE(channels);
        Stream stream = audioOfTag(1);
        std::get<WaveFormat>(stream.format).channels = channels;
        mAvi = fileOf({stream});
        ASSERT_EQ(1u, open(mAvi));
        EXPECT_EQ(published, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    }
}

TEST_F(AudioFormat, FiveChannelsOfEveryOtherTagArePublishedAsSix) {
    for (const uint16_t tag : {0x0002, 0x0006, 0x0007, 0x0011, 0x0050, 0x0055, 0x0057, 0x0160,
                               0x0161, 0x0162, 0x1234, 0x2000, 0x2001, 0x7A21, 0xFFFD, 0xFFFF}) {
        SCOPED_TRACE(format("0x%04x", tag));
        Stream stream = audioOfTag(tag);
        std::get<WaveFormat>(stream.format).channels = 5;
        mAvi = fileOf({stream});
        ASSERT_EQ(1u, open(mAvi));
        EXPECT_EQ(6, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    }
}

TEST_F(AudioFormat, FiveChannelsOfTheExtensibleFormatStayFive) {
    Stream stream = audioWithExtra(0xFFFE, ExtensibleFormat().toBytes());
    std::get<WaveFormat>(stream.format).channels = 5;
    mAvi = fileOf({stream});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(5, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
}

TEST_F(AudioFormat, GenerationOfWindowsMediaAudioIsPublished) {
    const std::pair<uint16_t, int32_t> kCases[] = {
        {0x0160, 1}, {0x0161, 2}, {0x0162, 3}, {0x0001, 3}, {0x2000, 3}, {0xFFFE, 3}, {0x1234, 3}};
    for (const auto& [tag, version] : kCases) {
        SCOPED_TRACE(format("0x%04x", tag));
        mAvi = fileOf({audioOfTag(tag)});
        ASSERT_EQ(1u, open(mAvi));
        EXPECT_EQ(version, int32Of(0, AMEDIAFORMAT_KEY_AUDIO_FORMAT));
        EXPECT_EQ(version, int32Of(0, AMEDIAFORMAT_KEY_AUDIO_PROFILE));
    }
}

TEST_F(AudioFormat, AllFieldsAreLoggedOnRequest) {
    Stream stream = audioStream(0x2000, 5, 48000, 24000, 1536, 18);
    std::get<WaveFormat>(stream.format).extra = {1, 2, 3};
    mAvi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(2u, openLogged(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("==== AVIWaveFormat ===="),
                           verbose("   formatTag = 0x2000(audio/ac3)"),
                           verbose("   nChannels = 6"),
                           verbose("   nSamplesPerSec = 48000"),
                           verbose("   nAvgBytesPerSec = 24000"),
                           verbose("   nBlockAlign = 1536"),
                           verbose("   bitsPerSample = 18"),
                           verbose("   size = 3"),
                           verbose("parseSTRF(audio/ac3): Initialize seekTimeUs(1, -1)"),
                       }));
}

TEST_F(AudioFormat, FieldsAreNotLoggedUnasked) {
    mAvi = fileOf({audioOfTag(0x2000)});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("==== AVIWaveFormat ===="));
    EXPECT_EQ(0u, mLog.count("   formatTag"));
    EXPECT_EQ(0u, mLog.count("Initialize seekTimeUs"));
}

// The seek time goes by the stream's number in the file, dropped streams counted.
TEST_F(AudioFormat, SeekTimeIsMadeForEachStream) {
    Stream text = pcmStream();
    text.header.type = "txts";
    mAvi = fileOf({text, audioOfTag(0x2000), audioOfTag(0x2001)});
    ASSERT_EQ(2u, openLogged(mAvi));
    EXPECT_EQ(2u, mLog.count("Initialize seekTimeUs("));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(audio/ac3): Initialize seekTimeUs(1, -1)")));
    EXPECT_THAT(log(), Contains(verbose("parseSTRF(audio/vnd.dts): Initialize seekTimeUs(2, -1)")));
}

}  // namespace avitest
