// SPDX-License-Identifier: Apache-2.0
// The texts of the command line as values: numbers, times, levels, modes, and the marks that carry
// file names past the parser. Pure functions; each throws CLI::ValidationError with the option's
// name for a text that is no value of it. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/avitool/Options.h"

namespace avitool {

/** "PROPERTY=VALUE" of --set: a property of the plug-in and a value that fits. */
std::pair<std::string, std::string> parseProperty(const std::string& text);

/** The priority of a log level's name. */
int parseLogLevel(const std::string& name);

/** The mode that modeName() writes so. */
SeekMode parseSeekMode(const std::string& name);

/** A number of decimal digits alone that fits. */
uint64_t parseCount(const std::string& option, const std::string& text);

/** Seconds as decimal digits with or without a fraction, of which six digits count, as
 * microseconds. */
int64_t parseSeconds(const std::string& option, const std::string& text);

/** A folder's name: any text but an empty one. */
std::string parseFolder(const std::string& option, const std::string& text);

/**
 * The arguments for CLI11, which wants the last one first. It splits arguments in brackets at their
 * commas, ends a subcommand at "++", and at "--" when it has a file already. All may belong to
 * names of files, so such arguments travel through it with a mark as prefix.
 */
std::vector<std::string> markedArguments(int argc, const char* const* argv);

/** An argument as it stood on the line. */
std::string unmarked(const std::string& argument);

/** A message about arguments, as they stood on the line. */
std::string withoutMarks(std::string message);

}  // namespace avitool
