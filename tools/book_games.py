# SPDX-License-Identifier: MIT
"""The games a book is made of: read from PGN files, their moves turned into coordinates.

Debian's pgn-extract says what is legal and what stands on the board; this file says which form
a game must have, and which games must not stand side by side. It judges no move.
"""

import os
import re
import shutil
import subprocess
from collections import defaultdict
from dataclasses import dataclass, field

# Debian keeps game programs in a folder that is not in root's PATH.
GAME_PATH = os.environ.get("PATH", "") + ":/usr/games"

WHITE, BLACK = "White", "Black"
TAUGHT_SIDES = {"1-0": (WHITE,), "0-1": (BLACK,), "1/2-1/2": (WHITE, BLACK)}
NEEDED_TAGS = ("ECO", "Opening", "Variation", "Result")

# The engine leaves a line of its book after so many plies; a shorter line teaches too little.
LEAST_PLIES, MOST_PLIES = 12, 25

TAG = re.compile(r'\[(\w+) "([^"]*)"\]')
ECO = re.compile(r"[A-E][0-9][0-9]")
REPEAT = re.compile(r"([1-9][0-9]*) of ([1-9][0-9]*)")
# No promotions: the book knows moves of four characters only.
SAN = re.compile(r"(?:O-O(?:-O)?|[KQRBN]?[a-h]?[1-8]?x?[a-h][1-8])[+#]?")

# The tag by which a game is found again in what pgn-extract gives back.
PLACE_TAG = "FirstLine"
OUTSIDE_MOVE = re.compile(r"([a-h][1-8][a-h][1-8])([+#]?) \{ ([^}]*) \}")
OUTSIDE_FAULT = re.compile(r"(.+)\nFile stdin: Line number: (\d+)\nFailed to make move (\S+ \S+)")


class OutsideFault(Exception):
    """A helper program is missing or does not behave: nothing can be judged."""


def find_program(name):
    path = shutil.which(name, path=GAME_PATH)
    if path is None:
        raise OutsideFault(f"{name} is not installed (apt-get install {os.path.basename(name)})")
    return path


@dataclass
class Game:
    """One game as it stands in a file. `moves` and `positions` are empty until it is played."""
    path: str
    line: int                                       # where its first tag stands
    last_line: int
    tags: dict = field(default_factory=dict)
    words: list = field(default_factory=list)       # of the move text
    san: list = field(default_factory=list)
    moves: tuple = ()                               # such as e2e4
    positions: list = field(default_factory=list)   # after each move: a FEN without its counters

    @property
    def place(self):
        return f"{self.path}:{self.line}"

    @property
    def opening(self):
        return self.tags["Opening"]

    @property
    def name(self):
        return f"{self.tags['Opening']} ({self.tags['Variation']})"

    @property
    def result(self):
        return self.tags["Result"]

    @property
    def sides(self):
        """The sides it teaches."""
        return TAUGHT_SIDES[self.result]

    @property
    def book_text(self):
        """The game as a line of the engine's book."""
        return "".join(self.moves[:MOST_PLIES])

    def move_text(self, ply):
        """The move of that index with its number: 4. Bxc6 or 4...dxc6."""
        dots = ". " if ply % 2 == 0 else "..."
        return f"{ply // 2 + 1}{dots}{self.san[ply]}"


def read_file(path):
    """The games of a file in their order, faults of its tags, and its lines."""
    with open(path, encoding="utf-8") as file:
        lines = file.read().split("\n")
    games, faults = [], []
    for number, line in enumerate(lines, 1):
        line = line.strip()
        if not line:
            continue
        if line.startswith("["):
            tag = TAG.fullmatch(line)
            if tag is None:
                faults.append(f"{path}:{number}: not a tag: {line}")
                continue
            if not games or games[-1].words:
                games.append(Game(path, number, number))
            if tag[1] in games[-1].tags:
                faults.append(f"{path}:{number}: tag {tag[1]} stands twice")
            games[-1].tags[tag[1]] = tag[2]
        elif not games:
            faults.append(f"{path}:{number}: moves before the first tag")
            continue
        else:
            games[-1].words += line.split()
        games[-1].last_line = number
    if not games:
        faults.append(f"{path}: no game")
    return games, faults, lines


def faults_of_tags(game):
    for name in NEEDED_TAGS:
        if not game.tags.get(name):
            yield f"no tag {name}"
    if game.tags.get("Result", "1-0") not in TAUGHT_SIDES:
        yield f"result {game.tags['Result']} teaches nobody"
    if not ECO.fullmatch(game.tags.get("ECO", "A00")):
        yield f"{game.tags['ECO']} is no ECO code"
    if not REPEAT.fullmatch(game.tags.get("Repeat", "1 of 1")):
        yield f"Repeat \"{game.tags['Repeat']}\" is not of the form \"1 of 3\""
    for name, value in game.tags.items():
        # The engine's reader takes such a value for the result, and any bracket for a tag.
        if name != "Result" and ("[" in value or any(mark in value for mark in TAUGHT_SIDES)):
            yield f"tag {name} would be misread: {value}"


