#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Which faults are found in a line, and which are picked of all."""
import unittest

import faults


def changes(text):
    """What the lines of a source could say instead, without indentation."""
    return [fault.after.strip() for line in faults.faults_of("a.cpp", text) for fault in line]


class FaultsOfALine(unittest.TestCase):
    def test_comparison_and_constant(self):
        self.assertEqual(changes("    while (size > 12) {"),
                         ["while (size >= 12) {", "while (size > 13) {"])

    def test_hexadecimal_constant_keeps_its_width(self):
        self.assertEqual(changes("    case 0x0F:"), ["case 0x10:"])

    def test_condition(self):
        self.assertEqual(changes("    if (isEmpty(a)) return;"),
                         ["if (!(isEmpty(a))) return;", "if (false && (isEmpty(a))) return;"])

    def test_statement_left_out(self):
        self.assertEqual(changes("{\n    walk(a);\n    b = c;"), [";", ";"])

    def test_rest_of_a_statement_is_no_statement(self):
        self.assertEqual(changes("    const int a =\n        walk(b);"), [])

    def test_declared_constructor_and_return_are_no_statements_to_leave_out(self):
        self.assertEqual(changes("{\n    Walker(int a);\n    return walk(a);"), [])

    def test_quotes_comments_and_directives_are_left_alone(self):
        code = '    log("1 < 2");  // 3 > 4\n#if A > 1\n#define B(a) \\\n    a + 1'
        self.assertEqual(changes(code), [";"])

    def test_type_arguments_are_no_comparison(self):
        self.assertEqual(changes("template <typename T>\nvector<int> list() {"), [])

    def test_part_of_a_word_is_no_constant(self):
        self.assertEqual(changes("    return readUint8(value.u16, isfalse);"), [])

    def test_value_that_a_field_starts_with(self):
        self.assertEqual(changes("    int size = 0;"), [])
        self.assertEqual(changes("    int mSize = 0;"), ["int mSize = 1;"])


class Picked(unittest.TestCase):
    LINES = "".join(f"    if (a < {number}) return;\n" for number in range(100, 150))

    def keys(self, files, count):
        return {name: [faults.key_of(fault) for fault in candidates[:wanted]]
                for name, (wanted, candidates) in faults.picked(files, count).items()}

    def test_as_many_as_asked_for_and_some_of_each_source(self):
        keys = self.keys({"a.cpp": self.LINES, "b.cpp": self.LINES, "c.cpp": "{\n    b = c;"}, 21)
        self.assertEqual(sorted(map(len, keys.values())), [1, 10, 10])

    def test_lines_that_come_and_go_elsewhere_change_nothing(self):
        self.assertEqual(self.keys({"a.cpp": self.LINES}, 10),
                         self.keys({"a.cpp": "\n// 1\n" + self.LINES}, 10))

    def test_no_key_twice_and_one_fault_a_line(self):
        _, candidates = faults.picked({"a.cpp": self.LINES + self.LINES}, 10)["a.cpp"]
        self.assertEqual(len({faults.key_of(fault) for fault in candidates}), 50)
        self.assertEqual(len({fault.line for fault in candidates}), 50)


if __name__ == "__main__":
    unittest.main()
