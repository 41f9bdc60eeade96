// SPDX-License-Identifier: MIT
// Making and taking back moves once more, in the plainest way: a rule a line, men looked up in a
// table, squares as numbers. It also serves boards whose mailbox and bitboards disagree. Slow; for
// comparing. Only the words of a position and the numbers of its keys are the engine's.
#pragma once

#include <string>
#include <vector>

#include "board/move.h"
#include "board/table.h"
#include "board/undo_record.h"

/// The first lines of the reports that were printed, in order.
using Reports = std::vector<std::string>;

/// Plays a move with a record.
[[nodiscard]] UndoRecord reference_make(Table& table, const Move& move, Reports& reports);

/// Plays a move for good.
void reference_make_plain(Table& table, const Move& move, Reports& reports);

/// Takes back the move of a record.
void reference_unmake(Table& table, const UndoRecord& undo);
