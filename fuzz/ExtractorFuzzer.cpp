// SPDX-License-Identifier: Apache-2.0
//
// The entry through which libFuzzer, and the replay of the corpus, hand in an input.
//
// A timeout is reported with the stack of the main thread, which only waits for the one that works:
// run the input under a debugger for the other.
#include <android/log.h>
#include <unistd.h>

#include "fuzz/AssertionTrap.h"
#include "fuzz/Exercise.h"

namespace {

// Each takes about a megabyte for good, and every leak check stops them all. Beyond this the
// process ends without a word, and scripts/fuzz.sh starts it again on the corpus it has.
constexpr size_t kMaxParkedThreads = 300;

void dropLine(const __android_logger_data* /*data*/, const char* /*message*/) {}

// Kept for good, as are its parked threads and the plug-in they stand in.
struct Session {
    Session() {
        __android_log_set_logger(dropLine);
        __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);  // lines are formatted, not shown
    }
    const android::service::PluginLibrary plugin{AVI_PLUGIN_PATH,
                                                 android::service::PluginLibrary::Unload::kNever};
    avifuzz::AssertionTrap trap;
};

Session& session() {
    static auto* const kSession = new Session;
    return *kSession;
}

}  // namespace

// libFuzzer calls both by name.
extern "C" __attribute__((visibility("default"))) int LLVMFuzzerInitialize(int* /*argc*/,
                                                                           char*** /*argv*/) {
    session();  // loads the plug-in, whose counters the fuzzer wants to know from the beginning
    return 0;
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const uint8_t* data,
                                                                             size_t size) {
    session().trap.run([=] { avifuzz::exercise(session().plugin, data, size); });
    if (session().trap.parkedCount() > kMaxParkedThreads) _exit(0);
    return 0;
}
