// SPDX-License-Identifier: MIT
// The recursion of perft, its two departures from chess, and what it prints. The counts of many
// positions stand in tests/perft.
#include "board/perft.h"

#include <gtest/gtest.h>

#include "board/search_line.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/generated.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

std::uint32_t leaves(const Table& position, std::int32_t depth) {
    Table table = position;
    TotalNodes = 0;
    perft(table, depth, perft_alpha, perft_beta);
    EXPECT_TRUE(table == position) << "the position is as before";
    return TotalNodes;
}

std::uint32_t leaves(const char* fen, std::int32_t depth) {
    return leaves(position_from_fen(fen), depth);
}

/// Legal moves by the rules of chess.
std::size_t moves_of_chess(const char* fen) {
    return generated(gen_legal, position_from_fen(fen)).size();
}

}  // namespace

class Perft : public testing::Test {
  protected:
    Perft() {
        reset_all();
        reset_fake_clock();
    }
    ~Perft() override { reset_fake_clock(); }
};

TEST_F(Perft, DepthZeroCountsOne) {
    EXPECT_EQ(leaves(start_position(), 0), 1U);
    EXPECT_EQ(leaves("7k/5Q2/6K1/8/8/8/8/8 b - -", 0), 1U);
}

TEST_F(Perft, StartingPosition) {
    EXPECT_EQ(leaves(start_position(), 1), 20U);
    EXPECT_EQ(leaves(start_position(), 2), 400U);
    EXPECT_EQ(leaves(start_position(), 3), 8902U);
    EXPECT_EQ(leaves(start_position(), 4), 197281U);
}

TEST_F(Perft, AddsToTheCounter) {
    Table table = start_position();
    TotalNodes = 1000;
    perft(table, 1, perft_alpha, perft_beta);
    EXPECT_EQ(TotalNodes, 1020U);
}

TEST_F(Perft, PositionWithoutALegalMoveAddsNothing) {
    for (const char* fen : {"7k/5Q2/6K1/8/8/8/8/8 b - -", "R5k1/5ppp/8/8/8/8/8/K7 b - -"}) {
        for (const std::int32_t depth : {1, 2, 3}) {
            EXPECT_EQ(leaves(fen, depth), 0U) << fen;
        }
    }
}

TEST_F(Perft, ResultIsAScoreThatTheCountDoesNotUse) {
    Table mated = position_from_fen("R5k1/5ppp/8/8/8/8/8/K7 b - -");
    ply = 3;
    EXPECT_EQ(perft(mated, 1, -5, 7), 3 - 600000);
    Table stalemated = position_from_fen("7k/5Q2/6K1/8/8/8/8/8 b - -");
    EXPECT_EQ(perft(stalemated, 1, -5, 7), 0);
    Table free = start_position();
    EXPECT_EQ(perft(free, 1, -5, 7), -5);
    EXPECT_EQ(perft(free, 0, -5, 7), 1);
    EXPECT_EQ(ply, 3) << "the distance from the root is as before";
}

// b3-f7 runs through d5, the square of the pawn that disappears, and not through c5, where the
// capturing pawn comes from: chess has 8 moves, perft counts 9.
TEST_F(Perft, CountsEnPassantThatOpensADiagonalThroughTheTakenPawn) {
    const char* of_white = "8/5bk1/8/2Pp4/8/1K6/8/8 w - d6";
    EXPECT_EQ(leaves(of_white, 1), 9U);
    EXPECT_EQ(moves_of_chess(of_white), 8U);
    const char* of_black = "8/8/1k6/8/2pP4/8/5BK1/8 b - d3";
    EXPECT_EQ(leaves(of_black, 1), 9U);
    EXPECT_EQ(moves_of_chess(of_black), 8U);
}

// The same one ply down. In a game the bishop would have given check before the double push, so the
// position before it cannot arise; perft takes it as it is. The bishop is pinned and takes no king.
TEST_F(Perft, CountsSuchAnEnPassantInsideTheTree) {
    Table table = position_from_fen("5k2/3p1b2/8/2P5/8/1K6/8/5R2 b - -");
    std::size_t by_full_tests = 0;
    for (const Move& move : generated(gen_legal, table)) {
        Table after = table;
        make_plain(after, move.posFrom, move.posTo, move.posInfo);
        after.side ^= 1;
        by_full_tests += generated(gen_legal, after).size();
    }
    EXPECT_EQ(leaves(table, 2), by_full_tests + 1);
}

