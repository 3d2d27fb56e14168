// SPDX-License-Identifier: Apache-2.0
#include "fuzz/OpeningWatch.h"

#include <cinttypes>
#include <cstdlib>
#include <string_view>

#include "fuzz/Budgets.h"
#include "fuzz/Finding.h"
#include "fuzz/Session.h"

namespace avifuzz {

namespace {

bool budgetsHold() {
    static const bool kHold = [] {
        const char* value = std::getenv("AVI_FUZZ_BUDGETS");
        return value == nullptr || std::string_view(value) != "0";
    }();
    return kHold;
}

void compare(const char* what, uint64_t used, uint64_t most, uint64_t fileSize) {
    if (used <= most) return;
    finding("budget: opening %" PRIu64 " bytes took %" PRIu64 " %s, at most %" PRIu64 " are due",
            fileSize, used, what, most);
}

}  // namespace

ssize_t MeasuredSource::readAt(off64_t offset, void* data, size_t size) {
    ++mReads;
    const ssize_t result = mSource.readAt(offset, data, size);
    if (result > 0) mBytes += static_cast<uint64_t>(result);
    return result;
}

android::status_t MeasuredSource::getSize(off64_t* size) {
    ++mSizeCalls;
    return mSource.getSize(size);
}

OpeningWatch::OpeningWatch(const MeasuredSource& source)
    : mSource(source),
      mCallsBefore(source.calls()),
      mBytesBefore(source.bytes()),
      mLinesBefore(logLineCount()) {}

void OpeningWatch::check(uint64_t fileSize, bool logIsOff) const {
    if (!budgetsHold()) return;
    compare("bytes of memory", mMemory.peak(), maxMemory(fileSize), fileSize);
    compare("calls of the source", mSource.calls() - mCallsBefore, maxSourceCalls(fileSize),
            fileSize);
    compare("bytes of the source", mSource.bytes() - mBytesBefore, maxBytesRead(fileSize),
            fileSize);
    if (!logIsOff) return;
    compare("log lines", logLineCount() - mLinesBefore, maxLogLines(fileSize), fileSize);
}

}  // namespace avifuzz
