#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The proof of tables by corvane-tbgen: good ones pass, and each planted fault is told.

    program_verify.py [--small] TBGEN EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds the plain halves of all tables of three men.
"""

import random
import re

from tbgen_program import (FEW, HALVES, THREE_MEN, Wrong, expect_equal, files_of, lines_of,
                           run_checks)

POSITIONS = {"knk": 54926, "kbk": 53380, "krk": 51044, "kqk": 47136, "kpk": 165676,
             "kqqk": 1235796}
SEED = 4711
FAULTS_OF_A_KIND = 3
FEW_FAULTS_OF_A_KIND = 1
# Bytes: a draw, mates from here on upwards and downwards, and a number that no position has.
DRAW, MATE_ON_BOARD, UNREACHED = 0, -127, -128
MATES_AT_ONCE = 126
SQUARE = "[a-h][1-8]"
TOLD = re.compile(rf"corvane-tbgen: (\w+): kings {SQUARE} {SQUARE}, men [pnbrq]{SQUARE} "
                  r"\((first|second)\), (first|second) to move: "
                  r"stored (-?\d+), by its successors (-?\d+)\n")
TOLD_ELSEWHERE = re.compile(r"corvane-tbgen: (\w+): a value at (\d+) of half ([01]), "
                            r"where no position is\n")


def proofs_of(tables):
    return "".join(f"{table:<6}{POSITIONS[table]:>22}  positions agree\n" for table in tables)


def check_good_tables(program, small):
    """Just made, there before, by name, in either form."""
    rows = sorted(THREE_MEN, key=("kpk", "knk", "kbk", "krk", "kqk").index)
    words = ["--men", "3", "--plain", "--verify"]
    program.expect(words, output=lines_of(THREE_MEN) + proofs_of(rows))
    for threads in ("1", "2", "7"):
        program.expect(["--plain", "kqk", "--verify", "--threads", threads],
                       output=proofs_of(["kqk"]))
    program.expect([*FEW, "--verify"], output=lines_of(FEW) + proofs_of(FEW))
    if not small:
        program.expect(["kqqk", "--plain", "--verify"],
                       output=lines_of(["kqqk"]) + proofs_of(["kqqk"]))
    # A table in both forms is proved in the plain one, which the engine would read.
    for half in HALVES:
        (program.folder / f"kqk.{half}").unlink()
    program.expect(["kqk", "--verify"], output=proofs_of(["kqk"]))


def told(byte):
    """A byte as the number that it stands for."""
    return byte - 256 if byte > 127 else byte


def planted_faults(whole, most):
    """(kind, place, new value) of some faults of each kind that a half has room for."""
    draw = random.Random(SEED)
    places = {}
    for i, byte in enumerate(whole):
        places.setdefault(told(byte), []).append(i)
    wins = [value for value in places if value > 0]
    losses = [value for value in places if UNREACHED < value < 0]

    def pick(values):
        found = [i for value in values for i in places.get(value, [])]
        return draw.sample(found, min(most, len(found)))

    kinds = {
        "a win made a draw": (pick(wins), lambda value: DRAW),
        "a win one move longer": (pick(wins), lambda value: value - 1),
        "a win one move shorter": (pick(set(wins) - {MATES_AT_ONCE}), lambda value: value + 1),
        "a loss made a draw": (pick(losses), lambda value: DRAW),
        "a loss one move longer": (pick(losses), lambda value: value + 1),
        "a mate made a draw": (pick([MATE_ON_BOARD]), lambda value: DRAW),
        "a draw made a win": (pick([DRAW]), lambda value: MATES_AT_ONCE),
        "a draw made a loss": (pick([DRAW]), lambda value: MATE_ON_BOARD),
        "a position made none": (pick([*wins, *losses, DRAW]), lambda value: UNREACHED),
        "a draw where no position is": (pick([UNREACHED]), lambda value: DRAW),
        "a win where no position is": (pick([UNREACHED]), lambda value: MATES_AT_ONCE),
    }
    for kind, (chosen, changed) in kinds.items():
        for place in chosen:
            yield kind, place, changed(told(whole[place]))


def expect_told(program, name, kind, place, value):
    """The fault of a half, as the program found it."""
    table, half = name.split(".")
    what = f"{kind} at {place} of {name}"
    done = program.start("--plain", "--out", "out", table, "--verify")
    expect_equal((done.returncode, done.stdout), (1, ""), what)
    if "where no position is" in kind:
        found = TOLD_ELSEWHERE.fullmatch(done.stderr)
        wanted = (table, str(place), str(HALVES.index(half)))
        expect_equal(found and found.groups(), wanted, f"{what}: {done.stderr!r}, told")
        return
    found = TOLD.fullmatch(done.stderr)
    if not found or found[1] != table or found[4] == found[5]:
        raise Wrong(f"{what}: {done.stderr!r}")
    # A position one move before may be met first: then it is the one that does not agree.
    mover = "first" if half == HALVES[0] else "second"
    if found[3] == mover and int(found[4]) not in (value, told_before(program, name, place)):
        raise Wrong(f"{what}: {done.stderr!r} tells neither value")


def told_before(program, name, place):
    return told(program.known(program.folder / name)[place])


def check_planted_faults(program, small):
    """One at a time, in each half of a table without pawns and one with them."""
    out = program.folder / "out"
    program.expect_tables(["--plain", "--men", "3", "--out", "out"], THREE_MEN)
    planted = {}
    most = FEW_FAULTS_OF_A_KIND if small else FAULTS_OF_A_KIND
    for table in ("krk",) if small else ("krk", "kpk"):
        for name in files_of([table], form=""):
            file = out / name
            whole = file.read_bytes()
            for kind, place, value in planted_faults(whole, most):
                damaged = bytearray(whole)
                damaged[place] = value % 256
                file.write_bytes(damaged)
                expect_told(program, name, kind, place, value)
                planted[kind] = planted.get(kind, 0) + 1
            file.write_bytes(whole)
        program.expect(["--plain", "--out", "out", table, "--verify"], output=proofs_of([table]))
    expect_equal(len(planted), 11, f"kinds of faults in {planted}")


def check_threads_find_the_same(program, _):
    """A single fault is found whatever the number of threads."""
    program.expect_tables(["--plain", "krk"], ["krk"])
    file = program.folder / "krk.nbw"
    damaged = bytearray(file.read_bytes())
    place = damaged.index(MATES_AT_ONCE)
    damaged[place] = DRAW
    file.write_bytes(damaged)
    for threads in ("1", "2", "16"):
        done = program.start("--plain", "krk", "--verify", "--threads", threads)
        expect_equal((done.returncode, done.stdout), (1, ""), f"{threads} threads")
        if not TOLD.fullmatch(done.stderr):
            raise Wrong(f"{threads} threads: {done.stderr!r}")


def check_others_are_proved(program, _):
    """A faulty table does not keep the others from being proved; the status tells of it."""
    tables = ["--plain", "knk", "kbk", "krk"]
    program.expect_tables(tables, tables[1:])
    file = program.folder / "kbk.nbb"
    damaged = bytearray(file.read_bytes())
    damaged[damaged.index(DRAW)] = MATES_AT_ONCE
    file.write_bytes(damaged)
    done = program.start(*tables, "--verify")
    expect_equal((done.returncode, done.stdout), (1, proofs_of(["knk", "krk"])), "other tables")
    if not done.stderr.startswith("corvane-tbgen: kbk: ") or done.stderr.count("\n") != 1:
        raise Wrong(f"kbk: {done}")


def check_lengths(program, small):
    """A half that is not as long as it should be: made anew when asked for, told when needed."""
    program.expect_tables(["--plain", "--men", "3"], THREE_MEN)
    for name in ("krk.nbw",) if small else ("krk.nbw", "kpk.nbb", "kqk.nbb"):
        file, whole = program.folder / name, program.known(program.folder / name)
        table = name.partition(".")[0]
        damages = [whole[:-1], whole + b"\x80", whole + b"\0", b"no table"]
        for damage in damages[:2] if small else damages:
            file.write_bytes(damage)
            # A table that nobody asked for is not made anew, but the engine would not start.
            other = "kbk"
            program.expect_fault(["--plain", other, "--verify"], f"{name}: is broken")
            program.expect(["--plain", table, "--verify"],
                           output=lines_of([table]) + proofs_of([table]))


def check_broken_packed_table(program, small):
    """A packed half whose header is sound and whose blocks are not."""
    program.expect_tables(FEW, FEW)
    for half in HALVES:
        file = program.folder / f"kqk.{half}.emd"
        whole = file.read_bytes()
        for place in (-1000,) if small else (-1000, -2000, -3000):
            damaged = bytearray(whole)
            damaged[place] ^= 1
            file.write_bytes(damaged)
            done = program.start("kqk", "--verify")
            expect_equal((done.returncode, done.stdout), (1, ""), f"{file.name} damaged")
            if not done.stderr.startswith("corvane-tbgen: kqk"):
                raise Wrong(f"{file.name} damaged: {done.stderr!r}")
        file.write_bytes(whole)


CHECKS = (check_good_tables, check_planted_faults, check_threads_find_the_same,
          check_others_are_proved, check_lengths, check_broken_packed_table)

if __name__ == "__main__":
    run_checks(CHECKS, (), __doc__)
