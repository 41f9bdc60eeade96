// SPDX-License-Identifier: MIT
// One line of an EPD file: the position that it sets up and the moves that it calls best. How a
// move is held against them stands in epd_solution.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "board/table.h"

/// Shorter lines hold no position.
inline constexpr std::size_t shortest_epd_line = 8;

/// Clears `table` and sets up the position of a line: board, side and en passant pawn. Castling
/// rights are not read, so none is left; the keys are not yet those of the position. Without a side
/// field Black is to move. What clearing leaves stays: the square of a king that the line does not
/// place is the one that `table` had.
void set_epd_position(std::string_view line, Table& table);

/// The words behind the first "bm " of a line, to its end, each without the characters that no move
/// here is told by; a '=' is kept twice. Words of the operations that follow are among them.
[[nodiscard]] std::vector<std::string> epd_solutions(std::string_view line);
