// SPDX-License-Identifier: MIT
// All index functions together: how many numbers each half has, and random positions of each half
// against the slow reference.
#include "tb/index/index_family.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

#include "support/reference_index.h"
#include "support/reset_all.h"
#include "support/table_boards.h"
#include "tb/index/enumeration.h"

namespace {

class IndexFamily : public testing::Test {
  protected:
    void SetUp() override {
        reset_all(1);
        tb_build_enumeration();
    }
    void TearDown() override { reset_all(1); }
};

struct SizeCase {
    std::string_view name;
    std::int32_t half;
    std::uint32_t positions;
};

std::uint32_t positions_of(std::string_view name, std::int32_t half) {
    return tb_half_positions(tb_plan_of(table_row(name), half));
}

/// Numbers of the section of captures en passant.
std::uint32_t en_passant_positions(std::string_view name) {
    return name == "kpkp" ? 1806 * 14 : name == "kppkp" ? 1806 * 616 : 0;
}

/// Men on squares of their own, pawns on ranks 2 to 7; the kings may touch.
std::vector<int> random_squares(std::string_view name, std::mt19937& random) {
    std::vector<int> squares;
    while (squares.size() < name.size()) {
        const int square = static_cast<int>(random() % 64);
        const bool is_taken = std::find(squares.begin(), squares.end(), square) != squares.end();
        const bool on_edge = square < 8 || square >= 56;
        if (!is_taken && !(on_edge && name[squares.size()] == 'p')) {
            squares.push_back(square);
        }
    }
    return squares;
}

/// Compares one position; false if it has no number.
bool compare(std::string_view name, std::size_t half, const std::vector<int>& squares,
             std::uint32_t flip) {
    const auto expected = reference_index(name, static_cast<int>(half), squares, flip != 0);
    if (!expected) {
        return false;
    }
    EXPECT_EQ(engine_index(name, half, squares, tb_no_en_passant, flip), expected->index)
        << name << ", half " << half << ", flip " << flip << ": " << square_text(squares);
    EXPECT_EQ(positions_of(name, static_cast<std::int32_t>(half)),
              expected->positions + en_passant_positions(name))
        << name << ", half " << half;
    return true;
}

/// Random positions of some rows, both halves, half of them with Black as the side named first.
/// Gives how many positions were compared.
int compare_random(std::size_t first_row, std::size_t end_row, int positions, unsigned seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    int compared = 0;
    for (std::size_t row = first_row; row < end_row && !testing::Test::HasFailure(); ++row) {
        for (const std::size_t half : {0U, 1U}) {
            for (int i = 0; i < positions;) {
                const std::vector<int> squares = random_squares(tb_names[row], random);
                const auto flip = static_cast<std::uint32_t>(i % 2);
                if (compare(tb_names[row], half, squares, flip)) {
                    ++i;
                    ++compared;
                }
            }
        }
    }
    return compared;
}

}  // namespace

TEST_F(IndexFamily, HalvesHaveTheNumbersOfTheirForms) {
    // clang-format off
    const std::vector<SizeCase> cases = {
        {"kpk",   0, 81664},               {"kpk",   1, 84012},
        {"knk",   0, 26282},               {"knk",   1, 28644},
        {"kqk",   0, 25635},               {"kqk",   1, 28644},
        {"kppk",  0, 1806671},             {"kqqk",  1, 462 * 1891},
        {"knkp",  1, 81664 * 61},          {"kbnk",  1, 462 * 3782},
        {"kpkp",  0, 81664 * 47 + 1806 * 14},
        {"kpkp",  1, 81664 * 47 + 1806 * 14},
        {"kppkp", 0, 1806671 * 46 + 1806 * 616},
        {"kppkp", 1, 89391280},            {"kppkn", 0, 1806671 * 60},
        {"kqqpk", 1, 84012 * 1830},        {"kbnkp", 1, 81664 * 3660},
        {"krbnk", 1, 462 * 226920},        {"kbbnk", 1, 462 * 113460},
        {"kbnnk", 1, 462 * 113460},        {"kqqqk", 1, 17472840},
    };
    // clang-format on
    for (const SizeCase& row : cases) {
        EXPECT_EQ(positions_of(row.name, row.half), row.positions)
            << row.name << ", half " << row.half;
    }
    EXPECT_EQ(cases.size(), 21U);
    EXPECT_EQ(81664 * 1081 + 1806 * 616, 89391280);
    EXPECT_EQ(462 * 62, 28644);
}

