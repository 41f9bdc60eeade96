#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs transcripts: sessions of the real program, compared whole with what it should print.

    run.py PROGRAM                     every transcript of this folder
    run.py PROGRAM 100_quit.txt ...    the named ones
    run.py PROGRAM --update FILE ...   print the actual text in transcript form; no file is changed
    run.py --list                      the names of all transcripts

The program runs in an empty temporary folder. Its standard output, corvane.log and every file of
the folder and below are compared byte for byte, its exit status has to be 0 unless another one is
told, and its standard error empty.

A transcript is read line by line. A keyword stands in columns 1 to 6, its text from column 8 on:

    # text                  a comment; empty lines are passed over
    file   NAME TEXT        a line of a file put there before the run; without TEXT an empty file
    copy   NAME FROM        the bytes of tests/data/FROM added to a file put there before the run
    copy   NAME FROM A:B    of them only those from place A on, and before place B; either may lack
    folder NAME             an empty folder put there before the run, to be left empty
    link   NAME TARGET      a symbolic link put there before the run
    send   TEXT             a line of standard input
    stdout TEXT             a line of standard output
    log    TEXT             a line of corvane.log
    both   TEXT             a line of standard output that is in corvane.log too
    log    as stdout        here the log holds all that this run printed
    log    as before        here the log holds what it held before this run
    leaves NAME TEXT        a line of a file as the run leaves it; without TEXT an empty file
    absent NAME             no such file after the run
    status NUMBER           the exit status of this run
    run                     ends one run and begins the next, in the same folder

Sends and outputs may be mixed as the session went: only the order within a stream counts. Lines of
`file` and `copy` for one NAME add up, and a NAME may lie in a folder, which is then made. A file
that is not under `leaves` or `absent` has to be as it was, and no other file may appear. Something
has to be said of the log for every run.

A TEXT of `@name` alone stands for the lines of fragments/name.txt. In every TEXT:

    \\s blank, at the end of a line   \\\\ backslash   \\r \\n \\t control characters   \\xHH a byte
    \\c at the end: no line end follows   \\*N{TEXT} the text N times

