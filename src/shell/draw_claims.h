// SPDX-License-Identifier: MIT
// When a draw is claimed, and in which words. The claims are texts for the interface: the engine
// keeps no state of a game that is over.
#pragma once

#include "board/table.h"

/// Whether the men from mailbox entry `first_entry` on cannot mate: the sum of their weights is at
/// most a minor piece's. The user's claim starts at entry 1, the computer's at 0.
[[nodiscard]] bool material_is_insufficient(const Table& table, Square first_entry);

/// Counts a move for the fifty-move claim: 0 if a pawn stands on `from` or `to` is not empty, else
/// one more. Called before a user's move is made, after a computer's: see the definition.
void count_fifty(const Table& table, Square from, Square to);

/// The claims before the computer is asked to move by `go`. True: a draw is claimed, no move.
[[nodiscard]] bool claim_before_go(const Table& table);

/// The claims after a user's move, which is made and stored. True: the computer gives no answer.
[[nodiscard]] bool claim_after_user_move(const Table& table);

/// The claims after the computer's searched move, which is made and stored; `score` is the last
/// search score. `opponent` is the side to move now.
void claim_after_computer_move(const Table& table, Side opponent, std::int32_t score);
