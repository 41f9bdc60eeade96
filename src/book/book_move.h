// SPDX-License-Identifier: MIT
// What the opening book says to the game so far. The text of the game is compared with the
// beginning of each line, so a transposition is not recognised; the moves are trusted, not tested.
#pragma once

#include <array>
#include <cstdint>

#include "board/move.h"

/// Different moves that one lookup can tell apart; with the last of them it ends.
inline constexpr std::size_t book_candidates = 47;

/// Candidates of the last lookup, in the order in which the lines give them, with posInfo 0.
extern std::array<Move, book_candidates> book_moves;

/// How many lines gave each candidate.
extern std::array<std::int32_t, book_candidates> book_weights;

/// A move for `engine.root_side` after `engine.game_plies` plies of `engine.game_line`: prints the
/// candidates with their weights and draws one of them, each as likely as its weight. Without a
/// candidate: three zeroes, and `engine.book_out` is set.
[[nodiscard]] Move BookMove();

/// Prints the first candidate of the other side's book, that of the user, or nothing.
void BookHint();

/// Looks for a move among candidates 0 to `last`. If it is there its weight grows by 1 and the
/// result is 0; otherwise the result is 1: the move is new.
[[nodiscard]] std::int32_t BookSeen(std::int32_t last, Square from, Square to);

/// No candidates, as at program start.
void reset_book_move();