Times and what is reckoned from them are the only things that are masked. `<t>` stands for the time
in a thinking line, in a perft line (together with the speed), and in the log's lines on the clock;
a time longer than the run itself is not accepted there. Thinking lines count hundredths of a
second, but milliseconds from "Start..." to "move: " in a suite of test positions. `<s>` stands for
a speed of such a suite, up to a hundred million nodes a second.
"""

import argparse
import difflib
import os
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True  # this folder holds nothing that is not under test

from notation import HERE, LOG, TranscriptError, encoded_lines, parse  # noqa: E402

SHOWN_WIDTH = 200
HIGHEST_SPEED = 100000  # thousands of nodes a second
MOVE = r"(?:[a-h][1-8][a-h][1-8][qrbn]? |     )"


# --- times --------------------------------------------------------------------------------------


def mask(line, run_ms, in_suite):
    """The line with its time as <t> or its speed as <s>, if it has one and it is possible."""
    ticks = 2**32
    thinking = run_ms if in_suite else run_ms / 10
    for pattern, limit, sign in (
        (r"^(?P<head>\d+ -?\d+ )(?P<time>\d+)(?P<tail> \d+ %s*)$" % MOVE, thinking, "<t>"),
        (r"^(?P<head>\d+ \d+  \d+  time: )(?P<time>\d+)(?: speed \d+)?(?P<tail>)$", run_ms, "<t>"),
        (r"^(?P<head>>>>>>>> Used time: )(?P<time>\d+)(?P<tail>)$", run_ms, "<t>"),
        (
            r"^(?P<head>>>>>>>> Time for analyze: time_begin = )(?P<time>\d+)(?P<tail>)$",
            ticks,
            "<t>",
        ),
        (r"^(?P<head><<<<<<<  UKRALI VREMJA: )(?P<time>-?\d+)(?P<tail>)$", ticks, "<t>"),
        (
            r"^(?P<head>(?:Ok |Error |Max|Min)?Speed: )(?P<time>\d+)(?P<tail> KNodes/sec)$",
            HIGHEST_SPEED,
            "<s>",
        ),
    ):
        match = re.match(pattern, line)
        if match and int(match["time"]) <= limit:
            return match["head"] + sign + match["tail"]
    return line


def masked(actual, expected, run_ms):
    """`actual` with times masked on the lines that `expected` does not hold to the digit."""
    known = set(expected.split("\n"))
    lines = []
    in_suite = False
    for line in actual.split("\n"):
        in_suite = line == "Start..." or (in_suite and not line.startswith("move: "))
        lines.append(line if line in known else mask(line, run_ms, in_suite))
    return "\n".join(lines)


def masked_log(actual, held, expected, run_ms):
    """The log likewise, but for what it held before the run, which has to stand there unchanged."""
    kept = held if expected.startswith(held) and actual.startswith(held) else ""
    return kept + masked(actual[len(kept) :], expected[len(kept) :], run_ms)


# --- running and comparing ----------------------------------------------------------------------


def shorten(line):
    if len(line) <= SHOWN_WIDTH:
        return line
    return f"{line[:SHOWN_WIDTH]}... ({len(line)} characters)"


def difference(what, expected, actual):
    """A unified diff, empty if the two texts are equal byte for byte."""
    if expected == actual:
        return []
    lines = difflib.unified_diff(
        encoded_lines(expected),
        encoded_lines(actual),
        f"{what} expected",
        f"{what} actual",
        lineterm="",
    )
    return [shorten(line) for line in lines]


class Outcome:
    """What a run of the program left behind."""

    def __init__(self, status, stdout, stderr, tree, run_ms):
        self.status = status
        self.stdout = stdout
        self.stderr = stderr
        self.tree = tree
        self.run_ms = run_ms


def read_tree(folder):
    """Every entry below the folder: the text of a file, None for an empty folder."""
    tree = {}
    for entry in sorted(folder.rglob("*")):
        name = entry.relative_to(folder).as_posix()
        if entry.is_symlink():
            tree[name] = f"(a link to {os.readlink(entry)})"
        elif not entry.is_dir():
            tree[name] = entry.read_bytes().decode("latin-1")
        elif not any(entry.iterdir()):
            tree[name] = None
    return tree


def prepare(folder, run):
    for name in run.folders:
        (folder / name).mkdir(parents=True)
    for name, text in run.files.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(text.encode("latin-1"))
    for name, target in run.links.items():
        (folder / name).symlink_to(target)


def execute(program, folder, stdin, timeout):
    begin = time.monotonic()
    try:
        done = subprocess.run(
            [program],
            cwd=folder,
            input=stdin.encode("latin-1"),
            capture_output=True,
            timeout=timeout,
        )
        status, out, err = done.returncode, done.stdout, done.stderr
    except subprocess.TimeoutExpired as late:
        status, out, err = f"none within {timeout} s", late.stdout or b"", late.stderr or b""
    run_ms = (time.monotonic() - begin) * 1000 + 10
    texts = [text.decode("latin-1") for text in (out, err)]
    return Outcome(status, texts[0], texts[1], read_tree(folder), run_ms)


def expected_tree(run, before):
    """The folder as the run should leave it, given the folder as it was before the run."""
    tree = dict(before)
    tree.update(run.leaves)
    if run.log_parts:
        tree[LOG] = run.expected_log(before.get(LOG) or "")
    for name in run.absent:
        tree.pop(name, None)
    return tree


def compare(run, before, outcome):
    """The lines of a report; empty if the run went as told."""
    report = []
    if outcome.status != run.status:
        report.append(f"exit status {outcome.status} instead of {run.status}")
    report += difference("standard error", "", outcome.stderr)
    actual = masked(outcome.stdout, run.stdout, outcome.run_ms)
    report += difference("standard output", run.stdout, actual)
    expected = expected_tree(run, before)
    for name in sorted(expected.keys() | outcome.tree.keys()):
        if name not in expected:
            report.append(f"unexpected file: {name}")
            report += difference(name, "", outcome.tree[name] or "")
        elif name not in outcome.tree:
            report.append(f"missing file: {name}")
        elif expected[name] is None or outcome.tree[name] is None:
            if expected[name] != outcome.tree[name]:
                report.append(f"{name}: not the empty folder or the file that it should be")
        else:
            text = outcome.tree[name]
            if name == LOG:
                held = before.get(LOG) or ""
                text = masked_log(text, held, expected[name], outcome.run_ms)
            report += difference(name, expected[name], text)
    return report


def print_actual(number, run, before, outcome):
    """The run's outputs in transcript form, for pasting after a look at every line."""
    print(f"# run {number}: exit status {outcome.status}, standard error {outcome.stderr!r}")
    stdout = masked(outcome.stdout, run.stdout, outcome.run_ms)
    for line in encoded_lines(stdout):
        print(f"stdout {line}".rstrip())
    for name, text in outcome.tree.items():
        if name == LOG and text is not None:
            held = before.get(LOG) or ""
            if text.startswith(held) and held:
                print("log    as before")
                text = text[len(held) :]
            if text == outcome.stdout:
                print("log    as stdout")
                continue
            for line in encoded_lines(masked(text, run.expected_log(held), outcome.run_ms)):
                print(f"log    {line}".rstrip())
        elif before.get(name, "") != text:
            for line in encoded_lines(text or ""):
                print(f"leaves {name}    {line}".rstrip())
    for name in before.keys() - outcome.tree.keys():
        print(f"absent {name}")
    if outcome.status != 0:
        print(f"status {outcome.status}")


