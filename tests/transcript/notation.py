# SPDX-License-Identifier: MIT
"""The notation of transcripts: what a file says of the runs of the program. run.py explains it."""

import re
from pathlib import Path

HERE = Path(__file__).resolve().parent
DATA = HERE.parent / "data"
LOG = "corvane.log"
KEYWORDS = ("file", "copy", "folder", "link", "send", "stdout", "log", "both", "leaves", "absent",
            "status", "run")
TEXT_COLUMN = 7
ESCAPES = {"s": " ", "\\": "\\", "r": "\r", "n": "\n", "t": "\t"}


class TranscriptError(Exception):
    """The transcript itself is at fault."""


def decode(text):
    """The characters that TEXT stands for, and whether a line end follows them."""
    result = []
    at = 0
    while at < len(text):
        if text[at] != "\\":
            result.append(text[at])
            at += 1
            continue
        rest = text[at + 1 :]
        repeat = re.match(r"\*(\d+)\{([^}]*)\}", rest)
        code = re.match(r"x([0-9a-f]{2})", rest)
        if rest == "c":
            return "".join(result), False
        if repeat:
            result.append(decode(repeat.group(2))[0] * int(repeat.group(1)))
            at += 1 + repeat.end()
        elif code:
            result.append(chr(int(code.group(1), 16)))
            at += 1 + code.end()
        elif rest[:1] in ESCAPES:
            result.append(ESCAPES[rest[0]])
            at += 2
        else:
            raise TranscriptError(f"unknown escape in: {text}")
    return "".join(result), True


def encode(line):
    """One line (no line end) in the notation of transcripts, so that a difference can be pasted."""
    body = line.rstrip(" ")
    tail = "\\s" * (len(line) - len(body))
    shown = "".join(
        "\\\\" if c == "\\" else c if " " <= c <= "~" else f"\\x{ord(c):02x}" for c in body
    )
    return shown + tail


def encoded_lines(content):
    """The lines of a stream in transcript notation; a missing last line end is marked."""
    lines = content.split("\n")
    last = lines.pop()
    shown = [encode(line) for line in lines]
    return shown + [encode(last) + "\\c"] if last else shown


def read_lines(path):
    lines = path.read_text(encoding="latin-1").split("\n")
    if lines.pop() != "":
        raise TranscriptError(f"{path.name}: no line end at the end of the file")
    for number, line in enumerate(lines, 1):
        if line != line.rstrip():
            raise TranscriptError(f"{path.name}:{number}: blank at the end of the line")
    return lines


def texts_of(text):
    """What one TEXT adds to a stream."""
    if re.fullmatch(r"@\w+", text):
        fragment = HERE / "fragments" / f"{text[1:]}.txt"
        return "".join(texts_of(line) for line in read_lines(fragment) if line[:1] != "#")
    characters, line_end = decode(text)
    return characters + ("\n" if line_end else "")


def bytes_of(text):
    """The bytes that `FROM` or `FROM A:B` stand for, a character each."""
    match = re.fullmatch(r"(\S+)(?: +(\d*):(\d*))?", text)
    if not match:
        raise TranscriptError(f"no file or part of one: {text}")
    begin, end = (int(place) if place else None for place in match.groups()[1:])
    return (DATA / match[1]).read_bytes()[begin:end].decode("latin-1")


class Run:
    """One start of the program: what it is given and what is expected of it."""

    def __init__(self):
        self.files = {}
        self.folders = []
        self.links = {}
        self.stdin = ""
        self.stdout = ""
        self.log_parts = []  # ("text", ...), ("stdout",) or ("before",)
        self.leaves = {}
        self.absent = []
        self.status = 0

    def expected_log(self, before):
        parts = {"stdout": self.stdout, "before": before}
        return "".join(p[1] if p[0] == "text" else parts[p[0]] for p in self.log_parts)

    def says_nothing_of_the_log(self):
        return not self.log_parts and LOG not in self.absent and LOG not in self.leaves

    def add(self, keyword, text):
        name, _, rest = text.partition(" ")
        rest = rest.lstrip(" ")
        if keyword in ("file", "leaves"):
            target = self.files if keyword == "file" else self.leaves
            target[name] = target.get(name, "") + (texts_of(rest) if rest else "")
        elif keyword == "copy":
            self.files[name] = self.files.get(name, "") + bytes_of(rest)
        elif keyword == "link":
            self.links[name] = rest
        elif keyword == "status":
            if not text.isdecimal():
                raise TranscriptError(f"no exit status: {text}")
            self.status = int(text)
        elif keyword == "folder":
            self.folders.append(name)
        elif keyword == "absent":
            self.absent.append(name)
        elif keyword == "send":
            self.stdin += texts_of(text)
        elif keyword == "log" and text in ("as stdout", "as before"):
            self.log_parts.append((text.split()[1],))
        else:
            if keyword in ("stdout", "both"):
                self.stdout += texts_of(text)
            if keyword in ("log", "both"):
                self.log_parts.append(("text", texts_of(text)))


def parse(path):
    lines = read_lines(path)
    if not lines or not lines[0].startswith("# "):
        raise TranscriptError(f"{path.name}: begins without a comment on what it shows")
    runs = [Run()]
    for number, line in enumerate(lines, 1):
        if not line or line.startswith("#"):
            continue
        keyword = line[:TEXT_COLUMN].rstrip()
        if keyword not in KEYWORDS:
            raise TranscriptError(f"{path.name}:{number}: unknown keyword {keyword!r}")
        if keyword == "run":
            runs.append(Run())
            continue
        try:
            runs[-1].add(keyword, line[TEXT_COLUMN:])
        except (TranscriptError, OSError) as fault:
            raise TranscriptError(f"{path.name}:{number}: {fault}") from fault
    folders = [name for run in runs for name in run.folders]
    if LOG not in folders and any(run.says_nothing_of_the_log() for run in runs):
        raise TranscriptError(f"{path.name}: a run that says nothing of {LOG}")
    return runs
