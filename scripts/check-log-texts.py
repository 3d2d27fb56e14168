#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the log texts of the plug-in with the tables that the tests walk, both ways.

usage: check-log-texts.py --code FOLDER --tables FILE...

A text is a printf format with the name of the function that it begins with, if it begins with
"%s(". Every text given to a log macro or an assertion in FOLDER needs a row in some table, and
every row a text in FOLDER. A row is an initialiser list that begins with the text; the first string
after it is the line that shows the function's name. Exit status 1 when the two differ.
"""
import argparse
import collections
import pathlib
import re
import sys

FORMAT_AT = {"AVI_LOG": 1, "AVI_LOGE": 0, "AVI_LOGW": 0, "AVI_LOGD": 0, "AVI_LOGV": 0,
             "AVI_TRACE": 0}
CHECKS = {"AVI_CHECK": "CHECK({}) failed.", "AVI_CHECK_TEXT": "CHECK({}) failed.",
          "AVI_CHECK_LE": "CHECK_LE( {}) failed: %u vs. %u"}

TOKEN = re.compile(r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/)
                     | (?P<string>"(?:\\.|[^"\\])*")
                     | (?P<other>'(?:\\.|[^'\\])*' | [A-Za-z_]\w* | [0-9][\w.']* | -> | :: | .)
                     """, re.VERBOSE | re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n\\]|\\.|\\\n)*", re.MULTILINE | re.DOTALL)
OPENING = {"(": ")", "{": "}", "[": "]"}

Token = collections.namedtuple("Token", "text is_string line start end")
Text = collections.namedtuple("Text", "format function")


class Source:
    """The tokens of one file, without comments and preprocessor directives."""

    def __init__(self, path):
        self.path = path
        blank = lambda match: re.sub(r"[^\n]", " ", match.group())
        self.code = DIRECTIVE.sub(blank, path.read_text(encoding="utf-8"))
        self.tokens = []
        for match in TOKEN.finditer(self.code):
            if match.lastgroup != "skip":
                line = self.code.count("\n", 0, match.start()) + 1
                self.tokens.append(Token(match.group(), match.lastgroup == "string", line,
                                         match.start(), match.end()))

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def closing(self, opening):
        """The index of the bracket that closes the one at `opening`."""
        depth = 0
        for i in range(opening, len(self.tokens)):
            if self.text(i) in OPENING:
                depth += 1
            elif self.text(i) in OPENING.values():
                depth -= 1
                if depth == 0:
                    return i
        raise SystemExit(f"{self.path}: bracket without an end")

    def arguments(self, opening):
        """The comma-separated parts of what the bracket at `opening` holds, as token lists."""
        parts, depth = [[]], 0
        for token in self.tokens[opening + 1:self.closing(opening)]:
            depth += (token.text in OPENING) - (token.text in OPENING.values())
            if token.text == "," and depth == 0 and not token.is_string:
                parts.append([])
            else:
                parts[-1].append(token)
        return parts

    def calls(self, names):
        """(index of the name, arguments) of every call of one of the functions or macros."""
        for i, token in enumerate(self.tokens):
            if token.text in names and not token.is_string and self.text(i + 1) == "(":
                yield i, self.arguments(i + 1)

    def enclosing_function(self, index):
        """(name, names of the parameters) of the function whose body holds the token."""
        found, end = (None, []), -1
        for i in range(index):
            if i <= end or self.text(i) != "(" or not re.match(r"[A-Za-z_]", self.text(i - 1)):
                continue
            after = self.closing(i) + 1
            while self.text(after) in ("const", "override", "noexcept"):
                after += 1
            if self.text(after) == "{" and self.text(i - 1) not in ("if", "for", "while", "switch"):
                end = self.closing(after)
                if i < index < end:
                    names = [part[-1].text for part in self.arguments(i) if part]
                    found = (self.text(i - 1), names)
                    end = -1
                    break
        return found


def literal(tokens):
    """The value of adjacent string literals; None when the tokens are anything else."""
    if not tokens or not all(token.is_string for token in tokens):
        return None
    joined = "".join(token.text[1:-1] for token in tokens)
    return re.sub(r"\\(.)", lambda m: {"n": "\n", "t": "\t", "0": "\0"}.get(m[1], m[1]), joined)


