// SPDX-License-Identifier: Apache-2.0
//
// The whole plug-in, as a player drives it. The inputs are files with orders: see fuzz/Orders.h.
//
// A timeout is reported with the stack of the main thread, which only waits for the one that works:
// run the input under a debugger for the other.
#include "fuzz/Entry.h"
#include "fuzz/Exercise.h"
#include "fuzz/Session.h"
#include "service/MemorySource.h"

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    avifuzz::Session::get();  // loads the plug-in, whose counters the fuzzer wants to know at once
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    avifuzz::Session& session = avifuzz::Session::get();
    session.run([&session, data, size] {
        const avifuzz::Input input(data, size);
        android::service::MemorySource source(input.file, input.fileSize);
        avifuzz::exercise(session.plugin(), source, input.fileSize, input.orders);
    });
    return 0;
}
