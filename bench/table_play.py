#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What endgame tables of three men do to the engine's play.

usage: table_play.py [--games N] [--seed N] [--jobs N] [--only ENDING] PROGRAM TB_VALUE

PROGRAM is the engine, TB_VALUE the program tb_value, which prints stored bytes. Seeded won
positions with the stronger side to move are played at a tenth of a second a move against the
longest defence that the tables know: a move that draws if there is one, else the one to the mate
furthest away, and of equal ones the first by its text. All configurations get the same positions:
no tables, both halves of each table, only those with the stronger side to move, only the others.
A game ends by mate, stalemate, dead material, the third repetition, or 50 moves of each side
without a capture or a pawn move, and as a draw where the engine claims one rightly. Distances are
moves of the stronger side.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import queue
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass, field
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent / "tests"
sys.path.insert(0, str(TESTS / "game"))

from engine_pipe import EngineFault, EnginePipe  # noqa: E402
from three_men import (EMPTY, FIRST_BOARD, THREE_MEN, fen, game_down_to, in_check,  # noqa: E402
                       is_dead, legal_moves, man_of, men_on, steps_between, walk)

SEED = 4973
GAMES = 200
HUNDREDTHS_A_MOVE = 10
PATIENCE_S = 60.0
TABLES = TESTS / "data" / "tb"
# The man of each ending, and the square that it stands on when a game begins; pawns have eight.
ENDINGS = {"kqk": "Q", "krk": "R", "kpk": "P"}
CONFIGURATIONS = {"no tables": (), "both halves": (".nbw", ".nbb"), "only .nbw": (".nbw",),
                  "only .nbb": (".nbb",)}
SETTINGS = "log: off\ncheck: on\nTbPath: tables\n"
TABLES_FOUND = "Loading 3-man Endgame  Bases..."

# A stored byte above 0: a win, by a mate so many moves before this number as the distance says.
MATE_BYTE = 127
REPETITIONS = 3
HALF_MOVES_OF_50 = 100


class TableFault(Exception):
    """The tables or the program that reads them cannot answer: nothing can be measured."""


# The positions.

@dataclass
class Start:
    moves: list       # from the starting position
    board: str
    white: bool       # whether the stronger side, which is to move, is White
    distance: int     # moves to the mate


def random_board(chance, kind, white):
    """Three men on different squares; a pawn not on the outer ranks."""
    squares = chance.sample(range(64), THREE_MEN)
    if kind == "P" and squares[2] // 8 in (0, 7):
        return None
    board = [EMPTY] * 64
    for square, man in zip(squares, ("K", "k", man_of(kind, white))):
        board[square] = man
    board = "".join(board)
    kings_touch = steps_between(squares[0], squares[1]) == 1
    return None if kings_touch or in_check(board, not white) else board


def draw_positions(ending, games, seed, values):
    chance = random.Random(f"{seed} {ending}")
    kind = ENDINGS[ending]
    lines = {}
    starts = []
    while len(starts) < games:
        white = chance.random() < 0.5
        board = random_board(chance, kind, white)
        if board is None or (value := values.ask(board, white)) <= 0:
            continue
        man = man_of(kind, white)
        file = board.index(man) % 8
        homes = [square for square, other in enumerate(FIRST_BOARD) if other == man]
        home = homes[file] if kind == "P" else homes[0]
        if home not in lines:
            lines[home] = game_down_to(chance, home)
        moves, last_board, to_move = lines[home]
        path = walk((last_board, to_move), (board, white))
        if path is not None:
            starts.append(Start(moves + path, board, white, MATE_BYTE - value))
            show(f"{ending}: {len(starts)} positions")
    return starts


