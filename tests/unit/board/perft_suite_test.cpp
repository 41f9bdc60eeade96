// SPDX-License-Identifier: MIT
// Perft over test files.
#include "board/perft_suite.h"

#include <gtest/gtest.h>

#include "board/square_tables.h"
#include "support/board_invariants.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"

namespace {

/// What is printed for a line whose side to move has no legal move.
std::string without_moves(const std::string& line) {
    return line +
           "\n1 0  0  time: 0\n2 0  0  time: 0\n3 0  0  time: 0\n4 0  0  time: 0\n"
           "5 0  0  time: 0\n6 0  0  time: 0\n \n";
}

const std::string stalemate = "7k/5Q2/6K1/8/8/8/8/8 b -";

std::string run(const std::string& file_name) {
    const CapturedOutput output;
    perft_test(file_name, 1);
    return output.text();
}

}  // namespace

class PerftSuite : public testing::Test {
  protected:
    PerftSuite() {
        reset_all();
        reset_fake_clock();
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(PerftSuite, LineIsBoardSideAndRights) {
    Table table = perft_position("r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1");
    EXPECT_EQ(table.side, black);
    EXPECT_EQ(table.castling, 15U);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.Kol_figur, 0) << "perft does not read it";
    EXPECT_EQ(table.hash_lock | table.hash_index | table.pawn_hash, 0U);
    table.Kol_figur = 6;
    EXPECT_EQ(broken_board(table), "");
}

TEST_F(PerftSuite, RightsAreSetOneByOne) {
    EXPECT_EQ(perft_position("4k3/8/8/8/8/8/8/4K3 w K -").castling, 1U);
    EXPECT_EQ(perft_position("4k3/8/8/8/8/8/8/4K3 w Q -").castling, 2U);
    EXPECT_EQ(perft_position("4k3/8/8/8/8/8/8/4K3 w k -").castling, 4U);
    EXPECT_EQ(perft_position("4k3/8/8/8/8/8/8/4K3 w q -").castling, 8U);
}

TEST_F(PerftSuite, FirstDashEndsTheReading) {
    const Table table = perft_position("4k3/8/8/3pP3/8/8/8/4K3 w - KQkq b d6 0 1");
    EXPECT_EQ(table.castling, 0U);
    EXPECT_EQ(table.side, white);
    EXPECT_EQ(table.ep_flag, 0);
    const Table cut = perft_position("4k3/8-/8/8 b KQ");
    EXPECT_EQ(cut.at(e8), b_king);
    EXPECT_EQ(cut.side, white);
    EXPECT_EQ(cut.castling, 0U);
}

TEST_F(PerftSuite, LineWithoutADashEndsWithItself) {
    const Table table = perft_position("4k3/8/8/8/8/8/8/4K3 b K");
    EXPECT_EQ(table.side, black);
    EXPECT_EQ(table.castling, 1U);
    EXPECT_EQ(perft_position("").Array, empty_board);
}

TEST_F(PerftSuite, OtherCharactersArePassedOver) {
    const Table table = perft_position("4k3/8/8/9x/4P3/8/8/4K3 ?zb.K -");
    EXPECT_EQ(table.at(e4), w_pawn);
    EXPECT_EQ(table.side, black);
    EXPECT_EQ(table.castling, 1U);
}

TEST_F(PerftSuite, LineIsPrintedWithSixDepthsAndABlank) {
    const CapturedOutput output;
    perft_line(stalemate, 0);
    EXPECT_EQ(output.text(), without_moves(stalemate));
}

// Two kings in opposite corners: 3 moves each, then 5 from the edge or 8 from inside.
TEST_F(PerftSuite, CountsAndTotalsOfALine) {
    const CapturedOutput output;
    perft_line("7k/8/8/8/8/8/8/K7 w -", 1);
    EXPECT_EQ(output.text(),
              "7k/8/8/8/8/8/8/K7 w -\n"
              "1 3  3  time: 0\n"
              "2 9  12  time: 0\n"
              "3 54  66  time: 0\n"
              "4 324  390  time: 0\n"
              "5 1890  2280  time: 0\n"
              "6 11024  13304  time: 0\n"
              " \n");
}

TEST_F(PerftSuite, TimeRunsFromTheStartOfTheLine) {
    fake_ticks_per_reading = 2;
    const CapturedOutput output;
    perft_line("7k/8/8/8/8/8/8/K7 w -", 1);
    EXPECT_EQ(output.text(),
              "7k/8/8/8/8/8/8/K7 w -\n"
              "1 3  3  time: 2 speed 1\n"
              "2 9  12  time: 4 speed 2\n"
              "3 54  66  time: 6 speed 9\n"
              "4 324  390  time: 8 speed 40\n"
              "5 1890  2280  time: 10 speed 189\n"
              "6 11024  13304  time: 12 speed 918\n"
              " \n");
}

// A king that a line does not place is on e1 or e8, with five squares to go to; on h1 it has three.
TEST_F(PerftSuite, EachLineHasABoardOfItsOwn) {
    write_file("suite", "k7/8/8/8/8/8/8/7K w -\n8/8/8/8/8/8/8/8 w -\n");
    const std::string text = run("suite");
    EXPECT_NE(text.find("7K w -\n1 3  3  time: 0\n"), std::string::npos) << text;
    EXPECT_NE(text.find("8/8 w -\n1 5  5  time: 0\n2 25  30  time: 0\n"), std::string::npos)
        << text;
}

TEST_F(PerftSuite, EveryLongLineOfAFileIsRun) {
    write_file("suite", stalemate + "\n\nshort!\n" + stalemate + " and more\n");
    EXPECT_EQ(run("suite"), "PerftTest: suite\n" + without_moves(stalemate) +
                                without_moves(stalemate + " and more") + "Perft -  done\n");
}

TEST_F(PerftSuite, LineOfSixCharactersIsSkippedAndOneOfSevenIsRun) {
    write_file("suite", "123456\n");
    EXPECT_EQ(run("suite"), "PerftTest: suite\nPerft -  done\n");
    write_file("suite", "8/8 w -\n");
    EXPECT_EQ(run("suite").substr(0, 25), "PerftTest: suite\n8/8 w -\n");
}

TEST_F(PerftSuite, LastLineNeedsNoLineFeed) {
    write_file("suite", "short\n" + stalemate);
    EXPECT_EQ(run("suite"), "PerftTest: suite\n" + without_moves(stalemate) + "Perft -  done\n");
    write_file("suite", stalemate + "\nshort");
    EXPECT_EQ(run("suite"), "PerftTest: suite\n" + without_moves(stalemate) + "Perft -  done\n");
}

TEST_F(PerftSuite, EmptyFileIsDoneAtOnce) {
    write_file("suite", "");
    EXPECT_EQ(run("suite"), "PerftTest: suite\nPerft -  done\n");
}

TEST_F(PerftSuite, MissingFileIsReported) {
    EXPECT_EQ(run("nowhere"),
              "PerftTest: nowhere\nSory! I cannot find or access to perfttest (nowhere) \n");
}
