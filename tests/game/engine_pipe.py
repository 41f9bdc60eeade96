# SPDX-License-Identifier: MIT
"""The program under test at the other end of two pipes, in an empty folder of its own.

Sends lines, collects what comes back, and keeps the whole exchange for the reader of a failure.
"""

import queue
import re
import signal
import subprocess
import threading
import time
from dataclasses import dataclass, field

from outside_chess import MOVE_TEXT

GREETING = "protover 2"
GREETING_ENDS = "feature done=1"
# A draw by repetition keeps the length of an older line; cells that this search has not reached are
# then printed as moves without squares: two blanks for each square and one behind the move.
UNREACHED_CELL = " " * 5
THINKING = re.compile(
    rf"(\d+ -?\d+) \d+ (\d+ (?:[a-h][1-8][a-h][1-8][qrbn]? |{UNREACHED_CELL})*)")
CANDIDATE = re.compile(r"\d+ [a-h][1-8][a-h][1-8] \d+ ")
CLAIM = re.compile(r"(?:1/2-1/2|1-0|0-1) \{.*\}")
TAIL_LINES = 40


class EngineFault(Exception):
    """The program under test did something that it must not do."""


def kind_of(line):
    if line.startswith("move "):
        return "move"
    if THINKING.fullmatch(line):
        return "thinking"
    if CANDIDATE.fullmatch(line):
        return "candidate"
    return "claim" if CLAIM.match(line) else "other"


def mask_time(line):
    """A thinking line without its clock field, which no two runs share."""
    return THINKING.sub(r"\1 TIME \2", line) if kind_of(line) == "thinking" else line


@dataclass
class Answer:
    """What came back for the lines sent at once."""
    lines: list = field(default_factory=list)

    def of(self, kind):
        return [line for line in self.lines if kind_of(line) == kind]

    @property
    def claims(self):
        return self.of("claim")

    def move(self):
        """The announced move, or None; more than one, or an odd form, is a fault."""
        announced = self.of("move")
        if not announced:
            return None
        if len(announced) > 1:
            raise EngineFault(f"{len(announced)} moves announced at once: {announced}")
        text = announced[0].removeprefix("move ")
        if not text.endswith(" ") or not MOVE_TEXT.fullmatch(text[:-1]):
            raise EngineFault(f"a move line of an odd form: {announced[0]!r}")
        if self.lines[-1] != announced[0]:
            raise EngineFault(f"lines after the move {announced[0]!r}: {self.lines}")
        return text[:-1]


class EnginePipe:
    """`folder` is where the program runs; `logs` gets its standard error and the transcript."""

    def __init__(self, program, folder, logs, patience_s):
        self.patience_s = patience_s
        self.error_file = logs / "stderr.txt"
        self.transcript_file = logs / "transcript.txt"
        self.transcript = []
        self.lines = queue.Queue()
        with open(self.error_file, "wb") as errors:
            # A caller may have been started with SIGINT ignored, as shells do in the background;
            # only with the default action does the signal show what the program makes of it.
            self.process = subprocess.Popen(
                [str(program)], cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                stderr=errors,
                preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.reader.join(timeout=self.patience_s)
        try:
            self.process.stdin.close()
        except BrokenPipeError:
            pass  # words that a dead program has not read
        self.process.stdout.close()
        text = "\n".join(self.transcript)
        self.transcript_file.write_text(text + "\n", encoding="utf-8")

    def _read(self):
        for raw in self.process.stdout:
            self.lines.put(raw.decode("latin-1").removesuffix("\n"))
        self.lines.put(None)

    def _next_line(self, deadline):
        try:
            line = self.lines.get(timeout=max(0.0, deadline - time.monotonic()))
        except queue.Empty:
            raise EngineFault(f"no answer within {self.patience_s} s") from None
        if line is None:
            status = self.process.wait(timeout=self.patience_s)
            raise EngineFault(f"the program has ended, with status {status}")
        self.transcript.append(f"    {line}")
        return line

    def note(self, text):
        self.transcript.append(f"--- {text}")

    def _send(self, text):
        self.transcript.append(f"> {text}")
        try:
            self.process.stdin.write((text + "\n").encode("ascii"))
            self.process.stdin.flush()
        except BrokenPipeError:
            status = self.process.wait(timeout=self.patience_s)
            raise EngineFault(f"the program has ended, with status {status}") from None

    def ask(self, text):
        """Sends lines; all that comes back before the answer to a greeting sent behind them."""
        self._send(f"{text}\n{GREETING}" if text else GREETING)
        deadline = time.monotonic() + self.patience_s
        answer = Answer()
        while True:
            line = self._next_line(deadline)
            if line == GREETING_ENDS:
                return answer
            if not line.startswith("feature "):
                answer.lines.append(line)

    def interrupt(self):
        self.transcript.append("(SIGINT)")
        self.process.send_signal(signal.SIGINT)

    def quit(self):
        """Ends the program in the ordinary way; its exit status, and what it said last."""
        self._send("quit")
        rest = []
        deadline = time.monotonic() + self.patience_s
        try:
            while True:
                rest.append(self._next_line(deadline))
        except EngineFault:
            if self.process.poll() is None:
                raise
        return self.process.returncode, rest

    def tail(self):
        return "\n".join(self.transcript[-TAIL_LINES:])
