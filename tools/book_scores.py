# SPDX-License-Identifier: MIT
"""What stockfish thinks of positions, remembered in a file.

Every position is searched alone, from an empty table and without the moves that led to it, so
that neither the order of the work nor the way to a position changes its score.
"""

import queue
import subprocess
import sys
import threading

from book_games import OutsideFault, find_program

HASH_MEGABYTES = 64
MATE = 10000  # centipawns; any mate counts as this much


class Judge:
    """One running engine of the UCI kind."""

    def __init__(self, program):
        self.program = program
        try:
            # A session of its own: an interrupt of the terminal is for the caller to handle.
            self.process = subprocess.Popen([find_program(program)], stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, text=True,
                                            start_new_session=True)
        except OSError as fault:
            raise OutsideFault(f"{program} does not start: {fault}") from fault
        names = [line for line in self._ask("uci", "uciok") if line.startswith("id name ")]
        if not names:
            raise OutsideFault(f"{program} does not say its name")
        self.name = names[0].removeprefix("id name ")
        self._ask(f"setoption name Threads value 1\nsetoption name Hash value {HASH_MEGABYTES}\n"
                  "isready", "readyok")

    def close(self):
        self.process.kill()
        self.process.wait()

    def _ask(self, commands, last_line_begins):
        lines = []
        try:
            self.process.stdin.write(commands + "\n")
            self.process.stdin.flush()
            while not lines or not lines[-1].startswith(last_line_begins):
                line = self.process.stdout.readline()
                if not line:
                    raise OutsideFault(f"{self.program} ended after: {commands}")
                lines.append(line.rstrip("\n"))
        except (OSError, ValueError) as fault:
            raise OutsideFault(f"{self.program} ended after: {commands}") from fault
        return lines

    def score(self, position, depth):
        """Centipawns from White's point of view."""
        lines = self._ask(f"ucinewgame\nposition fen {position} 0 1\ngo depth {depth}",
                          "bestmove")
        told = [line.split() for line in lines if line.startswith("info ") and " score " in line
                and " lowerbound" not in line and " upperbound" not in line]
        if not told:
            raise OutsideFault(f"{self.program} gives no score for {position}")
        unit, value = told[-1][told[-1].index("score") + 1:][:2]
        value = int(value)
        if unit == "mate":
            value = MATE if value > 0 else -MATE  # mate 0: the side to move is mated
        return value if position.split()[1] == "w" else -value


class ScoreFile:
    """Position, depth and score, a line each; the first line names the engine that gave them.

    A path of None remembers for this run only. A line that an interrupted run left unfinished
    is cut off.
    """

    def __init__(self, path, engine_name):
        self.scores = {}
        self.file = None
        if path is None:
            return
        head = f"# {engine_name}; position, depth, centipawns for White"
        self.file = open(path, "a+", encoding="utf-8")  # closed with the object
        self.file.seek(0)
        text = self.file.read()
        whole = text[:text.rfind("\n") + 1]
        if whole != text:
            self.file.truncate(len(whole.encode("utf-8")))
        lines = whole.splitlines()
        if not lines:
            self._add(head)
        elif lines[0] != head:
            raise OutsideFault(f"{path} is of another engine: it begins '{lines[0]}', "
                               f"expected '{head}'")
        for number, line in enumerate(lines[1:], 2):
            try:
                position, depth, score = line.split("\t")
                self.scores[position, int(depth)] = int(score)
            except ValueError as fault:
                raise OutsideFault(f"{path}:{number}: not understood: {line}") from fault

    def close(self):
        if self.file is not None:
            self.file.close()

    def _add(self, line):
        if self.file is not None:
            self.file.write(line + "\n")
            self.file.flush()

    def put(self, position, depth, score):
        self.scores[position, depth] = score
        self._add(f"{position}\t{depth}\t{score}")


def _work(judge, depth, waiting, found):
    """A thread's life: take a position, give its score or the fault that ends the run."""
    try:
        while True:
            position = waiting.get_nowait()
            found.put((position, judge.score(position, depth)))
    except queue.Empty:
        return
    except OutsideFault as fault:
        found.put((None, fault))


def _show_progress(done, total):
    if sys.stderr.isatty():
        end = "\n" if done == total else ""
        print(f"\rpositions judged: {done} of {total}", end=end, file=sys.stderr, flush=True)


def find_scores(positions, depth, program, cache_path, jobs):
    """The engine's name and the scores by position.

    An interrupt ends the work early; then some scores are missing.
    """
    judges = [Judge(program)]
    store = None
    try:
        store = ScoreFile(cache_path, judges[0].name)
        missing = [p for p in dict.fromkeys(positions) if (p, depth) not in store.scores]
        waiting, found = queue.SimpleQueue(), queue.SimpleQueue()
        for position in missing:
            waiting.put(position)
        judges += [Judge(program) for _ in range(min(jobs, len(missing)) - 1)]
        for judge in judges:
            threading.Thread(target=_work, args=(judge, depth, waiting, found),
                             daemon=True).start()
        for done in range(1, len(missing) + 1):
            position, score = found.get()
            if position is None:
                raise score
            store.put(position, depth, score)
            _show_progress(done, len(missing))
    except KeyboardInterrupt:
        if store is None:
            raise
    finally:
        for judge in judges:
            judge.close()
        if store is not None:
            store.close()
    scores = {p: store.scores[p, depth] for p in positions if (p, depth) in store.scores}
    return judges[0].name, scores
