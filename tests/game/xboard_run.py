# SPDX-License-Identifier: MIT
"""Runs one match of two engines under Debian's xboard, on a screen that nobody sees.

Leaves the games, xboard's debug file and the engines' standard error in the match's folder. What
they say is judged elsewhere.
"""

import os
import shutil
import signal
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

from outside_chess import GAME_PATH, OutsideFault, find_program

# How long a process may take to end when told so.
LAST_BREATH_S = 10
# xboard's debug file grows with every line that an engine prints. When it stands still for so long,
# xboard shows a window and waits for a click, as it does when an engine has died.
SILENCE_S = 45
POLL_S = 0.2
# An engine without `ping` may still be busy with the old game when the next one begins.
PAUSE_BETWEEN_GAMES_MS = 500
# The move that a last claim was made with comes behind it; `quit` brings a termination signal.
PAUSE_BEFORE_QUIT_MS = 500

# The opening book that ships with the engine. Without it the engine's start says that a book was
# not found, and xboard listens no more.
BOOK = Path(__file__).resolve().parents[2] / "data" / "book"

# Between xboard and the engine: keeps the engine's standard error, and sets the interrupt signal
# to its default action. A test that was started in the background has it ignored, and an ignored
# signal stays ignored in every child, which would hide an engine that dies of it.
LAUNCHER = """#!{python}
import os, signal
errors = os.open({errors!r}, os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o644)
os.dup2(errors, 2)
os.close(errors)
signal.signal(signal.SIGINT, signal.SIG_DFL)
os.execv({program!r}, [{program!r}])
"""


def dies_with_us(signal_name):
    """Prefix of a command whose process gets the signal when this test is killed."""
    return [find_program("setpriv"), "--pdeathsig", signal_name]


