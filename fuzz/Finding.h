// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace avifuzz {

// Ends the process with one line that says what is wrong: that is how a fuzzer reports.
[[noreturn]] __attribute__((format(printf, 1, 2))) inline void finding(const char* format, ...) {
    va_list values;
    va_start(values, format);
    std::fputs("finding: ", stderr);
    std::vfprintf(stderr, format, values);
    std::fputs("\n", stderr);
    va_end(values);
    std::abort();
}

}  // namespace avifuzz
