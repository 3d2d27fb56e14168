// SPDX-License-Identifier: Apache-2.0
#include "support/LogLimit.h"

#include <string.h>

#include "support/Log.h"

namespace android {

namespace {

constexpr uint32_t kMaxLinesOfAKind = 100;

thread_local LogLimit* gLimit = nullptr;

}  // namespace

LogLimit::LogLimit() {
    gLimit = this;
}

LogLimit::~LogLimit() {
    gLimit = nullptr;
    for (const auto& [format, lines] : mLines) {
        if (lines <= kMaxLinesOfAKind) continue;
        AVI_LOG(ANDROID_LOG_WARN, "%u more lines like \"%s\" are not printed",
                lines - kMaxLinesOfAKind, format);
    }
}

bool LogLimit::allows(const char* format) {
    return gLimit == nullptr || gLimit->takes(format);
}

bool LogLimit::takes(const char* format) {
    for (auto& [known, lines] : mLines) {
        if (known == format || strcmp(known, format) == 0) {
            if (lines < UINT32_MAX) ++lines;
            return lines <= kMaxLinesOfAKind;
        }
    }
    mLines.emplace_back(format, 1);
    return true;
}

}  // namespace android
