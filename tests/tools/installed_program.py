#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs the program into an empty folder and starts it as a new user would.

    installed_program.py CMAKE BUILD_FOLDER

The launcher has to give each user a folder with settings and book, to keep what the user has there,
and to answer a first move from the book.
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

BOOKS = ("cwhite", "cblack")
LAUNCHER = "bin/corvane"
TABLE_MAKER = "bin/corvane-tbgen"
WORDS = "new\nforce\ne2e4\ngo\nquit\n"
LOADED = ["Loading white book...", "Loading black book..."]


def install(cmake, build, prefix):
    subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)


def start(launcher, environment):
    """The lines that the program prints for a short game."""
    done = subprocess.run([launcher], input=WORDS, env=environment, capture_output=True,
                          encoding="utf-8", timeout=60, check=True)
    if done.stderr:
        raise AssertionError(f"on standard error: {done.stderr}")
    return done.stdout.splitlines()


def expect_book_game(lines):
    if [line for line in lines if line in LOADED] != LOADED:
        raise AssertionError(f"the books are not loaded: {lines}")
    moves = [line for line in lines if line.startswith("move ")]
    if len(moves) != 1 or "1 " not in "".join(lines[lines.index(LOADED[1]):]):
        raise AssertionError(f"no move of the book: {lines}")


def check(cmake, build, folder):
    prefix = folder / "with blank"
    home = folder / "home of a user"
    home.mkdir()
    install(cmake, build, prefix)
    launcher = str(prefix / LAUNCHER)
    environment = {**os.environ, "HOME": str(home)}
    for name in ("CORVANE_HOME", "XDG_DATA_HOME"):
        environment.pop(name, None)

    expect_book_game(start(launcher, environment))
    user_folder = home / ".local/share/corvane"
    found = sorted(path.name for path in user_folder.iterdir())
    if found != sorted([*BOOKS, "corvane.ini", "corvane.log"]):
        raise AssertionError(f"in the user's folder: {found}")

    # What the user has made of the book stays.
    for book in BOOKS:
        (user_folder / book).write_text("e2e4g8h6\n", encoding="ascii")
    if "move g8h6 " not in start(launcher, environment):
        raise AssertionError("the user's own book is not used")

    # Tables that it makes are found by name.
    tables = folder / "tables"
    subprocess.run([str(prefix / TABLE_MAKER), "--out", str(tables), "kqk"], check=True,
                   stdout=subprocess.DEVNULL, timeout=120)
    (user_folder / "corvane.ini").write_text(f"TbPath: {tables}\n", encoding="ascii")
    if "Loading 3-man Endgame  Bases..." not in start(launcher, environment):
        raise AssertionError("the tables are not found")

    # A folder of choice, through a link to the launcher.
    link = folder / "link"
    link.symlink_to(launcher)
    chosen = folder / "chosen"
    expect_book_game(start(str(link), {**environment, "CORVANE_HOME": str(chosen)}))
    if not (chosen / "corvane.ini").exists():
        raise AssertionError("the chosen folder is not used")


def main():
    if len(sys.argv) != 3:
        raise SystemExit(__doc__)
    with tempfile.TemporaryDirectory(prefix="corvane-install-") as folder:
        check(sys.argv[1], sys.argv[2], Path(folder))
    print("installed_program: installed, started, played from the book")


if __name__ == "__main__":
    main()
