// SPDX-License-Identifier: MIT
// Halves of all sizes come back from their compressed files as they were.
#include "tbgen/packing.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "support/packed_file.h"

namespace {

Bytes unpacked(const Bytes& file) {
    PackedFile packed(file);
    return packed.is_open() ? packed.unpack() : Bytes();
}

void no_report(double /*share*/) {}

}  // namespace

TEST(Packing, HalvesOfOddSizesComeBack) {
    PackRandom random(12);
    const std::vector<std::size_t> sizes = {1, 8191, 8192, 8193};
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const std::array<Bytes, 2> halves = {periodic_bytes(random, sizes[i], 50),
                                             random_bytes(random, sizes[sizes.size() - 1 - i], 5)};
        const auto packed = pack_halves(halves, i % 3 + 1, no_report);
        ASSERT_TRUE(packed) << sizes[i];
        EXPECT_EQ(unpacked((*packed)[0]), halves[0]) << sizes[i];
        EXPECT_EQ(unpacked((*packed)[1]), halves[1]) << sizes[i];
    }
}

TEST(Packing, BytesThatDoNotPackComeBackToo) {
    PackRandom random(13);
    const std::array<Bytes, 2> halves = {random_bytes(random, 9000, 256), Bytes(9000, 128)};
    const auto packed = pack_halves(halves, 2, no_report);
    ASSERT_TRUE(packed);
    EXPECT_EQ(unpacked((*packed)[0]), halves[0]);
    EXPECT_EQ(unpacked((*packed)[1]), halves[1]);
    EXPECT_LT((*packed)[1].size(), 2000U);
}

TEST(Packing, AnyNumberOfThreadsGivesTheSameFiles) {
    PackRandom random(14);
    const std::array<Bytes, 2> halves = {random_bytes(random, 20000, 3),
                                         periodic_bytes(random, 9000, 700)};
    EXPECT_EQ(pack_halves(halves, 1, no_report), pack_halves(halves, 3, no_report));
}

TEST(Packing, BlocksAreThoseOfTheEngine) {
    const auto packed = pack_halves({Bytes(20000, 1), Bytes(5, 1)}, 1, no_report);
    ASSERT_TRUE(packed);
    PackedFile file((*packed)[0]);
    ASSERT_TRUE(file.is_open());
    EXPECT_EQ(file.decoder().block_size, tb_block_size);
    EXPECT_EQ(file.decoder().block_count, 3);
}

TEST(Packing, ReportsRisingSharesUpToTheWhole) {
    std::vector<double> shares;
    const auto packed = pack_halves({Bytes(20000, 1), Bytes(9000, 1)}, 1,
                                    [&](double share) { shares.push_back(share); });
    ASSERT_TRUE(packed);
    EXPECT_EQ(shares.size(), 5U);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 1);
}
