// SPDX-License-Identifier: MIT
// One iteration at the root: repetitions, history, the check at depth 1, the line.
#include "search/root.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/root_scene.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr const char* rook_ending = "7k/8/8/8/8/8/8/R3K3 w - -";
constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* checked_by_rook = "4r2k/8/8/8/8/8/8/4K3 w - -";

class RootSearch : public RootScene {};

}  // namespace

TEST_F(RootSearch, EveryMoveRepeatedScoresZero) {
    set(rook_ending);
    repeat_every_move();
    reset_root_scores(list.count);
    root_scores[1] = 55;
    ply = 0;
    EXPECT_EQ(Table::search_root(position, 3, -100, 100, list), 0);
    for (std::size_t slot = 1; slot <= static_cast<std::size_t>(list.count); ++slot) {
        EXPECT_EQ(root_scores[slot], 0);
    }
    EXPECT_EQ(TotalNodes, 1U);
}

TEST_F(RootSearch, EveryMoveRepeatedScoresZeroWhateverAlphaIs) {
    set(rook_ending);
    repeat_every_move();
    EXPECT_EQ(search(3, 40, 100), 0);
    EXPECT_EQ(search(3, -100, -40), 0);
}

TEST_F(RootSearch, EveryMoveRepeatedInCheckScoresAMate) {
    set(checked_by_rook);
    repeat_every_move();
    EXPECT_EQ(search(3), -600000);
    ply = 2;
    EXPECT_EQ(Table::search_root(position, 3, -100, 100, list), -599998);
}

TEST_F(RootSearch, PositionThatStoodOnceIsSearched) {
    set(rook_ending);
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        stood_in_game(after_move(slot), 1);
    }
    EXPECT_GT(search(1), 100);
    EXPECT_GT(TotalNodes, 10U);
}

TEST_F(RootSearch, PositionThatStoodWithTheMoverToMoveIsSearched) {
    set(rook_ending);
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        Table other_side = after_move(slot);
        other_side.side ^= 1;
        stood_in_game(other_side, 2);
    }
    EXPECT_GT(search(1), 100);
}

TEST_F(RootSearch, RepeatedMoveRaisesANegativeAlphaToZeroAndTakesTheLineBelow) {
    set(rook_ending);
    repeat_every_move();
    line_length(1) = 3;
    vetka[1][1] = {a7, a5, 0};
    vetka[1][2] = {h2, h4, 0};
    search(1, -1, 100);
    EXPECT_EQ(vetka[0][0], list.move(1));
    EXPECT_EQ(vetka[0][1], (Move{a7, a5, 0}));
    EXPECT_EQ(vetka[0][2], (Move{h2, h4, 0}));
    EXPECT_EQ(line_length(0), 3);
}

TEST_F(RootSearch, RepeatedMoveLeavesAlphaAndLineAloneFromZeroOn) {
    for (const std::int32_t alpha : {0, 1, 500}) {
        set(rook_ending);
        repeat_every_move();
        vetka[0][0] = {a7, a5, 0};
        line_length(1) = 3;
        search(1, alpha, 1000);
        EXPECT_EQ(vetka[0][0], (Move{a7, a5, 0}));
        EXPECT_EQ(line_length(0), 0);
    }
}

TEST_F(RootSearch, RepeatedMoveDoesNotCutEvenIfBetaIsNotAboveZero) {
    // White is lost, so nothing but the repetition comes near the window.
    for (const std::int32_t beta : {-50, 0}) {
        begin_scene();
        set("k7/8/8/8/8/q7/8/5K2 w - -");
        stood_in_game(after_move(1), 2);
        EXPECT_EQ(search(1, -100, beta), 0);
        EXPECT_GE(TotalNodes, static_cast<std::uint32_t>(list.count));
        EXPECT_EQ(vetka[0][0], list.move(1));
        EXPECT_EQ(root_scores[1], 0);
        EXPECT_LT(root_scores[2], -100);
    }
}

TEST_F(RootSearch, RepeatedMoveTouchesNoHistory) {
    set(rook_ending);
    repeat_every_move();
    search(4, -100, 100);
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        EXPECT_EQ(raised_by(list.move(slot)), 0);
        EXPECT_EQ(cut_by(list.move(slot)), 1000000);
    }
}

TEST_F(RootSearch, HistoryGrowsByThreeTimesTheDepthAndByOnceTheDepthBelow) {
    set(pawn_ending);
    search(1);
    EXPECT_EQ(raised_by(list.move(1)), 3);
    history_reset();
    search(2);
    EXPECT_EQ(raised_by(list.move(1)), 6);
    EXPECT_EQ(cut_by(list.move(1)), 1000000);
}

TEST_F(RootSearch, HistoryBelowTheRootGrowsByOnceTheDepth) {
    set(pawn_ending);
    list.count = 1;  // one root move, so that its replies are tried once
    search(2);
    const Move reply = vetka[0][1];
    EXPECT_EQ(raised_by(list.move(1)), 6);
    EXPECT_EQ(raised_by(reply), 1);
}

TEST_F(RootSearch, CutTakesThreeTimesTheDepthAndReturnsBeta) {
    for (const std::int32_t depth : {1, 2}) {
        begin_scene();
        set(pawn_ending);
        vetka[0][0] = {a7, a5, 0};
        EXPECT_EQ(search(depth, -full_window, -5000), -5000);
        EXPECT_EQ(raised_by(list.move(1)), 3 * depth);
        EXPECT_EQ(cut_by(list.move(1)), 1000000 - 3 * depth);
        EXPECT_GE(root_scores[1], -5000);
        EXPECT_EQ(root_scores[2], 0);
        // The line of a cut is not taken.
        EXPECT_EQ(vetka[0][0], (Move{a7, a5, 0}));
        EXPECT_EQ(line_length(0), 0);
    }
}

