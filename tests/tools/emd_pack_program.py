#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Starts the program emd_pack as its users do: packing, unpacking, testing, and all its faults.

    emd_pack_program.py EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds halves of tables and, for some, a compressed file with .emd behind the name.
"""

import os
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

PACKED_HALVES = [f"{name}.{half}" for name in ("kqk", "krk", "kpk") for half in ("nbw", "nbb")]
HALF = "krk.nbw"
HEADER_LENGTH_AT = 64
USAGE_BEGINS = "usage: emd_pack "


class Program:
    """The program, in a folder of its own."""

    def __init__(self, path, folder):
        self.path = path
        self.folder = folder
        self.calls = 0

    def start(self, *words, file_size=None):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (file_size, file_size))

        self.calls += 1
        # The signal of a file that grows too long stays ignored, as Python has it.
        return subprocess.run([self.path, *words], cwd=self.folder, capture_output=True,
                              encoding="utf-8", timeout=60, check=False, restore_signals=False,
                              preexec_fn=limit if file_size else None)

    def expect(self, words, status=0, output="", errors="", file_size=None):
        done = self.start(*words, file_size=file_size)
        found = (done.returncode, done.stdout, done.stderr)
        if found != (status, output, errors):
            raise AssertionError(f"{words}: {found} instead of {(status, output, errors)}")

    def expect_fault(self, words, fault, file_size=None):
        self.expect(words, 1, errors=f"emd_pack: {fault}\n", file_size=file_size)


def expect_equal(found, expected, what):
    if found != expected:
        raise AssertionError(f"{what}: {found!r} instead of {expected!r}")


def expect_same_bytes(one, other):
    if one.read_bytes() != other.read_bytes():
        raise AssertionError(f"{one} and {other} differ")


def check_round_trip(program, tables):
    half = tables / HALF
    size = half.stat().st_size
    program.expect([str(half), "half.emd"])
    blocks = -(-size // 8192)
    program.expect(["--check", "half.emd"], output=f"half.emd: {size} bytes in {blocks} blocks\n")
    program.expect(["--unpack", "half.emd", "half"])
    expect_same_bytes(program.folder / "half", half)

    program.expect(["--block-shift", "9", str(half), "small.emd"])
    blocks = -(-size // 512)
    program.expect(["--check", "small.emd"], output=f"small.emd: {size} bytes in {blocks} blocks\n")
    # What is there already is replaced.
    program.expect(["--unpack", "small.emd", "half"])
    expect_same_bytes(program.folder / "half", half)
    program.expect([str(half), "small.emd"])
    expect_same_bytes(program.folder / "small.emd", program.folder / "half.emd")


def check_files_of_another_packer(program, tables):
    for name in PACKED_HALVES:
        program.expect(["--unpack", str(tables / f"{name}.emd"), name])
        expect_same_bytes(program.folder / name, tables / name)
        (program.folder / name).unlink()
    expect_equal(len(PACKED_HALVES), 6, "halves")


def check_files_that_cannot_be_read(program):
    (program.folder / "folder").mkdir()
    (program.folder / "empty").touch()
    os.mkfifo(program.folder / "pipe")
    for name in ("absent", "folder", "pipe", "absent/file"):
        fault = f"{name}: cannot be read"
        program.expect_fault([name, "out"], fault)
        program.expect_fault(["--unpack", name, "out"], fault)
        program.expect_fault(["--check", name], fault)
    program.expect_fault(["empty", "out"], "empty: is empty")


def check_files_that_cannot_be_written(program):
    for words in (["half"], ["--unpack", "half.emd"]):
        for name in ("folder", "absent/out"):
            program.expect_fault([*words, name], f"{name}: cannot be written")
        # The disk is full, at once or with the last bytes: what was there before stays.
        (program.folder / "kept").write_text("as before")
        whole = (program.folder / ("half" if "--unpack" in words else "half.emd")).stat().st_size
        for file_size in (4096, whole - 100):
            program.expect_fault([*words, "kept"], "kept: cannot be written", file_size=file_size)
            expect_equal((program.folder / "kept").read_text(), "as before", "the old file")


def check_broken_files(program):
    whole = (program.folder / "half.emd").read_bytes()
    header_length = int.from_bytes(whole[HEADER_LENGTH_AT:HEADER_LENGTH_AT + 4], "big")

    def expect_fault(damaged, fault):
        (program.folder / "damaged").write_bytes(damaged)
        program.expect_fault(["--check", "damaged"], f"damaged: {fault}")
        program.expect_fault(["--unpack", "damaged", "out"], f"damaged: {fault}")

    def flipped(place):
        return whole[:place] + bytes([whole[place] ^ 1]) + whole[place + 1:]

    no_header = "is no compressed table file, or its header is broken"
    for damaged in (b"", whole[:79], whole[:header_length - 1], flipped(0), flipped(90),
                    flipped(header_length - 1)):
        expect_fault(damaged, no_header)
    expect_fault(flipped(header_length), "block 1 of 4 is broken")
    expect_fault(flipped(len(whole) - 1), "block 4 of 4 is broken")
    expect_fault(whole[:-1], "block 4 of 4 is broken")


def check_usage(program):
    for words in ([], ["half"], ["half", "out", "more"], ["half", "out", "--check"],
                  ["--check"], ["--check", "half.emd", "out"], ["--unpack"],
                  ["--unpack", "half.emd"], ["--unpack", "half.emd", "out", "more"],
                  ["--unknown", "half", "out"],
                  ["--block-shift"], ["--block-shift", "9"], ["--block-shift", "9", "half"],
                  ["--block-shift", "17", "half", "out"], ["--block-shift", "-1", "half", "out"],
                  ["--block-shift", "9x", "half", "out"], ["--block-shift", "", "half", "out"]):
        done = program.start(*words)
        expect_equal((done.returncode, done.stdout), (2, ""), words)
        if not done.stderr.startswith(USAGE_BEGINS) or done.stderr.count("\n") != 3:
            raise AssertionError(f"{words}: {done.stderr!r}")


def check(path, tables, folder):
    program = Program(path, folder)
    check_round_trip(program, tables)
    check_files_of_another_packer(program, tables)
    check_files_that_cannot_be_read(program)
    check_files_that_cannot_be_written(program)
    check_broken_files(program)
    check_usage(program)
    left = sorted(name.name for name in folder.iterdir())
    expect_equal(left, ["damaged", "empty", "folder", "half", "half.emd", "kept", "pipe",
                        "small.emd"], "files left")
    return program.calls


def main():
    if len(sys.argv) != 3:
        raise SystemExit(__doc__)
    with tempfile.TemporaryDirectory(prefix="corvane-emd-") as folder:
        calls = check(os.path.abspath(sys.argv[1]), Path(sys.argv[2]).resolve(), Path(folder))
    expect_equal(calls, 69, "calls of the program")
    print(f"emd_pack_program: {calls} calls of the program")


if __name__ == "__main__":
    main()
