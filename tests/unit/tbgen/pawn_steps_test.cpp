// SPDX-License-Identifier: MIT
// The ways of pawns, the ranks used for codes, and which pawns stand beside each other.
#include "tbgen/pawn_steps.h"

#include <gtest/gtest.h>

#include "support/slow_endgame.h"

namespace {

SquareSet set_of(std::initializer_list<std::string_view> names) {
    SquareSet set = 0;
    for (const std::string_view name : names) {
        set |= square_bit(named_square(name));
    }
    return set;
}

std::size_t word_of(std::string_view first, std::string_view second) {
    return std::size_t{named_square(first)} * 64 + named_square(second);
}

}  // namespace

TEST(PawnSteps, RanksOfBothSides) {
    EXPECT_TRUE(pawn_way(0).up);
    EXPECT_FALSE(pawn_way(1).up);
    const auto ranks = [](std::uint8_t side) {
        const PawnWay way = pawn_way(side);
        return std::array{way.code_rank, way.start_rank, way.double_rank, way.last_rank};
    };
    EXPECT_EQ(ranks(0), (std::array<TbSquare, 4>{0, 1, 3, 7}));
    EXPECT_EQ(ranks(1), (std::array<TbSquare, 4>{7, 6, 4, 0}));
}

TEST(PawnSteps, AheadAndBehindAreTowardsTheLastRankAndTheFirst) {
    const PawnWay up = pawn_way(0);
    const PawnWay down = pawn_way(1);
    EXPECT_EQ(ahead(up, set_of({"a2", "h8"}), 1), set_of({"a3"}));
    EXPECT_EQ(ahead(down, set_of({"a2", "h1"}), 1), set_of({"a1"}));
    EXPECT_EQ(behind(up, set_of({"a4", "h2"}), 2), set_of({"a2"}));
    EXPECT_EQ(behind(down, set_of({"a4", "h7"}), 2), set_of({"a6"}));
    EXPECT_EQ(square_ahead(up, named_square("e2"), 2), named_square("e4"));
    EXPECT_EQ(square_ahead(down, named_square("e7"), 2), named_square("e5"));
    EXPECT_EQ(square_behind(up, named_square("e4"), 3), named_square("e1"));
    EXPECT_EQ(square_behind(down, named_square("e5"), 3), named_square("e8"));
}

TEST(PawnSteps, BesideDoesNotGoRoundTheBoard) {
    EXPECT_EQ(beside(set_of({"d4"})), set_of({"c4", "e4"}));
    EXPECT_EQ(beside(set_of({"a4", "h4"})), set_of({"b4", "g4"}));
}

TEST(PawnSteps, CodesArePawnsWhereNoPawnStands) {
    for (TbSquare square = 0; square < 64; ++square) {
        const bool is_edge = square / 8 == 0 || square / 8 == 7;
        EXPECT_EQ(is_code({0, tb_pawn}, square), is_edge);
        EXPECT_EQ(is_code({1, tb_pawn}, square), is_edge);
        EXPECT_FALSE(is_code({0, tb_knight}, square));
    }
    const Endgame endgame = endgame_of(row_of_name("kppkn"));  // p0 p0 n1
    EXPECT_EQ(code_post(endgame, word_of("e4", "e5")), 2U);
    EXPECT_EQ(code_post(endgame, word_of("e8", "e5")), 0U);
    EXPECT_EQ(code_post(endgame, word_of("e4", "e1")), 1U);
    const Endgame pieces = endgame_of(row_of_name("kbnkr"));
    EXPECT_EQ(code_post(pieces, word_of("e8", "e1")), 2U);
}

TEST(PawnSteps, PlainSquaresOfTheRunner) {
    EXPECT_EQ(plain_squares(endgame_of(row_of_name("kpkp"))), pawn_ranks);
    EXPECT_EQ(plain_squares(endgame_of(row_of_name("kqkp"))), all_squares);
}

TEST(PawnSteps, PawnsBesideEnemyPosts) {
    const Endgame endgame = endgame_of(row_of_name("kppkp"));  // p0 p0 p1
    EXPECT_EQ(beside_enemy_posts(endgame, word_of("d5", "h5"), 1), set_of({"c5", "e5", "g5"}));
    EXPECT_EQ(beside_enemy_posts(endgame, word_of("d4", "h6"), 1), 0U);
    EXPECT_EQ(beside_enemy_posts(endgame, word_of("d4", "d5"), 0), 0U);  // own ones
    const Endgame rook = endgame_of(row_of_name("krpkp"));               // p0 p1 r0
    EXPECT_EQ(beside_enemy_posts(rook, word_of("d4", "e4"), 0), set_of({"d4", "f4"}));
    EXPECT_EQ(beside_enemy_posts(rook, word_of("d4", "e5"), 0), 0U);
    EXPECT_EQ(beside_enemy_posts(rook, word_of("d5", "e5"), 1), set_of({"c5", "e5"}));
}

TEST(PawnSteps, RunnersBesideAPost) {
    const Endgame endgame = endgame_of(row_of_name("kppkp"));  // p0 p0 p1
    // A post has passed: the runner may stand to both sides of it.
    EXPECT_EQ(runners_beside(endgame, word_of("d4", "a2"), 0, named_square("d4")),
              set_of({"c4", "e4"}));
    EXPECT_EQ(runners_beside(endgame, word_of("a4", "a2"), 0, named_square("a4")), set_of({"b4"}));
    // The runner's own side has no pawns for it to pass among runners.
    EXPECT_EQ(runners_beside(endgame, word_of("d5", "a2"), 1, named_square("g5")), 0U);
    EXPECT_EQ(runners_beside(endgame, word_of("d5", "a2"), 1, named_square("e5")), all_squares);
    // A post beside: wherever the runner stands, here a rook.
    const Endgame rook = endgame_of(row_of_name("krpkp"));
    EXPECT_EQ(runners_beside(rook, word_of("d4", "e4"), 0, named_square("d4")), all_squares);
    EXPECT_EQ(runners_beside(rook, word_of("d4", "f4"), 0, named_square("d4")), 0U);
    EXPECT_EQ(runners_beside(endgame_of(row_of_name("kppkn")), word_of("d4", "e4"), 0,
                             named_square("d4")),
              0U);
}
