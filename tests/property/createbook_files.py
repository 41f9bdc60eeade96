#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""`createbook` of the real program with huge and broken files, full disks and a terminal.

usage: createbook_files.py PROGRAM [--small]

Memory must not grow with the file, a failed write must leave both books byte for byte as they were
and say so in one line, and the progress line must be seen on a terminal alone, to be wiped there.
"""

import os
import pty
import random
import resource
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = ""
MEGABYTE = 1 << 20
LONG_LINE = 100 * MEGABYTE
HUGE = 24 * MEGABYTE
MORE_MEMORY = 2 * MEGABYTE
GAME = b'[Event "a"]\n[Result "1/2-1/2"]\n\n1. e4 e5 2. Nf3 Nc6 1/2-1/2\n\n'
LINE = b"e2e4e7e5g1f3b8c6"
DONE = b"Creating BOOK!\nDone\n"
OLD = {"cwhite": b"d2d4 and any other text\n", "cblack": b"c2c4 without a line end"}
WIPE = b"\r\x1b[K"


class Outcome:
    def __init__(self, status, stdout, stderr, memory):
        self.status, self.stdout, self.stderr, self.memory = status, stdout, stderr, memory

    @property
    def said(self):
        """What was printed after the start."""
        return self.stdout[self.stdout.index(b"Creating BOOK!"):]


class Folder(unittest.TestCase):
    """A folder of its own for each test, with `corvane.ini` in it."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="createbook-")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        self.write("corvane.ini", b"hash: 1\n")

    def write(self, name, content):
        (self.folder / name).write_bytes(content)

    def read(self, name):
        return (self.folder / name).read_bytes()

    def build(self, name="games.pgn", limit=None, stderr=None, after_start=None):
        """One run of the program. `limit`: bytes that a file may have; `after_start`: called when
        the program has looked for its books."""
        def prepare():
            if limit is not None:
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))

        with open(self.folder / "stderr", "wb") as errors:
            process = subprocess.Popen([PROGRAM], cwd=self.folder, stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, preexec_fn=prepare,
                                       stderr=errors if stderr is None else stderr)
        process.stdin.write(b"protover 2\n")
        process.stdin.flush()
        stdout = b""
        while not stdout.endswith(b"feature done=1\n"):
            line = process.stdout.readline()
            self.assertNotEqual(line, b"", "the program has ended")
            stdout += line
        if after_start:
            after_start()
        process.stdin.write(f"createbook {name}\nquit\n".encode("ascii"))
        process.stdin.close()
        stdout += process.stdout.read()
        process.stdout.close()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return Outcome(process.returncode, stdout, self.read("stderr"), usage.ru_maxrss * 1024)

    def check(self, outcome, said, stderr=b""):
        self.assertEqual(outcome.status, 0)
        self.assertEqual(outcome.stderr, stderr)
        self.assertEqual(outcome.said, said)