def run_transcript(program, path, timeout, update):
    """Plays one transcript; returns the report, empty if all went as told."""
    report = []
    with tempfile.TemporaryDirectory(prefix="transcript-") as name:
        folder = Path(name)
        for number, run in enumerate(parse(path), 1):
            prepare(folder, run)
            before = read_tree(folder)
            outcome = execute(program, folder, run.stdin, timeout)
            if update:
                print_actual(number, run, before, outcome)
                continue
            faults = compare(run, before, outcome)
            if faults:
                report += [f"run {number}:"] + faults
    return report


def all_transcripts():
    return sorted(HERE.glob("[0-9][0-9][0-9]_*.txt"))


def find(name):
    path = Path(name)
    return path if path.exists() else HERE / name


def main():
    parser = argparse.ArgumentParser(description="Runs transcripts of the engine.")
    parser.add_argument("program", nargs="?", help="path of the engine")
    parser.add_argument("files", nargs="*", help="transcripts; all if none is named")
    parser.add_argument("--list", action="store_true", help="print the names of all transcripts")
    parser.add_argument("--update", action="store_true", help="print the actual text only")
    parser.add_argument("--timeout", type=float, default=60, help="seconds for one run (60)")
    arguments = parser.parse_intermixed_args()
    if arguments.list:
        print("\n".join(path.name for path in all_transcripts()))
        return 0
    if arguments.program is None:
        parser.error("the path of the engine is missing")
    program = os.path.abspath(arguments.program)
    paths = [find(name) for name in arguments.files] or all_transcripts()
    if not paths:
        parser.error("no transcript found")
    failed = 0
    for path in paths:
        try:
            report = run_transcript(program, path, arguments.timeout, arguments.update)
        except (TranscriptError, OSError) as fault:
            report = [str(fault)]
        if report:
            failed += 1
            print(f"FAILED {path.name}", *report, sep="\n")
    if not arguments.update:
        print(f"{len(paths)} transcripts, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
