// SPDX-License-Identifier: MIT
// The rows of the catalogue: their names in order, the sizes that are known, and a numbering for
// each half.
#include "tb/catalogue.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/reset_all.h"
#include "support/table_boards.h"
#include "tb/index/enumeration.h"
#include "tb/index/half_index.h"
#include "tb/index/index_family.h"

namespace {

const std::string kinds = "pnbrq";  // from the weakest to the strongest

/// All ways to name so many men, the strongest first, in the order of the alphabet above.
std::vector<std::string> men_of_a_side(std::size_t count) {
    std::vector<std::string> sides = {""};
    for (std::size_t man = 0; man < count; ++man) {
        std::vector<std::string> longer;
        for (const std::string& side : sides) {
            for (const char kind : kinds) {
                if (side.empty() || kinds.find(kind) <= kinds.find(side.back())) {
                    longer.push_back(side + kind);
                }
            }
        }
        sides = longer;
    }
    return sides;
}

/// Tables with so many men beside the kings: first those with men on both sides, then the others.
/// Equal numbers of men are named once, the stronger side first.
std::vector<std::string> tables_of(std::size_t men) {
    std::vector<std::string> names;
    for (const std::string& first : men_of_a_side(men - 1)) {
        for (const char kind : first.empty() ? "" : kinds) {
            if (men > 2 || kinds.find(kind) <= kinds.find(first)) {
                names.push_back("k" + first + "k" + kind);
            }
        }
    }
    for (const std::string& first : men_of_a_side(men)) {
        names.push_back("k" + first + "k");
    }
    return names;
}

using Sizes = std::array<std::uint32_t, tb_halves>;

/// What the lengths of the published files are known to be; 0 where a length is not.
const std::map<std::string, Sizes> told_sizes = {
    {"kpk", {81664, 84012}},           {"knk", {26282, 28644}},
    {"kqk", {25629, 28644}},           {"kpkp", {3863492, 3863492}},
    {"knkp", {4931904, 4981504}},      {"kppk", {1806671, 0}},
    {"kqqk", {698739, 873642}},        {"kppkp", {84219361, 89391280}},
    {"kppkn", {108400260, 0}},         {"krbnk", {90787358, 104837040}},
    {"kqqpk", {123688859, 153741960}}, {"kqqqk", {12479974, 17472840}},
};

class Catalogue : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }
};

/// Squares for the men of a name, no two the same, pawns off the outer ranks.
std::vector<int> random_squares(std::string_view name, std::mt19937& random) {
    std::vector<int> squares;
    for (const char man : name) {
        int square = 0;
        do {
            square = static_cast<int>(man == 'p' ? 8 + random() % 48 : random() % 64);
        } while (std::find(squares.begin(), squares.end(), square) != squares.end());
        squares.push_back(square);
    }
    return squares;
}

}  // namespace

TEST_F(Catalogue, NamesStandInTheOrderOfTheMen) {
    std::vector<std::string> names = {"kk"};
    for (const std::size_t men : {1U, 2U, 3U}) {
        const std::vector<std::string> more = tables_of(men);
        names.insert(names.end(), more.begin(), more.end());
    }
    ASSERT_EQ(names.size(), 146U);
    ASSERT_EQ(TbCatalogue.size(), names.size());
    for (std::size_t row = 0; row < names.size(); ++row) {
        EXPECT_EQ(std::string(TbCatalogue[row].name.data()), names[row]) << row;
    }
}

TEST_F(Catalogue, NamesAreFilledUpWithZeros) {
    for (const TbEntry& row : TbCatalogue) {
        const std::string name = row.name.data();
        EXPECT_EQ(std::string(row.name.begin(), row.name.end()),
                  name + std::string(row.name.size() - name.size(), '\0'));
    }
}

TEST_F(Catalogue, NumberOfATableIsItsRow) {
    for (std::size_t row = 0; row < TbCatalogue.size(); ++row) {
        EXPECT_EQ(TbCatalogue[row].id, static_cast<std::int32_t>(row));
    }
}

