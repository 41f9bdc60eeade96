// SPDX-License-Identifier: MIT
// Tables of canonical codes: which lengths make a code, where the entries lie, and symbols decoded
// by them against a search of the list of words.
#include "tb/code_table.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

#include "support/slow_block.h"

namespace {

using Lengths = std::vector<std::uint8_t>;
using Entries = std::vector<std::int16_t>;

constexpr std::int16_t old_entry = -1234;  // a table need not be empty before

Entries room_for(std::size_t symbols, unsigned root_bits) {
    return Entries((std::size_t{1} << root_bits) + 2 * symbols, old_entry);
}

/// Whether the lengths make a code, for a small root and a large one alike.
bool makes_code(const Lengths& lengths) {
    Entries small = room_for(lengths.size(), 2);
    Entries large = room_for(lengths.size(), 13);
    const bool made = tb_build_code_table(lengths, 2, small);
    EXPECT_EQ(tb_build_code_table(lengths, 13, large), made);
    return made;
}

/// Lengths of a random complete code: leaves are split, and hung on random symbols.
Lengths random_lengths(std::mt19937& random, std::size_t symbols, std::size_t words) {
    Lengths lengths{0};
    while (lengths.size() < words) {
        // Every other code is a deep one: its last leaf is split more often than the others.
        const std::size_t leaf =
            words % 2 == 0 && random() % 4 != 0 ? lengths.size() - 1 : random() % lengths.size();
        if (lengths[leaf] < tb_longest_code) {
            lengths.push_back(++lengths[leaf]);
        }
    }
    lengths.resize(symbols, 0);
    std::shuffle(lengths.begin(), lengths.end(), random);
    return lengths;
}

/// Decodes random bits by the table and by the list of words.
template <unsigned RootBits>
void expect_same_symbols(const Lengths& lengths, std::mt19937& random) {
    Entries table = room_for(lengths.size(), RootBits);
    ASSERT_TRUE(tb_build_code_table(lengths, RootBits, table));
    std::vector<std::uint8_t> bytes(200);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    const SlowCode code(lengths);
    TbBitReader reader(bytes);
    SlowBits slow(bytes);
    for (int i = 0; i < 500 && !slow.overran(); ++i) {
        ASSERT_EQ(tb_decode_symbol<RootBits>(reader, table.data()), code.symbol(slow));
        ASSERT_EQ(reader.overran(), slow.overran());
    }
    ASSERT_EQ(reader.take(16), slow.number(16)) << "as many bits were taken";
}

}  // namespace

TEST(CodeTable, WithoutSymbolsEveryLookUpGivesSymbolZeroAtNoCost) {
    Entries table = room_for(64, 8);
    ASSERT_TRUE(tb_build_code_table(Lengths(64, 0), 8, table));
    EXPECT_EQ(table, Entries(table.size(), 0));
    const std::array<std::uint8_t, 2> bytes{0xff, 0xff};
    TbBitReader reader(bytes);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(tb_decode_symbol<8>(reader, table.data()), 0U);
    }
    EXPECT_EQ(reader.take(16), 0xffffU);
}

TEST(CodeTable, OneSymbolOfLengthOneCostsNothing) {
    for (const std::size_t symbol : {0U, 1U, 255U, 256U, 1023U}) {
        Lengths lengths(1024, 0);
        lengths[symbol] = 1;
        Entries table = room_for(1024, 13);
        ASSERT_TRUE(tb_build_code_table(lengths, 13, table));
        EXPECT_EQ(std::count(table.begin(), table.begin() + 8192, symbol * 32), 8192);
        const std::array<std::uint8_t, 2> bytes{0xa5, 0x5a};
        TbBitReader reader(bytes);
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(tb_decode_symbol<13>(reader, table.data()), symbol);
        }
        EXPECT_EQ(reader.take(16), 0xa55aU);
    }
}

