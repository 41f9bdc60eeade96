// SPDX-License-Identifier: MIT
// The terms of everything but the kings: a few fixed patterns, then one loop over each kind of man.
#pragma once

#include "eval/counts.h"
#include "eval/pawn_structure.h"

/// What the loops over the bishops leave for later terms.
struct BishopFacts {
    std::int32_t w_bishops = 0;
    std::int32_t b_bishops = 0;
    Square last_w_bishop = 0;  ///< visited last, from a8 towards h1
    Square last_b_bishop = 0;
};

/// Bishops and rooks shut in by fixed patterns. White's view.
[[nodiscard]] std::int32_t pattern_terms(const Table& table);

/// Knights, bishops, rooks, queens and pawns. White's view; `bishops` is filled on the way.
[[nodiscard]] std::int32_t piece_terms(const Table& table, const MenCounts& men,
                                       const PawnEntry& entry, BishopFacts& bishops);
