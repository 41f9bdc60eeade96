// SPDX-License-Identifier: MIT
// Whole positions, each sum worked out by hand from the terms.
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "board/table.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

class Evaluate : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
};

std::int32_t evaluated(const Table& table) {
    return Table::evaluate(table, 0, 0);
}

/// The score of a FEN board, White to move, is `sum`. Seen from the side to move it is the same
/// with the colours exchanged and turns its sign with the side.
void expect_sum(const std::string& board, std::int32_t sum) {
    Table table = position_from_fen(board + " w - -");
    EXPECT_EQ(evaluated(table), sum) << board;
    EXPECT_EQ(evaluated(mirrored(table)), sum) << board << " mirrored";
    table.side = black;
    EXPECT_EQ(evaluated(table), -sum) << board << " Black to move";
}

}  // namespace

// Few men

TEST_F(Evaluate, DrawsByMaterialAre0) {
    expect_sum("4k3/8/8/8/8/8/8/4K3", 0);      // two kings
    expect_sum("k7/8/8/8/4K3/8/8/8", 0);       // no other work: the kings' squares do not count
    expect_sum("4k3/8/8/8/3N4/8/8/4K3", 0);    // a knight
    expect_sum("4k3/8/8/8/3B4/8/8/4K3", 0);    // a bishop
    expect_sum("4k3/8/8/8/2NN4/8/8/4K3", 0);   // two knights
    expect_sum("4k3/8/8/8/1B1B4/8/8/4K3", 0);  // two bishops on dark squares
    expect_sum("4k3/8/8/8/2BQ4/8/q7/4K3", 0);  // queen and bishop against queen
    expect_sum("4k3/8/8/8/3Q4/8/2p5/4K3", 0);  // queen against a pawn on c2
}

TEST_F(Evaluate, APawnAgainstABareKingIsAPawnEnding) {
    // e2 57; barred by e8: -7; distances -(0 + 1) + (0 + 36); kings 15 - 15; -25 + 15.
    expect_sum("4k3/8/8/8/8/8/4P3/4K3", 75);
}

TEST_F(Evaluate, RookAgainstABareKing) {
    // 21000 + 20 + 100; a1 362 + 16; kings 15 - 15.
    expect_sum("4k3/8/8/8/8/8/8/R3K3", 21498);
}

TEST_F(Evaluate, KnightAndBishopAgainstABareKing) {
    // 21000 + 20 + 100; b1 195, c1 216; kings 15 - 15.
    expect_sum("4k3/8/8/8/8/8/8/1NB1K3", 21531);
}

TEST_F(Evaluate, BishopsOfBothColoursAgainstABareKing) {
    // 21000 + 20 + 100; c1 216, f1 216; kings 15 - 15; the pair 35.
    expect_sum("4k3/8/8/8/8/8/8/2B1KB2", 21587);
}

TEST_F(Evaluate, BareKingBonusesAddUpTo42000) {
    // 42000 + 20 + 100; b1 195, c1 216, queen d1 706 + 10 - 2 (e8 is on the other half), 7 rows
    // away; kings 15 - 15.
    expect_sum("4k3/8/8/8/8/8/8/1NBQK3", 43245);
}

TEST_F(Evaluate, QueenAgainstAPawnOneStepFromPromotion) {
    // 10000 + 20 - 100; queen h1 708 + 10, three files from e3: 25; b2 -90; distances
    // -(25 + 36) + (9 + 1); kings 5 - 25; 18 - 90.
    expect_sum("6K1/8/8/8/8/4k3/1p6/7Q", 10430);
    expect_sum("6K1/8/8/8/8/4k3/p7/7Q", 0);
    expect_sum("6K1/8/8/8/8/4k3/2p5/7Q", 0);
    expect_sum("6K1/8/8/8/8/4k3/5p2/7Q", 0);
    expect_sum("6K1/8/8/8/8/4k3/7p/7Q", 0);
}

TEST_F(Evaluate, QueenAgainstAPawnOnTheThirdRank) {
    // 10000 + 20 - 100; queen h1 743; a3 -82; distances -(36 + 25) + (16 + 0); kings 5 - 25;
    // 15 - 75.
    expect_sum("6K1/8/8/8/8/p3k3/8/7Q", 10456);
}

TEST_F(Evaluate, OneMinorMoreWithoutPawns) {
    // -270 + 20 + 100; b1 195, c1 216; black knight b8 -195; kings 15 - 15.
    expect_sum("1n2k3/8/8/8/8/8/8/1NB1K3", 66);
}

TEST_F(Evaluate, RookAndPawnAgainstRook) {
    // Level. h8 shut in by e8: +10. Rook a1 362 + 16, rook h8 -(362 + 16). e4 85, barred by e8:
    // -3 x 7; distances -(0 + 9) + (0 + 16); kings 15 - 15; -25 + 45.
    expect_sum("4k2r/8/8/8/4P3/8/8/R3K3", 101);
}

