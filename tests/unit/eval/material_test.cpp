// SPDX-License-Identifier: MIT
// What the men alone say. A test names the position from White's side; each sum is also tested with
// the colours exchanged, where it must come out with the other sign.
#include "eval/material.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "board/square_tables.h"
#include "support/position.h"

namespace {

using Score = std::optional<std::int32_t>;

/// The material terms of a FEN board are `sum`, and `-sum` with the colours exchanged.
void expect_sum(const std::string& board, std::int32_t sum) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(material_score(table, count_men(table)), Score(sum)) << board;
    const Table mirror = mirrored(table);
    EXPECT_EQ(material_score(mirror, count_men(mirror)), Score(-sum)) << board << " mirrored";
}

/// The material terms of a FEN board end in a draw, for either colour.
void expect_draw(const std::string& board) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(material_score(table, count_men(table)), Score()) << board;
    const Table mirror = mirrored(table);
    EXPECT_EQ(material_score(mirror, count_men(mirror)), Score()) << board << " mirrored";
}

bool dead_draw(const std::string& board) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(is_dead_draw(table), is_dead_draw(mirrored(table))) << board;
    return is_dead_draw(table);
}

bool endgame(const std::string& board) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(is_endgame(count_men(table)), is_endgame(count_men(mirrored(table)))) << board;
    return is_endgame(count_men(table));
}

/// The static score, which begins with the material.
std::int32_t evaluated(const std::string& board) {
    return Table::evaluate(position_from_fen(board), 0, 0);
}

}  // namespace

// Counts

TEST(Material, CountsMenByKind) {
    // White: R R Q N N B and four pawns; Black: R Q Q B N and two pawns.
    const MenCounts men =
        count_men(position_from_fen("r2qk1nq/pp4b1/8/8/8/8/PPPP4/RNBQKN1R w - -"));
    EXPECT_EQ(men.w_rooks, 2);
    EXPECT_EQ(men.b_rooks, 1);
    EXPECT_EQ(men.w_queens, 1);
    EXPECT_EQ(men.b_queens, 2);
    EXPECT_EQ(men.w_minors, 3);
    EXPECT_EQ(men.b_minors, 2);
    EXPECT_EQ(men.w_pawns, 4);
    EXPECT_EQ(men.b_pawns, 2);
    EXPECT_EQ(men.w_weight, 29);  // 3 x 3 + 5 x 2 + 10 x 1
    EXPECT_EQ(men.b_weight, 31);  // 3 x 2 + 5 x 1 + 10 x 2
    EXPECT_EQ(men.w_pieces, 6);   // 2 + 1 + 3
    EXPECT_EQ(men.b_pieces, 5);   // 1 + 2 + 2
}

// Three men or fewer

TEST(Material, TwoBareKingsAreADraw) {
    EXPECT_TRUE(dead_draw("4k3/8/8/8/8/8/8/4K3"));
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/4K3 w - -"), 0);
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/K7 b - -"), 0);
}

TEST(Material, AMinorPieceAgainstABareKingIsADraw) {
    EXPECT_TRUE(dead_draw("4k3/8/8/8/8/8/8/4KN2"));
    EXPECT_TRUE(dead_draw("4k3/8/8/8/8/8/8/4KB2"));
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/4KN2 w - -"), 0);
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/4KB2 b - -"), 0);
    EXPECT_EQ(evaluated("4kn2/8/8/8/8/8/8/4K3 w - -"), 0);
    EXPECT_EQ(evaluated("4kb2/8/8/8/8/8/8/4K3 b - -"), 0);
}

TEST(Material, APawnRookOrQueenAgainstABareKingGoesOn) {
    EXPECT_FALSE(dead_draw("4k3/8/8/8/8/8/4P3/4K3"));
    EXPECT_FALSE(dead_draw("4k3/8/8/8/8/8/8/4KR2"));
    EXPECT_FALSE(dead_draw("4k3/8/8/8/8/8/8/4KQ2"));
}

TEST(Material, FourMenAreNoDeadDraw) {
    EXPECT_FALSE(dead_draw("4k3/8/8/8/8/8/8/4KNN1"));
    EXPECT_FALSE(dead_draw("4kn2/8/8/8/8/8/8/4KN2"));
    EXPECT_FALSE(dead_draw("4k3/8/8/8/8/8/4P3/4KN2"));
}

