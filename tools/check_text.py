#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Looks at every text file of the tree: words that do not belong here, and the form of lines.

Our files explain themselves in chess or engineering terms, never by pointing at a paper that the
reader does not have. Data that is fed or compared byte for byte keeps its form.
"""

import fnmatch
import re
import subprocess
import sys
from pathlib import Path

# Each word is put together from pieces, so that this file does not hold what it looks for.
FORBIDDEN = [
    (re.compile(r"\b" + "sp" + "ec" + r"\b", re.IGNORECASE), "the paper's short name"),
    (re.compile(r"\b" + "speci" + "fications?" + r"\b", re.IGNORECASE), "the paper's name"),
    (re.compile(r"\bPa" + r"rts?\s+[0-9]+\.[0-9]+\b", re.IGNORECASE), "a chapter of a paper"),
    (re.compile(r"\bas\s+" + r"required\b", re.IGNORECASE), "a demand in place of a reason"),
]

MAX_LINE = 100
# Files whose lines are limited; documents and data have tables that cannot be wrapped.
SOURCES = ["*.cpp", "*.h", "*.py", "*.sh", "*.cmake", "CMakeLists.txt", "*/CMakeLists.txt", "dev",
           ".ci/run", ".clang-format", ".clang-tidy"]
# Kept byte for byte.
VERBATIM = ["tests/data/*", "tests/transcript/*.txt", "tests/transcript/fragments/*",
            "fuzz/corpus/*"]
TRAILING_BLANKS_ALLOWED = ["*.md"]
TABS_ALLOWED = ["Makefile", "*/Makefile", "*.mk"]
# Used where the tree is no repository, such as an unpacked archive.
NOT_OURS = {".git", "build", "run", "__pycache__"}

# A table in a C++ source stands between these, and may be as wide as it needs.
TABLE_BEGINS = re.compile(r"//\s*clang-format off\b")
TABLE_ENDS = re.compile(r"//\s*clang-format on\b")


def matches(name, patterns):
    return any(fnmatch.fnmatchcase(name, pattern) for pattern in patterns)


def list_files(root):
    """Tracked and untracked files, without those that git ignores."""
    command = ["git", "-c", "safe.directory=*", "-C", str(root), "ls-files", "-z", "--cached",
               "--others", "--exclude-standard"]
    if (root / ".git").exists():
        output = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
        names = {name.decode("utf-8", "surrogateescape") for name in output.split(b"\0") if name}
    else:
        names = {
            path.relative_to(root).as_posix() for path in root.rglob("*")
            if not NOT_OURS.intersection(path.relative_to(root).parts)
        }
    # A file that is tracked and deleted is still listed.
    return sorted(name for name in names
                  if (root / name).is_file() and not (root / name).is_symlink())


def check_words(name, lines):
    faults = []
    for pattern, what in FORBIDDEN:
        if pattern.search(name):
            faults.append(f"{name}: the file's name holds {what}")
    for number, line in enumerate(lines, 1):
        for pattern, what in FORBIDDEN:
            match = pattern.search(line)
            if match:
                faults.append(f"{name}:{number}: \"{match.group(0)}\" is {what}; "
                              "say the reason itself")
    # A pair of words may be broken over a line's end.
    for number, (line, following) in enumerate(zip(lines, lines[1:]), 1):
        tail, head = line.rstrip().rsplit(" ", 1)[-1], following.lstrip(" \t#/*>-").split(" ", 1)[0]
        for pattern, what in FORBIDDEN:
            if pattern.search(f"{tail} {head}") and not pattern.search(tail) \
                    and not pattern.search(head):
                faults.append(f"{name}:{number}: {what}, broken over two lines")
    return faults


def check_form(name, text, lines):
    faults = []
    if text and not text.endswith("\n"):
        faults.append(f"{name}: no line end at the end of the file")
    if text.endswith("\n\n"):
        faults.append(f"{name}: empty lines at the end of the file")
    source, in_table = matches(name, SOURCES), False
    for number, line in enumerate(lines, 1):
        if line.endswith("\r"):
            faults.append(f"{name}:{number}: carriage return at the end of the line")
            line = line.rstrip("\r")
        if line != line.rstrip(" \t") and not matches(name, TRAILING_BLANKS_ALLOWED):
            faults.append(f"{name}:{number}: blank at the end of the line")
        if "\t" in line and not matches(name, TABS_ALLOWED):
            faults.append(f"{name}:{number}: tab")
        if TABLE_BEGINS.search(line):
            in_table = True
        elif TABLE_ENDS.search(line):
            in_table = False
        if source and not in_table and len(line) > MAX_LINE:
            faults.append(f"{name}:{number}: {len(line)} columns, more than {MAX_LINE}")
    return faults


def check_file(root, name):
    """All faults of one file; a file with a zero byte is no text and has none."""
    data = (root / name).read_bytes()
    if b"\0" in data:
        return []
    verbatim = matches(name, VERBATIM)
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError:
        if not verbatim:
            return [f"{name}: not UTF-8"]
        text = data.decode("latin-1")
    lines = text.split("\n")
    faults = check_words(name, lines)
    if not verbatim:
        faults += check_form(name, text, lines)
    return faults


def check(root):
    """All faults of the tree, a line each, and the number of files looked at."""
    root = Path(root)
    names = list_files(root)
    faults = [fault for name in names for fault in check_file(root, name)]
    if not names:
        faults.append(f"{root}: no file found")
    return faults, len(names)


def main():
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent
    faults, count = check(root)
    for fault in faults:
        print(fault)
    if faults:
        print(f"check_text: {len(faults)} faults")
        return 1
    print(f"check_text: {count} files, no fault")
    return 0


if __name__ == "__main__":
    sys.exit(main())