TEST(CodeTable, OneSymbolOfAnotherLengthIsRefused) {
    for (std::uint8_t length = 2; length <= tb_longest_code; ++length) {
        EXPECT_FALSE(makes_code({0, length, 0})) << +length;
    }
    EXPECT_TRUE(makes_code({0, 1, 0}));
}

TEST(CodeTable, TwoSymbolsShareTheRoot) {
    Entries table = room_for(4, 3);
    ASSERT_TRUE(tb_build_code_table(Lengths{0, 1, 0, 1}, 3, table));
    EXPECT_EQ(Entries(table.begin(), table.begin() + 8), (Entries{33, 33, 33, 33, 97, 97, 97, 97}));
}

TEST(CodeTable, WordsGoByLengthAndThenBySymbol) {
    Entries table = room_for(5, 3);
    ASSERT_TRUE(tb_build_code_table(Lengths{3, 2, 0, 1, 3}, 3, table));
    const std::int16_t word_0 = 3 * 32 + 1;
    const std::int16_t word_10 = 1 * 32 + 2;
    const std::int16_t word_110 = 0 * 32 + 3;
    const std::int16_t word_111 = 4 * 32 + 3;
    EXPECT_EQ(Entries(table.begin(), table.begin() + 8),
              (Entries{word_0, word_0, word_0, word_0, word_10, word_10, word_110, word_111}));
}

TEST(CodeTable, WordsLongerThanTheRootHangOnPairs) {
    Entries table = room_for(5, 2);
    ASSERT_TRUE(tb_build_code_table(Lengths{1, 2, 3, 4, 4}, 2, table));
    EXPECT_EQ(Entries(table.begin(), table.begin() + 3), (Entries{1, 1, 34}));
    const int first_pair = -table[3];
    ASSERT_GE(first_pair, 4);
    const auto first = static_cast<std::size_t>(first_pair);
    EXPECT_EQ(table.at(first), 2) << "the symbol alone, without its length";
    const int second_pair = -table.at(first + 1);
    ASSERT_GE(second_pair, 4);
    const auto second = static_cast<std::size_t>(second_pair);
    EXPECT_NE(second, first);
    EXPECT_EQ(table.at(second), 3);
    EXPECT_EQ(table.at(second + 1), 4);
}

/// Words of 1, 2, ... 31 bits, and a second one of 31: a one at the end of ever more ones.
TEST(CodeTable, WordsOfEveryLengthUpToTheLongest) {
    Lengths lengths(32);
    std::iota(lengths.begin(), lengths.end(), std::uint8_t{1});
    lengths[31] = 31;
    Entries table = room_for(32, 13);
    ASSERT_TRUE(tb_build_code_table(lengths, 13, table));
    for (unsigned symbol = 0; symbol < 32; ++symbol) {
        const std::uint32_t length = lengths[symbol];
        const std::uint32_t word = symbol == 0 ? 0 : 0xffffffffU << (32 - symbol);  // then zeros
        const std::array<std::uint8_t, 5> bytes{
            static_cast<std::uint8_t>(word >> 24U), static_cast<std::uint8_t>(word >> 16U),
            static_cast<std::uint8_t>(word >> 8U), static_cast<std::uint8_t>(word), 0};
        TbBitReader reader(bytes);
        EXPECT_EQ(tb_decode_symbol<13>(reader, table.data()), symbol);
        for (std::uint32_t bit = length; bit < 40; ++bit) {
            EXPECT_FALSE(reader.overran());
            reader.skip(1);
        }
        EXPECT_FALSE(reader.overran());
        reader.skip(1);
        EXPECT_TRUE(reader.overran()) << "the word took " << length << " bits";
    }
}

TEST(CodeTable, LengthsBeyondTheLongestAreRefused) {
    for (const std::uint8_t length : Lengths{32, 33, 64, 255}) {
        EXPECT_FALSE(makes_code({1, 2, 2, length})) << +length;
        EXPECT_FALSE(makes_code({length})) << +length;
        EXPECT_FALSE(makes_code({1, length, length})) << +length;
    }
}