class Values:
    """Stored bytes, by a running tb_value. Answers are kept."""

    def __init__(self, program, folder):
        self.known = {}
        self.process = subprocess.Popen(
            [program, folder], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, text=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait()
        self.process.stdout.close()

    def ask(self, board, white):
        line = fen(board, white)
        if line not in self.known:
            self.process.stdin.write(line + "\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline().strip()
            if not answer.removeprefix("-").isdigit():
                raise TableFault(f"no value but {answer!r} for {line}")
            self.known[line] = int(answer)
        return self.known[line]


# The games.

@dataclass
class Player:
    """One engine in its folder, and the tables for its opponent."""
    engine: EnginePipe
    values: Values


@dataclass
class Result:
    distance: int
    ending: str = ""
    moves: int = 0                                  # of the engine
    gave_win_away: bool = False
    false_claims: int = 0
    times: list = field(default_factory=list)       # seconds, one a move


class Record:
    """A game as far as draws depend on it."""

    def __init__(self, start):
        self.stood = collections.Counter()
        self.quiet = 0          # half moves of the measured part without capture or pawn move
        self.quiet_before = 0
        board, white = FIRST_BOARD, True
        self.enter(board, white, board)
        for text in start.moves:
            before, board = board, legal_moves(board, white)[text]
            white = not white
            self.enter(board, white, before)
        if (board, white) != (start.board, start.white):
            raise TableFault(f"the game does not lead to its position: {start}")
        self.quiet_before, self.quiet = self.quiet, 0

    def enter(self, board, white, before):
        self.board, self.white = board, white
        self.stood[board, white] += 1
        pawns_stay = all(a == b for a, b in zip(before, board) if a in "Pp" or b in "Pp")
        self.quiet = self.quiet + 1 if pawns_stay and men_on(before) == men_on(board) else 0
        if self.quiet == 0:
            self.quiet_before = 0

    def ending(self):
        if not legal_moves(self.board, self.white):
            return "mate" if in_check(self.board, self.white) else "stalemate"
        if is_dead(self.board):
            return "dead material"
        if self.stood[self.board, self.white] >= REPETITIONS:
            return "repetition"
        return "50 moves" if self.quiet >= HALF_MOVES_OF_50 else ""

    def may_claim(self):
        """A claim counts the moves before the measured part too."""
        return self.ending() not in ("", "mate") or \
            self.quiet + self.quiet_before >= HALF_MOVES_OF_50


def longest_defence(record, values):
    """The weaker side's move, and whether it draws."""
    ranked = []
    for text, after in legal_moves(record.board, record.white).items():
        value = 0 if is_dead(after) else values.ask(after, not record.white)
        if value < 0:
            raise TableFault(f"{text} turns the game: {fen(record.board, record.white)}")
        ranked.append((0 if value == 0 else 1, value, text, after))
    draws, _, text, after = min(ranked)    # bytes of wins are the smaller, the longer they take
    return text, after, draws == 0


def play(player, start):
    result = Result(start.distance)
    record = Record(start)
    engine = player.engine
    engine.transcript.clear()
    engine.note(f"{fen(start.board, start.white)}, mate in {start.distance}")
    said = engine.ask(f"new\neasy\nst {HUNDREDTHS_A_MOVE}\nforce\n" + "\n".join(start.moves))
    if said.lines:
        raise EngineFault(f"the moves to the position are answered: {said.lines}")
    words = "go"
    while not result.ending:
        begun = time.monotonic()
        answer = engine.ask(words)
        used = time.monotonic() - begun
        move, claimed_before = answer.move(), bool(answer.claims)
        if move is not None:
            after = legal_moves(record.board, record.white).get(move)
            if after is None:
                raise EngineFault(f"not a legal move: {move}")
            record.enter(after, not record.white, record.board)
            result.times.append(used)
            result.moves += 1
        elif not claimed_before:
            raise EngineFault(f"neither a move nor a claim: {answer.lines}")
        result.ending = record.ending()
        if claimed_before and not record.may_claim():
            result.false_claims += 1
            result.ending = result.ending or ("false claim" if move is None else "")
        elif claimed_before and not result.ending:
            result.ending = "claim"
        if not result.ending:
            words, after, draws = longest_defence(record, player.values)
            result.gave_win_away |= draws
            record.enter(after, not record.white, record.board)
            result.ending = record.ending()
    if result.ending == "mate" and result.moves < result.distance:
        raise TableFault(f"mate in {result.moves}, sooner than the tables say")
    return result


@contextlib.contextmanager
def players(options, halves):
    """A queue of idle players, each engine with the wanted halves of the tables in its folder."""
    with contextlib.ExitStack() as stack:
        idle = queue.Queue()
        for _ in range(options.jobs):
            folder = Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="corvane-tb-")))
            (folder / "tables").mkdir()
            for half in halves:
                for file in TABLES.glob(f"k?k{half}"):
                    shutil.copy(file, folder / "tables")
            (folder / "corvane.ini").write_text(SETTINGS, encoding="ascii")
            engine = stack.enter_context(EnginePipe(options.program, folder, folder, PATIENCE_S))
            found = TABLES_FOUND in engine.ask("xboard").lines
            if found != bool(halves):
                raise TableFault(f"tables are {'' if found else 'not '}found for {halves}")
            values = stack.enter_context(Values(options.tb_value, TABLES))
            idle.put(Player(engine, values))
        yield idle


