// SPDX-License-Identifier: MIT
// The keys are worked out here from the mailbox, not by the engine's walk of its bitboards.
#include "support/board_invariants.h"

#include "board/piece_keys.h"
#include "board/square_tables.h"
#include "support/position.h"

namespace {

/// The bitboards by key slot; kings, in slots 5 and 11, have none.
constexpr std::array<Bitboard Table::*, key_men> board_of_slot = {
    &Table::WPawns, &Table::WKnight, &Table::WBishop, &Table::WRook, &Table::WQuins, nullptr,
    &Table::BPawns, &Table::BKnight, &Table::BBishop, &Table::BRook, &Table::BQuins, nullptr,
};

/// What the mailbox says of bitboards, men and keys.
struct FromMailbox {
    std::array<Bitboard, key_men> men{};
    std::int32_t count = 0;
    std::uint32_t hash_lock = 0;
    std::uint32_t hash_index = 0;
    std::uint32_t pawn_hash = 0;
};

FromMailbox read_mailbox(const Table& table) {
    FromMailbox read;
    for (std::size_t bit = 0; bit < square_of_bit.size(); ++bit) {
        const Square square = square_of_bit[bit];
        const PieceCode code = table.at(square);
        const std::size_t slot = key_slot(code);
        if (slot >= key_men) {
            continue;
        }
        ++read.count;
        read.men[slot] |= Bitboard{1} << bit;
        read.hash_lock ^= lock_key(slot, square);
        read.hash_index ^= index_key(slot, square);
        if (code == w_pawn || code == b_pawn) {
            read.pawn_hash ^= pawn_key(code == w_pawn ? white : black, square);
        }
    }
    return read;
}

std::string fault(const char* what, const Table& table) {
    return std::string(what) + " in " + fen_of(table);
}

std::string board_fault(const Table& table, const FromMailbox& read) {
    for (std::size_t slot = 0; slot < key_men; ++slot) {
        const auto board = board_of_slot[slot];
        if (board != nullptr && table.*board != read.men[slot]) {
            return fault("a bitboard differs from the mailbox", table);
        }
    }
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        if ((table.Array[i] == off_board) != (empty_board[i] == off_board)) {
            return fault("an entry is off the board, or no longer", table);
        }
    }
    if (table.at(table.xywK) != w_king || table.at(table.xybK) != b_king) {
        return fault("a king is not on its square", table);
    }
    return table.Kol_figur == read.count ? std::string() : fault("the men are miscounted", table);
}

}  // namespace

std::string broken_board(const Table& table) {
    return board_fault(table, read_mailbox(table));
}

std::string broken_invariant(const Table& table) {
    const FromMailbox read = read_mailbox(table);
    if (std::string text = board_fault(table, read); !text.empty()) {
        return text;
    }
    if (table.hash_lock != read.hash_lock) {
        return fault("hash_lock is not the key of the position", table);
    }
    if (table.hash_index != read.hash_index) {
        return fault("hash_index is not the key of the position", table);
    }
    if (table.pawn_hash != read.pawn_hash) {
        return fault("pawn_hash is not the key of the pawns", table);
    }
    return {};
}