// The other diagonal, and the capturing pawn on an unconnected line of the king.
TEST_F(Perft, CountsEnPassantThatOpensTheOtherDiagonal) {
    const char* falling = "8/1bk5/8/3pP3/8/5K2/8/8 w - d6";
    EXPECT_EQ(leaves(falling, 1), moves_of_chess(falling) + 1);
    const char* on_another_line = "6k1/5b2/8/2Pp4/8/8/K7/8 w - d6";
    EXPECT_EQ(leaves(on_another_line, 1), moves_of_chess(on_another_line) + 1);
}

// Along the rank both pawns leave the line at once, and the from-square lies on it: not counted.
TEST_F(Perft, DoesNotCountEnPassantThatOpensARank) {
    const char* of_white = "7k/8/8/K1pP3r/8/8/8/8 w - c6";
    EXPECT_EQ(leaves(of_white, 1), 5U);
    EXPECT_EQ(moves_of_chess(of_white), 5U);
    const char* of_black = "8/8/8/8/k1Pp3R/8/8/7K b - c3";
    EXPECT_EQ(leaves(of_black, 1), moves_of_chess(of_black));
}

// A file through the taken pawn stays closed, for the capturing pawn lands on it: counted, rightly.
// The file that the capturing pawn leaves is the from-square's own: not counted.
TEST_F(Perft, CountsEnPassantOnAFileAsChessDoes) {
    const char* through_taken = "3r3k/8/8/3pP3/8/8/8/3K4 w - d6";
    EXPECT_EQ(leaves(through_taken, 1), 7U);
    EXPECT_EQ(moves_of_chess(through_taken), 7U);
    const char* through_taking = "4r2k/8/8/3pP3/8/8/8/4K3 w - d6";
    EXPECT_EQ(leaves(through_taking, 1), 6U);
    EXPECT_EQ(moves_of_chess(through_taking), 6U);
}

// In check every candidate is tested by the king's safety.
TEST_F(Perft, TestsEnPassantOutOfCheckInFull) {
    const char* takes_the_checker = "7k/8/8/3pP3/4K3/8/8/8 w - d6";
    EXPECT_EQ(leaves(takes_the_checker, 1), moves_of_chess(takes_the_checker));
    const char* opens_a_line = "8/5bk1/8/2Pp4/2K5/8/8/8 w - d6";
    EXPECT_EQ(leaves(opens_a_line, 1), moves_of_chess(opens_a_line));
}

TEST_F(Perft, MissesWhitesPromotingCaptureOfTheCheckerTowardsTheAFile) {
    const char* of_white = "r7/1P6/8/8/8/8/8/K6k w - -";
    EXPECT_EQ(leaves(of_white, 1), 2U);
    EXPECT_EQ(moves_of_chess(of_white), 6U);
    const char* of_black = "k6K/8/8/8/8/8/1p6/R7 b - -";
    EXPECT_EQ(leaves(of_black, 1), 6U);
    EXPECT_EQ(moves_of_chess(of_black), 6U);
}

TEST_F(Perft, DepthsArePrintedWithARunningTotal) {
    Table table = start_position();
    const CapturedOutput output;
    perft_depths(table, 4);
    EXPECT_EQ(output.text(),
              "1 20  20  time: 0\n"
              "2 400  420  time: 0\n"
              "3 8902  9322  time: 0\n"
              "4 197281  206603  time: 0\n");
}

// The time runs from the start of all depths; the speed divides one depth's leaves by it.
TEST_F(Perft, DepthsArePrintedWithSpeedOnceTimeHasPassed) {
    Table table = start_position();
    fake_ticks = 4294967290;
    fake_ticks_per_reading = 10;
    const CapturedOutput output;
    perft_depths(table, 3);
    EXPECT_EQ(output.text(),
              "1 20  20  time: 10 speed 2\n"
              "2 400  420  time: 20 speed 20\n"
              "3 8902  9322  time: 30 speed 296\n");
}
