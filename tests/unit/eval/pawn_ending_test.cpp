// SPDX-License-Identifier: MIT
// Kings and pawns alone. Each sum is worked out in its comment, in the order: pawns' squares, rule
// of the square, kings' distances from the only pawn, kings' squares, pawn structure. It is seen
// from the side to move, so it must be the same with the colours exchanged and turn its sign with
// the side.
#include <gtest/gtest.h>
#include <string>

#include "board/table.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

class PawnEnding : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
};

/// The score of a FEN board, White to move, is `sum`.
void expect_sum(const std::string& board, std::int32_t sum) {
    Table table = position_from_fen(board + " w - -");
    EXPECT_EQ(Table::evaluate_pawn_ending(table), sum) << board;
    EXPECT_EQ(Table::evaluate_pawn_ending(mirrored(table)), sum) << board << " mirrored";
    table.side = black;
    EXPECT_EQ(Table::evaluate_pawn_ending(table), -sum) << board << " Black to move";
    EXPECT_EQ(Table::evaluate_pawn_ending(mirrored(table)), -sum) << board << " mirrored";
}

}  // namespace

// The rule of the square

TEST_F(PawnEnding, APassedPawnThatTheKingCannotReachGains350) {
    // a6 and h8: 7 files, 4 would be too far. 82; 350; -(16 + 25) + (49 + 4); 15 - 0; -15 + 75.
    expect_sum("7k/8/P7/8/8/8/8/4K3", 519);
}

TEST_F(PawnEnding, APassedPawnThatTheKingReachesGainsNothing) {
    // a6 and c8: 2 files. 82; 0; -(16 + 25) + (4 + 4); 15 - 10; -15 + 75.
    expect_sum("2k5/8/P7/8/8/8/8/4K3", 114);
}

TEST_F(PawnEnding, AKingAheadOfThePawnBarsIt) {
    // a7 and a8: 87; -6 x 7; -(16 + 36) + (0 + 1); 15 - 0; -15 + 90.
    expect_sum("k7/P7/8/8/8/8/8/4K3", 84);
    // a3 and a8: 73; -2 x 7; -(16 + 4) + (0 + 25); 15 - 0; -15 + 30.
    expect_sum("k7/8/8/8/8/P7/8/4K3", 94);
    // e4 and e5: 85; -3 x 7; -(0 + 9) + (0 + 1); 15 - 30; -25 + 45.
    expect_sum("8/8/8/4k3/4P3/8/8/4K3", 61);
}

TEST_F(PawnEnding, TheOwnKingAheadDoesNotCountAsABar) {
    // a6, a7 and c8: 82; 0; -(0 + 1) + (4 + 4); 5 - 10; -15 + 75.
    expect_sum("2k5/K7/P7/8/8/8/8/8", 144);
    // a3 with White's king on a5 before Black's on a8: 73; 0; -(0 + 4) + (0 + 25); 15 - 0; 15.
    expect_sum("k7/8/8/K7/8/P7/8/8", 124);
}

TEST_F(PawnEnding, AKingTwoRowsBehindThePawnIsTooLate) {
    // a4 and a3, one row behind: 74; 0; -(16 + 9) + (0 + 1); 15 - 10; -15 + 45.
    expect_sum("8/8/8/8/P7/k7/8/4K3", 85);
    // a4 and a2, two rows: 74; 350; -25 + (0 + 4); 15 - 5; 30.
    expect_sum("8/8/8/8/P7/8/k7/4K3", 443);
    // a4 and a1, three rows: 74; 350; -25 + (0 + 9); 15 - 0; 30.
    expect_sum("8/8/8/8/P7/8/8/k3K3", 453);
    // e4 and d2, two rows and one file: 85; 350; -(0 + 9) + (1 + 4); 15 - 20; -25 + 45.
    expect_sum("8/8/8/8/4P3/8/3k4/4K3", 446);
}

TEST_F(PawnEnding, TheSquareIsTwoFilesWiderThanThePawnsRow) {
    // a4, row 4: 6 files are too many. f5, 5 files: 74; 0; -25 + (25 + 1); 15 - 25; 30.
    expect_sum("8/8/8/5k2/P7/8/8/4K3", 95);
    // g5, 6 files: 74; 350; -25 + (36 + 1); 15 - 20; 30.
    expect_sum("8/8/8/6k1/P7/8/8/4K3", 461);
    // a7, row 1: 3 files are too many. c8: 87; 0; -(16 + 36) + (4 + 1); 15 - 10; -15 + 90.
    expect_sum("2k5/P7/8/8/8/8/8/4K3", 120);
    // d8: 87; 350; -52 + (9 + 1); 15 - 15; 75.
    expect_sum("3k4/P7/8/8/8/8/8/4K3", 470);
    // a2, row 6: no king ahead is too far. h8: 72; 0; -(16 + 1) + (49 + 36); 15 - 0; -15 + 15.
    expect_sum("7k/8/8/8/8/8/P7/4K3", 155);
}

TEST_F(PawnEnding, TheSquareLiesOnBothSidesOfThePawn) {
    // h4, row 4. c5, 5 files: 74; 0; -(9 + 9) + (25 + 1); 15 - 25; -15 + 45.
    expect_sum("8/8/8/2k5/7P/8/8/4K3", 102);
    // b5, 6 files: 74; 350; -18 + (36 + 1); 15 - 20; 30.
    expect_sum("8/8/8/1k6/7P/8/8/4K3", 468);
}

