# SPDX-License-Identifier: MIT
"""Small books with one fault each, and the line that the check of the opening book prints for it.

pgn-extract and stockfish are the real ones; where a score itself matters, a few lines of Python
stand in for stockfish.
"""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

ROOT = Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(ROOT / "tools")]

import book_check  # noqa: E402
import book_scores  # noqa: E402

ITALIAN = "1. e4 e5 2. Nf3 Nc6 3. Bc4 Bc5 4. c3 Nf6 5. d3 d6 6. O-O a6"
ITALIAN_BOOK = "e2e4e7e5g1f3b8c6f1c4f8c5c2c3g8f6d2d3d7d6e1g1a7a6"
SPANISH = ("1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. Bxc6 dxc6 5. O-O f6 6. d4 exd4\n"
           "7. Nxd4 c5 8. Nb3 Qxd1 9. Rxd1")
SPANISH_BOOK = "e2e4e7e5g1f3b8c6f1b5a7a6b5c6d7c6e1g1f7f6d2d4e5d4f3d4c6c5d4b3d8d1f1d1"
# White has given the queen away after its seventh move.
BLUNDER = "1. e4 e5 2. Nf3 Nc6 3. Bc4 Bc5 4. c3 Nf6 5. d3 d6 6. O-O O-O 7. Qb3 a6 8. Qxb7 Bxb7"

# Answers every search with one score, spoken for the side to move, after a bound to pass over.
FAKE_ENGINE = """#!/usr/bin/env python3
import sys
for line in sys.stdin:
    if line.startswith("uci\\n"):
        print("id name Fake 1\\nuciok", flush=True)
    elif line.startswith("isready"):
        print("readyok", flush=True)
    elif line.startswith("go"):
        print("info depth 6 score cp 3 nodes 1 pv e2e4")
        print("info depth 6 score {score} nodes 2 pv e2e4")
        print("info depth 6 score cp 9999 lowerbound nodes 3")
        print("bestmove e2e4", flush=True)
"""


def game(moves, result="1-0", repeat=None, **tags):
    """One game as it stands in a file; a tag given as None is left out."""
    tags = {"Event": "A book", "ECO": "C50", "Opening": "Italian Game", "Variation": "Quiet",
            "Result": result, "Repeat": repeat} | tags
    lines = [f'[{name} "{value}"]' for name, value in tags.items() if value is not None]
    return "\n".join(lines) + f"\n\n{moves} {result}\n\n"


