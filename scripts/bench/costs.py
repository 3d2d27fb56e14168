#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""usage: costs.py PROGRAM BUDGETS [--update]

Counts what an item costs in the plug-in: instructions, by callgrind, and calls of the data source.
Each work is done twice, the second time with twice the items; the difference is that of the items
alone. Fails when a cost exceeds its line in BUDGETS by more than 5 %; --update writes the lines.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

import callgrind

LIBRARY = "libaviextractor.so"
SLACK = 1.05

# Work and shape, the items of the first run, and for reads and seeks the entries of the file.
# The reads end before the last samples, which the log shows.
WORKS = [
    ("open", "idx1", 100000, None),
    ("open", "opendml", 100000, None),
    ("open", "scan-small", 20000, None),
    ("open", "scan-large", 2000, None),
    ("read", "mpeg4-mp3", 4000, 10000),
    ("read", "mjpeg-pcm", 500, 1500),
    ("read", "tiny", 10000, 25000),
    ("seek", "mpeg4-mp3", 1000, 10000),
    ("seek", "tiny", 1000, 25000),
    ("seek", "one-key", 1000, 200000),
]

HEADER = """\
# What an item may cost: an entry that is opened, a sample that is read, a seek with the frame read.
# scripts/check-costs.sh compares, scripts/check-costs.sh --update writes it anew.
# work  shape       instructions  of them in avi/  calls
"""


class Bench:
    def __init__(self, program, folder):
        self.program = pathlib.Path(program)
        self.folder = pathlib.Path(folder)

    def file(self, shape, entries):
        path = self.folder / f"{shape}-{entries}.avi"
        if not path.exists():
            subprocess.run([self.program, "make", shape, str(entries), path], check=True)
        return path

    def run(self, work, shape, entries, items):
        """Items, instructions with and without what is called, and calls of one run."""
        profile = self.folder / "callgrind.out"
        command = [self.program, work, shape, str(entries), self.file(shape, entries)]
        if work != "open":
            command.append(str(items))
        out = subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", f"--callgrind-out-file={profile}", *command],
            check=True, stdout=subprocess.PIPE, text=True).stdout
        done, calls = map(int, re.fullmatch(r"items (\d+) calls (\d+)\n", out).groups())
        if done != items:
            sys.exit(f"costs: {work} {shape}: {done} items instead of {items}")
        return (done, *callgrind.cost_of(profile, LIBRARY, self.program.name), calls)

    def cost(self, work, shape, items, entries):
        """Instructions with and without what is called, and calls of an item."""
        once, twice = (self.run(work, shape, entries or count, count)
                       for count in (items, 2 * items))
        return tuple((more - less) / (twice[0] - once[0]) for less, more in zip(once[1:], twice[1:]))


def read_budgets(path):
    budgets = {}
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            work, shape, _, instructions, calls = line.split()
            budgets[work, shape] = (float(instructions), float(calls))
    return budgets


def text_of(work, shape, cost):
    return f"{work:7} {shape:11} {cost[0]:12.1f} {cost[1]:16.1f} {cost[2]:8.5f}"


def verdict(cost, budget):
    """What is wrong with a cost, or to be said about it; and whether it fails. Of the instructions those
    in avi/ decide: what it calls in libc depends on the processor."""
    if budget is None:
        return "no budget", True
    for name, actual, allowed in zip(("instructions", "calls"), cost[1:], budget):
        if actual > allowed * SLACK:
            return f"more {name} than {allowed}", True
    if any(actual * SLACK < allowed for actual, allowed in zip(cost[1:], budget)):
        return "far below its budget", False
    return "", False


def main():
    program, budgets_path, *options = sys.argv[1:]
    update = options == ["--update"]
    budgets = {} if update else read_budgets(budgets_path)
    lines, failed = [], False
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(program, folder)
        for work, shape, items, entries in WORKS:
            cost = bench.cost(work, shape, items, entries)
            lines.append(text_of(work, shape, cost))
            remark, fails = ("", False) if update else verdict(cost, budgets.get((work, shape)))
            print(lines[-1], remark, flush=True)
            failed = failed or fails
    if update:
        pathlib.Path(budgets_path).write_text(HEADER + "\n".join(lines) + "\n", encoding="utf-8")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
