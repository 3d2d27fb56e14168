// SPDX-License-Identifier: Apache-2.0
//
// Times the plug-in and others at the same work on the same files, for scripts/bench.sh. The first
// argument is the folder for the files, the others are Google Benchmark's.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>

#include "bench/AviWriter.h"
#include "bench/Contenders.h"
#include "bench/Ours.h"
#include "bench/SeekTimes.h"

namespace avibench {

namespace {

struct Input {
    const Shape& shape;
    uint32_t entries;
    std::string path;
    Layout layout;
};

// The files, each made when it is first asked for.
class Inputs {
  public:
    explicit Inputs(std::string folder) : mFolder(std::move(folder)) {}

    const Input& get(std::string_view shapeName, uint32_t entries) {
        const std::string name = std::string(shapeName) + "-" + std::to_string(entries) + ".avi";
        auto& input = mInputs[name];
        if (input == nullptr) {
            const Shape& shape = shapeOf(shapeName);
            const std::string path = mFolder + "/" + name;
            input.reset(new Input{shape, entries, path, writeAvi(shape, entries, path)});
        }
        return *input;
    }

  private:
    const std::string mFolder;
    std::map<std::string, std::unique_ptr<Input>> mInputs;
};

struct Work {
    std::string_view shape;
    uint32_t entries;
};

constexpr Work kOpenWorks[] = {
    {"idx1", 1000000}, {"opendml", 506000}, {"scan-small", 300000}, {"scan-large", 30000}};
constexpr Work kReadWorks[] = {{"mpeg4-mp3", 40000}, {"mjpeg-pcm", 4000}, {"tiny", 100000}};
constexpr Work kSeekWorks[] = {{"mpeg4-mp3", 40000}, {"tiny", 100000}, {"one-key", 1000000}};
constexpr std::string_view kGrowthShapes[] = {"idx1", "opendml", "scan-dense"};
constexpr uint32_t kGrowthEntries[] = {10000, 100000, 1000000, 5000000};
constexpr int kSeeks = 500;
constexpr int kStarts = 100;

// Items and calls of the source of one iteration.
void setCounters(benchmark::State& state, uint64_t items, double calls) {
    state.counters["items"] = static_cast<double>(items);
    state.counters["calls"] = calls;
}

double difference(uint64_t less, uint64_t more) {
    return static_cast<double>(more - less);
}

// Until the contender knows where every sample lies.
void openFile(benchmark::State& state, const Input& input, const ContenderKind& kind) {
    const auto contender = kind.make(input.shape, input.layout);
    const bool readsAll = input.shape.index == Index::kNone && !kind.scans;
    for (auto _ : state) {
        contender->open(input.path);
        if (readsAll) contender->read(input.entries);
        state.PauseTiming();
        setCounters(state, input.entries, difference(0, contender->calls()));
        contender->close();
        state.ResumeTiming();
    }
}

void readThrough(benchmark::State& state, const Input& input, const ContenderKind& kind) {
    const auto contender = kind.make(input.shape, input.layout);
    for (auto _ : state) {
        state.PauseTiming();
        contender->open(input.path);
        contender->start();
        const uint64_t before = contender->calls();
        state.ResumeTiming();
        const uint64_t samples = contender->read(input.entries);
        state.PauseTiming();
        if (samples == 0) state.SkipWithError("no sample was read");
        setCounters(state, samples, difference(before, contender->calls()));
        contender->close();
        state.ResumeTiming();
    }
}

void seekAround(benchmark::State& state, const Input& input, const ContenderKind& kind) {
    const auto contender = kind.make(input.shape, input.layout);
    contender->open(input.path);
    contender->start();
    const auto streams = static_cast<uint32_t>(streamsOf(input.shape));
    SeekTimes times(input.shape, input.entries / streams);
    const uint64_t before = contender->calls();
    for (auto _ : state)
        contender->seek(times.timeOf(times.nextFrame()));
    setCounters(state, 1, difference(before, contender->calls()) / kSeeks);
    contender->close();
}

using Measure = void (*)(benchmark::State&, const Input&, const ContenderKind&);

benchmark::internal::Benchmark* registerWork(Inputs& inputs, const std::string& workName,
                                             const Work& work, const ContenderKind& kind,
                                             Measure measure) {
    const std::string name = workName + "/" + std::string(work.shape) + "/" +
                             std::to_string(work.entries) + "/" + std::string(kind.name);
    const auto run = [&inputs, work, &kind, measure](benchmark::State& state) {
        measure(state, inputs.get(work.shape, work.entries), kind);
    };
    return benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime();
}

void registerAll(Inputs& inputs) {
    for (const ContenderKind& kind : contenders()) {
        if (kind.opens) {
            for (const Work& work : kOpenWorks)
                registerWork(inputs, "open", work, kind, openFile)->Iterations(1);
            for (const Work& work : kSeekWorks)
                registerWork(inputs, "seek", work, kind, seekAround)->Iterations(kSeeks);
        }
        for (const Work& work : kReadWorks)
            registerWork(inputs, "read", work, kind, readThrough)->Iterations(1);
    }
    for (const std::string_view shape : kGrowthShapes) {
        for (const uint32_t entries : kGrowthEntries) {
            registerWork(inputs, "growth", {shape, entries}, contenders().front(), openFile)
                ->Iterations(1);
        }
    }
}

// The library's start, the sniff and the creation. What the library needs is loaded, as in the
// service.
void startPlugin(benchmark::State& state, const Input& input) {
    discardLogLines();
    CountingSource source(input.path);
    for (auto _ : state) {
        const android::service::PluginLibrary plugin(AVI_PLUGIN_PATH);
        benchmark::DoNotOptimize(android::service::Extractor::open(plugin, source));
    }
    setCounters(state, 1, difference(0, source.calls()) / kStarts);
}

int run(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: bench_compare FOLDER [BENCHMARK-OPTION...]\n", stderr);
        return 2;
    }
    Inputs inputs(argv[1]);
    argv[1] = argv[0];
    int rest = argc - 1;
    benchmark::Initialize(&rest, argv + 1);
    if (benchmark::ReportUnrecognizedArguments(rest, argv + 1)) return 2;
    registerAll(inputs);
    benchmark::RegisterBenchmark(
        "start/idx1/10000/ours",
        [&inputs](benchmark::State& state) { startPlugin(state, inputs.get("idx1", 10000)); })
        ->UseRealTime()
        ->Iterations(kStarts);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace

}  // namespace avibench

int main(int argc, char** argv) {
    try {
        return avibench::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_compare: %s\n", error.what());
        return 1;
    }
}
