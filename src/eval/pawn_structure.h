// SPDX-License-Identifier: MIT
// What the pawns alone tell: a score and facts about each file, which stay while no pawn moves.
#pragma once

#include <array>
#include <cstddef>

#include "board/table.h"

/// One word a file: 1 is the a-file, 8 the h-file, 0 and 9 are guards.
using FileCounts = std::array<std::int32_t, 10>;

/// The pawns of a position: 42 words.
struct PawnEntry {
    std::uint32_t key;        ///< `pawn_hash` of the structure
    FileCounts w_count;       ///< white pawns on each file
    FileCounts b_count;       ///< black pawns on each file
    std::int32_t pawn_score;  ///< White's view, pawn = 72
    FileCounts w_rear;        ///< row of the white pawn nearest to the first rank; -1 if none
    FileCounts b_rear;        ///< row of the black pawn nearest to the eighth rank; 8 if none
};

/// Fills an entry from the pawns of `table`; `key` becomes its `pawn_hash`.
void fill_pawn_entry(const Table& table, PawnEntry& entry);
