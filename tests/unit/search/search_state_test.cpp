// SPDX-License-Identifier: MIT
// The globals of the search and its clock.
#include "search/search_state.h"

#include <gtest/gtest.h>

#include "support/fake_clock.h"

namespace {

class SearchState : public testing::Test {
  protected:
    void SetUp() override {
        reset_search_state();
        reset_fake_clock();
    }
};

}  // namespace

TEST_F(SearchState, ConstantsOfTheSearch) {
    EXPECT_EQ(ply_limit, 69);
    EXPECT_EQ(mate_base, 600000);
    EXPECT_EQ(clock_mask, 0x7ffU);
    EXPECT_EQ(null_reduction, 4);
    EXPECT_EQ(null_full_depth, 4);
}

TEST_F(SearchState, ResetGivesTheStartValues) {
    ply = 5;
    TotalNodes = 6;
    stop_flag = 1;
    search_start_tick = 2;
    time_limit_ms = 3;
    iteration_depth = 4;
    follow_pv = 1;
    current_line[0] = {e2, e4, 0};
    current_line[70] = {e2, e4, 0};
    null_reduction = 2;
    null_full_depth = 9;
    reset_search_state();
    EXPECT_EQ(ply, 0);
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(stop_flag, 0U);
    EXPECT_EQ(search_start_tick, 0U);
    EXPECT_EQ(time_limit_ms, 0U);
    EXPECT_EQ(iteration_depth, 0);
    EXPECT_EQ(follow_pv, 0U);
    EXPECT_EQ(current_line[0], Move{});
    EXPECT_EQ(current_line[70], Move{});
    EXPECT_EQ(null_reduction, 4);
    EXPECT_EQ(null_full_depth, 4);
}

TEST_F(SearchState, TimeIsUpWhenTheLimitIsReached) {
    search_start_tick = 1000;
    time_limit_ms = 50;
    fake_ticks = 1049;
    EXPECT_FALSE(time_is_up());
    fake_ticks = 1050;
    EXPECT_TRUE(time_is_up());
    fake_ticks = 1051;
    EXPECT_TRUE(time_is_up());
}

TEST_F(SearchState, NoTimeIsUpAtOnce) {
    time_limit_ms = 0;
    EXPECT_TRUE(time_is_up());
}

TEST_F(SearchState, ElapsedTimeIsTakenAcrossTheWrapOfTheClock) {
    search_start_tick = 4294967290U;
    time_limit_ms = 12;
    fake_ticks = 5;  // eleven after the start
    EXPECT_FALSE(time_is_up());
    fake_ticks = 6;
    EXPECT_TRUE(time_is_up());
}

TEST_F(SearchState, LimitReadWithoutSignIsHuge) {
    time_limit_ms = static_cast<std::uint32_t>(-24);
    fake_ticks = 2147483648U;
    EXPECT_FALSE(time_is_up());
}

TEST_F(SearchState, ClockIsReadUnlessTheElevenLowBitsOfTheCountAreClear) {
    time_limit_ms = 100;
    for (const std::uint32_t nodes : {1U, 2U, 1024U, 2047U, 2049U, 4095U, 4097U}) {
        TotalNodes = nodes;
        reset_fake_clock();
        EXPECT_FALSE(clock_stops_node());
        EXPECT_EQ(fake_clock_readings, 1U) << nodes;
    }
    for (const std::uint32_t nodes : {0U, 2048U, 4096U, 2048U * 12345U}) {
        TotalNodes = nodes;
        reset_fake_clock();
        fake_ticks = 100;
        EXPECT_FALSE(clock_stops_node());
        EXPECT_EQ(fake_clock_readings, 0U) << nodes;
        EXPECT_EQ(stop_flag, 0U);
    }
}

TEST_F(SearchState, ClockThatRanOutSetsTheFlag) {
    time_limit_ms = 100;
    TotalNodes = 1;
    fake_ticks = 99;
    EXPECT_FALSE(clock_stops_node());
    EXPECT_EQ(stop_flag, 0U);
    fake_ticks = 100;
    EXPECT_TRUE(clock_stops_node());
    EXPECT_EQ(stop_flag, 1U);
}
