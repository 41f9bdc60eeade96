// SPDX-License-Identifier: MIT
// Known perft counts to the depths of the file: the starting position to depth 6, the others to
// millions of leaves.
#include "perft/perft_counts.h"

namespace {

/// What the short test has counted already.
constexpr std::uint64_t short_leaves = 1000000;

}  // namespace

TEST(PerftCounts, AgreeToTheDepthsOfTheFile) {
    const auto positions = read_perft_positions(perft_file);
    ASSERT_EQ(positions.size(), perft_rows);
    EXPECT_EQ(positions.front().name, "starting position");
    EXPECT_EQ(positions.front().chess,
              (std::vector<std::uint64_t>{20, 400, 8902, 197281, 4865609, 119060324}));
    std::size_t counts = 0;
    for (const PerftPosition& position : positions) {
        const std::size_t done = depths_up_to(position.counted(), short_leaves);
        expect_counts(position, done + 1, position.counted().size());
        counts += position.counted().size() - done;
    }
    EXPECT_EQ(counts, 42U);
}
