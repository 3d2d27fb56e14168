// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Session.h"

#include <android/log.h>
#include <unistd.h>

#include <atomic>
#include <cinttypes>
#include <cstdio>

namespace avifuzz {

namespace {

// Each takes about a megabyte for good, and every leak check stops them all.
constexpr size_t kMaxParkedThreads = 300;

std::atomic<uint64_t> gLogLines{0};

void countLine(const __android_logger_data* /*data*/, const char* /*message*/) {
    gLogLines.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

Session& Session::get() {
    static auto* const kSession = new Session;
    return *kSession;
}

Session::Session() : mPlugin(AVI_PLUGIN_PATH, android::service::PluginLibrary::Unload::kNever) {
    __android_log_set_logger(countLine);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);  // lines are formatted, not shown
}

void Session::run(const std::function<void()>& work) {
    ++mInputs;
    mTrap.run(work);
    if (mTrap.parkedCount() <= kMaxParkedThreads) return;
    // In the form of libFuzzer's own statistics, which it does not get to print.
    std::fprintf(stderr, "stat::number_of_executed_units: %" PRIu64 "\n", mInputs);
    _exit(0);
}

uint64_t logLineCount() {
    return gLogLines.load(std::memory_order_relaxed);
}

}  // namespace avifuzz
