// SPDX-License-Identifier: MIT
// The order of the steps matters in one place, which is named.
#include "board/set_up.h"

#include "board/position_keys.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "shell/game_record.h"

void clear_position(Table& table) {
    table.Array = empty_board;
    table.WKnight = table.BKnight = 0;
    table.WRook = table.BRook = 0;
    table.WBishop = table.BBishop = 0;
    table.WQuins = table.BQuins = 0;
    table.WPawns = table.BPawns = 0;
    table.Kol_figur = 0;
    table.castling = 0;
    table.ep_flag = 0;
    table.hash_lock = 0;
    table.hash_index = 0;
    table.pawn_hash = 0;
}

void place_start_position(Table& table) {
    constexpr std::int32_t men_at_start = 32;
    clear_position(table);
    table.side = white;
    table.Array = start_board;
    table.xywK = e1;
    table.xybK = e8;
    table.Kol_figur = men_at_start;
    table.castling = all_rights;
    // Intended(start-keys-of-kings): the keys are taken before the bitboards are filled, so they
    // are those of the two kings alone, and pawn_hash stays 0. Every search computes its own.
    table.hash_lock = hash_lock_from_scratch(table);
    table.hash_index = hash_index_from_scratch(table);
    for (const Square square : square_of_bit) {
        const auto bitboard = bitboard_of(table.at(square));
        if (bitboard != nullptr) {
            table.*bitboard |= mask_of(square);
        }
    }
}

void set_start_position(Table& table) {
    place_start_position(table);
    game_reset();
}
