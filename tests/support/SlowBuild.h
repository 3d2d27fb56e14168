// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace avitest {

// Builds that run many times slower than what users get: instrumented, unoptimised or emulated.
#if !defined(__OPTIMIZE__) || defined(__aarch64__)
constexpr bool kSlowBuild = true;
#elif !defined(__has_feature)
constexpr bool kSlowBuild = false;
#else
constexpr bool kSlowBuild = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ||
                            __has_feature(undefined_behavior_sanitizer);
#endif

}  // namespace avitest
