// SPDX-License-Identifier: MIT
// Where the kings stand, the bishop pair, and the pawns before the kings.
#pragma once

#include "eval/piece_terms.h"

/// Sum of these terms, White's view. In the end game the shelter does not count.
[[nodiscard]] std::int32_t king_terms(const Table& table, const MenCounts& men,
                                      const BishopFacts& bishops, bool endgame);
