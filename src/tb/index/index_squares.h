// SPDX-License-Identifier: MIT
// Squares as the tables number them: a1 = 0, b1 = 1, h1 = 7, a2 = 8, h8 = 63. With them the masks
// that turn a board about, and the taking of men off a scratch board.
#pragma once

#include <array>
#include <cstdint>

#include "board/square_tables.h"
#include "tb/tb_types.h"

inline constexpr std::uint32_t tb_squares = 64;
inline constexpr std::uint32_t tb_rank_mask = 56;  ///< XOR with it exchanges ranks 1 and 8
inline constexpr std::uint32_t tb_file_mask = 7;   ///< XOR with it exchanges the a and h files

[[nodiscard]] constexpr std::uint32_t rank_index(std::uint32_t square) {
    return square / 8;
}

[[nodiscard]] constexpr std::uint32_t file_index(std::uint32_t square) {
    return square % 8;
}

/// From mailbox squares; 0 off the board.
inline constexpr Mailbox<std::uint8_t> index_square =
    square_tables_detail::make_mailbox<std::uint8_t>([](Square square) {
        return square_tables_detail::is_on_board(square)
                   ? static_cast<std::uint8_t>((9 - square / 10) * 8 + square % 10 - 1)
                   : std::uint8_t{0};
    });

/// 7 if the square is on the e to h files, else 0.
[[nodiscard]] constexpr std::uint32_t file_mask_of(std::uint32_t square) {
    return file_index(square) >= 4 ? tb_file_mask : 0;
}

/// The file mask, plus 56 if the square is on ranks 5 to 8.
[[nodiscard]] constexpr std::uint32_t quadrant_mask_of(std::uint32_t square) {
    return file_mask_of(square) | (rank_index(square) >= 4 ? tb_rank_mask : 0);
}

/// Mirrored in the a1-h8 diagonal.
[[nodiscard]] constexpr std::uint32_t diagonal_mirror(std::uint32_t square) {
    return file_index(square) * 8 + rank_index(square);
}

/// Whether a square is one of a1, b1, c1, d1, b2, c2, d2, c3, d3, d4.
[[nodiscard]] constexpr bool in_triangle(std::uint32_t square) {
    return file_index(square) <= 3 && rank_index(square) <= file_index(square);
}

/// Whether a king needs no mirroring in the diagonal, the other one standing on `other`: it is in
/// the triangle and, if on the diagonal, the other king is on or below it.
[[nodiscard]] constexpr bool triangle_test(std::uint32_t king, std::uint32_t other) {
    return in_triangle(king) &&
           (rank_index(king) != file_index(king) || rank_index(other) <= file_index(other));
}

/// Takes the first `kind`, in mailbox order, off the board. Gives its square; 0 if there is none.
[[nodiscard]] inline std::uint32_t take_first(TbBoard& board, std::int32_t kind) {
    constexpr std::size_t stretch = 8;  // an empty stretch costs one test
    for (std::size_t begin = 0; begin < mailbox_size; begin += stretch) {
        std::int32_t any = 0;
        for (std::size_t i = begin; i < begin + stretch; ++i) {
            any |= board[i];
        }
        if (any == 0) continue;
        for (std::size_t i = begin; i < begin + stretch; ++i) {
            if (board[i] == kind) {
                board[i] = 0;
                return index_square[i];
            }
        }
    }
    return 0;
}

/// The king of a scratch board, taken off; square 0 if there is none.
[[nodiscard]] inline std::uint32_t TakeKing(TbBoard& board) {
    return take_first(board, tb_king);
}

/// A man of a kind, `tb_pawn` to `tb_queen`, taken off; square 0 if there is none. Repeated calls
/// give the men of a kind from the eighth rank down, each rank from the a-file on.
[[nodiscard]] inline std::uint32_t TakeMan(TbBoard& board, std::int32_t kind) {
    return take_first(board, kind);
}
