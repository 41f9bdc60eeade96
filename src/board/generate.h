// SPDX-License-Identifier: MIT
// Move generation. All generators fill the list that `cur_moves` names, from count 0. All but
// gen_legal are pseudo-legal: a move may leave the own king in check, which the caller finds out
// after making it. The order of the moves is part of the design: it settles ties between scores.
#pragma once

#include "board/table.h"

/// The square of the man being generated. The line helpers read its colour from the mailbox.
extern Square gen_from;

/// All pseudo-legal moves. `side`: 0 is White, any other value Black.
void gen_all(const Table& table, Side side);

/// For a side in check: moves that can block the line, capture the checker or move the king, and
/// some that do neither. No castling.
void gen_evasions(const Table& table, Side side);

/// Captures, en passant captures and all promotions.
void gen_captures(const Table& table, Side side);

/// The legal moves: each move of gen_all is tried on a copy, and an illegal one is replaced by the
/// last of the list.
void gen_legal(const Table& table, Side side);

/// Adds the move from `gen_from` to `to` with posInfo 0. A full list takes no more moves.
void add_move(Square to);
