#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What corvane-tbgen says where words make no sense, nothing can be written, or files are broken.

    program_faults.py [--small] TBGEN EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds the plain halves of all tables of three men.
"""

import os
import resource
import subprocess

from tbgen_program import (FEW, LINES, PATIENCE_SECONDS, THREE_MEN, WRONG_ARGUMENTS, Wrong,
                           bytes_in, expect_equal, expect_same, files_of, lines_of, names_in,
                           run_checks)

USAGE_BEGINS = "usage: corvane-tbgen "
NOBODY = 65534
TOO_MANY_THREADS = 257
PAGE_BYTES = 4096
DISK_BYTES = 25 * PAGE_BYTES  # three halves of seven pages, and some
IN_NAMESPACE = ["unshare", "--user", "--map-root-user", "--mount"]
# Words that make no sense, and what is said of them.
NONSENSE = (
    ([], "which tables? Name them, or say --men N"),
    (["--plain", "--verify"], "which tables? Name them, or say --men N"),
    (["kk"], "no such table: kk"),
    (["kkq"], "no such table: kkq"),
    (["kqkp1"], "no such table: kqkp1"),
    (["krkq"], "no such table: krkq"),
    (["KQK"], "no such table: KQK"),
    (["kqk.nbw"], "no such table: kqk.nbw"),
    ([""], "no such table: "),
    (["kqk", "nothing"], "no such table: nothing"),
    (["--unknown", "kqk"], "no such option: --unknown"),
    (["-men", "3"], "no such option: -men"),
    (["-"], "no such option: -"),
    (["--men=3"], "no such option: --men=3"),
    (["--men", "2"], "--men is 3, 4 or 5, not 2"),
    (["--men", "6"], "--men is 3, 4 or 5, not 6"),
    (["--men", "x"], "--men is 3, 4 or 5, not x"),
    (["--men", "3x"], "--men is 3, 4 or 5, not 3x"),
    (["--men", "-3"], "--men is 3, 4 or 5, not -3"),
    (["--men", "99999999999999999999"], "--men is 3, 4 or 5, not 99999999999999999999"),
    (["--men"], "--men needs a value"),
    (["--men", ""], "--men needs a value"),
    (["kqk", "--out"], "--out needs a value"),
    (["kqk", "--out", ""], "--out needs a value"),
    (["kqk", "--threads"], "--threads needs a value"),
    (["kqk", "--threads", "0"], "--threads is 1 to 256, not 0"),
    (["kqk", "--threads", str(TOO_MANY_THREADS)],
     f"--threads is 1 to 256, not {TOO_MANY_THREADS}"),
    (["kqk", "--threads", "two"], "--threads is 1 to 256, not two"),
)


def check_nonsense(program, _):
    """The fault comes first, then how the program is called; nothing is written."""
    usage = program.start("--help").stdout
    if not usage.startswith(USAGE_BEGINS):
        raise Wrong(f"usage: {usage!r}")
    for words, fault in NONSENSE:
        program.expect(words, WRONG_ARGUMENTS, errors=f"corvane-tbgen: {fault}\n{usage}")
    # A word that makes no sense behind others: nothing is begun.
    program.expect(["--out", "new", "kqk", "nothing"], WRONG_ARGUMENTS,
                   errors=f"corvane-tbgen: no such table: nothing\n{usage}")
    expect_equal(names_in(program.folder), [], "files")


def check_no_folder(program, _):
    """The folder is a file, or cannot be made."""
    (program.folder / "file").write_text("as before")
    for name in ("file", "file/below", "file/far/below"):
        program.expect_fault(["--out", name, "kqk"], f"{name}: Not a directory")
    (program.folder / "ring").symlink_to("ring")
    program.expect_fault(["--out", "ring/below", "kqk"],
                         "ring/below: Too many levels of symbolic links")
    expect_equal(names_in(program.folder), ["file", "ring"], "files")
    expect_equal((program.folder / "file").read_text(), "as before", "the file")


def check_forbidden_folder(program, _):
    """Root may write everywhere, so it becomes somebody else first."""
    as_nobody = {}
    if os.geteuid() == 0:
        def become_nobody():
            os.setgroups([])
            os.setgid(NOBODY)
            os.setuid(NOBODY)
        as_nobody = {"before": become_nobody}
        if not nobody_can_start(program, become_nobody):
            print("check_forbidden_folder: nobody else can start the program here")
            return
    for name in ("shut", "shut/new"):
        shut = program.folder / "shut"
        shut.mkdir(exist_ok=True)
        shut.chmod(0o555)
        fault = "shut/kqk.nbw" if name == "shut" else "shut/new"
        program.expect_fault(["--out", name, "--plain", "kqk"], f"{fault}: Permission denied",
                             **as_nobody)
        expect_equal(names_in(shut), [], "files in a folder that is shut")
        shut.chmod(0o755)


def nobody_can_start(program, become_nobody):
    """The build may lie where only its owner comes."""
    program.folder.chmod(0o755)
    try:
        return program.start("--help", before=become_nobody).returncode == 0
    except (PermissionError, subprocess.SubprocessError):
        return False


def check_name_is_taken(program, _):
    """A folder under the name of a file cannot be replaced."""
    (program.folder / "kqk.nbb").mkdir()
    program.expect_fault(["--plain", "kqk"], "kqk.nbb: Is a directory")
    expect_equal(names_in(program.folder), ["kqk.nbb", "kqk.nbw"], "files")
    expect_same((program.folder / "kqk.nbw").read_bytes(),
                program.known(program.folder / "kqk.nbw"), "kqk.nbw")


def check_files_that_grow_too_long(program, small):
    """The system allows so many bytes a file: the first one that is longer ends the run."""
    out = program.folder / "out"
    words = ["--out", "out", "--plain", "--men", "3"]
    # Halves that are shorter are there in the end, in the order of their making.
    cases = ((0, (), "knk.nbw"), (4096, (), "knk.nbw"), (26281, (), "knk.nbw"),
             (26282, (), "knk.nbb"), (28644, ("knk", "kbk", "krk", "kqk"), "kpk.nbw"),
             (81664, ("knk", "kbk", "krk", "kqk"), "kpk.nbb"))
    for largest, made, fault in cases:
        program.expect_fault(words, f"out/{fault}: File too large", made=made,
                             largest_file=largest)
        names = files_of(made, form="") + ([fault[:3] + ".nbw"] if fault.endswith("b") else [])
        program.expect_known_bytes(out, names)
        for file in out.iterdir():
            file.unlink()
    if small:
        return
    program.expect_fault(["--out", "out", "--men", "3"], "out/krk.nbw.emd: File too large",
                         made=("knk", "kbk"), largest_file=4096)
    program.expect_known_bytes(out, files_of(("knk", "kbk")))
    # The next run, with room enough, goes on from there.
    program.expect_tables(["--out", "out", "--men", "3"], ("krk", "kqk", "kpk"))
    program.expect_known_bytes(out, files_of(THREE_MEN))


def check_full_disk(program, _):
    """A small disk, seen by this test alone."""
    command = ["mount", "-t", "tmpfs", "-o", f"size={DISK_BYTES}", "tmpfs", "disk"]
    (program.folder / "disk").mkdir()
    if resource.getpagesize() != PAGE_BYTES or not can_mount(program, command):
        print("check_full_disk: no disk can be mounted here")
        return
    # The disk goes with the last program that sees it: what is on it is copied first.
    (program.folder / "kept").mkdir()
    script = (" ".join(command) + '; "$@"; status=$?; cp -r disk/. kept; exit $status')
    done = program.start(*namespace(), "sh", "-c", script, "sh", program.path, "--plain", "--out",
                         "disk", "--men", "3", path="env")
    fault = "corvane-tbgen: disk/kbk.nbb: No space left on device\n"
    expect_equal((done.returncode, done.stdout, done.stderr), (1, lines_of(["knk"]), fault),
                 "a full disk")
    program.expect_known_bytes(program.folder / "kept",
                               [*files_of(["knk"], form=""), "kbk.nbw"])


def check_read_only_disk(program, _):
    (program.folder / "disk").mkdir()
    command = ["mount", "-t", "tmpfs", "-o", "ro", "tmpfs", "disk"]
    if not can_mount(program, command):
        print("check_read_only_disk: no disk can be mounted here")
        return
    for name, fault in (("disk", "disk/kqk.nbw"), ("disk/new", "disk/new")):
        done = program.start(*namespace(), "sh", "-c", " ".join(command) + '; "$@"', "sh",
                             program.path, "--plain", "--out", name, "kqk", path="env")
        expect_equal((done.returncode, done.stdout, done.stderr),
                     (1, "", f"corvane-tbgen: {fault}: Read-only file system\n"), name)


def namespace():
    """What starts a program with mounts of its own."""
    return ["unshare", "--mount"] if os.geteuid() == 0 else IN_NAMESPACE


def can_mount(program, command):
    try:
        return subprocess.run([*namespace(), *command], cwd=program.folder, check=False,
                              timeout=PATIENCE_SECONDS, capture_output=True).returncode == 0
    except FileNotFoundError:
        return False


def check_broken_needed_tables(program, small):
    """A table that cannot be read is told by its file; nothing is made of it."""
    out = program.folder / "out"
    words = ["--out", "out", "--plain", "kqqk"]
    program.expect_tables(["--out", "out", "kqk"], ["kqk"])
    whole = bytes_in(out)
    # The queen is taken by the bare king, so that the other side is to move.
    needed = out / "kqk.nbw.emd"
    fault = "out/kqk.nbw.emd: cannot be read, or is broken"
    damages = [whole[needed.name][:-1], whole[needed.name][:-2000]]
    for place in (-1, -1000):
        damages.append(bytearray(whole[needed.name]))
        damages[-1][place] ^= 1
    for damage in damages[1:3] if small else damages:
        needed.write_bytes(damage)
        program.expect_fault(words, fault)
        program.expect_fault([*words, "--threads", "1"], fault)
        expect_equal(names_in(out), sorted(whole), "files")
    needed.write_bytes(whole[needed.name])
    program.expect_tables(words, ["kqqk"])


def check_needed_tables_of_wrong_length(program, small):
    """A file that is no table, or not so long as the half, is none: its table is made anew."""
    words = ["--out", "out", "--plain", "kqqk"]
    out = program.folder / "out"
    program.expect_tables(words, ["kqk", "kqqk"])
    good = bytes_in(out)
    half = good["kqk.nbw"]
    damages = [half[:-1], b"", b"no table", half[:1000], half + half]
    for damage in damages[:1] if small else damages:
        (out / "kqk.nbw").write_bytes(damage)
        for name in files_of(["kqqk"], form=""):
            (out / name).unlink()
        program.expect_tables(words, ["kqk", "kqqk"])
        expect_same(bytes_in(out), good, f"out after {len(damage)} bytes of kqk.nbw")
    # With the packed table at hand, no table is missing.
    program.expect_tables(["--out", "out", "kqk"], ["kqk"])
    (out / "kqk.nbw").write_bytes(half[:-1])
    (out / "kqqk.nbb").unlink()
    program.expect_tables(words, ["kqqk"])
    expect_same((out / "kqqk.nbb").read_bytes(), good["kqqk.nbb"], "kqqk.nbb")


def check_full_output(program, _):
    """Standard output that cannot be written is told; the tables are there all the same."""
    fault = "corvane-tbgen: standard output cannot be written\n"
    for words in (["--out", "out", "--plain", "--men", "3"], ["--graph", "--men", "3"]):
        with open("/dev/full", "w", encoding="ascii") as full:
            done = subprocess.run([program.path, *words], cwd=program.folder, stdout=full,
                                  stderr=subprocess.PIPE, encoding="utf-8", check=False,
                                  timeout=PATIENCE_SECONDS)
        expect_equal((done.returncode, done.stderr), (1, fault), words)


def check_no_more_threads(program, _):
    """Where the system gives no threads, one does it all."""
    if os.geteuid() != 0:
        print("check_no_more_threads: needs a user without other programs")
        return
    def alone():
        resource.setrlimit(resource.RLIMIT_NPROC, (1, 1))
        os.setgid(NOBODY)
        os.setuid(NOBODY)
    if not nobody_can_start(program, alone):
        print("check_no_more_threads: nobody else can start the program here")
        return
    program.folder.chmod(0o777)
    program.expect(["--plain", "kqk", "--threads", "8"], output=LINES["kqk"] + "\n", before=alone)
    program.expect_known_bytes(program.folder, files_of(FEW, form=""))


CHECKS = (check_nonsense, check_no_folder, check_forbidden_folder, check_name_is_taken,
          check_files_that_grow_too_long, check_full_disk, check_read_only_disk,
          check_broken_needed_tables, check_needed_tables_of_wrong_length, check_full_output,
          check_no_more_threads)

if __name__ == "__main__":
    run_checks(CHECKS, (), __doc__)
