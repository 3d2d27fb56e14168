// SPDX-License-Identifier: Apache-2.0
// Whether memory that cannot be had ends the process, as the sanitizers' allocators have it.
#pragma once

namespace android::service {

#if defined(__has_feature)
#define HAS_FEATURE(name) __has_feature(name)
#else
#define HAS_FEATURE(name) 0
#endif
constexpr bool kAllocatorAborts = HAS_FEATURE(address_sanitizer) || HAS_FEATURE(thread_sanitizer);

}  // namespace android::service
