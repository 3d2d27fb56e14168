// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/PluginLog.h"

#include <android/log.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <string_view>
#include <utility>

#include "tools/avitool/Text.h"

namespace avitool::pluginlog {

namespace {

// A damaged file may log an error a sample; the first ones show what is wrong.
constexpr size_t kMaxErrors = 16;

struct State {
    std::mutex lock;  // guards what follows
    int priority = ANDROID_LOG_SILENT;
    std::string file;
    std::vector<std::string> errors;
    AbortAction abortAction;
};

// Never destroyed: libraries may log while the process ends.
State& state() {
    static State* const instance = new State;
    return *instance;
}

char letterOf(int priority) {
    constexpr char kLetters[] = "??VDIWEF";
    constexpr int kLast = ANDROID_LOG_FATAL;
    return priority >= 0 && priority <= kLast ? kLetters[priority] : '?';
}

// A message of several lines, such as a dump of bytes, keeps them.
void show(char letter, std::string_view tag, std::string_view message) {
    const std::string prefix = fmt::format("{} {}: ", letter, printable(tag));
    while (true) {
        const size_t end = std::min(message.find('\n'), message.size());
        const std::string line = prefix + printable(message.substr(0, end)) + "\n";
        std::fputs(line.c_str(), stderr);
        if (end == message.size()) return;
        message.remove_prefix(end + 1);
    }
}

void record(const __android_logger_data* data, const char* message) {
    const char* tag = data->tag == nullptr ? "" : data->tag;
    State& s = state();
    const std::lock_guard<std::mutex> lock(s.lock);
    if (data->priority == ANDROID_LOG_ERROR && s.errors.size() < kMaxErrors) {
        s.errors.emplace_back(message);
    }
    if (data->priority < s.priority) return;
    show(letterOf(data->priority), tag, message);
}

// An output that takes nothing any more is no reason to end in another way.
void runAction(const AbortAction& action, const std::string& reason) {
    try {
        if (action) action(reason);
    } catch (const std::exception&) {
        return;
    }
}

// On the device this ends the extractor service, which is worth a plain statement instead of a core
// file.
void reportAbort(const char* message) {
    const std::string reason = fmt::format("the plug-in aborts the extractor service: {}", message);
    std::string file;
    AbortAction action;
    {
        State& s = state();
        const std::lock_guard<std::mutex> lock(s.lock);
        file = s.file;
        action = s.abortAction;
    }
    runAction(action, reason);
    std::fflush(stdout);
    const std::string line = fmt::format("avitool: {}: {}\n", printable(file), printable(reason));
    std::fputs(line.c_str(), stderr);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

void install(int priority) {
    state().priority = priority;
    __android_log_set_minimum_priority(std::min<int>(priority, ANDROID_LOG_ERROR));
    __android_log_set_logger(record);
    __android_log_set_aborter(reportAbort);
}

void beginFile(const std::string& path) {
    State& s = state();
    const std::lock_guard<std::mutex> lock(s.lock);
    s.file = path;
    s.errors.clear();
}

void setAbortAction(AbortAction action) {
    State& s = state();
    const std::lock_guard<std::mutex> lock(s.lock);
    s.abortAction = std::move(action);
}

std::vector<std::string> errors() {
    State& s = state();
    const std::lock_guard<std::mutex> lock(s.lock);
    return s.errors;
}

}  // namespace avitool::pluginlog
