#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares our legal moves with Stockfish's in the positions of seeded random games.

usage: against_stockfish.py LEGAL_MOVES_OF PERFT_POSITIONS [POSITIONS]

Games begin at the starting position and at the rows of the perft file in turns. Stockfish gets the
moves of a game, not our idea of the position after them, so that a wrong right or a wrong en
passant state shows too. Both programs run once; Stockfish's questions are all on their way before
its first answer is awaited. Status 0: every position agrees.
"""

import random
import shutil
import subprocess
import sys
import threading
from collections import Counter
from pathlib import Path

SEED = 4971
LONGEST_GAME = 90  # plies
USUAL_POSITIONS = 20000
SHOWN = 10
CASTLING = "two files along the rank of a king's home"


def stockfish_path():
    found = shutil.which("stockfish") or shutil.which("stockfish", path="/usr/games")
    if not found:
        sys.exit("against_stockfish: no stockfish (Debian's package of that name)")
    return found


def starts(perft_file):
    """The starting position before each row of the file that has a row of its own."""
    for line in Path(perft_file).read_text(encoding="ascii").splitlines():
        if line and not line.startswith("#"):
            yield "startpos"
            yield line.split(" | ")[1]


class Engine:
    """Our side: one line in, one line of moves out."""

    def __init__(self, path):
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True, encoding="ascii")

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer.endswith("\n"):
            sys.exit(f"against_stockfish: no answer to: {line}")
        return answer.split()

    def close(self):
        self.process.stdin.close()
        if self.process.wait() != 0:
            sys.exit("against_stockfish: our side ended with a fault")


def random_games(engine, perft_file, wanted):
    """Positions as (Stockfish's words for them, our legal moves)."""
    numbers = random.Random(SEED)
    beginnings = list(starts(perft_file))
    positions = []
    game = 0
    while len(positions) < wanted:
        start = beginnings[game % len(beginnings)]
        game += 1
        words = "position startpos" if start == "startpos" else f"position fen {start} 0 1"
        played = []
        legal = engine.ask(f"position {start}")
        while True:
            positions.append((words + (" moves " + " ".join(played) if played else ""), legal))
            if not legal or len(played) == LONGEST_GAME or len(positions) == wanted:
                break
            played.append(numbers.choice(legal))
            legal = engine.ask(f"move {played[-1]}")
    return positions, game


def stockfish_moves(positions):
    """Stockfish's legal moves of each position, sorted."""
    process = subprocess.Popen([stockfish_path()], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               text=True, encoding="ascii")

    def feed():
        for words, _ in positions:
            process.stdin.write(f"{words}\ngo perft 1\n")
        process.stdin.write("quit\n")
        process.stdin.close()

    feeder = threading.Thread(target=feed)
    feeder.start()
    moves = []
    for line in process.stdout:
        name, colon, count = line.partition(": ")
        if name == "Nodes searched":
            yield sorted(moves)
            moves = []
        elif colon and count.strip() == "1" and len(name) in (4, 5):
            moves.append(name)
    feeder.join()
    if process.wait() != 0:
        sys.exit("against_stockfish: stockfish ended with a fault")


def kinds_of(positions):
    """What the positions offer, so that games without a kind of move are noticed."""
    kinds = Counter()
    for _, legal in positions:
        kinds["no legal move"] += not legal
        for move in legal:
            kinds["promotion"] += len(move) == 5
            kinds[CASTLING] += move in ("e1g1", "e1c1", "e8g8", "e8c8")
    return kinds


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    wanted = int(sys.argv[3]) if len(sys.argv) == 4 else USUAL_POSITIONS
    engine = Engine(sys.argv[1])
    positions, games = random_games(engine, sys.argv[2], wanted)
    engine.close()

    disagreements = []
    compared = 0
    for (words, ours), theirs in zip(positions, stockfish_moves(positions), strict=True):
        compared += 1
        if ours != theirs:
            disagreements.append(f"{words}\n  only ours: {sorted(set(ours) - set(theirs))}"
                                 f"\n  only stockfish's: {sorted(set(theirs) - set(ours))}")
    kinds = kinds_of(positions)
    print(f"seed {SEED}: {games} games, {compared} positions, "
          f"{len(disagreements)} disagreements")
    for kind, count in sorted(kinds.items()):
        print(f"  {kind}: {count}")
    for text in disagreements[:SHOWN]:
        print(text)
    if compared != wanted or compared != len(positions):
        sys.exit(f"against_stockfish: {compared} positions compared, {wanted} wanted")
    if any(kinds[kind] == 0 for kind in ("promotion", CASTLING)):
        sys.exit("against_stockfish: the games do not show every kind of move")
    sys.exit(1 if disagreements else 0)


if __name__ == "__main__":
    main()
