// SPDX-License-Identifier: MIT
// The line of an iteration with a time from its caller.
#include <gtest/gtest.h>

#include "search/search_state.h"
#include "search/thinking_line.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

class PrintIteration : public testing::Test {
  protected:
    void SetUp() override { begin_scene(); }

    static std::string printed(std::int32_t score, std::uint32_t elapsed) {
        const CapturedOutput output;
        print_iteration(score, elapsed);
        return output.text();
    }
};

}  // namespace

TEST_F(PrintIteration, TimeIsPrintedAsGivenAndTheClockIsNotRead) {
    iteration_depth = 7;
    TotalNodes = 123456;
    search_start_tick = 1000;
    fake_ticks = 5000;
    vetka[0][0] = {e2, e4, 0};
    vetka[0][1] = {a7, b8, w_queen};
    line_length(0) = 2;
    EXPECT_EQ(printed(-23, 4711), "7 -23 4711 123456 e2e4 a7b8q \n");
    EXPECT_EQ(fake_clock_readings, 0U);
}

TEST_F(PrintIteration, TimeIsUnsigned) {
    iteration_depth = 1;
    EXPECT_EQ(printed(0, 4294967295U), "1 0 4294967295 0 \n");
}

TEST_F(PrintIteration, IsMirroredInTheLog) {
    const TemporaryFolder folder;
    log_enabled = true;
    EXPECT_EQ(printed(3, 9), "1 3 9 0 \n");
    log_enabled = false;
    EXPECT_EQ(log_lines(), std::vector<std::string>{"1 3 9 0 "});
}
