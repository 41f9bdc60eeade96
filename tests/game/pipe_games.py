#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Whole games at short fixed depths, straight over the program's pipes, in one process.

Every announced move has to be legal and every draw claim true, by the word of an outside engine.
Interrupt signals between the moves must pass unnoticed, and the same words must bring the same
answers, thinking lines and all. With an opening book, which draws its moves by chance, nothing is
played again; instead book moves have to be seen.

    pipe_games.py <program> [--games N] [--seed N] [--book DIR] [--keep DIR] [--patience SECONDS]
"""

import argparse
import collections
import os
import random
import shutil
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

from engine_pipe import EngineFault, EnginePipe, mask_time
from outside_chess import HALF_MOVES_FOR_CLAIM, Game, OutsideEngine, OutsideFault

GAMES = 40
OPPONENTS = ("random", "stockfish", "itself")
DEPTHS = (2, 3, 4, 5)
STOCKFISH_DEPTH = 1
# An hour, in hundredths of a second: no search at these depths is ever cut short by the clock.
CLOCK = f"time {60 * 60 * 100}\notim {60 * 60 * 100}"

# Games played again at the end, to see that nothing of what came between shows. One thing may: the
# cache of pawn structures outlives a game and knows a structure by a key of 32 bits, so that two
# structures can, very rarely, be taken for each other. Shallow games meet few structures.
REPLAY_DEPTH = 3
REPLAY_EVERY = 4

REPETITION = "1/2-1/2 {Draw by repetition}"
DEAD_MATERIAL = "1/2-1/2 {Draw by insufficient material}"
FIFTY_AT_GO = "1/2-1/2 {50 moves}"
# The search says so when a jump of the score makes it think longer.
EXTENSION = "Warning: Very strange value! "
FIFTY_AT_MOVE = "1/2-1/2 {Draw by the 50 moves rule}"


@dataclass(frozen=True)
class Plan:
    number: int
    opponent: str
    depth: int
    engine_begins: bool
    opening: int    # half moves entered under force before the engine is asked

    def __str__(self):
        colour = "White" if self.engine_begins else "Black"
        return (f"game {self.number}: depth {self.depth} against {self.opponent}"
                + ("" if self.opponent == "itself" else f", as {colour}"))


def plan_game(number):
    """Each opponent meets each colour, and the depths change from game to game.

    The first rounds start from the initial position, the others from a few random moves; of these
    an odd number leaves the engine with Black.
    """
    opponent = OPPONENTS[number % len(OPPONENTS)]
    round_number = number // len(OPPONENTS)
    begins = opponent == "itself" or (round_number + round_number // len(DEPTHS)) % 2 == 0
    opening = 0
    if round_number >= len(DEPTHS):
        opening = 2 * (1 + round_number % 3) + (0 if begins else 1)
    return Plan(number, opponent, DEPTHS[round_number % len(DEPTHS)], begins, opening)


class Match:
    """The games against one process, and what was counted on the way."""

    def __init__(self, engine, outside, seed):
        self.engine = engine
        self.outside = outside
        self.chance = random.Random(seed)
        self.endings = collections.Counter()
        self.claims = collections.Counter()
        self.moves_checked = 0
        self.book_moves = 0
        self.exchange = []     # of the game that is being played: what was sent, what came back
        self.exchanges = []    # of all games

    def ask(self, text):
        answer = self.engine.ask(text)
        odd = [line for line in answer.of("other") if line != EXTENSION]
        if odd:
            raise EngineFault(f"unknown lines after {text!r}: {odd}")
        self.exchange.append((text, [mask_time(line) for line in answer.lines]))
        return answer

    def expect_claims(self, answer, due, game):
        """`due` holds pairs of the occasion and the claim, in the order of saying."""
        if answer.claims != [claim for _, claim in due]:
            raise EngineFault(f"claims {answer.claims}, but these are true and due: {due}; "
                              f"after {game}")
        self.claims.update(f"{occasion}: {claim}" for occasion, claim in due)

    def new_game(self, depth):
        self.exchange = []
        self.exchanges.append(self.exchange)
        self.outside.forget()
        answer = self.ask(f"new\nlevel 40 60 0\npost\neasy\nsd {depth}")
        if answer.lines:
            raise EngineFault(f"a new game is answered: {answer.lines}")
        return Game(self.outside)

    def play_announced(self, answer, game):
        """The engine's move onto the record; it must be there, and be legal."""
        move = answer.move()
        if move is None:
            raise EngineFault(f"no move; the answer is {answer.lines}; after {game}")
        if not game.play(move):
            raise EngineFault(f"illegal move {move}; after {game}")
        self.moves_checked += 1
        candidates = [line.split()[1] for line in answer.of("candidate")]
        if candidates:
            self.book_moves += 1
            if move not in candidates or answer.of("thinking"):
                raise EngineFault(f"a book move, and yet {answer.lines}; after {game}")

    @staticmethod
    def claims_of_own_move(game):
        """What is due with a move of the engine."""
        claims = ([REPETITION] if game.is_repeated() else []) + (
            [DEAD_MATERIAL] if game.now.is_dead else [])
        return [("own move", claim) for claim in claims]

    @staticmethod
    def claims_of_other_move(game):
        """What is due when the opponent's move arrives."""
        claims = ([DEAD_MATERIAL] if game.now.is_dead else []) + (
            [REPETITION] if game.is_repeated() else [])
        return [("other's move", claim) for claim in claims]

    def engine_moves(self, game):
        answer = self.ask(f"{CLOCK}\ngo")
        self.play_announced(answer, game)
        self.expect_claims(answer, self.claims_of_own_move(game), game)

    def random_move(self, game):
        return self.chance.choice(sorted(game.now.legal))

    def opponent_move(self, plan, game):
        if plan.opponent == "stockfish":
            return self.outside.best_move(game.moves, STOCKFISH_DEPTH)
        return self.random_move(game)

    def opponent_moves(self, plan, game):
        """The opponent's move, and the engine's answer to it if the game goes on."""
        move = self.opponent_move(plan, game)
        if not game.play(move):
            raise OutsideFault(f"the opponent's move {move} is not legal; after {game}")
        if not game.now.legal:
            # Nothing is left to answer, so the move is only entered, as an interface does it.
            self.enter(move, game)
            return
        due = self.claims_of_other_move(game)
        stops = game.is_repeated()
        answer = self.ask(f"{CLOCK}\n{move}")
        if not stops:
            self.play_announced(answer, game)
            due += self.claims_of_own_move(game)
        elif answer.move() is not None:
            raise EngineFault(f"a move after the claim of a draw; after {game}")
        self.expect_claims(answer, due, game)

    def enter(self, moves, game):
        """Moves under force: recorded, not answered."""
        answer = self.ask(f"force\n{moves}")
        if answer.lines:
            raise EngineFault(f"an answer under force: {answer.lines}; after {game}")

    def expect_only(self, text, occasion, claim, game):
        """A draw that stops the engine from moving: the claim is all that comes back."""
        answer = self.ask(text)
        if answer.lines != [claim]:
            raise EngineFault(f"{claim} alone was due, not {answer.lines}; after {game}")
        if not game.is_claim_true(claim):
            raise EngineFault(f"{claim} is not true; after {game}")
        self.claims[f"{occasion}: {claim}"] += 1

    def play_game(self, plan):
        self.engine.note(str(plan))
        game = self.new_game(plan.depth)
        for _ in range(plan.opening):
            move = self.random_move(game)
            game.play(move)
            self.enter(move, game)
        if plan.engine_begins or plan.opening:
            self.engine_moves(game)
        while game.ending() is None:
            self.engine.interrupt()
            if plan.opponent == "itself":
                self.engine_moves(game)
            else:
                self.opponent_moves(plan, game)
        if game.is_repeated():
            self.expect_only("go", "go", REPETITION, game)
        self.endings[game.ending()] += 1

    def repeat_under_force(self):
        """Knights go out and home twice: the starting position stands a third time."""
        self.engine.note("repetition under force")
        game = self.new_game(DEPTHS[0])
        shuffle = ["g1f3", "g8f6", "f3g1", "f6g8"] * 2
        for move in shuffle:
            game.play(move)
        self.enter("\n".join(shuffle), game)
        self.expect_only("go", "go", REPETITION, game)
        # `go` has ended the force mode: the next move is answered, by a claim again.
        game.play(shuffle[0])
        self.expect_only(shuffle[0], "other's move", REPETITION, game)

    def quiet_move(self, game):
        """Plays a move that is no capture, no pawn move and no check, which might leave nothing but
        captures, and repeats nothing for the third time."""
        for move in self.chance.sample(sorted(game.now.legal), len(game.now.legal)):
            after = self.outside.look(game.moves + [move])
            stood = sum(after.repetition_key == old.repetition_key for old in game.standings)
            if after.half_moves > game.now.half_moves and not after.in_check and stood < 2:
                game.play(move)
                return move
        raise OutsideFault(f"no quiet move left after {game}")

    def fifty_under_force(self):
        """A hundred quiet half moves, none of them the engine's own, which it does not count."""
        self.engine.note("fifty moves under force")
        game = self.new_game(DEPTHS[0])
        while not game.is_without_progress():
            self.enter(self.quiet_move(game), game)
        self.expect_only("go", "go", FIFTY_AT_GO, game)
        self.expect_only(self.quiet_move(game), "other's move", FIFTY_AT_MOVE, game)
        if game.now.half_moves != HALF_MOVES_FOR_CLAIM + 1:
            raise OutsideFault(f"not a game of quiet moves alone: {game}")

    def replay(self, number):
        """The words of an earlier game once more, which have to bring the same answers."""
        self.engine.note(f"game {number} again")
        for text, first in self.exchanges[number]:
            again = [mask_time(line) for line in self.engine.ask(text).lines]
            if again != first:
                raise EngineFault(f"game {number} again, after {text!r}: first {first}, now "
                                  f"{again} (if nothing else differs, look for two pawn "
                                  "structures of one key)")
        return len(self.exchanges[number])


