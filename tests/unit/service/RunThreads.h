// SPDX-License-Identifier: Apache-2.0
// Runs one function in several threads at once.
#pragma once

#include <functional>
#include <thread>
#include <vector>

namespace android::service {

/** Calls `work(0)` to `work(count - 1)`, each in a thread of its own, and waits for all of them. */
inline void runThreads(int count, const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(count));
    for (int thread = 0; thread < count; ++thread) {
        threads.emplace_back(work, thread);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace android::service
