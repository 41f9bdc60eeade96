// SPDX-License-Identifier: MIT
// Perft over the rows of the data file, for the short and the long test.
#pragma once

#include <gtest/gtest.h>

#include "board/perft.h"
#include "board/search_line.h"
#include "support/perft_positions.h"
#include "support/position.h"

inline const std::string perft_file = CORVANE_TEST_DATA "/perft/positions.txt";

/// Rows of the file and what they hold; a lost or an added row has to be entered here.
inline constexpr std::size_t perft_rows = 34;

/// Leaves that perft counts, from a fresh position, which it must leave as it was.
inline std::uint32_t count_leaves(const std::string& fen, std::size_t depth) {
    Table table = position_from_fen(fen);
    const Table before = table;
    TotalNodes = 0;
    perft(table, static_cast<std::int32_t>(depth), perft_alpha, perft_beta);
    EXPECT_TRUE(table == before) << fen << " after depth " << depth;
    return TotalNodes;
}

/// Compares depths `first` to `last` of a position.
inline void expect_counts(const PerftPosition& position, std::size_t first, std::size_t last) {
    for (std::size_t depth = first; depth <= last; ++depth) {
        EXPECT_EQ(count_leaves(position.fen, depth), position.counted()[depth - 1])
            << position.name << ", depth " << depth;
    }
}
