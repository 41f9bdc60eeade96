// SPDX-License-Identifier: MIT
// What tests of the search start from, and small words for moves and positions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "board/move.h"
#include "board/table.h"
#include "search/hash_table.h"

/// The engine as at program start with a small table, a clock that stands still, no limit of time
/// and iteration 1.
void begin_scene();

/// The move of a text such as "e7e8q", as the generators give it. It need not be legal.
[[nodiscard]] Move move_of(const Table& position, std::string_view text);

/// The position after the moves, with the other side to move after each.
[[nodiscard]] Table after(Table position, const std::vector<std::string_view>& moves);

/// The legal moves in the order of the root list, as text.
[[nodiscard]] std::vector<std::string> legal_moves(const Table& position);

/// The legal captures and promotions, as text, in the order of their generator.
[[nodiscard]] std::vector<std::string> legal_captures(const Table& position);

/// What `history_good` and `history_cut` hold for a move.
[[nodiscard]] std::int32_t raised_by(const Move& move);
[[nodiscard]] std::int32_t cut_by(const Move& move);

/// Stores the position in the game record as many times.
void stood_in_game(const Table& position, int times);

/// Puts an entry for the position into the table, of the current age and without a move.
HashEntry& put_entry(const Table& position, std::int32_t depth, HashType type, std::int32_t score);

/// The same with a move.
HashEntry& put_entry_with_move(const Table& position, std::int32_t depth, HashType type,
                               std::int32_t score, const Move& move);

/// Whether the table holds the position.
[[nodiscard]] bool is_stored(const Table& position);

/// The lines of the engine's log in the working directory.
[[nodiscard]] std::vector<std::string> log_lines();
