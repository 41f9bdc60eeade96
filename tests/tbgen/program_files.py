#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The files that corvane-tbgen makes, what it makes first, and what it leaves alone.

    program_files.py [--small] TBGEN EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds the plain halves of all tables of three men.
"""

import os

from tbgen_program import (FEW, PACKED, THREE_MEN, Wrong, bytes_in, expect_equal, expect_same,
                           expect_same_folders, files_of, names_in, run_checks)

KQQK_LENGTHS = {"kqqk.nbw": 698739, "kqqk.nbb": 873642}
OLD_TIME_NS = 1_000_000_000  # of long ago


def make_old(folder):
    """Gives all files a time of long ago, so that a new one shows."""
    for file in folder.iterdir():
        os.utime(file, ns=(OLD_TIME_NS, OLD_TIME_NS))


def new_files(folder):
    return sorted(file.name for file in folder.iterdir() if file.stat().st_mtime_ns != OLD_TIME_NS)


def check_plain_files(program, _):
    """All tables of three men, in the working directory and in a folder by name."""
    names = files_of(THREE_MEN, form="")
    expect_equal(len(names), 10, "halves of three men")
    program.expect_tables(["--men", "3", "--plain"], THREE_MEN)
    program.expect_known_bytes(program.folder, names)
    program.expect_tables(["--plain", "--out", "named", "--men", "3"], THREE_MEN)
    program.expect_known_bytes(program.folder / "named", names)


def check_packed_files(program, small):
    tables = FEW if small else THREE_MEN
    names = files_of(tables)
    program.expect_tables(tables, tables)
    program.expect_known_bytes(program.folder, names)
    plain = sum(len(program.known(program.folder / name)) for name in names)
    packed = sum(file.stat().st_size for file in program.folder.iterdir())
    if packed * 4 > plain:
        raise Wrong(f"{plain} bytes are packed into {packed}: hardly shorter")
    if small:
        return
    # However the tables are asked for, the files are the same.
    program.expect_tables(["--men", "3", "--out", "men"], THREE_MEN)
    program.expect_tables(["kpk", "knk", "kqk", "--out", "names", "kbk", "krk"], THREE_MEN)
    expect_equal(names_in(program.folder / "men"), sorted(names), "files")
    expect_same_folders(program.folder / "men", program.folder / "names")


def check_second_run(program, small):
    """What is complete stays untouched, down to its time."""
    out = program.folder / "out"
    for words, tables in ((["--men", "3", "--plain"], THREE_MEN),
                          (FEW if small else THREE_MEN,) * 2):
        words = [*words, "--out", "out"]
        program.expect_tables(words, tables)
        make_old(out)
        for _ in range(2):
            program.expect(words)
            expect_equal(new_files(out), [], "files written again")
    # Both forms lie side by side now.
    expect_equal(len(names_in(out)), 12 if small else 20, "files")


def check_missing_halves(program, small):
    """A table with one half is no table: both halves are made anew, all else is left alone."""
    out = program.folder / "out"
    runs = [(["--plain", "krk", "kqk"], ("krk", "kqk"), "")]
    if not small:
        runs = [(["--plain", "--men", "3"], THREE_MEN, ""), (FEW, FEW, PACKED)]
    for words, tables, form in runs:
        words = [*words, "--out", "out"]
        program.expect_tables(words, tables)
        whole = bytes_in(out)
        for name in files_of(tables, form):
            table = name.partition(".")[0]
            good = whole[name]
            for damage in (None, b"", good[:-1], b"no table", good + b"\x80"):
                if form == PACKED and damage not in (None, b"no table"):
                    continue
                make_old(out)
                if damage is None:
                    (out / name).unlink()
                else:
                    (out / name).write_bytes(damage)
                program.expect_tables(words, [table])
                expect_equal(new_files(out), sorted(files_of([table], form)), f"files for {name}")
                expect_same(bytes_in(out), whole, out)


def check_needed_tables(program, _):
    """What a table needs is made before it, in the form that was asked for, and nothing else."""
    program.expect_tables(["--plain", "--out", "one", "kqqk"], ["kqk", "kqqk"])
    one = program.folder / "one"
    expect_equal(names_in(one), sorted(files_of(["kqk", "kqqk"], form="")), "files of kqqk")
    for name, length in KQQK_LENGTHS.items():
        expect_equal((one / name).stat().st_size, length, f"bytes of {name}")
    for name in files_of(["kqk"], form=""):
        expect_same((one / name).read_bytes(), program.known(one / name), name)
    program.expect_tables(["--out", "two", "--plain", "kpk"], THREE_MEN)
    program.expect_known_bytes(program.folder / "two", files_of(THREE_MEN, form=""))
    # A table that is only needed may have any form: it is not made a second time.
    packed = program.folder / "packed"
    program.expect_tables(["--out", "packed", "kqk"], ["kqk"])
    program.expect_tables(["--plain", "--out", "packed", "kqqk"], ["kqqk"])
    expect_equal(names_in(packed), ["kqk.nbb.emd", "kqk.nbw.emd", "kqqk.nbb", "kqqk.nbw"],
                 "files of both forms")
    for name in KQQK_LENGTHS:
        expect_same((packed / name).read_bytes(), (one / name).read_bytes(), name)
    # One that is asked for has to have the form that is asked for.
    program.expect_tables(["--plain", "--out", "packed", "kqk"], ["kqk"])
    for name in files_of(["kqk"], form=""):
        expect_same((packed / name).read_bytes(), program.known(packed / name), name)


def check_plain_file_comes_first(program, _):
    """Where a table lies in both forms, the plain one is read, as in the engine."""
    out = program.folder / "out"
    program.expect_tables(["--out", "out", "kqk"], ["kqk"])
    program.expect_tables(["--out", "out", "--plain", "kqk"], ["kqk"])
    for name in files_of(["kqk"]):
        (out / name).write_bytes(b"no table")
    program.expect_tables(["--out", "out", "--plain", "kqqk"], ["kqqk"])


def check_threads(program, small):
    """Threads change the time that it takes, and nothing else."""
    if small:
        sets = [(FEW, FEW, ("1", "3")), (["--plain", "kpk"], THREE_MEN, ("1", "3"))]
    else:
        sets = [(["kqqk"], ("kqk", "kqqk"), ("1", "3")),
                (["--plain", "kpk", "krkn"], (*THREE_MEN, "krkn"), ("1", "2", "3", "16"))]
    for words, made, counts in sets:
        for threads in counts:
            folder = program.folder / f"{made[-1]}-{threads}"
            first = program.folder / f"{made[-1]}-{counts[0]}"
            program.expect_tables([*words, "--threads", threads, "--out", folder.name], made)
            expect_same_folders(folder, first)
        expect_equal(len(names_in(first)), 2 * len(made), "files")


def check_new_folders(program, _):
    """The folder is made, and those above it; the end of its name does not matter."""
    for name in ("new", "nested/in/others", "with/end/", "./dotted/../with a blank",
                 str(program.folder / "absolute")):
        words = ["--out", name, "--plain", "kqk"]
        program.expect_tables(words, ["kqk"])
        program.expect_known_bytes(program.folder / name, files_of(["kqk"], form=""))
        program.expect(words)
    # A link to a folder is a folder.
    (program.folder / "link").symlink_to("new")
    program.expect(["--out", "link", "--plain", "kqk"])


def check_old_parts(program, _):
    """What an interrupted run has left is no table and goes; a fresh part may be another run's."""
    stays = ["knk.nbw.0123abcd.part", "krk.nbb.emd.part", "notes.part", "notes.txt",
             "krk.nbb.part.txt"]
    goes = ["kqk.nbw.0123abcd.part", "kqk.nbb.emd.99999999.part", "kqk.nbb.part"]
    for name in (*stays, *goes):
        (program.folder / name).write_bytes(b"half of a file" * 10000)
    make_old(program.folder)
    for name in stays[:2]:
        os.utime(program.folder / name)
    program.expect_tables(["--men", "3", "--plain"], THREE_MEN)
    expect_equal(names_in(program.folder), sorted([*files_of(THREE_MEN, form=""), *stays]), "files")
    for name in stays:
        (program.folder / name).unlink()
    program.expect_known_bytes(program.folder, files_of(THREE_MEN, form=""))


def check_help(program, _):
    for word in ("--help", "-h"):
        done = program.start(word)
        expect_equal((done.returncode, done.stderr), (0, ""), word)
        if not done.stdout.startswith("usage: corvane-tbgen "):
            raise Wrong(f"{word}: {done.stdout!r}")
    expect_equal(names_in(program.folder), [], "files made by --help")


CHECKS = (check_plain_files, check_packed_files, check_second_run, check_missing_halves,
          check_needed_tables, check_plain_file_comes_first, check_threads, check_new_folders,
          check_old_parts, check_help)

if __name__ == "__main__":
    run_checks(CHECKS, (), __doc__)