TEST_F(RootSearch, CutReturnsBetaThoughTheMoveScoresMore) {
    set("6k1/5ppp/8/8/8/8/8/R5K1 w - -");
    move_to_front("a1a8");
    EXPECT_EQ(search(1, 0, 100), 100);
    EXPECT_EQ(root_scores[1], 599999);
}

TEST_F(RootSearch, MovesAreTriedInListOrder) {
    set(rook_ending);
    std::int32_t slot = list.count;
    for (std::int32_t i = 1; i <= list.count; ++i) {
        list.score(i) = slot--;  // the scores of the list would turn it round
    }
    search(1, -full_window, -50000);
    EXPECT_EQ(cut_by(list.move(1)), 1000000 - 3);
    EXPECT_EQ(cut_by(list.move(list.count)), 1000000);
}

TEST_F(RootSearch, LineOfTheBestMoveStandsInRowZero) {
    set(rook_ending);
    search(3);
    ASSERT_GE(line_length(0), 2);
    Table there = position;
    for (std::int32_t i = 0; i < line_length(0); ++i) {
        const Move& move = vetka[0][line_slot(i)];
        const std::string text = move_text(move.posFrom, move.posTo, move.posInfo);
        const std::vector<std::string> legal = legal_moves(there);
        ASSERT_NE(std::find(legal.begin(), legal.end(), text), legal.end()) << text;
        there = after(there, {text});
    }
}

TEST_F(RootSearch, LowFailureReturnsAlphaAndLeavesNoLine) {
    set(rook_ending);
    EXPECT_EQ(search(2, 100000, 100001), 100000);
    EXPECT_EQ(line_length(0), 0);
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        EXPECT_LE(root_scores[static_cast<std::size_t>(slot)], 100000);
        EXPECT_NE(root_scores[static_cast<std::size_t>(slot)], 0);
    }
}

TEST_F(RootSearch, NoMoveIsAMateOrNothing) {
    set("7k/6Q1/6K1/8/8/8/8/8 b - -");
    ASSERT_EQ(list.count, 0);
    EXPECT_EQ(search(1), -600000);
    set("7k/5Q2/8/8/8/8/8/K7 b - -");
    ASSERT_EQ(list.count, 0);
    EXPECT_EQ(search(1, 50, 100), 0);
}

TEST_F(RootSearch, CheckAtDepthOneIsSearchedOnePlyDeeper) {
    set(rook_ending);
    search(1);
    const Table checked = after(position, {"a1a8"});
    ASSERT_TRUE(is_stored(checked));
    EXPECT_EQ(hash_slot(checked).depth, 1);
}

TEST_F(RootSearch, OnlyTheCheckIsDeeperAtDepthOne) {
    set(rook_ending);
    move_to_front("a1a8");
    search(1);
    for (const char* quiet : {"a1a7", "e1d2", "e1f1"}) {
        EXPECT_FALSE(is_stored(after(position, {quiet}))) << quiet;
    }
}

TEST_F(RootSearch, CheckIsNotDeeperFromDepthTwoOn) {
    for (const std::int32_t depth : {2, 3}) {
        begin_scene();
        set(rook_ending);
        search(depth);
        const Table checked = after(position, {"a1a8"});
        ASSERT_TRUE(is_stored(checked));
        EXPECT_EQ(hash_slot(checked).depth, depth - 1);
    }
}

TEST_F(RootSearch, PawnToTheSeventhRankIsNotExtended) {
    set("8/8/P6k/8/8/8/8/K7 w - -");
    search(1);
    EXPECT_FALSE(is_stored(after(position, {"a6a7"})));
    begin_scene();
    set("8/8/P6k/8/8/8/8/K7 w - -");
    list.move(1) = move_of(position, "a1b1");
    list.move(2) = move_of(position, "a6a7");
    list.count = 2;
    search(2);
    ASSERT_TRUE(is_stored(after(position, {"a6a7"})));
    EXPECT_EQ(hash_slot(after(position, {"a6a7"})).depth, 1);
}

TEST_F(RootSearch, DeeperCheckCountsInHistoryWithTheIterationsDepth) {
    set("6k1/5ppp/8/8/8/8/8/R5K1 w - -");
    move_to_front("a1a8");
    EXPECT_EQ(search(1), 599999);
    EXPECT_EQ(raised_by(list.move(1)), 3);
}

TEST_F(RootSearch, HashTableIsNeitherAskedNorFilledAtTheRoot) {
    set(rook_ending);
    put_entry(position, 60, hash_exact, 12345);
    EXPECT_NE(search(2), 12345);
    EXPECT_EQ(hash_slot(position).score, 12345);
    hash_clear();
    search(2);
    EXPECT_FALSE(is_stored(position));
}

TEST_F(RootSearch, PositionAndListStayAsTheyAre) {
    set("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -");
    const Table before = position;
    const std::vector<Move> moves(list.moves.begin() + 1, list.moves.begin() + 1 + list.count);
    search(2);
    EXPECT_EQ(position, before);
    EXPECT_TRUE(std::equal(moves.begin(), moves.end(), list.moves.begin() + 1));
    EXPECT_EQ(ply, 0);
}
