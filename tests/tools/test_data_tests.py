# SPDX-License-Identifier: MIT
"""The shape of the files in data/tests/: every line is read by the engine as it is meant.

Whether a best move is the best and a count the right one was settled when the files were made, see
their README; here nothing is searched. Each check is shown to find the fault that it is there for.
"""

import re
import sys
import unittest
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
DATA = ROOT / "data" / "tests"

FEWEST_TACTICS = 40
FEWEST_OF_A_SIDE = 10
EVALUATION_LINES = 200
PERFT_LINES = 12
PERFT_DEPTHS = 6
# The engine passes over shorter lines.
SHORTEST_LINE = 8

# Of a word behind "bm " the engine keeps these, and '=' twice.
KEPT = frozenset("abcdefghknqrKQRBN12345678=")
EPD = re.compile(r'(\S+) ([wb]) - (-|[a-h][36]) bm ([^;]+); id "([a-z0-9. -]+)";')
SAN = re.compile(r"([KQRBN][a-h]?[1-8]?x?|([a-h]x)?)[a-h][1-8](=[QRBN])?[+#]?")
# What the engine can take for a move, by the number of characters kept.
MEANT = re.compile(r"[KQRBNa-h]?[a-h][1-8]|[KQRBN][a-h1-8][a-h][1-8]|[a-h]?[a-h][18]==[QRBN]")
PERFT = re.compile(r"(\S+) ([wb]) (-|K?Q?k?q?) -")
PERFT_ROW = re.compile(r"\| `([^`]+)` \|((?: [0-9]+ \|){%d})" % PERFT_DEPTHS)


def lines_of(name):
    return (DATA / name).read_bytes().decode("ascii").removesuffix("\n").split("\n")


def men_of(board):
    """The men by square, or None where the text is no board of eight by eight."""
    men = {}
    ranks = board.split("/")
    for rank, text in zip(range(8, 0, -1), ranks):
        column = 0
        for character in text:
            if character in "12345678":
                column += int(character)
            elif character in "PNBRQKpnbrqk" and column < 8:
                men["abcdefgh"[column] + str(rank)] = character
                column += 1
            else:
                return None
        if column != 8:
            return None
    return men if len(ranks) == 8 else None


def board_faults(board):
    men = men_of(board)
    if men is None:
        return ["no board"]
    faults = []
    count = Counter(men.values())
    if count["K"] != 1 or count["k"] != 1:
        faults.append("kings")
    if any(man in "Pp" and square[1] in "18" for square, man in men.items()):
        faults.append("pawn on the last rank")
    if any(sum(n for man, n in count.items() if man.isupper() == upper) > 16
           for upper in (True, False)):
        faults.append("more than sixteen men")
    return faults


def kept(word):
    return "".join(character * (2 if character == "=" else 1)
                   for character in word if character in KEPT)


def tactic_faults(line):
    """All that would let the engine judge the line otherwise than it is meant."""
    match = EPD.fullmatch(line)
    if match is None:
        return ["form"]
    board, side, en_passant, moves, _ = match.groups()
    faults = board_faults(board)
    if "no board" in faults:
        return faults
    men = men_of(board)
    for move in moves.split():
        if not SAN.fullmatch(move) or not MEANT.fullmatch(kept(move)):
            faults.append(f"move {move}")
            continue
        own = str.upper if side == "w" else str.lower
        man = own(move[0]) if move[0] in "KQRBN" else own("p")
        if man not in men.values():
            faults.append(f"no man for {move}")
        square = re.findall("[a-h][1-8]", move)[-1]
        if ("x" in move) != (square in men or square == en_passant):
            faults.append(f"capture or not: {move}")
        # To the engine bxc3 is also a black bishop's move to c3.
        if move[0] == "b" and side == "b" and "x" in move and "b" in men.values():
            faults.append(f"pawn or bishop: {move}")
    for word in line[line.index(";"):].split():
        if MEANT.fullmatch(kept(word)):
            faults.append(f"id names a move: {word}")
    return faults


def evaluation_faults(line):
    board, blank, rest = line.partition(" ")
    faults = board_faults(board)
    if not blank or rest != "w - - 0 1":
        faults.append("fields")
    return faults


def perft_faults(line):
    match = PERFT.fullmatch(line)
    if match is None:
        return ["form"]
    board, _, rights = match.groups()
    faults = board_faults(board)
    homes = {"K": ("e1", "h1"), "Q": ("e1", "a1"), "k": ("e8", "h8"), "q": ("e8", "a8")}
    men = men_of(board) or {}
    for right in rights.replace("-", ""):
        king, rook = homes[right]
        own = str.upper if right.isupper() else str.lower
        if men.get(king) != own("k") or men.get(rook) != own("r"):
            faults.append(f"right {right}")
    return faults


class DataTest(unittest.TestCase):
    def assert_sound(self, name, faults_of):
        """Each line has no fault, no two are equal; gives the lines."""
        lines = lines_of(name)
        for number, line in enumerate(lines, 1):
            with self.subTest(file=name, line=number):
                self.assertGreaterEqual(len(line), SHORTEST_LINE)
                self.assertEqual(faults_of(line), [], line)
        boards = Counter(line.split(" ")[0] for line in lines)
        self.assertEqual([board for board, count in boards.items() if count > 1], [])
        return lines


