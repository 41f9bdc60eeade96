// SPDX-License-Identifier: MIT
// The basic tables of the two square numberings: mailbox index and bit number. All are made at
// compile time, so nothing depends on the order in which the program starts its parts.
#pragma once

#include <array>
#include <bit>

#include "board/types.h"

namespace square_tables_detail {

constexpr std::int32_t board_width = 10;
constexpr std::int32_t rows = 8;
constexpr std::int32_t columns = 8;

constexpr Square square_at(std::int32_t row, std::int32_t column) {
    return board_width * (row + 2) + column;
}

constexpr bool is_on_board(Square square) {
    const std::int32_t row = square / board_width - 2;
    const std::int32_t column = square % board_width;
    return row >= 0 && row < rows && column >= 1 && column <= columns;
}

/// A mailbox table from a function of the index.
template <class Value, class Function>
constexpr Mailbox<Value> make_mailbox(Function value_of) {
    Mailbox<Value> table{};
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        table[i] = value_of(static_cast<Square>(i));
    }
    return table;
}

}  // namespace square_tables_detail

/// 16384 on the 64 squares, 0 off the board.
inline constexpr Mailbox<PieceCode> empty_board = square_tables_detail::make_mailbox<PieceCode>(
    [](Square s) { return square_tables_detail::is_on_board(s) ? empty_square : off_board; });

// clang-format off
/// The starting position, 0 off the board.
inline constexpr Mailbox<PieceCode> start_board = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
//     a         b         c         d         e         f         g         h
    0, b_rook, b_knight, b_bishop, b_queen, b_king, b_bishop, b_knight, b_rook, 0,  // 8
    0, b_pawn, b_pawn, b_pawn, b_pawn, b_pawn, b_pawn, b_pawn, b_pawn, 0,
    0, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 0,
    0, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 0,
    0, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 0,
    0, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 16384, 0,
    0, w_pawn, w_pawn, w_pawn, w_pawn, w_pawn, w_pawn, w_pawn, w_pawn, 0,
    0, w_rook, w_knight, w_bishop, w_queen, w_king, w_bishop, w_knight, w_rook, 0,  // 1
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
};
// clang-format on

/// Bit number 0..63 to mailbox index.
inline constexpr std::array<Square, 64> square_of_bit = []() {
    using namespace square_tables_detail;
    std::array<Square, 64> table{};
    for (std::int32_t bit = 0; bit < rows * columns; ++bit) {
        table[static_cast<std::size_t>(bit)] = square_at(bit / columns, bit % columns + 1);
    }
    return table;
}();

/// Mailbox index to the word with that square's bit alone; 0 off the board.
inline constexpr Mailbox<Bitboard> square_mask = []() {
    Mailbox<Bitboard> table{};
    for (std::size_t bit = 0; bit < square_of_bit.size(); ++bit) {
        table[static_cast<std::size_t>(square_of_bit[bit])] = Bitboard{1} << bit;
    }
    return table;
}();

/// The mask of a mailbox index 0..119.
[[nodiscard]] constexpr Bitboard mask_of(Square square) {
    return square_mask[static_cast<std::size_t>(square)];
}

/// Index 0..63 of the lowest set bit. The word must not be 0.
[[nodiscard]] constexpr std::int32_t first_bit(Bitboard word) {
    return std::countr_zero(word);
}

/// Takes the lowest set bit out of `word`, which must not be 0, and gives its mailbox square. A
/// loop over it visits a word's squares from a8 towards h1.
[[nodiscard]] constexpr Square take_first_square(Bitboard& word) {
    const std::int32_t bit = first_bit(word);
    word &= word - 1;
    return square_of_bit[static_cast<std::size_t>(bit)];
}

/// Index modulo 10: 1 to 8 are the files a to h.
inline constexpr Mailbox<std::int32_t> file_of = square_tables_detail::make_mailbox<std::int32_t>(
    [](Square s) { return s % square_tables_detail::board_width; });

/// Row of the board, clamped: -1 above it, 0 on the eighth rank to 7 on the first, 8 below it.
inline constexpr Mailbox<std::int32_t> rank_of =
    square_tables_detail::make_mailbox<std::int32_t>([](Square s) {
        const std::int32_t row = s / square_tables_detail::board_width - 2;
        return row < 0 ? -1 : row > square_tables_detail::rows ? square_tables_detail::rows : row;
    });

/// Row of the mailbox minus 2: -2 to 9, 0 to 7 on the board.
inline constexpr Mailbox<std::int32_t> row_of = square_tables_detail::make_mailbox<std::int32_t>(
    [](Square s) { return s / square_tables_detail::board_width - 2; });

/// Number of the square's diagonal parallel to a1-h8, 1 to 15; 0 off the board.
inline constexpr Mailbox<std::int32_t> diag_a1h8 =
    square_tables_detail::make_mailbox<std::int32_t>([](Square s) {
        if (!square_tables_detail::is_on_board(s)) {
            return 0;
        }
        const std::int32_t d =
            (7 - row_of[static_cast<std::size_t>(s)]) - (file_of[static_cast<std::size_t>(s)] - 1);
        return d <= 0 ? 1 - d : 8 + d;
    });

/// Number of the square's diagonal parallel to a8-h1, 16 to 30; 0 off the board.
inline constexpr Mailbox<std::int32_t> diag_a8h1 =
    square_tables_detail::make_mailbox<std::int32_t>([](Square s) {
        if (!square_tables_detail::is_on_board(s)) {
            return 0;
        }
        const std::int32_t e =
            row_of[static_cast<std::size_t>(s)] - (file_of[static_cast<std::size_t>(s)] - 1);
        return e >= 0 ? 16 + e : 23 - e;
    });

/// Index of a square in a mailbox table.
[[nodiscard]] constexpr std::size_t at_square(Square square) {
    return static_cast<std::size_t>(square);
}
