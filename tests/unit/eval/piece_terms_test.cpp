// SPDX-License-Identifier: MIT
// Patterns, knights, bishops, rooks, queens and pawns. A test names the position from White's side
// and works out its sum; each sum is also tested with the colours exchanged, where it must come out
// with the other sign. The kings themselves count nothing here. A pawn on a2 or h2 (72 and no more)
// keeps another one from being the only pawn on the board.
#include "eval/piece_terms.h"

#include <gtest/gtest.h>
#include <string>

#include "board/square_tables.h"
#include "support/position.h"

namespace {

std::int32_t patterns(const std::string& board) {
    return pattern_terms(position_from_fen(board));
}

/// The patterns of a FEN board score `sum`, and `-sum` with the colours exchanged.
void expect_patterns(const std::string& board, std::int32_t sum) {
    EXPECT_EQ(patterns(board), sum) << board;
    EXPECT_EQ(pattern_terms(mirrored(position_from_fen(board))), -sum) << board << " mirrored";
}

std::int32_t pieces_of(const Table& table) {
    PawnEntry entry{};
    fill_pawn_entry(table, entry);
    BishopFacts facts;
    return piece_terms(table, count_men(table), entry, facts);
}

/// The men of a FEN board score `sum`, and `-sum` with the colours exchanged.
void expect_sum(const std::string& board, std::int32_t sum) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(pieces_of(table), sum) << board;
    EXPECT_EQ(pieces_of(mirrored(table)), -sum) << board << " mirrored";
}

}  // namespace

// Trapped bishops

TEST(PieceTerms, ATrappedBishopCosts130) {
    EXPECT_EQ(patterns("4k3/8/8/8/8/6P1/7b/4K3"), 130);   // black bishop h2, white pawn g3
    EXPECT_EQ(patterns("4k3/8/8/8/8/1P6/b7/4K3"), 130);   // black bishop a2, white pawn b3
    EXPECT_EQ(patterns("4k3/7B/6p1/8/8/8/8/4K3"), -130);  // white bishop h7, black pawn g6
    EXPECT_EQ(patterns("4k3/B7/1p6/8/8/8/8/4K3"), -130);  // white bishop a7, black pawn b6
}

TEST(PieceTerms, ABishopIsTrappedByAnEnemyPawnOnItsOneSquareOnly) {
    EXPECT_EQ(patterns("4k3/8/8/8/8/6p1/7b/4K3"), 0);  // its own pawn
    EXPECT_EQ(patterns("4k3/8/8/8/8/6P1/7n/4K3"), 0);  // a knight
    EXPECT_EQ(patterns("4k3/8/8/8/8/7P/6b1/4K3"), 0);  // other squares
    EXPECT_EQ(patterns("4k3/8/8/8/8/6P1/b7/4K3"), 0);  // the pawn of the other wing
    EXPECT_EQ(patterns("4k3/7B/1p6/8/8/8/8/4K3"), 0);
    EXPECT_EQ(patterns("4k3/8/8/8/8/6P1/7B/4K3"), 0);  // White's own bishop
}

TEST(PieceTerms, OnlyTheFirstPatternOfTrappedBishopsCounts) {
    EXPECT_EQ(patterns("4k3/8/8/8/8/1P4P1/b6b/4K3"), 130);        // both black ones: once
    EXPECT_EQ(patterns("4k3/B6B/1p4p1/8/8/8/8/4K3"), -130);       // both white ones: once
    EXPECT_EQ(patterns("4k3/7B/6p1/8/8/6P1/7b/4K3"), 130);        // h7 and h2: the black one
    EXPECT_EQ(patterns("4k3/B7/1p6/8/8/6P1/7b/4K3"), 130);        // a7 and h2
    EXPECT_EQ(patterns("4k3/7B/6p1/8/8/1P6/b7/4K3"), 130);        // h7 and a2
    EXPECT_EQ(patterns("4k3/B7/1p6/8/8/1P6/b7/4K3"), 130);        // a7 and a2
    EXPECT_EQ(patterns("4k3/B6B/1p4p1/8/8/1P4P1/b6b/4K3"), 130);  // all four
}

// A rook shut in by its own king

