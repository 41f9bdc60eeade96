#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the marks of deliberate oddities, their table and their tests together.

A mark stands in a comment in src/, `// Intended(name): reason`. Its row in docs/quirks.md begins
with `| name |`, and the row's last column names at least one test: `Suite.Case` of a test in
tests/, or the file name of a transcript. No mark without a row, no row without a mark and a test.
"""

import re
import sys
from pathlib import Path

MARK = re.compile(r"//.*?\bIntended\(([^)]*)\):[ \t]*(.*)")
NEARLY_A_MARK = re.compile(r"(?://|/\*|^\s*\*).*\bIntended\b\s*[:(]")
COMMENT = re.compile(r"\s*//[/!]?\s*\S")
NAME = re.compile(r"[a-z0-9]+(?:-[a-z0-9]+)*")
TEST = re.compile(r"^[ \t]*TEST(?:_F|_P)?\s*\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)
SEPARATOR = re.compile(r"\|(?:\s*:?-+:?\s*\|)+")


def find_marks(root):
    """Names with the places where they stand, and faults of form."""
    marks, faults = {}, []
    for path in sorted((root / "src").rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        name = path.relative_to(root).as_posix()
        text = path.read_text(encoding="utf-8", errors="replace")
        lines = text.splitlines()
        for number, line in enumerate(lines, 1):
            match = MARK.search(line)
            following = lines[number] if number < len(lines) else ""
            if match:
                if not NAME.fullmatch(match.group(1)):
                    faults.append(f"{name}:{number}: \"{match.group(1)}\" is no quirk's name; "
                                  "use small letters, digits and hyphens")
                elif not match.group(2).strip() and not COMMENT.match(following):
                    faults.append(f"{name}:{number}: no reason after the mark {match.group(1)}")
                else:
                    marks.setdefault(match.group(1), []).append(f"{name}:{number}")
            elif NEARLY_A_MARK.search(line):
                faults.append(f"{name}:{number}: write `// Intended(quirk-name): reason`")
    return marks, faults


def find_rows(root):
    """Rows of the tables in docs/quirks.md: name to (line, tests), and faults of form."""
    path = root / "docs" / "quirks.md"
    if not path.is_file():
        return {}, []
    rows, faults = {}, []
    lines = [line.strip() for line in path.read_text(encoding="utf-8").splitlines()]
    for number, line in enumerate(lines, 1):
        following = lines[number] if number < len(lines) else ""
        if not line.startswith("|") or SEPARATOR.fullmatch(line) or SEPARATOR.fullmatch(following):
            continue
        cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line.strip("|"))]
        name = cells[0].strip("`")
        if not NAME.fullmatch(name):
            faults.append(f"docs/quirks.md:{number}: \"{cells[0]}\" is no quirk's name")
        elif name in rows:
            faults.append(f"docs/quirks.md:{number}: {name} has a row already")
        else:
            last = cells[-1] if len(cells) > 1 else ""
            rows[name] = (number, [word.strip("`") for word in re.split(r"[,\s]+", last)
                                   if word.strip("`")])
    return rows, faults


def find_tests(root):
    """Every name that the last column may hold."""
    tests = set()
    folder = root / "tests"
    for path in sorted(folder.rglob("*.cpp")):
        text = path.read_text(encoding="utf-8", errors="replace")
        tests.update(f"{suite}.{case}" for suite, case in TEST.findall(text))
    tests.update(path.name for path in (folder / "transcript").glob("*.txt"))
    return tests


def check(root):
    """All faults, a line each, and the number of quirks."""
    root = Path(root)
    marks, faults = find_marks(root)
    rows, row_faults = find_rows(root)
    faults += row_faults
    if not marks and not rows:
        faults.append("docs/quirks.md: no row, and no mark in src/: nothing was checked")
    tests = find_tests(root)
    for name in sorted(marks.keys() - rows.keys()):
        faults.append(f"{marks[name][0]}: {name} has no row in docs/quirks.md")
    for name, (number, named) in sorted(rows.items()):
        if name not in marks:
            faults.append(f"docs/quirks.md:{number}: {name} has no mark in src/")
        if not named:
            faults.append(f"docs/quirks.md:{number}: {name} names no test in its last column")
        for test in named:
            if test not in tests:
                faults.append(f"docs/quirks.md:{number}: {name}: no such test: {test}")
    return faults, len(rows)


def main():
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent
    faults, count = check(root)
    for fault in faults:
        print(fault)
    if faults:
        print(f"check_quirks: {len(faults)} faults")
        return 1
    print(f"check_quirks: {count} quirks, each with its mark and its test")
    return 0


if __name__ == "__main__":
    sys.exit(main())