TEST_F(Catalogue, CountsOfMenBeginWhereTheyAreSaidTo) {
    ASSERT_EQ(tb_first_four_men, 6);
    ASSERT_EQ(tb_first_five_men, 36);
    for (const TbEntry& row : TbCatalogue) {
        const std::size_t men = row.id >= 36 ? 5U : row.id >= 6 ? 4U : row.id >= 1 ? 3U : 2U;
        EXPECT_EQ(std::string(row.name.data()).size(), men) << row.id;
    }
}

TEST_F(Catalogue, SizesAreKnownForAFewTablesOnly) {
    std::size_t told = 0;
    for (const TbEntry& row : TbCatalogue) {
        const auto known = told_sizes.find(row.name.data());
        const Sizes expected = known != told_sizes.end() ? known->second : Sizes{};
        EXPECT_EQ(row.size, expected) << row.name.data();
        EXPECT_EQ(tb_known_size(row.id), expected) << row.name.data();
        told += known != told_sizes.end() ? 1U : 0U;
    }
    EXPECT_EQ(told, told_sizes.size());
}

TEST_F(Catalogue, KnownSizeHasRoomForAlmostAllNumbers) {
    tb_build_enumeration();
    int halves = 0;
    for (const auto& [name, sizes] : told_sizes) {
        for (const std::int32_t half : {0, 1}) {
            const std::uint32_t size = sizes[static_cast<std::size_t>(half)];
            if (size == 0) continue;
            const std::uint32_t numbers = tb_half_positions(tb_plan_of(table_row(name), half));
            EXPECT_LE(size, numbers) << name << half;
            EXPECT_LT(numbers - size, numbers / 1000) << name << half;  // a few last ones are none
            ++halves;
        }
    }
    EXPECT_EQ(halves, 22);
}

TEST_F(Catalogue, NothingElseIsKnownAtTheStart) {
    for (const TbEntry& row : TbCatalogue) {
        for (const std::size_t half : {0U, 1U}) {
            EXPECT_EQ(row.path[half], nullptr);
            EXPECT_EQ(row.file[half], nullptr);
            EXPECT_EQ(row.decoder[half], nullptr);
            EXPECT_EQ(row.buckets[half], nullptr);
            EXPECT_EQ(row.view[half], nullptr);
            EXPECT_EQ(row.view_size[half], 0U);
        }
    }
}

TEST_F(Catalogue, FirstRowHasNoNumbering) {
    EXPECT_EQ(TbCatalogue[0].index_fn[0], nullptr);
    EXPECT_EQ(TbCatalogue[0].index_fn[1], nullptr);
}

TEST_F(Catalogue, EachHalfHasItsOwnNumbering) {
    std::set<TbIndexFunction> functions;
    for (const TbEntry& row : TbCatalogue) {
        functions.insert(row.index_fn.begin(), row.index_fn.end());
    }
    EXPECT_EQ(functions.count(nullptr), 1U);
    EXPECT_EQ(functions.size(), 290U + 1U);
}

TEST_F(Catalogue, NumberingIsThatOfTheRowsName) {
    constexpr unsigned seed = 17;
    constexpr int positions = 20;
    std::mt19937 random(seed);
    tb_build_enumeration();
    int compared = 0;
    for (std::size_t row = 1; row < TbCatalogue.size(); ++row) {
        const TbEntry& entry = TbCatalogue[row];
        const std::string name = entry.name.data();
        for (const std::size_t half : {0U, 1U}) {
            for (int i = 0; i < positions; ++i) {
                const std::vector<int> squares = random_squares(name, random);
                const TbHalfPlan plan = tb_half_plan(name, static_cast<std::int32_t>(half));
                for (const std::uint32_t flip : {0U, 1U}) {
                    TableBoards boards = boards_of(name, squares);
                    EXPECT_EQ(
                        engine_index(name, half, squares, tb_no_en_passant, flip),
                        tb_half_index(plan, boards.first, boards.second, tb_no_en_passant, flip))
                        << name << half << " " << square_text(squares) << ", seed " << seed;
                    ++compared;
                }
            }
        }
    }
    EXPECT_EQ(compared, 145 * 2 * positions * 2);
}
