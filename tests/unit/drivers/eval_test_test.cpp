// SPDX-License-Identifier: MIT
// Positions against their mirror images.
#include "drivers/eval_test.h"

#include <gtest/gtest.h>
#include <sstream>

#include "board/set_up.h"
#include "platform/text_file.h"
#include "search/search_state.h"
#include "shell/command_loop.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

const std::string quiet = "4k3/8/8/8/8/8/4P3/4K3 w - -";
const std::string start = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
const std::string middle_game = "r1bqkb1r/pppp1ppp/2n2n2/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR w KQkq -";

/// A bishop of each side is trapped, which counts as one black one: 130 for White in the position
/// and in its mirror image alike. Both pawns that the bishops could take are guarded.
const std::string broken = "4k3/5p1B/6p1/8/8/6P1/5P1b/4K3 w - -";

const std::string no_men = "0000000000000000000000000000000000000000000000000000000000000000\n";

/// What is printed of `broken`. The position is its own mirror image, so its dump comes twice.
std::string dump_of_broken(std::int32_t score, std::int32_t mirrored_score) {
    const std::string dump =
        "\n. . . . k . . . \n. . . . . p . B \n. . . . . . p . \n. . . . . . . . \n"
        ". . . . . . . . \n. . . . . . P . \n. . . . . P . b \n. . . . K . . . \n"
        "WPawns: 0000000000000000000000000000000000000000000000100000010000000000\n"
        "WKnight: " +
        no_men + "WBishop: 0000000000000001000000000000000000000000000000000000000000000000\n" +
        "WRook: " + no_men + "WQuins: " + no_men +
        "BPawns: 0000000000000100000000100000000000000000000000000000000000000000\n"
        "BKnight: " +
        no_men + "BBishop: 0000000000000000000000000000000000000000000000000000000100000000\n" +
        "BRook: " + no_men + "BQuins: " + no_men + "xywK= 95\nxybK= 25\nKol_figur  is  8\n";
    return "Position: " + broken + "\n" + dump + "Evaluate: " + std::to_string(score) + "\n" +
           dump + "Evaluate: " + std::to_string(mirrored_score) + "\n";
}

/// The same in each mode: in the mirror image the black bishop does better to go for a pawn.
std::string dump_of_broken_in(std::int32_t mode) {
    constexpr std::int32_t bishop_for_pawn = -121;
    return dump_of_broken(130, mode == eval_test_static ? -130 : bishop_for_pawn);
}

class EvalTest : public testing::Test {
  protected:
    EvalTest() { begin_scene(); }
    ~EvalTest() override { begin_scene(); }

    /// Tests one line; gives what was printed, and the verdict in `verdict_`.
    std::string line(const std::string& text, std::int32_t mode) {
        const CapturedOutput output;
        verdict_ = eval_test_line(text, mode);
        return output.text();
    }

    /// Writes a suite and tests it; gives what was printed.
    static std::string run(const std::string& suite, std::int32_t mode) {
        write_file("suite", suite);
        const CapturedOutput output;
        eval_test("suite", mode);
        return output.text();
    }

    std::int32_t verdict_ = -1;

  private:
    TemporaryFolder folder_;
};

const std::string head = "Testing Evaluate function: suite\n";

constexpr std::array<std::int32_t, 2> modes = {eval_test_static, eval_test_quiescence};

}  // namespace

TEST_F(EvalTest, ModesAreOneAndZero) {
    EXPECT_EQ(eval_test_static, 1);
    EXPECT_EQ(eval_test_quiescence, 0);
}

TEST_F(EvalTest, EqualScoresPassAndPrintNothing) {
    for (const std::int32_t mode : modes) {
        for (const std::string& text : {quiet, start, middle_game}) {
            EXPECT_EQ(line(text, mode), "") << text;
            EXPECT_EQ(verdict_, 1) << text;
        }
    }
}

TEST_F(EvalTest, DifferentScoresPrintBothPositionsAndFail) {
    EXPECT_EQ(line(broken, eval_test_static), dump_of_broken(130, -130));
    EXPECT_EQ(verdict_, 0);
}

