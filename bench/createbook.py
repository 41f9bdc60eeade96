#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""How fast `createbook` turns a PGN file into an opening book.

usage: createbook.py [--runs N] [--megabytes N] PROGRAM

Two files are made from some hundred seeded games, which Stockfish and pgn-extract write, with
varied tags before each. The first file holds whole games: games a second in all. The second holds
the same bytes, but its numbers stand glued to their moves, so that the second pass finds no game
and has only to read the words: megabytes a second of the first pass, or a little more than that.
Times are those of the whole process, less those of a run over an empty file; by the clock, and in
processor time, which other work on the machine does not change. Status 0: the medians of the
processor time meet what is wanted.
"""

import argparse
import os
import random
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SEED = 4973
DIFFERENT_GAMES = 300
PLIES = 80
MEGABYTE = 1000000
WANTED_MEGABYTES_A_SECOND = 20
WANTED_GAMES_A_SECOND = 3000
RESULTS = ("1-0", "0-1", "1/2-1/2")
NAMES = ("Adler", "Birk", "Castell", "Doran", "Eriksen", "Fonseca", "Galvan", "Hollis", "Ivanich",
         "Jansen", "Kovar", "Lindqvist", "Moreau", "Nagel", "Okafor", "Pavlik", "Quist", "Rossi")


def find_program(name):
    # Debian keeps game programs in a folder that is not in root's PATH.
    path = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/games")
    if path is None:
        sys.exit(f"createbook: {name} is not installed (apt-get install {name})")
    return path


def random_games(numbers):
    """Rows of coordinate moves: all games a ply at a time, so that nobody waits for an answer."""
    games = [[] for _ in range(DIFFERENT_GAMES)]
    with subprocess.Popen([find_program("stockfish")], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE, text=True) as outside:
        for _ in range(PLIES):
            for moves in games:
                outside.stdin.write(f"position startpos moves {' '.join(moves)}\ngo perft 1\n")
            outside.stdin.flush()
            for moves in games:
                legal = []
                for line in outside.stdout:
                    if line.startswith("Nodes searched"):
                        break
                    if re.fullmatch(r"[a-h][1-8][a-h][1-8][qrbn]?: 1\n", line):
                        legal.append(line.split(":")[0])
                if legal:
                    moves.append(numbers.choice(sorted(legal)))
        outside.stdin.close()
    return games


def short_notation(games):
    text = "".join(f'[Round "{number}"]\n\n{" ".join(moves)} *\n\n'
                   for number, moves in enumerate(games))
    run = subprocess.run([find_program("pgn-extract"), "-s", "-w78", "--notags"], input=text,
                         capture_output=True, text=True, check=True)
    rows = [part.strip().removesuffix("*").strip() for part in run.stdout.split("\n\n")]
    rows = [row for row in rows if row]
    if len(rows) != len(games):
        sys.exit(f"createbook: pgn-extract gave {len(rows)} of {len(games)} games")
    return rows


def one_game(numbers, rows):
    white, black = numbers.sample(NAMES, 2)
    result = numbers.choice(RESULTS)
    return (f'[Event "Open tournament {numbers.randrange(1, 60)}"]\n'
            f'[Site "Town {numbers.randrange(1, 400)}"]\n'
            f'[Date "{numbers.randrange(1950, 2026)}.{numbers.randrange(1, 13):02}.??"]\n'
            f'[Round "{numbers.randrange(1, 12)}"]\n[White "{white}, A."]\n[Black "{black}, B."]\n'
            f'[Result "{result}"]\n[WhiteElo "{numbers.randrange(1800, 2800)}"]\n'
            f'[BlackElo "{numbers.randrange(1800, 2800)}"]\n[ECO "{numbers.choice("ABCDE")}00"]\n\n'
            f"{numbers.choice(rows)} {result}\n\n")


def write_files(folder, size):
    """Both files; gives the number of games and the bytes of each file."""
    numbers = random.Random(SEED)
    rows = short_notation(random_games(numbers))
    games = 0
    written = 0
    with open(folder / "games.pgn", "w", encoding="ascii") as whole, \
            open(folder / "glued.pgn", "w", encoding="ascii") as glued:
        while written < size:
            game = one_game(numbers, rows)
            whole.write(game)
            # The same length: the blank behind a number goes to the end.
            glued.write(re.sub(r"(\d+\.)[ \n]", r"\1", game) + " " * len(
                re.findall(r"\d+\.[ \n]", game)))
            written += len(game)
            games += 1
    return games, written


def run(program, folder, name):
    """Seconds by the clock, of the processor, and peak memory in bytes, with no book before."""
    for book in ("cwhite", "cblack", "corvane.tmp"):
        (folder / book).unlink(missing_ok=True)
    begin = time.perf_counter()
    process = subprocess.Popen([program], cwd=folder, stdin=subprocess.PIPE,
                               stdout=subprocess.PIPE)
    process.stdin.write(f"createbook {name}\nquit\n".encode("ascii"))
    process.stdin.close()
    said = process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.perf_counter() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0 or not said.endswith(b"Creating BOOK!\nDone\n"):
        sys.exit(f"createbook: status {process.returncode}, said {said[-200:]!r}")
    return seconds, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


class Figures:
    """What the runs over one file took beyond those over an empty file."""

    def __init__(self, program, folder, name, runs):
        self.clock, self.processor, self.memory = [], [], 0
        for _ in range(runs):
            empty_clock, empty_processor, _ = run(program, folder, "empty.pgn")
            clock, processor, memory = run(program, folder, name)
            self.clock.append(max(clock - empty_clock, 1e-6))
            self.processor.append(max(processor - empty_processor, 1e-6))
            self.memory = max(self.memory, memory)

    def tell(self, what, amount, unit, wanted):
        """Prints the speeds; whether the median is what is wanted."""
        for how, times in (("processor", self.processor), ("clock", self.clock)):
            print(f"{what}, by the {how}: median {amount / statistics.median(times):.0f} {unit}, "
                  f"best {amount / min(times):.0f}, wanted {wanted}")
        return amount / statistics.median(self.processor) >= wanted


def main():
    parser = argparse.ArgumentParser(description="Speed of building an opening book.")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--megabytes", type=int, default=60)
    parser.add_argument("program")
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    with tempfile.TemporaryDirectory(prefix="bench-createbook-") as name:
        folder = Path(name)
        (folder / "corvane.ini").write_text("hash: 1\nlog: off\n", encoding="ascii")
        (folder / "empty.pgn").write_bytes(b"")
        games, size = write_files(folder, options.megabytes * MEGABYTE)
        print(f"seed {SEED}: {games} games, {size / MEGABYTE:.1f} MB, {options.runs} runs each")
        glued = Figures(program, folder, "glued.pgn", options.runs)
        whole = Figures(program, folder, "games.pgn", options.runs)
    fast = glued.tell("first pass", size / MEGABYTE, "MB/s", WANTED_MEGABYTES_A_SECOND)
    fast = whole.tell("in all", games, "games/s", WANTED_GAMES_A_SECOND) and fast
    print(f"peak memory {whole.memory / MEGABYTE:.1f} MB")
    return 0 if fast else 1


if __name__ == "__main__":
    sys.exit(main())
