// SPDX-License-Identifier: MIT
// Clearing and the starting position.
#include "board/set_up.h"

#include <gtest/gtest.h>

#include "board/piece_keys.h"
#include "board/position_keys.h"
#include "board/square_tables.h"
#include "shell/game_record.h"
#include "support/board_invariants.h"
#include "support/position.h"

TEST(SetUp, ClearingEmptiesTheBoardAndKeepsTheRest) {
    Table table =
        position_from_fen("r3k2r/pppq1ppp/2nb1n2/4p3/3pP3/2NB1N2/PPPQ1PPP/1R2K2R b Kkq e3");
    table.capture_flag = 1;
    Table expected;
    expected.Array = empty_board;
    expected.xywK = table.xywK;
    expected.xybK = table.xybK;
    expected.side = black;
    expected.ep_square = e4;
    expected.capture_flag = 1;
    ASSERT_EQ(table.ep_flag, 1);
    ASSERT_EQ(table.ep_square, e4);
    clear_position(table);
    EXPECT_TRUE(table == expected);
    EXPECT_EQ(table.Kol_figur, 0);
    EXPECT_EQ(table.castling, 0U);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.WPawns | table.WKnight | table.WBishop | table.WRook | table.WQuins, 0U);
    EXPECT_EQ(table.BPawns | table.BKnight | table.BBishop | table.BRook | table.BQuins, 0U);
    EXPECT_EQ(table.hash_lock | table.hash_index | table.pawn_hash, 0U);
}

TEST(SetUp, StartingPositionHoldsTheMen) {
    Table table = position_from_fen("8/8/8/3k4/8/3K4/8/8 b - -");
    set_start_position(table);
    EXPECT_EQ(broken_board(table), "");
    EXPECT_EQ(table.Array, start_board);
    EXPECT_EQ(table.side, white);
    EXPECT_EQ(table.xywK, 95);
    EXPECT_EQ(table.xybK, 25);
    EXPECT_EQ(table.Kol_figur, 32);
    EXPECT_EQ(table.castling, 15U);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.WPawns, 0x00ff000000000000U);
    EXPECT_EQ(table.BPawns, 0x000000000000ff00U);
    EXPECT_EQ(table.WRook, 0x8100000000000000U);
    EXPECT_EQ(table.BKnight, 0x0000000000000042U);
    EXPECT_EQ(table.BQuins, 0x0000000000000008U);
}

TEST(SetUp, StartingPositionLeavesEpSquareAndCaptureFlag) {
    Table table = position_from_fen("4k3/8/8/8/4P3/8/8/4K3 b - e3");
    table.capture_flag = 1;
    set_start_position(table);
    EXPECT_EQ(table.ep_square, e4);
    EXPECT_EQ(table.capture_flag, 1);
}

TEST(SetUp, StartingPositionEmptiesTheGameRecord) {
    Table table;
    game_store(white, start_board.data());
    set_start_position(table);
    EXPECT_EQ(game_top, -1);
}

TEST(SetUp, StartingKeysAreThoseOfTheKingsAlone) {
    Table table;
    table.pawn_hash = 99;
    set_start_position(table);
    EXPECT_EQ(table.hash_lock, piece_keys[5 * 120 + 95] ^ piece_keys[11 * 120 + 25]);
    EXPECT_EQ(table.hash_index, piece_keys[1440 + 5 * 120 + 95] ^ piece_keys[1440 + 11 * 120 + 25]);
    EXPECT_EQ(table.pawn_hash, 0U);
    EXPECT_NE(table.hash_lock, hash_lock_from_scratch(table));
    EXPECT_NE(table.pawn_hash, pawn_hash_from_scratch(table));
}

TEST(SetUp, NewTableHasItsKingsAtHome) {
    const Table table;
    EXPECT_EQ(table.xywK, e1);
    EXPECT_EQ(table.xybK, e8);
}
