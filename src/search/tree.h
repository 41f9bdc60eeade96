// SPDX-License-Identifier: MIT
// A helper of the tree search; the searching functions themselves are operations of Table.
#pragma once

#include "board/table.h"

/// Knights, bishops, rooks and queens of a side.
[[nodiscard]] std::int32_t count_pieces(const Table& position, Side side);
