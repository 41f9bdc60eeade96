// SPDX-License-Identifier: MIT
// From counts of men to a table: the keys of all tables, and counts that the tree has no place for.
#include "tb/key_tree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "support/endgame_files.h"
#include "support/reset_all.h"
#include "tb/catalogue.h"
#include "tb/register.h"

namespace {

class KeyTree : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }
};

TbCounts counts_of(std::string_view name) {
    TbCounts counts{};
    TbParseName(counts, name);
    return counts;
}

TbCounts exchanged(TbCounts counts) {
    std::rotate(counts.begin(), counts.begin() + tb_kinds_a_side, counts.end());
    return counts;
}

/// Every way to have up to `men` men beside the kings.
void add_all_counts(TbCounts& counts, std::size_t kind, std::int32_t men,
                    std::vector<TbCounts>& out) {
    if (kind == counts.size()) {
        out.push_back(counts);
        return;
    }
    for (std::int32_t count = 0; count <= men; ++count) {
        counts[kind] = count;
        add_all_counts(counts, kind + 1, men - count, out);
    }
    counts[kind] = 0;
}

std::vector<TbCounts> all_counts(std::int32_t men) {
    TbCounts counts{};
    std::vector<TbCounts> all;
    add_all_counts(counts, 0, men, all);
    return all;
}

std::int32_t sum_of(const TbCounts& counts) {
    std::int32_t sum = 0;
    for (const std::int32_t count : counts) {
        sum += count;
    }
    return sum;
}

}  // namespace

TEST_F(KeyTree, EveryTableIsFoundByItsMenInBothColours) {
    know_all_tables();
    int equal_sides = 0;
    for (std::size_t row = 1; row < TbCatalogue.size(); ++row) {
        const TbEntry& entry = TbCatalogue[row];
        const TbCounts counts = counts_of(entry.name.data());
        EXPECT_EQ(TbLookupKey(exchanged(counts)), -entry.id) << entry.name.data();
        if (counts == exchanged(counts)) {
            ++equal_sides;
        } else {
            EXPECT_EQ(TbLookupKey(counts), entry.id) << entry.name.data();
        }
    }
    EXPECT_EQ(equal_sides, 5);
}

TEST_F(KeyTree, QueenAgainstTheBareKing) {
    know_all_tables();
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 1, 0, 0, 0, 0, 0}), +5);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 0, 0, 0, 0, 0, 1}), -5);
}

TEST_F(KeyTree, EqualSidesKeepTheKeyOfTheColoursExchanged) {
    know_all_tables();
    EXPECT_EQ(TbLookupKey({1, 0, 0, 0, 0, 1, 0, 0, 0, 0}), -6);
    EXPECT_EQ(TbLookupKey({0, 1, 0, 0, 0, 0, 1, 0, 0, 0}), -8);
    EXPECT_EQ(TbLookupKey({0, 0, 1, 0, 0, 0, 0, 1, 0, 0}), -11);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 1, 0, 0, 0, 0, 1, 0}), -15);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), -20);
}

TEST_F(KeyTree, AllMaterialOfThreeMenHasAKeyButBareKings) {
    know_all_tables();
    std::set<std::int32_t> keys;
    for (const TbCounts& counts : all_counts(3)) {
        keys.insert(TbLookupKey(counts));
    }
    EXPECT_EQ(keys.count(0), 1U);
    EXPECT_EQ(keys.size(), 286U);
    EXPECT_EQ(TbLookupKey({}), 0);
}

TEST_F(KeyTree, IsEmptyAtTheStart) {
    int asked = 0;
    for (const TbCounts& counts : all_counts(3)) {
        EXPECT_EQ(TbLookupKey(counts), 0);
        ++asked;
    }
    EXPECT_EQ(asked, 286);
}

TEST_F(KeyTree, EachMaterialHasAPlaceOfItsOwn) {
    TbKeyTree tree;
    const std::vector<TbCounts> all = all_counts(3);
    std::int32_t key = 1000;
    for (const TbCounts& counts : all) {
        EXPECT_TRUE(tree.insert(++key, counts));
    }
    key = 1000;
    for (const TbCounts& counts : all) {
        EXPECT_EQ(tree.key(counts), ++key);
    }
    EXPECT_EQ(key, 1286);
    tree.clear();
    for (const TbCounts& counts : all) {
        EXPECT_EQ(tree.key(counts), 0);
    }
}

TEST_F(KeyTree, ClearedTreeTakesKeysAgain) {
    TbKeyTree tree;
    const TbCounts counts = {1, 0, 0, 0, 0, 0, 0, 0, 0, 2};
    EXPECT_TRUE(tree.insert(7, counts));
    tree.clear();
    EXPECT_TRUE(tree.insert(-9, counts));
    EXPECT_EQ(tree.key(counts), -9);
}

TEST_F(KeyTree, LaterKeyReplacesTheEarlierOne) {
    const TbCounts counts = {0, 1, 1, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(TbInsertKey(-5, counts));
    EXPECT_TRUE(TbInsertKey(12, counts));
    EXPECT_EQ(TbLookupKey(counts), 12);
}

TEST_F(KeyTree, FourMenAreBeyondTheTree) {
    int asked = 0;
    for (const TbCounts& counts : all_counts(4)) {
        if (sum_of(counts) == 4) {
            EXPECT_FALSE(TbInsertKey(99, counts));
            EXPECT_EQ(TbLookupKey(counts), 0);
            ++asked;
        }
    }
    EXPECT_EQ(asked, 715);
    for (const TbCounts& counts : all_counts(3)) {
        EXPECT_EQ(TbLookupKey(counts), 0);  // nothing was stored elsewhere
    }
}

TEST_F(KeyTree, CountsOutOfRangeAreBeyondTheTreeAtEachLevel) {
    know_all_tables();
    for (std::size_t kind = 0; kind < tb_count_kinds; ++kind) {
        for (const std::int32_t count : {4, 5, 8, 64, INT32_MAX, -1, -2, INT32_MIN}) {
            TbCounts counts{};
            counts[kind] = count;
            EXPECT_EQ(TbLookupKey(counts), 0) << kind << ": " << count;
            EXPECT_FALSE(TbInsertKey(1, counts)) << kind << ": " << count;
        }
        TbCounts counts{};
        counts[kind] = 3;
        EXPECT_NE(TbLookupKey(counts), 0) << kind;
    }
}

TEST_F(KeyTree, BoardAtTheStartOfAGameHasNoKey) {
    know_all_tables();
    EXPECT_EQ(TbLookupKey({8, 2, 2, 2, 1, 8, 2, 2, 2, 1}), 0);
}

TEST_F(KeyTree, NameGivesTheCountsOfBothSides) {
    EXPECT_EQ(counts_of("kk"), TbCounts{});
    EXPECT_EQ(counts_of("kqk"), (TbCounts{0, 0, 0, 0, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(counts_of("kpkp"), (TbCounts{1, 0, 0, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(counts_of("krbkn"), (TbCounts{0, 0, 1, 1, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(counts_of("kkqrb"), (TbCounts{0, 0, 0, 0, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(counts_of("knnnk"), (TbCounts{0, 3, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(KeyTree, NameReplacesCountsOfBefore) {
    TbCounts counts = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    TbParseName(counts, "krk");
    EXPECT_EQ(counts, (TbCounts{0, 0, 0, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(KeyTree, UnknownLetterCountsAsAPawn) {
    EXPECT_EQ(counts_of("kxk"), (TbCounts{1, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(counts_of("kQRk?"), (TbCounts{2, 0, 0, 0, 0, 1, 0, 0, 0, 0}));
}
