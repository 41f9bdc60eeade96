#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the list of strata and refuses an include that goes upward.

A file may include files of its own stratum or of lower ones; no chain of includes may come back
to its start. Besides, only the standard library is included, except for the few system headers
of src/platform. A new file gets its place in STRATA first.
"""

import fnmatch
import re
import sys
from pathlib import Path

# Patterns over the path below src/ without its ending; the first match decides.
STRATA = [
    (0, ["platform/*", "shell/log", "shell/game_record", "shell/word_reader"]),
    (1, ["board/types", "board/move", "board/move_list", "board/undo_record", "board/search_line",
         "board/table", "board/side_traits", "board/square_tables", "board/piece_keys",
         "shell/engine_state"]),
    (2, ["board/geometry", "board/position_keys", "board/set_up", "shell/position_text",
         "shell/fen_board", "shell/draw_claims"]),
    (3, ["board/attack", "board/make_report", "board/make", "board/make_*", "board/unmake",
         "board/generate", "board/generate_*", "board/perft", "board/perft_suite"]),
    (4, ["eval/*", "tb/*", "book/book_lines", "book/book_move"]),
    (5, ["search/*"]),
    (6, ["drivers/*", "book/pgn_words", "book/book_builder", "book/short_algebraic",
         "book/book_files", "book/build_progress"]),
    (7, ["shell/config", "shell/edit_command", "shell/move_input", "shell/commands",
         "shell/command_handlers", "shell/command_loop", "shell/start_up", "shell/main"]),
]

# The same once more inside tb/: the decoder knows no catalogue, the catalogue no cache.
TB_STRATA = [
    (0, ["tb/tb_types", "tb/tb_settings", "tb/tb_memory", "tb/table_names", "tb/bit_reader",
         "tb/checksum"]),
    (1, ["tb/index/*", "tb/code_table"]),
    (2, ["tb/decoder", "tb/read_header", "tb/decode_block"]),
    (3, ["tb/catalogue", "tb/catalogue_rows", "tb/key_tree"]),
    (4, ["tb/block_cache", "tb/resident"]),
    (5, ["tb/probe_raw", "tb/register"]),
    (6, ["tb/search_probe", "tb/start_tables"]),
]

# A folder that may use only these, whatever its stratum.
ONLY = {
    "eval/*": ["eval/*", "board/*", "platform/*"],
    "tb/*": ["tb/*", "board/*", "shell/log", "platform/*"],
}

WINDOWS_FILE = "platform/mapped_file_windows.cpp"
CLOCK_HEADER = "platform/clock.h"
SYSTEM_HEADERS = {
    "fcntl.h", "io.h", "sys/mman.h", "sys/resource.h", "sys/stat.h", "sys/time.h", "time.h",
    "unistd.h",
}
STANDARD_HEADERS = set(
    """
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv
    chrono cinttypes climits clocale cmath compare complex concepts condition_variable coroutine
    csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype
    deque exception execution filesystem format forward_list fstream functional future
    initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map
    memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio
    regex scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept
    stop_token streambuf string string_view strstream syncstream system_error thread tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector
    version
    """.split()
)

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]*)"|<([^>]*)>)')


def place(strata, unit):
    """The number of the stratum of a unit (a path without its ending), or None."""
    for number, patterns in strata:
        if any(fnmatch.fnmatchcase(unit, pattern) for pattern in patterns):
            return number
    return None


def unit_of(path):
    return path.rsplit(".", 1)[0]


def is_one_of(unit, patterns):
    return any(fnmatch.fnmatchcase(unit, pattern) for pattern in patterns)


def read_includes(src):
    """For each source file: (line, name, whether in quotes) of its includes."""
    includes = {}
    for path in sorted(src.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        rows = []
        text = path.read_text(encoding="utf-8", errors="replace")
        for number, line in enumerate(text.splitlines(), 1):
            match = INCLUDE.match(line)
            if match:
                quoted = match.group(1) is not None
                rows.append((number, match.group(1) if quoted else match.group(2), quoted))
        includes[path.relative_to(src).as_posix()] = rows
    return includes


def check_system_include(name, header):
    """Why this file may not include <header>, or None."""
    if header in STANDARD_HEADERS:
        return None
    if header == "windows.h":
        return None if name == WINDOWS_FILE else f"<windows.h> belongs to {WINDOWS_FILE} alone"
    if header in SYSTEM_HEADERS:
        inside = name.startswith("platform/") and name.endswith(".cpp")
        return None if inside else f"<{header}> belongs to the sources of platform/ alone"
    return f"<{header}> is not of the standard library"


def check_project_include(name, header):
    """Why this file may not include "header", or None. Both have their strata."""
    unit, other = unit_of(name), unit_of(header)
    if place(STRATA, other) > place(STRATA, unit):
        return (f'"{header}" lies higher: stratum {place(STRATA, other)} '
                f"above {place(STRATA, unit)}")
    for folder, allowed in ONLY.items():
        if is_one_of(unit, [folder]) and not is_one_of(other, allowed):
            return f'"{header}" is not for {folder}, which uses only {", ".join(allowed)}'
    if is_one_of(unit, ["tb/*"]) and is_one_of(other, ["tb/*"]):
        if place(TB_STRATA, other) > place(TB_STRATA, unit):
            return f'"{header}" lies higher inside tb/'
    return None


def find_cycle(graph):
    """A chain of files that comes back to its start, or an empty list."""
    done = set()

    def walk(name, way):
        if name in way:
            return way[way.index(name):] + [name]
        if name in done:
            return []
        for other in graph[name]:
            cycle = walk(other, way + [name])
            if cycle:
                return cycle
        done.add(name)
        return []

    for name in sorted(graph):
        cycle = walk(name, [])
        if cycle:
            return cycle
    return []


def reachable(graph, start):
    seen, todo = set(), [start]
    while todo:
        name = todo.pop()
        if name not in seen:
            seen.add(name)
            todo.extend(graph[name])
    return seen


def check(root):
    """All faults of the tree below root/src, a line each."""
    src = Path(root) / "src"
    includes = read_includes(src)
    faults = []
    if not includes:
        return [f"{src}: no source file found"]

    placed = set()
    for name in includes:
        unit = unit_of(name)
        if place(STRATA, unit) is None:
            faults.append(f"src/{name}: no stratum; give it one in tools/check_includes.py")
        elif is_one_of(unit, ["tb/*"]) and place(TB_STRATA, unit) is None:
            faults.append(f"src/{name}: no place inside tb/; give it one in TB_STRATA")
        else:
            placed.add(name)

    graph = {name: [] for name in includes}
    for name, rows in includes.items():
        for line, header, quoted in rows:
            fault = None
            if not quoted:
                fault = check_system_include(name, header)
            elif header not in includes:
                fault = f'"{header}" is no file below src/; project headers go by full path'
            else:
                graph[name].append(header)
                if name in placed and header in placed:
                    fault = check_project_include(name, header)
            if fault:
                faults.append(f"src/{name}:{line}: {fault}")

    cycle = find_cycle(graph)
    if cycle:
        faults.append("cycle of includes: " + " -> ".join(cycle))
    if WINDOWS_FILE in graph and CLOCK_HEADER in reachable(graph, WINDOWS_FILE):
        faults.append(f"src/{WINDOWS_FILE}: sees {CLOCK_HEADER}, whose names <windows.h> has too")
    return faults


def main():
    root = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent
    faults = check(root)
    for fault in faults:
        print(fault)
    if faults:
        print(f"check_includes: {len(faults)} faults")
        return 1
    print(f"check_includes: {len(read_includes(root / 'src'))} files, no fault")
    return 0


if __name__ == "__main__":
    sys.exit(main())