class VirtualScreen:
    """An X server of our own, on the first free display."""

    def __enter__(self):
        reader, writer = os.pipe()
        self.process = subprocess.Popen(
            [*dies_with_us("TERM"), find_program("Xvfb"), "-displayfd", str(writer),
             "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[writer], start_new_session=True, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as pipe:
            number = pipe.readline().strip()
        if not number:
            self.__exit__()
            raise OutsideFault("Xvfb does not start")
        self.display = f":{number}"
        return self

    def __exit__(self, *_):
        # Only SIGTERM lets the server remove its lock and socket.
        self.process.terminate()
        try:
            self.process.wait(timeout=LAST_BREATH_S)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


@dataclass(frozen=True)
class MatchPlan:
    name: str
    games: int               # the colours change after each game, the opening after two
    control: tuple           # xboard's options for the clock
    level: str               # what the engine has to be told about it
    openings: tuple          # numbers of games in the openings file, from 0
    limit_s: float           # far beyond what the match takes
    depth: int = 0           # fixed depth; 0 for none
    against_itself: bool = False


def split_pgn(text):
    """The games of a PGN file, as text; each begins with its Event tag."""
    pieces = ("\n" + text).split("\n[Event ")
    return ["[Event " + piece for piece in pieces[1:]]


class MatchRun:
    """One match in a folder of its own."""

    def __init__(self, plan, program, openings, folder):
        self.plan = plan
        self.folder = folder
        self.games_file = folder / "games.pgn"
        self.debug_file = folder / "debug.txt"
        self.xboard_file = folder / "xboard.txt"
        self.openings_file = folder / "openings.pgn"
        if folder.exists():
            shutil.rmtree(folder)
        folder.mkdir(parents=True)
        lines = split_pgn(openings.read_text(encoding="utf-8"))
        self.openings_file.write_text("".join(lines[i] for i in plan.openings), encoding="utf-8")
        self.engines = {"first": self._prepare_engine("first", program)}
        if plan.against_itself:
            self.engines["second"] = self._prepare_engine("second", program)

    def _prepare_engine(self, name, program):
        """The folder in which the program runs, with its launcher."""
        engine_folder = self.folder / name
        engine_folder.mkdir()
        for book in ("cwhite", "cblack"):
            shutil.copy(BOOK / book, engine_folder)
        launcher = engine_folder / "launch"
        launcher.write_text(LAUNCHER.format(python=sys.executable, program=str(program),
                                            errors=str(self.error_file(name))), encoding="utf-8")
        launcher.chmod(0o755)
        return engine_folder

    def error_file(self, name):
        return self.folder / f"{name}_stderr.txt"

    def _command(self):
        plan = self.plan
        command = [*dies_with_us("KILL"), find_program("xboard"),
                   "-fcp", "./launch", "-fd", str(self.engines["first"])]
        if plan.against_itself:
            command += ["-scp", "./launch", "-sd", str(self.engines["second"])]
        else:
            opponent_folder = self.folder / "opponent"
            opponent_folder.mkdir()
            command += ["-scp", find_program("fairymax"), "-sd", str(opponent_folder)]
        command += [*plan.control, "-matchGames", str(plan.games)]
        if plan.depth:
            command += ["-searchDepth", str(plan.depth)]
        # Each opening twice, once with either colour.
        command += ["-loadGameFile", str(self.openings_file), "-loadGameIndex", "-2",
                    "-timeDelay", "0"]
        command += ["-saveGameFile", str(self.games_file), "-debugMode", "true",
                    "-nameOfDebugFile", str(self.debug_file)]
        # The referee: flags fall, the rules of chess end games, scores do not. A claim is taken
        # as it is and judged by the test: the engine claims a draw before the move that makes
        # it, which xboard, knowing only the moves before, would call false.
        command += ["-autoCallFlag", "true", "-checkMates", "true", "-testClaims", "false",
                    "-materialDraws", "true", "-trivialDraws", "true", "-ruleMoves", "51",
                    "-repeatsToDraw", "6", "-adjudicateLossThreshold", "0",
                    "-adjudicateDrawMoves", "0"]
        # Nothing that waits for a click, makes a noise or outlives the run.
        command += ["-matchPause", str(PAUSE_BETWEEN_GAMES_MS),
                    "-delayBeforeQuit", str(PAUSE_BEFORE_QUIT_MS), "-popupExitMessage", "false",
                    "-popupMoveErrors", "false", "-soundProgram", "", "-animateMoving", "false",
                    "-ponderNextMove", "false", "-showThinking", "true",
                    "-saveSettingsOnExit", "false"]
        return command

    def run(self, display):
        """Text of what went wrong with xboard itself; empty when it ended by itself."""
        environment = {**os.environ, "DISPLAY": display, "HOME": str(self.folder),
                       "PATH": GAME_PATH, "LC_ALL": "C.UTF-8", "NO_AT_BRIDGE": "1"}
        with open(self.xboard_file, "wb") as output:
            process = subprocess.Popen(self._command(), cwd=self.folder, env=environment,
                                       stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                       start_new_session=True)
            try:
                return self._wait(process)
            finally:
                self._end_group(process)

    def _wait(self, process):
        started = last_growth = time.monotonic()
        size = 0
        while process.poll() is None:
            time.sleep(POLL_S)
            now = time.monotonic()
            new_size = self.debug_file.stat().st_size if self.debug_file.exists() else 0
            if new_size != size:
                size, last_growth = new_size, now
            if now - last_growth > SILENCE_S:
                return f"nothing has happened for {SILENCE_S} s; has an engine died?"
            if now - started > self.plan.limit_s:
                return f"xboard has not ended within {self.plan.limit_s:.0f} s"
        return f"xboard ended with status {process.returncode}" if process.returncode else ""

    @staticmethod
    def _end_group(process):
        """xboard and its engines share a process group of their own; nothing of it stays."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait(timeout=LAST_BREATH_S)

    @staticmethod
    def read(path):
        path = Path(path)
        return path.read_text(encoding="utf-8", errors="replace") if path.exists() else ""
