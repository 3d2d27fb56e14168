# SPDX-License-Identifier: Apache-2.0
"""Reads what callgrind wrote: the instructions of one library, with and without what it calls."""
import re
from typing import NamedTuple


class Cost(NamedTuple):
    inclusive: int  # in the library and in all that it calls
    own: int        # in the library alone


def cost_of(path, library, program):
    """The cost of `library` in the profile of `program` at `path`; both are file names.

    Inclusive is what the program's calls into the library cost. Other libraries call it too, while it
    calls them: those calls are part of the program's.
    """
    names = {}  # object files by the number that the profile gives them
    inclusive = own = 0
    caller = callee = None
    is_call_cost = False

    def name_of(value):
        number, name = re.match(r"(\(\d+\)) ?(.*)", value).groups()
        if name:
            names[number] = name.rsplit("/", 1)[-1]
        return names[number]

    with open(path, encoding="utf-8", errors="replace") as profile:
        for line in profile:
            key, _, value = line.rstrip("\n").partition("=")
            if key == "ob":
                caller = callee = name_of(value)
            elif key == "cob":
                callee = name_of(value)
            elif key == "calls":
                is_call_cost = True
            elif line[0] in "+-*0123456789":
                cost = int(line.split()[-1])
                if is_call_cost:
                    if caller == program and callee == library:
                        inclusive += cost
                    is_call_cost, callee = False, caller
                elif caller == library:
                    own += cost
    return Cost(inclusive, own)
