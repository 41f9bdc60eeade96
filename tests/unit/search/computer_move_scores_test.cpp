// SPDX-License-Identifier: MIT
// What the computer does about its scores: it resigns, or takes more time over a surprise.
#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "search/computer_move.h"
#include "search/hash_table.h"
#include "search/search_state.h"
#include "shell/command_loop.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/captured_output.h"
#include "support/computer_move_scene.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* single_move = "7k/8/8/8/8/8/5r2/K7 w - -";

// Depth 4 scores a queen ahead, depth 5 sees the mate.
constexpr const char* mate_in_three = "5k2/1Q5K/8/8/8/8/8/8 w - -";
constexpr const char* warning = "Warning: Very strange value! ";

class ComputerMoveScores : public ComputerMoveScene {};

}  // namespace

TEST_F(ComputerMoveScores, ScoreOfMinus50000DoesNotResign) {
    set(pawn_ending);
    plant(-50000);
    engine.max_depth = 1;
    engine.resign_on = true;
    const std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("1 -50000 "));
    EXPECT_TRUE(is_move_line(lines[1]));
}

TEST_F(ComputerMoveScores, ScoreBelowMinus50000Resigns) {
    set(pawn_ending);
    plant(-50001);
    engine.resign_on = true;
    engine.max_depth = 5;
    const Table before = table;
    const std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("1 -50001 "));
    EXPECT_EQ(lines[1], "resign");
    EXPECT_EQ(table.Array, before.Array);
    EXPECT_EQ(table.side, before.side);
    EXPECT_EQ(game_top, -1);
    EXPECT_EQ(engine.make_moves_game, 0);
    EXPECT_TRUE(engine.hint_valid);
}

TEST_F(ComputerMoveScores, LoopTurnsTheSideAfterAResignation) {
    set(pawn_ending);
    plant(-50001);
    engine.resign_on = true;
    const Table before = table;
    std::istringstream words("go");
    const CapturedOutput output;
    run_command_loop(words, table);
    EXPECT_TRUE(output.text().ends_with("resign\n"));
    EXPECT_EQ(table.side, black);
    EXPECT_EQ(table.Array, before.Array);
}

TEST_F(ComputerMoveScores, ResignationKeepsThePreviousScore) {
    play_with_score(90);
    set(pawn_ending);
    plant(-50001);
    engine.resign_on = true;
    ASSERT_EQ(last_of(play()), "resign");
    hash_clear();
    engine.resign_on = false;
    EXPECT_EQ(std::ranges::count(play_with_zeros(3), warning), 1);
}

TEST_F(ComputerMoveScores, ScoreThatWarnedIsThePreviousOneAfterAResignation) {
    // Depth 3 scores a queen behind, depth 4 sees the mate, warns and resigns.
    constexpr const char* mated_in_three = "5k2/1Q6/6K1/8/8/8/8/8 b - -";
    play_with_score(-21905);
    set(mated_in_three);
    engine.resign_on = true;
    engine.max_depth = 5;
    std::vector<std::string> lines = play();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[lines.size() - 3], warning);
    EXPECT_TRUE(lines[lines.size() - 2].starts_with("4 -599996 "));
    EXPECT_EQ(last_of(lines), "resign");
    hash_clear();
    set(mated_in_three);
    engine.max_depth = 3;
    lines = play();
    EXPECT_EQ(std::ranges::count(lines, warning), 1);
    EXPECT_TRUE(lines[lines.size() - 2].starts_with("3 -21905 "));
}

TEST_F(ComputerMoveScores, WithoutResigningALostGameIsPlayedOn) {
    for (const std::int32_t score : {-50001, -599990}) {
        set(pawn_ending);
        plant(score);
        engine.max_depth = 1;
        EXPECT_TRUE(is_move_line(last_of(play())));
    }
}

TEST_F(ComputerMoveScores, FirstSearchOfAGameWarnsOfNothing) {
    EXPECT_EQ(std::ranges::count(play_with_zeros(3), warning), 0);
    play_with_score(20000);
    forget_previous_score();
    EXPECT_EQ(std::ranges::count(play_with_zeros(3), warning), 0);
}

