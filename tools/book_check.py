#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the opening book to its word: legal games, no needless copies, no bad move taught.

Reads the PGN files that the book is made from. pgn-extract plays the games; stockfish judges the
position after every move of a side that a game teaches; --book compares the finished book with
the games. Prints the faults, a line each, then a summary in Markdown.
"""

import argparse
import os
import re
import signal
import sys
from collections import Counter, defaultdict

from book_games import BLACK, MOST_PLIES, WHITE, OutsideFault, distinct_games, read_games
from book_scores import find_scores

BOOK_FILES = {"cwhite": WHITE, "cblack": BLACK}
MOST_BOOK_LINES = 2500  # empty ones counted: what the engine holds of one file
BOOK_LINE = re.compile(r"(?:[a-h][1-8][a-h][1-8])+")
FIRST_MOVES = {"e2e4": "e4", "d2d4": "d4", "c2c4": "c4", "g1f3": "Nf3"}


def taught_plies(game):
    """(side, index of the move) for every move of a side that the game teaches."""
    for ply in range(len(game.moves)):
        side = WHITE if ply % 2 == 0 else BLACK
        if side in game.sides:
            yield side, ply


def in_pawns(centipawns):
    return f"{centipawns / 100:+.2f}"


def judge_moves(distinct, scores, limit):
    """Faults below the limit, and for each side its worst (centipawns, game, index of the move).

    A position without a score is passed over: the run was interrupted.
    """
    faults, worst = [], {}
    for game, _ in distinct:
        for side, ply in taught_plies(game):
            score = scores.get(game.positions[ply])
            if score is None:
                continue
            score = score if side == WHITE else -score
            if side not in worst or score < worst[side][0]:
                worst[side] = (score, game, ply)
            if score < round(limit * 100):
                faults.append(f"{game.place}: {game.name}: {side} stands at {in_pawns(score)} "
                              f"after {game.move_text(ply)} ({game.moves[ply]})")
    return faults, worst


def compare_book(folder, games):
    """Faults of the two book files against the games they are made from."""
    faults = []
    for name, side in BOOK_FILES.items():
        path = os.path.join(folder, name)
        with open(path, encoding="ascii", errors="replace", newline="\n") as file:
            lines = file.read().removesuffix("\n").split("\n")
        if len(lines) > MOST_BOOK_LINES:
            faults.append(f"{path}: {len(lines)} lines, more than {MOST_BOOK_LINES}")
        wanted = defaultdict(list)
        for game in games:
            if side in game.sides:
                wanted[game.book_text].append(game)
        for number, line in enumerate(lines, 1):
            if not line:
                continue
            if not BOOK_LINE.fullmatch(line):
                faults.append(f"{path}:{number}: not a row of moves: {line}")
            elif wanted[line]:
                wanted[line].pop()
            else:
                faults.append(f"{path}:{number}: no game gives it: {line}")
        for text, left in wanted.items():
            faults += [f"{path}: line missing: {text} ({game.place}, {game.name})" for game in left]
    return faults


def shares(counter):
    total = sum(counter.values())
    return ", ".join(f"{move} {100 * count / total:.1f}%" for move, count in
                     sorted(counter.items(), key=lambda item: (-item[1], item[0]))) or "none"


def rows_of_games(distinct):
    """Rows of the summary that need no scores: (name, value)."""
    lengths = [len(game.moves) for game, _ in distinct]
    yield "games", f"{len(distinct)} distinct, {sum(copies for _, copies in distinct)} with repeats"
    for side in (WHITE, BLACK):
        taught = [(game, copies) for game, copies in distinct if side in game.sides]
        yield (f"games taught to {side}",
               f"{len(taught)} distinct, {sum(copies for _, copies in taught)} with repeats")
        yield f"openings taught to {side}", str(len({game.opening for game, _ in taught}))
    if lengths:
        yield ("plies of a game", f"{min(lengths)} to {max(lengths)}, "
               f"mean {sum(lengths) / len(lengths):.1f}")
    first = Counter()
    replies = {name: Counter() for name in FIRST_MOVES}
    for game, copies in distinct:
        if WHITE in game.sides:
            first[game.san[0]] += copies
        if BLACK in game.sides and game.moves[0] in replies:
            replies[game.moves[0]][game.san[1]] += copies
    yield "first moves of White", shares(first)
    for move, counter in replies.items():
        yield f"replies to {FIRST_MOVES[move]}", shares(counter)


def rows_of_scores(engine, options, positions, scores, worst):
    judged = len(scores) if len(scores) == positions else f"{len(scores)} of {positions}"
    yield "positions judged", str(judged)
    yield "judge", f"{engine}, depth {options.depth}, limit {options.limit:+.2f}"
    for side in (WHITE, BLACK):
        if side in worst:
            score, game, ply = worst[side]
            yield (f"worst score of {side}",
                   f"{in_pawns(score)}, {game.name} after {game.move_text(ply)}")


def check(options):
    """Faults and rows of the summary."""
    games, faults = read_games(options.pgn)
    distinct, more = distinct_games(games)
    faults += more
    rows = list(rows_of_games(distinct))
    if options.book is not None:
        faults += compare_book(options.book, games)
    if not options.legal_only:
        positions = list(dict.fromkeys(game.positions[ply] for game, _ in distinct
                                       for _, ply in taught_plies(game)))
        engine, scores = find_scores(positions, options.depth, options.engine, options.cache,
                                     options.jobs)
        bad, worst = judge_moves(distinct, scores, options.limit)
        faults += bad
        if len(scores) < len(positions):
            faults.append(f"interrupted: {len(scores)} of {len(positions)} positions judged")
        rows += rows_of_scores(engine, options, len(positions), scores, worst)
    return faults, rows


def at_least_one(text):
    if int(text) < 1:
        raise argparse.ArgumentTypeError("must be at least 1")
    return int(text)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("pgn", nargs="+", metavar="PGN")
    parser.add_argument("--depth", type=at_least_one, default=14, help="plies (default 14)")
    parser.add_argument("--limit", type=float, default=-0.70,
                        help="pawns; a taught side must not stand worse (default -0.70)")
    parser.add_argument("--cache", metavar="FILE", help="scores found before; new ones are added")
    parser.add_argument("--legal-only", action="store_true", help="judge no position")
    parser.add_argument("--engine", default="stockfish", help="program that judges")
    parser.add_argument("--jobs", type=at_least_one, default=1,
                        help="judging processes (default 1)")
    parser.add_argument("--book", metavar="DIR", help="compare DIR/cwhite and DIR/cblack")
    return parser.parse_args()


def main():
    options = read_options()
    try:
        faults, rows = check(options)
    except (OutsideFault, OSError, UnicodeDecodeError) as fault:
        print(f"book_check: {fault}", file=sys.stderr)
        return 2
    except KeyboardInterrupt:
        print("book_check: interrupted", file=sys.stderr)
        return 2
    for fault in faults:
        print(fault)
    if faults:
        print()
    print("| what | value |\n|---|---|")
    for name, value in [*rows, ("failures", str(len(faults)))]:
        print(f"| {name} | {value} |")
    return 1 if faults else 0


if __name__ == "__main__":
    # `timeout` ends a long run so; what has been judged by then is kept and told.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    sys.exit(main())
