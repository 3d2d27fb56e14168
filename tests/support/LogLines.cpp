// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LogLines.h"

#include <cstdarg>
#include <cstdio>

namespace avitest {

namespace {

LogLine line(int priority, const std::string& text) {
    return {priority, "RuvoAVIExtractor", text};
}

}  // namespace

LogLine error(const std::string& text) {
    return line(ANDROID_LOG_ERROR, text);
}

LogLine warning(const std::string& text) {
    return line(ANDROID_LOG_WARN, text);
}

LogLine debug(const std::string& text) {
    return line(ANDROID_LOG_DEBUG, text);
}

LogLine verbose(const std::string& text) {
    return line(ANDROID_LOG_VERBOSE, text);
}

std::string failureOf(const std::string& function, const std::string& code) {
    return function + "(): error -" + code + " @line";
}

std::string format(const char* pattern, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, pattern);
    vsnprintf(text, sizeof(text), pattern, arguments);
    va_end(arguments);
    return text;
}

std::string idText(ChunkId id) {
    return format("0x%08x:", id.value()) + id.text();
}

}  // namespace avitest
