// SPDX-License-Identifier: Apache-2.0
// How values are written for people. Pure functions, safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <media/NdkMediaError.h>

namespace avitool {

/**
 * The text with everything that would disturb a terminal or a line (control characters, also those
 * that change the direction of text, and bytes that are not UTF-8) as \xNN. Text beyond about
 * `limit` bytes is cut, with "..." in its place.
 */
std::string printable(std::string_view text, size_t limit = std::numeric_limits<size_t>::max());

/** What is shown of a track's MIME type in a heading, in bytes. */
constexpr size_t kMaxMimeBytes = 80;

/**
 * JSON, in UTF-8 and with its strings' C0 escaped, with the other characters that printable()
 * escapes as \uNNNN: they can be in strings only, so it means the same.
 */
std::string jsonWithoutControls(std::string_view json);

/** Microseconds as seconds with six decimals. */
std::string seconds(int64_t microseconds);

/** Two digits a byte, without gaps; at most `limit` bytes, "..." after them if there are more. */
std::string hex(const std::vector<uint8_t>& bytes,
                size_t limit = std::numeric_limits<size_t>::max());

/** The name of the status in the NDK's headers, "unknown status" for a number not in there. */
const char* statusName(media_status_t status);

/** Name and number: "AMEDIA_ERROR_UNKNOWN (-10000)". */
std::string statusText(media_status_t status);

}  // namespace avitool
