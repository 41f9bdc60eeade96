# SPDX-License-Identifier: MIT
"""The program corvane-tbgen at the hands of its tests: started in a folder of its own.

Knows what the program prints for each table, and reads files of both forms back.
"""

import argparse
import os
import resource
import subprocess
import tempfile
from pathlib import Path

HALVES = ("nbw", "nbb")
PACKED = ".emd"
PATIENCE_SECONDS = 900
WRONG_ARGUMENTS = 2

# What the program prints for a table: the bytes of both halves, and the longest wins.
LINES = {
    "knk": "knk         26282      28644  longest win 0, of the other side 0",
    "kbk": "kbk         27243      28644  longest win 0, of the other side 0",
    "krk": "krk         27030      28644  longest win 16, of the other side 0",
    "kqk": "kqk         25629      28644  longest win 10, of the other side 0",
    "kpk": "kpk         81664      84012  longest win 28, of the other side 0",
    "krkn": "krkn      1649196    1603202  longest win 40, of the other side 1",
    "kqqk": "kqqk       698739     873642  longest win 4, of the other side 0",
}
# In the order in which they are made: pawns promote to all the others.
THREE_MEN = ("knk", "kbk", "krk", "kqk", "kpk")
# One table shows the same of packing where a step is slow.
FEW = ("kqk",)


class Wrong(AssertionError):
    """The program did something else than it should."""


class Program:
    """The program, in a folder of its own."""

    def __init__(self, options, folder):
        self.path = options.tbgen
        self.emd_pack = options.emd_pack
        self.tables = options.tables
        self.folder = Path(folder)
        self.calls = 0

    def start(self, *words, largest_file=None, before=None, path=None):
        """Runs it to its end. Limits: bytes of the largest file; what the child calls before; the
        path of another program."""
        def prepare():
            if largest_file is not None:
                resource.setrlimit(resource.RLIMIT_FSIZE, (largest_file, largest_file))
            if before is not None:
                before()

        self.calls += 1
        # The signal of a file that grows too long stays ignored, as Python has it.
        return subprocess.run([path or self.path, *words], cwd=self.folder, capture_output=True,
                              encoding="utf-8", timeout=PATIENCE_SECONDS, check=False,
                              stdin=subprocess.DEVNULL, restore_signals=False, preexec_fn=prepare)

    def begin(self, *words, **pipes):
        """Starts it and does not wait; signals are as in a shell."""
        self.calls += 1
        return subprocess.Popen([self.path, *words], cwd=self.folder, stdin=subprocess.DEVNULL,
                                **pipes)

    def expect(self, words, status=0, output="", errors="", **limits):
        done = self.start(*words, **limits)
        found = (done.returncode, done.stdout, done.stderr)
        if found != (status, output, errors):
            raise Wrong(f"{words}: {found} instead of {(status, output, errors)}")

    def expect_tables(self, words, made):
        """It makes these tables, in this order, and tells a line of each."""
        self.expect(words, output=lines_of(made))

    def expect_fault(self, words, fault, made=(), **limits):
        self.expect(words, 1, lines_of(made), f"corvane-tbgen: {fault}\n", **limits)

    def decoded(self, file):
        """The plain bytes of a file of either form."""
        if file.suffix != PACKED:
            return file.read_bytes()
        with tempfile.TemporaryDirectory(prefix="corvane-tbgen-half-") as folder:
            half = Path(folder) / "half"
            done = subprocess.run([self.emd_pack, "--unpack", file, half], capture_output=True,
                                  encoding="utf-8", timeout=PATIENCE_SECONDS, check=False)
            if done.returncode != 0:
                raise Wrong(f"{file}: {done.stderr}")
            return half.read_bytes()

    def known(self, file):
        """The bytes that a half of three men has to have."""
        return (self.tables / file.name.removesuffix(PACKED)).read_bytes()

    def expect_known_bytes(self, folder, names):
        """The folder holds these files and no others, of three men each, all of them good."""
        expect_equal(names_in(folder), sorted(names), f"files in {folder}")
        for name in names:
            expect_same(self.decoded(folder / name), self.known(folder / name), folder / name)


def lines_of(tables):
    return "".join(LINES[table] + "\n" for table in tables)


def files_of(tables, form=PACKED):
    """Names of both halves of some tables."""
    return [f"{table}.{half}{form}" for table in tables for half in HALVES]


def names_in(folder):
    return sorted(file.name for file in folder.iterdir())


def bytes_in(folder):
    return {file.name: file.read_bytes() for file in folder.iterdir()}


def expect_equal(found, expected, what):
    if found != expected:
        raise Wrong(f"{what}: {found!r} instead of {expected!r}")


def expect_same(found, expected, what):
    """For long values, which nobody would want to read."""
    if found != expected:
        raise Wrong(f"{what} has other bytes than it should")


def expect_same_folders(one, other):
    expect_equal(names_in(one), names_in(other), f"files in {one}")
    for file in one.iterdir():
        expect_same(file.read_bytes(), (other / file.name).read_bytes(), file)


def run_checks(checks, long_checks, documentation):
    """Runs each check in a folder of its own."""
    parser = argparse.ArgumentParser(description=documentation.splitlines()[0])
    size = parser.add_mutually_exclusive_group()
    size.add_argument("--small", action="store_true", help="fewer tables: each step is slow")
    size.add_argument("--long", action="store_true", help="the checks that take minutes, alone")
    parser.add_argument("tbgen", metavar="TBGEN", type=os.path.abspath)
    parser.add_argument("emd_pack", metavar="EMD_PACK", type=os.path.abspath)
    parser.add_argument("tables", metavar="TABLE_FOLDER", type=lambda name: Path(name).resolve())
    options = parser.parse_args()
    chosen = long_checks if options.long else checks
    if not chosen:
        raise SystemExit("no such checks here")
    for check in chosen:
        with tempfile.TemporaryDirectory(prefix="corvane-tbgen-") as folder:
            program = Program(options, folder)
            check(program, options.small)
            print(f"{check.__name__}: {program.calls} calls of the program", flush=True)
