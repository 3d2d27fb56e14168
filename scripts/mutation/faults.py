# SPDX-License-Identifier: Apache-2.0
"""Small faults in C++ sources: what one line could say instead, and which of them a run tries.

A fault changes one line. Its key, the file with the line before and after, holds no line number, so
that it stays the same while other lines come and go. Which faults are picked follows from the keys
alone: a change of one file picks others in that file only.
"""
import collections
import hashlib
import re

Fault = collections.namedtuple("Fault", "file line before after")

LITERAL = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'|//.*')
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f]+|\d+)(?![\w.'])")
SWAPS = [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "),
         (" != ", " == "), (" && ", " || "), (" || ", " && "), (" + ", " - "), (" - ", " + "),
         (" * ", " + "), (" / ", " * "), (" % ", " / "), (" << ", " >> "), (" >> ", " << "),
         (" & ", " | "), (" | ", " & "), (" += ", " = "), (" -= ", " += "), (" |= ", " = "),
         ("++", "--"), ("--", "++"), ("std::min(", "std::max("), ("std::max(", "std::min("),
         ("true", "false"), ("false", "true"), ("continue;", "break;"),
         ("return OK;", "return -1;"), ("& ~", "& "), (".front()", ".back()"),
         (".back()", ".front()")]
WORD = re.compile(r"\w")
CONDITION = re.compile(r"\bif \((?!!\()(.*)\)( \{| [^()]*;| [\w.>-]+\(.*\);| return .*;|)$")
CALL = re.compile(r"[\w.:>\[\]-]+\(.*\);$")
ASSIGNMENT = re.compile(r"[*\w.>\[\]-]+ (?:[-+*/|&]|<<|>>)?= .*;$")
STEP = re.compile(r"(?:\+\+|--)[\w.>-]+;$")
NO_STATEMENT = re.compile(r"return\b|[A-Z][a-z]\w*\(")  # or a declared constructor

# What holds no fault: no code, and values that out-parameters and fields of structures start with,
# which are written before they are read.
NO_CODE = re.compile(r"\s*(?:#|//|namespace\b|template\b|using\b|static_assert\b|extern\b|$)")
START_VALUE = re.compile(r"\s+[\w:]+ (?!m[A-Z])\w+ = (?:0|false);")


def masked(line):
    """The line with what stands in quotes and comments blanked, of the same length."""
    return LITERAL.sub(lambda match: " " * len(match.group()), line)


def swapped(line, code):
    for old, new in SWAPS:
        start = code.find(old)
        while start >= 0:
            end = start + len(old)
            inside_word = (WORD.match(old[0]) and WORD.match(code[start - 1:start] or " ")
                           or WORD.match(old[-1]) and WORD.match(code[end:end + 1] or " "))
            if not inside_word:
                yield line[:start] + new + line[end:]
            start = code.find(old, end)


def renumbered(line, code):
    for match in NUMBER.finditer(code):
        text = match.group()
        number = int(text, 16 if text[:2].lower() == "0x" else 10) + 1
        new = f"0x{number:0{len(text) - 2}X}" if text[:2].lower() == "0x" else str(number)
        yield line[:match.start()] + new + line[match.end():]


def with_other_condition(line, code):
    match = CONDITION.search(code)
    if match and balanced(match.group(1)):
        start, end = match.span(1)
        yield f"{line[:start]}!({line[start:end]}){line[end:]}"
        yield f"{line[:start]}false && ({line[start:end]}){line[end:]}"


def without_statement(line, code, after):
    """`after` is the code in front of the line: the line must be a whole statement."""
    text = code.strip()
    is_statement = CALL.match(text) or ASSIGNMENT.match(text) or STEP.match(text)
    if (is_statement and not NO_STATEMENT.match(text) and balanced(text)
            and after.endswith((";", "{", "}", ":"))):
        yield line[:len(line) - len(line.lstrip())] + ";"


def balanced(text):
    depth = 0
    for character in text:
        depth += (character == "(") - (character == ")")
        if depth < 0:
            return False
    return depth == 0


def code_lines(text):
    """Line number, line, and the same without quotes and comments, of each line of code."""
    in_directive = False
    for number, line in enumerate(text.splitlines(), 1):
        in_directive = in_directive or line.startswith("#")
        if not (in_directive or NO_CODE.match(line) or START_VALUE.match(line)):
            yield number, line, masked(line)
        in_directive = in_directive and line.endswith("\\")


def faults_of(name, text):
    """Every fault of a file, those of one line in one list."""
    after = "{"
    for number, line, code in code_lines(text):
        changed = [*swapped(line, code), *renumbered(line, code),
                   *with_other_condition(line, code), *without_statement(line, code, after)]
        if changed:
            yield [Fault(name, number, line, other) for other in dict.fromkeys(changed)]
        after = code.rstrip()


def key_of(fault):
    return f"{fault.file} | {fault.before.strip()} | {fault.after.strip()}"


def rank(fault):
    """A number that depends on the key alone and looks like chance."""
    return hashlib.sha256(key_of(fault).encode()).hexdigest()


def quotas(sizes, count):
    """How many of `count` each file gets: its share by its number of lines with faults, and each
    that is no header at least one."""
    exact = {name: count * size / sum(sizes.values()) for name, size in sizes.items()}
    given = {name: max(int(share), int(name.endswith(".cpp"))) for name, share in exact.items()}
    for name in sorted(exact, key=lambda name: (given[name] - exact[name], name)):
        if sum(given.values()) >= count:
            break
        given[name] += 1
    return given


def picked(files, count):
    """For each file, given as name and text: how many faults to try, and in which order; those
    beyond the number take the place of faults that do not compile. One fault a line, and one a key:
    of lines that say the same the last."""
    queues = {}
    for name, text in files.items():
        one_a_line = [min(line, key=rank) for line in faults_of(name, text)]
        if one_a_line:
            queues[name] = sorted({key_of(fault): fault for fault in one_a_line}.values(), key=rank)
    wanted = quotas({name: len(queue) for name, queue in queues.items()}, count)
    return {name: (wanted[name], queue) for name, queue in queues.items()}
