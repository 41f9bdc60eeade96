// SPDX-License-Identifier: MIT
// What bytes mean, and single positions asked of a table of other men.
#include "tbgen/half_bytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

MenList list_of(std::initializer_list<EndgameMan> men) {
    MenList list;
    for (const EndgameMan man : men) {
        list.push_back(man);
    }
    return list;
}

/// The value of men in the order of the list, on squares by name, kings first.
Value value_of(const MenList& men, std::uint8_t to_move, std::initializer_list<const char*> names,
               const LoadHalf& load) {
    tb_build_enumeration();
    OtherHalf half(men, to_move);
    EXPECT_TRUE(half.load(load));
    std::vector<TbSquare> squares;
    for (const char* const name : names) {
        squares.push_back(named_square(name));
    }
    MenSquares placed{};
    std::copy(squares.begin() + 2, squares.end(), placed.begin());
    return half.value(half.frame({squares[0], squares[1]}), placed);
}

}  // namespace

TEST(HalfBytes, ValuesOfWinsAndLosses) {
    EXPECT_EQ(mates_in(1), 126);
    EXPECT_EQ(mates_in(126), 1);
    EXPECT_EQ(mated_in(0), -127);
    EXPECT_EQ(mated_in(1), -126);
    EXPECT_EQ(mated_in(126), -1);
    // A byte cannot tell a longer way to mate from a draw.
    EXPECT_EQ(mates_in(127), drawn);
    EXPECT_EQ(mated_in(127), drawn);
    EXPECT_EQ(mates_in(400), drawn);
    EXPECT_EQ(mated_in(400), drawn);
}

TEST(HalfBytes, DrawsAreNoLongWins) {
    EXPECT_TRUE(is_mate_in(mates_in(5), 5));
    EXPECT_FALSE(is_mate_in(mates_in(5), 6));
    EXPECT_FALSE(is_mate_in(drawn, 127));
    EXPECT_FALSE(is_mate_in(mated_in(5), 5));
    EXPECT_TRUE(is_mated_in(mated_in(0), 0));
    EXPECT_FALSE(is_mated_in(mated_in(0), 1));
    EXPECT_FALSE(is_mated_in(drawn, 127));
    EXPECT_FALSE(is_mated_in(drawn, 200));
    EXPECT_FALSE(is_mated_in(mates_in(3), 3));
}

TEST(OtherHalf, BareKingsNeedNoTableAndAreADraw) {
    const auto load = [](std::int32_t, std::int32_t) -> std::optional<Bytes> {
        ADD_FAILURE() << "nothing is to be loaded";
        return std::nullopt;
    };
    EXPECT_EQ(value_of(MenList(), 0, {"a1", "c3"}, load), drawn);
    EXPECT_EQ(value_of(MenList(), 1, {"a1", "c3"}, load), drawn);
}

TEST(OtherHalf, MissingBytesAreTold) {
    tb_build_enumeration();
    OtherHalf half(list_of({{0, tb_queen}}), 0);
    EXPECT_FALSE(half.load([](std::int32_t, std::int32_t) { return std::optional<Bytes>(); }));
}

TEST(OtherHalf, AsksForTheHalfOfTheSideToMove) {
    tb_build_enumeration();
    std::vector<std::pair<std::int32_t, std::int32_t>> asked;
    const auto load = [&](std::int32_t row, std::int32_t half) {
        asked.emplace_back(row, half);
        return std::optional(Bytes(1));
    };
    const std::int32_t krkn = row_of_name("krkn");
    for (std::uint8_t to_move = 0; to_move < 2; ++to_move) {
        OtherHalf as_named(list_of({{1, tb_knight}, {0, tb_rook}}), to_move);
        OtherHalf exchanged(list_of({{1, tb_rook}, {0, tb_knight}}), to_move);
        EXPECT_TRUE(as_named.load(load));
        EXPECT_TRUE(exchanged.load(load));
    }
    EXPECT_EQ(asked, (std::vector<std::pair<std::int32_t, std::int32_t>>{
                         {krkn, 0}, {krkn, 1}, {krkn, 1}, {krkn, 0}}));
}

TEST(OtherHalf, ValuesOfKnownPositions) {
    const MenList rook = list_of({{0, tb_rook}});
    EXPECT_EQ(value_of(rook, 0, {"g6", "h8", "a1"}, three_men_bytes), mates_in(1));
    EXPECT_EQ(value_of(rook, 1, {"g6", "h8", "a8"}, three_men_bytes), mated_in(0));
    EXPECT_EQ(value_of(rook, 1, {"a1", "h8", "h7"}, three_men_bytes), drawn);
    EXPECT_EQ(value_of(rook, 0, {"a1", "h8", "h7"}, three_men_bytes), not_reachable);
    EXPECT_EQ(value_of(rook, 1, {"a1", "h8", "a1"}, three_men_bytes), not_reachable);
    EXPECT_EQ(value_of(rook, 1, {"a1", "h8", "h8"}, three_men_bytes), not_reachable);
}

TEST(OtherHalf, SidesExchangedSeeTheBoardFromTheOtherEnd) {
    // The pawn goes down: on c2 it is one step away from promotion.
    const MenList pawn = list_of({{1, tb_pawn}});
    EXPECT_EQ(value_of(pawn, 1, {"h8", "b2", "c2"}, three_men_bytes),
              value_of(list_of({{0, tb_pawn}}), 0, {"b7", "h1", "c7"}, three_men_bytes));
    EXPECT_GT(value_of(pawn, 1, {"h8", "b2", "c2"}, three_men_bytes), drawn);
    EXPECT_EQ(value_of(pawn, 0, {"c1", "c3", "c2"}, three_men_bytes), drawn);
    EXPECT_EQ(value_of(list_of({{1, tb_rook}}), 1, {"h8", "g6", "a1"}, three_men_bytes),
              mates_in(1));
}

TEST(OtherHalf, ManyDrawnPositionsOfTwoMenAgreeWithTheEnginesIndex) {
    tb_build_enumeration();
    SlowTables tables(made_up_bytes);
    LayoutRandom random(5);
    int compared = 0;
    for (const char* const name : {"krkn", "kqpk", "kpkp", "kppk"}) {
        const EndgameLayout layout(name);
        const MenList& men = layout.endgame().men;
        for (std::uint8_t exchanged = 0; exchanged < 2; ++exchanged) {
            MenList seen;
            for (EndgameMan man : men) {
                man.side ^= exchanged;
                seen.push_back(man);
            }
            for (std::uint8_t to_move = 0; to_move < 2; ++to_move) {
                OtherHalf half(seen, to_move);
                ASSERT_TRUE(half.load(made_up_bytes));
                for (int i = 0; i < 60; ++i) {
                    SlowPosition position =
                        layout.draw(random, random() % layout.pairs().slabs(), to_move);
                    MenSquares squares{};
                    for (std::size_t man = 0; man < men.size(); ++man) {
                        position.men[man].side = seen[man].side;
                        squares[man] = position.men[man].square;
                    }
                    if (!slow_legal(position)) continue;
                    EXPECT_EQ(half.value(half.frame(position.kings), squares),
                              tables.value(position))
                        << name << ' ' << i;
                    ++compared;
                }
            }
        }
    }
    EXPECT_GT(compared, 600);
}
