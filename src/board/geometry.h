// SPDX-License-Identifier: MIT
// Attack masks, rays and relations between two squares: looked up, never worked out in the search.
// Every table takes mailbox indices, so that an expression such as posTo + 10 needs no translation.
#pragma once

#include <array>

#include "board/square_tables.h"

/// One word for each pair of mailbox entries: row the first square, column the second.
using RelationTable = std::array<Mailbox<std::uint32_t>, mailbox_size>;

/// 1 shifted left by the bit number.
extern const std::array<Bitboard, 64> bit_mask;

/// The eight bits of one file; entry 0 is the a-file. Part of the geometry set, read by nothing.
extern const std::array<Bitboard, 8> file_mask;

inline constexpr Bitboard dark_squares = 0x55aa55aa55aa55aa;
inline constexpr Bitboard light_squares = 0xaa55aa55aa55aa55;

// Squares reached from a square. 0 on indices below 21 and above 98.
extern const Mailbox<Bitboard> knight_attacks;
extern const Mailbox<Bitboard> king_attacks;
extern const Mailbox<Bitboard> white_pawn_attacks;  ///< read by nothing
extern const Mailbox<Bitboard> black_pawn_attacks;  ///< read by nothing
extern const Mailbox<Bitboard> bishop_rays;         ///< on an empty board
extern const Mailbox<Bitboard> rook_rays;           ///< on an empty board
extern const Mailbox<Bitboard> queen_rays;          ///< read by nothing

/// 1 when a man on the second square can have to do with a king on the first: they share a file,
/// a rank or a diagonal, or lie a knight's step apart. Only pairs of board squares mean anything.
extern const RelationTable line_or_knight;

extern const RelationTable king_step;    ///< 1 a king's step apart; read by nothing
extern const RelationTable knight_step;  ///< 1 a knight's step apart; read by nothing

/// Whether `line_or_knight` relates the two squares.
[[nodiscard]] inline bool on_line_or_knight(Square king, Square other) {
    return line_or_knight[at_square(king)][at_square(other)] != 0;
}

/// Set bits of each 16-bit value. Intended(pop-table-last-entry): the last entry, 65535, is 0: a
/// group of sixteen set bits counts as none. No kind of man ever fills such a group.
extern const std::array<std::uint8_t, 65536> pop_table;

/// Set bits of a word, counted in four groups of sixteen by `pop_table`.
[[nodiscard]] inline std::int32_t pop_count(Bitboard word) {
    constexpr Bitboard group = 0xffff;
    constexpr int group_bits = 16;
    return pop_table[word & group] + pop_table[(word >> group_bits) & group] +
           pop_table[(word >> (2 * group_bits)) & group] + pop_table[word >> (3 * group_bits)];
}