TEST_F(PawnEnding, APawnThatIsNotPassedGainsNothingFromTheRule) {
    // e4 against e5, Black's king on a1: 85 - 85; 15 - 0; -25 + 25.
    expect_sum("8/8/8/4p3/4P3/8/8/k3K3", 15);
}

TEST_F(PawnEnding, EachPassedPawnIsJudgedForItself) {
    // a6 out of reach, h2 within reach but barred by h8: 82 + 72; 350 - 7; 15 - 0; -15 + 75 - 15
    // + 15.
    expect_sum("7k/8/P7/8/8/8/7P/4K3", 572);
    // a6 and h2 with c8: both within reach and free: 82 + 72; 0; 15 - 10; 60 + 0.
    expect_sum("2k5/8/P7/8/8/8/7P/4K3", 219);
}

TEST_F(PawnEnding, PassedPawnsOfBothSides) {
    // White e5, Black d5, level. 87 - 85; e5 is barred by e8: -4 x 7; d5 is free and within reach;
    // 15 - 15; -25 + 60 + 25 - 45.
    expect_sum("4k3/8/8/3pP3/8/8/8/4K3", -11);
    // White a6 out of reach of g3, Black h3 out of reach of b6: all cancels but the kings, and the
    // kings' squares are alike.
    expect_sum("8/8/PK6/8/8/6kp/8/8", 0);
    // White a6 out of reach of h8; Black h5 with e1: 9 - 3 = 6 files would be too many, 3 are not.
    // 82 - 74; 350; 15 - 0; -15 + 75 + 15 - 45.
    expect_sum("7k/8/P7/7p/8/8/8/4K3", 403);
}

TEST_F(PawnEnding, ABlackPawnOutOfReachCosts350) {
    // Black a3, White h1, Black e8: as the first position with the colours exchanged.
    Table table = position_from_fen("4k3/8/8/8/8/p7/8/7K w - -");
    EXPECT_EQ(Table::evaluate_pawn_ending(table), -519);
    table.side = black;
    EXPECT_EQ(Table::evaluate_pawn_ending(table), 519);
}

TEST_F(PawnEnding, ABlackPawnBarredByTheWhiteKing) {
    // Black a2, White a1, Black e8: as a7 against a8 with the colours exchanged.
    EXPECT_EQ(Table::evaluate_pawn_ending(position_from_fen("4k3/8/8/8/8/8/p7/K7 w - -")), -84);
    // White two rows behind a black pawn on a5: as a4 with the king on a2.
    EXPECT_EQ(Table::evaluate_pawn_ending(position_from_fen("4k3/K7/8/p7/8/8/8/8 w - -")), -443);
}

// The only pawn

TEST_F(PawnEnding, ANearWhiteKingHelpsWhiteAlsoAgainstTheOnlyBlackPawn) {
    // Black e4, Black's king e8. -87; 0; the distances; the kings; 25 - 60.
    const auto score = [](const std::string& board) {
        return Table::evaluate_pawn_ending(position_from_fen(board + " w - -"));
    };
    // h1: -(9 + 9) + (0 + 16); 0 - 15.
    EXPECT_EQ(score("4k3/8/8/8/4p3/8/8/7K"), -139);
    // g1: -(4 + 9) + 16; 5 - 15.
    EXPECT_EQ(score("4k3/8/8/8/4p3/8/8/6K1"), -129);
    // g2: -(4 + 4) + 16; 10 - 15.
    EXPECT_EQ(score("4k3/8/8/8/4p3/8/6K1/8"), -119);
}

TEST_F(PawnEnding, WithTwoPawnsTheDistancesDoNotCount) {
    // d4, e4 with e8 and e1 or b1: 85 + 85; e4 is barred: -3 x 7; kings; 45 + 45.
    expect_sum("4k3/8/8/8/3PP3/8/8/4K3", 239);  // 15 - 15
    expect_sum("4k3/8/8/8/3PP3/8/8/1K6", 229);  // 5 - 15
    // One pawn each: the squares alone. a2 against h7: 72 - 72; a2 is within reach of e8 and free,
    // h7 of e1; -15 + 15 + 15 - 15.
    expect_sum("4k3/7p/8/8/8/8/P7/4K3", 0);
}

// Who comes here

TEST_F(PawnEnding, EvaluateHandsOverWhenOnlyPawnsAreLeft) {
    const Table lone = position_from_fen("7k/8/P7/8/8/8/8/4K3 w - -");
    EXPECT_EQ(Table::evaluate(lone, 0, 0), 519);
    const Table both = position_from_fen("4k3/8/8/3pP3/8/8/8/4K3 b - -");
    EXPECT_EQ(Table::evaluate(both, 0, 0), 11);
}

TEST_F(PawnEnding, NoTermDependsOnTheSideButTheSign) {
    int compared = 0;
    for (const char* board :
         {"7k/8/P7/8/8/8/8/4K3", "2k5/8/P7/8/8/8/8/4K3", "4k3/8/8/3pP3/8/8/8/4K3",
          "8/pp3k2/8/2p5/4P3/6P1/P4K1P/8", "8/8/1k6/1p6/8/1P6/1K6/8"}) {
        Table table = position_from_fen(std::string(board) + " w - -");
        const std::int32_t score = Table::evaluate(table, 0, 0);
        table.side = black;
        EXPECT_EQ(Table::evaluate(table, 0, 0), -score) << board;
        ++compared;
    }
    EXPECT_EQ(compared, 5);
}
