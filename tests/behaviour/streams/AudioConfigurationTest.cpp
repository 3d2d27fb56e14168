// SPDX-License-Identifier: Apache-2.0
//
// Configuration that stands behind the wave header: WMA and Vorbis.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::IsSupersetOf;

class AudioConfiguration : public StreamsFixture {
  protected:
    std::optional<Bytes> buffer(const char* key) { return trackFormat(0).getBuffer(key); }

    bool takesVorbis(const Bytes& extra) { return becomesTrack(audioWithExtra(0x566F, extra)); }
};

TEST_F(AudioConfiguration, WmaGetsTheWholeWaveFormat) {
    for (const uint16_t tag : {0x160, 0x161}) {
        SCOPED_TRACE(tag);
        Stream stream = audioStream(tag, 5, 0x01020304, 0x05060708, 0x090A, 0x0B0C);
        const Bytes extra = patternBytes(10);
        std::get<WaveFormat>(stream.format).extra = extra;
        AviFile avi = fileOf({stream});
        ASSERT_EQ(1u, open(avi));
        const Bytes expected = ByteWriter()
                                   .u16(tag)
                                   .u16(5)
                                   .u32(0x01020304)
                                   .u32(0x05060708)
                                   .u16(0x090A)
                                   .u16(0x0B0C)
                                   .u16(10)
                                   .bytes(extra)
                                   .take();
        EXPECT_EQ(expected, buffer(AMEDIAFORMAT_KEY_CSD_0));
        EXPECT_EQ(6, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    }
}

TEST_F(AudioConfiguration, WmaIsLoggedOnRequest) {
    Stream stream = audioStream(0x161, 2, 44100, 16000, 743, 16);
    std::get<WaveFormat>(stream.format).extra = {0xA1, 0xA2, 0xA3, 0xA4};
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, openLogged(avi));
    EXPECT_THAT(log(), Contains(verbose("kKeyWMAC size is 22\n")));
    EXPECT_THAT(log(), Contains(verbose("61 01 02 00 44 ac 00 00 80 3e 00 00 e7 02 10 00\n"
                                        "04 00 a1 a2 a3 a4 ")));
}

TEST_F(AudioConfiguration, WmaIsNotLoggedUnasked) {
    AviFile avi = fileOf({audioWithExtra(0x161, patternBytes(10))});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(0u, mLog.count("kKeyWMAC"));
}

TEST_F(AudioConfiguration, WmaWithoutExtraDataGetsNone) {
    AviFile avi = fileOf({audioOfTag(0x161)});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_0));
    EXPECT_EQ("audio/x-ms-wma", mime(0));
}

TEST_F(AudioConfiguration, OtherCodecsGetNoWaveFormat) {
    for (const uint16_t tag : {0x0162, 0x0001, 0x2000, 0x1234}) {
        SCOPED_TRACE(format("0x%04x", tag));
        AviFile avi = fileOf({audioWithExtra(tag, patternBytes(10))});
        ASSERT_EQ(1u, open(avi));
        EXPECT_EQ(std::nullopt, buffer(AMEDIAFORMAT_KEY_CSD_0));
    }
}

TEST_F(AudioConfiguration, VorbisHeadersArePublished) {
    const Bytes headers = vorbisHeaders();
    AviFile avi = fileOf({audioWithExtra(0x6771, headers)});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ("audio/vorbis", mime(0));
    EXPECT_EQ(Bytes(headers.begin() + 3, headers.begin() + 33), buffer(AMEDIAFORMAT_KEY_CSD_0));
    EXPECT_EQ(Bytes(headers.begin() + 53, headers.end()), buffer(AMEDIAFORMAT_KEY_CSD_1));
}

TEST_F(AudioConfiguration, VorbisHeadersAreLoggedOnRequest) {
    AviFile avi = fileOf({audioWithExtra(0x566F, {2, 2, 1, 1, 0xAA, 3, 5, 0xBB, 0xCC, 0xDD})});
    ASSERT_EQ(1u, openLogged(avi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("kKeyVorbisInfo(2):"),
                           verbose("01 aa "),
                           verbose("kKeyVorbisBooks(4):"),
                           verbose("05 bb cc dd "),
                       }));
}

TEST_F(AudioConfiguration, VorbisHeadersAreNotLoggedUnasked) {
    AviFile avi = fileOf({audioWithExtra(0x566F, vorbisHeaders())});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(0u, mLog.count("kKeyVorbis"));
}

TEST_F(AudioConfiguration, VorbisSetupOfOneByteIsTaken) {
    EXPECT_TRUE(takesVorbis({2, 1, 1, 1, 3, 5}));
}

TEST_F(AudioConfiguration, VorbisWithoutExtraDataIsDropped) {
    EXPECT_FALSE(takesVorbis({}));
}

TEST_F(AudioConfiguration, VorbisCutHeadersAreDropped) {
    const Bytes headers = vorbisHeaders();
    for (size_t size = 1; size <= 53; ++size) {
        SCOPED_TRACE(size);
        EXPECT_FALSE(takesVorbis(Bytes(headers.begin(), headers.begin() + size)));
    }
    EXPECT_TRUE(takesVorbis(Bytes(headers.begin(), headers.begin() + 54)));
}

TEST_F(AudioConfiguration, VorbisNeedsThreePackets) {
    Bytes headers = vorbisHeaders();
    for (const uint8_t count : {0, 1, 3, 255}) {
        headers[0] = count;
        EXPECT_FALSE(takesVorbis(headers)) << int{count};
    }
}

TEST_F(AudioConfiguration, VorbisPacketsMustBeginWithTheirTypes) {
    for (const size_t at : {3u, 33u, 53u}) {
        for (const uint8_t type : {0, 1, 3, 5, 255}) {
            Bytes headers = vorbisHeaders();
            if (headers[at] == type) continue;
            headers[at] = type;
            EXPECT_FALSE(takesVorbis(headers)) << "byte " << at << " is " << int{type};
        }
    }
}

TEST_F(AudioConfiguration, VorbisPacketsAreNeverEmpty) {
    // The same byte would have to be two types at once.
    EXPECT_FALSE(takesVorbis({2, 0, 1, 1, 5, 0, 0}));
    EXPECT_FALSE(takesVorbis({2, 1, 0, 1, 3, 5, 0}));
}

TEST_F(AudioConfiguration, VorbisLengthsBeyondTheExtraDataAreDropped) {
    EXPECT_FALSE(takesVorbis({2, 255, 255, 1, 3, 5}));
    EXPECT_FALSE(takesVorbis({2, 1, 2, 1, 3, 5}));
}

TEST_F(AudioConfiguration, VorbisSkippedExtraDataIsDropped) {
    Stream stream = audioWithExtra(0x566F, vorbisHeaders());
    std::get<WaveFormat>(stream.format).extraSize = 1000;
    EXPECT_FALSE(becomesTrack(stream));
}

}  // namespace avitest