class TacticsTest(DataTest):
    def test_every_line_is_read_as_meant(self):
        lines = self.assert_sound("tactics.epd", tactic_faults)
        self.assertGreaterEqual(len(lines), FEWEST_TACTICS)
        sides = Counter(EPD.fullmatch(line)[2] for line in lines)
        self.assertGreaterEqual(min(sides["w"], sides["b"]), FEWEST_OF_A_SIDE)

    def test_ids_are_numbered_like_the_tests_of_the_engine(self):
        ids = [EPD.fullmatch(line)[5] for line in lines_of("tactics.epd")]
        self.assertEqual([text.split()[0] for text in ids],
                         [f"tactics.{number:02}" for number in range(1, len(ids) + 1)])

    def test_a_faulty_line_is_found(self):
        good = '7k/8/8/8/8/8/8/R6K w - - bm Ra8; id "tactics.01 check";'
        self.assertEqual(tactic_faults(good), [])
        faulty = {
            "R6K w": "R6 w", "7k/8": "7k/9", "8/R6K": "P7/R6K/8", "R6K w -": "R6K w K",
            "w - - bm Ra8": "w - - am Ra8", "bm Ra8;": "bm Ra8", "bm Ra8; ": "bm ; ",
            "Ra8": "O-O", "Ra8;": "Na8;", "Ra8; ": "Rxa8; ", '.01 check"': '.01 e4"',
            'id "': 'idea "', "7k": "6kk",
        }
        for before, after in faulty.items():
            with self.subTest(after=after):
                self.assertIn(before, good)
                self.assertNotEqual(tactic_faults(good.replace(before, after, 1)), [])

    def test_a_pawns_capture_from_the_b_file_needs_a_board_without_bishops(self):
        line = '7k/8/8/8/8/1pb5/2R5/7K b - - bm bxc2; id "tactics.01 gain";'
        self.assertEqual(tactic_faults(line), ["pawn or bishop: bxc2"])
        self.assertEqual(tactic_faults(line.replace("1pb5", "1pn5")), [])

    def test_kept_characters(self):
        self.assertEqual([kept(word) for word in ("Qxh7+", "exd8=Q", "O-O", "Nbd7!", "fork")],
                         ["Qh7", "ed8==Q", "", "Nbd7", "frk"])


class EvaluationTest(DataTest):
    def test_every_line_is_a_position(self):
        lines = self.assert_sound("evaluation.txt", evaluation_faults)
        self.assertEqual(len(lines), EVALUATION_LINES)

    def test_all_phases_occur(self):
        boards = [line.split(" ")[0] for line in lines_of("evaluation.txt")]
        pawn_endings = sum(set(board) <= set("KkPp12345678/") for board in boards)
        queenless = sum("q" not in board.lower() for board in boards)
        full = sum(len(re.findall("[A-Za-z]", board)) >= 28 for board in boards)
        bishop_pairs = sum(board.count("B") == 2 or board.count("b") == 2 for board in boards)
        for count in (pawn_endings, queenless - pawn_endings, full, bishop_pairs):
            self.assertGreaterEqual(count, 20)

    def test_a_faulty_line_is_found(self):
        good = "7k/8/8/8/8/8/8/R6K w - - 0 1"
        self.assertEqual(evaluation_faults(good), [])
        for bad in ("7k/8/8/8/8/8/8/R6K", "7k/8/8/8/8/8/8/R7 w - - 0 1", good.replace("w", "b"),
                    "7k/8/8/8/8/8/R6K w - - 0 1", "7k/8/8/8/8/8/8/R5KK w - - 0 1", ""):
            with self.subTest(line=bad):
                self.assertNotEqual(evaluation_faults(bad), [])


class PerftTest(DataTest):
    def test_every_line_is_read_as_meant(self):
        lines = self.assert_sound("perft.txt", perft_faults)
        self.assertEqual(len(lines), PERFT_LINES)
        self.assertEqual({line.split(" ")[1] for line in lines}, {"w", "b"})

    def test_readme_gives_the_counts_of_every_line_in_order(self):
        rows = PERFT_ROW.findall((DATA / "README.md").read_text(encoding="utf-8"))
        self.assertEqual([row[0] for row in rows], lines_of("perft.txt"))
        deepest = [int(row[1].split(" | ")[-1].strip(" |")) for row in rows]
        self.assertEqual(deepest, sorted(deepest))

    def test_counts_are_those_of_the_perft_tests(self):
        published = {}
        text = (ROOT / "tests" / "data" / "perft" / "positions.txt").read_text(encoding="ascii")
        for row in text.splitlines():
            if row and not row.startswith("#"):
                fields = row.split(" | ")
                published[fields[1]] = fields[2].split()
        compared = 0
        for position, row in PERFT_ROW.findall((DATA / "README.md").read_text(encoding="utf-8")):
            counts = row.split(" | ")
            counts = [count.strip(" |") for count in counts]
            known = published[position][:PERFT_DEPTHS]
            self.assertEqual(counts[:len(known)], known, position)
            compared += len(known)
        self.assertGreaterEqual(compared, (PERFT_DEPTHS - 1) * PERFT_LINES)

    def test_a_faulty_line_is_found(self):
        good = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -"
        self.assertEqual(perft_faults(good), [])
        for bad in (good.removesuffix(" -"), good.replace("w", ""), good.replace("R w", "1 w"),
                    good.replace("r3k", "3rk"), good.replace("K2R", "3R"), good + " ;D1 26"):
            with self.subTest(line=bad):
                self.assertNotEqual(perft_faults(bad), [])


if __name__ == "__main__":
    unittest.main()
