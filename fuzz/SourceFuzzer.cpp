// SPDX-License-Identifier: Apache-2.0
//
// The whole plug-in over a source that misbehaves. The first orders of an input are the source's:
// see fuzz/UnsteadySource.h.
#include "fuzz/Entry.h"
#include "fuzz/Exercise.h"
#include "fuzz/Session.h"
#include "fuzz/UnsteadySource.h"

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    avifuzz::Session::get();
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    avifuzz::Session& session = avifuzz::Session::get();
    session.run([&session, data, size] {
        avifuzz::Input input(data, size);
        avifuzz::UnsteadySource source(input.file, input.fileSize, &input.orders);
        avifuzz::exercise(session.plugin(), source, source.budgetSize(), input.orders);
    });
    return 0;
}
