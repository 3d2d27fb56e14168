// SPDX-License-Identifier: Apache-2.0
// Work on a file in a process of its own: an assertion of the plug-in, or a crash, ends that
// process and not the run. Needs a process with one thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace avitool {

/**
 * Runs `work` in a child process and returns the texts that it returns. Throws FileError with the
 * reason when it throws, when the plug-in aborts, or when the process ends in any other way. `work`
 * writes nothing to standard output.
 */
std::vector<std::string> runInProcess(const std::function<std::vector<std::string>()>& work);

}  // namespace avitool
