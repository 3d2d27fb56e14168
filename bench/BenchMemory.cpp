// SPDX-License-Identifier: Apache-2.0
//
// usage: bench_memory SHAPE ENTRIES FOLDER
//
// How much memory the plug-in holds for an entry once the file is open, and at most meanwhile.

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/AviWriter.h"
#include "bench/Ours.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avibench {

namespace {

void show(const std::string& shape, uint32_t entries, const std::string& folder) {
    const std::string path = folder + "/memory.avi";
    writeAvi(shapeOf(shape), entries, path);
    Ours ours;
    const avitest::AllocationWatch watch;
    ours.open(path);
    std::printf("after %.2f peak %.2f\n", static_cast<double>(watch.held()) / entries,
                static_cast<double>(watch.peak()) / entries);
}

}  // namespace

}  // namespace avibench

int main(int argc, char** argv) {
    try {
        if (argc != 4) throw std::invalid_argument("SHAPE ENTRIES FOLDER are to be given");
        avibench::show(argv[1], static_cast<uint32_t>(std::stoul(argv[2])), argv[3]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_memory: %s\n", error.what());
        return 1;
    }
}
