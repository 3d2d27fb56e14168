// SPDX-License-Identifier: Apache-2.0
// How `avitool seek` shows its report. One thread.
#pragma once

#include "tools/avitool/Console.h"
#include "tools/avitool/SeekReport.h"

namespace avitool {

/** For people: a table with a line a track; nothing for a file that failed. Throws OutputError. */
void printSeekText(const SeekReport& report, Console& console);
/** One object, with a member "error" for a file that failed. Throws OutputError. */
void printSeekJson(const SeekReport& report, Console& console);

}  // namespace avitool
