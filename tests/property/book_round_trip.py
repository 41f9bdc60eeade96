#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Games made by chance go into an opening book by `createbook` and come out again by its lookup.

usage: book_round_trip.py PROGRAM [GAMES]

A seeded mover plays over Stockfish's legal moves and prefers what is hard to write down;
pgn-extract gives the games their short notation. Then every line of both books must be its game's
first moves. A line may part from its game for four reasons alone, which are counted. Last, the
program starts with the two books, and at every ply of every line it must offer exactly the moves
that its lines have there. Status 0: all of that holds, and the games showed every kind of move.
"""

import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

SEED = 4973
USUAL_GAMES = 300
PLIES = 32
BOOK_PLIES = 25    # of a game in a book
LOOKUP_PLIES = 22  # of a line that serve
KEPT = 91          # characters of a line that the lookup has
SHOWN = 10
RESULTS = ("1-0", "0-1", "1/2-1/2")
BOOKS = {"cwhite": (0, ("1-0", "1/2-1/2")), "cblack": (1, ("0-1", "1/2-1/2"))}

# Why a line parts from its game. The first three show in the notation.
PROMOTION = "promotion with its letter"
MATE = "sign of mate"
LONG = "file and rank both named"
PINNED = "a pinned man stands earlier in the list"

# Kinds of moves that have to occur in the lines, by their notation. Squares count for the rest.
KINDS = {
    "short castling": re.compile(r"O-O\+?"),
    "long castling": re.compile(r"O-O-O\+?"),
    "pawn's capture": re.compile(r"[a-h]x[a-h][1-8]\+?"),
    "man's capture": re.compile(r"[KQRBN]x[a-h][1-8]\+?"),
    "told apart by file": re.compile(r"[QRBN][a-h]x?[a-h][1-8]\+?"),
    "told apart by rank": re.compile(r"[QRBN][1-8]x?[a-h][1-8]\+?"),
    "check": re.compile(r".*\+"),
}
EN_PASSANT = "en passant"


def find_program(name):
    # Debian keeps game programs in a folder that is not in root's PATH.
    path = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/games")
    if path is None:
        sys.exit(f"book_round_trip: {name} is not installed (apt-get install {name})")
    return path


# --- games --------------------------------------------------------------------------------------


class Game:
    def __init__(self, result):
        self.result = result
        self.opening = []     # moves to begin with
        self.moves = []
        self.legal = []       # the legal moves before each move
        self.men = dict(START)
        self.passing = set()  # plies that take in passing
        self.san = []

    def kind_weight(self, move, legal):
        """How much a move is wanted: what is rare in games by chance comes first."""
        man = self.men[move[:2]]
        if len(move) == 5 or any(self.is_rival(other, move) for other in legal):
            return 60
        if man in "Kk" and abs(ord(move[0]) - ord(move[2])) == 2:
            return 60
        if man in "Pp" and move[0] != move[2]:
            return 8 if move[2:4] in self.men else 60
        if man in "Pp":
            return 2
        return 3 if move[2:4] in self.men else 2

    def is_rival(self, other, move):
        """Whether another man of the kind and of the same file can go to the same square."""
        return other[0] == move[0] and other[1] != move[1] and other[2:] == move[2:] and \
            self.men[other[:2]] == self.men[move[:2]] and self.men[move[:2]] not in "Pp"

    def play(self, move, legal):
        man = self.men.pop(move[:2])
        if man in "Pp" and move[0] != move[2] and move[2:4] not in self.men:
            self.passing.add(len(self.moves))
            del self.men[move[2] + move[1]]
        if man in "Kk" and abs(ord(move[0]) - ord(move[2])) == 2:
            corner, beside = ("h", "f") if move[2] == "g" else ("a", "d")
            self.men[beside + move[1]] = self.men.pop(corner + move[1])
        promoted = move[4:].upper() if man == "P" else move[4:]
        self.men[move[2:4]] = promoted or man
        self.moves.append(move)
        self.legal.append(legal)


# Openings for choices that chance seldom leaves: between a man that is pinned and one that is not,
# and between two knights of one file. For each side one.
OPENINGS = ("d2d4 e7e6 b1c3 f8b4 e2e4 g8f6 g1e2",
            "e2e4 d7d6 f1b5 b8c6 a2a3 g8f6 b2b3 f6g4 c2c3 g4e5",
            "g1f3 a7a6 f3g5 a6a5 e2e4 b7b6 b1c3 b6b5 c3e2 b5b4 e2g1 a5a4 g1f3",
            "a2a3 g8f6 a3a4 f6g4 b2b3 e7e6 b3b4 b8c6 c2c3 c6e7 c3c4 e7g8 a4a5 g8f6")

START = {file + rank: man
         for rank, men in (("1", "RNBQKBNR"), ("2", "P" * 8), ("7", "p" * 8), ("8", "rnbqkbnr"))
         for file, man in zip("abcdefgh", men)}


def random_games(wanted):
    """Games side by side, a ply of all of them at a time: Stockfish is asked without waiting."""
    numbers = random.Random(SEED)
    games = [Game(RESULTS[number % len(RESULTS)]) for number in range(wanted)]
    for game, opening in zip(games, OPENINGS):
        game.opening = opening.split()
    with subprocess.Popen([find_program("stockfish")], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE, text=True) as outside:
        running = games
        for _ in range(PLIES):
            for game in running:
                outside.stdin.write(f"position startpos moves {' '.join(game.moves)}\ngo perft 1\n")
            outside.stdin.flush()
            running = [game for game in running if play_one(game, outside.stdout, numbers)]
        outside.stdin.write("quit\n")
        outside.stdin.close()
    return games


def play_one(game, answers, numbers):
    """Plays one of the legal moves that Stockfish tells; False at the end of the game."""
    legal = []
    for line in answers:
        if line.startswith("Nodes searched"):
            break
        move = re.fullmatch(r"([a-h][1-8][a-h][1-8][qrbn]?): 1\n", line)
        if move:
            legal.append(move[1])
    if not legal:
        # Mated: stalemates do not come so early.
        game.result = "1-0" if len(game.moves) % 2 else "0-1"
        return False
    legal.sort()
    if game.opening:
        move = game.opening.pop(0)
    else:
        move = numbers.choices(legal, [game.kind_weight(move, legal) for move in legal])[0]
    game.play(move, set(legal))
    return True


def outside_form(games_text, form):
    """What pgn-extract makes of games; all of them, or it is a fault."""
    run = subprocess.run([find_program("pgn-extract"), "-s", f"-W{form}", "-w1000"],
                         input=games_text, capture_output=True, text=True)
    if run.returncode != 0 or run.stderr.strip():
        sys.exit(f"book_round_trip: pgn-extract: {run.stderr.strip()[:1000]}")
    return run.stdout


def move_words(line):
    return [word for word in line.split()
            if word not in RESULTS and word != "*" and not word.endswith(".")]


def write_short_notation(games):
    """The PGN of the games; fills `san`."""
    text = "".join(f'[Round "{number}"]\n[Result "{game.result}"]\n\n'
                   f'{" ".join(game.moves)} {game.result}\n\n'
                   for number, game in enumerate(games))
    pgn = outside_form(text, "san")
    rows = [line for line in pgn.splitlines() if line.startswith("1. ")]
    if len(rows) != len(games):
        sys.exit(f"book_round_trip: pgn-extract gave {len(rows)} of {len(games)} games")
    for game, row in zip(games, rows):
        game.san = move_words(row)
        if len(game.san) != len(game.moves):
            sys.exit(f"book_round_trip: not the game's moves: {row}")
    return pgn


# --- the books ----------------------------------------------------------------------------------


def run_program(program, folder, words):
    done = subprocess.run([program], cwd=folder, input=words.encode("ascii"), capture_output=True)
    if done.returncode != 0 or done.stderr:
        sys.exit(f"book_round_trip: status {done.returncode}, standard error {done.stderr!r}")
    return done.stdout.decode("latin-1")


def reason_in_notation(san):
    if "=" in san:
        return PROMOTION
    if san.endswith("#"):
        return MATE
    if re.fullmatch(r"[QRBN][a-h][1-8]x?[a-h][1-8]\+?", san):
        return LONG
    return None


def agreeing_plies(game, line):
    """How many plies of a line are the game's, and why it ends or goes astray there.

    The reason is None for a line that is the game to its end or to the last ply of a book, and
    "no reason" for a fault.
    """
    expected = game.moves[:BOOK_PLIES]
    for ply, move in enumerate(expected):
        reason = reason_in_notation(game.san[ply])
        if reason:
            return ply, reason
        written = line[4 * ply:4 * ply + 4]
        if written != move:
            same_target = written[2:] == move[2:] and game.san[ply][0] in "QRBNabcdefgh"
            pinned = len(written) == 4 and written not in game.legal[ply]
            return ply, PINNED if same_target and pinned else "no reason"
    return len(expected), None if line == "".join(expected) else "no reason"


def compare_book(name, text, games, report):
    """The agreeing part of each line of a book, with its game."""
    taught = [game for game in games if game.result in BOOKS[name][1]]
    lines = text.split("\n")
    if lines[0] != "" or lines[-1] != "" or len(lines) != len(taught) + 2:
        sys.exit(f"book_round_trip: {name} has {len(lines) - 2} lines for {len(taught)} games")
    parts = []
    for game, line in zip(taught, lines[1:]):
        plies, reason = agreeing_plies(game, line)
        report.reasons[reason or "whole"] += 1
        if reason == "no reason":
            report.fault(f"{name}, ply {plies + 1}: {line}\n  of {' '.join(game.moves[:25])}\n"
                         f"  or {' '.join(game.san[:25])}")
        report.count_kinds(game, plies)
        parts.append(line[:4 * plies])
    return lines[:-1], parts


class Report:
    def __init__(self):
        self.reasons = Counter()
        self.kinds = Counter()
        self.faults = []
        self.lookups = 0

    def fault(self, text):
        self.faults.append(text)

    def count_kinds(self, game, plies):
        for ply in range(plies):
            for kind, pattern in KINDS.items():
                if pattern.fullmatch(game.san[ply]):
                    colour = "Black" if ply % 2 else "White"
                    self.kinds[f"{kind}, {colour}"] += 1
            self.kinds[EN_PASSANT] += ply in game.passing

    def missing_kinds(self):
        wanted = [f"{kind}, {colour}" for kind in KINDS for colour in ("White", "Black")]
        return [kind for kind in [*wanted, EN_PASSANT] if not self.kinds[kind]] + \
            [reason for reason in (PROMOTION, PINNED) if not self.reasons[reason]]


def check_legal(parts):
    """All parts of lines read by pgn-extract as games in coordinates."""
    played = [re.findall("....", part) for part in parts if part]
    text = "".join(f'[Round "{number}"]\n\n{" ".join(moves)} *\n\n'
                   for number, moves in enumerate(played))
    rows = [line.split()[:-1] for line in outside_form(text, "uci").splitlines()
            if re.match(r"[a-h][1-8]", line)]
    if rows != played:
        sys.exit("book_round_trip: a line of a book is not legal")


# --- the lookup ---------------------------------------------------------------------------------


def expected_candidates(lines, played):
    """The program's list of candidates: moves in the order of lines, each with its count."""
    counts = Counter()
    for line in lines:
        row = line[:KEPT]
        move = row[len(played):len(played) + 4]
        if row.startswith(played) and len(move) == 4:
            counts[move] += 1
    return [f"{number} {move} {count} "
            for number, (move, count) in enumerate(counts.items(), 1)]


