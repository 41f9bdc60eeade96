#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The line by which corvane-tbgen tells a person how far it is: on a terminal, and nowhere else.

    program_progress.py [--small] TBGEN EMD_PACK TABLE_FOLDER
"""

import os
import pty
import re
import select
import subprocess
import tty

from tbgen_program import (LINES, PATIENCE_SECONDS, THREE_MEN, Wrong, expect_equal, lines_of,
                           run_checks)

# To the line's beginning, and all behind it away.
ERASE = "\r\033[K"
DRAWN = re.compile(r"(\w+)  (other tables|positions|move \d+|packing|verifying)  (\d+) %"
                   r"  ((?:\d+ s|\d+ min|\d+ h \d+ min) left)?")
READ_AT_ONCE = 65536


class Terminal:
    """A terminal at which the program's faults are read, and its output if need be."""

    def __init__(self, program, words, takes_output):
        master, slave = pty.openpty()
        tty.setraw(slave)
        run = program.begin(*words, stderr=slave, stdout=slave if takes_output else subprocess.PIPE)
        os.close(slave)
        self.seen = self._read_all(master)
        self.output = "" if takes_output else run.stdout.read().decode()
        os.close(master)
        run.communicate()
        self.status = run.wait(PATIENCE_SECONDS)

    @staticmethod
    def _read_all(master):
        seen = b""
        while select.select([master], [], [], PATIENCE_SECONDS)[0]:
            try:
                read = os.read(master, READ_AT_ONCE)
            except OSError:  # how a terminal tells that the other end is gone
                break
            if not read:
                break
            seen += read
        return seen.decode()

    def drawn(self):
        """What the line has told: (table, phase, per cent, time left), each in its turn."""
        texts = [text for text in self.seen.split(ERASE) if text]
        for text in texts:
            if not DRAWN.fullmatch(text):
                raise Wrong(f"on the terminal: {text!r}")
        return [DRAWN.fullmatch(text).groups() for text in texts]

    def left_on_screen(self):
        """The lines that stay when all is over."""
        return [line.rpartition(ERASE)[2] for line in self.seen.split("\n")]


def tables_in(drawn):
    """Names in the order in which they were drawn, each once."""
    return list(dict.fromkeys(row[0] for row in drawn))


def expect_rising(drawn):
    per_cents = [int(row[2]) for row in drawn]
    expect_equal(per_cents, sorted(per_cents), "per cents")
    if not per_cents or per_cents[-1] > 100:
        raise Wrong(f"per cents {per_cents}")


def words_of(small):
    """Tables that take a while, and so draw the line often."""
    words, made = (["kqk", "kqqk", "--plain"], ["kqk", "kqqk"]) if small else (["kqqk"],
                                                                              ["kqk", "kqqk"])
    return [*words, "--threads", "1"], made


def check_line(program, small):
    """Table, phase, per cent and time left; gone at the end."""
    words, made = words_of(small)
    terminal = Terminal(program, words, takes_output=False)
    expect_equal((terminal.status, terminal.output), (0, lines_of(made)), words)
    drawn = terminal.drawn()
    expect_equal(tables_in(drawn), made, "tables on the terminal")
    expect_rising(drawn)
    if not terminal.seen.startswith(ERASE) or not terminal.seen.endswith(ERASE):
        raise Wrong(f"the line does not go: {terminal.seen!r}")
    expect_equal(any(row[3] for row in drawn), True, "time left")
    phases = {row[1] for row in drawn}
    if not small and "packing" not in phases:
        raise Wrong(f"phases {phases}")


def check_lines_between(program, small):
    """Output on the same terminal stands on lines of its own."""
    words, made = words_of(small)
    terminal = Terminal(program, words, takes_output=True)
    expect_equal(terminal.status, 0, words)
    expect_equal(terminal.left_on_screen(), [*(LINES[table] for table in made), ""], "screen")


def check_proof(program, small):
    """The proof is part of the work: making takes no more than its share."""
    tables = ("krk", "kqk") if small else THREE_MEN
    words = ["--plain", "--verify", *tables]
    terminal = Terminal(program, words, takes_output=False)
    expect_equal(terminal.status, 0, words)
    drawn = terminal.drawn()
    expect_rising(drawn)
    verified = [row for row in drawn if row[1] == "verifying"]
    expect_equal(sorted(tables_in(verified)), sorted(tables), "tables that are verified")
    expect_equal(max(int(row[2]) for row in drawn if row[1] != "verifying") <= 50, True,
                 "per cents before the proof")
    # Nothing to make: the proof is all the work.
    proof = Terminal(program, words, takes_output=False)
    expect_equal({row[1] for row in proof.drawn()}, {"verifying"}, "phases of a proof")
    expect_rising(proof.drawn())


def check_fault(program, _):
    """The line is away when a fault is told."""
    program.expect_tables(["kqk"], ["kqk"])
    file = program.folder / "kqk.nbw.emd"
    damaged = bytearray(file.read_bytes())
    damaged[-1000] ^= 1
    file.write_bytes(damaged)
    terminal = Terminal(program, ["kqqk"], takes_output=True)
    expect_equal(terminal.status, 1, "status")
    expect_equal(terminal.left_on_screen(),
                 ["corvane-tbgen: kqk.nbw.emd: cannot be read, or is broken", ""], "screen")


def check_nothing_to_do(program, _):
    program.expect_tables(["kqk", "--plain"], ["kqk"])
    expect_equal(Terminal(program, ["kqk", "--plain"], takes_output=True).seen, "", "screen")


def check_pipe(program, _):
    """Into a pipe or a file goes nothing of the line."""
    for words in (["kqk"], ["--plain", "--verify", "kqk"]):
        done = program.start(*words)
        expect_equal((done.returncode, done.stderr), (0, ""), words)
    with open(program.folder / "errors", "wb") as errors:
        run = program.begin("--plain", "krk", stdout=subprocess.DEVNULL, stderr=errors)
        expect_equal(run.wait(PATIENCE_SECONDS), 0, "status")
    expect_equal((program.folder / "errors").read_bytes(), b"", "errors in a file")
    # A terminal for the output alone changes nothing.
    master, slave = pty.openpty()
    tty.setraw(slave)
    run = program.begin("--plain", "knk", stdout=slave, stderr=subprocess.PIPE)
    expect_equal(run.communicate()[1], b"", "errors beside a terminal")
    expect_equal(os.read(master, READ_AT_ONCE).decode(), lines_of(["knk"]), "terminal")
    os.close(slave)
    os.close(master)


CHECKS = (check_line, check_lines_between, check_proof, check_fault, check_nothing_to_do,
          check_pipe)

if __name__ == "__main__":
    run_checks(CHECKS, (), __doc__)
