// SPDX-License-Identifier: Apache-2.0
//
// Whole lines of the plug-in's log, for EXPECT_THAT(log.lines(), Contains(error("..."))).

#pragma once

#include <string>

#include "tests/support/ByteWriter.h"
#include "tests/support/LogCapture.h"

namespace avitest {

LogLine error(const std::string& text);
LogLine warning(const std::string& text);
LogLine debug(const std::string& text);
LogLine verbose(const std::string& text);

// printf into a string.
std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// A chunk id or a compression code as the log shows it: "0x4b4e554a:JUNK".
std::string idText(ChunkId id);

}  // namespace avitest
