#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Ends corvane-tbgen by force at many moments: what lies under a final name then is whole.

    program_interrupt.py [--small | --long] TBGEN EMD_PACK TABLE_FOLDER

TABLE_FOLDER holds the plain halves of all tables of three men.
"""

import shutil
import signal
import subprocess
import time

from tbgen_program import (FEW, HALVES, PACKED, PATIENCE_SECONDS, THREE_MEN, Wrong, bytes_in,
                           expect_equal, expect_same, expect_same_folders, files_of, lines_of,
                           run_checks)

PART = ".part"
SIGNALS = (signal.SIGKILL, signal.SIGINT, signal.SIGTERM)
MOMENTS = 24
FEWEST_HITS = 8
SMALL_MOMENTS = 6
SMALL_FEWEST_HITS = 2


class Series:
    """Runs of the same words that are ended at different moments."""

    def __init__(self, program, words, made, moments, fewest_hits):
        self.program = program
        self.words = words
        self.made = made
        self.moments = moments
        self.fewest_hits = fewest_hits
        self.whole = program.folder / "whole"
        self.out = program.folder / "out"
        self.hits = 0

    def run(self):
        start = time.monotonic()
        self.program.expect_tables([*self.words, "--out", self.whole.name], self.made)
        duration = time.monotonic() - start
        for i in range(self.moments):
            self._end_at(duration * (i + 0.5) / self.moments, SIGNALS[i % len(SIGNALS)])
        if self.hits < self.fewest_hits:
            raise Wrong(f"only {self.hits} of {self.moments} runs were ended by force")

    def _end_at(self, seconds, signal_number):
        shutil.rmtree(self.out, ignore_errors=True)
        run = self.program.begin(*self.words, "--out", self.out.name, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, encoding="utf-8")
        try:
            run.wait(seconds)
        except subprocess.TimeoutExpired:
            run.send_signal(signal_number)
        output, errors = run.communicate(timeout=PATIENCE_SECONDS)
        if run.returncode == -signal_number:
            self.hits += 1
        else:
            expect_equal(run.returncode, 0, "exit status of a run that came to its end")
        expect_equal(errors, "", "errors")
        finished = [line for line in lines_of(self.made).splitlines() if line in output]
        expect_equal(output.splitlines(), finished, "lines")
        expect_good_files(self.program, self.out, self.whole)
        expect_next_run_completes(self.program, self.words, self.out, self.whole, self.made)


def expect_good_files(program, out, whole):
    """Each file under a final name is that of a run that came to its end, and can be decoded."""
    files = [] if not out.exists() else [file for file in out.iterdir() if file.suffix != PART]
    for file in files:
        expect_same(file.read_bytes(), (whole / file.name).read_bytes(), file)
        if program.decoded(file) == b"":
            raise Wrong(f"{file} is empty")


def expect_next_run_completes(program, words, out, whole, made):
    """The tables that were there are left alone; the others are made."""
    before = [] if not out.exists() else [file.name for file in out.iterdir()]
    form = "" if "--plain" in words else PACKED
    left = [table for table in made
            if any(f"{table}.{half}{form}" not in before for half in HALVES)]
    program.expect_tables([*words, "--out", out.name], left)
    for file in list(out.iterdir()):
        if file.suffix == PART:
            file.unlink()
    expect_same_folders(out, whole)


def check_packed(program, small):
    moments, hits = (2, 1) if small else (SMALL_MOMENTS, SMALL_FEWEST_HITS)
    Series(program, FEW, FEW, moments, hits).run()
    program.expect_known_bytes(program.folder / "whole", files_of(FEW))


def check_packed_three_men(program, _):
    Series(program, ["--men", "3"], THREE_MEN, MOMENTS, FEWEST_HITS).run()
    program.expect_known_bytes(program.folder / "whole", files_of(THREE_MEN))


def check_three_men(program, small):
    """Little but writing: the moments lie close."""
    moments, hits = (SMALL_MOMENTS, SMALL_FEWEST_HITS) if small else (MOMENTS, FEWEST_HITS)
    Series(program, ["--plain", "--men", "3"], THREE_MEN, moments, hits).run()


def check_four_men(program, small):
    """Two threads at work when the end comes."""
    if not small:
        Series(program, ["--plain", "--threads", "2", "krkn"], ["knk", "krk", "krkn"],
               MOMENTS, FEWEST_HITS).run()


def check_packed_four_men(program, _):
    Series(program, ["krkn"], ["knk", "krk", "krkn"], MOMENTS, FEWEST_HITS).run()


def check_end_within_a_file(program, small):
    """The system ends the program at a byte of our choice, in the middle of writing a file."""
    words = ["--plain", "--men", "3"]
    out, whole = program.folder / "out", program.folder / "whole"
    program.expect_tables([*words, "--out", whole.name], THREE_MEN)
    lengths = sorted({len(file) for file in bytes_in(whole).values()})
    ends = [0, 1, 4096, 20000, *(length - 1 for length in lengths)]
    for largest in ends[1:4] if small else ends:
        shutil.rmtree(out, ignore_errors=True)
        done = program.start(*words, "--out", out.name, largest_file=largest,
                             before=lambda: signal.signal(signal.SIGXFSZ, signal.SIG_DFL))
        expect_equal((done.returncode, done.stderr), (-signal.SIGXFSZ, ""), f"{largest} bytes")
        parts = [file for file in out.iterdir() if file.suffix == PART]
        expect_equal([part.stat().st_size for part in parts], [largest], "length of the part")
        expect_good_files(program, out, whole)
        expect_next_run_completes(program, words, out, whole, THREE_MEN)


def check_runs_side_by_side(program, small):
    """Several runs in one folder at once: each does the whole work, none disturbs another."""
    words = ["--plain", "--men", "3", "--threads", "1"]
    program.expect_tables([*words, "--out", "whole"], THREE_MEN)
    for _ in range(1 if small else 5):
        shutil.rmtree(program.folder / "out", ignore_errors=True)
        runs = [program.begin(*words, "--out", "out", stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") for _ in range(4)]
        errors = [run.communicate(timeout=PATIENCE_SECONDS)[1] for run in runs]
        expect_equal([run.returncode for run in runs], [0] * len(runs), f"status beside {errors}")
        expect_equal(errors, [""] * len(runs), "errors of runs side by side")
        expect_same_folders(program.folder / "out", program.folder / "whole")


CHECKS = (check_packed, check_three_men, check_four_men, check_end_within_a_file,
          check_runs_side_by_side)
LONG_CHECKS = (check_packed_three_men, check_packed_four_men)

if __name__ == "__main__":
    run_checks(CHECKS, LONG_CHECKS, __doc__)
