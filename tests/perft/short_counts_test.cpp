// SPDX-License-Identifier: MIT
// Known perft counts as far as a position has at most a million leaves.
#include "perft/perft_counts.h"

namespace {

constexpr std::uint64_t most_leaves = 1000000;

}  // namespace

TEST(PerftCounts, AgreeUpToAMillionLeaves) {
    const auto positions = read_perft_positions(perft_file);
    ASSERT_EQ(positions.size(), perft_rows);
    std::size_t counts = 0;
    for (const PerftPosition& position : positions) {
        const std::size_t depths = depths_up_to(position.counted(), most_leaves);
        ASSERT_GT(depths, 0U) << position.name;
        expect_counts(position, 1, depths);
        counts += depths;
    }
    EXPECT_EQ(counts, 165U);
}