TEST_F(IndexFamily, FilesAreAsLongAsTheirHalvesLessTheLastNumbersWithoutAPosition) {
    // By how much: the last numbers stand for men on one square, or for a check to the side that
    // is not to move.
    const std::map<std::string_view, std::uint32_t> shorter_first_halves = {
        {"kqk", 6}, {"kqqk", 333}, {"kppkp", 1}, {"krbnk", 2}, {"kqqpk", 5405}, {"kqqqk", 9083},
    };
    int compared = 0;
    std::size_t shorter = 0;
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        const std::string_view name = tb_names[static_cast<std::size_t>(row)];
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const std::uint32_t size = tb_known_size(row)[static_cast<std::size_t>(half)];
            if (size == 0) continue;
            const auto found = shorter_first_halves.find(name);
            const bool is_shorter = half == 0 && found != shorter_first_halves.end();
            EXPECT_EQ(size + (is_shorter ? found->second : 0), positions_of(name, half))
                << name << ", half " << half;
            shorter += is_shorter ? 1 : 0;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 22);
    EXPECT_EQ(shorter, shorter_first_halves.size());
}

TEST_F(IndexFamily, LastNumbersAgainstABareKing) {
    EXPECT_EQ(engine_index("kqk", 1, "h8 g8 d4"), 28643U);
    EXPECT_EQ(engine_index("kqqqk", 1, "h8 e8 g8 f8 d4"), 17472839U);
}

TEST_F(IndexFamily, OrderOfMenOfAKindDoesNotMatter) {
    const std::uint32_t index = engine_index("kqqqk", 0, "e2 a3 c7 h5 a8");
    EXPECT_EQ(engine_index("kqqqk", 0, "e2 c7 h5 a3 a8"), index);
    EXPECT_EQ(engine_index("kqqqk", 0, "e2 h5 a3 c7 a8"), index);
    EXPECT_NE(engine_index("kqqqk", 0, "e2 h5 a3 c6 a8"), index);
}

TEST_F(IndexFamily, PlansAtRunTimeAreThoseOfTheNames) {
    int plans = 0;
    for (std::size_t row = 1; row < tb_names.size(); ++row) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const TbHalfPlan expected = tb_half_plan(tb_names[row], half);
            const TbHalfPlan& plan = tb_plan_of(static_cast<std::int32_t>(row), half);
            EXPECT_EQ(plan.kinds, expected.kinds);
            EXPECT_EQ(plan.own_king, expected.own_king);
            EXPECT_EQ(plan.shape, expected.shape);
            EXPECT_EQ(plan.digit_count, expected.digit_count);
            ++plans;
        }
    }
    EXPECT_EQ(plans, 290);
}

TEST_F(IndexFamily, RandomPositionsOfThreeMenAgreeWithTheReference) {
    EXPECT_EQ(compare_random(1, 6, 2000, 1), 5 * 2 * 2000);
}

TEST_F(IndexFamily, RandomPositionsOfFourMenAgreeWithTheReference) {
    EXPECT_EQ(compare_random(6, 36, 1000, 2), 30 * 2 * 1000);
}

TEST_F(IndexFamily, RandomPositionsOfFiveMenAgreeWithTheReference) {
    EXPECT_EQ(compare_random(36, 146, 300, 3), 110 * 2 * 300);
}
