// SPDX-License-Identifier: MIT
// Diagnostics of make-move: a promotion without a proper piece. They are cold and far from the hot
// code; the work goes on after them.
#pragma once

#include "board/table.h"

/// A promotion to a man of the right colour that is no queen, rook, bishop or knight.
[[gnu::cold]] void report_unknown_promotion(PieceCode info);

/// A pawn of `side` reached the last rank with an `info` that is not of its colour.
[[gnu::cold]] void report_wrong_promotion(const Table& table, Side side, Square from, Square to,
                                          PieceCode info);
