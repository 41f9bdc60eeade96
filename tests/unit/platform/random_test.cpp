// SPDX-License-Identifier: MIT
// The pseudo-random numbers, with values worked out by hand.
#include "platform/random.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

std::vector<std::int32_t> numbers_after(std::uint32_t seed, std::size_t count) {
    seed_random(seed);
    std::vector<std::int32_t> numbers(count);
    for (std::int32_t& number : numbers) {
        number = next_random();
    }
    return numbers;
}

}  // namespace

// State 0 becomes 2531011 = 38 * 65536 + 40643, so 38 is given. The next state is
// 2531011 * 214013 + 2531011 = 541671788154, less 126 * 4294967296: 505908858, of which the upper
// sixteen bits are 7719. And so on.
TEST(Random, FirstNumbersOfSeed0) {
    EXPECT_EQ(numbers_after(0, 5), (std::vector<std::int32_t>{38, 7719, 21238, 2437, 8855}));
}

// State 1: 214013 + 2531011 = 2745024 = 41 * 65536 + 58048. The next state is 3357800067, whose
// upper sixteen bits are 51235: without the highest one 18467.
TEST(Random, FirstNumbersOfSeed1) {
    EXPECT_EQ(numbers_after(1, 5), (std::vector<std::int32_t>{41, 18467, 6334, 26500, 19169}));
}

// 4294967295 * 214013 is -214013 in 32 bits; -214013 + 2531011 = 2316998 = 35 * 65536 + 23438.
TEST(Random, StateWrapsIn32Bits) {
    EXPECT_EQ(numbers_after(4294967295U, 2), (std::vector<std::int32_t>{35, 29739}));
}

TEST(Random, SeedOfTodaysCalendarCountsWhole) {
    EXPECT_EQ(numbers_after(1700000000U, 3), (std::vector<std::int32_t>{28462, 1027, 22663}));
    EXPECT_NE(numbers_after(1700000000U + 65536U, 3), numbers_after(1700000000U, 3));
}

TEST(Random, SameSeedGivesTheSameNumbers) {
    EXPECT_EQ(numbers_after(77, 1000), numbers_after(77, 1000));
    EXPECT_NE(numbers_after(77, 1000), numbers_after(78, 1000));
}

TEST(Random, NumbersFillTheirRangeEvenly) {
    constexpr std::size_t count = 65536;
    constexpr std::size_t parts = 16;
    constexpr std::size_t part_width = 32768 / parts;
    std::vector<int> in_part(parts);
    for (const std::int32_t number : numbers_after(5, count)) {
        ASSERT_GE(number, 0);
        ASSERT_LE(number, 32767);
        ++in_part[static_cast<std::size_t>(number) / part_width];
    }
    for (const int hits : in_part) {
        EXPECT_NEAR(hits, count / parts, 300);
    }
}