def run(match, games, with_book):
    """All of it but the end of the process; one line that says what was seen."""
    started = time.monotonic()
    banner = match.engine.ask("xboard").lines
    if not banner:
        raise EngineFault("no banner")
    for number in range(games):
        match.play_game(plan_game(number))
    natural = sum(count for claim, count in match.claims.items() if REPETITION in claim)
    match.repeat_under_force()
    match.fifty_under_force()
    shallow = [number for number in range(games)
               if plan_game(number).depth <= REPLAY_DEPTH and not with_book]
    replayed = [match.replay(number) for number in shallow[::REPLAY_EVERY]]
    played = sum(match.endings.values())
    claims = ", ".join(f"{count} {claim}" for claim, count in sorted(match.claims.items()))
    endings = ", ".join(f"{count} {end}" for end, count in sorted(match.endings.items()))
    if played != games:
        raise EngineFault(f"{played} games instead of {games}")
    if with_book != (match.book_moves > 0):
        raise EngineFault(f"{match.book_moves} moves of the opening book")
    if games >= GAMES and natural == 0:
        raise EngineFault("no claim of a repetition in any of the games")
    return (f"pipe_games: {played} games ({endings}), {match.moves_checked} moves checked, "
            f"{match.book_moves} of the book; "
            f"claims: {claims}; {len(replayed)} games again with {sum(replayed)} equal answers; "
            f"{time.monotonic() - started:.0f} s")


