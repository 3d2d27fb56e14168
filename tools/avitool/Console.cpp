// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Console.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include "tools/avitool/Text.h"

namespace avitool {

OutputError::OutputError(int error)
    : std::system_error(error, std::generic_category(), "cannot write to standard output") {}

void Console::write(std::string_view text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) throw OutputError(errno);
}

void Console::flush() {
    errno = 0;
    if (std::fflush(stdout) != 0) throw OutputError(errno);
}

void Console::complain(std::string_view problem) {
    mComplained = true;
    const std::string line = "avitool: " + printable(problem) + "\n";
    flush();
    std::fputs(line.c_str(), stderr);  // a closed standard error has no reader
}

void Console::complain(std::string_view file, std::string_view problem) {
    complain((file.empty() ? "''" : std::string(file)) + ": " + std::string(problem));
}

}  // namespace avitool
