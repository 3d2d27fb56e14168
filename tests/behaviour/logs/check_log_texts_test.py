# SPDX-License-Identifier: Apache-2.0
"""Tests of scripts/check-log-texts.py: what it takes for a text, and that it finds differences.

usage: check_log_texts_test.py SCRIPT
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop()


def rows(*texts):
    listed = ",".join(f'{{"{text}", 1, Gate::kAlways, file, "{line}", nullptr}}'
                      for text, line in texts)
    return "constexpr LogText kRows[] = {" + listed + "};"


class CheckLogTexts(unittest.TestCase):
    def check(self, code, table):
        """(status, output) of the script over one source file and one table."""
        with tempfile.TemporaryDirectory() as folder:
            source = pathlib.Path(folder, "avi")
            source.mkdir()
            (source / "Source.cpp").write_text(code)
            tables = pathlib.Path(folder, "Texts.cpp")
            tables.write_text(table)
            done = subprocess.run([sys.executable, SCRIPT, "--code", source, "--tables", tables],
                                  capture_output=True, text=True, check=False)
            self.assertEqual("", done.stderr)
            return done.returncode, done.stdout

    def assert_agree(self, code, table):
        status, output = self.check(code, table)
        self.assertEqual(0, status, output)

    def assert_differ(self, code, table, message):
        status, output = self.check(code, table)
        self.assertEqual(1, status, output)
        self.assertIn(message, output)

    def test_same_texts_agree(self):
        self.assert_agree('void f() { AVI_LOGE("size %d", 1); }', rows(("size %d", "size 1")))

    def test_text_without_a_row_is_found(self):
        self.assert_differ('void f() { AVI_LOGD("a"); AVI_TRACE("b"); }', rows(("a", "a")),
                           '"b" has no row')

    def test_row_without_a_text_is_found(self):
        self.assert_differ('void f() { AVI_LOGV("a"); }', rows(("a", "a"), ("b", "b")),
                           '"b" is printed nowhere')

    def test_adjacent_literals_are_one_text(self):
        self.assert_agree('void f() { AVI_LOGW("a "\n "b"); }', rows(("a b", "a b")))

    def test_comments_and_directives_are_no_code(self):
        self.assert_agree('#define X \\\n AVI_LOGE("a")\n// AVI_LOGE("b")\n/* AVI_LOGE("c") */',
                          rows())

    def test_function_in_front_tells_texts_apart(self):
        self.assert_differ('void f() { AVI_LOGE("%s(): end", "f"); AVI_LOGE("%s(): end", "g"); }',
                           rows(("%s(): end", "f(): end")), '"g(): end" has no row')

    def test_function_is_that_of_the_callers(self):
        self.assert_differ('void log(const char* name) { AVI_LOGE("%s(): end", name); }\n'
                           'void f() { log("f"); }\nvoid g() { log("g"); }',
                           rows(("%s(): end", "f(): end")), '"g(): end" has no row')

    def test_function_that_cannot_be_found_out_is_a_problem(self):
        self.assert_differ('void f() { AVI_LOGE("%s(): end", name()); }',
                           rows(("%s(): end", "f(): end")), "cannot be found out")

    def test_failures_have_one_text(self):
        self.assert_agree('void fail(const char* function, int line) { AVI_LOGE("%s(): error -%X @line%d", function, 1, line); }'
                          'void f() { fail("f", __LINE__); }',
                          rows(("%s(): error -%X @line%d", "f(): error -1 @line#")))

    def test_text_that_is_no_literal_is_a_problem(self):
        self.assert_differ("void f() { AVI_LOGE(text); }", rows(), "no literal")

    def test_assertions_are_texts(self):
        self.assert_agree('void f() { AVI_CHECK(a == b(c)); AVI_CHECK_TEXT(d, "d != NULL"); }',
                          rows(("CHECK(a == b(c)) failed.", ""), ("CHECK(d != NULL) failed.", "")))

    def test_functions_that_print_a_format_count(self):
        declaration = "void line(const char* format, ...) __attribute__((format(printf, 2, 3)));"
        self.assert_differ(declaration + 'void f() { dump->line("a %u", 1); }', rows(),
                           '"a %u" has no row')

    def test_padded_names_are_filled_in(self):
        self.assert_agree('const char* kNames[] = {"A:", "Bb:"};\nvoid f() {'
                          'for (const char* name : kNames) AVI_LOGV("%-5s%d", name, 1); }',
                          rows(("A:   %d", "A:   1"), ("Bb:  %d", "Bb:  1")))


if __name__ == "__main__":
    unittest.main()