def check_end(engine):
    """After `quit`: status 0, no last words, nothing on standard error."""
    status, rest = engine.quit()
    if status != 0:
        raise EngineFault(f"status {status} after quit")
    if rest:
        raise EngineFault(f"lines after quit: {rest}")
    errors = engine.error_file.read_text(encoding="utf-8", errors="replace")
    if errors:
        raise EngineFault(f"on standard error:\n{errors[:4000]}")


def check_program(options, logs, folder):
    with OutsideEngine() as outside, \
            EnginePipe(options.program, folder, logs, options.patience) as engine:
        match = Match(engine, outside, options.seed)
        try:
            summary = run(match, options.games, options.book is not None)
            check_end(engine)
        except (EngineFault, OutsideFault) as fault:
            engine.note(f"FAILED: {fault}")
            errors = engine.error_file.read_text(encoding="utf-8", errors="replace")
            print(f"{engine.tail()}\n\nstandard error: {errors[:4000] or 'nothing'}\n\n"
                  f"pipe_games: FAILED (seed {options.seed}): {fault}\n"
                  f"transcript: {engine.transcript_file}")
            return 1
    print(summary)
    return 0


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[2])
    parser.add_argument("program", type=Path)
    parser.add_argument("--games", type=int, default=GAMES, help="fewer for a slow build")
    parser.add_argument("--seed", type=int, default=20, help="of the random opponent")
    parser.add_argument("--book", type=Path, help="folder of an opening book")
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
    logs = logs / ("pipe_book" if options.book else "pipe_games")
    logs.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="corvane-play-") as folder:
        if options.book:
            for name in ("cwhite", "cblack"):
                shutil.copy(options.book / name, folder)
        status = check_program(options, logs, folder)
    if status == 0 and not options.keep:
        shutil.rmtree(logs.parent)
    return status


if __name__ == "__main__":
    sys.exit(main())
