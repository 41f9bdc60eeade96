// SPDX-License-Identifier: MIT
// King tables, bishop pair and shelter. A test names the position from White's side and works out
// its sum; each sum is also tested with the colours exchanged, where it must come out with the
// other sign. Unless the test is about him the black king stands on g8 behind f7, g7 and h7: 15
// off.
#include "eval/king_terms.h"

#include <gtest/gtest.h>
#include <string>

#include "board/square_tables.h"
#include "support/position.h"

namespace {

constexpr bool in_endgame = true;
constexpr bool in_middle_game = false;

std::int32_t terms_of(const Table& table, bool endgame) {
    return king_terms(table, count_men(table), BishopFacts{}, endgame);
}

/// The king terms of a FEN board, no bishops counted, are `sum`, and `-sum` with the colours
/// exchanged.
void expect_sum(const std::string& board, bool endgame, std::int32_t sum) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(terms_of(table, endgame), sum) << board;
    EXPECT_EQ(terms_of(mirrored(table), endgame), -sum) << board << " mirrored";
}

/// White's men on ranks 4 to 1 against a sheltered black king that stands as well as the white one:
/// what is left is White's shelter. Without queens, then with a black queen on a8.
void expect_shelter(const std::string& four_ranks, std::int32_t holes, std::int32_t king = 15) {
    const std::int32_t placement = king - 15;
    expect_sum("6k1/5ppp/8/8/" + four_ranks, in_middle_game, placement - 2 * holes);
    expect_sum("q5k1/5ppp/8/8/" + four_ranks, in_middle_game, placement - 4 * holes);
}

std::int32_t bishop_pair_of(std::int32_t w_bishops, std::int32_t b_bishops) {
    const Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3");
    BishopFacts facts;
    facts.w_bishops = w_bishops;
    facts.b_bishops = b_bishops;
    return king_terms(table, count_men(table), facts, in_endgame);
}

}  // namespace

// Where the kings stand

TEST(KingTerms, InTheEndGameTheKingsBelongInTheMiddle) {
    expect_sum("k7/8/8/8/4K3/8/8/8", in_endgame, 30);    // e4 30, a8 0
    expect_sum("4k3/8/8/8/8/8/8/K7", in_endgame, -15);   // a1 0, e8 15
    expect_sum("8/8/2k5/8/8/8/1K6/8", in_endgame, -10);  // b2 10, c6 20
    expect_sum("4k3/8/8/8/8/8/8/4K3", in_endgame, 0);
}

TEST(KingTerms, InTheMiddleGameTheKingsBelongAtHome) {
    // Both sheltered: nothing but the squares.
    expect_sum("6k1/5ppp/8/8/8/8/5PPP/6K1", in_middle_game, 0);    // 15 - 15
    expect_sum("6k1/5ppp/8/8/8/8/5PPP/4K3", in_middle_game, -15);  // e1 0
    expect_sum("6k1/5ppp/8/8/8/8/5PPP/5K2", in_middle_game, -30);  // f1 -15
    expect_sum("6k1/5ppp/8/8/8/8/5PPP/7K", in_middle_game, -5);    // h1 10
    expect_sum("6k1/5ppp/8/8/8/8/PPP5/2K5", in_middle_game, -5);   // c1 10
    expect_sum("6k1/5ppp/8/8/8/8/PPP5/3K4", in_middle_game, -30);  // d1 -15
}

TEST(KingTerms, InTheStartingPositionTheyCancel) {
    expect_sum("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", in_middle_game, 0);
}

// The bishop pair

TEST(KingTerms, TwoBishopsAreWorth35) {
    EXPECT_EQ(bishop_pair_of(0, 0), 0);
    EXPECT_EQ(bishop_pair_of(1, 0), 0);
    EXPECT_EQ(bishop_pair_of(2, 0), 35);
    EXPECT_EQ(bishop_pair_of(3, 0), 35);
    EXPECT_EQ(bishop_pair_of(0, 1), 0);
    EXPECT_EQ(bishop_pair_of(0, 2), -35);
    EXPECT_EQ(bishop_pair_of(1, 3), -35);
    EXPECT_EQ(bishop_pair_of(2, 2), 0);
}

// The shelter

TEST(KingTerms, AFullShelterCostsNothing) {
    expect_shelter("8/8/5PPP/6K1", 0);
    expect_shelter("8/8/PPP5/1K6", 0);
}

TEST(KingTerms, KingSideHolesAreCountedFileByFile) {
    expect_shelter("8/5P2/6PP/6K1", 1);   // f3: 1
    expect_shelter("8/8/6PP/6K1", 2);     // no f-pawn: 1 + 1
    expect_shelter("8/6P1/5P1P/6K1", 6);  // g3: 1, and 5 for the empty g2
    expect_shelter("8/8/5P1P/6K1", 9);    // no g-pawn: 1 + 3 + 5
    expect_shelter("8/7P/5PP1/6K1", 1);   // h3: 1
    expect_shelter("8/8/5PP1/6K1", 4);    // no h-pawn: 1 + 3
}

TEST(KingTerms, QueenSideHolesAreCountedFileByFile) {
    expect_shelter("8/P7/1PP5/1K6", 1);   // a3: 1
    expect_shelter("8/8/1PP5/1K6", 4);    // no a-pawn: 1 + 3
    expect_shelter("8/1P6/P1P5/1K6", 6);  // b3: 1, and 5 for the empty b2
    expect_shelter("8/8/P1P5/1K6", 9);    // no b-pawn: 1 + 3 + 5
    expect_shelter("8/2P5/PP6/1K6", 1);   // c3: 1
    expect_shelter("8/8/PP6/1K6", 2);     // no c-pawn: 1 + 1
}

