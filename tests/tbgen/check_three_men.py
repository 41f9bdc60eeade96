#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares endgame tables of three men with endings that are solved the plain way.

    check_three_men.py [--seed N] [--positions N | --all] TB_VALUE DIR...

TB_VALUE is the program that tells the stored bytes, DIR the folders with the tables. Of each table
10,000 legal positions are drawn, or as many as told, or all are taken: half of them with the
stronger side to move, half of them with the colours exchanged. All the longest wins are asked for
as well. Every byte has to be that of the solver. Exit status 1 if one is not, or if fewer than
10,000 of a table were compared.
"""

import argparse
import os
import random
import subprocess
import sys
import time

from plain_solver import BLACK, FILES, MATES, SQUARES, WHITE, solve_all, squares_of

LEAST_POSITIONS = 10000
SEED = 20261
SHOWN_DIFFERENCES = 5
PATIENCE_SECONDS = 240
TABLES = {"p": "kpk", "n": "knk", "b": "kbk", "r": "krk", "q": "kqk"}
LONGEST_WINS = {"kpk": 28, "knk": 0, "kbk": 0, "krk": 16, "kqk": 10}
TURN_BOARD_OVER = SQUARES - FILES  # changes the rank of a square, not its file


class ProgramFault(Exception):
    """The program that tells the bytes does not do so."""


def fen_of(man, position, exchanged):
    """Text of a position. Exchanged: the man is Black's, and the board is turned over."""
    side, king, other, square = squares_of(position)
    men = {king: "K", other: "k", square: man.upper()}
    if exchanged:
        men = {at ^ TURN_BOARD_OVER: letter.swapcase() for at, letter in men.items()}
        side = BLACK if side == WHITE else WHITE
    rows = []
    for first in range(SQUARES - FILES, -1, -FILES):
        row, empty = "", 0
        for at in range(first, first + FILES):
            if at in men:
                row += (str(empty) if empty else "") + men[at]
                empty = 0
            else:
                empty += 1
        rows.append(row + (str(empty) if empty else ""))
    return f"{'/'.join(rows)} {'w' if side == WHITE else 'b'} - - 0 1"


def draw_positions(ending, count, draw):
    """Positions in random order, half of them of each side to move; all where `count` is None."""
    chosen = []
    for side in (WHITE, BLACK):
        positions = ending.positions(side)
        wanted = len(positions) if count is None else (count + side) // 2
        chosen += draw.sample(positions, min(wanted, len(positions)))
    draw.shuffle(chosen)
    return chosen


def longest_wins(ending):
    """Positions in which White needs the most moves; none where nobody wins."""
    distance = ending.longest_win()
    return [position for position in ending.positions(WHITE)
            if distance and ending.value[position] == MATES - distance]


def ask(program, folders, fens):
    """The program's answers, one a position."""
    done = subprocess.run([program, ",".join(folders)], input="\n".join(fens) + "\n",
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                          timeout=PATIENCE_SECONDS, check=False)
    answers = done.stdout.splitlines()
    if done.returncode != 0 or len(answers) != len(fens):
        raise ProgramFault(f"{program}: exit status {done.returncode}, {len(answers)} answers to "
                           f"{len(fens)} positions: {done.stderr.strip()}")
    return answers


def differences(man, ending, positions, program, folders):
    """(text, expected byte, answer) of each position whose answer is another."""
    fens = [fen_of(man, position, exchanged=i % 2 == 1) for i, position in enumerate(positions)]
    expected = [str(ending.value[position]) for position in positions]
    answers = ask(program, folders, fens)
    return [row for row in zip(fens, expected, answers) if row[1] != row[2]]


def check_table(man, ending, options, draw):
    """Prints what came out of one table. True if all is well."""
    name = TABLES[man]
    positions = draw_positions(ending, None if options.all else options.positions, draw)
    compared = len(positions)
    longest = longest_wins(ending)
    wrong = differences(man, ending, positions + longest, options.program, options.folders)
    print(f"{name}: {compared} positions and {len(longest)} longest wins compared, "
          f"{len(wrong)} differ; longest win {ending.longest_win()}")
    for fen, expected, answer in wrong[:SHOWN_DIFFERENCES]:
        print(f"    {fen}: stored {answer}, solved {expected}")
    good = not wrong
    if compared < LEAST_POSITIONS:
        print(f"    fewer than {LEAST_POSITIONS} positions")
        good = False
    if ending.longest_win() != LONGEST_WINS[name]:
        print(f"    the longest win should be {LONGEST_WINS[name]}")
        good = False
    return good


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, default=SEED)
    size = parser.add_mutually_exclusive_group()
    size.add_argument("--positions", type=int, default=LEAST_POSITIONS)
    size.add_argument("--all", action="store_true")
    parser.add_argument("program", metavar="TB_VALUE")
    parser.add_argument("folders", metavar="DIR", nargs="+")
    options = parser.parse_args()
    options.program = os.path.abspath(options.program)
    return options


def main():
    options = parse_arguments()
    print(f"seed {options.seed}")
    draw = random.Random(options.seed)
    start = time.monotonic()
    endings = solve_all()
    print(f"solved in {time.monotonic() - start:.1f} seconds", flush=True)
    try:
        good = [check_table(man, endings[man], options, draw) for man in TABLES]
    except (ProgramFault, OSError, subprocess.TimeoutExpired) as fault:
        print(f"check_three_men: {fault}")
        return 1
    return 0 if all(good) else 1


if __name__ == "__main__":
    sys.exit(main())
