#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Whole games under a real interface: the program in Debian's xboard, which is the referee.

First engine of two-machine matches against Debian's fairymax and against itself, at three kinds of
control, on a screen that nobody sees. Openings reach the program as moves under `force`.

    xboard_match.py <program> [--only NAME] [--keep DIR]
"""

import argparse
import collections
import concurrent.futures
import os
import shutil
import signal
import sys
import tempfile
import time
from pathlib import Path

from match_verdict import MatchVerdict
from outside_chess import OutsideEngine, OutsideFault, find_program
from xboard_run import MatchPlan, MatchRun, VirtualScreen

OPENINGS = Path(__file__).resolve().parent.parent / "data" / "openings.pgn"
AT_ONCE = 2
NEEDED_GAMES = 12
NEEDED_OF_A_COLOUR = 4
DEBUG_TAIL_LINES = 40

# In the order of starting, the long ones first. The openings are counted from 0; 6 and 7 are won
# middle games.
#
# After a jump of the score the engine thinks three times as long, and does not look at its clock
# then. With fewer than three seconds for each second of increment, or on the last two moves of a
# control, where its share is half or a third of the clock, that may cost the game. So a game at 40
# moves begins where it will be over before the fortieth, and the others have controls without end.
PLANS = (
    MatchPlan("long_control", games=4, control=("-movesPerSession", "200", "-timeControl", "0:40"),
              level="level 200 0:40 0", openings=(0, 1), limit_s=300),
    MatchPlan("increment", games=4, control=("-timeControl", "0:02", "-timeIncrement", "0.1"),
              level="level 0 0:02 0.1", openings=(2, 3), limit_s=300),
    MatchPlan("whole_seconds", games=2, control=("-timeControl", "0:30", "-timeIncrement", "1"),
              level="level 0 0:30 1", openings=(6,), limit_s=300),
    MatchPlan("forty_moves", games=4, control=("-movesPerSession", "40", "-timeControl", "0:08"),
              level="level 40 0:08 0", openings=(6, 7), limit_s=300),
    MatchPlan("itself", games=2, control=("-timeControl", "0:02", "-timeIncrement", "0.1"),
              level="level 0 0:02 0.1", openings=(4,), limit_s=300, against_itself=True),
    MatchPlan("fixed_depth", games=4, control=("-movesPerSession", "40", "-timeControl", "5"),
              level="level 40 5 0", openings=(5, 7), limit_s=300, depth=5),
)


def run_match(plan, options, logs, display):
    """Plays and judges one match; its verdict, and how long it took."""
    started = time.monotonic()
    match = MatchRun(plan, options.program, OPENINGS, logs / plan.name)
    trouble = match.run(display)
    with OutsideEngine() as outside:
        verdict = MatchVerdict(match, outside)
        if trouble:
            verdict.faults.append(trouble)
        verdict.judge()
    seconds = time.monotonic() - started
    ends = ", ".join(f"{count} {end}" for end, count in collections.Counter(verdict.ends).items())
    print(f"{plan.name}: {verdict.counted} of {plan.games} games to a proper end ({ends}), "
          f"{verdict.moves} half moves, {verdict.interrupts} interrupt signals, {seconds:.0f} s",
          flush=True)
    return verdict


def show_faults(verdict):
    run = verdict.run
    debug = run.read(run.debug_file).splitlines()
    print(f"\n--- {verdict.plan.name}: tail of {run.debug_file}")
    print("\n".join(debug[-DEBUG_TAIL_LINES:]))
    print(f"--- {verdict.plan.name}: xboard said: {run.read(run.xboard_file).strip()[-2000:]}")
    for fault, times in collections.Counter(verdict.faults).items():
        print(f"FAILED {verdict.plan.name}: {fault}" + (f" ({times} times)" if times > 1 else ""))


def find_faults(verdicts, plans):
    """Faults of the run as a whole, after the matches were judged one by one."""
    faults = []
    counted = sum(verdict.counted for verdict in verdicts)
    white = sum(verdict.as_white for verdict in verdicts)
    if len(plans) == len(PLANS):
        if counted < NEEDED_GAMES:
            faults.append(f"{counted} games to a proper end, fewer than {NEEDED_GAMES}")
        if min(white, counted - white) < NEEDED_OF_A_COLOUR:
            faults.append(f"{white} games with White and {counted - white} with Black, "
                          f"fewer than {NEEDED_OF_A_COLOUR} of one")
    elif counted == 0:
        faults.append("no game to a proper end")
    return faults


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=Path)
    parser.add_argument("--only", choices=[plan.name for plan in PLANS], help="one match alone")
    parser.add_argument("--keep", type=Path, default=os.environ.get("CORVANE_GAME_LOGS"),
                        help="folder for games and logs (or the variable CORVANE_GAME_LOGS)")
    options = parser.parse_args()
    options.program = options.program.resolve()
    return options


def main():
    # A break at the keyboard ends us at once; xboard and the screen end with us.
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    options = parse_options()
    logs = Path(options.keep or tempfile.mkdtemp(prefix="corvane-games-")).resolve()
    logs = logs / "xboard_match"
    plans = [plan for plan in PLANS if options.only in (None, plan.name)]
    started = time.monotonic()
    try:
        for name in ("xboard", "fairymax", "pgn-extract", "stockfish"):
            find_program(name)
        with VirtualScreen() as screen, \
                concurrent.futures.ThreadPoolExecutor(max_workers=AT_ONCE) as pool:
            verdicts = list(pool.map(
                lambda plan: run_match(plan, options, logs, screen.display), plans))
    except OutsideFault as fault:
        print(f"xboard_match: FAILED: {fault}")
        return 1
    for verdict in verdicts:
        if verdict.faults:
            show_faults(verdict)
    faults = find_faults(verdicts, plans)
    for fault in faults:
        print(f"FAILED: {fault}")
    failed = faults or any(verdict.faults for verdict in verdicts)
    print(f"xboard_match: {'FAILED' if failed else 'passed'}; "
          f"{sum(verdict.counted for verdict in verdicts)} games to a proper end, "
          f"{sum(verdict.as_white for verdict in verdicts)} of them with White, "
          f"{time.monotonic() - started:.0f} s" + (f"; logs in {logs}" if failed else ""))
    if not failed and not options.keep:
        shutil.rmtree(logs.parent)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