TEST(KingTerms, WithoutPawnsOnThreeFilesTheShelterIs15) {
    // 1 + 1, 1 + 3, 1 + 3 and 5; -60 with the enemy queen on the board.
    expect_shelter("8/8/8/6K1", 15);
    expect_shelter("8/8/8/1K6", 15);
    expect_shelter("8/8/PPPPP3/6K1", 15);  // pawns elsewhere do not help
    expect_shelter("8/8/3PPPPP/1K6", 15);
    EXPECT_EQ(terms_of(position_from_fen("q5k1/5ppp/8/8/8/8/8/6K1"), in_middle_game), -60);
}

TEST(KingTerms, APawnOnG3WithTheEnemyQueenOnTheBoardCosts24) {
    // (1 + 5) x 4.
    EXPECT_EQ(terms_of(position_from_fen("q5k1/5ppp/8/8/8/6P1/5P1P/6K1"), in_middle_game), -24);
}

TEST(KingTerms, AnyManOnTheCentralHomeSquareSavesFive) {
    expect_shelter("8/6P1/5PBP/6K1", 1);  // bishop g2, pawn g3: 1
    expect_shelter("8/8/5PNP/6K1", 4);    // knight g2, no g-pawn: 1 + 3
    expect_shelter("8/8/5P1P/6K1", 9);    // g2 empty
    expect_shelter("8/8/5PpP/6K1", 4);    // an enemy pawn: 1 + 3
    expect_shelter("8/1P6/PBP5/1K6", 1);  // bishop b2, pawn b3: 1
}

TEST(KingTerms, APawnFurtherAheadIsNoShelter) {
    expect_shelter("6P1/8/5P1P/6K1", 9);  // g4: 1 + 3 + 5
    expect_shelter("P7/8/1PP5/1K6", 4);   // a4: 1 + 3
}

TEST(KingTerms, DoubledPawnsShelterOnce) {
    expect_shelter("8/5PPP/5PPP/6K1", 0);
}

TEST(KingTerms, FourBishopsAroundTheEmptyCentralSquareSaveFive) {
    expect_shelter("8/5B1B/5P1P/5BKB", 4);     // g2 empty, f1 h1 f3 h3: 1 + 3
    expect_shelter("8/7B/5P1P/5BKB", 9);       // without f3
    expect_shelter("8/5B2/5P1P/5BKB", 9);      // without h3
    expect_shelter("8/5B1B/5P1P/6KB", 9);      // without f1
    expect_shelter("8/5B1B/5P1P/5BK1", 9);     // without h1
    expect_shelter("8/5b1B/5P1P/5BKB", 9);     // an enemy bishop
    expect_shelter("8/B1B5/P1P5/BKB5", 4);     // b2 empty, a1 c1 a3 c3: 1 + 3
    expect_shelter("8/2B5/P1P5/BKB5", 9);      // without a3
    expect_shelter("8/B7/P1P5/BKB5", 9);       // without c3
    expect_shelter("8/B1B5/P1P5/1KB5", 9);     // without a1
    expect_shelter("8/B1B5/P1P5/BK6", 9);      // without c1
    expect_shelter("8/5B1B/5P1P/B1B2BKB", 4);  // the other wing's bishops do not matter
}

TEST(KingTerms, TheShelterIsOnTheKingsHalfOfTheBoard) {
    expect_shelter("8/8/5PPP/4K3", 0, 0);  // e1: king's side
    expect_shelter("8/8/PPP5/4K3", 15, 0);
    expect_shelter("8/8/PPP5/3K4", 0, -15);  // d1: queen's side
    expect_shelter("8/8/5PPP/3K4", 15, -15);
    expect_shelter("8/8/PPP5/K7", 0, 10);  // a1
    expect_shelter("8/8/5PPP/7K", 0, 10);  // h1
}

TEST(KingTerms, TheKingsRankDoesNotMatter) {
    expect_shelter("4K3/8/5PPP/8", 0, -25);  // e4, sheltered by f2, g2 and h2
    expect_shelter("3K4/8/PPP5/8", 0, -25);  // d4
}

TEST(KingTerms, OnlyTheEnemyQueenDoublesTheWeight) {
    // White lacks the h-pawn: 4 holes. Black lacks the f-pawn: 2 holes.
    expect_sum("6k1/6pp/8/8/8/8/5PP1/6K1", in_middle_game, -4);     // -4 x 2 + 2 x 2
    expect_sum("q5k1/6pp/8/8/8/8/5PP1/6K1", in_middle_game, -12);   // -4 x 4 + 2 x 2
    expect_sum("6k1/6pp/8/8/8/8/5PP1/Q5K1", in_middle_game, 0);     // -4 x 2 + 2 x 4
    expect_sum("q5k1/6pp/8/8/8/8/5PP1/Q5K1", in_middle_game, -8);   // -4 x 4 + 2 x 4
    expect_sum("qq4k1/6pp/8/8/8/8/5PP1/6K1", in_middle_game, -12);  // two queens as one
}

TEST(KingTerms, InTheEndGameNoShelterIsCounted) {
    expect_sum("q5k1/5ppp/8/8/8/8/8/6K1", in_endgame, 0);  // g1 5 - g8 5
    expect_sum("q7/8/8/8/8/8/8/k6K", in_endgame, 0);       // both in a corner
}

// Mailbox and bitboards

TEST(KingTerms, TheShelterReadsTheMailbox) {
    // A board edited by hand can have the bitboards disagree.
    Table table = position_from_fen("6k1/5ppp/8/8/8/8/5PPP/6K1");
    table.WPawns = 0;
    EXPECT_EQ(terms_of(table, in_middle_game), 0);
    table.at(h2) = empty_square;
    table.WPawns = mask_of(h2);
    EXPECT_EQ(terms_of(table, in_middle_game), -8);  // 4 x 2
}
