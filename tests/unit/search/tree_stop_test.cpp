// SPDX-License-Identifier: MIT
// How a node meets the end of the time.
#include <gtest/gtest.h>

#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";

class TreeStop : public TreeScene {};

}  // namespace

TEST_F(TreeStop, StopFlagAtANodeReturnsAlphaWithoutALookAtTheClock) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        ply = 5;
        stop_flag = 1;
        EXPECT_EQ(search(node, 2, -17, 500), -17);
        EXPECT_EQ(stop_flag, 1U);
        EXPECT_EQ(TotalNodes, 1U);
        EXPECT_EQ(fake_clock_readings, 0U);
        EXPECT_EQ(ply, 5);
        EXPECT_FALSE(is_stored(position));
    }
}

TEST_F(TreeStop, ClockThatRanOutReturnsAlphaAndSetsTheFlag) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        time_limit_ms = 0;
        EXPECT_EQ(search(node, 2, -17, 500), -17);
        EXPECT_EQ(stop_flag, 1U);
        EXPECT_EQ(TotalNodes, 1U);
        EXPECT_EQ(fake_clock_readings, 1U);
        EXPECT_EQ(ply, 5);
    }
}

TEST_F(TreeStop, ClockIsReadInEveryNodeButThoseOfACountOf2048) {
    for (const Node node : all_nodes) {
        for (const std::uint32_t start : {0U, 2047U, 2040U, 4094U}) {
            set(pawn_ending);
            TotalNodes = start;
            search(node, 3, -full_window, full_window);
            std::uint32_t expected = 0;
            for (std::uint32_t count = start + 1; count <= TotalNodes; ++count) {
                expected += count % 2048 != 0 ? 1U : 0U;
            }
            EXPECT_EQ(fake_clock_readings, expected);
            EXPECT_GT(expected, 50U);
        }
    }
}

TEST_F(TreeStop, NodeOfACountOf2048GoesOnAndItsChildStops) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        time_limit_ms = 0;
        TotalNodes = 2047;
        EXPECT_EQ(search(node, 1, -17, 500), -17);
        EXPECT_EQ(TotalNodes, 2049U);
        EXPECT_EQ(stop_flag, 1U);
        EXPECT_EQ(ply, 6);
    }
}

TEST_F(TreeStop, StopLeavesThePlyAndPutsThePositionBack) {
    // The third reading is that of a grandchild.
    for (const Node node : all_nodes) {
        set(pawn_ending);
        const Table before = position;
        fake_ticks_per_reading = 1;
        time_limit_ms = 2;
        EXPECT_EQ(search(node, 2, -17, 500), -17);
        EXPECT_EQ(TotalNodes, 3U);
        EXPECT_EQ(ply, 7);
        EXPECT_EQ(position, before);
        EXPECT_FALSE(is_stored(position));
    }
}

TEST_F(TreeStop, StopReturnsAlphaAsTheMovesBeforeRaisedIt) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        fake_ticks_per_reading = 1;
        time_limit_ms = 2;  // the second move's child sees the end
        const std::int32_t score = search(node, 1, -full_window, full_window);
        EXPECT_EQ(stop_flag, 1U);
        const Move& first = first_generated();
        Table child = after(position, {move_text(first.posFrom, first.posTo, first.posInfo)});
        EXPECT_EQ(score, -Table::evaluate(child, 0, 0));
        EXPECT_FALSE(is_stored(position));
    }
}