TEST(PieceTerms, AKingOnF1ShutsInARookOnG1OrH1) {
    expect_patterns("4k3/8/8/8/8/8/8/5KR1", -35);
    expect_patterns("4k3/8/8/8/8/8/8/5K1R", -35);
    expect_patterns("4k3/8/8/8/8/8/8/5KRR", -35);  // not 70
    expect_patterns("4k3/8/8/8/8/8/8/4RK2", 0);    // on its other side
}

TEST(PieceTerms, AKingOnG1ShutsInARookOnH1) {
    expect_patterns("4k3/8/8/8/8/8/8/6KR", -35);
    expect_patterns("4k3/8/8/8/8/8/8/5RK1", 0);
    expect_patterns("4k3/8/8/8/8/8/8/5RKR", -35);
}

TEST(PieceTerms, AKingOnE1ShutsInARookByTen) {
    expect_patterns("4k3/8/8/8/8/8/8/4K1R1", -10);
    expect_patterns("4k3/8/8/8/8/8/8/4K2R", -10);
    expect_patterns("4k3/8/8/8/8/8/8/4KR2", -10);
    expect_patterns("4k3/8/8/8/8/8/8/4KRRR", -10);  // once
    expect_patterns("4k3/8/8/8/8/8/8/R3K3", 0);
}

TEST(PieceTerms, RooksAreShutInOnTheKingsSideOnly) {
    expect_patterns("4k3/8/8/8/8/8/8/R1K5", 0);
    expect_patterns("4k3/8/8/8/8/8/8/RRK5", 0);
    expect_patterns("4k3/8/8/8/8/8/8/RK6", 0);
    expect_patterns("4k3/8/8/8/8/8/8/RRRK4", 0);
    expect_patterns("4k3/8/8/8/8/8/5K2/6RR", 0);  // a king off its first rank
    expect_patterns("4k3/8/8/8/8/8/8/7K", 0);
    expect_patterns("4k3/8/8/8/8/8/8/5Krr", 0);  // enemy rooks
}

TEST(PieceTerms, ShutInRooksOfBothSidesCountApart) {
    EXPECT_EQ(patterns("5k1r/8/8/8/8/8/8/5K1R"), 0);   // +35 - 35
    EXPECT_EQ(patterns("4k2r/8/8/8/8/8/8/6KR"), -25);  // +10 - 35
    EXPECT_EQ(patterns("6kr/8/8/8/8/8/8/4KR2"), 25);   // +35 - 10
    EXPECT_EQ(patterns("6kr/7B/6p1/8/8/8/8/8"), -95);  // -130 + 35, beside a trapped bishop
    EXPECT_EQ(patterns("5kr1/8/8/8/8/8/8/8"), 35);
    EXPECT_EQ(patterns("4kr2/8/8/8/8/8/8/8"), 10);
}

// Knights

TEST(PieceTerms, KnightsAddTheirSquareValues) {
    expect_sum("4k3/8/8/8/8/8/8/1N2K3", 195);    // b1: 235 - 40
    expect_sum("4k3/8/8/8/8/8/8/1N2K1N1", 390);  // b1, g1: 195 + 195
    expect_sum("1N2k3/8/8/8/8/8/8/4K3", 210);    // b8: 235 - 25
    expect_sum("4k1N1/8/8/8/8/8/8/4K3", 200);    // g8: 235 - 35
    expect_sum("1n2k3/8/8/8/8/8/8/1N2K3", 0);
}

TEST(PieceTerms, AKnightGuardedByAPawnGains3) {
    // h4: 235 - 5 = 230, guarded 3; pawns g3 76, a2 72.
    expect_sum("4k3/8/8/8/7N/6P1/P7/4K3", 381);
    // a4: 230, guarded 3; pawns b3 76, h2 72.
    expect_sum("4k3/8/8/8/N7/1P6/7P/4K3", 381);
    // b4: 240, guarded twice, 3 all the same; pawns a3 73, c3 80.
    expect_sum("4k3/8/8/8/1N6/P1P5/8/4K3", 396);
}

