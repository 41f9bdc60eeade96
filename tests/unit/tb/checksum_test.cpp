// SPDX-License-Identifier: MIT
// The checksum of compressed table files against one that works bit by bit, and against numbers
// that another program worked out.
#include "tb/checksum.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint32_t polynomial = 0xEDB88320;

std::vector<std::uint8_t> bytes_of(std::string_view text) {
    return {text.begin(), text.end()};
}

/// Bit by bit, without a table; the polynomial goes in where the bit shifted out is `when`.
std::uint32_t slow_checksum(std::span<const std::uint8_t> bytes, std::uint32_t when) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) == when ? (value >> 1U) ^ polynomial : value >> 1U;
        }
    }
    return value;
}

}  // namespace

TEST(Checksum, OfNothingIsZero) {
    EXPECT_EQ(tb_checksum({}), 0U);
}

TEST(Checksum, KnownValues) {
    EXPECT_EQ(tb_checksum(bytes_of("123456789")), 0x20D421B6U);
    EXPECT_EQ(tb_checksum(bytes_of("a")), 0x17B7BE43U);
    EXPECT_EQ(tb_checksum(std::array<std::uint8_t, 1>{0}), 0x2D02EF8DU);
}

TEST(Checksum, DiffersFromTheCommonOneOfTheSamePolynomial) {
    const auto digits = bytes_of("123456789");
    EXPECT_EQ(slow_checksum(digits, 1), 0x2DFD2D88U);  // the common one, from 0 and not inverted
    EXPECT_NE(tb_checksum(digits), 0x2DFD2D88U);
    EXPECT_NE(tb_checksum(digits), 0xCBF43926U);  // from all ones and inverted
}

TEST(Checksum, EveryByteAsBitByBit) {
    int bytes = 0;
    for (unsigned value = 0; value < 256; ++value, ++bytes) {
        const std::array<std::uint8_t, 1> one{static_cast<std::uint8_t>(value)};
        EXPECT_EQ(tb_checksum(one), slow_checksum(one, 0)) << value;
    }
    EXPECT_EQ(bytes, 256);
}

TEST(Checksum, BytesOfEveryLengthAsBitByBit) {
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes;
    for (int length = 0; length < 1000; ++length) {
        ASSERT_EQ(tb_checksum(bytes), slow_checksum(bytes, 0)) << length;
        bytes.push_back(static_cast<std::uint8_t>(random()));
    }
    EXPECT_EQ(bytes.size(), 1000U);
}

TEST(Checksum, OrderOfBytesAndLeadingZerosCount) {
    EXPECT_NE(tb_checksum(bytes_of("ab")), tb_checksum(bytes_of("ba")));
    EXPECT_NE(tb_checksum(std::array<std::uint8_t, 2>{0, 'a'}), tb_checksum(bytes_of("a")));
}
