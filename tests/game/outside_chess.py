# SPDX-License-Identifier: MIT
"""What chess says about a game, by a program that is not ours: Debian's stockfish.

Gives the legal moves of a position and what a draw claim depends on, and keeps the record of a
game that is being checked. It decides nothing about the program under test.
"""

import os
import re
import shutil
import signal
import subprocess
from dataclasses import dataclass

# Debian keeps game programs in a folder that is not in root's PATH.
GAME_PATH = os.environ.get("PATH", "") + ":/usr/games"

# Claims of a draw by repetition and by the fifty-move rule become true at these numbers.
REPETITIONS_FOR_CLAIM = 3
HALF_MOVES_FOR_CLAIM = 100

MOVE_TEXT = re.compile(r"[a-h][1-8][a-h][1-8][qrbn]?")


class OutsideFault(Exception):
    """A helper program is missing or does not behave: the test cannot judge anything."""


def find_program(name):
    path = shutil.which(name, path=GAME_PATH)
    if path is None:
        raise OutsideFault(f"{name} is not installed (apt-get install {name})")
    return path


@dataclass(frozen=True)
class Standing:
    """A position as far as a claim or the end of a game depends on it."""
    placement: str       # board field of the position's text
    side: str            # "w" or "b"
    half_moves: int      # since the last capture or pawn move
    in_check: bool
    legal: frozenset     # moves such as e2e4 and e7e8q

    @property
    def repetition_key(self):
        """Placement and side to move; castling and en passant rights are not compared."""
        return (self.placement, self.side)

    @property
    def is_dead(self):
        """Bare kings, or one knight or bishop beside them."""
        men = [man.lower() for man in self.placement if man.isalpha() and man.lower() != "k"]
        return not men or men in (["n"], ["b"])


class OutsideEngine:
    """One running stockfish."""

    def __init__(self):
        self.process = subprocess.Popen(
            [find_program("stockfish")], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        self._ask("uci", "uciok")
        self._ask("setoption name Threads value 1\nsetoption name Hash value 4\nisready", "readyok")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()

    def _ask(self, commands, last_line_begins):
        self.process.stdin.write(commands + "\n")
        self.process.stdin.flush()
        lines = []
        while True:
            line = self.process.stdout.readline()
            if not line:
                raise OutsideFault(f"stockfish ended after: {commands}")
            lines.append(line.rstrip("\n"))
            if line.startswith(last_line_begins):
                return lines

    def look(self, moves):
        """The position after the moves, each of them known to be legal."""
        lines = self._ask(f"position startpos moves {' '.join(moves)}\nd\ngo perft 1",
                          "Nodes searched")
        fen = next(line for line in lines if line.startswith("Fen: ")).split()
        checkers = next(line for line in lines if line.startswith("Checkers:"))
        counted = [line.split(":")[0] for line in lines if re.fullmatch(r"[a-h1-8qrbn]+: 1", line)]
        if lines[-1] != f"Nodes searched: {len(counted)}":
            raise OutsideFault(f"move list not understood: {lines[-1]}, but {counted}")
        return Standing(placement=fen[1], side=fen[2], half_moves=int(fen[5]),
                        in_check=checkers != "Checkers: ", legal=frozenset(counted))

    def forget(self):
        self._ask("ucinewgame\nisready", "readyok")

    def best_move(self, moves, depth):
        lines = self._ask(f"position startpos moves {' '.join(moves)}\ngo depth {depth}",
                          "bestmove")
        return lines[-1].split()[1]


class Game:
    """A game from the starting position, each of its moves legal."""

    def __init__(self, outside):
        self.outside = outside
        self.moves = []
        self.standings = [outside.look([])]

    @property
    def now(self):
        return self.standings[-1]

    def play(self, move):
        """False, and nothing else, where the move is not legal."""
        if move not in self.now.legal:
            return False
        self.moves.append(move)
        self.standings.append(self.outside.look(self.moves))
        return True

    def times_stood(self):
        key = self.now.repetition_key
        return sum(standing.repetition_key == key for standing in self.standings)

    def is_repeated(self):
        return self.times_stood() >= REPETITIONS_FOR_CLAIM

    def is_without_progress(self):
        return self.now.half_moves >= HALF_MOVES_FOR_CLAIM

    def ending(self):
        """How the game has ended by the laws of chess; None while it goes on."""
        if not self.now.legal:
            return "mate" if self.now.in_check else "stalemate"
        if self.now.is_dead:
            return "dead material"
        if self.is_repeated():
            return "repetition"
        if self.is_without_progress():
            return "50 moves"
        return None

    def is_claim_true(self, claim):
        """Whether a claim such as `1/2-1/2 {Draw by repetition}` holds in the present position.

        A mate ends the game at once, whatever could be claimed besides.
        """
        if not self.now.legal and self.now.in_check:
            return False
        text = claim.lower()
        if "repetition" in text:
            return self.is_repeated()
        if "50 moves" in text or "fifty" in text:
            return self.is_without_progress()
        if "insufficient material" in text:
            return self.now.is_dead
        return False

    def __str__(self):
        return " ".join(self.moves) or "(no moves)"
