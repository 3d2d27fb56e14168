// SPDX-License-Identifier: Apache-2.0
//
// Logging of the plug-in: one tag, errors to debug lines always, verbose lines by the switches.
// Field engineers filter captured logs by these texts and line numbers: both are kept stable.
#pragma once

#include <inttypes.h>
#include <log/log.h>

#include "support/LogLimit.h"
#include "support/Switches.h"

namespace android {

constexpr char kLogTag[] = "RuvoAVIExtractor";

// 64-bit values for "%lld" and "%llX": int64_t is a long on 64-bit targets.
constexpr long long ll(int64_t value) {
    return value;
}

constexpr unsigned long long ull(uint64_t value) {
    return value;
}

}  // namespace android

#define AVI_LOG(priority, ...) __android_log_print(priority, ::android::kLogTag, __VA_ARGS__)

// Printed unless the file has caused too many lines with this format.
#define AVI_FORMAT_OF(format, ...) format
#define AVI_LOG_LIMITED(priority, ...)                                             \
    static_cast<void>(::android::LogLimit::allows(AVI_FORMAT_OF(__VA_ARGS__, )) && \
                      AVI_LOG(priority, __VA_ARGS__))

#define AVI_LOGE(...) AVI_LOG_LIMITED(ANDROID_LOG_ERROR, __VA_ARGS__)
#define AVI_LOGW(...) AVI_LOG_LIMITED(ANDROID_LOG_WARN, __VA_ARGS__)
#define AVI_LOGD(...) AVI_LOG(ANDROID_LOG_DEBUG, __VA_ARGS__)

// Printed while the extract-log switch is on.
#define AVI_LOGV(...) \
    static_cast<void>(::android::extractLogEnabled() && AVI_LOG(ANDROID_LOG_VERBOSE, __VA_ARGS__))

// Printed while the verbose-log switch is on: one line a chunk.
#define AVI_TRACE(...) \
    static_cast<void>(::android::verboseLogEnabled() && AVI_LOG(ANDROID_LOG_VERBOSE, __VA_ARGS__))

namespace android {

// Logs that `function` failed with a negative status, printed without its sign in hexadecimal, and
// returns the status.
template <typename Status>
Status fail(const char* function, Status status, int line) {
    AVI_LOGE("%s(): error -%X @line%d", function, static_cast<unsigned>(-status), line);
    return status;
}

}  // namespace android
