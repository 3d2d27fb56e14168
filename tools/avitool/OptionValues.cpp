// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/OptionValues.h"

#include <cutils/properties.h>
#include <CLI/Error.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace avitool {

namespace {

constexpr const char* kProperties[] = {"vendor.ruvo.avi.extract.log", "vendor.ruvo.avi.verbose.log",
                                       "vendor.ruvo.avi.disable.audio"};

struct LogLevel {
    const char* name;
    int priority;
};
constexpr LogLevel kLogLevels[] = {
    {"verbose", ANDROID_LOG_VERBOSE}, {"debug", ANDROID_LOG_DEBUG}, {"info", ANDROID_LOG_INFO},
    {"warn", ANDROID_LOG_WARN},       {"error", ANDROID_LOG_ERROR}, {"silent", ANDROID_LOG_SILENT}};

struct ModeName {
    const char* name;
    SeekMode mode;
};
constexpr ModeName kModeNames[] = {{"previous", SeekMode::kPreviousSync},
                                   {"next", SeekMode::kNextSync},
                                   {"closest-sync", SeekMode::kClosestSync},
                                   {"closest", SeekMode::kClosest}};

// The prefix of an argument that CLI11 would take apart.
constexpr char kMark = '\1';

[[noreturn]] void refuse(const std::string& option, const std::string& problem) {
    throw CLI::ValidationError(option, problem);
}

}  // namespace

std::pair<std::string, std::string> parseProperty(const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) refuse("--set", "'" + text + "' is not PROPERTY=VALUE");
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    if (std::find(std::begin(kProperties), std::end(kProperties), name) == std::end(kProperties)) {
        refuse("--set", "'" + name + "' is no property of the plug-in");
    }
    if (value.size() >= PROPERTY_VALUE_MAX) {
        refuse("--set", "the value of " + name + " is too long");
    }
    return {name, value};
}

int parseLogLevel(const std::string& name) {
    for (const LogLevel& level : kLogLevels) {
        if (name == level.name) return level.priority;
    }
    refuse("--log", "'" + name + "' is no log level");
}

SeekMode parseSeekMode(const std::string& name) {
    for (const ModeName& entry : kModeNames) {
        if (name == entry.name) return entry.mode;
    }
    refuse("--mode", "'" + name + "' is no seek mode");
}

const char* modeName(SeekMode mode) {
    for (const ModeName& entry : kModeNames) {
        if (mode == entry.mode) return entry.name;
    }
    return "";
}

// Not CLI11's conversion, which takes "-1" for the largest number and an overflow as well.
uint64_t parseCount(const std::string& option, const std::string& text) {
    uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) refuse(option, "'" + text + "' is no number");
    return value;
}

int64_t parseSeconds(const std::string& option, const std::string& text) {
    constexpr size_t kFractionDigits = 6;
    const size_t point = std::min(text.find('.'), text.size());
    std::string fraction = text.substr(std::min(point + 1, text.size()));
    const std::string digits = text.substr(0, point) + fraction;
    const bool isNumber = !digits.empty() && std::all_of(digits.begin(), digits.end(), [](char c) {
        return c >= '0' && c <= '9';
    });
    fraction.resize(kFractionDigits, '0');
    const std::string micros = text.substr(0, point) + fraction;
    int64_t value = 0;
    const auto result = std::from_chars(micros.data(), micros.data() + micros.size(), value);
    if (!isNumber || result.ec != std::errc()) {
        refuse(option, "'" + text + "' is no time in seconds");
    }
    return value;
}

std::string parseFolder(const std::string& option, const std::string& text) {
    if (text.empty()) refuse(option, "'' is no folder");
    return text;
}

std::vector<std::string> markedArguments(int argc, const char* const* argv) {
    constexpr std::string_view kSpecial = "[+\1";
    std::vector<std::string> arguments;
    bool onlyNames = false;  // after "--"
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--" && !onlyNames) {
            onlyNames = true;
            continue;
        }
        const bool special = onlyNames || (!argument.empty() &&
                                           kSpecial.find(argument[0]) != std::string_view::npos);
        arguments.push_back(special ? kMark + argument : argument);
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

std::string unmarked(const std::string& argument) {
    return !argument.empty() && argument[0] == kMark ? argument.substr(1) : argument;
}

std::string withoutMarks(std::string message) {
    message.erase(std::remove(message.begin(), message.end(), kMark), message.end());
    return message;
}

}  // namespace avitool
