// SPDX-License-Identifier: MIT
// The line of an iteration, to the character.
#include "search/thinking_line.h"

#include <gtest/gtest.h>

#include "search/search_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

class ThinkingLine : public testing::Test {
  protected:
    void SetUp() override { begin_scene(); }

    static std::string printed(std::int32_t score) {
        const CapturedOutput output;
        print_thinking_line(score);
        return output.text();
    }
};

}  // namespace

TEST_F(ThinkingLine, DepthScoreHundredthsNodesMoves) {
    iteration_depth = 7;
    TotalNodes = 123456;
    search_start_tick = 1000;
    fake_ticks = 3459;
    vetka[0][0] = {e2, e4, 0};
    vetka[0][1] = {e7, e5, 0};
    vetka[0][2] = {g1, f3, 0};
    line_length(0) = 2;
    EXPECT_EQ(printed(23), "7 23 245 123456 e2e4 e7e5 \n");
}

TEST_F(ThinkingLine, LineWithoutMovesEndsInOneBlank) {
    iteration_depth = 1;
    TotalNodes = 5;
    EXPECT_EQ(printed(-599990), "1 -599990 0 5 \n");
}

TEST_F(ThinkingLine, ElapsedTimeIsCutToHundredthsAndTakenAcrossTheWrap) {
    search_start_tick = 4294967295U;
    fake_ticks = 18;
    EXPECT_EQ(printed(0), "1 0 1 0 \n");
    fake_ticks = 19;
    EXPECT_EQ(printed(0), "1 0 2 0 \n");
}

TEST_F(ThinkingLine, CountersAreUnsigned) {
    TotalNodes = 4294967295U;
    search_start_tick = 1;
    fake_ticks = 0;
    EXPECT_EQ(printed(0), "1 0 429496729 4294967295 \n");
}

// A draw by repetition keeps the length of an older line, whose cells this search may not have
// reached: the cells were cleared at its start, the lengths were not.
TEST_F(ThinkingLine, CellsThatTheSearchHasNotReachedAreFiveBlanks) {
    vetka[0][0] = {h7, h8, 0};
    line_length(0) = 3;
    EXPECT_EQ(printed(0), "1 0 0 0 h7h8 " + std::string(10, ' ') + "\n");
}

TEST_F(ThinkingLine, PromotionCarriesItsLetter) {
    vetka[0][0] = {a7, b8, w_knight};
    vetka[0][1] = {h2, h1, b_queen};
    line_length(0) = 2;
    EXPECT_EQ(printed(1), "1 1 0 0 a7b8n h2h1q \n");
}

TEST_F(ThinkingLine, WholeRowIsPrintedAndNoMore) {
    vetka[0].fill({e2, e4, 0});
    line_length(0) = 99;
    const std::string text = printed(0);
    EXPECT_EQ(text.size(), std::string("1 0 0 0 ").size() + 70 * 5 + 1);
}

TEST_F(ThinkingLine, IsMirroredInTheLog) {
    const TemporaryFolder folder;
    log_enabled = true;
    vetka[0][0] = {e2, e4, 0};
    line_length(0) = 1;
    EXPECT_EQ(printed(3), "1 3 0 0 e2e4 \n");
    log_enabled = false;
    EXPECT_EQ(log_lines(), std::vector<std::string>{"1 3 0 0 e2e4 "});
}
