#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Tests of the transcript runner: what it has to notice, shown with programs of a few words."""

import stat
import sys
import tempfile
import unittest
import unittest.mock
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import run as runner  # noqa: E402

LOGGED_HELLO = "echo hello; echo hello >> corvane.log"
HELLO = "# a greeting\nstdout hello\nlog    as stdout\n"


class RunnerTest(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = Path(self.temporary.name)

    def tearDown(self):
        self.temporary.cleanup()

    def play(self, script, transcript, timeout=10):
        """The report on a shell script that stands in for the program."""
        program = self.folder / "program"
        program.write_text("#!/bin/sh\n" + script + "\n", encoding="latin-1")
        program.chmod(program.stat().st_mode | stat.S_IXUSR)
        path = self.folder / "001_test.txt"
        path.write_text(transcript, encoding="latin-1")
        return runner.run_transcript(str(program), path, timeout, False)

    def assert_plays(self, script, transcript):
        self.assertEqual(self.play(script, transcript), [])

    def assert_fails(self, script, transcript, part, timeout=10):
        self.assertIn(part, "\n".join(self.play(script, transcript, timeout)))

    def test_accepts_what_is_told(self):
        self.assert_plays(LOGGED_HELLO, HELLO)

    def test_notices_a_wrong_line(self):
        self.assert_fails("echo hallo; echo hello > corvane.log", HELLO, "+hallo")

    def test_notices_a_blank_at_the_end(self):
        self.assert_fails("echo 'hello '; echo hello > corvane.log", HELLO, "+hello\\s")

    def test_notices_a_missing_line_end(self):
        self.assert_fails("printf hello; echo hello > corvane.log", HELLO, "+hello\\c")

    def test_notices_a_line_too_many(self):
        self.assert_fails(LOGGED_HELLO + "; echo", HELLO, "standard output")

    def test_notices_a_different_log(self):
        self.assert_fails("echo hello; echo hallo > corvane.log", HELLO, "corvane.log actual")

    def test_notices_a_missing_log(self):
        self.assert_fails("echo hello", HELLO, "missing file: corvane.log")

    def test_notices_an_unexpected_file(self):
        self.assert_fails(LOGGED_HELLO + "; echo > core", HELLO, "unexpected file: core")

    def test_notices_a_changed_file(self):
        transcript = "# kept\nfile   a.ini    one\nabsent corvane.log\n"
        self.assert_plays("true", transcript)
        self.assert_fails("echo two > a.ini", transcript, "+two")

    def test_notices_a_file_that_should_be_gone(self):
        transcript = "# gone\nfile   a.ini    one\nabsent a.ini\nabsent corvane.log\n"
        self.assert_plays("rm a.ini", transcript)
        self.assert_fails("true", transcript, "unexpected file: a.ini")

    def test_notices_a_bad_exit_status(self):
        self.assert_fails(LOGGED_HELLO + "; exit 3", HELLO, "exit status 3")

    def test_accepts_the_exit_status_that_is_told_alone(self):
        transcript = HELLO + "status 3\n"
        self.assert_plays(LOGGED_HELLO + "; exit 3", transcript)
        self.assert_fails(LOGGED_HELLO, transcript, "exit status 0 instead of 3")
        self.assert_fails(LOGGED_HELLO + "; exit 1", transcript, "exit status 1 instead of 3")
        two_runs = transcript + "run\nstdout hello\nlog    as before\nlog    as stdout\n"
        self.assert_fails(LOGGED_HELLO + "; exit 3", two_runs, "exit status 3 instead of 0")

    def test_notices_a_signal(self):
        self.assert_fails(LOGGED_HELLO + "; kill -11 $$", HELLO, "exit status -11")

    def test_notices_standard_error(self):
        self.assert_fails(LOGGED_HELLO + "; echo oops >&2", HELLO, "+oops")

    def test_notices_a_program_that_hangs(self):
        self.assert_fails(LOGGED_HELLO + "; exec sleep 5", HELLO, "none within 0.3 s", 0.3)

    def test_feeds_input_and_files(self):
        self.assert_plays(
            "cat; cat a.ini",
            "# echo\nfile   a.ini    one\\s\nsend   two\nsend   \\*3{x}\\c\n"
            "stdout two\nstdout xxxone\\s\nabsent corvane.log\n",
        )

    def test_copies_files_and_parts_of_them(self):
        (self.folder / "some.bin").write_bytes(bytes(range(256)))
        transcript = "# bytes\ncopy   %s\nstdout \\x%02x\\x%02x %d\\c\nabsent corvane.log\n"
        script = "head -c 1 a; tail -c 1 a; printf ' '; wc -c < a | tr -d '\\n'"
        for arguments, first, last, size in (
            ("a some.bin", 0, 255, 256),
            ("a    some.bin  16:32", 16, 31, 16),
            ("a some.bin 100:", 100, 255, 156),
            ("a some.bin :101", 0, 100, 101),
            ("a some.bin 5:6\nfile   a \\x80\\c\ncopy   a some.bin 200:", 5, 255, 58),
        ):
            with unittest.mock.patch("notation.DATA", self.folder):
                self.assert_plays(script, transcript % (arguments, first, last, size))

    def test_puts_files_into_folders(self):
        transcript = "# folders\nfile   one/two/a    x\nfile   one/b\nabsent corvane.log\n"
        self.assert_plays("test -f one/b && grep -q x one/two/a", transcript)
        self.assert_fails("echo y > one/two/a", transcript, "+y")
        self.assert_fails("echo y > one/c", transcript, "unexpected file: one/c")
        self.assert_fails("rm one/b", transcript, "missing file: one/b")

    def test_notices_what_becomes_of_an_empty_folder(self):
        transcript = "# folder\nfolder one\nabsent corvane.log\n"
        self.assert_plays("test -d one", transcript)
        self.assert_fails("echo y > one/c", transcript, "unexpected file: one/c")
        self.assert_fails("rmdir one", transcript, "missing file: one")

    def test_puts_links(self):
        transcript = "# link\nfile   a    x\nlink   b a\nstdout x\nabsent corvane.log\n"
        self.assert_plays("cat b", transcript)
        self.assert_fails("cat b; rm b; echo x > b", transcript, "a link to a")

    def test_plays_runs_in_the_same_folder(self):
        self.assert_plays(
            LOGGED_HELLO,
            HELLO + "run\nstdout hello\nlog    as before\nlog    as stdout\n",
        )

    def test_masks_times_and_nothing_else(self):
        transcript = "# time\nstdout 2 15 <t> 60 e2e4 e7e5\\s\nabsent corvane.log\n"
        self.assert_plays("echo '2 15 0 60 e2e4 e7e5 '", transcript)
        for line in (
            "2 15 0 61 e2e4 e7e5 ",
            "2 16 0 60 e2e4 e7e5 ",
            "2 15 0 60 e2e4 e7e5",
            "2 15 -1 60 e2e4 e7e5 ",
            "2 15 0 60 e2e4  e7e5 ",
            "2 15 999999 60 e2e4 e7e5 ",
        ):
            self.assert_fails(f"echo '{line}'", transcript, "standard output")

    def test_masks_the_speed_of_perft(self):
        transcript = "# speed\nstdout 1 20  20  time: <t>\nabsent corvane.log\n"
        self.assert_plays("echo '1 20  20  time: 0'", transcript)
        self.assert_plays("echo '1 20  20  time: 1 speed 20'", transcript)
        self.assert_fails("echo '1 20 20  time: 0'", transcript, "standard output")

    def test_masks_milliseconds_in_a_suite_alone(self):
        line = "1 0 %d 1 a1a2 "
        for milliseconds, thinking, in_suite in ((10, True, True), (11, False, True),
                                                 (100, False, True), (101, False, False)):
            text = line % milliseconds
            plain = runner.masked(text, "", 100)
            self.assertEqual(plain, "1 0 <t> 1 a1a2 " if thinking else text)
            suite = runner.masked(f"Start...\n{text}\nmove: a1a2 \n{text}", "", 100)
            first, last = suite.split("\n")[1::2]
            self.assertEqual(first, "1 0 <t> 1 a1a2 " if in_suite else text)
            self.assertEqual(last, plain, "the suite's test has ended")
        self.assertEqual(runner.masked("Start\n1 0 100 1 \n", "", 100), "Start\n1 0 100 1 \n")
        self.assertEqual(
            runner.masked("Start...\n1 0 5 1 \n1 0 6 2 ", "1 0 5 1 ", 100),
            "Start...\n1 0 5 1 \n1 0 <t> 2 ",
        )

    def test_masks_the_speeds_of_a_suite(self):
        for head in ("Ok Speed: ", "Error Speed: ", "Speed: ", "MaxSpeed: ", "MinSpeed: "):
            transcript = f"# speed\nstdout {head}<s> KNodes/sec\nabsent corvane.log\n"
            for speed in ("0", "2088", "100000"):
                self.assert_plays(f"echo '{head}{speed} KNodes/sec'", transcript)
            for speed in ("100001", "-1", "1.5", "", "1 "):
                self.assert_fails(f"echo '{head}{speed} KNodes/sec'", transcript, "standard output")
            for line in (f"{head}5 KNodes/sec ", f"{head}5", f"{head}5 Nodes/sec", f"{head}<t>"):
                self.assert_fails(f"echo '{line}'", transcript, "standard output")

    def test_tells_speeds_apart(self):
        transcript = "# speed\nstdout Ok Speed: <s> KNodes/sec\nabsent corvane.log\n"
        for head in ("Error Speed: ", "Speed: ", "OkSpeed: ", "Ok MaxSpeed: "):
            self.assert_fails(f"echo '{head}5 KNodes/sec'", transcript, "standard output")

    def test_masks_only_where_asked(self):
        transcript = "# exact\nstdout <<<<<<<  UKRALI VREMJA: -50\nabsent corvane.log\n"
        self.assert_plays("echo '<<<<<<<  UKRALI VREMJA: -50'", transcript)
        self.assert_fails("echo '<<<<<<<  UKRALI VREMJA: -51'", transcript, "standard output")

    def test_refuses_transcripts_at_fault(self):
        for transcript in (
            "stdout no comment\nabsent corvane.log\n",
            "# nothing of the log\nstdout x\n",
            "# keyword\nstdot x\nabsent corvane.log\n",
            "# blank at the end \nabsent corvane.log\n",
            "# escape\nstdout \\q\nabsent corvane.log\n",
            "# fragment\nstdout @missing_one\nabsent corvane.log\n",
            "# no line end\nabsent corvane.log",
            "# status\nstatus one\nabsent corvane.log\n",
            "# file\ncopy   a there/is/none\nabsent corvane.log\n",
            "# part\ncopy   a tb/kqk.nbw 1-2\nabsent corvane.log\n",
        ):
            with self.assertRaises(runner.TranscriptError, msg=transcript):
                self.play("true", transcript)


if __name__ == "__main__":
    unittest.main()
