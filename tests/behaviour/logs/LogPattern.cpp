// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/logs/LogPattern.h"

#include <algorithm>

namespace avitest {

namespace {

constexpr std::string_view kDecimal = "0123456789";

size_t spanOf(std::string_view characters, std::string_view text) {
    return std::min(text.find_first_not_of(characters), text.size());
}

size_t numberLength(std::string_view text) {
    const size_t sign = !text.empty() && text[0] == '-' ? 1 : 0;
    const size_t digits = spanOf(kDecimal, text.substr(sign));
    return digits == 0 ? 0 : sign + digits;
}

size_t fractionLength(std::string_view text) {
    const size_t whole = numberLength(text);
    if (whole == 0 || whole >= text.size() || text[whole] != '.') return 0;
    const size_t digits = spanOf(kDecimal, text.substr(whole + 1));
    return digits == 0 ? 0 : whole + 1 + digits;
}

// How much of the beginning of `text` a wildcard takes; 0 when it does not fit.
size_t lengthOf(char wildcard, std::string_view text) {
    switch (wildcard) {
        case kAnyNumber:
            return numberLength(text);
        case kAnyLowerHex:
            return spanOf("0123456789abcdef", text);
        case kAnyUpperHex:
            return spanOf("0123456789ABCDEF", text);
        case kAnyFraction:
            return fractionLength(text);
        case kAnyCharacter:
            return std::min<size_t>(text.size(), 1);
        default:
            return !text.empty() && text[0] == wildcard ? 1 : 0;
    }
}

char wildcardOf(char conversion) {
    switch (conversion) {
        case 'd':
        case 'u':
            return kAnyNumber;
        case 'x':
            return kAnyLowerHex;
        case 'X':
            return kAnyUpperHex;
        case 'f':
            return kAnyFraction;
        case 'c':
            return kAnyCharacter;
        default:
            return kAnyText;
    }
}

}  // namespace

bool matchesPattern(std::string_view pattern, std::string_view line) {
    while (!pattern.empty() && pattern[0] != kAnyText) {
        const size_t length = lengthOf(pattern[0], line);
        if (length == 0) return false;
        pattern.remove_prefix(1);
        line.remove_prefix(length);
    }
    if (pattern.empty()) return line.empty();
    pattern.remove_prefix(1);
    if (pattern.empty()) return true;
    for (; !line.empty(); line.remove_prefix(1)) {
        if (matchesPattern(pattern, line)) return true;
    }
    return matchesPattern(pattern, line);
}

std::string shapeOf(std::string_view format, std::string_view example) {
    std::string shape;
    if (format.substr(0, 3) == "%s(") {
        shape = example.substr(0, example.find('('));
        format.remove_prefix(2);
    }
    while (!format.empty()) {
        size_t length = 1;
        if (format[0] == '%') {
            length = std::min(format.find_first_of("duxXfcs"), format.size() - 1) + 1;
            shape += wildcardOf(format[length - 1]);
        } else {
            shape += format[0];
        }
        format.remove_prefix(length);
    }
    return shape;
}

}  // namespace avitest
