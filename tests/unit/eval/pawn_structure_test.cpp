// SPDX-License-Identifier: MIT
// Isolated, doubled, backward and passed pawns. Each sum is worked out in its comment and is also
// tested with the colours exchanged, where it must come out with the other sign.
#include "eval/pawn_structure.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

#include "board/square_tables.h"
#include "support/position.h"

namespace {

PawnEntry entry_of(const Table& table) {
    PawnEntry entry{};
    fill_pawn_entry(table, entry);
    return entry;
}

/// The pawns of a FEN board score `sum`, and `-sum` with the colours exchanged.
void expect_sum(const std::string& board, std::int32_t sum) {
    const Table table = position_from_fen(board);
    EXPECT_EQ(entry_of(table).pawn_score, sum) << board;
    EXPECT_EQ(entry_of(mirrored(table)).pawn_score, -sum) << board << " mirrored";
}

/// Pawns of one colour for tests that go through the files.
Table white_pawns_on(std::initializer_list<Square> squares) {
    Table table = position_from_fen("8/8/8/8/8/8/8/8");
    for (const Square square : squares) {
        table.at(square) = w_pawn;
        table.WPawns |= mask_of(square);
    }
    return table;
}

/// The same for pawns on squares drawn on the a-file, moved `file` steps to the right.
void expect_on_file(Square file, std::initializer_list<Square> a_file_squares, std::int32_t sum) {
    Table table = position_from_fen("8/8/8/8/8/8/8/8");
    for (const Square square : a_file_squares) {
        table.at(square + file) = w_pawn;
        table.WPawns |= mask_of(square + file);
    }
    EXPECT_EQ(entry_of(table).pawn_score, sum) << "file " << file;
    EXPECT_EQ(entry_of(mirrored(table)).pawn_score, -sum) << "file " << file << " mirrored";
}

}  // namespace

// Facts about the files

TEST(PawnStructure, WithoutPawnsNothingIsCounted) {
    const PawnEntry entry = entry_of(position_from_fen("4k3/8/8/8/8/8/8/4K3"));
    FileCounts none;
    none.fill(0);
    FileCounts no_white;
    no_white.fill(-1);
    FileCounts no_black;
    no_black.fill(8);
    EXPECT_EQ(entry.key, 0U);
    EXPECT_EQ(entry.w_count, none);
    EXPECT_EQ(entry.b_count, none);
    EXPECT_EQ(entry.pawn_score, 0);
    EXPECT_EQ(entry.w_rear, no_white);
    EXPECT_EQ(entry.b_rear, no_black);
}

