// SPDX-License-Identifier: MIT
// Arithmetic that wraps in 32 bits.
#include "platform/int32_math.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

}  // namespace

TEST(Int32Math, IsOrdinaryArithmeticWhereNothingWraps) {
    EXPECT_EQ(wrap_add(2, -5), -3);
    EXPECT_EQ(wrap_sub(2, -5), 7);
    EXPECT_EQ(wrap_mul(-3, 7), -21);
    EXPECT_EQ(wrap_mul(0, lowest), 0);
    EXPECT_EQ(wrap_div(-7, 2), -3) << "towards zero";
    EXPECT_EQ(wrap_div(7, -2), -3);
    EXPECT_EQ(wrap_div(-7, -1), 7);
}

TEST(Int32Math, SumsWrap) {
    EXPECT_EQ(wrap_add(highest, 1), lowest);
    EXPECT_EQ(wrap_add(lowest, -1), highest);
    EXPECT_EQ(wrap_add(highest, highest), -2);
    EXPECT_EQ(wrap_add(lowest, lowest), 0);
}

TEST(Int32Math, DifferencesWrap) {
    EXPECT_EQ(wrap_sub(lowest, 1), highest);
    EXPECT_EQ(wrap_sub(highest, -1), lowest);
    EXPECT_EQ(wrap_sub(0, lowest), lowest);
}

// 10 * 999999999 = 9999999990 = 2 * 4294967296 + 1410065398.
TEST(Int32Math, ProductsWrap) {
    EXPECT_EQ(wrap_mul(10, 999999999), 1410065398);
    EXPECT_EQ(wrap_mul(highest, 2), -2);
    EXPECT_EQ(wrap_mul(lowest, -1), lowest);
    EXPECT_EQ(wrap_mul(65536, 65536), 0);
}

TEST(Int32Math, OneQuotientWraps) {
    EXPECT_EQ(wrap_div(lowest, -1), lowest);
    EXPECT_EQ(wrap_div(lowest + 1, -1), highest);
    EXPECT_EQ(wrap_div(lowest, 1), lowest);
}

TEST(Int32Math, WorksAtCompileTime) {
    static_assert(wrap_add(highest, 1) == lowest);
    static_assert(wrap_sub(lowest, 1) == highest);
    static_assert(wrap_mul(lowest, -1) == lowest);
    static_assert(wrap_div(lowest, -1) == lowest);
    SUCCEED();
}
