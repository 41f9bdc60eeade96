#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Speed of two builds, from runs of their signature programs in turns.

usage: compare.py [--pairs N] OLD NEW

Each pair runs both programs, the first one by turns, so that a machine that grows warm slows both.
The result is the median of new speed over old speed, with the lowest and the highest pair. Equal
trees are a condition: where the node counts differ, speeds say nothing, and the status is 1.
"""

import argparse
import re
import statistics
import subprocess
import sys

SPEED = re.compile(r"^nodes per second\s+(\d+)\s*$", re.MULTILINE)
# Lines that differ from run to run; all other output is the signature.
TIMING = re.compile(r"^(?:milliseconds|nodes per second)\b")


class Failure(Exception):
    """A run that gives nothing to compare; the text is for the user."""


def parse(output):
    """Signature and nodes per second in the output of one run."""
    match = SPEED.search(output)
    if not match or int(match.group(1)) == 0:
        raise Failure("no line 'nodes per second' with a number above 0 in the output")
    signature = [line for line in output.splitlines() if not TIMING.match(line)]
    if not signature:
        raise Failure("no node counts in the output")
    return signature, int(match.group(1))


def run(program):
    """One run of a signature program. Both streams count: its times may stand in either."""
    done = subprocess.run([program], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        raise Failure(f"{program} ended with status {done.returncode}:\n{done.stdout}")
    return parse(done.stdout)


def measure(old, new, pairs, report=lambda text: None, run_one=run):
    """Ratios of new over old speed, one a pair. Raises Failure where the signatures differ."""
    ratios = []
    for pair in range(pairs):
        first_new = pair % 2 == 1
        results = {}
        for program, is_new in ((new, True), (old, False)) if first_new else \
                ((old, False), (new, True)):
            results[is_new] = run_one(program)
        (old_signature, old_speed), (new_signature, new_speed) = results[False], results[True]
        if old_signature != new_signature:
            different = [f"  old: {a}\n  new: {b}"
                         for a, b in zip(old_signature, new_signature) if a != b]
            raise Failure("the signatures differ\n" + "\n".join(
                different[:5] or ["  one of them has more lines"]))
        ratios.append(new_speed / old_speed)
        report(f"pair {pair + 1}: old {old_speed}, new {new_speed} nodes per second, "
               f"ratio {ratios[-1]:.3f}")
    return ratios


def summary(ratios):
    return (f"median {statistics.median(ratios):.3f}x of the old speed over {len(ratios)} pairs "
            f"(lowest {min(ratios):.3f}, highest {max(ratios):.3f}); signatures equal")


def main(arguments):
    parser = argparse.ArgumentParser(description="Speed of two builds, from runs in turns.")
    parser.add_argument("--pairs", type=int, default=7)
    parser.add_argument("old")
    parser.add_argument("new")
    options = parser.parse_args(arguments)
    if options.pairs < 1:
        parser.error("--pairs must be at least 1")
    try:
        ratios = measure(options.old, options.new, options.pairs,
                         lambda text: print(text, file=sys.stderr, flush=True))
    except (Failure, OSError) as failure:
        print(f"compare: {failure}", file=sys.stderr)
        return 1
    print(summary(ratios))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