// A bare king. Each sum holds 20 + 100 for the lead: no enemy queen, one piece more at least.

TEST(Material, ARookOrAQueenAgainstABareKingWins) {
    expect_sum("4k3/8/8/8/8/8/8/R3K3", 21120);    // 21000 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/8/Q3K3", 21120);    // 21000 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/8/QR2K2R", 21120);  // 21000 once, however many
    expect_sum("4k3/8/8/8/8/8/P7/R3K3", 21120);   // own pawns change nothing
}

TEST(Material, APieceWithoutRookOrQueenIsNoWinOfItself) {
    expect_sum("4k3/8/8/8/8/8/P7/N3K3", 120);  // 0 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/P7/B3K3", 120);
}

TEST(Material, KnightAndBishopAgainstABareKingWin) {
    expect_sum("4k3/8/8/8/8/8/8/BN2K3", 21120);     // 21000 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/P7/BN2K3", 21120);    // pawns or not
    expect_sum("4k3/8/8/8/8/8/8/BNR1K3", 42120);    // 21000 + 21000 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/8/BNQ1K3", 42120);    // the largest sum
    expect_sum("4k3/8/8/8/8/8/8/BNR1K1NB", 42120);  // once, however many
}

TEST(Material, TwoKnightsAgainstABareKingDraw) {
    expect_draw("4k3/8/8/8/8/8/8/NN2K3");
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/NN2K3 w - -"), 0);
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/NN2K3 b - -"), 0);
    EXPECT_EQ(evaluated("nn2k3/8/8/8/8/8/8/4K3 w - -"), 0);
}

TEST(Material, MoreThanTwoKnightsAgainstABareKingPlayOn) {
    expect_sum("4k3/8/8/8/8/8/8/NNN1K3", 120);    // weight 9: 0 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/P7/NN2K3", 120);    // with a pawn
    expect_sum("4k3/8/8/8/8/8/8/NN2KR2", 21120);  // with a rook: 21000 + 20 + 100
}

TEST(Material, BishopsOfOneColourAgainstABareKingDraw) {
    expect_draw("4k3/8/8/8/8/8/8/B1B1K3");    // a1 and c1, dark
    expect_draw("4k3/8/8/8/8/8/8/1B1BK3");    // b1 and d1, light
    expect_draw("4k3/8/8/8/8/8/1B6/B1B1K3");  // three on dark squares: a1, b2, c1
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/8/B1B1K3 w - -"), 0);
    EXPECT_EQ(evaluated("1b1bk3/8/8/8/8/8/8/4K3 w - -"), 0);
}

TEST(Material, BishopsOfBothColoursAgainstABareKingWin) {
    expect_sum("4k3/8/8/8/8/8/8/BB2K3", 21120);   // 21000 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/8/BBB1K3", 21120);  // two dark, one light
}

TEST(Material, BishopsOfOneColourWithOtherMenPlayOn) {
    expect_sum("4k3/8/8/8/8/8/P7/B1B1K3", 120);     // a pawn: 0 + 20 + 100
    expect_sum("4k3/8/8/8/8/8/P7/BB2K3", 120);      // both colours: no 21000 beside a pawn
    expect_sum("4k3/8/8/8/8/8/8/B1B1K2R", 21120);   // a rook: 21000 + 20 + 100, once
    expect_sum("4k3/8/8/8/8/8/8/BB2K2R", 21120);    // both colours and a rook: once as well
    expect_sum("4k3/8/8/8/8/8/8/BB2K2Q", 21120);    // and a queen
    expect_sum("4k3/8/8/8/8/8/8/B1B1K1N1", 21120);  // a knight: 21000 + 20 + 100
}

TEST(Material, AKingWithAPawnIsNotBare) {
    // No 21000: 20 for the missing queen, 100 off for a side without pawns against pawns.
    expect_sum("4k3/p7/8/8/8/8/8/R3K3", -80);
    expect_sum("4k3/p7/8/8/8/8/8/NN2K3", -80);
    expect_sum("4k3/p7/8/8/8/8/8/B1B1K3", -80);
}

// Minor pieces alone

