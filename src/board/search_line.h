// SPDX-License-Identifier: MIT
// Counters that the board's diagnostics and perft share with the search: the distance from the
// root, the node counter and the triangular table of principal variations.
#pragma once

#include <array>
#include <cstddef>

#include "board/move.h"

/// Rows and columns of the principal-variation table. No node at ply 69 or beyond keeps a line.
inline constexpr std::int32_t line_rows = 70;

/// Distance from the root, 0 at the root. At the limit of 69 plies it can drift upwards, so the
/// tables below are reached through `line_slot` alone.
extern std::int32_t ply;

/// Nodes searched, or leaves counted by perft; wraps in 32 bits.
extern std::uint32_t TotalNodes;

/// Row p, column p: the best move at ply p; the columns behind it: how it goes on.
extern std::array<std::array<Move, line_rows>, line_rows> vetka;

/// For each ply the column just past the end of its line. The last entry serves all plies beyond
/// the table.
extern std::array<std::int32_t, line_rows + 1> length_vetka;

/// A ply as an index of a table with one entry a ply and one for all plies beyond.
[[nodiscard]] inline std::size_t line_slot(std::int32_t at_ply) {
    return static_cast<std::size_t>(at_ply < line_rows ? at_ply : line_rows);
}

/// The length entry of a ply.
[[nodiscard]] inline std::int32_t& line_length(std::int32_t at_ply) {
    return length_vetka[line_slot(at_ply)];
}

/// Makes `move` and the line of the next ply the line of `at_ply`.
void copy_line_up(std::int32_t at_ply, const Move& move);

/// All four as at program start.
void reset_search_line();