TEST_F(ComputerMoveScores, JumpOfNinetyInEitherDirectionWarnsAndTriplesTheTime) {
    for (const std::int32_t previous : {90, -90, 91, -600000, 5000}) {
        begin_scene();
        engine.st_mode = true;
        engine.st_time = 100;
        play_with_score(previous);
        EXPECT_EQ(time_limit_ms, 1000U);
        const std::vector<std::string> lines = play_with_zeros(3);
        ASSERT_EQ(lines.size(), 4U);
        EXPECT_TRUE(lines[1].starts_with("2 0 "));
        EXPECT_EQ(lines[2], warning);
        EXPECT_TRUE(lines[3].starts_with("3 0 "));
        EXPECT_EQ(time_limit_ms, 3000U);
    }
}

TEST_F(ComputerMoveScores, JumpBelowNinetyDoesNotWarn) {
    for (const std::int32_t previous : {89, -89, 0, 1}) {
        begin_scene();
        engine.st_mode = true;
        engine.st_time = 100;
        play_with_score(previous);
        EXPECT_EQ(play_with_zeros(4).size(), 4U);
        EXPECT_EQ(time_limit_ms, 1000U);
    }
}

TEST_F(ComputerMoveScores, JumpBeforeDepthThreeDoesNotWarn) {
    for (const std::int32_t depth : {1, 2}) {
        begin_scene();
        play_with_score(5000);
        EXPECT_EQ(std::ranges::count(play_with_zeros(depth), warning), 0);
    }
}

TEST_F(ComputerMoveScores, WarningComesAtMostOnceInASearchAndAgainInTheNext) {
    play_with_score(5000);
    EXPECT_EQ(std::ranges::count(play_with_zeros(6), warning), 1);
    hash_clear();
    game_reset();
    play_with_score(5000);
    EXPECT_EQ(std::ranges::count(play_with_zeros(6), warning), 1);
}

TEST_F(ComputerMoveScores, SecondJumpInASearchDoesNotWarn) {
    // Far off the score before from depth 3 on; depth 5 sees the mate, another jump.
    play_with_score(-5000);
    hash_clear();
    set(mate_in_three);
    engine.max_depth = 5;
    const std::vector<std::string> lines = play();
    const auto warned = std::ranges::find(lines, warning);
    ASSERT_NE(warned, lines.end());
    EXPECT_TRUE((warned + 1)->starts_with("3 21"));
    EXPECT_TRUE(lines[lines.size() - 2].starts_with("5 599995 "));
    EXPECT_EQ(std::ranges::count(lines, warning), 1);
    EXPECT_EQ(time_limit_ms, 3U * 7500U);
}

TEST_F(ComputerMoveScores, LaterIterationMayBeTheOneThatWarns) {
    set(mate_in_three);
    engine.max_depth = 4;
    EXPECT_EQ(std::ranges::count(play(), warning), 0);
    hash_clear();
    set(mate_in_three);
    engine.max_depth = 5;
    const std::vector<std::string> lines = play();
    const auto warned = std::ranges::find(lines, warning);
    ASSERT_NE(warned, lines.end());
    EXPECT_TRUE((warned + 1)->starts_with("5 599995 "));
    EXPECT_EQ(std::ranges::count(lines, warning), 1);
}

TEST_F(ComputerMoveScores, SingleMoveKeepsTheScoreOfTheSearchBefore) {
    play_with_score(90);
    set(single_move);
    play();
    game_reset();
    EXPECT_EQ(std::ranges::count(play_with_zeros(3), warning), 1);
}

TEST_F(ComputerMoveScores, SingleMoveFirstInAGameCountsAsAScoreOfZero) {
    set(single_move);
    play();
    hash_clear();
    game_reset();
    EXPECT_EQ(std::ranges::count(play_with_zeros(3), warning), 0);
    reset_computer_move();
    set(single_move);
    play();
    // Now a search that ends 90 off zero would warn; one that scores the same as zero does not.
    set("7k/8/8/8/8/8/8/RK6 w - -");
    engine.max_depth = 3;
    EXPECT_EQ(std::ranges::count(play(), warning), 1);
}