TEST(Material, OneMinorMoreWithNothingElseIsHardlyALead) {
    expect_sum("1b2k3/8/8/8/8/8/8/BN2K3", -150);   // -270 + 20 + 100
    expect_sum("1n2k3/8/8/8/8/8/8/NN2K3", -150);   // -270 + 20 + 100
    expect_sum("bn2k3/8/8/8/8/8/8/BNN1K3", -150);  // -270 + 20 + 100
}

TEST(Material, TwoMinorsMoreAreALead) {
    expect_sum("1b2k3/8/8/8/8/8/8/BNN1K3", 120);  // 20 + 100
}

TEST(Material, OneMinorMoreBesideOtherMenIsALead) {
    expect_sum("1b2k3/8/8/8/8/8/P7/BN2K3", 120);  // a pawn: 20 + 100
    expect_sum("1b2k3/p7/8/8/8/8/8/BN2K3", -80);  // an enemy pawn: 20 - 100
    expect_sum("rb2k3/8/8/8/8/8/8/BNR1K3", 120);  // rooks: 11 - 8 = 3, 20 + 100
    expect_sum("qb2k3/8/8/8/8/8/8/BNQ1K3", 110);  // queens: 16 - 13 = 3, 10 + 100
    expect_sum("1b2k2r/8/8/8/8/8/8/BN2K3", 0);    // a rook: 6 - 8 = -2, no lead at all
}

TEST(Material, EqualMinorsAreLevel) {
    expect_sum("1n2k3/8/8/8/8/8/8/1B2K3", 0);
    expect_sum("nn2k3/8/8/8/8/8/8/BB2K3", 0);
}

// The end-game flag

TEST(Material, ThreePiecesEachAreAnEndGameWithQueensToo) {
    EXPECT_TRUE(endgame("qrb1k3/8/8/8/8/8/8/QRB1K3"));  // 2 + 4 + 8 = 14 each: by number alone
    EXPECT_TRUE(endgame("qqqk4/8/8/8/8/8/8/QQQK4"));
}

TEST(Material, FourPiecesWithAQueenOnTheBoardAreNone) {
    EXPECT_FALSE(endgame("qrb1k3/8/8/8/8/8/8/QRBNK3"));  // 4 and 3 pieces
    EXPECT_FALSE(endgame("rrbnk3/8/8/8/8/8/8/Q3K3"));    // 4 pieces, the queen is the enemy's
}

TEST(Material, FourPiecesWithoutQueensAreAnEndGame) {
    EXPECT_TRUE(endgame("rrbnk3/8/8/8/8/8/8/RRBNK3"));  // 2 + 2 + 4 + 4 = 12 each: by number
    EXPECT_TRUE(endgame("rrrrk3/8/8/8/8/8/8/R3K3"));
}

TEST(Material, FivePiecesDependOnTheirWeight) {
    // Minors count 2, rooks 4, queens 8.
    EXPECT_TRUE(endgame("r3k3/8/8/8/8/8/8/NNBBKN2"));    // 10, no queens: below 12
    EXPECT_FALSE(endgame("r3k3/8/8/8/8/8/8/RNBBKN2"));   // 4 + 8 = 12, no queens
    EXPECT_TRUE(endgame("q3k3/8/8/8/8/8/8/NNBBKN2"));    // 10 and 8 with a queen: below 11
    EXPECT_FALSE(endgame("q3k3/8/8/8/8/8/8/RNBBKN2"));   // 12 with a queen
    EXPECT_FALSE(endgame("qrk5/8/8/8/8/8/8/NNBBKN2"));   // 10, but 8 + 4 = 12 on the other side
    EXPECT_FALSE(endgame("qbbk4/8/8/8/8/8/8/NNBBKN2"));  // 10, but 8 + 2 + 2 = 12
    EXPECT_TRUE(endgame("qbk5/8/8/8/8/8/8/NNBBKN2"));    // 10 and 8 + 2 = 10
}

TEST(Material, FourPiecesWithAQueenOnTheBoardDependOnTheirWeight) {
    EXPECT_TRUE(endgame("q3k3/8/8/8/8/8/8/RNNNK3"));   // 4 + 6 = 10 and 8: below 11
    EXPECT_FALSE(endgame("q3k3/8/8/8/8/8/8/RRNNK3"));  // 8 + 4 = 12
}

