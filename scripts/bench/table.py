#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""usage: table.py RESULTS MEMORY START DOCUMENT

Makes the tables of DOCUMENT, between its two markers, from what bench_compare measured (RESULTS, in
JSON), what bench_memory printed (lines of MEMORY, each after a shape and a number of entries) and the
lines of START about the library. scripts/bench.sh runs it.
"""
import json
import os
import pathlib
import statistics
import sys
from collections import defaultdict

BEGIN = "<!-- measured: scripts/bench.sh writes from here -->"
END = "<!-- measured: to here -->"
REMOTE_CALL_NS = 30_000
OTHERS = ["libavformat", "libavformat-noparse", "floor"]

# At most: ours divided by the other one's. The tables have the works in this order.
TARGETS = {
    ("open", "idx1"): {"libavformat": 0.2, "floor": 2},
    ("open", "opendml"): {"libavformat": 0.2, "floor": 2},
    ("open", "scan-small"): {"floor": 0.5},
    ("open", "scan-large"): {"floor": 1.05},
    ("read", "mpeg4-mp3"): {"libavformat-noparse": 0.9, "floor": 1.35},
    ("read", "mjpeg-pcm"): {"libavformat-noparse": 0.9, "floor": 1.05},
    ("read", "tiny"): {"libavformat-noparse": 0.9},
    ("seek", "mpeg4-mp3"): {"libavformat": 0.4},
    ("seek", "tiny"): {"libavformat": 0.4},
    ("seek", "one-key"): {"libavformat": 0.4},
}


class Result:
    """All repetitions of one contender at one work."""

    def __init__(self, runs):
        # Of the processor: all of them work in one thread, and waiting for the disk or for other
        # programs is none of their work.
        times = sorted(run["cpu_time"] for run in runs)
        quarter = len(times) // 4
        self.median = statistics.median(times)
        self.low, self.high = times[quarter], times[-1 - quarter]
        self.items = runs[0]["items"]
        self.calls = runs[0]["calls"]

    def remote(self):
        return self.median + self.calls * REMOTE_CALL_NS


def read_results(path):
    """Results by (work, shape, entries) and contender, and the context of the run."""
    whole = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    runs = defaultdict(lambda: defaultdict(list))
    for run in whole["benchmarks"]:
        if run["run_type"] == "iteration":
            work, shape, entries, contender = run["name"].split("/")[:4]
            runs[work, shape, int(entries)][contender].append(run)
    repetitions = max(run["repetitions"] for run in whole["benchmarks"])
    return ({key: {name: Result(found) for name, found in by_name.items()}
             for key, by_name in runs.items()}, {**whole["context"], "repetitions": repetitions})


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def row(*cells):
    return "| " + " | ".join(map(str, cells)) + " |"


def head(*cells):
    return [row(*cells), "|" + " --- |" * len(cells)]


def spread_text(result):
    return (f"{time_text(result.median)} ({time_text(result.low)} to {time_text(result.high)})"
            if result else "-")


def compared(results):
    """What the others do too, in the order of TARGETS."""
    order = list(TARGETS)
    return sorted(((key, found) for key, found in results.items() if key[:2] in order),
                  key=lambda result: order.index(result[0][:2]))


def chosen(results, work):
    return [(key, found) for key, found in sorted(results.items()) if key[0] == work]


def times_table(results):
    yield from head("work", "items", "ours", *OTHERS)
    for (work, shape, _), found in compared(results):
        yield row(f"{work} {shape}", f"{found['ours'].items:,.0f}",
                  *(spread_text(found.get(name)) for name in ["ours", *OTHERS]))


def ratio_text(found, name, target):
    if name not in found:
        return "-"
    ratio = found["ours"].median / found[name].median
    if target is None:
        return f"{ratio:.3g}"
    return f"{ratio:.3g} ({'met' if ratio <= target else 'missed'}: {target})"


def ratios_table(results):
    yield from head("ours divided by", *OTHERS)
    for (work, shape, _), found in compared(results):
        targets = TARGETS[work, shape]
        yield row(f"{work} {shape}",
                  *(ratio_text(found, name, targets.get(name)) for name in OTHERS))


def calls_table(results):
    names = ["ours", "libavformat", "floor"]
    yield from head("work", *(f"{name}: calls an item" for name in names),
                    *(f"{name}: with 30 us a call" for name in names))
    for (work, shape, _), found in compared(results):
        yield row(f"{work} {shape}",
                  *(f"{found[name].calls / found[name].items:.4g}" for name in names),
                  *(time_text(found[name].remote()) for name in names))


def growth_table(results):
    by_shape = defaultdict(dict)
    for (_, shape, entries), found in chosen(results, "growth"):
        by_shape[shape][entries] = found["ours"]
    sizes = sorted(next(iter(by_shape.values())))
    yield from head("nanoseconds an entry", *(f"{size:,} entries" for size in sizes))
    for shape, found in by_shape.items():
        yield row(f"open {shape}", *(f"{found[size].median / size:.1f}" for size in sizes))


def memory_table(lines):
    yield from head("bytes an entry", "entries", "after the parse", "at most meanwhile", "ratio")
    for line in lines:
        shape, entries, _, after, _, peak = line.split()
        yield row(shape, f"{int(entries):,}", after, peak, f"{float(peak) / float(after):.2f}")


def conditions(context):
    load = ", ".join(f"{value:.1f}" for value in context["load_avg"])
    model = next((line.split(":", 1)[1].strip() for line in
                  pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines()
                  if line.startswith("model name")), "an unknown processor")
    yield (f"{context['date'][:10]}, {context['num_cpus']} processors ({model}), Linux "
           f"{os.uname().release}; load at the beginning {load}; {context['repetitions']} repetitions.")


def main():
    results_path, memory_path, start_path, document_path = map(pathlib.Path, sys.argv[1:])
    results, context = read_results(results_path)
    start = next(found["ours"] for _, found in chosen(results, "start"))
    sections = [
        [*conditions(context)],
        [*times_table(results)],
        [*ratios_table(results)],
        [*calls_table(results)],
        [*growth_table(results)],
        [*memory_table(memory_path.read_text().splitlines())],
        [f"Start of the library, sniff and creation: {spread_text(start)}, {start.calls:g} call of "
         f"the source. {' '.join(start_path.read_text().split())}"],
    ]
    text = "\n\n".join("\n".join(section) for section in sections)
    before, rest = document_path.read_text(encoding="utf-8").split(BEGIN)
    after = rest.split(END)[1]
    document_path.write_text(f"{before}{BEGIN}\n\n{text}\n\n{END}{after}", encoding="utf-8")


if __name__ == "__main__":
    main()
