# SPDX-License-Identifier: Apache-2.0
"""Tries small faults of avi/ one at a time and counts those that the test suite does not notice."""
import argparse
import collections
import concurrent.futures
import pathlib
import queue
import sys
import threading

import faults
import scratch

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
EXPLAINED = pathlib.Path(__file__).resolve().parent / "survivors.txt"
TOLERATED = 20  # one fault in so many may go unnoticed

Result = collections.namedtuple("Result", "fault noticed")  # noticed: None, or by what


def sources():
    avi = ROOT / "avi"
    return {path.relative_to(avi).as_posix(): path.read_text(encoding="utf-8")
            for path in sorted(avi.rglob("*")) if path.suffix in (".cpp", ".h")}


def explanations():
    """The reason for each survivor, by its key: a line with the key, then indented lines."""
    found, key = {}, None
    for line in EXPLAINED.read_text(encoding="utf-8").splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if line.startswith("    "):
            found[key] = f"{found[key]} {line.strip()}".strip()
        else:
            key = line.strip()
            found[key] = ""
    return found


class Order:
    """Which programs to run first: those that noticed faults of the same folder, and short ones."""

    def __init__(self):
        self.noticed = collections.Counter()

    def sorted(self, programs, name):
        folder = pathlib.PurePath(name).parent.as_posix()

        def worth(program):
            hits = self.noticed[folder, program.name] + program.name.endswith(f"_{folder}")
            return (1 + 4 * hits) / (0.2 + program.seconds)
        return sorted(programs, key=worth, reverse=True)

    def count(self, name, program):
        self.noticed[pathlib.PurePath(name).parent.as_posix(), program.name] += 1


class Bench:
    """Tries the faults of one file after the other in a scratch copy of its own."""

    def __init__(self, tree, programs, order):
        self.tree, self.programs, self.order = tree, programs, order

    def work(self, files, report):
        while True:
            try:
                wanted, candidates = files.get_nowait()
            except queue.Empty:
                return
            for fault in candidates:
                if wanted == 0:
                    break
                result = self.tried(fault)
                if result:
                    wanted -= 1
                    report(result)

    def tried(self, fault):
        """What became of the fault; None when it does not compile."""
        path = self.tree.source / "avi" / fault.file
        whole = path.read_text(encoding="utf-8")
        lines = whole.split("\n")
        if lines[fault.line - 1] != fault.before:
            raise SystemExit(f"mutate: {path} is not as the last commit has it")
        lines[fault.line - 1] = fault.after
        path.write_text("\n".join(lines), encoding="utf-8")
        try:
            if not self.tree.compiles("aviextractor"):
                return None
            return Result(fault, self.noticed(fault))
        finally:
            path.write_text(whole, encoding="utf-8")

    def noticed(self, fault):
        for program in self.order.sorted(self.programs, fault.file):
            if not self.tree.compiles(program.name):
                return f"{program.name} does not compile"
            failure = self.tree.run(program, program.limit)
            if failure:
                self.order.count(fault.file, program)
                return f"{program.name} {failure}"
        return None


def queued(options):
    """For each file with work how many faults to try, and which; most work first."""
    picked = faults.picked(sources(), options.count)
    if options.only:
        picked = {name: (len(candidates), [fault for fault in candidates
                                           if any(text in faults.key_of(fault)
                                                  for text in options.only)])
                  for name, (_, candidates) in picked.items()}
    return sorted((entry for entry in picked.values() if entry[0] and entry[1]),
                  key=lambda entry: -entry[0])


def benches(jobs):
    """Scratch copies, built, with the time that each program takes without a fault."""
    trees = [scratch.Scratch(ROOT, number) for number in range(1, jobs + 1)]
    for tree in trees:
        tree.prepare()
        tree.compile_all()
    programs = [tree.programs() for tree in trees]
    trees[0].measure(programs[0])
    for others in programs[1:]:
        for program, measured in zip(others, programs[0]):
            program.seconds = measured.seconds
    total = sum(program.seconds for program in programs[0])
    print(f"mutate: {len(programs[0])} programs take {total:.0f} s without a fault", flush=True)
    order = Order()
    return [Bench(tree, own, order) for tree, own in zip(trees, programs)]


def results_of(work, jobs):
    """What became of each fault, each printed as it is known."""
    files = queue.Queue()
    for entry in work:
        files.put(entry)
    results, lock = [], threading.Lock()

    def report(result):
        with lock:
            results.append(result)
            print(line_of(result), flush=True)

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for done in [pool.submit(bench.work, files, report) for bench in benches(jobs)]:
            done.result()
    return results


def line_of(result):
    fault = result.fault
    return (f"{fault.file}:{fault.line}: {fault.before.strip()} -> {fault.after.strip()}: "
            f"{result.noticed or 'SURVIVED'}")


def summed_up(results):
    """Prints the summary; whether it is good."""
    explained = explanations()
    survivors = [result for result in results if not result.noticed]
    unexplained = [result for result in survivors if not explained.get(faults.key_of(result.fault))]
    wrong = [faults.key_of(result.fault) for result in results
             if result.noticed and faults.key_of(result.fault) in explained]
    known = {faults.key_of(fault) for name, text in sources().items()
             for line in faults.faults_of(name, text) for fault in line}
    stale = [key for key in explained if key not in known]

    for result in unexplained:
        print(f"unexplained: {faults.key_of(result.fault)}")
    for key in wrong:
        print(f"explained in {EXPLAINED.name}, but noticed: {key}")
    for key in stale:
        print(f"explained in {EXPLAINED.name}, but no fault of avi/: {key}")
    print(f"mutate: of {len(results)} faults {len(results) - len(survivors)} were noticed; "
          f"{len(survivors)} survived, {len(survivors) - len(unexplained)} of them explained")
    return results and len(unexplained) * TOLERATED <= len(results) and not wrong and not stale


def main():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__)
    parser.add_argument("--count", type=int, default=160,
                        help="how many faults to try (%(default)s)")
    parser.add_argument("--jobs", type=int, default=2, help="how many at a time (%(default)s)")
    parser.add_argument("--only", metavar="TEXT", action="append",
                        help="all faults whose key holds the TEXT, such as a file; may be repeated")
    parser.add_argument("--list", action="store_true",
                        help="print the keys of the faults, try none")
    options = parser.parse_args()

    work = queued(options)
    if options.list:
        for wanted, candidates in work:
            print("\n".join(map(faults.key_of, candidates[:wanted])))
        return 0
    return 0 if summed_up(results_of(work, options.jobs)) else 1


if __name__ == "__main__":
    sys.exit(main())