class Memory(Folder):
    """Peak memory for many megabytes of each kind beside that for a tiny file."""

    def peak(self, blocks, said=DONE):
        with open(self.folder / "games.pgn", "wb") as pgn:
            for block in blocks:
                pgn.write(block)
        outcome = self.build()
        self.check(outcome, said)
        (self.folder / "corvane.tmp").unlink()
        return outcome.memory

    def compare(self, block, ending=b"", size=None):
        size = size or HUGE
        tiny = self.peak([block[:100], ending])
        for book in OLD:
            (self.folder / book).unlink()
        huge = self.peak([block] * (size // len(block)) + [ending])
        self.assertLess(huge, tiny + MORE_MEMORY)

    def test_games(self):
        self.compare(GAME * 16000)
        lines = self.read("cwhite").split(b"\n")
        self.assertEqual(len(lines), 16000 * (HUGE // (len(GAME) * 16000)) + 2)
        self.assertEqual(set(lines), {b"", LINE})

    def test_one_line(self):
        self.compare(b"1. e4 e5 {a comment of some words} " * 30000, size=LONG_LINE)

    def test_one_word(self):
        self.compare(b"e4e5" * 250000, b" 1. d4")
        self.assertEqual(self.read("cwhite"), b"\nd2d4\n")

    def test_words_of_a_megabyte(self):
        self.compare(b"e" * MEGABYTE + b" ")

    def test_tag_that_is_never_closed(self):
        self.compare(b'[Event "1-0" and so on \n' * 40000)
        self.assertEqual(self.read("cwhite"), b"\n")

    def test_empty_lines(self):
        self.compare(b"\r\n" * 500000)

    def test_bytes_of_any_kind(self):
        self.compare(random.Random(4973).randbytes(MEGABYTE).replace(b"\xff", b"\0"))


class BrokenFiles(Folder):
    """Writes that fail: one line on standard error, no "Done", the books as before."""

    def setUp(self):
        super().setUp()
        self.write("games.pgn", GAME * 10000)

    def write_old_books(self):
        for name, content in OLD.items():
            self.write(name, content)

    def check_failed(self, name, outcome, old_books):
        self.check(outcome, b"Creating BOOK!\n",
                   f"Cannot write to {name}; the opening book is left as it was.\n".encode())
        for book, content in old_books.items():
            self.assertEqual(self.read(book), content, book)

    def test_temporary_file_without_room(self):
        self.write_old_books()
        (self.folder / "corvane.tmp").symlink_to("/dev/full")
        self.check_failed("corvane.tmp", self.build(), OLD)

    def test_temporary_file_that_outgrows_the_disk(self):
        self.write_old_books()
        for limit in (4096, 300000):
            self.check_failed("corvane.tmp", self.build(limit=limit), OLD)

    def test_books_that_outgrow_the_disk(self):
        # The temporary file takes about 380 thousand bytes and either book 170 thousand more.
        old = {"cwhite": b"o" * 400000, "cblack": b"old\n"}
        for limit in (400000, 400001, 420000, 560000):
            for name, content in old.items():
                self.write(name, content)
            self.check_failed("cwhite", self.build(limit=limit), old)
        old = {"cwhite": b"old\n", "cblack": b"o" * 400000}
        for name, content in old.items():
            self.write(name, content)
        self.check_failed("cblack", self.build(limit=500000), old)

    def check_device(self, full, other):
        # The device is put there after the start: whoever loads it as a book reads without end.
        self.write(other, OLD[other])
        outcome = self.build(after_start=lambda: (self.folder / full).symlink_to("/dev/full"))
        self.check_failed(full, outcome, {other: OLD[other]})

    def test_whites_book_without_room(self):
        self.check_device("cwhite", "cblack")

    def test_blacks_book_without_room(self):
        self.check_device("cblack", "cwhite")

    def check_folder(self, taken, other):
        (self.folder / taken).mkdir()
        self.check_failed(taken, self.build(), {})
        self.assertFalse((self.folder / other).exists())
        self.write(other, OLD[other])
        self.check_failed(taken, self.build(), {other: OLD[other]})

    def test_folder_in_the_place_of_whites_book(self):
        self.check_folder("cwhite", "cblack")

    def test_folder_in_the_place_of_blacks_book(self):
        self.check_folder("cblack", "cwhite")

    def test_room_that_just_suffices(self):
        (self.folder / "games.pgn").write_bytes(GAME)
        self.write("cwhite", b"o" * 1000)
        self.check(self.build(limit=1000 + len(LINE) + 2), DONE)
        self.assertEqual(self.read("cwhite"), b"o" * 1000 + b"\n" + LINE + b"\n")


class Progress(Folder):
    """The progress line: on a terminal alone."""

    def setUp(self):
        super().setUp()
        # Long enough for both passes to last longer than the pause before the first line.
        long_tags = b'[Site "%s"]\n' % (b"a" * 1000) * 200
        self.write("games.pgn", (GAME * 800 + long_tags) * 500)

    def build_at_a_terminal(self):
        """The outcome of a run, and what the terminal at its standard error has seen."""
        ours, theirs = pty.openpty()
        reader = subprocess.Popen(
            [sys.executable, "-c", "import os, sys\n"
             "try:\n"
             "    while data := os.read(0, 65536): os.write(1, data)\n"
             "except OSError: pass\n"],
            stdin=ours, stdout=subprocess.PIPE)
        try:
            outcome = self.build(stderr=theirs)
        finally:
            os.close(theirs)
            os.close(ours)
        return outcome, reader.communicate(timeout=60)[0]

    def test_terminal_sees_the_line_and_loses_it(self):
        outcome, seen = self.build_at_a_terminal()
        self.check(outcome, DONE)
        self.assertEqual(self.read("corvane.log"), outcome.stdout)
        number = rb"\d+"
        for what in (b"Reading games", b"Writing the book"):
            self.assertRegex(seen, WIPE.replace(b"[", rb"\[") + what + b": " + number +
                             rb"% of the file, " + number + b" games, " + number + b" games/s")
        shown = seen.split(WIPE)
        self.assertEqual(shown[0], b"", "nothing stands before the first wiping")
        self.assertEqual(shown[-1], b"", "the last thing is a wiping")
        self.assertNotIn(b"\n", seen)
        shares = [int(text.split(b": ")[1].split(b"%")[0]) for text in shown
                  if text.startswith(b"Writing")]
        self.assertEqual(shares, sorted(shares))

    def test_terminal_sees_nothing_of_a_short_run(self):
        self.write("games.pgn", GAME)
        outcome, seen = self.build_at_a_terminal()
        self.check(outcome, DONE)
        self.assertEqual(seen, b"")

    def test_without_a_terminal_nothing_is_shown(self):
        outcome = self.build()
        self.check(outcome, DONE)
        self.assertEqual(self.read("corvane.log"), outcome.stdout)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    if "--small" in sys.argv:
        sys.argv.remove("--small")
        LONG_LINE, HUGE = 10 * MEGABYTE, 3 * MEGABYTE
    unittest.main()
