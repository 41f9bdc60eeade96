// SPDX-License-Identifier: MIT
// Costs of symbols, and counting them along a path.
#include "emd/symbol_costs.h"

#include <cmath>
#include <gtest/gtest.h>

#include "support/packed_file.h"

namespace {

TEST(SymbolCosts, SharesThatArePowersOfTwo) {
    for (unsigned bits = 0; bits <= 31; ++bits) {
        EXPECT_EQ(emd_share_cost(1, std::uint64_t{1} << bits), bits * emd_bit_cost);
        EXPECT_EQ(emd_share_cost(3, std::uint64_t{3} << bits), bits * emd_bit_cost);
    }
    EXPECT_EQ(emd_share_cost(1, std::uint64_t{1} << 60U), 31 * emd_bit_cost);
}

TEST(SymbolCosts, SharesBetweenThem) {
    PackRandom random(10);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t total = 1 + (std::uint64_t{random()} << random_below(random, 30));
        const std::uint64_t count = 1 + (random() % total >> random_below(random, 20));
        const double exact =
            std::log2(static_cast<double>(total)) - std::log2(static_cast<double>(count));
        EXPECT_NEAR(emd_share_cost(count, total), std::fmin(exact, 31) * emd_bit_cost, 1.01)
            << count << " of " << total;
    }
}

TEST(SymbolCosts, GuessOfLiteralsByTheirShare) {
    EmdByteCounts bytes{};
    bytes[7] = 6;
    bytes[9] = 2;
    const EmdCosts costs = emd_guessed_costs(bytes);
    EXPECT_EQ(costs[7], 27U);  // log2(8 / 6) of 64
    EXPECT_EQ(costs[9], 2 * emd_bit_cost);
    EXPECT_EQ(costs[0], 8 * emd_bit_cost);
    EXPECT_EQ(costs[emd_match_symbol(0, 0)], 8 * emd_bit_cost);
    EXPECT_EQ(costs[emd_match_symbol(23, 31)], 8 * emd_bit_cost);
}

TEST(SymbolCosts, MeasuredByShareAndRarity) {
    EmdCounts counts{};
    counts[7] = 512;
    counts[300] = 5;
    counts[301] = 2;
    counts[302] = 1;
    counts[303] = 503;
    const EmdCosts costs = emd_measured_costs(counts);  // one more than all counts make the total
    EXPECT_EQ(costs[7], emd_bit_cost);
    EXPECT_EQ(costs[300], emd_share_cost(5, 1024) + emd_bit_cost);
    EXPECT_EQ(costs[301], 9 * emd_bit_cost + 5 * emd_bit_cost / 2);
    EXPECT_EQ(costs[302], 15 * emd_bit_cost);
    EXPECT_EQ(costs[304], 15 * emd_bit_cost);  // as if it had been there once
    EmdCounts few{};
    few[7] = 3;
    EXPECT_EQ(emd_measured_costs(few)[8], 7 * emd_bit_cost);
}

TEST(SymbolCosts, CodeWordsAndSymbolsWithoutOne) {
    std::vector<std::uint8_t> lengths(emd_symbols);
    lengths[1] = 1;
    lengths[2] = lengths[1023] = 2;
    const EmdCosts costs = emd_code_costs(lengths);
    EXPECT_EQ(costs[1], emd_bit_cost);
    EXPECT_EQ(costs[1023], 2 * emd_bit_cost);
    EXPECT_EQ(costs[3], emd_unreachable);
}

TEST(SymbolCosts, ASymbolAloneCostsNothing) {
    std::vector<std::uint8_t> lengths(emd_symbols);
    lengths[5] = 1;
    const EmdCosts costs = emd_code_costs(lengths);
    EXPECT_EQ(costs[5], 0U);
    EXPECT_EQ(costs[6], emd_unreachable);
}

TEST(SymbolCosts, CountsAlongAPath) {
    const PackBytes block{9, 9, 9, 9, 4, 9};
    EmdPath path;
    path.steps = {{}, {3, 2, 2}, {}, {1, 5, 31}};  // literal, match, literal, match
    EmdCounts counts{};
    counts[9] = 10;
    emd_count_symbols(block, path, counts);
    EXPECT_EQ(counts[9], 11U);
    EXPECT_EQ(counts[4], 1U);
    EXPECT_EQ(counts[emd_match_symbol(2, 2)], 1U);
    EXPECT_EQ(counts[emd_match_symbol(5, 31)], 1U);
}

}  // namespace
