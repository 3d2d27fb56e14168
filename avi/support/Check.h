// SPDX-License-Identifier: Apache-2.0
//
// Fatal assertions. They guard the contract with the framework (a source read before its start)
// and the consistency of our own tables. Some a file can reach: docs/security.md lists them.
#pragma once

#include <log/log.h>

#include "support/Log.h"

namespace android {

// The location that crash reports of this plug-in are filed under.
constexpr char kCheckLocation[] = "frameworks/av/media/libstagefright/avi/RuvoAVIExtractor";

}  // namespace android

// Aborts with `text` as the failed expression.
#define AVI_CHECK_TEXT(condition, text)                                                            \
    ((condition) ? static_cast<void>(0)                                                            \
                 : __android_log_assert(#condition, ::android::kLogTag, "%s:%d CHECK(%s) failed.", \
                                        ::android::kCheckLocation, __LINE__, text))

#define AVI_CHECK(condition) AVI_CHECK_TEXT(condition, #condition)

// Aborts when `value` is above `limit`, with `text` as the two operands and with their values.
#define AVI_CHECK_LE(value, limit, text)                                  \
    ((value) <= (limit)                                                   \
         ? static_cast<void>(0)                                           \
         : __android_log_assert(#value " <= " #limit, ::android::kLogTag, \
                                "%s:%d CHECK_LE( %s) failed: %u vs. %u",  \
                                ::android::kCheckLocation, __LINE__, text, value, limit))
