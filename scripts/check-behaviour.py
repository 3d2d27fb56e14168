#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that docs/behaviour.md and the tests agree: every test that it names exists, and every
behaviour test is named.

A test is named in the last column of a table whose header ends in "Shown by", as `Suite.Test`;
a parameterised one without the prefix and the parameter. Disabled tests count as absent.
"""

import argparse
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\s*\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)
COLUMN = re.compile(r"(?<!\\)\|")


def tests_in(folder):
    """The enabled tests of all sources below a folder, with the source of each."""
    found = {}
    for source in sorted(folder.rglob("*.cpp")):
        for suite, test in TEST.findall(source.read_text(encoding="utf-8")):
            if not (suite.startswith("DISABLED_") or test.startswith("DISABLED_")):
                found[f"{suite}.{test}"] = source.relative_to(ROOT)
    return found


def rows_of(document):
    """Line number and last cell of each row of the tables that tell what shows a behaviour."""
    in_table = False
    for number, line in enumerate(document.read_text(encoding="utf-8").splitlines(), 1):
        if not line.startswith("|"):
            in_table = False
            continue
        cell = COLUMN.split(line.strip().strip("|"))[-1].strip()
        if cell == "Shown by":
            in_table = True
        elif in_table and not re.fullmatch(":?-+:?", cell):
            yield number, cell


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--file", type=pathlib.Path, default=ROOT / "docs/behaviour.md")
    parser.add_argument("--folders", nargs="+", metavar="FOLDER", default=["."],
                        help="folders of tests/behaviour whose tests must be named (default: all)")
    arguments = parser.parse_args()

    if not arguments.file.is_file():
        parser.error(f"there is no {arguments.file}")
    existing = tests_in(ROOT / "tests")
    named = set()
    failures = []
    for number, cell in rows_of(arguments.file):
        names = re.findall(r"`([^`]*)`", cell)
        if not names:
            failures.append(f"{arguments.file}:{number}: the row names no test")
        for name in names:
            if name not in existing:
                failures.append(f"{arguments.file}:{number}: there is no test {name}")
        named.update(names)

    wanted = {}
    for folder in arguments.folders:
        path = ROOT / "tests/behaviour" / folder
        if not path.is_dir():
            parser.error(f"there is no folder {path}")
        wanted.update(tests_in(path))
    for name, source in wanted.items():
        if name not in named:
            failures.append(f"{source}: {name} is not named in {arguments.file}")

    print("\n".join(failures) or f"{len(wanted)} behaviour tests are named in {arguments.file}")
    return 1 if failures or not wanted else 0


if __name__ == "__main__":
    sys.exit(main())
