// SPDX-License-Identifier: MIT
// The words of the board: squares as mailbox indices, bitboards, sides and piece codes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// One bit a square: bit 0 is a8, bit 7 h8, bit 8 a7, bit 63 h1.
using Bitboard = std::uint64_t;

/// What stands on a mailbox entry: one colour bit and one kind bit, or `empty_square`, or 0.
using PieceCode = std::uint32_t;

/// Mailbox index 0..119 on a board 10 wide and 12 high: 10 * (row + 2) + column, where row 0 is
/// the eighth rank and column 1 the a-file. One step towards the eighth rank is -10.
using Square = std::int32_t;

/// The side to move, or the side that a rule is about.
using Side = std::uint32_t;
inline constexpr Side white = 0;
inline constexpr Side black = 1;

inline constexpr std::size_t mailbox_size = 120;

/// One value for each mailbox entry.
template <class Value>
using Mailbox = std::array<Value, mailbox_size>;

// clang-format off
enum SquareName : Square {
    a8 = 21, b8, c8, d8, e8, f8, g8, h8,
    a7 = 31, b7, c7, d7, e7, f7, g7, h7,
    a6 = 41, b6, c6, d6, e6, f6, g6, h6,
    a5 = 51, b5, c5, d5, e5, f5, g5, h5,
    a4 = 61, b4, c4, d4, e4, f4, g4, h4,
    a3 = 71, b3, c3, d3, e3, f3, g3, h3,
    a2 = 81, b2, c2, d2, e2, f2, g2, h2,
    a1 = 91, b1, c1, d1, e1, f1, g1, h1,
};

// Steps of the mailbox.
inline constexpr Square step_up = -10;      // towards the eighth rank
inline constexpr Square step_down = +10;    // towards the first rank
inline constexpr Square step_right = +1;    // towards the h-file
inline constexpr Square step_left = -1;     // towards the a-file
inline constexpr std::array<Square, 8> knight_steps = {21, 19, 8, 12, -21, -19, -8, -12};
inline constexpr std::array<Square, 8> king_steps = {10, -10, 11, 1, -1, -11, -9, 9};

// Piece codes. The kind bits of the two colours do not overlap.
inline constexpr PieceCode w_pawn       = 8193;   // 0x2001  P
inline constexpr PieceCode w_knight     = 8194;   // 0x2002  N
inline constexpr PieceCode w_bishop     = 8196;   // 0x2004  B
inline constexpr PieceCode w_rook       = 8200;   // 0x2008  R
inline constexpr PieceCode w_queen      = 8208;   // 0x2010  Q
inline constexpr PieceCode w_king       = 8224;   // 0x2020  K
inline constexpr PieceCode b_pawn       = 4160;   // 0x1040  p
inline constexpr PieceCode b_knight     = 4224;   // 0x1080  n
inline constexpr PieceCode b_bishop     = 4352;   // 0x1100  b
inline constexpr PieceCode b_rook       = 4608;   // 0x1200  r
inline constexpr PieceCode b_queen      = 5120;   // 0x1400  q
inline constexpr PieceCode b_king       = 6144;   // 0x1800  k
inline constexpr PieceCode empty_square = 16384;  // 0x4000  .
inline constexpr PieceCode off_board    = 0;

inline constexpr PieceCode white_bit = 0x2000;
inline constexpr PieceCode black_bit = 0x1000;

// Castling rights.
inline constexpr std::uint32_t right_white_short = 1;
inline constexpr std::uint32_t right_white_long  = 2;
inline constexpr std::uint32_t right_black_short = 4;
inline constexpr std::uint32_t right_black_long  = 8;
inline constexpr std::uint32_t all_rights        = 15;
// clang-format on

/// Whether a mailbox entry is a pawn of either colour.
[[nodiscard]] constexpr bool is_pawn(PieceCode code) {
    return code == w_pawn || code == b_pawn;
}

/// The white bit of a mailbox entry: non-zero for a white man, 0 for all else, off the board too.
[[nodiscard]] constexpr PieceCode w_figure(PieceCode code) {
    return code & white_bit;
}

/// The black bit of a mailbox entry: non-zero for a black man, 0 for all else, off the board too.
[[nodiscard]] constexpr PieceCode b_figure(PieceCode code) {
    return code & black_bit;
}