TEST(PieceTerms, APawnBesideOrAheadOrOfTheEnemyDoesNotGuardAKnight) {
    // h4: 230; pawns g4 77, a2 72.
    expect_sum("4k3/8/8/8/6PN/8/P7/4K3", 379);
    // h4: 230; pawns g5 78, a2 72.
    expect_sum("4k3/8/8/6P1/7N/8/P7/4K3", 380);
    // h4: 230; a2 72; black pawn g3 -84.
    expect_sum("4k3/8/8/8/7N/6p1/P7/4K3", 218);
    // h4: 230; pawns h3 73, a2 72: straight behind.
    expect_sum("4k3/8/8/8/7N/7P/P7/4K3", 375);
}

TEST(PieceTerms, AKnightThatNoPawnCanDriveAwayGainsItsOutpost) {
    expect_sum("4k3/8/8/8/8/3N4/8/4K3", 265);  // d3: 235 + 10, outpost 20
    expect_sum("4k3/8/8/8/4N3/8/8/4K3", 270);  // e4: 235 + 20, outpost 15
    expect_sum("4k3/8/8/4N3/8/8/8/4K3", 268);  // e5: 235 + 25, outpost 8
    expect_sum("4k3/8/8/5N2/8/8/8/4K3", 261);  // f5: 235 + 20, outpost 6
    expect_sum("4k3/8/8/8/8/8/2N5/4K3", 228);  // c2: 235 - 15, outpost 8
    expect_sum("4k3/8/8/8/2N5/8/8/4K3", 262);  // c4: 235 + 15, outpost 12
    expect_sum("4k3/8/3N4/8/8/8/8/4K3", 255);  // d6: 235 + 20, no outpost
    expect_sum("4k3/8/8/8/8/6N1/8/4K3", 225);  // g3: 235 - 10, no outpost
}

TEST(PieceTerms, AnEnemyPawnAheadOnANeighbouringFileSpoilsAnOutpost) {
    // d3: 235 + 10 = 245; a2 72; the black pawn.
    expect_sum("4k3/2p5/8/8/8/3N4/P7/6K1", 239);  // c7 78
    expect_sum("4k3/4p3/8/8/8/3N4/P7/6K1", 260);  // e7 57
    expect_sum("4k3/8/8/8/2p5/3N4/P7/6K1", 233);  // c4 84, on the very next rank
    // c3: 235 + 10 = 245; h2 72; b7 75: the b-file counts as any other.
    expect_sum("4k3/1p6/8/8/8/2N5/7P/6K1", 242);
}

TEST(PieceTerms, OtherPawnsLeaveAnOutpostAlone) {
    // d3: 235 + 10 + 20 = 265; a2 72; the other pawn.
    expect_sum("4k3/3p4/8/8/8/3N4/P7/6K1", 287);  // d7 -57, a passed pawn barred in row 1: +7
    expect_sum("4k3/8/8/8/8/2pN4/P7/6K1", 250);   // c3 -87: level with the knight
    expect_sum("4k3/8/8/8/8/3N4/P1p5/6K1", 239);  // c2 -98: behind it
    expect_sum("4k3/1p6/8/8/8/3N4/P7/6K1", 262);  // b7 -75: two files away
    expect_sum("4k3/8/8/2P5/8/3N4/P7/6K1", 421);  // c5 +84: White's own
}

// Bishops

TEST(PieceTerms, BishopsAddTheirSquareValues) {
    expect_sum("4k3/8/8/8/8/4B3/8/4K3", 238);    // e3: 235 + 3
    expect_sum("4k3/8/8/8/8/8/1B4B1/4K3", 482);  // b2, g2: 241 + 241
    expect_sum("2b1k3/8/8/8/8/8/8/2B1K3", 0);
}

TEST(PieceTerms, ABishopGuardedByAPawnGains3) {
    // h4: 235 - 6 = 229, guarded 3; g3 76 - 5 on the bishop's colour; a2 72 on the other.
    expect_sum("4k3/8/8/8/7B/6P1/P7/4K3", 375);
    // a4: 229, guarded 3; b3 76 - 5; h2 72.
    expect_sum("4k3/8/8/8/B7/1P6/7P/4K3", 375);
    // b4: 235, guarded twice, 3 all the same; a3 73 - 5, c3 80 - 5.
    expect_sum("4k3/8/8/8/1B6/P1P5/8/4K3", 381);
}

TEST(PieceTerms, APawnAheadDoesNotGuardABishop) {
    // h4: 229; g5 78 - 5; a2 72.
    expect_sum("4k3/8/8/6P1/7B/8/P7/4K3", 374);
}