TEST_F(EvalTest, MirrorImageHasItsMenOnTheOtherSideOfTheBoard) {
    // A knight more, so that the two boards differ.
    const std::string text = line("4k3/7B/6p1/8/8/6P1/7b/1N2K3 b - -", eval_test_static);
    EXPECT_EQ(verdict_, 0);
    const std::size_t second = text.find("Evaluate: 445\n");
    ASSERT_NE(second, std::string::npos) << text;
    EXPECT_NE(text.find(". . . . k . . . \n"), std::string::npos);
    EXPECT_NE(text.find("\n. N . . K . . . \n"), std::string::npos);
    EXPECT_LT(text.find("\n. N . . K . . . \n"), second);
    EXPECT_EQ(text.find("\n. n . . k . . . \n", second), second + 14);
    EXPECT_TRUE(text.ends_with("Evaluate: 185\n")) << "315 - 130, seen by Black";
}

TEST_F(EvalTest, EachLineHasBoardsOfItsOwn) {
    // The second line fails as it stands, and lacks kings: they are on e1 and e8 in both positions.
    const std::string text =
        run("k7/8/8/8/8/8/8/7K w\n8/5p1B/6p1/8/8/6P1/5P1b/8 w\n", eval_test_static);
    const std::string kings = "xywK= 95\nxybK= 25\nKol_figur  is  6\n";
    const std::size_t first = text.find(kings);
    ASSERT_NE(first, std::string::npos) << text;
    EXPECT_NE(text.find(kings, first + 1), std::string::npos) << text;
}

TEST_F(EvalTest, BoardFieldAloneIsRead) {
    for (const std::int32_t mode : modes) {
        const std::string expected = dump_of_broken_in(mode);
        for (const char* rest : {"w - -", "b KQkq e3 bm Bxg6; QQQQ", "", "x"}) {
            const std::string text = broken.substr(0, broken.find(' ') + 1) + rest;
            const std::string printed = line(text, mode);
            ASSERT_TRUE(printed.starts_with("Position: " + text + "\n"));
            EXPECT_EQ(printed.substr(printed.find('\n')), expected.substr(expected.find('\n')));
        }
    }
}

TEST_F(EvalTest, PawnsOfEachPositionAreItsOwn) {
    // The cache of pawn structures goes by the key of the pawns, which has to be that of the line.
    for (const std::int32_t mode : modes) {
        EXPECT_EQ(run(quiet + "\n" + start + "\n" + "4k3/p7/1p6/8/8/8/5PPP/4K3 w\n" + middle_game +
                          "\n8/5k2/3p4/2p1p3/8/1P4P1/P6P/6K1 w\n",
                      mode),
                  head + "Ok!\n");
        EXPECT_EQ(line(broken, mode), dump_of_broken_in(mode));
    }
}

TEST_F(EvalTest, QuiescenceLooksAtCaptures) {
    const Table taken = position_from_fen("4k3/5p1B/6p1/8/8/6P1/8/4K3 b - -");
    EXPECT_EQ(Table::evaluate(taken, 0, 0), -121) << "black bishop takes g3, pawn takes bishop";
    EXPECT_EQ(line(broken, eval_test_quiescence), dump_of_broken(130, -121));
    EXPECT_EQ(verdict_, 0);
    EXPECT_GT(TotalNodes, 2U);
}

TEST_F(EvalTest, StaticScoreNeedsNoSearch) {
    TotalNodes = 41;
    search_start_tick = 17;
    fake_ticks = 1000;
    const std::uint32_t limit = time_limit_ms;
    line(middle_game, eval_test_static);
    EXPECT_EQ(TotalNodes, 41U);
    EXPECT_EQ(search_start_tick, 17U);
    EXPECT_EQ(time_limit_ms, limit);
    EXPECT_EQ(fake_clock_readings, 0U);
}

