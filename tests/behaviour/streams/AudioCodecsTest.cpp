// SPDX-License-Identifier: Apache-2.0
//
// The MIME type of an audio stream by its format tag, and the sample widths that are playable.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"
#include "tests/support/CodecTable.h"

namespace avitest {

using android::service::Fault;
using ::testing::Contains;
using ::testing::Not;

class AudioCodec : public StreamsFixture {
  protected:
    // Whether a stream of this tag and sample width becomes a track.
    bool takesWidth(uint16_t tag, uint16_t bits) {
        Stream stream = audioOfTag(tag);
        std::get<WaveFormat>(stream.format).bitsPerSample = bits;
        return becomesTrack(stream);
    }

    void expectWidths(uint16_t tag, const std::vector<uint16_t>& good) {
        for (uint16_t bits = 0; bits <= 33; ++bits) {
            SCOPED_TRACE(format("tag 0x%04x, %u bits", tag, bits));
            const bool expected = std::find(good.begin(), good.end(), bits) != good.end();
            EXPECT_EQ(expected, takesWidth(tag, bits));
        }
    }
};

class KnownAudioCodec : public AudioCodec, public ::testing::WithParamInterface<AudioCodecRow> {};

TEST_P(KnownAudioCodec, IsToldByItsTag) {
    const bool vorbis = std::string(GetParam().mime) == "audio/vorbis";
    AviFile avi = fileOf({audioWithExtra(GetParam().tag, vorbis ? vorbisHeaders() : Bytes())});
    ASSERT_EQ(1u, openLogged(avi));
    EXPECT_EQ(GetParam().mime, mime(0));
    EXPECT_EQ(0u, mLog.count("unknown wave"));
    EXPECT_THAT(
        log(),
        Contains(verbose(format("   formatTag = 0x%x(%s)", GetParam().tag, GetParam().mime))));
}

INSTANTIATE_TEST_SUITE_P(Table, KnownAudioCodec, ::testing::ValuesIn(kAudioCodecs),
                         [](const auto& param) { return format("Tag%04X", param.param.tag); });

TEST_F(AudioCodec, OutsideTheTableIsUnknown) {
    for (const uint16_t tag : {0x0000, 0x0003, 0x0008, 0x0010, 0x0056, 0x0059, 0x00FE, 0x0163,
                               0x2002, 0x4341, 0x6F56, 0x6752, 0x7A20, 0x7A23, 0xFFFF}) {
        SCOPED_TRACE(format("0x%04x", tag));
        AviFile avi = fileOf({audioOfTag(tag)});
        mLog.clear();
        ASSERT_EQ(1u, open(avi));
        EXPECT_EQ("audio/x-unknown", mime(0));
        EXPECT_THAT(log(), Contains(warning(format("unknown wave %x", tag))));
    }
}

TEST_F(AudioCodec, UnknownOneIsStillRead) {
    AviFile avi = fileOf({audioOfTag(0x1234)});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(2, int32Of(0, AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(AudioCodec, PcmTakesWholeBytes) {
    expectWidths(0x0001, {8, 16, 24, 32});
}

TEST_F(AudioCodec, ALawTakesEightBits) {
    expectWidths(0x0006, {8});
    expectWidths(0x0102, {8});
}

TEST_F(AudioCodec, MuLawTakesEightBits) {
    expectWidths(0x0007, {8});
    expectWidths(0x0101, {8});
}

TEST_F(AudioCodec, MsAdpcmTakesFourBits) {
    expectWidths(0x0002, {4});
}

TEST_F(AudioCodec, ImaAdpcmTakesFourBits) {
    expectWidths(0x0011, {4});
}

TEST_F(AudioCodec, WidthsCountWithTheirUpperByte) {
    for (const uint16_t bits : {0x0104, 0x0108, 0x0110, 0x0118, 0x1020, 0x8008, 0xFF10}) {
        for (const uint16_t tag : {0x0001, 0x0002, 0x0006, 0x0007, 0x0011})
            EXPECT_FALSE(takesWidth(tag, bits)) << format("tag 0x%04x, %u bits", tag, bits);
    }
}

// The extra size follows the width in the stream format.
TEST_F(AudioCodec, WidthsAreOf16Bits) {
    Stream stream = pcmStream();
    std::get<WaveFormat>(stream.format).extra = patternBytes(6);
    EXPECT_TRUE(becomesTrack(stream));
}

TEST_F(AudioCodec, OtherCodecsTakeAnyWidth) {
    for (const uint16_t tag : {0x0057, 0x00FF, 0x0161, 0x2000, 0x2001, 0x1234, 0xFFFE}) {
        for (const uint16_t bits : {0, 4, 8, 12, 16, 65535})
            EXPECT_TRUE(takesWidth(tag, bits)) << format("tag 0x%04x, %u bits", tag, bits);
    }
}

TEST_F(AudioCodec, StreamBehindABadOneKeepsItsChunks) {
    AviFile avi = fileOf({pcmStream(1, 8000, 12), pcmStream()});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(avi.payloads(1), readPayloads(0));
    EXPECT_THAT(log(), Contains(dropped()));
}

// The extensible format names the codec in its extra data. Its samples are unreadable here, so that
// nothing is concluded from them.
class ExtensibleAudio : public StreamsFixture {
  protected:
    void openExtensible(const Bytes& extra, uint16_t bits = 16) {
        Stream stream = audioWithExtra(0xFFFE, extra);
        std::get<WaveFormat>(stream.format).bitsPerSample = bits;
        openUnreadable(stream);
    }

    void openUnreadable(const Stream& stream) {
        AviFile avi = fileOf({stream});
        const Bytes file = avi.build();
        std::vector<Fault> faults;
        for (const MoviChunk& chunk : avi.chunks(0)) {
            const auto begin = static_cast<off64_t>(chunk.place.dataOffset) + 4;
            faults.push_back(Fault::error(-EIO).onOffsets(begin, begin + 8));
        }
        ASSERT_EQ(1u, openFaulty(file, faults));
    }

    static Bytes subFormat(uint64_t low, uint64_t high) {
        ExtensibleFormat result;
        result.subFormatLow = low;
        result.subFormatHigh = high;
        return result.toBytes();
    }
};

constexpr uint64_t kGuidTail = 0x719B3800AA000080;

TEST_F(ExtensibleAudio, ALawIsTold) {
    openExtensible(subFormat(0x0010000000000006, kGuidTail));
    EXPECT_EQ("audio/g711-alaw", mime(0));
}

TEST_F(ExtensibleAudio, MuLawIsTold) {
    openExtensible(subFormat(0x0010000000000007, kGuidTail));
    EXPECT_EQ("audio/g711-mlaw", mime(0));
}

TEST_F(ExtensibleAudio, AnythingElseIsPcm) {
    for (const uint64_t low :
         std::vector<uint64_t>{0x0010000000000001, 0x0010000000000003, 0x0010000000000000,
                               0x0010000000000055, 0x0000000000000006, 0x0010000000010006}) {
        openExtensible(subFormat(low, kGuidTail));
        EXPECT_EQ("audio/raw", mime(0)) << std::hex << low;
    }
}

TEST_F(ExtensibleAudio, BothHalvesOfTheIdentifierCount) {
    openExtensible(subFormat(0x0010000000000006, kGuidTail + 1));
    EXPECT_EQ("audio/raw", mime(0));
    openExtensible(subFormat(0x0010000000000007, 0));
    EXPECT_EQ("audio/raw", mime(0));
}

TEST_F(ExtensibleAudio, CutIdentifierIsPcm) {
    Bytes extra = subFormat(0x0010000000000006, kGuidTail);
    for (const size_t size : {1u, 6u, 20u, 21u}) {
        SCOPED_TRACE(size);
        extra.resize(size);
        openExtensible(extra);
        EXPECT_EQ("audio/raw", mime(0));
    }
}

TEST_F(ExtensibleAudio, WithoutExtraDataIsUnknown) {
    openExtensible({});
    EXPECT_EQ("audio/x-unknown", mime(0));
}

TEST_F(ExtensibleAudio, WithExtraDataOfNoBytesIsUnknown) {
    Stream stream = audioWithExtra(0xFFFE, {});
    std::get<WaveFormat>(stream.format).bitsPerSample = 16;
    stream.edit = [](Chunk& strl) {
        Bytes& payload = strl.child("strf").payload;
        payload.resize(16);
        payload.insert(payload.end(), {0, 0, 0xA1, 0xA2});  // a size of 0, and bytes behind it
    };
    openUnreadable(stream);
    EXPECT_EQ("audio/x-unknown", mime(0));
}

TEST_F(ExtensibleAudio, TagItselfIsReportedAsUnknown) {
    openExtensible(subFormat(0x0010000000000006, kGuidTail));
    EXPECT_THAT(log(), Contains(warning("unknown wave fffe")));
}

// The width is checked by the tag's own MIME type.
TEST_F(ExtensibleAudio, AnySampleWidthIsTaken) {
    openExtensible(subFormat(0x0010000000000006, kGuidTail), 16);
    EXPECT_EQ("audio/g711-alaw", mime(0));
    openExtensible(subFormat(0x0010000000000001, kGuidTail), 12);
    EXPECT_EQ("audio/raw", mime(0));
}

}  // namespace avitest