class Code:
    """The texts of all files of a folder."""

    def __init__(self, folder):
        paths = [p for p in sorted(folder.rglob("*")) if p.suffix in (".cpp", ".h")]
        self.sources = [Source(path) for path in paths]
        self.places = collections.defaultdict(list)  # by Text
        self.problems = []
        for source in self.sources:
            self.collect(source)

    def collect(self, source):
        formats = dict(FORMAT_AT, **{name: 0 for name in printf_like(source)})
        for i, arguments in source.calls(formats):
            if not (source.text(i) in FORMAT_AT or source.text(i - 1) in ("->", ".")):
                continue
            at = formats[source.text(i)]
            text = literal(arguments[at])
            if text is None:
                self.problems.append(f"{self.place(source, i)}: a log text that is no literal")
                continue
            for expanded in self.expand(source, text, arguments[at + 1:]):
                self.add(source, i, expanded, arguments[at + 1:at + 2])
        for i, arguments in source.calls(CHECKS):
            operands = literal(arguments[-1]) if source.text(i) != "AVI_CHECK" else None
            if operands is None:
                opening = source.tokens[i + 1]
                operands = source.code[opening.end:source.tokens[source.closing(i + 1)].start]
            self.places[Text(CHECKS[source.text(i)].format(operands), None)].append(
                self.place(source, i))

    def add(self, source, i, text, first_argument):
        functions = [None]
        if text.startswith("%s("):
            functions = self.functions(source, i, first_argument[0])
        for function in functions:
            self.places[Text(text, function)].append(self.place(source, i))

    def functions(self, source, i, argument):
        """The names that the argument may have: its own text, or that of every caller."""
        names = self.given_names(source, argument)
        if names:
            return sorted(names)
        function, parameters = source.enclosing_function(i)
        if len(argument) == 1 and argument[0].text in parameters:
            position = parameters.index(argument[0].text)
            names = set()
            for other in self.sources:
                for _, arguments in other.calls((function,)):
                    if len(arguments) > position:
                        names |= self.given_names(other, arguments[position])
            if names:
                return sorted(names)
        self.problems.append(f"{self.place(source, i)}: the function's name cannot be found out")
        return []

    @staticmethod
    def given_names(source, argument):
        """A literal's text; of the member `function` of a record, the texts that records begin with."""
        if argument and argument[-1].text == "function" and len(argument) == 3:
            record = argument[0].text
            return set(re.findall(rf'\b{record} = \{{"(\w+)"', source.code))
        name = literal(argument)
        return set() if name is None else {name}

    @staticmethod
    def expand(source, text, arguments):
        """A padded name, as in "%-22s%d", is filled in from the table that a loop walks."""
        padded = re.match(r"%-(\d+)s", text)
        if not padded:
            return [text]
        loop = re.search(r"for \(const char\* " + arguments[0][0].text + r" : (\w+)\)", source.code)
        table = re.search(loop[1] + r"\[\] = \{(.*?)\}", source.code, re.DOTALL)
        names = re.findall(r'"([^"]*)"', table[1])
        return [name.ljust(int(padded[1])) + text[padded.end():] for name in names]

    @staticmethod
    def place(source, i):
        return f"{source.path}:{source.tokens[i].line}"


def printf_like(source):
    """Functions of the file's own that print a format."""
    pattern = r"(\w+)\(const char\* format, \.\.\.\) __attribute__\(\(format\(printf"
    return set(re.findall(pattern, source.code))


def rows_of(source):
    """(Text, place) of every row."""
    for i, token in enumerate(source.tokens):
        if token.text != "{" or token.is_string or not source.text(i + 1).startswith('"'):
            continue
        fields = [literal(field) for field in source.arguments(i)]
        if fields[0] is None:
            continue
        function = None
        if fields[0].startswith("%s("):
            line = next((field for field in fields[1:] if field is not None), "")
            function = line.partition("(")[0]
        yield Text(fields[0], function), f"{source.path}:{token.line}"


def shown(text):
    name = text.format.replace("%s", text.function, 1) if text.function else text.format
    return '"' + name.replace("\n", "\\n") + '"'


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--code", type=pathlib.Path, required=True)
    parser.add_argument("--tables", type=pathlib.Path, required=True, nargs="+")
    options = parser.parse_args()

    code = Code(options.code)
    rows = {}
    for table in options.tables:
        for text, place in rows_of(Source(table)):
            rows.setdefault(text, place)

    problems = code.problems
    problems += [f"{places[0]}: {shown(text)} has no row"
                 for text, places in code.places.items() if text not in rows]
    problems += [f"{place}: {shown(text)} is printed nowhere"
                 for text, place in rows.items() if text not in code.places]
    for problem in sorted(problems):
        print(problem)
    print(f"{len(code.places)} texts, {len(rows)} rows, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
