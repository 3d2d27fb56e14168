// SPDX-License-Identifier: Apache-2.0
//
// Two ways to know a log line: by a pattern of the whole line, and by the format that printed it.
// Pure functions.

#pragma once

#include <string>
#include <string_view>

namespace avitest {

// Wildcards of patterns. The formats of the plug-in have none of these characters in their text.
constexpr char kAnyNumber = '#';  // decimal, with or without a minus sign
constexpr char kAnyText = '*';    // of any length
constexpr char kAnyLowerHex = '\1';
constexpr char kAnyUpperHex = '\2';
constexpr char kAnyFraction = '\3';  // decimal digits around a point
constexpr char kAnyCharacter = '\4';

bool matchesPattern(std::string_view pattern, std::string_view line);

// The pattern of all lines that printf can print with `format`. A function's name in front, as in
// "%s(): ", is the one that `example` has there.
std::string shapeOf(std::string_view format, std::string_view example);

}  // namespace avitest
