// SPDX-License-Identifier: Apache-2.0
//
// VC-1 start codes and PCM widths.

#include "source/Conversions.h"

#include <gtest/gtest.h>

#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(Vc1Frame, HasAStartCodeWhenItBeginsWithOneOfFour) {
    for (int last = 0; last < 256; ++last) {
        SCOPED_TRACE(last);
        const uint8_t bytes[kVc1ProbeBytes] = {0, 0, 1, static_cast<uint8_t>(last), 0};
        EXPECT_EQ(probeVc1Frame(bytes).hasStartCode, last >= 0x0C && last <= 0x0F);
    }
}

TEST(Vc1Frame, HasNoStartCodeWhenAnyOtherByteDiffers) {
    for (const size_t at : {0u, 1u, 2u}) {
        SCOPED_TRACE(at);
        uint8_t bytes[kVc1ProbeBytes] = {0, 0, 1, 0x0D, 0xC0};
        bytes[at] ^= 0x80;
        EXPECT_FALSE(probeVc1Frame(bytes).hasStartCode);
    }
}

TEST(Vc1Frame, IsSyncByTheByteBehindItsStartCode) {
    for (int header = 0; header < 256; ++header) {
        SCOPED_TRACE(header);
        const uint8_t bytes[kVc1ProbeBytes] = {0, 0, 1, 0x0D, static_cast<uint8_t>(header)};
        EXPECT_EQ(probeVc1Frame(bytes).isSync, header >= 0xC0 && header <= 0xDF);
    }
}

TEST(Vc1Frame, IsSyncByItsFirstByteWithoutStartCode) {
    for (int header = 1; header < 256; ++header) {
        SCOPED_TRACE(header);
        const uint8_t bytes[kVc1ProbeBytes] = {static_cast<uint8_t>(header), 0, 1, 0x0D, 0xC0};
        EXPECT_EQ(probeVc1Frame(bytes).isSync, header >= 0xC0 && header <= 0xDF);
    }
}

TEST(Vc1Frame, StartCodeIsFourBytes) {
    ExactBytes out({9, 9, 9, 9});
    writeVc1StartCode(out.data());
    EXPECT_EQ(out.first(4), (Bytes{0, 0, 1, 0x0D}));
}

TEST(Pcm, WidenedBytesAreSigned16) {
    const ExactBytes in({0x00, 0x01, 0x7F, 0x80, 0x81, 0xFF});
    ExactBytes out(Bytes(12, 0xEE));
    widenPcm8(in.data(), in.size(), out.data());
    EXPECT_EQ(out.first(12), (Bytes{0, 0x80, 0, 0x81, 0, 0xFF, 0, 0x00, 0, 0x01, 0, 0x7F}));
}

TEST(Pcm, NothingToWidenWritesNothing) {
    ExactBytes out({0xEE});
    widenPcm8(nullptr, 0, out.data());
    EXPECT_EQ(out.first(1), Bytes{0xEE});
}

TEST(Pcm, Narrowed24BitsKeepTheirUpperBytes) {
    ExactBytes data({1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(narrowPcm24(data.data(), data.size()), 6u);
    EXPECT_EQ(data.first(6), (Bytes{2, 3, 5, 6, 8, 9}));
}

TEST(Pcm, Narrowed32BitsKeepTheirUpperBytes) {
    ExactBytes data({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(narrowPcm32(data.data(), data.size()), 4u);
    EXPECT_EQ(data.first(4), (Bytes{3, 4, 7, 8}));
}

TEST(Pcm, Narrowed24BitsOfAnySizeStayInside) {
    for (size_t size = 0; size <= 25; ++size) {
        SCOPED_TRACE(size);
        ExactBytes data(Bytes(size, 0x11));
        EXPECT_EQ(narrowPcm24(data.data(), size), size * 2 / 3);
    }
}

TEST(Pcm, Narrowed32BitsOfAnySizeStayInside) {
    for (size_t size = 0; size <= 25; ++size) {
        SCOPED_TRACE(size);
        ExactBytes data(Bytes(size, 0x11));
        EXPECT_EQ(narrowPcm32(data.data(), size), size / 2);
    }
}

TEST(Pcm, BytesBehindTheLastWholeSampleAreLeftAlone) {
    ExactBytes data24({1, 2, 3, 4, 5});
    narrowPcm24(data24.data(), data24.size());
    EXPECT_EQ(data24.first(5), (Bytes{2, 3, 3, 4, 5}));

    ExactBytes data32({1, 2, 3, 4, 5, 6, 7});
    narrowPcm32(data32.data(), data32.size());
    EXPECT_EQ(data32.first(7), (Bytes{3, 4, 3, 4, 5, 6, 7}));
}

}  // namespace
}  // namespace android
