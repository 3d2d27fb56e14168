// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LogCapture.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace avitest {

namespace {

std::mutex gLock;
LogCapture* gInnermost = nullptr;  // guarded by gLock

bool hasText(const LogLine& line, std::string_view text) {
    return line.text.find(text) != std::string::npos;
}

char priorityLetter(int priority) {
    constexpr std::string_view kLetters = "??VDIWEFS";
    const bool known = priority >= 0 && static_cast<size_t>(priority) < kLetters.size();
    return known ? kLetters[static_cast<size_t>(priority)] : '?';
}

}  // namespace

bool operator==(const LogLine& a, const LogLine& b) {
    return a.priority == b.priority && a.tag == b.tag && a.text == b.text;
}

void PrintTo(const LogLine& line, std::ostream* out) {
    *out << priorityLetter(line.priority) << ' ' << line.tag << ": " << line.text;
}

LogCapture::LogCapture() {
    {
        const std::lock_guard<std::mutex> guard(gLock);
        mOuter = gInnermost;
        gInnermost = this;
    }
    mOuterPriority = __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(record);
}

LogCapture::~LogCapture() {
    if (mOuter == nullptr) __android_log_set_logger(__android_log_stderr_logger);
    __android_log_set_minimum_priority(mOuterPriority);
    const std::lock_guard<std::mutex> guard(gLock);
    gInnermost = mOuter;
}

void LogCapture::record(const __android_logger_data* data, const char* message) {
    {
        const std::lock_guard<std::mutex> guard(gLock);
        // A line that another thread had begun when the last capture went finds none.
        if (gInnermost != nullptr) {
            const char* tag = data->tag == nullptr ? "" : data->tag;
            gInnermost->mLines.push_back({data->priority, tag, message});
        }
    }
    if (data->priority == ANDROID_LOG_FATAL) __android_log_stderr_logger(data, message);
}

std::vector<LogLine> LogCapture::lines() const {
    const std::lock_guard<std::mutex> guard(gLock);
    return mLines;
}

std::vector<LogLine> LogCapture::linesWith(std::string_view text) const {
    const std::lock_guard<std::mutex> guard(gLock);
    std::vector<LogLine> result;
    std::copy_if(mLines.begin(), mLines.end(), std::back_inserter(result),
                 [text](const LogLine& line) { return hasText(line, text); });
    return result;
}

bool LogCapture::contains(int priority, std::string_view text) const {
    return count(priority, text) > 0;
}

size_t LogCapture::count(std::string_view text) const {
    return linesWith(text).size();
}

size_t LogCapture::count(int priority, std::string_view text) const {
    const std::vector<LogLine> found = linesWith(text);
    return static_cast<size_t>(
        std::count_if(found.begin(), found.end(),
                      [priority](const LogLine& line) { return line.priority == priority; }));
}

void LogCapture::clear() {
    const std::lock_guard<std::mutex> guard(gLock);
    mLines.clear();
}

void PrintTo(const LogCapture& capture, std::ostream* out) {
    const std::vector<LogLine> lines = capture.lines();
    *out << lines.size() << " log lines";
    for (const LogLine& line : lines) {
        *out << "\n  ";
        PrintTo(line, out);
    }
}

}  // namespace avitest
