// SPDX-License-Identifier: MIT
// A walk over legal moves chosen by the input, with every fact of the board kept against its slow
// counterpart: make against make_plain on a copy, unmake against the position before, keys and
// bitboards against those from scratch.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "board/generate.h"
#include "board/geometry.h"
#include "board/make.h"
#include "board/move_list.h"
#include "board/position_keys.h"
#include "board/side_traits.h"
#include "support/position.h"

namespace {

void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void demand_sound(const Table& table) {
    std::int32_t men = 0;
    for (const Square square : square_of_bit) {
        const PieceCode code = table.at(square);
        men += code != empty_square ? 1 : 0;
        const auto own = bitboard_of(code);
        for (const PieceCode man : {w_pawn, w_knight, w_bishop, w_rook, w_queen, b_pawn, b_knight,
                                    b_bishop, b_rook, b_queen}) {
            const auto bitboard = bitboard_of(man);
            demand(((table.*bitboard & mask_of(square)) != 0) == (bitboard == own));
        }
    }
    demand(men == table.Kol_figur);
    demand(table.hash_lock == hash_lock_from_scratch(table));
    demand(table.hash_index == hash_index_from_scratch(table));
    demand(table.pawn_hash == pawn_hash_from_scratch(table));
}

void step(Table& table, const Move& move) {
    const Table before = table;
    Table copy = table;
    UndoRecord undo;
    make(table, move.posFrom, move.posTo, move.posInfo, undo);
    make_plain(copy, move.posFrom, move.posTo, move.posInfo);
    demand(copy == table);
    unmake(table, undo);
    demand(before == table);
    table = copy;
    table.side ^= 1;
    demand_sound(table);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Table table = start_position();
    MoveList list;
    cur_moves = &list;
    for (std::size_t i = 0; i < size; ++i) {
        gen_legal(table, table.side);
        if (list.count == 0) {
            break;
        }
        step(table, list.move(1 + data[i] % list.count));
    }
    cur_moves = nullptr;
    return 0;
}
