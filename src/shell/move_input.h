// SPDX-License-Identifier: MIT
// A word as a move of the user, and the computer's answer.
#pragma once

#include <string_view>

#include "board/move_list.h"
#include "board/table.h"

/// Plays the word if it names a move of `legal` (coordinates and perhaps a promotion letter), with
/// all that follows: record, claims, and the computer's answer unless moves are only recorded.
/// False: it names none, and nothing has changed.
[[nodiscard]] bool play_move_word(Table& table, const MoveList& legal, std::string_view word);

/// Lets the computer move for the side to move and passes the move to the other side.
void let_computer_move(Table& table);
