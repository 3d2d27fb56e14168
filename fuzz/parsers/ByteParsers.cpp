// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>
#include <memory>

#include "fuzz/parsers/Parsers.h"
#include "index/StreamNumber.h"
#include "riff/CodecTables.h"
#include "source/SeekMath.h"
#include "source/SubtitleTime.h"
#include "support/Arithmetic.h"
#include "support/BitRate.h"
#include "support/ByteReader.h"
#include "support/GracefulBits.h"
#include "support/HexDump.h"
#include "support/PaddedBytes.h"

namespace avifuzz {

namespace {

// One read of a ByteReader, by an order. Returns the width of what it read, 0 when it refused.
size_t readOne(android::ByteReader* reader, Orders* orders) {
    uint8_t byte = 0;
    uint16_t half = 0;
    uint32_t word = 0;
    int32_t number = 0;
    uint64_t whole = 0;
    android::FourCC code{};
    switch (orders->below(7)) {
        case 0:
            return reader->u8(&byte) ? 1 : 0;
        case 1:
            return reader->u16(&half) ? 2 : 0;
        case 2:
            return reader->u32(&word) ? 4 : 0;
        case 3:
            return reader->i32(&number) ? 4 : 0;
        case 4:
            return reader->u64(&whole) ? 8 : 0;
        case 5:
            return reader->code(&code) ? 4 : 0;
        default: {
            const auto count = static_cast<size_t>(orders->number());
            return reader->skip(count) ? count : 0;
        }
    }
}

uint32_t wordAt(const ParserBytes& bytes, size_t at) {
    return android::PaddedBytes(bytes.data(), bytes.size()).wordAt(at);
}

void readBits(android::GracefulBits* bits, Orders* orders) {
    switch (orders->below(5)) {
        case 0:
            bits->u(orders->below(33));
            break;
        case 1:
            bits->flag();
            break;
        case 2:
            bits->skip(orders->word());
            break;
        case 3:
            bits->ue();
            break;
        default:
            bits->se();
            break;
    }
}

}  // namespace

// The bytes are the orders too.
void fuzzByteReader(ParserBytes bytes) {
    android::ByteReader reader(bytes.data(), bytes.size());
    Orders orders(bytes.data(), bytes.size());
    while (!orders.isEmpty()) {
        const size_t before = reader.remaining();
        const size_t width = readOne(&reader, &orders);
        expect(reader.remaining() <= before && before - reader.remaining() == width,
               "a read takes what it returns, or nothing");
    }
}

void fuzzGracefulBits(ParserBytes bytes) {
    android::GracefulBits bits(bytes.data(), bytes.size());
    Orders orders(bytes.data(), bytes.size());
    while (!orders.isEmpty()) {
        readBits(&bits, &orders);
        if (bits.ok()) continue;
        expect(bits.u(32) == 0 && bits.ue() == 0 && bits.se() == 0, "after the end all is 0");
    }
}

void fuzzSubtitleTime(ParserBytes bytes) {
    expect(android::getSubtitleDts(bytes.data(), bytes.size()) >= 0, "no subtitle is before 0");
}

// Times, indices and look-ups, at any numbers.
void fuzzNumbers(ParserBytes bytes) {
    Orders orders(bytes.data(), bytes.size());
    const int64_t timeUs = orders.number();
    const int64_t durationUs = orders.number();
    const auto scale = static_cast<uint32_t>(orders.number() & UINT32_MAX);
    const auto rate = static_cast<uint32_t>(orders.number() & UINT32_MAX);
    const auto count = static_cast<size_t>(orders.word());
    android::unitAtTime(timeUs, scale, rate);
    android::frameAtTime(timeUs, scale, rate);
    android::chunkAtTime(timeUs, durationUs, count);
    android::unitsToUs(timeUs, scale, rate);
    android::mulDiv(timeUs, durationUs, orders.number());
    android::saturatingAdd(timeUs, durationUs);
    const int64_t step = orders.byte();
    const size_t found = android::firstBeyond(
        count, durationUs, [step](size_t i) { return static_cast<int64_t>(i) * step; });
    expect(found <= count, "an index is found, or their number");
    android::streamNumber(android::FourCC{scale});
    expect(android::videoFourCCToMime(android::FourCC{rate}) != nullptr, "every code has a type");
    expect(android::waveFormatTagToMime(orders.word()) != nullptr, "every tag has a type");
    android::needsCodecData(android::FourCC{rate});
}

void fuzzLogTexts(ParserBytes bytes) {
    android::AString text;
    android::appendBitRate(static_cast<int32_t>(wordAt(bytes, 0)), &text);
    expect(text.size() > 0, "every bit rate has a text");
    const size_t shown = std::min(bytes.size(), android::HexLine::kMaxBytes);
    const android::HexLine whole(bytes.data(), shown);
    expect(std::strlen(whole.text()) == (shown == 0 ? 0 : 3 * shown - 1), "a byte has two digits");
    if (bytes.size() < 24) return;
    const android::HexLine ends(bytes.data(), bytes.size(), 16, 8);
    expect(std::strlen(ends.text()) == 3 * 24 + 1, "dots stand between head and tail");
    const std::unique_ptr<char[]> dump =
        android::hexText(bytes.data(), bytes.size(), android::HexCase::kLower);
    expect(dump == nullptr || std::strlen(dump.get()) >= 3 * bytes.size(), "all bytes are shown");
}

}  // namespace avifuzz