TEST(PieceTerms, TheBishopsAreCountedAndTheLastOneIsNoted) {
    // From a8 towards h1: White b7, c1, f1; Black a8, g7.
    const Table table = position_from_fen("b3k3/1B4b1/8/8/8/8/8/2B1KB2");
    PawnEntry entry{};
    fill_pawn_entry(table, entry);
    BishopFacts facts;
    // b7 233, c1 216, f1 216, less a8 211 and g7 241.
    EXPECT_EQ(piece_terms(table, count_men(table), entry, facts), 213);
    EXPECT_EQ(facts.w_bishops, 3);
    EXPECT_EQ(facts.last_w_bishop, f1);
    EXPECT_EQ(facts.b_bishops, 2);
    EXPECT_EQ(facts.last_b_bishop, g7);
}

// Rooks

TEST(PieceTerms, ARookOnAFileWithoutPawnsGains16) {
    expect_sum("4k3/8/8/8/8/8/8/R3K3", 378);    // 362 + 8 + 8
    expect_sum("4k3/8/8/8/8/8/8/R3K2R", 756);   // twice
    expect_sum("4k3/8/8/8/8/8/P6P/3RK3", 522);  // 378; a2 72, h2 72
}

TEST(PieceTerms, ARookOnAFileWithEnemyPawnsOnlyGains8) {
    // a8: 362 + 8, behind the pawn; a7 -72, h2 +72.
    expect_sum("R3k3/p7/8/8/8/8/7P/4K3", 370);
    // a1: 362 + 8; a7 -72, h2 +72, and the passed pawn on a7 is barred by the rook: +7.
    expect_sum("4k3/p7/8/8/8/8/7P/R3K3", 377);
}

TEST(PieceTerms, ARookOnAFileWithAnOwnPawnGainsNothing) {
    expect_sum("4k3/8/8/8/8/8/P6P/R3K3", 506);   // 362; a2 72, h2 72
    expect_sum("4k3/p7/8/8/8/8/P6P/R3K3", 434);  // 362; 72 + 72; a7 -72
    expect_sum("R3k3/8/8/8/8/8/P6P/4K3", 506);   // ahead of the pawn all the same
}

TEST(PieceTerms, ARookOnTheSeventhRankWithTheKingOnTheEighthGains16) {
    expect_sum("4k3/1R6/8/8/8/8/8/4K3", 394);  // 362 + 16 + 16
    expect_sum("7k/1R6/8/8/8/8/8/4K3", 394);
    expect_sum("8/1R2k3/8/8/8/8/8/4K3", 378);    // the king beside it
    expect_sum("8/1R6/4k3/8/8/8/8/4K3", 378);    // the king in front of it
    expect_sum("4k3/8/1R6/8/8/8/8/4K3", 378);    // the sixth rank
    expect_sum("1R2k3/8/8/8/8/8/8/4K3", 378);    // the eighth rank
    expect_sum("4k3/1R4R1/8/8/8/8/8/4K3", 788);  // two of them
}

// Queens. Far from the enemy king and on its half of the board unless the test says otherwise.

TEST(PieceTerms, AQueenOnAFileWithoutPawnsGains10) {
    expect_sum("2k5/8/8/8/8/8/8/3Q2K1", 716);  // d1: 706, file 5 + 5
    expect_sum("2k5/8/8/8/3Q4/8/8/6K1", 718);  // d4: 708, file 10, four rows away
}

TEST(PieceTerms, AQueenOnAFileWithEnemyPawnsOnlyGains5) {
    // d4: 708 + 5; d3 -92, a2 +72.
    expect_sum("2k5/8/8/8/3Q4/3p4/P7/6K1", 693);
}

TEST(PieceTerms, AQueenOnAFileWithAnOwnPawnGainsNothing) {
    expect_sum("2k5/8/8/8/3Q4/8/P2P4/6K1", 837);    // d4: 708; d2 57, a2 72
    expect_sum("2k5/3p4/8/8/3Q4/8/P2P4/6K1", 780);  // and d7 -57
}