TEST_F(EvalTest, QuiescenceHasTenSecondsForEachPosition) {
    fake_ticks = 500;
    line(quiet, eval_test_quiescence);
    EXPECT_EQ(time_limit_ms, 10000U);
    EXPECT_EQ(search_start_tick, 500U);
    // Two readings a position: its start, and its one node.
    fake_ticks = 1000;
    fake_ticks_per_reading = 9999;
    EXPECT_EQ(line(quiet, eval_test_quiescence), "");
    EXPECT_EQ(search_start_tick, 1000U + 2 * 9999) << "the second position has a start of its own";
    EXPECT_EQ(verdict_, 1);
}

// The mark eval-test-windows.
TEST_F(EvalTest, SearchWithoutTimeGivesTheLowerBoundsWhichAreNotEqual) {
    fake_ticks_per_reading = 10000;
    const std::string text = line(broken, eval_test_quiescence);
    EXPECT_EQ(verdict_, 0);
    EXPECT_EQ(text, dump_of_broken(-100000000, -900000));
    EXPECT_EQ(line(quiet, eval_test_static), "") << "the static score has no time";
    EXPECT_NE(line(quiet, eval_test_quiescence), "");
}

TEST_F(EvalTest, SearchStateIsTakenAsItIs) {
    TotalNodes = 100;
    ply = 7;
    vetka[0][0] = vetka[69][69] = {e2, e4, 0};
    line(quiet, eval_test_quiescence);
    EXPECT_EQ(verdict_, 1);
    EXPECT_EQ(TotalNodes, 102U) << "a node each, added to those before";
    EXPECT_EQ(ply, 7);
    EXPECT_EQ(vetka[0][0], (Move{e2, e4, 0}));
    EXPECT_EQ(vetka[69][69], (Move{e2, e4, 0}));
}

TEST_F(EvalTest, GameAndTableStayAsTheyAre) {
    Table game;
    set_start_position(game);
    put_entry(game, 5, hash_exact, 10);
    const Table before = game;
    write_file("suite", middle_game + "\n" + broken + "\n");
    std::istringstream in("force e2e4 evaltest suite qevaltest suite e7e5");
    {
        const CapturedOutput output;
        run_command_loop(in, game);
    }
    EXPECT_TRUE(is_stored(before));
    EXPECT_EQ(game.at(e4), w_pawn);
    EXPECT_EQ(game.at(e5), b_pawn);
    EXPECT_EQ(engine.game_line, "e2e4e7e5");
    EXPECT_EQ(engine.root_side, white);
    EXPECT_EQ(engine.clock_left, EngineState{}.clock_left);
    EXPECT_EQ(game_top, 1);
}

TEST_F(EvalTest, AllLinesThatPassAreOk) {
    for (const std::int32_t mode : modes) {
        EXPECT_EQ(run(quiet + "\n" + start + "\n", mode), head + "Ok!\n");
    }
}

TEST_F(EvalTest, OneOfTenThatFailsIsToldInFull) {
    for (const std::int32_t mode : modes) {
        std::string suite;
        for (int i = 0; i < 10; ++i) {
            suite += (i == 6 ? broken : quiet) + "\n";
        }
        EXPECT_EQ(run(suite, mode),
                  head + dump_of_broken_in(mode) + "ERROR!\nFail!\nErros: 1/10\n");
    }
}

TEST_F(EvalTest, EveryLineThatFailsIsCounted) {
    const std::string dump = dump_of_broken(130, -130) + "ERROR!\n";
    EXPECT_EQ(run(broken + "\n" + broken + "\n" + quiet + "\n", eval_test_static),
              head + dump + dump + "Fail!\nErros: 2/3\n");
    EXPECT_EQ(run(broken + "\n", eval_test_static), head + dump + "Fail!\nErros: 1/1\n");
}

TEST_F(EvalTest, LinesUnderSevenCharactersAreSkipped) {
    EXPECT_EQ(run("123456\n\n" + broken + "\n8/8 w\n", eval_test_static),
              head + dump_of_broken(130, -130) + "ERROR!\nFail!\nErros: 1/1\n");
    EXPECT_EQ(run("8/8 w -\n" + broken + "\n", eval_test_static),
              head + dump_of_broken(130, -130) + "ERROR!\nFail!\nErros: 1/2\n");
}