// Many men

TEST_F(Evaluate, TheStartingPositionIs0) {
    expect_sum("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", 0);
    EXPECT_EQ(evaluated(start_position()), 0);
}

TEST_F(Evaluate, FirstMovesFromTheStartingPosition) {
    // e4: 85 for 57.
    expect_sum("rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR", 28);
    // h4: 74 for 72; shelter 1 + 3, times 4.
    expect_sum("rnbqkbnr/pppppppp/8/8/7P/8/PPPPPPP1/RNBQKBNR", -14);
    // g3: 76 for 75; h2 is backward: -1; shelter 1 + 5, times 4.
    expect_sum("rnbqkbnr/pppppppp/8/8/8/6P1/PPPPPP1P/RNBQKBNR", -24);
    // Nf3: 245 for 195, guarded by e2 and g2: 3; e7 and g7 spoil the outpost.
    expect_sum("rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R", 53);
    // Na3: 235 - 20 for 195, guarded by b2: 3.
    expect_sum("rnbqkbnr/pppppppp/8/8/8/N7/PPPPPPPP/R1BQKBNR", 23);
}

TEST_F(Evaluate, TwoMinorsLessInTheOpening) {
    // White has castled without bishop f1 and knight g1: -216 - 195; one bishop left, so no pair
    // -35, and b2, d2, f2, h2 stand on its colour: -20; no rook shut in any more, Black's still:
    // +10; king g1 15, e8 0; Black leads by 32 - 26 = 6 and by two pieces, with queens and rooks:
    // -100.
    expect_sum("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQ1RK1", -541);
}

TEST_F(Evaluate, ATrappedBishopInTheOpening) {
    // As the start but for White's bishop on h7, which has taken, and Black's pawn on g6. Bishop
    // h7 223 for 216; trapped: -130. Black: a pawn h7 less: 72; g6 76 for 75: -1. Pawn structure:
    // White's h2 is not passed (g6 ahead). Black's f7 has g6 ahead and e7 level: no change; g6 has
    // f7 behind. Black's h-file is gone: rook h8 half-open 8: -8. Shelter of e8: g7 1 + 5, h7 1 +
    // 3: 10, times 4: 40.
    expect_sum("rnbqkbnr/pppppp1B/6p1/8/8/8/PPPPPPPP/RNBQK1NR", -20);
}

// What does not matter

TEST_F(Evaluate, TheBoundsDoNotMatter) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    int compared = 0;
    for (const char* fen :
         {"rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b - -", "4k3/8/8/8/8/8/8/1NB1K3 w - -",
          "7k/8/P7/8/8/8/8/4K3 w - -", "4k3/8/8/8/3N4/8/8/4K3 w - -"}) {
        const Table table = position_from_fen(fen);
        const std::int32_t score = evaluated(table);
        EXPECT_EQ(Table::evaluate(table, -600001, 600001), score) << fen;
        EXPECT_EQ(Table::evaluate(table, 600000, 600001), score) << fen;
        EXPECT_EQ(Table::evaluate(table, -600001, -600000), score) << fen;
        EXPECT_EQ(Table::evaluate(table, least, most), score) << fen;
        EXPECT_EQ(Table::evaluate(table, most, least), score) << fen;
        ++compared;
    }
    EXPECT_EQ(compared, 4);
}

TEST_F(Evaluate, CastlingRightsAndEnPassantDoNotMatter) {
    EXPECT_EQ(evaluated(position_from_fen("r3k2r/8/8/8/4Pp2/8/8/R3K2R b KQkq e3")),
              evaluated(position_from_fen("r3k2r/8/8/8/4Pp2/8/8/R3K2R b - -")));
}

TEST_F(Evaluate, TheEndGameFlagChoosesTheKingTableAndEndsTheShelter) {
    // Rook and three pawns each, an end game. Rook a1 362 + 16; rook h8 -362, with h7 on its file;
    // the pawns cancel; kings g1 5, e4 -30.
    expect_sum("7r/5ppp/8/8/4k3/8/5PPP/R5K1", -9);
    // With two queens and a knight each no end game. Rooks 378 - 362; knights a3 and a6 cancel, and
    // so do the queens' squares and files, b1 and b8, d1 and d8; b1 and d1 are both three rows from
    // e4: 2 x 25; each of the four is on the other half than the king: 2 x -2, 2 x +2. Kings g1 15,
    // e4 +25; both shelters are full.
    expect_sum("1q1q3r/5ppp/n7/8/4k3/N7/5PPP/RQ1Q2K1", 106);
    // Without the h-pawns: both rooks' files as they come, a1 378, h8 -378; both shelters lack 1 +
    // 3, times 4, and cancel.
    expect_sum("1q1q3r/5pp1/n7/8/4k3/N7/5PP1/RQ1Q2K1", 90);
}
