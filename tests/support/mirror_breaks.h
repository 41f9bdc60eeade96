// SPDX-License-Identifier: MIT
// Positions whose score is not that of the same position with the colours exchanged.
#pragma once

#include "board/table.h"

/// Whether a bishop of each side is trapped by a pawn in the enemy's corner. The evaluation counts
/// one such bishop only and looks for Black's first.
[[nodiscard]] inline bool both_sides_have_a_trapped_bishop(const Table& table) {
    const bool black_trapped = (table.at(h2) == b_bishop && table.at(g3) == w_pawn) ||
                               (table.at(a2) == b_bishop && table.at(b3) == w_pawn);
    const bool white_trapped = (table.at(h7) == w_bishop && table.at(g6) == b_pawn) ||
                               (table.at(a7) == w_bishop && table.at(b6) == b_pawn);
    return black_trapped && white_trapped;
}