def play_all(idle, starts, jobs, title):
    def one(start):
        player = idle.get()
        try:
            return play(player, start)
        except (EngineFault, TableFault) as fault:
            raise TableFault(f"{fault}\n{player.engine.tail()}") from fault
        finally:
            idle.put(player)

    results = []
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for result in pool.map(one, starts):
            results.append(result)
            show(f"{title}: {len(results)} of {len(starts)}")
    return results


# The report.

HEADINGS = ("tables", "ending", "games", "won", "distance", "moves", "excess", "drawn", "ms/move",
            "max ms", "how drawn")
LAYOUT = "{:<12} {:<6} {:>5} {:>5} {:>8} {:>6} {:>6} {:>5} {:>7} {:>6}  {}"


def show(text):
    """Progress, for a person only."""
    if sys.stderr.isatty():
        print(f"\r{text:<60}", end="", file=sys.stderr, flush=True)


def mean(numbers):
    numbers = list(numbers)
    return f"{statistics.fmean(numbers):.2f}" if numbers else "-"


def row(configuration, ending, results):
    won = [result for result in results if result.ending == "mate"]
    drawn = [result for result in results if result.ending != "mate"]
    reasons = collections.Counter(
        result.ending + (" after giving the win away" if result.gave_win_away else "")
        for result in drawn)
    times = [1000 * used for result in results for used in result.times]
    told = "; ".join(f"{reason} {count}" for reason, count in reasons.most_common())
    false_claims = sum(result.false_claims for result in results)
    return LAYOUT.format(
        configuration, ending, len(results), len(won),
        mean(result.distance for result in results), mean(result.moves for result in won),
        mean(result.moves - result.distance for result in won), len(drawn), mean(times),
        f"{max(times):.0f}", told + (f"; {false_claims} false claims" if false_claims else ""))


def measure(options):
    endings = options.only or list(ENDINGS)
    with Values(options.tb_value, TABLES) as values:
        starts = {ending: draw_positions(ending, options.games, options.seed, values)
                  for ending in endings}
    print(f"seed {options.seed}; {HUNDREDTHS_A_MOVE} hundredths of a second a move; "
          f"{options.jobs} at a time")
    print(LAYOUT.format(*HEADINGS), flush=True)
    for configuration, halves in CONFIGURATIONS.items():
        with players(options, halves) as idle:
            for ending in endings:
                title = f"{configuration}, {ending}"
                results = play_all(idle, starts[ending], options.jobs, title)
                show("")
                print(row(configuration, ending, results), flush=True)


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=Path)
    parser.add_argument("tb_value", type=Path)
    parser.add_argument("--games", type=int, default=GAMES, help="of each ending")
    parser.add_argument("--seed", type=int, default=SEED)
    parser.add_argument("--jobs", type=int, default=1, help="engines at a time")
    parser.add_argument("--only", action="append", choices=list(ENDINGS))
    options = parser.parse_args()
    options.program, options.tb_value = options.program.resolve(), options.tb_value.resolve()
    return options


def main():
    try:
        measure(parse_options())
    except (EngineFault, TableFault) as fault:
        sys.exit(f"table_play: {fault}")


if __name__ == "__main__":
    main()
