// SPDX-License-Identifier: MIT
// The eight ways to turn a board about, for squares and for sets of squares.
#pragma once

#include <array>
#include <cstdint>

#include "tbgen/square_set.h"

/// A turn of the board: mirror files, mirror ranks, then mirror in the a1-h8 diagonal, a bit each.
using Turn = std::uint8_t;
inline constexpr Turn no_turn = 0;
inline constexpr Turn turn_files = 1;
inline constexpr Turn turn_ranks = 2;
inline constexpr Turn turn_diagonal = 4;
inline constexpr std::size_t turns = 8;

[[nodiscard]] constexpr TbSquare turned(Turn turn, TbSquare square) {
    square ^= ((turn & turn_files) != 0 ? 7U : 0U) ^ ((turn & turn_ranks) != 0 ? 56U : 0U);
    return (turn & turn_diagonal) != 0 ? square % 8 * 8 + square / 8 : square;
}

/// The turn that undoes another.
[[nodiscard]] constexpr Turn inverse(Turn turn) {
    // Seen through the diagonal, files are ranks.
    constexpr std::array<Turn, turns> inverses = {0, 1, 2, 3, 4, 6, 5, 7};
    return inverses[turn];
}

/// Each square of a turned board by the square before. Index: turn, square.
extern const std::array<std::array<std::uint8_t, 64>, turns> turned_squares;

[[nodiscard]] constexpr SquareSet mirror_files(SquareSet set) {
    constexpr SquareSet odd_files = 0x5555555555555555;
    constexpr SquareSet file_pairs = 0x3333333333333333;
    constexpr SquareSet half_ranks = 0x0f0f0f0f0f0f0f0f;
    set = (set >> 1U & odd_files) | (set & odd_files) << 1U;
    set = (set >> 2U & file_pairs) | (set & file_pairs) << 2U;
    return (set >> 4U & half_ranks) | (set & half_ranks) << 4U;
}

[[nodiscard]] constexpr SquareSet mirror_ranks(SquareSet set) {
    constexpr SquareSet odd_ranks = 0x00ff00ff00ff00ff;
    constexpr SquareSet rank_pairs = 0x0000ffff0000ffff;
    set = (set >> 8U & odd_ranks) | (set & odd_ranks) << 8U;
    set = (set >> 16U & rank_pairs) | (set & rank_pairs) << 16U;
    return set >> 32U | set << 32U;
}

/// Mirrored in the a1-h8 diagonal: quarters of the board are exchanged, then their quarters, then
/// single squares.
[[nodiscard]] constexpr SquareSet mirror_diagonal(SquareSet set) {
    constexpr SquareSet quarters = 0x0f0f0f0f00000000;
    constexpr SquareSet sixteenths = 0x3333000033330000;
    constexpr SquareSet single = 0x5500550055005500;
    SquareSet swap = quarters & (set ^ set << 28U);
    set ^= swap ^ swap >> 28U;
    swap = sixteenths & (set ^ set << 14U);
    set ^= swap ^ swap >> 14U;
    swap = single & (set ^ set << 7U);
    return set ^ swap ^ swap >> 7U;
}

[[nodiscard]] constexpr SquareSet turned_set(Turn turn, SquareSet set) {
    if ((turn & turn_files) != 0) set = mirror_files(set);
    if ((turn & turn_ranks) != 0) set = mirror_ranks(set);
    if ((turn & turn_diagonal) != 0) set = mirror_diagonal(set);
    return set;
}
