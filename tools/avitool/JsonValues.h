// SPDX-License-Identifier: Apache-2.0
// How reports become JSON. Pure functions, safe on any thread.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tools/avitool/Report.h"

namespace avitool {

using Json = nlohmann::ordered_json;  // keys stay in the format's order

/** The shortest number that reads back as this float: 1.4, not 1.399999976158142. */
double shortest(float value);

/** An object a key: its type, and its value; of a buffer its size and its bytes in hexadecimal. */
Json toJson(const FormatEntries& entries);
/** What happened, with name and number of the status, if there is one. */
Json toJson(const Failure& failure);
Json toJson(const SampleReport& sample);

/** The text of a value, always UTF-8 without control characters: bytes that are not UTF-8 are
 * replaced by U+FFFD. `indent` -1 puts everything on one line. */
std::string dump(const Json& value, int indent);

}  // namespace avitool
