// SPDX-License-Identifier: MIT
// Perft: the count of leaf positions of the legal move tree, the board's self-test.
#pragma once

#include "board/table.h"

/// Bounds of the top call. They are passed down swapped and negated and do nothing else.
inline constexpr std::int32_t perft_alpha = -700000;
inline constexpr std::int32_t perft_beta = 700000;

/// Adds the leaves of `table` at `depth` to `TotalNodes`; every leaf is made and taken back. The
/// result is a score that means nothing to the count. The position is as before afterwards, unless
/// an en passant capture that is counted although it exposes the king lets that king be taken.
std::int32_t perft(Table& table, std::int32_t depth, std::int32_t alpha, std::int32_t beta);

/// Runs and prints depths 1 to `deepest` on a position: depth, leaves, running total, milliseconds
/// since the call and leaves of the depth in each of them.
void perft_depths(Table& table, std::int32_t deepest);
