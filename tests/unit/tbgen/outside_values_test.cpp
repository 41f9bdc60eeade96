// SPDX-License-Identifier: MIT
// Values behind captures and promotions against the tables that they come from.
#include "tbgen/outside_values.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int cells_a_case = 4000;
#else
constexpr int cells_a_case = 400;
#endif

class OutsideValuesTest : public testing::Test {
  protected:
    OutsideValuesTest() { tb_build_enumeration(); }

    SlowTables tables_{three_men_bytes};
};

/// The better value for the side that has moved, of the pieces that a pawn can become.
Value best_promotion(SlowPosition position, std::size_t pawn, SlowTables& tables) {
    Value best = not_reachable;
    for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
        position.men[pawn].kind = kind;
        const bool is_legal = slow_legal(position);
        const Value value = is_legal ? tables.value(position) : not_reachable;
        if (value != not_reachable && (best == not_reachable || value < best)) best = value;
    }
    return best;
}

/// A list of one man.
MenList one(std::uint8_t side, std::uint8_t kind) {
    MenList men;
    men.push_back({side, kind});
    return men;
}

TEST_F(OutsideValuesTest, BehindACaptureOneManIsLeft) {
    int compared = 0;
    for (const auto& [pawns, side, kind, mover] : {std::tuple{false, 0, tb_rook, 0},
                                                   {false, 0, tb_queen, 1},
                                                   {false, 1, tb_knight, 0},
                                                   {true, 0, tb_pawn, 0},
                                                   {true, 0, tb_pawn, 1},
                                                   {true, 1, tb_pawn, 1},
                                                   {true, 1, tb_queen, 1}}) {
        const auto man_side = static_cast<std::uint8_t>(side);
        const auto man_kind = static_cast<std::uint8_t>(kind);
        const auto capturer = static_cast<std::uint8_t>(mover);
        const KingPairs pairs(pawns);
        OutsideValues values(pairs, one(man_side, man_kind), capturer,
                             OutsideValues::Kind::capture);
        ASSERT_TRUE(values.fill(three_men_bytes, 3));
        EXPECT_EQ(values.slab_cells(), 64U);
        LayoutRandom random(8);
        for (int i = 0; i < cells_a_case; ++i) {
            const std::size_t slab = random() % pairs.slabs();
            const std::uint32_t square = drawn_below(random, 64);
            const SlowPosition position{pairs.kings(slab),
                                        {{man_side, man_kind, square}},
                                        static_cast<std::uint8_t>(capturer ^ 1U)};
            Value expected = not_reachable;
            const std::uint32_t last_rank = man_side == 0 ? 7 : 0;
            if (man_kind == tb_pawn && man_side == capturer && square / 8 == last_rank) {
                expected = best_promotion(position, 0, tables_);
            } else if (slow_legal(position)) {
                expected = tables_.value(position);
            }
            EXPECT_EQ(values.value(slab, square), expected)
                << side << kind << mover << ' ' << slab << ' ' << square;
            EXPECT_EQ((values.open_word(slab, 0) >> square & 1U) != 0, expected != not_reachable);
            EXPECT_TRUE(values.has(slab, expected));
            ++compared;
        }
    }
    EXPECT_EQ(compared, 7 * cells_a_case);
}

TEST_F(OutsideValuesTest, CellsHaveTwoMenAsDigits) {
    const KingPairs pairs(false);
    MenList men;
    men.push_back({1, tb_knight});
    men.push_back({0, tb_rook});
    OutsideValues values(pairs, men, 0, OutsideValues::Kind::capture);
    ASSERT_TRUE(values.fill(made_up_bytes, 2));
    EXPECT_EQ(values.slab_cells(), 64U * 64U);
    SlowTables tables(made_up_bytes);
    LayoutRandom random(8);
    int compared = 0;
    for (int i = 0; i < cells_a_case; ++i) {
        const std::size_t slab = random() % pairs.slabs();
        const SlowPosition position{
            pairs.kings(slab),
            {{1, tb_knight, drawn_below(random, 64)}, {0, tb_rook, drawn_below(random, 64)}},
            1};
        if (!slow_legal(position)) continue;
        const Value expected = tables.value(position);
        const std::uint32_t cell = position.men[0].square * 64 + position.men[1].square;
        EXPECT_EQ(values.value(slab, cell), expected);
        const SquareSet word = values.open_word(slab, position.men[0].square);
        EXPECT_EQ((word >> position.men[1].square & 1U) != 0, expected != not_reachable);
        ++compared;
    }
    EXPECT_GT(compared, cells_a_case / 2);
}

