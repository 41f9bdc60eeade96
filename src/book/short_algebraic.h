// SPDX-License-Identifier: MIT
// Moves in short algebraic notation, without the signs for check and capture, as words of two to
// four characters: e4, Nf3, ed5, Nbd2, R1e2.
#pragma once

#include <string_view>

#include "board/move_list.h"
#include "board/table.h"

/// Whether a word is as long as a move of a man; only such a word is looked for.
[[nodiscard]] bool is_as_long_as_a_move(std::string_view word);

/// The two characters of such a word that name the square it goes to.
[[nodiscard]] std::string_view target_of(std::string_view word);

/// The slot of the first move in `moves` (those of the side to move on `table`) that the word can
/// mean; 0 if there is none. `word` must be as long as a move. Whether the move is legal is not
/// asked: of two men that reach the square the first in the list is taken, even if it is pinned.
[[nodiscard]] std::int32_t find_short_algebraic(std::string_view word, const Table& table,
                                                const MoveList& moves);