TEST_F(EvalTest, FileWithoutATestIsOk) {
    EXPECT_EQ(run("", eval_test_static), head + "Ok!\n");
    EXPECT_EQ(run("123456\n\n", eval_test_quiescence), head + "Ok!\n");
}

TEST_F(EvalTest, MissingFileIsTold) {
    for (const std::int32_t mode : modes) {
        const CapturedOutput output;
        eval_test("nowhere.txt", mode);
        EXPECT_EQ(output.text(),
                  "Testing Evaluate function: nowhere.txt\n"
                  "Sory! I cannot find or access to test!nowhere.txt\n");
    }
}

TEST_F(EvalTest, LineEndsOfBothKindsAndNoneAtAllAreTheSame) {
    const std::string expected = run(quiet + "\n" + broken + "\n", eval_test_static);
    EXPECT_EQ(run(quiet + "\r\n" + broken + "\r\n", eval_test_static), expected);
    EXPECT_EQ(run(quiet + "\n" + broken, eval_test_static), expected);
    EXPECT_TRUE(expected.ends_with("Erros: 1/2\n"));
}

TEST_F(EvalTest, AllIsInTheLogToo) {
    log_enabled = true;
    std::string text = run(broken + "\n", eval_test_static);
    text += run(quiet, eval_test_static);
    const CapturedOutput output;
    eval_test("nowhere", eval_test_static);
    log_enabled = false;
    EXPECT_EQ(read_file("corvane.log"), text + output.text());
}

TEST_F(EvalTest, CommandsDifferInTheirMode) {
    Table game;
    set_start_position(game);
    write_file("suite", quiet + "\n");
    fake_ticks_per_reading = 10000;
    std::istringstream in("evaltest suite EvalTest suite qevaltest suite QEVALTEST suite evaltest");
    const CapturedOutput output;
    run_command_loop(in, game);
    const std::string text = output.text();
    EXPECT_TRUE(text.starts_with(head + "Ok!\n" + head + "Ok!\n" + head + "Position: " + quiet))
        << text;
    EXPECT_TRUE(text.ends_with("ERROR!\nFail!\nErros: 1/1\n"));
}

TEST_F(EvalTest, BoardsThatAreNoneAreTestedAsFarAsTheyGo) {
    int tests = 0;
    std::string suite;
    for (const char* board :
         {"8/8/8/8/8/8/8/8", "4k3/8/8/8/8/8/8/8", "8/8/8/8/8/8/8/4K3", "4k3/4Q3/8/8/8/8/8/4K3",
          "4k3/8/8/8/8/8/4Q3/4K2r", "kkkkkkkk/8/8/8/8/8/8/KKKKKKKK", "/////////////////////kK",
          "PPPPPPPP/8/k7/8/8/7K/8/pppppppp", "88888888qQkK", "xxxxxxxxxxxxxxxx",
          "qqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqq"}) {
        suite += std::string(board) + (tests % 2 == 0 ? " w\n" : "\n");
        ++tests;
    }
    suite += std::string(20000, 'q') + " " + std::string(20000, 'x') + "\n";
    fake_ticks_per_reading = 1;
    for (const std::int32_t mode : modes) {
        const std::string text = run(suite, mode);
        EXPECT_TRUE(text.ends_with("Ok!\n") ||
                    text.ends_with("/" + std::to_string(tests + 1) + "\n"))
            << text;
    }
}

TEST_F(EvalTest, ShippedPositionsPassInBothModes) {
    const std::string name = CORVANE_TEST_DATA "/../../data/tests/evaluation.txt";
    TextFile file(name);
    ASSERT_TRUE(file.is_open());
    int lines = 0;
    for (std::string text; file.next_line(text);) {
        lines += text.size() >= 7 ? 1 : 0;
    }
    EXPECT_EQ(lines, 200);
    for (const std::int32_t mode : modes) {
        const CapturedOutput output;
        eval_test(name, mode);
        EXPECT_EQ(output.text(), "Testing Evaluate function: " + name + "\nOk!\n");
    }
}
