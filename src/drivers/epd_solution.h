// SPDX-License-Identifier: MIT
// Holding a move against the solution words of an EPD line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "board/move.h"
#include "board/table.h"

/// Whether the kept text of a word means `move` on `table`, on which the move has not been made.
/// The length of the text decides how it is read; castling can never be meant.
[[nodiscard]] bool is_solution(std::string_view text, const Table& table, const Move& move);

/// Whether any of the words means the move.
[[nodiscard]] bool is_solved(const std::vector<std::string>& solutions, const Table& table,
                             const Move& move);
