// SPDX-License-Identifier: MIT
// Numbers of all widths from a row of bytes, against a reader that takes bit by bit, and what the
// reader knows of the end.
#include "tb/bit_reader.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "support/slow_block.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes random_bytes(std::mt19937& random, std::size_t count) {
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

}  // namespace

TEST(BitReader, TakesTheHighestBitsFirst) {
    const Bytes bytes{0b1011'0100, 0x5a, 0xc3};
    TbBitReader reader(bytes);
    EXPECT_EQ(reader.take(1), 1U);
    EXPECT_EQ(reader.take(3), 0b011U);
    EXPECT_EQ(reader.take(8), 0x45U);
    EXPECT_EQ(reader.take(12), 0xac3U);
    EXPECT_FALSE(reader.overran());
}

TEST(BitReader, WidthOfZeroTakesNothing) {
    const Bytes bytes{0x80};
    TbBitReader reader(bytes);
    EXPECT_EQ(reader.take(0), 0U);
    EXPECT_EQ(reader.take_wide(0), 0U);
    reader.skip(0);
    EXPECT_EQ(reader.take(1), 1U);
}

TEST(BitReader, PeekTakesNothing) {
    const Bytes bytes{0x12, 0x34, 0x56};
    TbBitReader reader(bytes);
    EXPECT_EQ(reader.peek(16), 0x1234U);
    EXPECT_EQ(reader.peek(1), 0U);
    EXPECT_EQ(reader.peek(4), 0x1U);
    reader.skip(4);
    EXPECT_EQ(reader.peek(13), 0x2345U >> 3U);
    EXPECT_EQ(reader.take(16), 0x2345U);
}

TEST(BitReader, EveryWidthFromEveryBit) {
    std::mt19937 random(2);
    const Bytes bytes = random_bytes(random, 12);
    int cases = 0;
    for (unsigned from = 0; from < 64; ++from) {
        for (unsigned width = 0; width <= 32; ++width, ++cases) {
            TbBitReader reader(bytes);
            SlowBits slow(bytes);
            for (unsigned i = 0; i < from; ++i) {
                ASSERT_EQ(reader.take(1), slow.bit());
            }
            ASSERT_EQ(reader.take_wide(width), slow.number(width)) << from << ' ' << width;
            ASSERT_EQ(reader.take(16), slow.number(16)) << from << ' ' << width;
        }
    }
    EXPECT_EQ(cases, 64 * 33);
}

TEST(BitReader, LongRowsOfMixedWidths) {
    int numbers = 0;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        const Bytes bytes = random_bytes(random, random() % 300);
        TbBitReader reader(bytes);
        SlowBits slow(bytes);
        while (!slow.overran()) {
            const auto width = static_cast<unsigned>(random() % 17);
            const std::uint32_t expected = slow.number(width);
            if (width > 0) {
                ASSERT_EQ(reader.peek(width), expected) << "seed " << seed;
            }
            ASSERT_EQ(reader.take(width), expected) << "seed " << seed;
            ASSERT_EQ(reader.overran(), slow.overran()) << "seed " << seed;
            ++numbers;
        }
    }
    EXPECT_GT(numbers, 20000);
}

TEST(BitReader, WideNumbersComeHighPartFirst) {
    const Bytes bytes{0x12, 0x34, 0xd6, 0x78, 0x9a};
    EXPECT_EQ(TbBitReader(bytes).take_wide(16), 0x1234U);
    EXPECT_EQ(TbBitReader(bytes).take_wide(17), 0x1234U << 1U | 1U);
    EXPECT_EQ(TbBitReader(bytes).take_wide(24), 0x1234d6U);
    EXPECT_EQ(TbBitReader(bytes).take_wide(31), 0x1234d678U >> 1U);
    EXPECT_EQ(TbBitReader(bytes).take_wide(32), 0x1234d678U);
    TbBitReader reader(bytes);
    EXPECT_EQ(reader.take_wide(28), 0x1234d67U);
    EXPECT_EQ(reader.take(12), 0x89aU);
}

/// The bytes behind are not looked at: they are no part of the row.
TEST(BitReader, BehindTheEndComeZeros) {
    std::array<std::uint8_t, 32> memory{};
    memory.fill(0xff);
    int sizes = 0;
    for (std::size_t size = 0; size <= 20; ++size, ++sizes) {
        TbBitReader reader({memory.data(), size});
        for (std::size_t i = 0; i < size; ++i) {
            ASSERT_EQ(reader.take(8), 0xffU) << size;
        }
        ASSERT_EQ(reader.take(16), 0U) << size;
        ASSERT_EQ(reader.take_wide(32), 0U) << size;
    }
    EXPECT_EQ(sizes, 21);
}

TEST(BitReader, OverrunsWithTheFirstBitBehindTheEnd) {
    int sizes = 0;
    for (std::size_t size = 0; size <= 20; ++size, ++sizes) {
        const Bytes bytes(size, 0x55);
        TbBitReader reader(bytes);
        ASSERT_FALSE(reader.overran()) << size;
        for (std::size_t bit = 0; bit < 8 * size; ++bit) {
            reader.skip(1);
            ASSERT_FALSE(reader.overran()) << size << ' ' << bit;
        }
        ASSERT_EQ(reader.peek(16), 0U);
        ASSERT_FALSE(reader.overran()) << "a look is not yet a bit taken";
        reader.skip(0);
        ASSERT_FALSE(reader.overran()) << size;
        reader.skip(1);
        ASSERT_TRUE(reader.overran()) << size;
        reader.skip(16);
        ASSERT_TRUE(reader.overran()) << size;
    }
    EXPECT_EQ(sizes, 21);
}

TEST(BitReader, OverrunsInTheMiddleOfANumber) {
    const Bytes bytes{0xab, 0xcd, 0xef};
    TbBitReader reader(bytes);
    EXPECT_EQ(reader.take(16), 0xabcdU);
    EXPECT_EQ(reader.take(16), 0xef00U);
    EXPECT_TRUE(reader.overran());
    TbBitReader wide(bytes);
    EXPECT_EQ(wide.take_wide(24), 0xabcdefU);
    EXPECT_FALSE(wide.overran());
}
