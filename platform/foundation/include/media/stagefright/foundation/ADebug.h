// SPDX-License-Identifier: Apache-2.0
//
// Fatal assertions. They stay in optimised builds: each one logs its place and text at fatal
// priority, under the LOG_TAG of the file that holds it, and aborts the process.
#pragma once

#include <log/log.h>
#include <media/stagefright/foundation/AString.h>

#define ADEBUG_LITERAL_(x) #x
#define ADEBUG_LITERAL(x) ADEBUG_LITERAL_(x)
#define ADEBUG_PLACE __FILE__ ":" ADEBUG_LITERAL(__LINE__)

/// Aborts with `file:line CHECK(condition) failed.` unless `condition` holds.
#define CHECK(condition)                                                         \
    do {                                                                         \
        if (__builtin_expect(!(condition), false)) {                             \
            __android_log_assert(#condition, LOG_TAG, "%s",                      \
                                 ADEBUG_PLACE " CHECK(" #condition ") failed."); \
        }                                                                        \
    } while (false)

/// Aborts, saying that the line cannot be reached.
#define TRESPASS() __android_log_assert(nullptr, LOG_TAG, "%s", ADEBUG_PLACE " Should not be here.")

namespace android::adebug {

/// "a vs. b", for the message of a failed comparison.
template <typename A, typename B>
AString describe(const A& a, const B& b) {
    AString text;
    text.append(a);
    text.append(" vs. ");
    text.append(b);
    return text;
}

}  // namespace android::adebug

// Evaluates each operand once; the operands' types are those that AString::append() knows.
#define ADEBUG_CHECK_OP(name, op, x, y)                                                  \
    do {                                                                                 \
        const auto& adebugX = (x);                                                       \
        const auto& adebugY = (y);                                                       \
        if (__builtin_expect(!(adebugX op adebugY), false)) {                            \
            __android_log_assert(#x " " #op " " #y, LOG_TAG, "%s %s",                    \
                                 ADEBUG_PLACE " " name "( " #x "," #y ") failed:",       \
                                 ::android::adebug::describe(adebugX, adebugY).c_str()); \
        }                                                                                \
    } while (false)

/// Comparisons; a failed one aborts with `file:line CHECK_EQ( x,y) failed: 1 vs. 2`.
#define CHECK_EQ(x, y) ADEBUG_CHECK_OP("CHECK_EQ", ==, x, y)
#define CHECK_NE(x, y) ADEBUG_CHECK_OP("CHECK_NE", !=, x, y)
#define CHECK_LE(x, y) ADEBUG_CHECK_OP("CHECK_LE", <=, x, y)
#define CHECK_LT(x, y) ADEBUG_CHECK_OP("CHECK_LT", <, x, y)
#define CHECK_GE(x, y) ADEBUG_CHECK_OP("CHECK_GE", >=, x, y)
#define CHECK_GT(x, y) ADEBUG_CHECK_OP("CHECK_GT", >, x, y)