TEST(Material, PawnsDoNotMatterForTheEndGame) {
    EXPECT_TRUE(endgame("qrb1k3/pppppppp/8/8/8/8/PPPPPPPP/QRB1K3"));
    EXPECT_TRUE(endgame("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3"));
    EXPECT_FALSE(endgame("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR"));
    EXPECT_FALSE(endgame("rnbqkbnr/8/8/8/8/8/8/RNBQKBNR"));
}

// Imbalance. Both sides have pawns unless the test says otherwise.

TEST(Material, ALeadIsThreePointsOfWeight) {
    expect_sum("4k3/p7/8/8/8/8/P7/N3K3", 120);   // 3: 20 + 100
    expect_sum("n3k3/p7/8/8/8/8/P7/R3K3", 0);    // 5 - 3 = 2
    expect_sum("nn2k3/p7/8/8/8/8/P7/R3K3", 0);   // 5 - 6 = -1
    expect_sum("rr2k3/p7/8/8/8/8/P7/Q3K3", 0);   // 10 - 10
    expect_sum("nn2k3/p7/8/8/8/8/P7/RN2K3", 0);  // 8 - 6 = 2
}

TEST(Material, ALeaderGains20IfTheEnemyHasNoQueen) {
    expect_sum("r3k3/p7/8/8/8/8/P7/Q3K3", 20);   // 10 - 5 = 5, pieces level
    expect_sum("nn2k3/p7/8/8/8/8/P7/Q3K3", 20);  // 10 - 6 = 4, a piece less
    expect_sum("n3k3/p7/8/8/8/8/P7/Q3K3", 20);   // no rook either: still 20
}

TEST(Material, ALeaderGains10IfTheEnemyHasAQueenButNoRook) {
    expect_sum("qn2k3/p7/8/8/8/8/P7/QQ2K3", 10);    // 20 - 13 = 7, pieces level
    expect_sum("q3k3/p7/8/8/8/8/P7/QN2K3", 110);    // 13 - 10 = 3: 10 + 100
    expect_sum("qrn1k3/p7/8/8/8/8/P7/QQR1K3", 0);   // queen and rook: nothing, pieces level
    expect_sum("qr2k3/p7/8/8/8/8/P7/QRN1K3", 100);  // queen and rook: a piece more alone
}

TEST(Material, ALeaderWithMorePiecesGains100) {
    expect_sum("n3k3/p7/8/8/8/8/P7/RN2K3", 120);   // 8 - 3 = 5, 2 - 1 = 1: 20 + 100
    expect_sum("n3k3/p7/8/8/8/8/P7/RRN1K3", 120);  // 2 pieces more: 100 all the same
    expect_sum("n3k3/8/8/8/8/8/8/RN2K3", 120);     // no pawns on either side
    expect_sum("n3k3/8/8/8/8/8/P7/RN2K3", 120);    // own pawns alone
}

TEST(Material, ALeaderWithoutPawnsAgainstPawnsLoses100) {
    expect_sum("n3k3/p7/8/8/8/8/8/RN2K3", -80);   // 20 - 100
    expect_sum("q3k3/p7/8/8/8/8/8/QN2K3", -90);   // 10 - 100
    expect_sum("r3k3/p7/8/8/8/8/8/Q3K3", 20);     // pieces level: 20 alone
    expect_sum("4k3/pppp4/8/8/8/8/8/N3K3", -80);  // 20 - 100
}

TEST(Material, BlackLeadsInTheSameWay) {
    expect_sum("rn2k3/p7/8/8/8/8/P7/N3K3", -120);  // -20 - 100
    expect_sum("rn2k3/8/8/8/8/8/P7/N3K3", 80);     // -20 + 100
    expect_sum("qn2k3/p7/8/8/8/8/P7/Q3K3", -110);  // -10 - 100
    expect_sum("q3k3/p7/8/8/8/8/P7/R3K3", -20);    // pieces level
}

// Queen and minor against queen

TEST(Material, QueenAndMinorAgainstQueenDraw) {
    expect_draw("q3k3/8/8/8/8/8/8/QN2K3");
    expect_draw("q3k3/8/8/8/8/8/8/QB2K3");
    EXPECT_EQ(evaluated("q3k3/8/8/8/8/8/8/QN2K3 w - -"), 0);
    EXPECT_EQ(evaluated("qb2k3/8/8/8/8/8/8/Q3K3 w - -"), 0);
}

