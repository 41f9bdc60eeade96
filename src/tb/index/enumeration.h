// SPDX-License-Identifier: MIT
// The tables behind the high part of an index, which numbers the kings and the men of the side to
// move: squares a man may stand on under the enemy king's eye, pairs of kings, and for each set of
// men where the positions of each pair of kings begin.
#pragma once

#include <array>
#include <cstdint>

#include "tb/index/index_squares.h"
#include "tb/tb_types.h"

/// A pawn wherever it stands, with no regard to the check it may give. The other kinds of the
/// enumeration are the codes of the scratch boards, pawns to queens.
inline constexpr std::uint8_t tb_pawn_any = 0;
inline constexpr std::size_t tb_kinds = 6;

inline constexpr std::size_t tb_pawn_pairs = 1806;     ///< pairs of kings in tables with pawns
inline constexpr std::size_t tb_pawnless_pairs = 462;  ///< pairs of kings in pawnless tables
inline constexpr std::int16_t tb_no_pair = 4000;       ///< a pair of kings that is not used
inline constexpr std::uint8_t tb_no_square = 255;      ///< a square where a man may not stand

template <class Value>
using TbSquareTable = std::array<Value, tb_squares>;
template <class Value>
using TbSquarePairTable = std::array<TbSquareTable<Value>, tb_squares>;

/// One to three men of the side to move, in the order of the table's name.
struct TbKindSet {
    bool pawnless = false;  ///< of the table, not of the set
    std::uint8_t men = 0;
    std::array<std::uint8_t, tb_most_men> kinds{};
};

/// Index: kind, enemy king, square. The number of the square among those that the man may stand
/// on, in rising order; `tb_no_square` for the others.
extern const TbSquarePairTable<std::uint8_t>* tb_ordinal;

/// Index: kind, enemy king. How many squares that are.
extern const TbSquareTable<std::uint8_t>* tb_count;

/// Index: king of the side to move, other king. Number of the pair, or `tb_no_pair`.
extern const TbSquarePairTable<std::int16_t>* tb_kk_pawn;
extern const TbSquarePairTable<std::int16_t>* tb_kk_pawnless;

inline constexpr std::size_t tb_sets1 = tb_kinds;
inline constexpr std::size_t tb_sets2 = tb_kinds * tb_kinds;
inline constexpr std::size_t tb_sets3 = tb_kinds * tb_kinds * tb_kinds;

/// Where the positions of each pair of kings begin, for one, two and three men. Index: 0 with
/// pawns, 1 pawnless; the kinds as digits to the base of `tb_kinds`. Null for a set not in use.
extern std::array<std::array<const std::uint32_t*, tb_sets1>, 2> tb_offset1;
extern std::array<std::array<const std::uint32_t*, tb_sets2>, 2> tb_offset2;
extern std::array<std::array<const std::uint32_t*, tb_sets3>, 2> tb_offset3;

/// The whole number of positions of each set. Index: as above, then tb_set_number.
extern std::array<std::array<std::uint32_t, tb_sets1 + tb_sets2 + tb_sets3>, 2> tb_total;

/// Number of a set among all: those of one man first, then two, then three.
[[nodiscard]] constexpr std::size_t tb_set_number(const TbKindSet& set) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < set.men; ++i) {
        number = number * tb_kinds + set.kinds[i];
    }
    return number + (set.men > 1 ? tb_sets1 : 0) + (set.men > 2 ? tb_sets2 : 0);
}

/// The entry of `tb_offset1`, `tb_offset2` or `tb_offset3` that belongs to a set of one to three
/// men.
[[nodiscard]] constexpr const std::uint32_t* const* tb_offset_entry(const TbKindSet& set) {
    const std::size_t number = tb_set_number(set);
    switch (set.men) {
        case 1: return &tb_offset1[set.pawnless][number];
        case 2: return &tb_offset2[set.pawnless][number - tb_sets1];
        default: return &tb_offset3[set.pawnless][number - tb_sets1 - tb_sets2];
    }
}

/// Builds all of these tables through TbAlloc; a second call does nothing. Prints the totals if
/// `tb_enum_verbose`.
void tb_build_enumeration();
