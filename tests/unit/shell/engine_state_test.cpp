// SPDX-License-Identifier: MIT
// The engine-wide variables at program start.
#include "shell/engine_state.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

void expect_start_values() {
    EXPECT_EQ(engine.clock_left, 30000);
    EXPECT_EQ(engine.other_clock, 555);
    EXPECT_EQ(engine.all_moves_game, 40);
    EXPECT_EQ(engine.make_moves_game, 0);
    EXPECT_EQ(engine.time_plus, 0);
    EXPECT_FALSE(engine.st_mode);
    EXPECT_EQ(engine.st_time, 0);
    EXPECT_EQ(engine.max_depth, 70);
    EXPECT_FALSE(engine.force_mode);
    EXPECT_EQ(engine.fifty_count, 0);
    EXPECT_EQ(engine.game_plies, 0);
    EXPECT_FALSE(engine.book_out);
    EXPECT_EQ(engine.game_line, "");
    EXPECT_FALSE(engine.hint_valid);
    EXPECT_EQ(engine.hint_move, Move{});
    EXPECT_EQ(engine.strong_level, 0);
    EXPECT_EQ(engine.TbPath, "");
    EXPECT_EQ(engine.tb_cache_megabytes, 32);
    EXPECT_FALSE(engine.resign_on);
    EXPECT_FALSE(engine.check_on);
}

}  // namespace

TEST(EngineStateTest, StartsWithItsValues) {
    expect_start_values();
}

TEST(EngineStateTest, ResetSetsAllBack) {
    engine.clock_left = engine.other_clock = engine.all_moves_game = engine.make_moves_game = 1;
    engine.time_plus = engine.st_time = engine.max_depth = engine.fifty_count = 1;
    engine.game_plies = engine.strong_level = engine.tb_cache_megabytes = 1;
    engine.st_mode = engine.force_mode = engine.book_out = engine.hint_valid = true;
    engine.resign_on = engine.check_on = true;
    engine.game_line = engine.TbPath = "e2e4";
    engine.hint_move = {84, 64, 0};
    reset_engine_state();
    expect_start_values();
}

TEST(EngineStateTest, StrongLevelIsClamped) {
    for (const auto& [level, stored] :
         {std::pair{5000, 1000}, {1001, 1000}, {1000, 1000}, {1, 1}, {0, 0}, {-3, 0}}) {
        set_strong_level(level);
        EXPECT_EQ(engine.strong_level, stored);
    }
    set_strong_level(std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(engine.strong_level, 0);
    set_strong_level(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(engine.strong_level, 1000);
    reset_engine_state();
}
