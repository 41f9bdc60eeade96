# SPDX-License-Identifier: MIT
"""Small trees with one fault each, and the line that each check prints for it."""

import contextlib
import io
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

ROOT = Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "bench")]

import check_includes  # noqa: E402
import check_quirks  # noqa: E402
import check_text  # noqa: E402
import compare  # noqa: E402


class TreeTest(unittest.TestCase):
    """A test with an empty folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, name, text=""):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode("utf-8"))

    def run_main(self, module):
        """Status and printed text of the tool, called for the folder."""
        output = io.StringIO()
        with mock.patch.object(sys, "argv", ["tool", str(self.root)]), \
                contextlib.redirect_stdout(output):
            status = module.main()
        return status, output.getvalue()

    def assert_one_fault(self, faults, *parts):
        self.assertEqual(len(faults), 1, faults)
        for part in parts:
            self.assertIn(part, faults[0])


class IncludesTest(TreeTest):
    def test_downward_and_sideways_includes_pass(self):
        self.write("src/board/types.h", "#include <cstdint>\n")
        self.write("src/board/move.h", '#include "board/types.h"\n')
        self.write("src/search/tree.cpp", '#include <array>\n#include "board/move.h"\n')
        status, text = self.run_main(check_includes)
        self.assertEqual(status, 0)
        self.assertIn("3 files, no fault", text)

    def test_upward_include_is_a_fault(self):
        self.write("src/search/root.h")
        self.write("src/board/make.cpp", '#include <cstdint>\n#include "search/root.h"\n')
        self.assert_one_fault(check_includes.check(self.root), "src/board/make.cpp:2:",
                              "stratum 5 above 3")
        self.assertEqual(self.run_main(check_includes)[0], 1)

    def test_search_includes_no_driver_and_no_command(self):
        self.write("src/drivers/epd_test.h")
        self.write("src/shell/config.h")
        self.write("src/search/root.cpp",
                   '#include "drivers/epd_test.h"\n#include "shell/config.h"\n')
        self.assertEqual(len(check_includes.check(self.root)), 2)

    def test_eval_uses_board_and_platform_only(self):
        self.write("src/board/table.h")
        self.write("src/platform/int32_math.h")
        self.write("src/shell/log.h")
        self.write("src/eval/material.cpp", '#include "board/table.h"\n'
                   '#include "platform/int32_math.h"\n#include "shell/log.h"\n')
        self.assert_one_fault(check_includes.check(self.root), "src/eval/material.cpp:3:")

    def test_tb_decoder_does_not_see_the_catalogue(self):
        self.write("src/tb/catalogue.h")
        self.write("src/tb/decoder.h", '#include "tb/catalogue.h"\n')
        self.assert_one_fault(check_includes.check(self.root), "src/tb/decoder.h:1:", "inside tb/")

    def test_tb_may_log_but_not_ask_the_engine_state(self):
        self.write("src/shell/log.h")
        self.write("src/shell/engine_state.h")
        self.write("src/tb/register.cpp",
                   '#include "shell/log.h"\n#include "shell/engine_state.h"\n')
        self.assert_one_fault(check_includes.check(self.root), "src/tb/register.cpp:2:")

    def test_cycle_is_shown_whole(self):
        self.write("src/board/table.h", '#include "board/move.h"\n')
        self.write("src/board/move.h", '#include "board/types.h"\n')
        self.write("src/board/types.h", '#include "board/table.h"\n')
        faults = check_includes.check(self.root)
        self.assert_one_fault(faults, "cycle of includes:")
        self.assertEqual(faults[0].count(" -> "), 3)

    def test_file_without_a_stratum_is_a_fault(self):
        self.write("src/board/newcomer.h")
        self.assert_one_fault(check_includes.check(self.root), "src/board/newcomer.h: no stratum")

    def test_include_must_be_a_full_path(self):
        self.write("src/board/move.h")
        self.write("src/board/table.h", '#include "move.h"\n')
        self.assert_one_fault(check_includes.check(self.root), '"move.h" is no file below src/')

    def test_foreign_library_is_a_fault(self):
        self.write("src/board/table.h", "#include <boost/array.hpp>\n#  include <array>\n")
        self.assert_one_fault(check_includes.check(self.root), "<boost/array.hpp>")

    def test_system_headers_only_in_sources_of_platform(self):
        self.write("src/platform/console.cpp", "#include <unistd.h>\n")
        self.write("src/platform/console.h", "#include <unistd.h>\n")
        self.write("src/shell/main.cpp", "#include <unistd.h>\n")
        faults = check_includes.check(self.root)
        self.assertEqual(len(faults), 2, faults)
        self.assertNotIn("console.cpp", "".join(faults))

    def test_windows_header_only_in_its_file(self):
        self.write("src/platform/mapped_file_windows.cpp", "#include <windows.h>\n")
        self.write("src/platform/console.cpp", "#include <windows.h>\n")
        self.assert_one_fault(check_includes.check(self.root), "src/platform/console.cpp:1:")

    def test_windows_file_must_not_see_the_clock_by_any_way(self):
        self.write("src/platform/clock.h")
        self.write("src/platform/mapped_file.h", '#include "platform/clock.h"\n')
        self.write("src/platform/mapped_file_windows.cpp", '#include "platform/mapped_file.h"\n')
        self.assert_one_fault(check_includes.check(self.root), "mapped_file_windows.cpp",
                              "platform/clock.h")

    def test_empty_tree_is_a_fault(self):
        self.assert_one_fault(check_includes.check(self.root), "no source file")


class TextTest(TreeTest):
    def faults(self):
        return check_text.check(self.root)[0]

    def test_clean_tree_passes(self):
        self.write("src/a.cpp", "// Special cases are inspected.\nint a;\n")
        self.write("README.md", "# A\n\nLine one  \nand two.\n")
        status, text = self.run_main(check_text)
        self.assertEqual(status, 0)
        self.assertIn("2 files, no fault", text)

    def test_each_forbidden_word_is_a_fault(self):
        words = ["sp" + "ec", "Sp" + "ec", "speci" + "fication", "Speci" + "fications",
                 "Pa" + "rt 3.1", "pa" + "rts 2.2", "as " + "required", "As  " + "required"]
        for word in words:
            with self.subTest(word=word):
                self.write("notes.txt", f"One.\nSee the {word} for it.\n")
                self.assert_one_fault(self.faults(), "notes.txt:2:", word)
        self.assertEqual(self.run_main(check_text)[0], 1)

    def test_words_that_only_contain_them_pass(self):
        self.write("a.cpp", "// specify, special, inspect, timespec, a part, Part 3, required as\n")
        self.assertEqual(self.faults(), [])

    def test_pair_broken_over_two_lines_is_a_fault(self):
        self.write("a.cpp", "// This is done as\n// " + "required by someone.\n")
        self.assert_one_fault(self.faults(), "a.cpp:1:", "broken over two lines")

    def test_word_in_a_file_name_is_a_fault(self):
        self.write("docs/" + "sp" + "ec.md", "Text.\n")
        self.assert_one_fault(self.faults(), "the file's name")

    def test_word_in_verbatim_data_is_a_fault(self):
        self.write("tests/transcript/001_a.txt", "the sp" + "ec\n")
        self.assert_one_fault(self.faults(), "tests/transcript/001_a.txt:1:")

    def test_hundred_columns_pass_and_one_more_does_not(self):
        self.write("a.cpp", "x" * 100 + "\n" + "ä" * 100 + "\n")
        self.assertEqual(self.faults(), [])
        self.write("a.cpp", "x" * 101 + "\n")
        self.assert_one_fault(self.faults(), "a.cpp:1: 101 columns")

    def test_long_lines_pass_in_documents_data_and_tables(self):
        long = "x" * 150 + "\n"
        self.write("README.md", long)
        self.write("bench/positions.epd", long)
        self.write("a.cpp", "// clang-format off\n" + long + "// clang-format on\n")
        self.assertEqual(self.faults(), [])
        self.write("a.cpp", "// clang-format off\n// clang-format on\n" + long)
        self.assert_one_fault(self.faults(), "a.cpp:3:")

    def test_form_of_lines(self):
        cases = {
            "int a;": "no line end",
            "int a;\n\n": "empty lines at the end",
            "int a; \n": "blank at the end",
            "\tint a;\n": "tab",
            "int a;\r\n": "carriage return",
            b"int \xff;\n": "not UTF-8",
        }
        for text, fault in cases.items():
            with self.subTest(text=text):
                self.write("a.cpp", text)
                self.assert_one_fault(self.faults(), "a.cpp", fault)
        self.assertEqual(len(cases), 6)

    def test_tab_passes_in_a_makefile(self):
        self.write("Makefile", "all:\n\ttrue\n")
        self.assertEqual(self.faults(), [])

    def test_verbatim_data_keeps_its_form(self):
        self.write("tests/data/ini/odd.ini", b"hash:\t1 \r\n\xff")
        self.write("fuzz/corpus/words/1", "new \n\n")
        self.write("tests/transcript/fragments/banner", "move e2e4 \n")
        self.assertEqual(self.faults(), [])

    def test_binary_file_is_passed_over(self):
        self.write("a.bin", b"\0\t \n" + b"sp" + b"ec")
        self.assertEqual(self.faults(), [])

    def test_ignored_file_is_not_looked_at_and_an_untracked_one_is(self):
        subprocess.run(["git", "init", "-q", str(self.root)], check=True)
        self.write(".gitignore", "/build/\n")
        self.write("build/a.cpp", "\t\n")
        self.write("b.cpp", "\tint b;\n")
        faults, count = check_text.check(self.root)
        self.assertEqual(count, 2)
        self.assert_one_fault(faults, "b.cpp:1: tab")

    def test_empty_tree_is_a_fault(self):
        self.assert_one_fault(self.faults(), "no file found")


class QuirksTest(TreeTest):
    HEAD = "# Quirks\n\n| quirk | where | test |\n|---|---|---|\n"

    def setUp(self):
        super().setUp()
        self.write("src/board/a.cpp", "/// Intended(king-first): ties go by order.\nint a;\n")
        self.write("docs/quirks.md", self.HEAD + "| king-first | board | `Evasions.KingFirst` |\n")
        self.write("tests/quirks/a_test.cpp", "TEST(Evasions, KingFirst) {\n}\n")

    def faults(self):
        return check_quirks.check(self.root)[0]

    def test_mark_row_and_test_together_pass(self):
        status, text = self.run_main(check_quirks)
        self.assertEqual(status, 0, text)
        self.assertIn("1 quirks", text)

    def test_mark_without_a_row(self):
        self.write("src/board/b.h", "int b;  // Intended(late-castling): the book wants it.\n")
        self.assert_one_fault(self.faults(), "src/board/b.h:1:", "late-castling has no row")
        self.assertEqual(self.run_main(check_quirks)[0], 1)

    def test_mark_within_a_comment_and_reason_on_its_next_line(self):
        self.write("src/board/a.cpp", "/// List order. Intended(king-first):\n/// ties.\nint a;\n")
        self.assertEqual(self.faults(), [])

    def test_row_without_a_mark(self):
        self.write("src/board/a.cpp", "int a;\n")
        self.assert_one_fault(self.faults(), "docs/quirks.md:5:", "no mark in src/")

    def test_row_without_a_test(self):
        for row in ["| king-first | board |  |\n", "| king-first |\n"]:
            with self.subTest(row=row):
                self.write("docs/quirks.md", self.HEAD + row)
                self.assert_one_fault(self.faults(), "names no test")

    def test_row_with_a_test_that_does_not_exist(self):
        self.write("docs/quirks.md",
                   self.HEAD + "| king-first | board | `Evasions.KingFirst`, `Evasions.No` |\n")
        self.assert_one_fault(self.faults(), "no such test: Evasions.No")

    def test_test_that_is_commented_out_does_not_count(self):
        self.write("tests/quirks/a_test.cpp", "// TEST(Evasions, KingFirst) {\n")
        self.assert_one_fault(self.faults(), "no such test: Evasions.KingFirst")

    def test_fixtures_parameters_and_transcripts_count_as_tests(self):
        self.write("tests/quirks/a_test.cpp",
                   "TEST_F(Evasions,\n       KingFirst) {}\n  TEST_P(Evasions, Each) {}\n")
        self.write("tests/transcript/004_king.txt", "send quit\n")
        self.write("docs/quirks.md", self.HEAD + "| king-first | board "
                   "| Evasions.KingFirst Evasions.Each 004_king.txt |\n")
        self.assertEqual(self.faults(), [])

    def test_second_row_of_one_name(self):
        self.write("docs/quirks.md", self.HEAD + "| king-first | a | Evasions.KingFirst |\n" * 2)
        self.assert_one_fault(self.faults(), "docs/quirks.md:6:", "has a row already")

    def test_mark_of_another_form(self):
        for comment in ["// Intended: because.", "/// Odd. Intended (king-first): because.",
                        "/* Intended(king-first): because. */"]:
            with self.subTest(comment=comment):
                self.write("src/board/b.h", comment + "\n")
                self.assert_one_fault(self.faults(), "src/board/b.h:1:", "quirk-name")

    def test_mark_without_a_reason_or_with_a_bad_name(self):
        self.write("src/board/b.h", "// Intended(king-first):\nint b;\n")
        self.assert_one_fault(self.faults(), "no reason")
        self.write("src/board/b.h", "// Intended(King First): because.\n")
        self.assert_one_fault(self.faults(), "no quirk's name")

    def test_missing_document_is_a_fault(self):
        (self.root / "docs/quirks.md").unlink()
        self.assert_one_fault(self.faults(), "king-first has no row")

    def test_nothing_to_check_is_a_fault(self):
        self.write("src/board/a.cpp", "int a;\n")
        self.write("docs/quirks.md", self.HEAD)
        self.assert_one_fault(self.faults(), "nothing was checked")


class CompareTest(TreeTest):
    """bench/compare.py, over runs with made-up speeds."""

    def program(self, name, nodes, speed, status=0):
        self.write(name, f"#!/bin/sh\necho total nodes {nodes}\necho milliseconds 1$$\n"
                   f"echo nodes per second {speed} >&2\nexit {status}\n")
        (self.root / name).chmod(0o755)
        return str(self.root / name)

    def run_compare(self, *arguments):
        output, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors):
            status = compare.main(list(arguments))
        return status, output.getvalue(), errors.getvalue()

    def test_median_and_spread_of_the_pairs(self):
        speeds = {"old": iter([100, 100, 100]), "new": iter([110, 150, 90])}
        order = []

        def run_one(program):
            order.append(program)
            return ["total nodes 5"], next(speeds[program])

        ratios = compare.measure("old", "new", 3, run_one=run_one)
        self.assertEqual(ratios, [1.1, 1.5, 0.9])
        self.assertEqual(order, ["old", "new", "new", "old", "old", "new"])
        self.assertIn("median 1.100x of the old speed over 3 pairs (lowest 0.900, highest 1.500)",
                      compare.summary(ratios))

    def test_programs_are_run_and_times_are_no_part_of_the_signature(self):
        status, text, errors = self.run_compare(
            "--pairs", "2", self.program("old", 5, 200), self.program("new", 5, 300))
        self.assertEqual(status, 0, errors)
        self.assertIn("median 1.500x of the old speed over 2 pairs", text)

    def test_different_trees_are_not_compared(self):
        status, text, errors = self.run_compare(
            self.program("old", 5, 200), self.program("new", 6, 300))
        self.assertEqual((status, text), (1, ""))
        self.assertIn("signatures differ", errors)
        self.assertIn("new: total nodes 6", errors)

    def test_failed_run_and_missing_program_are_told(self):
        old = self.program("old", 5, 200, status=3)
        self.assertIn("status 3", self.run_compare(old, old)[2])
        self.assertEqual(self.run_compare(str(self.root / "none"), old)[0], 1)

    def test_output_without_a_speed_is_told(self):
        for output in ["total nodes 5\n", "total nodes 5\nnodes per second 0\n"]:
            with self.subTest(output=output), self.assertRaises(compare.Failure):
                compare.parse(output)


if __name__ == "__main__":
    unittest.main()