class BookTest(unittest.TestCase):
    """A test with an empty folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.pgn = self.root / "a.pgn"

    def check(self, *options, judge=False):
        """Status, fault lines with the folder cut off, and the summary as name -> value."""
        words = ["book_check", *map(str, options), str(self.pgn)]
        if not judge:
            words.insert(1, "--legal-only")
        output, errors = io.StringIO(), io.StringIO()
        with mock.patch.object(sys, "argv", words), contextlib.redirect_stdout(output), \
                contextlib.redirect_stderr(errors):
            status = book_check.main()
        self.errors = errors.getvalue()
        text = output.getvalue().replace(f"{self.root}/", "")
        faults, _, summary = text.partition("| what | value |\n|---|---|\n")
        rows = dict(line.strip("| ").split(" | ") for line in summary.splitlines())
        return status, [line for line in faults.splitlines() if line], rows

    def assert_one_fault(self, text, *parts):
        self.pgn.write_text(text, encoding="utf-8")
        status, faults, rows = self.check()
        self.assertEqual((status, len(faults), rows["failures"]), (1, 1, "1"), faults)
        for part in parts:
            self.assertIn(part, faults[0])


class FormTest(BookTest):
    def test_good_file_passes_and_is_counted(self):
        self.pgn.write_text(
            game("1. e4 e6 2. d4 d5 3. Nc3 Bb4 4. e5 c5 5. a3 Bxc3+ 6. bxc3 Ne7", "1-0")
            + game(SPANISH, "1/2-1/2", "1 of 2", Opening="Spanish Game")
            + game(SPANISH, "1/2-1/2", "2 of 2", Opening="Spanish Game")
            + game("1. d4 d5 2. c4 e6 3. Nc3 Nf6 4. cxd5 exd5 5. Bg5 Be7 6. e3 O-O", "0-1",
                   Opening="Queen's Gambit"), encoding="utf-8")
        status, faults, rows = self.check()
        self.assertEqual((status, faults), (0, []))
        self.assertEqual(rows, {
            "games": "3 distinct, 4 with repeats",
            "games taught to White": "2 distinct, 3 with repeats", "openings taught to White": "2",
            "games taught to Black": "2 distinct, 3 with repeats", "openings taught to Black": "2",
            "plies of a game": "12 to 17, mean 13.7", "first moves of White": "e4 100.0%",
            "replies to e4": "e5 100.0%", "replies to d4": "d5 100.0%", "replies to c4": "none",
            "replies to Nf3": "none", "failures": "0"})

    def test_illegal_move_is_named_and_spoils_no_neighbour(self):
        text = game(ITALIAN) + game(ITALIAN.replace("O-O", "Rxh6")) + game(SPANISH)
        self.assert_one_fault(text, "a.pgn:9: Italian Game (Quiet): illegal: 6. Rxh6")
        self.assertEqual(self.check()[2]["games"], "2 distinct, 2 with repeats")

    def test_game_of_bad_form_spoils_no_neighbour(self):
        text = game(ITALIAN.replace("2. ", "2. {no end ")) + game(SPANISH)
        self.assert_one_fault(text, "a.pgn:1: '{no' is no move")
        self.assertEqual(self.check()[2]["games"], "1 distinct, 1 with repeats")

    def test_ambiguous_move_is_illegal(self):
        self.assert_one_fault(game(ITALIAN.replace("c3", "Nd4").replace("d3", "Nd2")), "illegal")
        self.assert_one_fault(game("1. Nf3 d5 2. d3 c5 3. Nd2 e5 4. e4 a6 5. Be2 a5 6. O-O a4"),
                              "illegal: 3. Nd2")

    def test_every_needed_tag_is_missed(self):
        names = ("ECO", "Opening", "Variation")
        for name in names:
            with self.subTest(name=name):
                self.assert_one_fault(game(ITALIAN, **{name: None}), f"a.pgn:1: no tag {name}")
        self.pgn.write_text(game(ITALIAN, Result=None), encoding="utf-8")
        self.assertIn("a.pgn:1: no tag Result", self.check()[1])
        self.assertEqual(len(names), 3)

    def test_tags_of_bad_form(self):
        cases = {
            "F00 is no ECO code": {"ECO": "F00"},
            "is not of the form": {"Repeat": "2/3"},
            "tag Opening would be misread": {"Opening": "0-1 Gambit"},
            "tag Variation would be misread": {"Variation": "[old]"},
        }
        for fault, tags in cases.items():
            with self.subTest(fault=fault):
                self.assert_one_fault(game(ITALIAN, **tags), fault)
        self.assert_one_fault(game(ITALIAN).replace('"A book"]', '"A book"'), "a.pgn:1: not a tag")
        self.assert_one_fault('[ECO "C50"]\n' + game(ITALIAN), "a.pgn:3: tag ECO stands twice")
        self.assert_one_fault("1. e4\n" + game(ITALIAN), "a.pgn:1: moves before the first tag")
        self.assert_one_fault("", "a.pgn: no game")

    def test_lengths_at_both_ends(self):
        twelve = ITALIAN
        twenty_five = SPANISH + (" Bg4 10. f3 Be6 11. Nc3 b6 12. a4 a5\n13. Be3")
        for moves in (twelve, twenty_five):
            self.pgn.write_text(game(moves), encoding="utf-8")
            self.assertEqual(self.check()[:2], (0, []))
        self.assert_one_fault(game(twelve.removesuffix(" a6")), "11 plies, fewer than 12")
        self.assert_one_fault(game(twenty_five + " Ne7"), "26 plies, more than 25")

    def test_result_must_be_one_of_three_and_stand_twice(self):
        self.assert_one_fault(game(ITALIAN, Result="0-1"), "moves end with 1-0")
        self.assert_one_fault(game(ITALIAN).replace("a6 1-0", "a6"), "no result after the moves")

    def test_move_text_of_bad_form(self):
        cases = {
            "'3.' belongs": ITALIAN.replace("3. ", "4. "),
            "'1.' belongs": ITALIAN.replace("1. ", "1."),
            "'{king's}' is no move": ITALIAN.replace("2. ", "2. {king's} "),
            "'0-0' is no move": ITALIAN.replace("O-O", "0-0"),
            "'$1' is no move": ITALIAN + " 7. $1",
        }
        for fault, moves in cases.items():
            with self.subTest(fault=fault):
                self.assert_one_fault(game(moves), fault)

    def test_marks_of_captures_and_checks(self):
        self.assert_one_fault(game(SPANISH.replace("Bxc6", "Bc6")), "wrong about a capture: 4. Bc6")
        self.assert_one_fault(game(SPANISH.replace("Nb3", "Nxb3")), "capture: 8. Nxb3")
        self.assert_one_fault(game(SPANISH.replace("Qxd1", "Qxd1+")), "check: 8...Qxd1+")
        checked = "1. e4 e5 2. Nf3 d6 3. d4 exd4 4. Bb5{} c6 5. dxc6 bxc6 6. Ba4 Nf6"
        checked = checked.replace("dxc6", "Nxd4").replace("bxc6", "cxb5").replace("Ba4", "Nxb5")
        self.assert_one_fault(game(checked.format("")), "wrong about a check: 4. Bb5")
        self.pgn.write_text(game(checked.format("+")), encoding="utf-8")
        self.assertEqual(self.check()[:2], (0, []))


class CopiesTest(BookTest):
    def test_copy_without_repeat(self):
        self.assert_one_fault(game(ITALIAN) + game(ITALIAN), "a.pgn:1", "a.pgn:9",
                              "the same moves twice without Repeat")

    def test_repeat_must_count_every_copy_once(self):
        cases = [("1 of 3", "2 of 3"), ("1 of 2", "1 of 2"), ("1 of 2", "2 of 3"), ("2 of 2",),
                 ("1 of 2",), ("1 of 1", "1 of 1")]
        for numbers in cases:
            with self.subTest(numbers=numbers):
                self.assert_one_fault("".join(game(ITALIAN, repeat=n) for n in numbers),
                                      "Repeat must count its copies: " + ", ".join(numbers))

    def test_copies_need_one_result(self):
        self.assert_one_fault(game(ITALIAN, "1-0", "1 of 2") + game(ITALIAN, "0-1", "2 of 2"),
                              "copies with different results")

    def test_copies_in_two_files_are_seen(self):
        other = self.root / "b.pgn"
        other.write_text(game(ITALIAN), encoding="utf-8")
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        status, faults, _ = self.check(other)
        self.assertEqual((status, len(faults)), (1, 1), faults)
        self.assertIn("b.pgn:1, a.pgn:1: ", faults[0])

    def test_beginning_of_another_game(self):
        longer = ITALIAN + " 7. Re1 Ba7"
        for result in ("1-0", "0-1", "1/2-1/2"):
            self.assert_one_fault(game(ITALIAN, result) + game(longer, result), "a.pgn:1: ",
                                  "all its moves begin a.pgn:9 ")
        self.pgn.write_text(game(ITALIAN, "1-0") + game(longer, "0-1"), encoding="utf-8")
        self.assertEqual(self.check()[:2], (0, []))


class ScoreTest(BookTest):
    def judge(self, *options):
        """A quick look; the limit is wide because so short a search is often wrong by a pawn."""
        return self.check("--depth", 6, "--limit", -2.5, *options, judge=True)

    def fake_engine(self, score):
        path = self.root / "fake"
        path.write_text(FAKE_ENGINE.replace("{score}", score), encoding="utf-8")
        path.chmod(0o755)
        return path

    def test_blunder_of_the_taught_side_is_found(self):
        self.pgn.write_text(game(BLUNDER, "1-0"), encoding="utf-8")
        status, faults, rows = self.judge()
        self.assertEqual((status, len(faults)), (1, 1), faults)
        self.assertRegex(faults[0], r"^a.pgn:1: Italian Game \(Quiet\): White stands at -\d\.\d\d "
                         r"after 8\. Qxb7 \(b3b7\)$")
        self.assertRegex(rows["worst score of White"],
                         r"^-\d\.\d\d, Italian Game \(Quiet\) after 8\. Qxb7$")
        self.assertNotIn("worst score of Black", rows)
        self.assertEqual(rows["positions judged"], "8")

    def test_blunder_of_the_other_side_does_not_matter(self):
        self.pgn.write_text(game(BLUNDER, "0-1"), encoding="utf-8")
        status, faults, rows = self.judge()
        self.assertEqual((status, faults), (0, []))
        self.assertNotIn("worst score of White", rows)

    def test_limit_and_number_of_processes(self):
        self.pgn.write_text(game(BLUNDER, "1/2-1/2"), encoding="utf-8")
        self.assertEqual(self.judge("--limit", "-20")[0], 0)
        one, two = self.judge("--limit", 0), self.judge("--limit", 0, "--jobs", 2)
        self.assertGreater(len(one[1]), 1)
        self.assertEqual(one, two)

    def test_transposed_position_is_judged_once(self):
        self.pgn.write_text(game("1. d4 d5 2. c4 e6 3. Nc3 Nf6 4. Nf3 Be7 5. g3 O-O 6. Bg2 c6")
                            + game("1. d4 d5 2. Nf3 Nf6 3. c4 e6 4. Nc3 Be7 5. g3 O-O 6. Bg2 b6"),
                            encoding="utf-8")
        # Of twelve positions after White's moves the first one and the last three are shared.
        self.assertEqual(self.judge()[2]["positions judged"], "8")

    def test_limit_is_passed_only_by_worse_scores(self):
        self.pgn.write_text(game(ITALIAN, "1/2-1/2"), encoding="utf-8")
        at_limit = self.judge("--limit", -0.7, "--engine", self.fake_engine("cp 70"))
        self.assertEqual(at_limit[:2], (0, []))
        self.assertTrue(at_limit[2]["worst score of White"].startswith("-0.70, "), at_limit)
        self.assertEqual(at_limit[2]["judge"], "Fake 1, depth 6, limit -0.70")
        below = self.judge("--limit", -0.7, "--engine", self.fake_engine("cp 71"))
        self.assertEqual((below[0], len(below[1])), (1, 12), below)
        self.assertIn("White stands at -0.71 after 1. e4 (e2e4)", below[1][0])
        self.assertIn("Black stands at -0.71 after 1...e5 (e7e5)", below[1][1])

    def test_mate_counts_as_a_hundred_pawns(self):
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        cases = {"mate 3": "-100.00, ", "mate -3": "+100.00, ", "mate 0": "+100.00, "}
        for score, worst in cases.items():
            rows = self.judge("--engine", self.fake_engine(score))[2]
            self.assertTrue(rows["worst score of White"].startswith(worst), (score, rows))

    def test_cache_is_used_and_kept(self):
        cache = self.root / "scores"
        self.pgn.write_text(game(ITALIAN, "1/2-1/2"), encoding="utf-8")
        first = self.judge("--cache", cache)
        text = cache.read_text(encoding="utf-8")
        self.assertTrue(text.startswith("# Stockfish "), text)
        self.assertEqual(len(text.splitlines()), 1 + 12)
        self.assertEqual(self.judge("--cache", cache), first)
        self.assertEqual(cache.read_text(encoding="utf-8"), text)

        # Another depth is another score; a remembered score is believed.
        lines = text.splitlines()
        position = lines[-1].split("\t")[0]
        lines[-1] = f"{position}\t6\t500"  # after Black's last move
        lines.append(f"{position}\t5\t-500")
        cache.write_text("\n".join(lines) + "\n", encoding="utf-8")
        status, faults, _ = self.judge("--cache", cache)
        self.assertEqual((status, len(faults)), (1, 1), faults)
        self.assertIn("Black stands at -5.00 after 6...a6 (a7a6)", faults[0])

    def test_interrupted_cache_goes_on_where_it_stopped(self):
        cache = self.root / "scores"
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        self.judge("--cache", cache)
        text = cache.read_text(encoding="utf-8")
        cache.write_text(text[:-len(text.splitlines()[-1]) + 5], encoding="utf-8")
        self.assertEqual(self.judge("--cache", cache)[0], 0)
        self.assertEqual(cache.read_text(encoding="utf-8"), text)

    def test_interrupted_run_tells_what_it_has(self):
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        cache = self.root / "scores"
        put = book_scores.ScoreFile.put

        def put_thrice(store, *words):
            put(store, *words)
            if len(store.scores) == 3:
                raise KeyboardInterrupt
        with mock.patch("book_scores.ScoreFile.put", put_thrice):
            status, faults, rows = self.judge("--cache", cache)
        self.assertEqual((status, faults), (1, ["interrupted: 3 of 6 positions judged"]))
        self.assertEqual(rows["positions judged"], "3 of 6")
        self.assertEqual(len(cache.read_text(encoding="utf-8").splitlines()), 1 + 3)

    def test_cache_of_another_engine_is_refused(self):
        cache = self.root / "scores"
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        self.judge("--cache", cache)
        status, faults, rows = self.judge("--cache", cache, "--engine", self.fake_engine("cp 1"))
        self.assertEqual((status, faults, rows), (2, [], {}))
        self.assertIn("is of another engine", self.errors)


class BookFilesTest(BookTest):
    def setUp(self):
        super().setUp()
        self.pgn.write_text(game(ITALIAN, "1-0") + game(SPANISH, "1/2-1/2", "1 of 2")
                            + game(SPANISH, "1/2-1/2", "2 of 2"), encoding="utf-8")
        self.white = [ITALIAN_BOOK, "", SPANISH_BOOK, SPANISH_BOOK]
        self.black = [SPANISH_BOOK, SPANISH_BOOK]

    def compare(self):
        for name, lines in (("cwhite", self.white), ("cblack", self.black)):
            (self.root / name).write_text("".join(f"{line}\n" for line in lines), encoding="utf-8")
        status, faults, _ = self.check("--book", self.root)
        self.assertEqual(status, 1 if faults else 0)
        return faults

    def test_equal_books_pass_in_any_order(self):
        self.assertEqual(self.compare(), [])
        self.white.reverse()
        self.assertEqual(self.compare(), [])

    def test_line_missing(self):
        self.white.pop()
        faults = self.compare()
        self.assertEqual(len(faults), 1, faults)
        self.assertIn(f"cwhite: line missing: {SPANISH_BOOK} (a.pgn:", faults[0])

    def test_line_more(self):
        self.black.append(ITALIAN_BOOK)
        self.assertEqual(self.compare(), [f"cblack:3: no game gives it: {ITALIAN_BOOK}"])
        self.black[2] = SPANISH_BOOK
        self.assertEqual(self.compare(), [f"cblack:3: no game gives it: {SPANISH_BOOK}"])

    def test_line_that_is_no_row_of_moves(self):
        self.white.append("e2e4 e7e5")
        self.assertEqual(self.compare(), ["cwhite:5: not a row of moves: e2e4 e7e5"])
        self.white[-1] = "\r"
        self.assertEqual(len(self.compare()), 1)

    def test_empty_lines_count_towards_the_most(self):
        self.white += [""] * (2500 - len(self.white))
        self.assertEqual(self.compare(), [])
        self.white.append("")
        self.assertEqual(self.compare(), ["cwhite: 2501 lines, more than 2500"])


class UsageTest(BookTest):
    def assert_status_2(self, *options, judge=True):
        status, faults, rows = self.check(*options, judge=judge)
        self.assertEqual((status, faults, rows), (2, [], {}))
        return self.errors

    def test_missing_things(self):
        self.assertIn("No such file", self.assert_status_2())
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        self.assertIn("no_such is not installed", self.assert_status_2("--engine", "no_such"))
        self.assertIn("cwhite", self.assert_status_2("--book", self.root, judge=False))
        with mock.patch("book_games.GAME_PATH", str(self.root)):
            self.assertIn("pgn-extract is not installed", self.assert_status_2(judge=False))

    def test_engine_that_ends_or_says_nothing(self):
        self.pgn.write_text(game(ITALIAN), encoding="utf-8")
        self.assertIn("ended", self.assert_status_2("--engine", "true"))

    def test_faults_of_usage(self):
        for options in (["--depth", "0"], ["--jobs", "x"], ["--unknown"]):
            with self.subTest(options=options), self.assertRaises(SystemExit) as ended:
                self.check(*options)
            self.assertEqual(ended.exception.code, 2)


if __name__ == "__main__":
    unittest.main()
