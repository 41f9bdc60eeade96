# SPDX-License-Identifier: MIT
"""What a finished xboard match says: its games, its debug file, the engines' standard error.

Every fault is a line of text. A game counts when it came to an end by the laws of chess, and each
claim of a draw is proved by an outside engine.
"""

import re
import subprocess
from dataclasses import dataclass

from outside_chess import Game, find_program
from xboard_run import split_pgn

# Ends that xboard finds by itself. Every other end is a claim or a fault.
XBOARD_ENDS = re.compile(
    r"X[Bb]oard adjudication: (Checkmate|Stalemate|Insufficient mating material|Trivial draw"
    r"|50-move rule|repetition draw)"
    r"|Draw claim: (3-fold repetition|50-move rule|insufficient mating material)")
# Where the opponent loses so, or claims falsely, a game is not held against us, but does not count
# either.
SURRENDER = re.compile(r"(White|Black) ((forfeits|wins) on time|resigns)")

# Spoken by xboard itself (its own lines bear no stamp of time), or by the engine under test.
DEBUG_FAULT = re.compile(
    r"error|illegal|exited unexpectedly|forfeit|false|premature|bad move|unknown|broken pipe"
    r"|not found|no such file|permission denied|can't", re.IGNORECASE)
ENGINE_FAULT = re.compile(r"error|illegal|assert|runtime|sanitizer|resign", re.IGNORECASE)
CLAIM = re.compile(r"(1/2-1/2|1-0|0-1) ")
DEBUG_LINE = re.compile(r"\d+ ([<>])(first |second): (.*)", re.DOTALL)


@dataclass
class Finish:
    """What the debug file tells of a game's end beyond its record."""
    claimant: str = ""       # "first " or "second", the engine that last claimed a result
    late_move: str = ""      # announced after the end: the move that a claim was made with


@dataclass
class PlayedGame:
    number: int
    tags: dict
    moves: list          # e2e4, e7e8q
    result: str
    comment: str         # why it ended

    def __str__(self):
        return f"game {self.number} ({self.result} {{{self.comment}}})"


