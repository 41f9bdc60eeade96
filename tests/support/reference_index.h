// SPDX-License-Identifier: MIT
// The numbering of the endgame tables a second time, slowly: squares are listed, sets of men and
// pairs of kings are walked one by one and counted. It shares no code and no formula with the
// engine's numbering, so that a slip in one of them shows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A position's place in a half, and how many places the half has, captures en passant aside.
struct ReferenceNumber {
    std::uint64_t index = 0;
    std::uint64_t positions = 1;
};

/// Numbers a position of the table `name`. Squares, a1 = 0, h1 = 7, h8 = 63, in the order of the
/// name, all different; `flip` when the side named first is Black. Half 0: that side is to move.
/// Empty for positions that the numbering leaves out.
[[nodiscard]] std::optional<ReferenceNumber> reference_index(std::string_view name, int half,
                                                             const std::vector<int>& squares,
                                                             bool flip);

/// Number of a pair of kings, that of the side to move first; empty if the pair is not used.
[[nodiscard]] std::optional<std::size_t> reference_pair(bool pawnless, int own, int other);

/// Where the positions of each pair of kings begin, and how many there are in all.
struct ReferenceSet {
    std::vector<std::uint64_t> offsets;  ///< by number of the pair
    std::uint64_t total = 0;
};

/// Counts a set of men of the side to move: letters of "pPNBRQ", those of one kind together. A
/// small p is a pawn that may give check.
[[nodiscard]] ReferenceSet reference_set(bool pawnless, const std::string& kinds);
