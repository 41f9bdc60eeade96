// SPDX-License-Identifier: MIT
// The three keys of a position from scratch.
#include "board/position_keys.h"

#include <gtest/gtest.h>

#include "board/piece_keys.h"
#include "board/set_up.h"
#include "support/board_invariants.h"
#include "support/position.h"

// White: king e1, pawn a2, knight b1. Black: king e8, queen d8, pawn h7.
TEST(PositionKeys, AreTheXorOfTheMensKeys) {
    const Table table = position_from_fen("3qk3/7p/8/8/8/8/P7/1N2K3 w - -");
    const std::uint32_t lock = piece_keys[0 * 120 + 81] ^ piece_keys[1 * 120 + 92] ^
                               piece_keys[5 * 120 + 95] ^ piece_keys[6 * 120 + 38] ^
                               piece_keys[10 * 120 + 24] ^ piece_keys[11 * 120 + 25];
    const std::uint32_t index = piece_keys[1440 + 0 * 120 + 81] ^ piece_keys[1440 + 1 * 120 + 92] ^
                                piece_keys[1440 + 5 * 120 + 95] ^ piece_keys[1440 + 6 * 120 + 38] ^
                                piece_keys[1440 + 10 * 120 + 24] ^ piece_keys[1440 + 11 * 120 + 25];
    EXPECT_EQ(hash_lock_from_scratch(table), lock);
    EXPECT_EQ(hash_index_from_scratch(table), index);
    EXPECT_EQ(pawn_hash_from_scratch(table), piece_keys[2880 + 81] ^ piece_keys[2880 + 120 + 38]);
}

TEST(PositionKeys, EveryManCountsOnItsSquare) {
    const std::string men = "PNBRQpnbrq";
    const std::array<PieceCode, 10> codes = {w_pawn, w_knight, w_bishop, w_rook, w_queen,
                                             b_pawn, b_knight, b_bishop, b_rook, b_queen};
    const Table bare = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
    for (std::size_t i = 0; i < men.size(); ++i) {
        const Table one =
            position_from_fen(std::string("4k3/8/8/2") + men[i] + "5/8/8/8/4K3 w - -");
        EXPECT_EQ(one.hash_lock, bare.hash_lock ^ lock_key(key_slot(codes[i]), c5));
        EXPECT_EQ(one.hash_index, bare.hash_index ^ index_key(key_slot(codes[i]), c5));
        const bool is_pawn = codes[i] == w_pawn || codes[i] == b_pawn;
        const Side colour = codes[i] == w_pawn ? white : black;
        EXPECT_EQ(one.pawn_hash, is_pawn ? pawn_key(colour, c5) : 0);
    }
}

TEST(PositionKeys, SideRightsAndEnPassantDoNotCount) {
    const Table table = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w - -");
    Table other = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6");
    other.side = black;
    other.capture_flag = 1;
    EXPECT_FALSE(table == other);
    EXPECT_EQ(hash_lock_from_scratch(table), hash_lock_from_scratch(other));
    EXPECT_EQ(hash_index_from_scratch(table), hash_index_from_scratch(other));
    EXPECT_EQ(pawn_hash_from_scratch(table), pawn_hash_from_scratch(other));
}

TEST(PositionKeys, ComputeKeysSetsAllThree) {
    Table table = position_from_fen("r1bqk2r/pp3ppp/8/8/3P4/5N2/PP3PPP/R2QKB1R b KQkq -");
    const Table sound = table;
    EXPECT_EQ(broken_invariant(table), "");
    table.hash_lock = table.hash_index = table.pawn_hash = 4711;
    compute_keys(table);
    EXPECT_TRUE(table == sound);
}
