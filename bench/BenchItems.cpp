// SPDX-License-Identifier: Apache-2.0
//
// Does one kind of work with the plug-in and nothing else, for scripts/check-costs.sh to count its
// instructions: prints how many items there were and the calls of the data source.

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/AviWriter.h"
#include "bench/Ours.h"
#include "bench/SeekTimes.h"

namespace avibench {

namespace {

constexpr char kUsage[] =
    "usage: bench_items make SHAPE ENTRIES FILE\n"
    "       bench_items open SHAPE ENTRIES FILE\n"
    "       bench_items read SHAPE ENTRIES FILE SAMPLES\n"
    "       bench_items seek SHAPE ENTRIES FILE SEEKS\n";

uint64_t doSeeks(Ours& ours, const Shape& shape, uint32_t entries, uint64_t count) {
    SeekTimes times(shape, entries / static_cast<uint32_t>(streamsOf(shape)));
    for (uint64_t i = 0; i < count; ++i)
        ours.seek(times.timeOf(times.nextFrame()));
    return count;
}

// The number of items; the work is one of those above.
uint64_t doWork(Ours& ours, const std::string& work, const Shape& shape, uint32_t entries,
                uint64_t count) {
    if (work == "open") return entries;
    ours.start();
    return work == "read" ? ours.read(count) : doSeeks(ours, shape, entries, count);
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.size() < 4) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const std::string& work = arguments[0];
    const Shape& shape = shapeOf(arguments[1]);
    const auto entries = static_cast<uint32_t>(std::stoul(arguments[2]));
    const std::string& file = arguments[3];
    const bool counts = work == "read" || work == "seek";
    if (arguments.size() != (counts ? 5 : 4) || (!counts && work != "make" && work != "open")) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (work == "make") {
        writeAvi(shape, entries, file);
        return 0;
    }
    Ours ours;
    ours.open(file);
    const uint64_t items =
        doWork(ours, work, shape, entries, counts ? std::stoul(arguments[4]) : 0);
    std::printf("items %llu calls %llu\n", static_cast<unsigned long long>(items),
                static_cast<unsigned long long>(ours.calls()));
    return 0;
}

}  // namespace

}  // namespace avibench

int main(int argc, char** argv) {
    try {
        return avibench::run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_items: %s\n", error.what());
        return 1;
    }
}