TEST(PieceTerms, AQueenOnTheOtherHalfThanTheEnemyKingLoses2) {
    expect_sum("6k1/8/8/8/8/8/8/3Q2K1", 714);  // d1: 706 + 10 - 2
    expect_sum("4k3/8/8/8/8/8/8/3Q2K1", 714);  // the e-file is the king's side
    expect_sum("3k4/8/8/8/8/8/8/3Q2K1", 716);  // the d-file is the queen's side
    expect_sum("6k1/8/8/8/8/8/8/4Q1K1", 716);  // e1: 706 + 10
    expect_sum("1k6/8/8/8/8/8/8/4Q1K1", 714);  // e1: 706 + 10 - 2
}

TEST(PieceTerms, AQueenNearTheEnemyKingGainsByItsDistance) {
    // d4: 708 + 10 = 718.
    expect_sum("3k4/8/8/8/3Q4/8/8/6K1", 718);  // d8, four away: 0
    expect_sum("8/3k4/8/8/3Q4/8/8/6K1", 743);  // d7, three: 25
    expect_sum("8/8/3k4/8/3Q4/8/8/6K1", 778);  // d6, two: 60
    expect_sum("8/8/8/3k4/3Q4/8/8/6K1", 818);  // d5, one: 100
    expect_sum("8/8/8/8/k2Q4/8/8/6K1", 743);   // a4, three files: 25
    expect_sum("8/8/2k5/8/3Q4/8/8/6K1", 778);  // c6, a file and two rows: 60
    expect_sum("8/8/8/1k6/3Q4/8/8/6K1", 778);  // b5, two files and a row: 60
    expect_sum("8/8/8/4k3/3Q4/8/8/6K1", 816);  // e5, one: 100, and 2 off for the other half
    expect_sum("8/6k1/8/8/3Q4/8/8/6K1", 741);  // g7, three: 25 - 2
    expect_sum("8/8/8/8/3Q3k/8/8/6K1", 716);   // h4, four files: -2
    expect_sum("8/8/8/8/3Q4/1k6/8/6K1", 778);  // b3, behind it: 60
}

TEST(PieceTerms, EachQueenCountsForItself) {
    // d1 716, h1 (706 + 2, file 10, other half -2) 716.
    expect_sum("2k5/8/8/8/8/8/6K1/3Q3Q", 1432);
}

// Pawns

TEST(PieceTerms, PawnsAddTheirSquareValues) {
    expect_sum("4k3/8/8/8/8/8/P6P/4K3", 144);    // a2, h2: 72 + 72
    expect_sum("2k5/8/8/8/3P4/8/4P3/2K5", 142);  // d4 85, e2 57
    expect_sum("4k3/4p3/8/8/8/8/4P3/4K3", 0);
}

TEST(PieceTerms, OwnPawnsOnTheOnlyBishopsColourLose5) {
    // c1 is dark: 216; a3 73 - 5, h3 73, d4 85 - 5, e4 85.
    expect_sum("1k6/8/8/8/3PP3/P6P/8/2B4K", 522);
    // f1 is light: 216; a3 73, h3 73 - 5, d4 85, e4 85 - 5.
    expect_sum("1k6/8/8/8/3PP3/P6P/8/5B1K", 522);
}

TEST(PieceTerms, WithTwoBishopsNoPawnLoses5) {
    // c1 216, f1 216; 73 + 73 + 85 + 85.
    expect_sum("1k6/8/8/8/3PP3/P6P/8/2B2B1K", 748);
    // Both on dark squares: c1 216, e1 (235 - 16) 219.
    expect_sum("1k6/8/8/8/3PP3/P6P/8/2B1B2K", 751);
}

TEST(PieceTerms, EnemyPawnsOnTheBishopsColourLoseNothing) {
    // c1 216; a2 72 on the other colour; black pawn h6, on the bishop's, -73.
    expect_sum("1k6/8/7p/8/8/8/P7/2B3K1", 215);
    // An enemy bishop does not matter to own pawns: a3, d4 73 + 85, less the bishop f8 216.
    expect_sum("1k3b2/8/8/8/3P4/P7/8/6K1", -58);
}

