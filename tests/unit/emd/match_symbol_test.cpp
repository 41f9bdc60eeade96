// SPDX-License-Identifier: MIT
// Classes of match lengths and their symbols.
#include "emd/match_symbol.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace {

TEST(MatchSymbol, ClassesFollowEachOther) {
    std::uint32_t next = 1;
    for (unsigned length_class = 0; length_class < emd_length_classes; ++length_class) {
        EXPECT_EQ(emd_shortest_of(length_class), next) << length_class;
        next = emd_longest_of(length_class) + 1;
        EXPECT_EQ(emd_class_of(emd_shortest_of(length_class)), length_class);
        EXPECT_EQ(emd_class_of(emd_longest_of(length_class)), length_class);
    }
    EXPECT_EQ(next, 262158U);
}

TEST(MatchSymbol, FurtherBits) {
    EXPECT_EQ(emd_extra_bits(0), 0U);
    EXPECT_EQ(emd_extra_bits(14), 0U);
    EXPECT_EQ(emd_extra_bits(15), 1U);
    EXPECT_EQ(emd_extra_bits(31), 17U);
    EXPECT_EQ(emd_shortest_of(15), 16U);
    EXPECT_EQ(emd_shortest_of(16), 18U);
    EXPECT_EQ(emd_shortest_of(31), 131086U);
}

TEST(MatchSymbol, SymbolsOfSlotsAndClasses) {
    EXPECT_EQ(emd_match_symbol(0, 0), 256U);
    EXPECT_EQ(emd_match_symbol(1, 0), 288U);
    EXPECT_EQ(emd_match_symbol(23, 31), 1023U);
    EXPECT_EQ(emd_symbols, 1024U);
}

}  // namespace
