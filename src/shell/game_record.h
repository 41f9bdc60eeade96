// SPDX-License-Identifier: MIT
// The positions of the game so far, for the claims of a draw by repetition and for the search. A
// position is its board and the side to move; castling and en passant rights are not compared.
#pragma once

#include <cstddef>
#include <cstdint>

/// Words of a stored board: the mailbox, whole.
inline constexpr std::size_t game_board_words = 120;

/// Index of the last stored position; -1 when the record is empty.
extern std::int32_t game_top;

/// Empties the record.
void game_reset();

/// Appends a position. `board`: 120 words. The record grows as the game does.
void game_store(std::uint32_t side, const std::uint32_t* board);

/// Whether the position stands three times or more in the record: for a position that is stored.
[[nodiscard]] bool game_repeated_thrice(std::uint32_t side, const std::uint32_t* board);

/// Whether it stands twice or more: for a position that is not stored, as in the search.
[[nodiscard]] bool game_repeated_twice(std::uint32_t side, const std::uint32_t* board);
