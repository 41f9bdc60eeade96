#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The makefiles that corvane-tbgen prints: what they say, and what make does with them.

    program_graph.py [--small | --long] TBGEN EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds the plain halves of all tables of three men. --long makes all tables of four men,
twice, and proves them.
"""

import re
import shutil
import subprocess

from table_needs import all_tables, needs_of
from tbgen_program import (PACKED, PATIENCE_SECONDS, THREE_MEN, Wrong, expect_equal,
                           files_of, lines_of, names_in, run_checks)

MAKEFILE = "tables.mk"
RULE = re.compile(r"\$\(OUT\)/(\w+)\.nbb(?:\.emd)?:(?: \| (.*))?")
CALL = re.compile(r"\S+ --out (\S+) --threads (\d+) (--plain )?(\w+)")
TABLES_OF_MEN = {"3": 5, "4": 35, "5": 145}
# By hand: what can be captured, what a pawn becomes, and both at once.
NEEDS = {
    "kqk": "",
    "kpk": "knk kbk krk kqk",
    "kqqk": "kqk",
    "knkn": "knk",
    "kbnk": "knk kbk",
    "kqkr": "krk kqk",
    "kppk": "kpk knpk kbpk krpk kqpk",
    "knkp": "knk kpk knkn kbkn krkn kqkn kbk krk kqk",
    "krkp": "krk kpk krkn krkb krkr kqkr knk kbk kqk",
    "kpkp": "kpk knkp kbkp krkp kqkp knk kbk krk kqk",
    "krpkr": "krpk krkp krkr krnkr krbkr krrkr kqrkr krnk krbk krrk kqrk",
    "kpppk": "kppk knppk kbppk krppk kqppk",
    "kppkp": "kppk kpkp knpkp kbpkp krpkp kqpkp knpk kbpk krpk kqpk kppkn kppkb kppkr kppkq knkp "
             "kbkp krkp kqkp",
    "kqqkq": "kqqk kqkq",
}
# All that are made with four men: bytes of the halves, longest wins of both sides.
FOUR_MEN = """
knkn 1603202 1603202 1 1 / kbkn 1661823 1603202 1 1 / krkn 1649196 1603202 40 1
kqkn 1563735 1603202 21 0 / knkp 4931904 4981504 7 29 / kbkb 1661823 1661823 1 1
krkb 1649196 1661823 29 0 / kqkb 1563735 1661823 17 0 / kbkp 5112000 4981504 1 29
krkr 1649196 1649196 19 19 / kqkr 1563735 1649196 35 19 / krkp 5072736 4981504 26 43
kqkq 1563735 1563735 13 13 / kqkp 4810080 4981504 28 29 / kpkp 3863492 3863492 33 33
knnk 735304 873642 1 0 / kbnk 1550620 1747284 33 0 / krnk 1538479 1747284 16 0
kqnk 1459616 1747284 9 0 / knpk 4648581 5124732 27 0 / kbbk 789885 873642 19 0
krbk 1594560 1747284 16 0 / kqbk 1512507 1747284 8 0 / kbpk 4817128 5124732 31 0
krrk 777300 873642 7 0 / kqrk 1500276 1747284 6 0 / krpk 4779530 5124732 16 0
kqqk 698739 873642 4 0 / kqpk 4533490 5124732 10 0 / kppk 1806671 1912372 32 0
"""
# What the proof compares: positions of both sides to move.
KPKP_POSITIONS = 7478454


def needs_in(text):
    """What each table waits for, as the makefile has it."""
    found = {}
    for line in text.splitlines():
        rule = RULE.fullmatch(line)
        if rule:
            files = (rule[2] or "").split()
            found[rule[1]] = {file.removeprefix("$(OUT)/").partition(".")[0] for file in files}
    return found


def make(program, *words, status=0):
    """What make prints; everything else that it says is a fault."""
    done = subprocess.run(["make", "-f", MAKEFILE, *words], cwd=program.folder, encoding="utf-8",
                          capture_output=True, timeout=PATIENCE_SECONDS, check=False,
                          env={"PATH": "/usr/bin:/bin", "LC_ALL": "C"})
    expect_equal(done.returncode, status, f"make {words}: {done.stderr} status")
    if status == 0:
        expect_equal(done.stderr, "", f"make {words}: errors")
    return done.stdout


def write_makefile(program, *words):
    """Gives its text. It has the program under a name that any makefile can hold."""
    link = program.folder / "tbgen"
    if not link.exists():
        link.symlink_to(program.path)
    done = program.start("--graph", *words, path="./tbgen")
    expect_equal((done.returncode, done.stderr), (0, ""), words)
    (program.folder / MAKEFILE).write_text(done.stdout)
    return done.stdout


def tables_called(output):
    """The tables of the calls that make prints, in their order."""
    return [call[4] for call in map(CALL.fullmatch, output.splitlines()) if call]


def expect_order(tables, what):
    """Each table comes once, and behind all that it needs."""
    for i, table in enumerate(tables):
        missing = needs_of(table) - set(tables[:i])
        if missing or table in tables[:i]:
            raise Wrong(f"{what}: {table} comes too early or twice; missing {sorted(missing)}")


def check_needs(program, _):
    """Each table of up to five men waits for those that its moves lead to, and for no others."""
    found = needs_in(write_makefile(program, "--men", "5"))
    for table, needs in NEEDS.items():
        expect_equal(found[table], set(needs.split()), f"needs of {table}")
        expect_equal(needs_of(table), set(needs.split()), f"needs of {table}, worked out")
    expect_equal(set(found), all_tables(5), "tables of five men")
    for table, needs in found.items():
        expect_equal(needs, needs_of(table), f"needs of {table}")


def check_targets(program, _):
    """Each table is a target by name; alone it brings what it needs."""
    for men, count in TABLES_OF_MEN.items():
        write_makefile(program, "--men", men)
        calls = tables_called(make(program, "-n"))
        expect_equal(set(calls), all_tables(int(men)), f"tables of {men} men")
        expect_equal(len(calls), count, f"calls for {men} men")
        expect_order(calls, f"{men} men")
        expect_equal(tables_called(make(program, "-n", "all")), calls, "the target all")
    write_makefile(program, "--men", "4")
    for table in sorted(all_tables(4)):
        calls = tables_called(make(program, "-n", table))
        expect_order(calls, table)
        expect_equal(calls[-1], table, f"last call for {table}")
    expect_equal(tables_called(make(program, "-n", "krkn")), ["knk", "krk", "krkn"], "calls")
    # A table by name has a makefile of its own.
    write_makefile(program, "kqqk", "--plain", "--out", "here")
    expect_equal(make(program, "-n").splitlines(),
                 [f"./tbgen --out here --threads 1 --plain {table}" for table in ("kqk", "kqqk")],
                 "calls for kqqk")
    expect_equal(make(program, "-n", "THREADS=3", "OUT=there", "TBGEN=other").splitlines(),
                 [f"other --out there --threads 3 --plain {table}" for table in ("kqk", "kqqk")],
                 "calls with other settings")
    expect_equal(names_in(program.folder), [MAKEFILE, "tbgen"], "files made by --graph")


def check_refused_names(program, _):
    """A makefile has no way to hold some names."""
    for name in ("with a blank", "dollar$", "hash#", "colon:", "semi;colon", "quote'", "per%cent",
                 "star*", "back\\slash", "tilde~", "equals=", "line\nend", "(", "umläut"):
        program.expect_fault(["--graph", "--men", "3", "--out", name],
                             f"a makefile cannot hold a name such as {program.path} or {name}")
    (program.folder / "a blank").symlink_to(program.path)
    program.expect_fault(["--graph", "kqk"], "a makefile cannot hold a name such as ./a blank or ",
                         path="./a blank")
    for name in ("a", "a/b", "/tmp/a", "../a-b_c.d", "a+b", "a@b", "a,b"):
        text = write_makefile(program, "--men", "3", "--out", name)
        expect_equal(f"\nOUT = {name}\n" in text, True, name)


def check_three_men(program, small):
    """make really makes them, two at a time; what is there is left alone."""
    write_makefile(program, "--men", "3", "--out", "out", *(["--plain"] if small else []))
    form = "" if small else PACKED
    output = make(program, "-j2", "-s")
    expect_equal(sorted(output.splitlines()), sorted(lines_of(THREE_MEN).splitlines()), "output")
    expect_equal(output.splitlines()[-1], lines_of(["kpk"]).rstrip(), "the last table")
    out = program.folder / "out"
    program.expect_known_bytes(out, files_of(THREE_MEN, form))
    expect_equal(tables_called(make(program)), [], "calls of a second run")
    # A table that is gone is made again, and the one that needs it is left alone.
    (out / f"kqk.nbb{form}").unlink()
    expect_equal(tables_called(make(program, "-n", "kpk")), ["kqk"], "calls for kqk")
    expect_equal(make(program, "-s", "kpk"), lines_of(["kqk"]), "output for kqk")
    program.expect_known_bytes(out, files_of(THREE_MEN, form))


def check_failing_program(program, _):
    """The run ends with the first table that cannot be made."""
    write_makefile(program, "kqqk", "--out", "out")
    make(program, "TBGEN=false", status=2)
    (program.folder / "out").write_text("no folder")
    make(program, "OUT=out/below", status=2)


def check_four_men(program, _):
    """Made by make, two at a time. Proved is the one table with captures en passant; for all of
    them `corvane-tbgen --men 4 --verify` takes as long as making them twice."""
    lines = dict(zip(THREE_MEN, lines_of(THREE_MEN).splitlines()))
    for row in FOUR_MEN.replace("/", "\n").strip().splitlines():
        name, first, second, won, lost = row.split()
        lines[name] = (f"{name:<6}{first:>11}{second:>11}  longest win {won}, "
                       f"of the other side {lost}")
    expect_equal(set(lines), all_tables(4), "tables known by their lengths")
    write_makefile(program, "--men", "4", "--out", "made")
    output = make(program, "-j2", "-s").splitlines()
    expect_equal(sorted(output), sorted(lines.values()), "output of make")
    check_last_section(program)


def check_last_section(program):
    """The proof sees captures en passant, whose numbers come last."""
    folder = program.folder / "made"
    for half in ("nbw", "nbb"):
        file = folder / f"kpkp.{half}"
        file.write_bytes(program.decoded(folder / f"{file.name}{PACKED}"))
    words = ["--plain", "kpkp", "--out", "made", "--verify"]
    program.expect(words, output=f"kpkp  {KPKP_POSITIONS:>22}  positions agree\n")
    file = folder / "kpkp.nbb"
    whole = bytearray(file.read_bytes())
    whole[-1] ^= 1
    file.write_bytes(whole)
    done = program.start(*words)
    expect_equal((done.returncode, done.stdout), (1, ""), "proof of a faulty table")
    if not done.stderr.startswith("corvane-tbgen: kpkp: "):
        raise Wrong(f"fault of a faulty table: {done.stderr!r}")


CHECKS = (check_needs, check_targets, check_refused_names, check_three_men, check_failing_program)

if __name__ == "__main__":
    if shutil.which("make") is None:
        raise SystemExit("make is not installed")
    run_checks(CHECKS, (check_four_men,), __doc__)