def faults_of_words(game):
    """Looks at the move text and fills `san` on the way."""
    if not game.words or game.words[-1] not in TAUGHT_SIDES:
        yield "no result after the moves"
        return
    if game.words[-1] != game.tags.get("Result"):
        yield f"moves end with {game.words[-1]}, tag Result says {game.tags.get('Result')}"
    number_is_due = True
    for word in game.words[:-1]:
        number = f"{len(game.san) // 2 + 1}."
        if len(game.san) % 2 == 0 and number_is_due:
            number_is_due = False
            if word == number:
                continue
            yield f"'{word}' stands where '{number}' belongs"
            return
        if not SAN.fullmatch(word):
            yield f"'{word}' is no move (after {len(game.san)} plies)"
            return
        game.san.append(word)
        number_is_due = True
    if len(game.san) < LEAST_PLIES:
        yield f"{len(game.san)} plies, fewer than {LEAST_PLIES}"
    if len(game.san) > MOST_PLIES:
        yield f"{len(game.san)} plies, more than {MOST_PLIES}"


def faults_of_marks(game, checks):
    """Captures and checks that the move text hides or invents; pgn-extract reads over them."""
    men_before = 32
    for ply, (san, check, position) in enumerate(zip(game.san, checks, game.positions)):
        men = sum(sign.isalpha() for sign in position.split()[0])
        if ("x" in san) != (men < men_before):
            yield f"{game.place}: {game.name}: wrong about a capture: {game.move_text(ply)}"
        if not san.endswith(check) or (san[-1] in "+#" and not check):
            yield f"{game.place}: {game.name}: wrong about a check: {game.move_text(ply)}"
        men_before = men


def play_games(games, lines):
    """Gives each game its moves and positions by one run of pgn-extract; the faults it reports.

    Only these games' lines are handed over, each at its own number, so that a game of bad form
    cannot spoil its neighbours.
    """
    text = [""] * len(lines)
    for game in games:
        text[game.line - 1:game.last_line] = lines[game.line - 1:game.last_line]
        text[game.line - 1] = f'[{PLACE_TAG} "{game.line}"] ' + lines[game.line - 1]
    run = subprocess.run(
        [find_program("pgn-extract"), "-s", "-Wlalg", "--fencomments", "--nofauxep",
         "--nomovenumbers", "-w", "100000"],
        input="\n".join(text) + "\n", capture_output=True, text=True, check=False)
    if run.returncode != 0:
        raise OutsideFault(f"pgn-extract ended with status {run.returncode}: {run.stderr}")

    played = {}
    for part in run.stdout.split("[Event ")[1:]:
        place = re.search(rf'\[{PLACE_TAG} "(\d+)"\]', part)
        if place is not None:
            played[int(place[1])] = OUTSIDE_MOVE.findall(part)
    reported = [(int(line), f"{move}: {reason}")
                for reason, line, move in OUTSIDE_FAULT.findall(run.stderr)]
    faults = []
    for game in games:
        reasons = [why for line, why in reported if game.line <= line <= game.last_line]
        steps = played.get(game.line, [])
        if reasons or len(steps) != len(game.san):
            why = "; ".join(reasons) or "pgn-extract does not take this game"
            faults.append(f"{game.place}: {game.name}: illegal: {why}")
            continue
        game.moves = tuple(move for move, _, _ in steps)
        game.positions = [" ".join(fen.split()[:4]) for _, _, fen in steps]
        faults += faults_of_marks(game, [check for _, check, _ in steps])
    return faults


def read_games(paths):
    """The sound games of all files, and a line for each fault of form or of chess."""
    sound, faults = [], []
    for path in paths:
        games, file_faults, lines = read_file(path)
        faults += file_faults
        well_formed = []
        for game in games:
            found = list(faults_of_tags(game)) + list(faults_of_words(game))
            faults += [f"{game.place}: {fault}" for fault in found]
            if not found:
                well_formed.append(game)
        faults += play_games(well_formed, lines)
        sound += [game for game in well_formed if game.moves]
    return sound, faults


def fault_of_copies(copies):
    """What is wrong with games of the same moves; None where each has its number."""
    if len({game.result for game in copies}) > 1:
        return "copies with different results"
    if len(copies) > 1 and any("Repeat" not in game.tags for game in copies):
        return "the same moves twice without Repeat"
    numbers = sorted(tuple(map(int, REPEAT.fullmatch(game.tags.get("Repeat", "1 of 1")).groups()))
                     for game in copies)
    if numbers != [(index, len(copies)) for index in range(1, len(copies) + 1)]:
        return "Repeat must count its copies: " + ", ".join(f"{i} of {n}" for i, n in numbers)
    return None


def distinct_games(games):
    """One game for each sequence of moves, in their order, with the number of its copies; and
    the faults of games that repeat one another or stop inside another one."""
    same = defaultdict(list)
    for game in games:
        same[game.moves].append(game)
    faults = []
    for copies in same.values():
        fault = fault_of_copies(copies)
        if fault:
            places = ", ".join(game.place for game in copies)
            faults.append(f"{places}: {copies[0].name}: {fault}")
    inside = {}
    for copies in same.values():
        for length in range(1, len(copies[0].moves)):
            inside[copies[0].result, copies[0].moves[:length]] = copies[0]
    for copies in same.values():
        longer = inside.get((copies[0].result, copies[0].moves))
        if longer is not None:
            faults.append(f"{copies[0].place}: {copies[0].name}: all its moves begin "
                          f"{longer.place} {longer.name} already")
    return [(copies[0], len(copies)) for copies in same.values()], faults
