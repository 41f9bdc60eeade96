// SPDX-License-Identifier: MIT
// The list of moves.
#include "board/move_list.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>

#include "board/generate.h"
#include "board/undo_record.h"
#include "support/position.h"

namespace {

constexpr Move never_filled = {-1, -1, 77};

}  // namespace

TEST(MoveList, IsThreeArraysOfWords) {
    EXPECT_EQ(sizeof(Move), 12U);
    EXPECT_EQ(sizeof(MoveList), 400 * 12 + 400 * 4 + 4U);
    EXPECT_EQ(sizeof(UndoRecord), 13 * 4U);
    EXPECT_TRUE(std::is_trivially_copyable_v<Table>);
}

TEST(MoveList, SlotZeroIsNeverFilled) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    for (const auto generator : {gen_all, gen_evasions, gen_captures, gen_legal}) {
        list->moves[0] = never_filled;
        list->count = 33;
        const Table table = position_from_fen("r3k2r/1P6/8/3pP3/8/8/6p1/R3K2R w KQkq d6");
        generator(table, white);
        EXPECT_GT(list->count, 0);
        EXPECT_EQ(list->moves[0], never_filled);
    }
}

TEST(MoveList, ListWithoutMovesHasCountZero) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    list->count = 33;
    const Table table = position_from_fen("8/8/8/8/8/5k2/5p2/5K2 w - -");
    gen_legal(table, white);
    EXPECT_EQ(list->count, 0);
}

TEST(MoveList, TakingOutPutsTheLastMoveInTheGap) {
    const auto list = std::make_unique<MoveList>();
    list->count = 3;
    for (std::int32_t slot = 1; slot <= 3; ++slot) {
        list->move(slot) = {slot, 10 * slot, 0};
        list->score(slot) = -slot;
    }
    list->take_out(1);
    EXPECT_EQ(list->count, 2);
    EXPECT_EQ(list->move(1), (Move{3, 30, 0}));
    EXPECT_EQ(list->score(1), -3);
    EXPECT_EQ(list->move(2), (Move{2, 20, 0}));
    list->take_out(2);
    EXPECT_EQ(list->count, 1);
    EXPECT_EQ(list->move(1), (Move{3, 30, 0}));
}

TEST(MoveList, AddMoveTakesGenFromAndNoInfo) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    list->count = 0;
    gen_from = e2;
    add_move(e4);
    add_move(e3);
    EXPECT_EQ(list->count, 2);
    EXPECT_EQ(list->move(1), (Move{e2, e4, 0}));
    EXPECT_EQ(list->move(2), (Move{e2, e3, 0}));
}

TEST(MoveList, FullListTakesNoMoreMoves) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    list->count = 0;
    gen_from = a1;
    for (int i = 0; i < 500; ++i) {
        add_move(a2);
    }
    EXPECT_EQ(list->count, 399);
    EXPECT_EQ(list->move(399), (Move{a1, a2, 0}));
}

// A board that was set up freely: queens all around it. A queen on an edge has 6 squares straight
// ahead and 5 on its diagonals, 24 of them; g1 and h2 also reach the king on h1, and so does a8
// down its diagonal of 6; h8 has 6 and White's king 1.
TEST(MoveList, HoldsMoreMovesThanAnyGameOffers) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    const Table table = position_from_fen("QQQQQQQQ/Q6Q/Q6Q/Q6Q/Q6Q/Q6Q/Q6Q/KQQQQQQk w - -");
    gen_all(table, white);
    EXPECT_EQ(list->count, 24 * 11 + 2 + 7 + 6 + 1);
}