TEST(Material, QueenAndMinorAgainstQueenWithOtherMenPlayOn) {
    expect_sum("q3k3/8/8/8/8/8/8/QBN1K3", 110);   // two minors: 16 - 10 = 6, 10 + 100
    expect_sum("qn2k3/8/8/8/8/8/8/QN2K3", 0);     // a minor each
    expect_sum("q3k3/8/8/8/8/8/P7/QN2K3", 110);   // a pawn: 10 + 100
    expect_sum("q3k3/p7/8/8/8/8/8/QN2K3", -90);   // an enemy pawn: 10 - 100
    expect_sum("qr2k3/8/8/8/8/8/8/QRN1K3", 100);  // rooks: 18 - 15 = 3, 100
    expect_sum("q3k3/8/8/8/8/8/8/QR2K3", 110);    // a rook for the minor: 10 + 100
    expect_sum("q3k3/8/8/8/8/8/8/QQN1K3", 110);   // two queens: 23 - 10, 10 + 100
    expect_sum("qq2k3/8/8/8/8/8/8/QN2K3", -10);   // 13 - 20 = -7, pieces level: -10
}

// Queen against pawn. The lead gives 20 for the missing queen and takes 100 off: -80.

TEST(Material, QueenAgainstAPawnOnTheSecondRankDependsOnTheFile) {
    expect_draw("4k3/8/8/8/8/8/p7/4K2Q");
    expect_draw("4k3/8/8/8/8/8/2p5/4K2Q");
    expect_draw("4k3/8/8/8/8/8/5p2/4K2Q");
    expect_draw("4k3/8/8/8/8/8/7p/4K2Q");
    expect_sum("4k3/8/8/8/8/8/1p6/4K2Q", 9920);  // 10000 - 80
    expect_sum("4k3/8/8/8/8/8/3p4/4K2Q", 9920);
    expect_sum("4k3/8/8/8/8/8/4p3/4K2Q", 9920);
    expect_sum("4k3/8/8/8/8/8/6p1/4K2Q", 9920);
    EXPECT_EQ(evaluated("4k3/8/8/8/8/8/p7/4K2Q w - -"), 0);
    EXPECT_EQ(evaluated("4k2q/5P2/8/8/8/8/8/4K3 w - -"), 0);
}

TEST(Material, QueenAgainstAPawnSetUpOnItsLastRankWins) {
    expect_sum("6K1/8/8/8/8/4k3/8/p6Q", 9920);  // 10000 - 80: one step from promotion is a2
    expect_sum("P6q/8/8/8/8/4k3/8/6K1", -9920);
}

TEST(Material, QueenAgainstAPawnFurtherBackWins) {
    int positions = 0;
    for (Square rank = a7; rank <= a3; rank += 10) {
        for (Square square = rank; square < rank + 8; ++square) {
            Table table = position_from_fen("4k3/8/8/8/8/8/8/4K2Q");
            table.at(square) = b_pawn;
            table.BPawns = mask_of(square);
            ++table.Kol_figur;
            EXPECT_EQ(material_score(table, count_men(table)), Score(9920)) << square;
            const Table mirror = mirrored(table);
            EXPECT_EQ(material_score(mirror, count_men(mirror)), Score(-9920)) << square;
            ++positions;
        }
    }
    EXPECT_EQ(positions, 40);
}

TEST(Material, QueenAgainstPawnWithOtherMenIsNeitherDrawnNorWon) {
    expect_sum("4k3/8/8/8/8/8/p1p5/4K2Q", -80);  // two pawns
    expect_sum("4k3/8/8/8/8/8/p7/4K1QQ", -80);   // two queens
    expect_sum("4k3/8/8/8/8/8/p7/4K1NQ", -80);   // a knight beside the queen
    expect_sum("4k3/8/8/8/8/8/p6P/4K2Q", 120);   // a pawn beside the queen: 20 + 100
    expect_sum("4k2n/8/8/8/8/8/p7/4K2Q", 20);    // a knight beside the pawn, pieces level
    expect_sum("4k3/8/8/8/8/8/p7/4K2R", -80);    // a rook for the queen
    expect_sum("4k3/8/8/8/8/8/2p5/4K2R", -80);
}
