#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that docs/behaviour and the tests agree: each test that a page names exists, and each
behaviour test is named in the page of its folder.

The page of tests/behaviour/FOLDER is docs/behaviour/FOLDER.md, and docs/behaviour.md links to it.
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
                found[f"{suite}.{test}"] = source
    return found


def rows_of(page):
    """Line number and last cell of each row of the tables that name tests."""
    in_table = False
    for number, line in enumerate(page.read_text(encoding="utf-8").splitlines(), 1):
        if not line.startswith("|"):
            in_table = False
            continue
        cell = COLUMN.split(line.strip().strip("|"))[-1].strip()
        if cell == "Shown by":
            in_table = True
        elif in_table and not re.fullmatch(":?-+:?", cell):
            yield number, cell


def named_in(page, existing, failures):
    """The tests that a page names; adds rows without a test and absent tests to the failures."""
    named = set()
    for number, cell in rows_of(page):
        names = re.findall(r"`([^`]*)`", cell)
        if not names:
            failures.append(f"{page}:{number}: the row names no test")
        failures += [f"{page}:{number}: there is no test {name}"
                     for name in names if name not in existing]
        named.update(names)
    return named


def check(tests, docs):
    """The number of behaviour tests below a folder of tests, and what is wrong with their pages."""
    contents = docs / "behaviour.md"
    failures = [] if contents.is_file() else [f"there is no {contents}"]
    linked = contents.read_text(encoding="utf-8") if contents.is_file() else ""
    folders = {path.name: tests_in(path) for path in (tests / "behaviour").iterdir()
               if path.is_dir()}
    pages = {path.stem: path for path in (docs / "behaviour").glob("*.md")}
    existing = tests_in(tests)

    failures += [f"{pages[name]}: there is no folder tests/behaviour/{name}"
                 for name in sorted(pages.keys() - folders.keys())]
    for name, page in sorted(pages.items()):
        named = named_in(page, existing, failures)
        failures += [f"{source}: {test} is not named in {page}"
                     for test, source in folders.get(name, {}).items() if test not in named]
        if f"(behaviour/{name}.md)" not in linked:
            failures.append(f"{contents}: there is no link to {page}")
    failures += [f"there is no page {docs}/behaviour/{name}.md"
                 for name in sorted(folders.keys() - pages.keys()) if folders[name]]
    return sum(map(len, folders.values())), failures


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tests", type=pathlib.Path, default=ROOT / "tests")
    parser.add_argument("--docs", type=pathlib.Path, default=ROOT / "docs")
    arguments = parser.parse_args()

    count, failures = check(arguments.tests, arguments.docs)
    print("\n".join(failures) or f"{count} behaviour tests are named in {arguments.docs}/behaviour")
    return 1 if failures or not count else 0


if __name__ == "__main__":
    sys.exit(main())
