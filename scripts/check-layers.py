#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks the house of avi/: which file may include which, and how large its classes are.

Includes run one way, from the entry down to the support functions, never up and never in a circle.
A class has one job and at most 40 methods. Exit status 1 when a rule is broken.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "avi"
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
MAX_METHODS = 40

# From the roof to the cellar. A file may include its own layer and those below it.
LAYERS = ["entry", "extractor", "riff and source", "index", "codec", "records", "support"]
FOLDERS = {"riff": "riff and source", "source": "riff and source", "index": "index",
           "codec": "codec", "support": "support"}
FILES = {"AVIExtractorPlugin": "entry", "RuvoAVIExtractor": "extractor"}

# What does not even read the other side: parsers fill tables, sources read them.
APART = [("riff", "source"), ("source", "riff"), ("source", "index")]


def layer_of(path):
    parts = pathlib.PurePath(path).parts
    if len(parts) > 1:
        return FOLDERS[parts[0]]
    return FILES.get(pathlib.PurePath(path).stem, "records")


def includes():
    """The project's own headers that each file names, by paths below avi/."""
    found = {}
    for path in sorted(ROOT.rglob("*")):
        if path.suffix in (".cpp", ".h"):
            name = path.relative_to(ROOT).as_posix()
            found[name] = INCLUDE.findall(path.read_text(encoding="utf-8"))
    return found


def arrows_up(graph):
    for name, headers in graph.items():
        for header in headers:
            if header not in graph:
                yield f"{name}: includes {header}, which is not a file of avi/"
                continue
            if LAYERS.index(layer_of(header)) < LAYERS.index(layer_of(name)):
                yield f"{name}: includes {header}, which lies above it"
            if (name.split("/")[0], header.split("/")[0]) in APART:
                yield f"{name}: includes {header} of the other side"


def cycles(graph):
    done, path = set(), []

    def walk(name):
        if name in path:
            yield "includes in a circle: " + " > ".join(path[path.index(name):] + [name])
        elif name not in done:
            path.append(name)
            for header in graph.get(name, []):
                yield from walk(header)
            path.pop()
            done.add(name)

    for name in graph:
        yield from walk(name)


def class_bodies(text):
    """(name, body) of every class or struct of a header."""
    for match in re.finditer(r"^(?:class|struct) (\w+)(?: : [^{;]*)? \{$", text, re.MULTILINE):
        end = text.index("\n}", match.end())
        yield match[1], text[match.end():end]


def large_classes():
    for path in sorted(ROOT.rglob("*.h")):
        text = re.sub(r"//[^\n]*", "", path.read_text(encoding="utf-8"))
        for name, body in class_bodies(text):
            own = re.findall(r"^    (?:[\w:<>*&,~ ]+ )?[*&]?~?(\w+)\([^;{]*\)[^;{]*[;{]", body,
                             re.MULTILINE)
            if len(own) > MAX_METHODS:
                place = path.relative_to(ROOT.parent)
                yield f"{place}: {name} has {len(own)} methods, more than {MAX_METHODS}"


def main():
    graph = includes()
    problems = [*arrows_up(graph), *cycles(graph), *large_classes()]
    print("\n".join(problems) or f"check-layers: {len(graph)} files of avi/ keep their layers")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