def questions(books):
    """Every line at every ply where its side is to move: book, moves so far, next move."""
    asked = set()
    for name, (lines, parts) in books.items():
        first_ply = BOOKS[name][0]
        for part in parts:
            for ply in range(first_ply, min(len(part) // 4, LOOKUP_PLIES), 2):
                question = (name, part[:4 * ply], part[4 * ply:4 * ply + 4])
                if question not in asked:
                    asked.add(question)
                    yield question


def play_back(program, folder, books, report):
    asked = list(questions(books))
    words = "".join(f"new\nsd 1\nforce\n{' '.join(re.findall('....', played))}\ngo\nprotover 2\n"
                    for _, played, _ in asked)
    answers = run_program(program, folder, words + "quit\n").split("feature done=1\n")
    if len(answers) != len(asked) + 1:
        sys.exit(f"book_round_trip: {len(answers) - 1} answers to {len(asked)} questions")
    for (name, played, move), answer in zip(asked, answers):
        lines = [line for line in answer.split("Loading black book...\n")[-1].split("\n")
                 if line and not line.startswith("feature ")]
        expected = expected_candidates(books[name][0], played)
        announced = lines[-1] if lines else ""
        offered = [candidate.split()[1] for candidate in expected]
        if lines[:-1] != expected or move not in offered or \
                announced.removeprefix("move ").rstrip() not in offered:
            report.fault(f"{name} after {played}: {move} among {expected}\n  printed {lines}")
        report.lookups += 1


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    program = os.path.abspath(sys.argv[1])
    games = random_games(int(sys.argv[2]) if len(sys.argv) == 3 else USUAL_GAMES)
    report = Report()
    with tempfile.TemporaryDirectory(prefix="round-trip-") as name:
        folder = Path(name)
        (folder / "corvane.ini").write_text("hash: 1\nlog: off\n", encoding="ascii")
        (folder / "games.pgn").write_text(write_short_notation(games), encoding="ascii")
        said = run_program(program, folder, "createbook games.pgn\nquit\n")
        if not said.endswith("Creating BOOK!\nDone\n"):
            sys.exit(f"book_round_trip: createbook said {said!r}")
        books = {book: compare_book(book, (folder / book).read_text("ascii"), games, report)
                 for book in BOOKS}
        check_legal([part for _, parts in books.values() for part in parts])
        play_back(program, folder, books, report)
    print(f"seed {SEED}: {len(games)} games, {sum(report.reasons.values())} lines, "
          f"{report.lookups} lookups, {len(report.faults)} faults")
    for heading, counts in (("lines", report.reasons), ("moves", report.kinds)):
        for kind, count in sorted(counts.items()):
            print(f"  {heading}: {count} {kind}")
    for text in report.faults[:SHOWN]:
        print(text)
    missing = report.missing_kinds()
    if missing:
        sys.exit(f"book_round_trip: the lines do not show: {', '.join(missing)}")
    if report.reasons["whole"] < len(games) / 2 or report.lookups < len(games):
        sys.exit("book_round_trip: too few lines are whole games")
    sys.exit(1 if report.faults else 0)


if __name__ == "__main__":
    main()
