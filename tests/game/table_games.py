#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Endgames of three men with the endgame tables at hand, over the program's pipes.

From a game down to one man beside the kings both sides wander about at random; then the program
moves twice, once for either side. Its moves have to be legal, its scores those of a table, the same
for both sides, and won or drawn as an outside engine sees it.

    table_games.py <program> [--positions N] [--seed N] [--keep DIR] [--patience SECONDS]
"""

import argparse
import collections
import copy
import os
import shutil
import sys
import tempfile
import time
from pathlib import Path

from engine_pipe import EngineFault, EnginePipe
from outside_chess import Game, OutsideEngine, OutsideFault
from pipe_games import Match, check_end

POSITIONS = 60
DEPTH = 3
LONGEST_WALK = 14
TESTS = Path(__file__).resolve().parent.parent
TABLES = ("kpk.nbw.emd", "kpk.nbb.emd", "kqk.nbw.emd", "kqk.nbb.emd", "krk.nbw", "krk.nbb",
          "kbk.nbw", "kbk.nbb", "knk.nbw", "knk.nbb")
# The score of a move that mates, and, above it, those of moves that lead to a mate later on.
MATES = 32640
MATES_NEXT = 32766
# Far pawns need a deeper look before the outside engine sees what becomes of them.
JUDGE_DEPTHS_OF_WIN = (8, 14, 20)
JUDGE_DEPTH_OF_DRAW = 14
JUDGED_WON = 400


class Judge(OutsideEngine):
    """An outside engine that is asked for its opinion, too."""

    def outcome(self, moves, depth):
        """1 if the side to move seems to win, -1 if it seems to lose, 0 for a draw."""
        lines = self._ask(f"position startpos moves {' '.join(moves)}\ngo depth {depth}",
                          "bestmove")
        told = next(line for line in reversed(lines) if " score " in line).split()
        kind, value = told[told.index("score") + 1:][:2]
        value = int(value)
        if kind == "cp" and abs(value) < JUDGED_WON:
            return 0
        return 1 if value > 0 else -1

    def agrees(self, moves, outcome):
        depths = JUDGE_DEPTHS_OF_WIN if outcome != 0 else (JUDGE_DEPTH_OF_DRAW,)
        return any(self.outcome(moves, depth) == outcome for depth in depths)


def game_down_to(outside, name):
    """The game of a fragment of the transcripts, which begins with `force`."""
    text = (TESTS / "transcript" / "fragments" / f"{name}.txt").read_text(encoding="ascii")
    words = [word for line in text.splitlines() if not line.startswith("#")
             for word in line.split()]
    game = Game(outside)
    for move in words[1:]:
        if not game.play(move):
            raise OutsideFault(f"{name}: {move} is not legal; after {game}")
    return game


def men_of(standing):
    return sum(man.isalpha() for man in standing.placement)


def copy_of(game):
    other = copy.copy(game)
    other.moves = list(game.moves)
    other.standings = list(game.standings)
    return other


def wander(chance, start):
    """Some random moves that take nothing, promote nothing and repeat no position."""
    while True:
        game = copy_of(start)
        for _ in range(chance.randint(1, LONGEST_WALK)):
            moves = sorted(move for move in game.now.legal if len(move) == 4)
            if not moves or not game.play(chance.choice(moves)):
                break
            if men_of(game.now) < men_of(start.now) or game.times_stood() > 1:
                break
        else:
            if game.now.legal:
                return game


def table_score(match):
    """The score of the last thinking line; None where the only move was made without one."""
    lines = [line for line in match.exchange[-1][1] if " TIME " in line]
    return int(lines[-1].split()[1]) if lines else None


def check_score(match, score, before):
    """The score for the position `before` the move: one of a table, and the true outcome."""
    if score != 0 and not MATES <= abs(score) <= MATES_NEXT:
        raise EngineFault(f"{score} is no score of a table; after {before}")
    if not match.outside.agrees(before.moves, outcome_of(score)):
        raise EngineFault(f"{score} is not the outcome; after {before}")


def outcome_of(score):
    return (score > 0) - (score < 0)


def answers_to(score):
    """What the other side may say after a move of this score: the same, and one more once it is a
    move nearer to its mate. The move that mates scores less than others, so that all may follow
    where the mate is next."""
    if score == -MATES_NEXT:
        return range(MATES, MATES_NEXT + 1)
    return (1 - score,) if score < 0 else (-score,)


def play_position(match, game):
    """Two moves of the program. The outcome for the side that was to move; None if it had but one
    move, which it makes without a word."""
    match.engine.note(f"position {game.now.placement} {game.now.side}")
    match.new_game(DEPTH)
    match.enter("\n".join(game.moves), game)
    before = copy_of(game)
    match.engine_moves(game)
    score = table_score(match)
    if score is not None:
        check_score(match, score, before)
    if game.now.legal and not game.now.is_dead and not game.is_repeated():
        match.engine_moves(game)
        answer = table_score(match)
        if None not in (score, answer) and answer not in answers_to(score):
            raise EngineFault(f"{score}, and then {answer} for the other side; after {game}")
    return None if score is None else outcome_of(score)


def run(match, positions):
    """All of it but the end of the process; one line that says what was seen."""
    started = time.monotonic()
    banner = match.engine.ask("xboard").lines
    if "Loading 3-man Endgame  Bases..." not in banner:
        raise EngineFault(f"the tables were not found: {banner}")
    summary = []
    for man in ("queen", "rook", "pawn"):
        starts = [game_down_to(match.outside, f"{colour}_{man}") for colour in ("white", "black")]
        seen = collections.Counter()
        for number in range(positions):
            seen[play_position(match, wander(match.chance, starts[number % len(starts)]))] += 1
        wanted = (1, 0, -1) if man == "pawn" else (1, -1)
        if positions >= POSITIONS and not all(seen[outcome] for outcome in wanted):
            raise OutsideFault(f"{man}: an outcome is missing: {dict(seen)}")
        summary.append(f"{man}: {seen[1]} won, {seen[0]} drawn, {seen[-1]} lost, "
                       f"{seen[None]} without a choice")
    return (f"table_games: {'; '.join(summary)}; {match.moves_checked} moves checked; "
            f"{time.monotonic() - started:.0f} s")


def put_tables(folder):
    tables = Path(folder) / "tables"
    tables.mkdir()
    for name in TABLES:
        shutil.copy(TESTS / "data" / "tb" / name, tables)
    (Path(folder) / "corvane.ini").write_text("hash: 1\nTbPath: tables\n", encoding="ascii")


def check_program(options, logs, folder):
    with Judge() as outside, \
            EnginePipe(options.program, folder, logs, options.patience) as engine:
        match = Match(engine, outside, options.seed)
        try:
            summary = run(match, options.positions)
            check_end(engine)
        except (EngineFault, OutsideFault) as fault:
            engine.note(f"FAILED: {fault}")
            print(f"{engine.tail()}\n\ntable_games: FAILED (seed {options.seed}): {fault}\n"
                  f"transcript: {engine.transcript_file}")
            return 1
    print(summary)
    return 0


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=Path)
    parser.add_argument("--positions", type=int, default=POSITIONS, help="of each man")
    parser.add_argument("--seed", type=int, default=20)
    parser.add_argument("--keep", type=Path, default=os.environ.get("CORVANE_GAME_LOGS"),
                        help="folder for transcripts (or the variable CORVANE_GAME_LOGS)")
    parser.add_argument("--patience", type=float, default=60.0,
                        help="seconds to wait for any one answer")
    options = parser.parse_args()
    options.program = options.program.resolve()
    return options


def main():
    options = parse_options()
    logs = Path(options.keep or tempfile.mkdtemp(prefix="corvane-games-")).resolve()
    logs = logs / "table_games"
    logs.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="corvane-play-") as folder:
        put_tables(folder)
        status = check_program(options, logs, folder)
    if status == 0 and not options.keep:
        shutil.rmtree(logs.parent)
    return status


if __name__ == "__main__":
    sys.exit(main())