def read_games(path, faults):
    """The games of a PGN file; what pgn-extract complains of is a fault."""
    run = subprocess.run([find_program("pgn-extract"), "-s", "-Wuci", "-C", "--notags",
                          "--noresults", "-w", "1000000", str(path)], stdin=subprocess.DEVNULL,
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    if run.returncode != 0 or run.stderr.strip():
        faults.append(f"pgn-extract, status {run.returncode}: {run.stderr.strip()[:1000]}")
    move_rows = [row.lower().split() for row in run.stdout.splitlines() if row.strip()]
    texts = split_pgn(path.read_text(encoding="utf-8"))
    if len(move_rows) != len(texts):
        faults.append(f"pgn-extract reads {len(move_rows)} of {len(texts)} games")
        return []
    games = []
    for number, (text, moves) in enumerate(zip(texts, move_rows), 1):
        tags = dict(re.findall(r'^\[(\w+) "(.*)"\]$', text, re.MULTILINE))
        end = re.search(r"\{([^{}]*)\}\s*(1-0|0-1|1/2-1/2|\*)\s*\Z", text)
        comment, result = (" ".join(end[1].split()), end[2]) if end else ("", "*")
        games.append(PlayedGame(number, tags, moves, result, comment))
    return games


class MatchVerdict:
    """Judges one `MatchRun` that has been run."""

    def __init__(self, run, outside):
        self.plan = run.plan
        self.run = run
        self.outside = outside
        self.faults = []
        self.counted = 0            # games that came to a proper end
        self.as_white = 0           # of these, with the first engine as White
        self.ends = []
        self.moves = 0
        self.interrupts = 0

    def judge(self):
        for name in self.run.engines:
            self._judge_errors(name)
        debug = self.run.read(self.run.debug_file).split("\n")
        self._judge_debug(debug)
        if not self.run.games_file.exists():
            self.faults.append("no game was saved")
            return
        games = read_games(self.run.games_file, self.faults)
        if len(games) != self.plan.games:
            self.faults.append(f"{len(games)} games instead of {self.plan.games}")
        finishes = self._read_finishes(debug)
        openings = read_games(self.run.openings_file, self.faults)
        if len(finishes) != len(games):
            self.faults.append(f"{len(finishes)} ends of games in the debug file, "
                               f"{len(games)} in the saved file")
            return
        for game, finish in zip(games, finishes):
            self.moves += len(game.moves)
            self._judge_opening(game, openings)
            self._judge_end(game, finish)

    def _judge_errors(self, name):
        path = self.run.error_file(name)
        if not path.exists():
            self.faults.append(f"the {name} engine was never started")
        elif path.stat().st_size:
            self.faults.append(f"{name} engine, standard error: {self.run.read(path)[:2000]}")

    def _judge_debug(self, lines):
        ours = {f"{name:6}" for name in self.run.engines}
        if not any(line.startswith("Interrupting first") for line in lines):
            self.faults.append("xboard sent the engine no interrupt signal")
        self.interrupts = sum(line.startswith("Interrupting ") for line in lines)
        sent = set()
        for line in lines:
            match = DEBUG_LINE.fullmatch(line)
            if match is None:
                if DEBUG_FAULT.search(line):
                    self.faults.append(f"debug file: {line}")
            elif match[2] in ours:
                if match[1] == ">":
                    sent.add(match[3])
                elif ENGINE_FAULT.search(match[3]):
                    self.faults.append(f"{match[2].strip()} engine says: {match[3]}")
        due = [self.plan.level] + ([f"sd {self.plan.depth}"] if self.plan.depth else [])
        self.faults += [f"the engine was not told: {text}" for text in due if text not in sent]

    def _read_finishes(self, lines):
        """The end of a game is its first `result` line; the next begins with `New game`."""
        finishes, claimant, over = [], "", False
        for line in lines:
            match = DEBUG_LINE.fullmatch(line)
            if line.startswith("New game ("):
                claimant, over = "", False
            elif match and match[1] == "<" and CLAIM.match(match[3]) and not over:
                claimant = match[2]
            elif match and match[1] == ">" and match[3].startswith("result ") and not over:
                finishes.append(Finish(claimant))
                over = True
            elif match and match[1] == "<" and match[3].startswith("move ") and over \
                    and match[2] == claimant:
                finishes[-1].late_move = match[3].split()[1]
        # The last move of a match may come when xboard no longer listens; our log has it.
        name = finishes[-1].claimant.strip() if finishes else ""
        if name in self.run.engines and not finishes[-1].late_move:
            finishes[-1].late_move = self._last_logged_move(name)
        return finishes

    def _judge_opening(self, game, openings):
        """The opening's moves stand at the head of the game, each opening for two games."""
        due = openings[(game.number - 1) // 2 % len(openings)].moves if openings else []
        if not due or game.moves[:len(due)] != due:
            self.faults.append(f"{game} does not begin with {' '.join(due)}, "
                               f"but with {' '.join(game.moves[:len(due)])}")

    def _judge_end(self, game, finish):
        """The odd games of a match are the ones in which the first engine has White."""
        we_are_white = game.number % 2 == 1
        if not self.plan.against_itself and self._is_fault_of_opponent(game, finish, we_are_white):
            self.ends.append(f"opponent's fault: {game.comment}")
            return
        if game.result == "*" or not game.moves or not (
                XBOARD_ENDS.fullmatch(game.comment) or self._is_claim_proved(game, finish)):
            self.faults.append(f"{game} has no proper end; it went {' '.join(game.moves)}; "
                               f"claimed by {finish.claimant or 'nobody'}, "
                               f"and after the end came {finish.late_move or 'no move'}")
            return
        self.counted += 1
        self.as_white += we_are_white
        self.ends.append(game.comment)

    def _is_fault_of_opponent(self, game, finish, we_are_white):
        if SURRENDER.fullmatch(game.comment):
            return game.result == ("1-0" if we_are_white else "0-1")
        return finish.claimant == "second" and not XBOARD_ENDS.fullmatch(game.comment) \
            and not self._is_claim_proved(game, finish)

    def _is_claim_proved(self, game, finish):
        """A claim holds in the last position, or in that after the claimant's pending move."""
        if game.result != "1/2-1/2":
            return False
        record = Game(self.outside)
        if not all(record.play(move) for move in game.moves):
            return False
        return record.is_claim_true(game.comment) or (
            record.play(finish.late_move) and record.is_claim_true(game.comment))

    def _last_logged_move(self, name):
        """The last line of the engine's log, where the line before it is a claim."""
        rows = self.run.read(self.run.engines[name] / "corvane.log").splitlines()[-2:]
        if len(rows) == 2 and CLAIM.match(rows[0]) and rows[1].startswith("move "):
            return rows[1].split()[1]
        return ""
