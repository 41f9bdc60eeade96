// SPDX-License-Identifier: MIT
// What the compiler makes of a table's name: the enumerated men, and the radix of each digit.
#include "tb/index/half_plan.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <vector>

#include "tb/table_names.h"

namespace {

/// What matters of a plan.
struct Outline {
    std::string_view enumerated;  ///< by the letters of "pPNBRQ", in the order of the name
    bool flipped;
    std::vector<std::uint32_t> radices;

    bool operator==(const Outline&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outline& outline) {
    out << '"' << outline.enumerated << '"' << (outline.flipped ? " flipped" : "");
    for (const std::uint32_t radix : outline.radices) {
        out << " x " << radix;
    }
    return out;
}

struct PlanCase {
    std::string_view name;
    std::int32_t half;
    Outline outline;
};

// clang-format off
const std::vector<PlanCase> plan_cases = {
    {"kqk",   0, {"Q",   false, {}}},
    {"kqk",   1, {"",    false, {62}}},
    {"kpk",   0, {"P",   false, {}}},
    {"kpk",   1, {"p",   true,  {}}},
    {"knkn",  0, {"N",   false, {61}}},
    {"knkn",  1, {"N",   false, {61}}},
    {"knkp",  0, {"N",   false, {48}}},
    {"knkp",  1, {"P",   true,  {61}}},
    {"kpkp",  0, {"P",   false, {47}}},
    {"kpkp",  1, {"P",   true,  {47}}},
    {"kppk",  0, {"PP",  false, {}}},
    {"kppk",  1, {"pp",  true,  {}}},
    {"krpk",  0, {"RP",  false, {}}},
    {"krpk",  1, {"p",   true,  {61}}},
    {"kqqk",  0, {"QQ",  false, {}}},
    {"kqqk",  1, {"",    false, {1891}}},
    {"kbnk",  0, {"BN",  false, {}}},
    {"kbnk",  1, {"",    false, {62, 61}}},
    {"kppkp", 0, {"PP",  false, {46}}},
    {"kppkp", 1, {"P",   true,  {1081}}},
    {"kppkn", 0, {"PP",  false, {60}}},
    {"kppkn", 1, {"N",   false, {1128}}},
    {"knnkp", 0, {"NN",  false, {48}}},
    {"knnkp", 1, {"P",   true,  {1830}}},
    {"kbnkp", 0, {"BN",  false, {48}}},
    {"kbnkp", 1, {"P",   true,  {61, 60}}},
    {"knpkp", 0, {"NP",  false, {47}}},
    {"knpkp", 1, {"P",   true,  {60, 47}}},
    {"knpkn", 0, {"NP",  false, {60}}},
    {"knpkn", 1, {"N",   false, {60, 48}}},
    {"kqrkb", 0, {"QR",  false, {60}}},
    {"kqrkb", 1, {"B",   false, {61, 60}}},
    {"kqqkq", 0, {"QQ",  false, {60}}},
    {"kqqkq", 1, {"Q",   false, {1830}}},
    {"kpppk", 0, {"PPP", false, {}}},
    {"kpppk", 1, {"ppp", true,  {}}},
    {"knppk", 0, {"NPP", false, {}}},
    {"knppk", 1, {"pp",  true,  {60}}},
    {"knnpk", 0, {"NNP", false, {}}},
    {"knnpk", 1, {"p",   true,  {1830}}},
    {"kqrpk", 1, {"p",   true,  {61, 60}}},
    {"knnnk", 0, {"NNN", false, {}}},
    {"knnnk", 1, {"",    false, {37820}}},
    {"kbnnk", 0, {"BNN", false, {}}},
    {"kbnnk", 1, {"",    false, {62, 1830}}},
    {"kbbnk", 0, {"BBN", false, {}}},
    {"kbbnk", 1, {"",    false, {1830, 62}}},
    {"krbnk", 0, {"RBN", false, {}}},
    {"krbnk", 1, {"",    false, {62, 61, 60}}},
};
// clang-format on

std::string kinds_of(const TbKindSet& set) {
    constexpr std::string_view letters = "pPNBRQ";
    std::string kinds;
    for (std::size_t i = 0; i < set.men; ++i) {
        kinds += letters[set.kinds[i]];
    }
    return kinds;
}

std::vector<std::uint32_t> radices_of(const TbHalfPlan& plan) {
    std::vector<std::uint32_t> radices;
    for (std::size_t i = 0; i < plan.digit_count; ++i) {
        radices.push_back(plan.digits[i].radix);
    }
    return radices;
}

}  // namespace

TEST(HalfPlan, EnumeratedMenAndRadices) {
    for (const PlanCase& row : plan_cases) {
        const TbHalfPlan plan = tb_half_plan(row.name, row.half);
        const std::string kinds = kinds_of(plan.kind_set);
        EXPECT_EQ((Outline{kinds, plan.flipped, radices_of(plan)}), row.outline)
            << row.name << ", half " << row.half;
        EXPECT_EQ(plan.kind_set.pawnless, row.name.find('p') == std::string_view::npos);
        EXPECT_EQ(plan.has_pawns, !plan.kind_set.pawnless);
    }
    EXPECT_EQ(plan_cases.size(), 49U);
}

TEST(HalfPlan, KingsByPlaceInTheName) {
    const TbHalfPlan first = tb_half_plan("kqrkb", 0);
    EXPECT_EQ(first.men, 5);
    EXPECT_EQ(first.second_king, 3);
    EXPECT_EQ(first.own_king, 0);
    EXPECT_EQ(first.other_king, 3);
    const TbHalfPlan second = tb_half_plan("kqrkb", 1);
    EXPECT_EQ(second.own_king, 3);
    EXPECT_EQ(second.other_king, 0);
    const std::array<std::uint8_t, tb_places> kinds = {tb_king, tb_queen, tb_rook, tb_king,
                                                       tb_bishop};
    EXPECT_EQ(first.kinds, kinds);
    EXPECT_EQ(second.kinds, kinds);
}

TEST(HalfPlan, PairIsCountedBeforeTheSingleMan) {
    const TbHalfPlan pair_first = tb_half_plan("kbbnk", 0);
    EXPECT_EQ(pair_first.shape, TbShape::pair_and_one);
    EXPECT_EQ(pair_first.enumerated, (std::array<ManPlace, 3>{1, 2, 3}));
    const TbHalfPlan pair_last = tb_half_plan("kbnnk", 0);
    EXPECT_EQ(pair_last.shape, TbShape::pair_and_one);
    EXPECT_EQ(pair_last.enumerated, (std::array<ManPlace, 3>{2, 3, 1}));
    EXPECT_EQ(pair_last.enumerated_kinds,
              (std::array<std::uint8_t, 3>{tb_knight, tb_knight, tb_bishop}));
    // The set keeps the order of the name: it only says where the offsets lie.
    EXPECT_EQ(kinds_of(pair_last.kind_set), "BNN");
}

TEST(HalfPlan, OtherShapes) {
    EXPECT_EQ(tb_half_plan("kqqqk", 1).shape, TbShape::kings);
    EXPECT_EQ(tb_half_plan("kpk", 1).shape, TbShape::one);
    EXPECT_EQ(tb_half_plan("kqnk", 0).shape, TbShape::two);
    EXPECT_EQ(tb_half_plan("kppk", 1).shape, TbShape::pair);
    EXPECT_EQ(tb_half_plan("krbnk", 0).shape, TbShape::three);
    EXPECT_EQ(tb_half_plan("kpppk", 1).shape, TbShape::triple);
}

TEST(HalfPlan, CapturesEnPassantInTwoTablesAlone) {
    int with_section = 0;
    for (std::size_t row = 1; row < tb_names.size(); ++row) {
        const std::string_view name = tb_names[row];
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const std::uint32_t expected = name == "kpkp" ? 14 : name == "kppkp" ? 616 : 0;
            EXPECT_EQ(tb_half_plan(name, half).en_passant_numbers, expected) << name;
            with_section += expected != 0 ? 1 : 0;
        }
    }
    EXPECT_EQ(with_section, 4);
}

TEST(HalfPlan, ChoicesOfTwoAndThree) {
    EXPECT_EQ(choose2(1), 0U);
    EXPECT_EQ(choose2(2), 1U);
    EXPECT_EQ(choose2(62), 1891U);
    EXPECT_EQ(choose3(2), 0U);
    EXPECT_EQ(choose3(3), 1U);
    EXPECT_EQ(choose3(62), 37820U);
    EXPECT_EQ(choose2(0), 0U);
    EXPECT_EQ(choose3(0), 0U);
}

TEST(HalfPlan, IsKnownToTheCompiler) {
    static_assert(tb_half_plan("kqk", 1).digits[0].radix == 62);
    constexpr TbHalfPlan plan = tb_half_plan("kppkp", 1);
    EXPECT_EQ(plan.digits[0].radix, 1081U);
    EXPECT_TRUE(plan.digits[0].pawns);
    EXPECT_EQ(plan.digits[0].men, 2);
}
