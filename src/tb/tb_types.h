// SPDX-License-Identifier: MIT
// The words that all endgame-table code shares: the men's codes, halves, scratch boards, the size
// of a block and the faults of reading a file.
#pragma once

#include <cstdint>

#include "board/types.h"

/// Tables of three to five men, kings included; row 0 of the catalogue is empty.
inline constexpr std::int32_t tb_rows = 146;
inline constexpr std::int32_t tb_first_four_men = 6;   ///< first row of four men
inline constexpr std::int32_t tb_first_five_men = 36;  ///< first row of five men
inline constexpr std::int32_t tb_most_men = 3;         ///< most men beside the kings
inline constexpr std::int32_t tb_halves = 2;           ///< 0: the side named first is to move

/// One colour's men on mailbox squares, by the codes below; 0 elsewhere.
using TbBoard = Mailbox<std::int32_t>;

// Codes of the men on scratch boards.
inline constexpr std::int32_t tb_pawn = 1;
inline constexpr std::int32_t tb_knight = 2;
inline constexpr std::int32_t tb_bishop = 3;
inline constexpr std::int32_t tb_rook = 4;
inline constexpr std::int32_t tb_queen = 5;
inline constexpr std::int32_t tb_king = 6;

/// The en-passant square of a position that has none; the others are 0 (a1) to 63 (h8).
inline constexpr std::uint32_t tb_no_en_passant = 65;

/// Place of a position's byte in its half. The boards are those of the side named first and of the
/// other one, and are emptied of the men that are read; `flip` is 1 when the side named first is
/// Black, else 0. Any boards give some number.
using TbIndexFunction = std::uint32_t (*)(TbBoard& first, TbBoard& second, std::uint32_t ep,
                                          std::uint32_t flip);

/// Bytes that are compressed, read and cached as one.
inline constexpr std::int32_t tb_block_size = 8192;

// Faults of reading, in the low byte of a result that is not 0. The upper bytes tell the place.
inline constexpr std::int32_t tb_read_fault = 2;
inline constexpr std::int32_t tb_no_memory = 5;
inline constexpr std::int32_t tb_broken_file = 6;
inline constexpr std::int32_t tb_wrong_argument = 7;

/// A fault with its place, a number that no other place has.
[[nodiscard]] constexpr std::int32_t tb_fault(std::int32_t kind, std::int32_t place) {
    constexpr std::int32_t kind_bits = 8;
    return (place << kind_bits) | kind;
}

/// The kind of a fault.
[[nodiscard]] constexpr std::int32_t tb_fault_kind(std::int32_t fault) {
    constexpr std::int32_t kind_mask = 0xff;
    return fault & kind_mask;
}