TEST(PieceTerms, APassedPawnBarredByAnEnemyLoses7ForEachRow) {
    // The a-pawn under the black king's feet; h2 72.
    expect_sum("k7/P7/8/8/8/8/7P/6K1", 117);  // a7: 87 - 6 x 7
    expect_sum("8/k7/P7/8/8/8/7P/6K1", 119);  // a6: 82 - 5 x 7
    expect_sum("8/8/k7/P7/8/8/7P/6K1", 119);  // a5: 75 - 4 x 7
    expect_sum("8/8/8/k7/P7/8/7P/6K1", 125);  // a4: 74 - 3 x 7
    expect_sum("8/8/8/8/k7/P7/7P/6K1", 131);  // a3: 73 - 2 x 7
    expect_sum("8/8/8/8/8/k7/P6P/6K1", 137);  // a2: 72 - 1 x 7
}

TEST(PieceTerms, AnyEnemyManBarsAPassedPawnFromAnyDistance) {
    // e6 92 - 35, a2 72; black knight e7 (235 - 5, outpost 12) -242.
    expect_sum("6k1/4n3/4P3/8/8/8/P7/6K1", -113);
    // e4 85 - 21, a2 72; black rook e8 (362, half-open file 8) -370.
    expect_sum("4r1k1/8/8/8/4P3/8/P7/6K1", -234);
}

TEST(PieceTerms, APassedPawnBehindAnOwnManLosesNothing) {
    // e6 92, a2 72; white knight e7 245.
    expect_sum("6k1/4N3/4P3/8/8/8/P7/6K1", 409);
    // e4 85, a2 72; white knight e6 255 is met first; black rook e8 -370.
    expect_sum("4r1k1/8/4N3/8/4P3/8/P7/6K1", 42);
}

TEST(PieceTerms, AFreePassedPawnLosesNothing) {
    expect_sum("6k1/8/4P3/8/8/8/P7/6K1", 164);  // e6 92, a2 72
}

TEST(PieceTerms, ABarredPawnThatIsNotPassedLosesNothing) {
    // e6 92, a2 72; d7 -57; black knight e7 (235 - 5, outpost 12) -242.
    expect_sum("6k1/3pn3/4P3/8/8/8/P7/6K1", -135);
}

TEST(PieceTerms, TheOnlyPawnCountsTheKingsSquaredDistances) {
    // e4 85; White e1: 0 + 9; Black h8: 9 + 16. 85 - 9 + 25.
    expect_sum("7k/8/8/8/4P3/8/8/4K3", 101);
    // White b1: 9 + 9. 85 - 18 + 25.
    expect_sum("7k/8/8/8/4P3/8/8/1K6", 92);
    // Black a5: 16 + 1. 85 - 9 + 17.
    expect_sum("8/8/8/k7/4P3/8/8/4K3", 93);
}

TEST(PieceTerms, ANearWhiteKingHelpsWhiteAlsoAgainstTheOnlyBlackPawn) {
    // Black pawn e4 -87; Black's king e8: 0 + 16 added.
    EXPECT_EQ(pieces_of(position_from_fen("4k3/8/8/8/4p3/8/8/7K")), -89);   // h1: 9 + 9 off
    EXPECT_EQ(pieces_of(position_from_fen("4k3/8/8/8/4p3/8/6K1/8")), -79);  // g2: 4 + 4 off
    EXPECT_EQ(pieces_of(position_from_fen("4k3/8/8/8/4p1K1/8/8/8")), -75);  // g4: 4 + 0 off
}

TEST(PieceTerms, WithTwoPawnsTheKingsDistancesDoNotCount) {
    expect_sum("6k1/8/8/8/4P3/8/7P/4K3", 157);  // e4 85, h2 72
    expect_sum("6k1/7p/8/8/8/8/P7/1K6", 0);     // one each: a2 72, h7 -72
}

// Mailbox and bitboards

TEST(PieceTerms, PatternsReadTheMailboxAndLoopsTheBitboards) {
    // A board edited by hand can have the two disagree.
    Table table = position_from_fen("4k3/8/8/8/8/8/8/5K1R");
    table.WRook = 0;
    EXPECT_EQ(pattern_terms(table), -35);  // the rook on h1 still stands in the mailbox
    EXPECT_EQ(pieces_of(table), 0);

    Table ghost = position_from_fen("4k3/8/8/8/8/8/8/5K1R");
    ghost.at(h1) = empty_square;
    EXPECT_EQ(pattern_terms(ghost), 0);
    EXPECT_EQ(pieces_of(ghost), 378);  // the rook is still in the bitboard: 362 + 16
}