TEST(CodeTable, PatternsLeftOverOrUsedTwiceAreRefused) {
    EXPECT_TRUE(makes_code({1, 1}));
    EXPECT_FALSE(makes_code({1, 2}));
    EXPECT_FALSE(makes_code({2, 2}));
    EXPECT_FALSE(makes_code({2, 2, 2}));
    EXPECT_FALSE(makes_code({1, 1, 1}));
    EXPECT_FALSE(makes_code({1, 1, 1, 1}));
    EXPECT_FALSE(makes_code({1, 1, 2, 2}));
    EXPECT_FALSE(makes_code({1, 3, 3}));
    EXPECT_FALSE(makes_code({31, 31}));
    EXPECT_FALSE(makes_code(Lengths(8, 2)));
}

/// A complete code with a word too many or too few, of any length.
TEST(CodeTable, OneWordMoreOrLessIsRefused) {
    Lengths complete(32);
    std::iota(complete.begin(), complete.end(), std::uint8_t{1});
    complete[31] = 31;
    ASSERT_TRUE(makes_code(complete));
    int cases = 0;
    for (std::size_t i = 0; i < complete.size(); ++i, ++cases) {
        Lengths lengths = complete;
        lengths.push_back(complete[i]);
        EXPECT_FALSE(makes_code(lengths)) << i;
        lengths = complete;
        lengths[i] = 0;
        EXPECT_FALSE(makes_code(lengths)) << i;
    }
    EXPECT_EQ(cases, 32);
}

/// As many pairs as a code can have: all but twelve of 1024 words hang on one entry of the root.
TEST(CodeTable, RoomForPairsIsEnoughForAllSymbols) {
    Lengths lengths;
    for (std::uint8_t length = 1; length <= 12; ++length) {
        lengths.push_back(length);
    }
    const std::size_t below = 1024 - lengths.size();  // 1012 leaves below a node at depth 12
    lengths.insert(lengths.end(), 1024 - below, 21);
    lengths.insert(lengths.end(), 2 * below - 1024, 22);
    ASSERT_EQ(lengths.size(), 1024U);
    std::mt19937 random(3);
    expect_same_symbols<13>(lengths, random);
    std::reverse(lengths.begin(), lengths.end());
    expect_same_symbols<13>(lengths, random);
}

TEST(CodeTable, TableWithoutRoomForPairsIsRefused) {
    const Lengths lengths{1, 2, 3, 4, 4};
    for (std::size_t pairs = 0; pairs < 2; ++pairs) {
        Entries table(4 + 2 * pairs, old_entry);
        EXPECT_FALSE(tb_build_code_table(lengths, 2, table)) << pairs;
    }
    Entries table(8, old_entry);
    EXPECT_TRUE(tb_build_code_table(lengths, 2, table));
}

TEST(CodeTable, LastSymbolWithTheLongestWordOfTheRoot) {
    Lengths lengths(1024, 0);
    for (std::uint8_t length = 1; length <= 13; ++length) {
        lengths[length] = length;
    }
    lengths[1023] = 13;
    Entries table = room_for(1024, 13);
    ASSERT_TRUE(tb_build_code_table(lengths, 13, table));
    EXPECT_EQ(table[8191], 1023 * 32 + 13);
    EXPECT_EQ(table[8190], 13 * 32 + 13);
    EXPECT_EQ(table[0], 1 * 32 + 1);
    EXPECT_EQ(std::count_if(table.begin(), table.end(), [](auto entry) { return entry < 0; }), 0);
}

TEST(CodeTable, RandomCodesAsByTheListOfWords) {
    int codes = 0;
    for (std::uint32_t seed = 0; seed < 400; ++seed, ++codes) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        expect_same_symbols<8>(random_lengths(random, 64, 1 + random() % 64), random);
        expect_same_symbols<13>(random_lengths(random, 1024, 2 + random() % 1023), random);
    }
    EXPECT_EQ(codes, 400);
}
