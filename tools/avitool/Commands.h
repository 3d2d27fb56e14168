// SPDX-License-Identifier: Apache-2.0
// The subcommands: gather reports, have them printed, report every problem. One thread.
#pragma once

#include "service/PluginLibrary.h"
#include "tools/avitool/Console.h"
#include "tools/avitool/Options.h"

namespace avitool {

/** Shows formats and sample counts of every file; goes on with the next file after a problem.
 * Throws OutputError. */
void runInfo(const Options& options, const android::service::PluginLibrary& plugin,
             Console& console);

/** Shows every sample of the file, or of one of its tracks. Throws OutputError. */
void runSamples(const Options& options, const android::service::PluginLibrary& plugin,
                Console& console);

/** Shows where a seek lands on the first video track, and each audio track after it. Throws
 * OutputError. */
void runSeek(const Options& options, const android::service::PluginLibrary& plugin,
             Console& console);

/** Writes each track of the file, or one of them, into files of its own. Throws OutputError. */
void runExtract(const Options& options, const android::service::PluginLibrary& plugin,
                Console& console);

}  // namespace avitool