TEST_F(OutsideValuesTest, PromotionsHaveTheFileAsFirstDigit) {
    const KingPairs pairs(true);
    for (std::uint8_t side = 0; side < 2; ++side) {
        OutsideValues values(pairs, one(side, tb_pawn), side, OutsideValues::Kind::promotion);
        ASSERT_TRUE(values.fill(three_men_bytes, 2));
        EXPECT_EQ(values.slab_cells(), 8U);
        int reachable = 0;
        for (std::size_t slab = 0; slab < pairs.slabs(); slab += 5) {
            for (std::uint32_t file = 0; file < 8; ++file) {
                const SlowPosition position{pairs.kings(slab),
                                            {{side, tb_pawn, file + (side == 0 ? 56U : 0U)}},
                                            static_cast<std::uint8_t>(side ^ 1U)};
                const Value expected = best_promotion(position, 0, tables_);
                EXPECT_EQ(values.value(slab, file), expected) << slab << ' ' << file;
                reachable += expected != not_reachable ? 1 : 0;
            }
        }
        EXPECT_GT(reachable, 2000);
    }
}

TEST_F(OutsideValuesTest, EachCellOfAValueIsVisitedOnce) {
    const KingPairs pairs(false);
    OutsideValues values(pairs, one(0, tb_queen), 1, OutsideValues::Kind::capture);
    ASSERT_TRUE(values.fill(three_men_bytes, 1));
    for (std::size_t slab = 0; slab < pairs.slabs(); slab += 40) {
        std::size_t visited = 0;
        for (int number = -128; number <= 127; ++number) {
            const auto value = static_cast<Value>(number);
            std::size_t last = 0;
            bool any = false;
            values.for_each_cell(slab, value, [&](std::size_t cell) {
                EXPECT_EQ(values.value(slab, cell), value);
                EXPECT_TRUE(!any || cell > last);
                last = cell;
                any = true;
                ++visited;
            });
            EXPECT_EQ(values.has(slab, value), any);
        }
        EXPECT_EQ(visited, 64U);
    }
}

TEST_F(OutsideValuesTest, WinsAreClosedMoveByMove) {
    const KingPairs pairs(false);
    OutsideValues values(pairs, one(0, tb_rook), 1, OutsideValues::Kind::capture);
    ASSERT_TRUE(values.fill(three_men_bytes, 1));
    const std::size_t slab = 100;
    for (int moves = 1; moves <= 16; ++moves) {
        values.close_wins(slab, moves);
        for (std::size_t cell = 0; cell < 64; ++cell) {
            const Value value = values.value(slab, cell);
            const bool is_open = value != not_reachable && !(value > drawn && 127 - value <= moves);
            EXPECT_EQ((values.open_word(slab, 0) >> cell & 1U) != 0, is_open) << moves;
        }
    }
    EXPECT_EQ(values.open_word(slab, 0), 0U) << "with the rook to move all is won";
    EXPECT_NE(values.open_word(slab + 1, 0), 0U);
}

TEST_F(OutsideValuesTest, LongestWayToMate) {
    const KingPairs pairs(false);
    const auto longest = [&](std::uint8_t kind, std::uint8_t mover) {
        OutsideValues values(pairs, one(0, kind), mover, OutsideValues::Kind::capture);
        EXPECT_TRUE(values.fill(three_men_bytes, 1));
        return values.longest();
    };
    EXPECT_EQ(longest(tb_rook, 1), 16);
    EXPECT_EQ(longest(tb_rook, 0), 16);
    EXPECT_EQ(longest(tb_queen, 1), 10);
    EXPECT_EQ(longest(tb_knight, 1), 0);
}

TEST_F(OutsideValuesTest, BareKingsAreADraw) {
    const KingPairs pairs(false);
    OutsideValues values(pairs, MenList(), 1, OutsideValues::Kind::capture);
    ASSERT_TRUE(values.fill(three_men_bytes, 1));
    EXPECT_EQ(values.slab_cells(), 1U);
    EXPECT_EQ(values.value(17, 0), drawn);
    EXPECT_EQ(values.open_word(17, 0), 1U);
    EXPECT_EQ(values.longest(), 0);
}

TEST_F(OutsideValuesTest, MissingTablesAreTold) {
    const KingPairs pairs(true);
    const auto without = [](const char* name) {
        return [row = row_of_name(name)](std::int32_t asked, std::int32_t half) {
            return asked == row ? std::nullopt : three_men_bytes(asked, half);
        };
    };
    for (const char* const name : {"kpk", "knk", "kbk", "krk", "kqk"}) {
        OutsideValues capture(pairs, one(0, tb_pawn), 0, OutsideValues::Kind::capture);
        EXPECT_FALSE(capture.fill(without(name), 2)) << name;
        OutsideValues promotion(pairs, one(0, tb_pawn), 0, OutsideValues::Kind::promotion);
        EXPECT_EQ(promotion.fill(without(name), 2), name == std::string("kpk")) << name;
    }
}

TEST(FindValue, FirstPlaceOrTheCount) {
    const Bytes bytes = {3, 255, 0, 255};
    EXPECT_EQ(find_value(bytes.data(), bytes.size(), 3), 0U);
    EXPECT_EQ(find_value(bytes.data(), bytes.size(), -1), 1U);
    EXPECT_EQ(find_value(bytes.data(), bytes.size(), 7), 4U);
    EXPECT_EQ(find_value(bytes.data() + 2, 2, -1), 1U);
    EXPECT_EQ(find_value(bytes.data(), 0, 3), 0U);
    EXPECT_EQ(find_value(nullptr, 0, 3), 0U);
}

}  // namespace
