// SPDX-License-Identifier: MIT
// Playing a move and taking it back. All incremental state of a position is kept here: mailbox,
// bitboards, king squares, men, rights, en passant state and the three keys.
#pragma once

#include "board/table.h"
#include "board/undo_record.h"

/// Plays a move and fills `undo`. The move is trusted: nothing tests that it is legal or that a
/// man stands on `from`. `side` is not touched; the caller tests the mover's king and flips it.
/// `info` is read only when a pawn arrives on the last rank: the code of the piece promoted to.
/// A promotion without a proper piece is reported on standard output and the work goes on.
void make(Table& table, Square from, Square to, PieceCode info, UndoRecord& undo);

/// The same without a record: for moves that are final or made on a copy.
void make_plain(Table& table, Square from, Square to, PieceCode info);

/// Takes back the `make` that filled `undo`; strictly in reverse order. `side` is not touched.
void unmake(Table& table, const UndoRecord& undo);
