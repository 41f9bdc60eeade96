// SPDX-License-Identifier: MIT
// Sets of squares as 64-bit words, a1 the lowest bit, and how men move over them. A step of a whole
// set costs as much as that of one square; that is what makes the generator fast.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "tb/tb_types.h"

/// A square as the tables number it: a1 = 0, b1 = 1, h8 = 63.
using TbSquare = std::uint32_t;

/// A bit a square, a1 the lowest.
using SquareSet = std::uint64_t;

inline constexpr SquareSet all_squares = ~SquareSet{0};
inline constexpr SquareSet file_a = 0x0101010101010101;
inline constexpr SquareSet file_h = file_a << 7U;
inline constexpr SquareSet first_rank = 0xff;
inline constexpr TbSquare board_width = 8;

[[nodiscard]] constexpr SquareSet square_bit(TbSquare square) {
    return SquareSet{1} << square;
}

/// The rank of an index 0 to 7.
[[nodiscard]] constexpr SquareSet rank_set(TbSquare rank_index) {
    return first_rank << (board_width * rank_index);
}

/// Where pawns can stand.
inline constexpr SquareSet pawn_ranks = ~(rank_set(0) | rank_set(7));

/// Calls `visit` with each square of a set.
template <class Visit>
constexpr void for_each_square(SquareSet set, const Visit& visit) {
    for (; set != 0; set &= set - 1) {
        visit(static_cast<TbSquare>(std::countr_zero(set)));
    }
}

/// The eight ways of a queen.
enum class Way : std::uint8_t {
    north,
    south,
    east,
    west,
    north_east,
    north_west,
    south_east,
    south_west
};
inline constexpr std::array rook_ways = {Way::north, Way::south, Way::east, Way::west};
inline constexpr std::array bishop_ways = {Way::north_east, Way::north_west, Way::south_east,
                                           Way::south_west};
inline constexpr std::array queen_ways = {Way::north,      Way::south,      Way::east,
                                          Way::west,       Way::north_east, Way::north_west,
                                          Way::south_east, Way::south_west};

/// The set moved one square along a way; what leaves the board is gone.
template <Way W>
[[nodiscard]] constexpr SquareSet step(SquareSet set) {
    switch (W) {
        case Way::north: return set << 8U;
        case Way::south: return set >> 8U;
        case Way::east: return (set & ~file_h) << 1U;
        case Way::west: return (set & ~file_a) >> 1U;
        case Way::north_east: return (set & ~file_h) << 9U;
        case Way::north_west: return (set & ~file_a) << 7U;
        case Way::south_east: return (set & ~file_h) >> 7U;
        case Way::south_west: return (set & ~file_a) >> 9U;
    }
}

/// All empty squares that a slider reaches from the set along a way.
template <Way W>
[[nodiscard]] constexpr SquareSet slide(SquareSet set, SquareSet empty) {
    // Doubling: after each line the set has gone twice as far.
    const SquareSet free1 = empty;
    SquareSet reached = step<W>(set) & free1;
    reached |= step<W>(reached) & free1;
    const SquareSet free2 = free1 & step<W>(free1);
    reached |= step<W>(step<W>(reached)) & free2;
    const SquareSet free4 = free2 & step<W>(step<W>(free2));
    reached |= step<W>(step<W>(step<W>(step<W>(reached)))) & free4;
    return reached;
}

template <std::size_t N, std::array<Way, N> Ways>
[[nodiscard]] constexpr SquareSet slide_all(SquareSet set, SquareSet empty) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return (slide<Ways[I]>(set, empty) | ...);
    }
    (std::make_index_sequence<N>{});
}

[[nodiscard]] constexpr SquareSet knight_reach(SquareSet set) {
    const SquareSet one = step<Way::east>(set) | step<Way::west>(set);
    const SquareSet two =
        step<Way::east>(step<Way::east>(set)) | step<Way::west>(step<Way::west>(set));
    return one << 16U | one >> 16U | two << 8U | two >> 8U;
}

[[nodiscard]] constexpr SquareSet king_reach(SquareSet set) {
    const SquareSet row = set | step<Way::east>(set) | step<Way::west>(set);
    return (row | row << 8U | row >> 8U) & ~set;
}

/// Empty squares that pieces of a kind, knight to queen, reach from a set. The same squares are
/// those that they may have come from.
[[nodiscard]] constexpr SquareSet piece_moves(std::uint8_t kind, SquareSet set, SquareSet empty) {
    switch (kind) {
        case tb_knight: return knight_reach(set) & empty;
        case tb_bishop: return slide_all<4, bishop_ways>(set, empty);
        case tb_rook: return slide_all<4, rook_ways>(set, empty);
        case tb_queen: return slide_all<8, queen_ways>(set, empty);
        default: return 0;
    }
}

/// Squares attacked by a piece of a kind, knight to king, occupied ones included.
[[nodiscard]] SquareSet piece_attacks(std::uint8_t kind, TbSquare from, SquareSet occupied);

/// Squares attacked by a pawn. Side: 0 goes up the board, 1 down.
[[nodiscard]] constexpr SquareSet pawn_attacks(std::uint8_t side, TbSquare from) {
    const SquareSet set = square_bit(from);
    return side == 0 ? step<Way::north_east>(set) | step<Way::north_west>(set)
                     : step<Way::south_east>(set) | step<Way::south_west>(set);
}

/// Squares strictly between two squares of a line; none for others.
[[nodiscard]] SquareSet squares_between(TbSquare from, TbSquare to);

/// Squares on the rays of a piece: for each square and way the next squares in order. Index: way.
struct Rays {
    std::array<std::array<std::uint8_t, 7>, 8> squares;  ///< as far as `lengths` tells
    std::array<std::uint8_t, 8> lengths;
};

/// The rays from a square. Ways 0 to 3 are those of a rook, 4 to 7 those of a bishop.
[[nodiscard]] const Rays& rays_from(TbSquare square);
