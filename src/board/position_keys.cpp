// SPDX-License-Identifier: MIT
// XOR over the men that the bitboards and the king squares name.
#include "board/position_keys.h"

#include "board/piece_keys.h"
#include "board/side_traits.h"
#include "board/square_tables.h"

namespace {

using BlockKey = std::uint32_t (*)(std::size_t slot, Square square);

template <BlockKey Key>
std::uint32_t key_of_men(Bitboard men, PieceCode code) {
    std::uint32_t key = 0;
    while (men != 0) {
        key ^= Key(key_slot(code), take_first_square(men));
    }
    return key;
}

template <BlockKey Key, Side S>
std::uint32_t key_of_side(const Table& table) {
    using Own = SideTraits<S>;
    return key_of_men<Key>(table.*Own::pawns, Own::pawn) ^
           key_of_men<Key>(table.*Own::knights, Own::knight) ^
           key_of_men<Key>(table.*Own::bishops, Own::bishop) ^
           key_of_men<Key>(table.*Own::rooks, Own::rook) ^
           key_of_men<Key>(table.*Own::queens, Own::queen) ^
           Key(key_slot(Own::king), table.*Own::king_square);
}

}  // namespace

std::uint32_t hash_lock_from_scratch(const Table& table) {
    return key_of_side<lock_key, white>(table) ^ key_of_side<lock_key, black>(table);
}

std::uint32_t hash_index_from_scratch(const Table& table) {
    return key_of_side<index_key, white>(table) ^ key_of_side<index_key, black>(table);
}

std::uint32_t pawn_hash_from_scratch(const Table& table) {
    std::uint32_t key = 0;
    for (Bitboard men = table.WPawns; men != 0;) {
        key ^= pawn_key(white, take_first_square(men));
    }
    for (Bitboard men = table.BPawns; men != 0;) {
        key ^= pawn_key(black, take_first_square(men));
    }
    return key;
}

void compute_keys(Table& table) {
    table.pawn_hash = pawn_hash_from_scratch(table);
    table.hash_lock = hash_lock_from_scratch(table);
    table.hash_index = hash_index_from_scratch(table);
}
