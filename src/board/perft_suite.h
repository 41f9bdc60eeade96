// SPDX-License-Identifier: MIT
// Perft over the lines of a test file. Counts are printed, not compared with anything.
#pragma once

#include <string>
#include <string_view>

#include "board/table.h"

/// Sets up the position of a test line on a `Table` of its own: board, side and castling rights up
/// to the first "-" of the line. `Kol_figur` and the keys stay 0; perft reads neither.
[[nodiscard]] Table perft_position(std::string_view line);

/// Prints the line and the counts of depths 1 to 6. `flag` has no effect.
void perft_line(const std::string& line, std::int32_t flag);

/// `perft_line` for every line of the file that has 7 characters or more.
void perft_test(const std::string& file_name, std::int32_t flag);
