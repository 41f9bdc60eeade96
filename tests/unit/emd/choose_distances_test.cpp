// SPDX-License-Identifier: MIT
// The distances at which data repeats itself, and the stretches of it that are looked at.
#include "emd/choose_distances.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "emd/model.h"
#include "emd/symbol_costs.h"
#include "support/packed_file.h"

namespace {

EmdCosts flat_costs() {
    EmdCosts costs;
    costs.fill(8 * emd_bit_cost);
    return costs;
}

EmdDistances choose(const PackBytes& bytes, std::size_t block_size) {
    return emd_choose_distances(emd_stretches(bytes, block_size, emd_most_compared), block_size,
                                flat_costs());
}

bool contains(const EmdDistances& distances, std::uint32_t distance) {
    return std::find(distances.begin(), distances.end(), distance) != distances.end();
}

/// Rising distances within the block, and zeros behind them.
void expect_in_order(const EmdDistances& distances, std::size_t block_size) {
    std::size_t used = 0;
    while (used < emd_slots && distances[used] != 0) {
        EXPECT_LT(distances[used], block_size);
        EXPECT_TRUE(used == 0 || distances[used - 1] < distances[used]);
        ++used;
    }
    EXPECT_TRUE(std::all_of(distances.begin() + static_cast<std::ptrdiff_t>(used), distances.end(),
                            [](std::uint32_t distance) { return distance == 0; }));
}

TEST(ChooseDistances, NoneWhereNothingRepeats) {
    PackBytes bytes(256);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    EXPECT_EQ(choose(bytes, 8192), EmdDistances{});
    EXPECT_EQ(choose({1}, 8192), EmdDistances{});
    EXPECT_EQ(choose(PackBytes(100, 7), 1), EmdDistances{});
}

TEST(ChooseDistances, APeriodIsEnoughAlone) {
    PackRandom random(14);
    for (const std::uint32_t period : {1U, 2U, 13U, 64U, 700U}) {
        EmdDistances expected{};
        expected[0] = period;
        EXPECT_EQ(choose(periodic_bytes(random, 3000, period), 8192), expected) << period;
    }
}

TEST(ChooseDistances, BlocksStandAlone) {
    PackRandom random(15);
    EXPECT_EQ(choose(periodic_bytes(random, 4000, 512), 512), EmdDistances{});
    EXPECT_EQ(choose(periodic_bytes(random, 4000, 511), 512), EmdDistances{});  // a byte a block
    EXPECT_TRUE(contains(choose(periodic_bytes(random, 4000, 500), 512), 500));
}

TEST(ChooseDistances, ThePeriodsOfSeveralPieces) {
    PackRandom random(16);
    PackBytes bytes;
    const std::vector<std::uint32_t> periods{3, 10, 29, 77, 150, 151, 301};
    for (const std::uint32_t period : periods) {
        const PackBytes piece = periodic_bytes(random, 1024, period);
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    const EmdDistances distances = choose(bytes, 1024);
    expect_in_order(distances, 1024);
    for (const std::uint32_t period : periods) {
        EXPECT_TRUE(contains(distances, period)) << period;
    }
}

TEST(ChooseDistances, TheOnesThatSaveMostWhereThereAreTooMany) {
    PackRandom random(17);
    PackBytes bytes;
    // Thirty distances of more than half a block, so that none serves two pieces. The first six
    // have twenty bytes to save, the others far more.
    const auto distance = [](std::uint32_t i) { return 251 + 3 * i; };
    for (std::uint32_t i = 0; i < 30; ++i) {
        PackBytes piece = random_bytes(random, 500, 256);
        const std::size_t length = i < 6 ? 20 : 100;
        std::copy_n(piece.begin() + 20, length, piece.begin() + 20 + distance(i));
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    const EmdDistances distances = choose(bytes, 500);
    expect_in_order(distances, 500);
    for (std::uint32_t i = 0; i < 30; ++i) {
        EXPECT_EQ(contains(distances, distance(i)), i >= 6) << i;
    }
}

TEST(ChooseDistances, LateBytesOfAStretchCount) {
    PackRandom random(18);
    const PackBytes bytes = periodic_bytes(random, 900, 100);
    const EmdStretch stretch{std::span(bytes).first(860), 850};
    EmdDistances expected{};
    expected[0] = 100;
    EXPECT_EQ(emd_choose_distances({&stretch, 1}, 1024, flat_costs()), expected);
}

TEST(ChooseDistances, StretchesOfLittleDataAreItsBlocks) {
    const PackBytes bytes(20000);
    const std::vector<EmdStretch> stretches = emd_stretches(bytes, 8192, emd_most_compared);
    ASSERT_EQ(stretches.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(stretches[i].block.data(), bytes.data() + i * 8192);
        EXPECT_EQ(stretches[i].block.size(), i < 2 ? 8192U : 20000U - 2 * 8192);
        EXPECT_EQ(stretches[i].begin, 0U);
    }
}

TEST(ChooseDistances, StretchesOfMuchDataAreSpreadOverIt) {
    int sizes = 0;
    for (const unsigned shift : {8U, 13U, 16U}) {
        const std::size_t block_size = std::size_t{1} << shift;
        const PackBytes bytes(5000001);
        const std::vector<EmdStretch> stretches =
            emd_stretches(bytes, block_size, emd_most_compared);
        EXPECT_GE(stretches.size(), 8U);
        std::size_t work = 0;
        std::size_t last_at = 0;
        for (const EmdStretch& stretch : stretches) {
            const auto block_at = static_cast<std::size_t>(stretch.block.data() - bytes.data());
            EXPECT_EQ(block_at % block_size, 0U);
            EXPECT_LE(block_at + stretch.block.size(), bytes.size());
            EXPECT_LE(stretch.block.size(), block_size);
            EXPECT_LT(stretch.begin, stretch.block.size());
            EXPECT_LE(block_at + stretch.begin - last_at, bytes.size() / stretches.size() + 1);
            last_at = block_at + stretch.begin;
            work += (stretch.block.size() - stretch.begin) * stretch.block.size();
        }
        EXPECT_GE(last_at, bytes.size() / 10 * 8);
        EXPECT_LE(work, std::size_t{1} << 29U);
        ++sizes;
    }
    EXPECT_EQ(sizes, 3);
}

}  // namespace