TEST(PawnStructure, CountsPawnsAndFindsTheRearmostOfEachFile) {
    // White: a2 a4 c3 h7; Black: a7 b6 b3 h2.
    const Table table = position_from_fen("4k3/p6P/1p6/8/P7/1pP5/P6p/4K3");
    const PawnEntry entry = entry_of(table);
    EXPECT_EQ(entry.key, table.pawn_hash);
    EXPECT_NE(entry.key, 0U);
    EXPECT_EQ(entry.w_count, (FileCounts{0, 2, 0, 1, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(entry.b_count, (FileCounts{0, 1, 2, 0, 0, 0, 0, 0, 1, 0}));
    // The largest row of a white pawn: a2 is row 6, c3 row 5, h7 row 1.
    EXPECT_EQ(entry.w_rear, (FileCounts{-1, 6, -1, 5, -1, -1, -1, -1, 1, -1}));
    // The smallest row of a black pawn: a7 is row 1, b6 row 2, h2 row 6.
    EXPECT_EQ(entry.b_rear, (FileCounts{8, 1, 2, 8, 8, 8, 8, 8, 6, 8}));
}

TEST(PawnStructure, FillingForgetsWhatTheEntryHeld) {
    PawnEntry entry{};
    fill_pawn_entry(position_from_fen("4k3/pppppppp/8/8/P7/P7/PPPPPPPP/4K3"), entry);
    const Table table = position_from_fen("4k3/8/8/8/3P4/8/8/4K3");
    fill_pawn_entry(table, entry);
    const PawnEntry fresh = entry_of(table);
    EXPECT_EQ(entry.key, fresh.key);
    EXPECT_EQ(entry.w_count, fresh.w_count);
    EXPECT_EQ(entry.b_count, fresh.b_count);
    EXPECT_EQ(entry.pawn_score, fresh.pawn_score);
    EXPECT_EQ(entry.w_rear, fresh.w_rear);
    EXPECT_EQ(entry.b_rear, fresh.b_rear);
}

// Isolated pawns

TEST(PawnStructure, AnIsolatedPawnPaysByItsFile) {
    // One pawn on the fourth rank (row 4): passed (7 - 4) x 15 = 45, less the penalty.
    expect_on_file(0, {a4}, 30);  // a: 45 - 15
    expect_on_file(1, {a4}, 27);  // b: 45 - 18
    expect_on_file(2, {a4}, 25);  // c: 45 - 20
    expect_on_file(3, {a4}, 20);  // d: 45 - 25
    expect_on_file(4, {a4}, 20);  // e: 45 - 25
    expect_on_file(5, {a4}, 25);  // f: 45 - 20
    expect_on_file(6, {a4}, 27);  // g: 45 - 18
    expect_on_file(7, {a4}, 30);  // h: 45 - 15
}

TEST(PawnStructure, AnIsolatedDoubledPairPaysTwice) {
    // Pawns on the third and fourth ranks: passed 30 + 45 = 75, less twice both penalties.
    expect_on_file(0, {a3, a4}, 45);  // a: 75 - 2 x (15 + 0)
    expect_on_file(1, {a3, a4}, 37);  // b: 75 - 2 x (18 + 1)
    expect_on_file(2, {a3, a4}, 31);  // c: 75 - 2 x (20 + 2)
    expect_on_file(3, {a3, a4}, 19);  // d: 75 - 2 x (25 + 3)
    expect_on_file(4, {a3, a4}, 19);  // e: 75 - 2 x (25 + 3)
    expect_on_file(5, {a3, a4}, 31);  // f: 75 - 2 x (20 + 2)
    expect_on_file(6, {a3, a4}, 37);  // g: 75 - 2 x (18 + 1)
    expect_on_file(7, {a3, a4}, 45);  // h: 75 - 2 x (15 + 0)
}

TEST(PawnStructure, DoubledIsolatedPawnsOnTheDFilePay28Each) {
    // d2, d4 against d5, d6 (both not passed; isolated and doubled themselves): 0.
    expect_sum("8/8/3p4/3p4/3P4/8/3P4/8", 0);
    // d2, d4 against d5 alone: -2 x 28 + 25 = -31.
    expect_sum("8/8/8/3p4/3P4/8/3P4/8", -31);
    // d2, d3, d4 against d5: each of the three pays, -3 x 28 + 25 = -59.
    expect_sum("8/8/8/3p4/3P4/3P4/3P4/8", -59);
}

TEST(PawnStructure, TheEdgeFilesCountAsHavingAnEmptyNeighbour) {
    // a4 with b4: not isolated, level with each other so not backward: 45 + 45.
    expect_sum("8/8/8/8/PP6/8/8/8", 90);
    // a4 with c4: the b-file is empty, both isolated: 45 - 15 + 45 - 20.
    expect_sum("8/8/8/8/P1P5/8/8/8", 55);
    // a4 and h4 are no neighbours: 2 x (45 - 15).
    expect_sum("8/8/8/8/P6P/8/8/8", 60);
    // h4 with g4: 45 + 45.
    expect_sum("8/8/8/8/6PP/8/8/8", 90);
}

TEST(PawnStructure, AnEnemyPawnIsNoNeighbour) {
    // d4 with e5 and e4 of the enemy. d4: isolated -25; not passed (e5 ahead, row 3 < 4).
    // e5: doubled isolated +28; not passed (d4 at row 4 > 3).
    // e4: doubled isolated +28; d4 is level, so passed: row 4 x 15 = -60. Sum -29.
    expect_sum("8/8/8/4p3/3Pp3/8/8/8", -29);
}

// Doubled pawns with a neighbour

TEST(PawnStructure, ADoubledPairWithANeighbourPaysLess) {
    // Pawns on the third and fourth ranks of a file and on the third rank of the next: nobody is
    // backward. Passed 30 + 45 + 30 = 105, less twice the file's penalty.
    expect_on_file(0, {a3, a4, b3}, 99);  // a: 105 - 2 x 3
    expect_on_file(1, {a3, a4, b3}, 97);  // b: 105 - 2 x 4
    expect_on_file(2, {a3, a4, b3}, 95);  // c: 105 - 2 x 5
    expect_on_file(3, {a3, a4, b3}, 93);  // d: 105 - 2 x 6
    expect_on_file(4, {a3, a4, b3}, 93);  // e: 105 - 2 x 6
    expect_on_file(5, {a3, a4, b3}, 95);  // f: 105 - 2 x 5
    expect_on_file(6, {a3, a4, b3}, 97);  // g: 105 - 2 x 4
    // The h-file with its neighbour on the left: 105 - 2 x 3.
    expect_on_file(6, {a3, b3, b4}, 99);
}

TEST(PawnStructure, ADoubledPawnCanBeBackwardAsWell) {
    // d2: doubled -6, backward (e4 is ahead) -5, passed 15; d4: doubled -6, passed 45; e4: 45.
    expect_sum("8/8/8/8/3PP3/8/3P4/8", 88);
}

// Backward pawns

TEST(PawnStructure, ThePawnBehindItsNeighboursIsBackward) {
    // e4 and d3 without a c-pawn: d3 (row 5) has -1 and 4 beside it, both below 5: -5.
    // e4 (row 4) has 5 beside it: not backward. Passed 30 + 45.
    expect_sum("8/8/8/8/4P3/3P4/8/8", 70);
}

TEST(PawnStructure, ABackwardPawnPaysByItsFile) {
    // A pawn on the third rank, its right neighbour on the fourth: passed 75 less the penalty.
    expect_on_file(0, {a3, b4}, 74);  // a: 75 - 1
    expect_on_file(1, {a3, b4}, 72);  // b: 75 - 3
    expect_on_file(2, {a3, b4}, 71);  // c: 75 - 4
    expect_on_file(3, {a3, b4}, 70);  // d: 75 - 5
    expect_on_file(4, {a3, b4}, 70);  // e: 75 - 5
    expect_on_file(5, {a3, b4}, 71);  // f: 75 - 4
    expect_on_file(6, {a3, b4}, 72);  // g: 75 - 3
    expect_on_file(6, {a4, b3}, 74);  // h, its left neighbour ahead: 75 - 1
}

TEST(PawnStructure, APawnLevelOrBehindOnOneSideIsEnough) {
    // c4, d3, e4: both neighbours ahead of d3: -5. Passed 45 + 30 + 45.
    expect_sum("8/8/8/8/2P1P3/3P4/8/8", 115);
    // c3, d3, e4: c3 is level with d3; c3 itself has d3 level. Passed 30 + 30 + 45.
    expect_sum("8/8/8/8/4P3/2PP4/8/8", 105);
    // c4, d3, e2: e2 is behind d3; e2 itself is backward: -5. Passed 45 + 30 + 15.
    expect_sum("8/8/8/8/2P5/3P4/4P3/8", 85);
}

TEST(PawnStructure, OnlyTheRearmostNeighbourOfAFileCounts) {
    // d3 with e2 and e5: e2 is behind d3. e2: doubled -6, backward (d3 ahead) -5, passed 15;
    // e5: doubled -6, passed 60; d3: passed 30.
    expect_sum("8/8/8/4P3/8/3P4/4P3/8", 88);
}

TEST(PawnStructure, AnIsolatedPawnPaysNoBackwardPenalty) {
    // d2 alone: isolated -25, passed (7 - 6) x 15 = 15; nothing more.
    expect_sum("8/8/8/8/8/8/3P4/8", -10);
}

// Passed pawns

TEST(PawnStructure, APassedPawnGains15ForEachRowFromItsFirstRank) {
    // An isolated a-pawn: rank value less 15.
    expect_sum("8/P7/8/8/8/8/8/8", 75);  // row 1: 90 - 15
    expect_sum("8/8/P7/8/8/8/8/8", 60);  // row 2: 75 - 15
    expect_sum("8/8/8/P7/8/8/8/8", 45);  // row 3: 60 - 15
    expect_sum("8/8/8/8/P7/8/8/8", 30);  // row 4: 45 - 15
    expect_sum("8/8/8/8/8/P7/8/8", 15);  // row 5: 30 - 15
    expect_sum("8/8/8/8/8/8/P7/8", 0);   // row 6: 15 - 15
}

TEST(PawnStructure, AnEnemyPawnAheadOnThreeFilesStopsAPassedPawn) {
    // e5 against one pawn on d6, e6 or f6: neither is passed. Isolated -25 for e5.
    expect_sum("8/8/3p4/4P3/8/8/8/8", 0);   // d6: +25
    expect_sum("8/8/4p3/4P3/8/8/8/8", 0);   // e6: +25
    expect_sum("8/8/5p2/4P3/8/8/8/8", -5);  // f6: +20
    // Far ahead as well: e2 against d7.
    expect_sum("8/3p4/8/8/8/8/4P3/8", 0);
}

TEST(PawnStructure, AnEnemyPawnTwoFilesAwayDoesNotStopAPassedPawn) {
    // e5: -25 + 60; c6: isolated +20, passed row 2 x 15 = -30.
    expect_sum("8/8/2p5/4P3/8/8/8/8", 25);
    // e5: -25 + 60; g6: isolated +18, passed -30.
    expect_sum("8/8/6p1/4P3/8/8/8/8", 23);
}

TEST(PawnStructure, AnEnemyPawnLevelOrBehindDoesNotStopAPassedPawn) {
    // e5 (row 3) with d5 level: e5 -25 + 60; d5 +25, passed row 3 x 15 = -45.
    expect_sum("8/8/8/3pP3/8/8/8/8", 15);
    // e5 with f5 level: e5 -25 + 60; f5 +20 - 45.
    expect_sum("8/8/8/4Pp2/8/8/8/8", 10);
    // e5 with d4 behind: e5 -25 + 60; d4 +25, passed row 4 x 15 = -60.
    expect_sum("8/8/8/4P3/3p4/8/8/8", 0);
    // e5 with e4 behind on its own file: the same.
    expect_sum("8/8/8/4P3/4p3/8/8/8", 0);
}

TEST(PawnStructure, TheRearmostEnemyPawnDecides) {
    // e5 against d7 and d3: d7 is ahead. e5: -25. d7: isolated doubled +28, not passed (e5 ahead of
    // it). d3: +28, passed row 5 x 15 = -75. Sum -44.
    expect_sum("8/3p4/8/4P3/8/3p4/8/8", -44);
}

TEST(PawnStructure, DoubledPassedPawnsAreBothPassed) {
    // a5 and a6: 60 + 75, isolated -15 each, doubled isolated 0 on the a-file.
    expect_sum("8/8/P7/P7/8/8/8/8", 105);
}

TEST(PawnStructure, TheStartingPawnsScoreNothing) {
    expect_sum("8/pppppppp/8/8/8/8/PPPPPPPP/8", 0);
    // White's alone: eight passed pawns at 15.
    const Table table = white_pawns_on({a2, b2, c2, d2, e2, f2, g2, h2});
    EXPECT_EQ(entry_of(table).pawn_score, 120);
}

TEST(PawnStructure, PiecesAndKingsDoNotMatter) {
    // As d4 alone: 45 - 25.
    expect_sum("r2qkb1r/8/3n4/8/3P4/2N5/8/R2QK2R", 20);
}
