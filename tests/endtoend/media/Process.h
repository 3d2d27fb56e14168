// SPDX-License-Identifier: Apache-2.0
//
// Runs another program of the machine and collects what it prints. No state; any thread.

#pragma once

#include <string>
#include <vector>

namespace avitest {

// Runs `arguments[0]`, a path, with the others and waits for its end. Returns its standard output;
// its complaints go to this program's stderr. Throws std::runtime_error, with the command in its
// text, when the program cannot be run or does not exit with 0.
std::string outputOf(const std::vector<std::string>& arguments);

}  // namespace avitest
