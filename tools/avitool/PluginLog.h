// SPDX-License-Identifier: Apache-2.0
// What the plug-in logs: shown on standard error from a chosen priority up, and its error lines
// remembered, since they show why it refused a file. The log belongs to the process, hence free
// functions. Lines may come from any thread; the functions are called from one.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace avitool::pluginlog {

/** Takes over the process's log; lines below `priority` (ANDROID_LOG_...) are not shown. */
void install(int priority);

/**
 * Forgets the error lines and names the file that is worked on: an assertion of the plug-in that
 * fails ends the process with status 1 and one line that names this file.
 */
void beginFile(const std::string& path);

/** What runs when an assertion of the plug-in is about to end the process, with the reason. */
using AbortAction = std::function<void(const std::string& reason)>;

/** Has `action` run before an assertion of the plug-in ends the process; what it throws is
 * dropped. */
void setAbortAction(AbortAction action);

/** The error lines since beginFile, the first 16 at most, in order. */
std::vector<std::string> errors();

}  // namespace avitool::pluginlog
