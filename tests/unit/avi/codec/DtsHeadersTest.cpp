// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/DtsHeaders.h"

#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <media/stagefright/MediaErrors.h>

#include "service/MediaFormat.h"
#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;
using Format = std::pair<uint32_t, uint32_t>;  // channels, rate

constexpr uint32_t kNoRate = 0xFFFFFFFF;

Bytes core(uint32_t amode, uint32_t sfreq, uint32_t lfe) {
    return {0x7F,
            0xFE,
            0x80,
            0x01,
            0xFC,
            0x3C,
            0x05,
            static_cast<uint8_t>(0xF0 | amode >> 2),
            static_cast<uint8_t>((amode & 3) << 6 | sfreq << 2 | 3),
            0xFF,
            static_cast<uint8_t>(0xF9 | lfe << 1)};
}

Format parseDts(const Bytes& data) {
    const ExactBytes exact(data);
    Format format = {77, 77};
    parseDtsCoreHeader(exact.data(), exact.size(), &format.first, &format.second);
    return format;
}

status_t parseSample(const service::MediaFormat& meta, const Bytes& data) {
    return parseDtsMetaData(meta.get(), ABuffer::CreateAsCopy(data.data(), data.size()));
}

}  // namespace

// ETSI TS 102 114, table 5-4; mono is played as stereo.
TEST(DtsCoreHeader, EveryArrangementHasItsChannels) {
    const uint32_t kChannels[] = {2, 2, 2, 2, 2, 3, 3, 4, 4, 5, 6, 6, 6, 7, 8, 8};
    for (uint32_t amode = 0; amode < 64; ++amode) {
        for (uint32_t lfe = 0; lfe < 4; ++lfe) {
            const uint32_t channels = (amode < 16 ? kChannels[amode] : 2) + (lfe != 0 ? 1 : 0);
            EXPECT_EQ(parseDts(core(amode, 13, lfe)), Format(channels, 48000))
                << amode << ", " << lfe;
        }
    }
}

// Table 5-5.
TEST(DtsCoreHeader, EverySamplingRateIsRead) {
    const uint32_t kRates[] = {kNoRate, 8000,  16000,   32000,   kNoRate, kNoRate,
                               11025,   22050, 44100,   kNoRate, kNoRate, 12000,
                               24000,   48000, kNoRate, kNoRate};
    for (uint32_t sfreq = 0; sfreq < 16; ++sfreq)
        EXPECT_EQ(parseDts(core(2, sfreq, 0)), Format(2, kRates[sfreq])) << sfreq;
}

TEST(DtsCoreHeader, BytesBehindTheEndAreZeros) {
    const Bytes whole = core(0x3F, 13, 3);
    for (size_t size = 0; size <= whole.size(); ++size) {
        Bytes padded(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        const Format cut = parseDts(padded);
        padded.resize(whole.size(), 0);
        EXPECT_EQ(cut, parseDts(padded)) << size;
    }
}

TEST(DtsCoreHeader, OutputsMayBeLeftOut) {
    const ExactBytes exact(core(9, 8, 1));
    uint32_t value = 0;
    parseDtsCoreHeader(exact.data(), exact.size(), nullptr, nullptr);
    parseDtsCoreHeader(exact.data(), exact.size(), &value, nullptr);
    EXPECT_EQ(value, 6u);
    parseDtsCoreHeader(exact.data(), exact.size(), nullptr, &value);
    EXPECT_EQ(value, 44100u);
}

TEST(DtsSync, ThreePatternsAreSyncs) {
    EXPECT_TRUE(isDtsSync(ExactBytes{0x7F, 0xFE, 0x80, 0x01}.data()));
    EXPECT_TRUE(isDtsSync(ExactBytes{0x1F, 0xFF, 0xE8, 0x00}.data()));
    EXPECT_TRUE(isDtsSync(ExactBytes{0x64, 0x58, 0x20, 0x25}.data()));
}

TEST(DtsSync, EveryOtherBitIsNone) {
    const uint32_t kSyncs[] = {0x7FFE8001, 0x1FFFE800, 0x64582025};
    for (const uint32_t sync : kSyncs) {
        for (int bit = 0; bit < 32; ++bit) {
            const uint32_t word = sync ^ uint32_t { 1 } << bit;
            const ExactBytes bytes{static_cast<uint8_t>(word >> 24),
                                   static_cast<uint8_t>(word >> 16),
                                   static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)};
            EXPECT_FALSE(isDtsSync(bytes.data())) << std::hex << word;
        }
    }
}

TEST(DtsMetaData, FrameSetsTheFormat) {
    const service::MediaFormat meta;
    EXPECT_EQ(parseSample(meta, core(9, 13, 1)), OK);
    EXPECT_EQ(meta.getString(AMEDIAFORMAT_KEY_MIME), "audio/vnd.dts");
    EXPECT_EQ(meta.getInt32(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 6);
    EXPECT_EQ(meta.getInt32(AMEDIAFORMAT_KEY_SAMPLE_RATE), 48000);
}

TEST(DtsMetaData, NoFrameLeavesTheFormatAlone) {
    const Bytes kNone[] = {
        {},
        {0x7F},
        {0x7F, 0xFE, 0x80, 0x01},
        Bytes(5, 0),
        Bytes(1000, 0xFF),
        {0x11, 0x7F, 0xFE, 0x80},
        {0x11, 0x11, 0x7F, 0xFE, 0x80},
        {0x64, 0x58, 0x20, 0x25, 0x00},
        {0x64, 0x58, 0x20, 0x25, 0x00, 0xFF, 0xFF, 0xFF},
    };
    for (const Bytes& data : kNone) {
        SCOPED_TRACE(testing::PrintToString(data));
        const service::MediaFormat meta;
        EXPECT_EQ(parseSample(meta, data), ERROR_MALFORMED);
        EXPECT_TRUE(meta.entries().empty());
    }
}

// Every byte of a substream's header may be anything.
TEST(DtsMetaData, RandomSubstreamsAreSafe) {
    uint32_t state = 7;
    const auto next = [&] {
        state = static_cast<uint32_t>(uint64_t{state} * 48271 % 0x7FFFFFFF);
        return state;
    };
    int found = 0;
    int missing = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes data = {0x64, 0x58, 0x20, 0x25};
        const size_t size = 5 + next() % 120;
        while (data.size() < size)
            data.push_back(static_cast<uint8_t>(next() >> 8));
        const Bytes lossless = {0x41, 0xA2, 0x95, 0x47};
        // Half of them have an asset where a small header says so.
        const size_t header = size > 7 ? ((data[5] & 0x1Fu) << 3 | data[6] >> 5) + 1u : 0;
        if (header >= 8 && (data[5] & 0x20) == 0) {
            data.resize(std::max(data.size(), header), 0x55);
            data.insert(data.begin() + static_cast<ptrdiff_t>(header), lossless.begin(),
                        lossless.end());
        }
        const service::MediaFormat meta;
        const status_t status = parseSample(meta, data);
        (status == OK ? found : missing) += 1;
        EXPECT_EQ(status == OK, meta.contains(AMEDIAFORMAT_KEY_MIME));
    }
    EXPECT_GT(found, 100);
    EXPECT_GT(missing, 100);
}

}  // namespace android
