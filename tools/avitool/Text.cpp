// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace avitool {

namespace {

struct Utf8Form {
    uint8_t mask;
    uint8_t lead;
    uint8_t length;
    uint32_t first;  // smaller values have a shorter form
};

constexpr Utf8Form kUtf8Forms[] = {
    {0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

constexpr uint32_t kInvalid = UINT32_MAX;

// The character that begins `text`, kInvalid if its bytes are no UTF-8. `length` becomes the number
// of bytes it takes, 1 for an invalid one.
uint32_t decode(std::string_view text, size_t* length) {
    *length = 1;
    const auto lead = static_cast<uint8_t>(text[0]);
    for (const Utf8Form& form : kUtf8Forms) {
        if ((lead & form.mask) != form.lead) continue;
        if (text.size() < form.length) return kInvalid;
        uint32_t value = lead & static_cast<uint8_t>(~form.mask);
        for (size_t i = 1; i < form.length; ++i) {
            const auto byte = static_cast<uint8_t>(text[i]);
            if ((byte & 0xC0) != 0x80) return kInvalid;
            value = value << 6 | (byte & 0x3Fu);
        }
        const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
        if (value < form.first || value > 0x10FFFF || surrogate) return kInvalid;
        *length = form.length;
        return value;
    }
    return kInvalid;
}

struct CharacterRange {
    uint32_t first;
    uint32_t last;
};

// What moves the cursor, ends the line, or has the text around it shown in another order.
constexpr CharacterRange kDisturbing[] = {
    {0x00, 0x1F},      // C0
    {0x7F, 0x9F},      // DEL and C1: U+009B is ESC [ in one character
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},  // marks for left-to-right and right-to-left
    {0x2028, 0x202E},  // separators of lines and paragraphs, embeddings and overrides
    {0x2066, 0x206F},  // isolates, and formats that Unicode deprecates
    {0xFEFF, 0xFEFF},  // byte order mark
    {0xFFF9, 0xFFFB},  // annotations
};

bool isPrintable(uint32_t character) {
    if (character == kInvalid) return false;
    return std::none_of(std::begin(kDisturbing), std::end(kDisturbing),
                        [character](const CharacterRange& range) {
                            return range.first <= character && character <= range.last;
                        });
}

std::string escaped(std::string_view bytes) {
    std::string result;
    for (const char byte : bytes)
        result += fmt::format("\\x{:02x}", static_cast<uint8_t>(byte));
    return result;
}

}  // namespace

std::string jsonWithoutControls(std::string_view json) {
    std::string result;
    while (!json.empty()) {
        size_t length = 0;
        const uint32_t character = decode(json, &length);
        const bool shown = character < 0x20 || isPrintable(character);
        result += shown ? std::string(json.substr(0, length)) : fmt::format("\\u{:04x}", character);
        json.remove_prefix(length);
    }
    return result;
}

std::string printable(std::string_view text, size_t limit) {
    std::string result;
    while (!text.empty()) {
        if (result.size() >= limit) return result + "...";
        size_t length = 0;
        const bool shown = isPrintable(decode(text, &length));
        result += shown ? std::string(text.substr(0, length)) : escaped(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

std::string seconds(int64_t microseconds) {
    constexpr int64_t kPerSecond = 1000000;
    // Split first: the lowest number has no positive counterpart.
    return fmt::format("{}{}.{:06}", microseconds < 0 ? "-" : "",
                       std::abs(microseconds / kPerSecond), std::abs(microseconds % kPerSecond));
}

std::string hex(const std::vector<uint8_t>& bytes, size_t limit) {
    std::string result;
    const size_t count = std::min(bytes.size(), limit);
    for (size_t i = 0; i < count; ++i)
        result += fmt::format("{:02x}", bytes[i]);
    if (count < bytes.size()) result += "...";
    return result;
}

const char* statusName(media_status_t status) {
    struct Name {
        media_status_t status;
        const char* name;
    };
#define STATUS(name) \
    { name, #name }
    static constexpr Name kNames[] = {
        STATUS(AMEDIA_OK),
        STATUS(AMEDIACODEC_ERROR_INSUFFICIENT_RESOURCE),
        STATUS(AMEDIACODEC_ERROR_RECLAIMED),
        STATUS(AMEDIA_ERROR_UNKNOWN),
        STATUS(AMEDIA_ERROR_MALFORMED),
        STATUS(AMEDIA_ERROR_UNSUPPORTED),
        STATUS(AMEDIA_ERROR_INVALID_OBJECT),
        STATUS(AMEDIA_ERROR_INVALID_PARAMETER),
        STATUS(AMEDIA_ERROR_INVALID_OPERATION),
        STATUS(AMEDIA_ERROR_END_OF_STREAM),
        STATUS(AMEDIA_ERROR_IO),
        STATUS(AMEDIA_ERROR_WOULD_BLOCK),
    };
#undef STATUS
    for (const Name& entry : kNames) {
        if (entry.status == status) return entry.name;
    }
    return "unknown status";
}

std::string statusText(media_status_t status) {
    return fmt::format("{} ({})", statusName(status), static_cast<int>(status));
}

}  // namespace avitool
