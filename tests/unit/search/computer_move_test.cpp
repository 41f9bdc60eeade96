// SPDX-License-Identifier: MIT
// The computer's move: what is announced, kept and logged.
#include "search/computer_move.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "board/position_keys.h"
#include "board/set_up.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "support/computer_move_scene.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* single_move = "7k/8/8/8/8/8/5r2/K7 w - -";
constexpr const char* stalemated = "k7/8/1Q6/8/8/8/8/K7 b - -";

// White's first generated moves are those of the pawn.
constexpr const char* first_move_line = "move a2a4 ";

class ComputerMove : public ComputerMoveScene {};

}  // namespace

TEST_F(ComputerMove, EndsInTheMoveLineAndMakesTheMove) {
    set(pawn_ending);
    engine.max_depth = 3;
    const Table before = table;
    const std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3].size(), std::string("move a2a4 ").size());
    const std::string move = lines[3].substr(5, 4);
    Table expected = after(before, {move});
    expected.side = before.side;  // the caller turns it
    EXPECT_EQ(table, expected);
}

TEST_F(ComputerMove, PlaysTheFirstMoveOfTheLastFinishedLine) {
    for (const char* fen : {"6k1/5ppp/8/8/8/8/8/R5K1 w - -", "k7/8/8/3q4/4P3/8/8/K7 w - -"}) {
        set(fen);
        engine.max_depth = 2;
        const std::vector<std::string> lines = play();
        const std::string& line = lines[lines.size() - 2];
        EXPECT_NE(line.find(lines.back().substr(4, 6)), std::string::npos) << line;
    }
}

TEST_F(ComputerMove, OneLineForEachIteration) {
    set(pawn_ending);
    engine.max_depth = 1;
    std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("1 "));
    EXPECT_TRUE(is_move_line(lines[1]));
}

TEST_F(ComputerMove, ThinkingLineIsDepthScoreHundredthsNodesAndLine) {
    set(pawn_ending);
    plant(4242);
    engine.max_depth = 1;
    fake_ticks = 500;
    const std::vector<std::string> lines = play();
    EXPECT_EQ(lines[0], "1 4242 0 " + std::to_string(TotalNodes) + " a2a4 ");
}

TEST_F(ComputerMove, DepthOfOneIsOneIterationHoweverMuchTimeThereIs) {
    set(pawn_ending);
    engine.max_depth = 1;
    engine.clock_left = 100000000;
    EXPECT_EQ(play().size(), 2U);
}

TEST_F(ComputerMove, DepthOfZeroOrLessPlaysTheFirstMoveWithoutASearch) {
    for (const std::int32_t depth : {0, -1, -70}) {
        begin_scene();
        set(pawn_ending);
        engine.max_depth = depth;
        EXPECT_EQ(play(), std::vector<std::string>{first_move_line});
        EXPECT_EQ(TotalNodes, 0U);
    }
}

TEST_F(ComputerMove, NoTimePlaysTheFirstMoveAtOnce) {
    set(pawn_ending);
    no_time();
    EXPECT_EQ(play(), std::vector<std::string>{first_move_line});
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(fake_clock_readings, 3U);  // start, entry of the root search, end
}

TEST_F(ComputerMove, EmptyClockPlaysTheFirstMoveAtOnce) {
    for (const std::int32_t moves : {0, 40}) {
        set(pawn_ending);
        engine.clock_left = 0;
        engine.all_moves_game = moves;
        EXPECT_EQ(play().size(), 1U);
        EXPECT_EQ(TotalNodes, 1U);
    }
}

TEST_F(ComputerMove, SingleMoveComesWithNoLineAndNoTime) {
    set(single_move);
    ASSERT_EQ(legal_moves(table), std::vector<std::string>{"a1b1"});
    EXPECT_EQ(play(), std::vector<std::string>{"move a1b1 "});
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(fake_clock_readings, 2U);
    EXPECT_EQ(table.xywK, b1);
    EXPECT_EQ(game_top, 0);
}

TEST_F(ComputerMove, NoLegalMovePrintsTheLastPseudoLegalMoveLookedAt) {
    set(stalemated);
    const Table before = table;
    EXPECT_EQ(play(), std::vector<std::string>{"move a8a7 "});
    EXPECT_EQ(table.Array, before.Array);
    EXPECT_EQ(game_top, -1);
    EXPECT_EQ(engine.make_moves_game, 1);
    EXPECT_EQ(engine.game_plies, 1);
}

TEST_F(ComputerMove, NoMoveAtAllPrintsTwoSquaresOffTheBoard) {
    set("7k/8/8/8/8/8/8/8 w - -");
    table.xywK = 0;
    EXPECT_EQ(play(), std::vector<std::string>{"move      "});
}

TEST_F(ComputerMove, HintIsTheSecondMoveOfTheLine) {
    set(pawn_ending);
    engine.max_depth = 4;
    const std::vector<std::string> lines = play();
    const std::string& line = lines[lines.size() - 2];
    const std::string hint =
        move_text(engine.hint_move.posFrom, engine.hint_move.posTo, engine.hint_move.posInfo);
    EXPECT_TRUE(engine.hint_valid);
    EXPECT_EQ(engine.hint_move, vetka[0][1]);
    const std::string played = last_of(lines).substr(5, 5);
    EXPECT_NE(line.find(played + hint), std::string::npos) << line;
}

TEST_F(ComputerMove, HintStaysAsItWasWithoutASearch) {
    engine.hint_valid = false;
    set(single_move);
    play();
    EXPECT_FALSE(engine.hint_valid);
    engine.hint_valid = true;
    engine.hint_move = {e2, e4, 0};
    set(pawn_ending);
    no_time();
    play();
    EXPECT_EQ(engine.hint_move, (Move{e2, e4, 0}));
}

TEST_F(ComputerMove, MovesMadeWrapAtTheControlByAnExactMatchAlone) {
    struct Case {
        std::int32_t all;
        std::int32_t made;
        std::int32_t expected;
    };
    for (const Case& each : {Case{40, 0, 1}, Case{40, 38, 39}, Case{40, 39, 0}, Case{40, 40, 41},
                             Case{40, 75, 76}, Case{0, 5, 6}, Case{1, 0, 0}}) {
        set(single_move);
        engine.all_moves_game = each.all;
        engine.make_moves_game = each.made;
        play();
        EXPECT_EQ(engine.make_moves_game, each.expected) << each.all << " " << each.made;
    }
}

TEST_F(ComputerMove, ExpectedClockIsWhatIsLeftInMilliseconds) {
    set(single_move);
    engine.clock_left = 30000;
    fake_ticks_per_reading = 250;  // one step between start and end
    play();
    EXPECT_EQ(expected_clock, 300000 - 250);
    set(single_move);
    engine.clock_left = 214748365;
    fake_ticks_per_reading = 0;
    play();
    EXPECT_EQ(expected_clock, -2147483646);
}

TEST_F(ComputerMove, TimeOfTheSearchIsCountedAcrossTheWrapOfTheClock) {
    set(single_move);
    engine.clock_left = 1000;
    fake_ticks = 4294967290U;
    fake_ticks_per_reading = 20;
    play();
    EXPECT_EQ(expected_clock, 10000 - 20);
}

TEST_F(ComputerMove, StartOfASearchResetsItsCounters) {
    set(single_move);
    ply = 9;
    TotalNodes = 5;
    vetka[3][4] = {e2, e4, 0};
    vetka[0][0] = {e2, e4, 0};
    history_good[e2][e4] = 7;
    engine.root_side = black;
    engine.game_plies = 11;
    fake_ticks = 777;
    play();
    EXPECT_EQ(ply, 0);
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(vetka[3][4], Move{});
    EXPECT_EQ(vetka[0][0], Move{});
    EXPECT_EQ(history_good[e2][e4], 0);
    EXPECT_EQ(engine.root_side, white);
    EXPECT_EQ(engine.game_plies, 12);
    EXPECT_EQ(search_start_tick, 777U);
}

TEST_F(ComputerMove, SideThatIsThoughtForIsKept) {
    table = mirrored(position_from_fen(pawn_ending));
    no_time();
    play();
    EXPECT_EQ(engine.root_side, black);
    EXPECT_EQ(table.side, black);
}

TEST_F(ComputerMove, KeysAreComputedFromScratch) {
    set_start_position(table);
    ASSERT_NE(table.hash_lock, hash_lock_from_scratch(table));
    no_time();
    play();
    EXPECT_EQ(table.hash_lock, hash_lock_from_scratch(table));
    EXPECT_EQ(table.hash_index, hash_index_from_scratch(table));
    EXPECT_EQ(table.pawn_hash, pawn_hash_from_scratch(table));
}

TEST_F(ComputerMove, AgeOfTheTableFlipsWithEveryMove) {
    for (const int age : {'0', '1', '0'}) {
        set(single_move);
        play();
        EXPECT_EQ(hash_age, age);
    }
}

TEST_F(ComputerMove, LimitIsThatOfClockAndLevel) {
    set(single_move);
    engine.clock_left = 30000;
    play();
    EXPECT_EQ(time_limit_ms, 7317U);
    set(single_move);
    engine.all_moves_game = 0;
    engine.time_plus = 12;
    play();
    EXPECT_EQ(time_limit_ms, 22000U);
}

TEST_F(ComputerMove, SearchEndsAtTheLimit) {
    table = start_position();
    engine.st_mode = true;
    engine.st_time = 500;
    fake_ticks_per_reading = 1;
    play();
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_GE(fake_ticks, 5000U);
    EXPECT_LT(fake_ticks, 5200U);
}

TEST_F(ComputerMove, LogTellsHowTheTimeWasDivided) {
    const TemporaryFolder folder;
    set(single_move);
    engine.all_moves_game = 0;
    engine.make_moves_game = 7;
    engine.time_plus = 12;
    fake_ticks = 4000000000U;
    fake_ticks_per_reading = 9;
    log_enabled = add_info_in_log = true;
    play();
    reset_log();
    EXPECT_EQ(log_lines(), (std::vector<std::string>{
                               ">>>>>>> Time for analyze: time_begin = 4000000000",
                               ">>>>>>> Time for analyze: all_moves_game = 0",
                               ">>>>>>> Time for analyze: make_moves_game = 7",
                               ">>>>>>> Time for analyze:  time_plus = 12",
                               "",
                               ">>>>>>> Time for analyze: Time=300000",
                               ">>>>>>> Time for analyze: 22000",
                               ">>>>>>> Time for analyze: not DWORD22000",
                               "move a1b1 ",
                               ">>>>>>> Used time: 9",
                           }));
}

TEST_F(ComputerMove, LogTellsOfAFixedTimeAndPrintsTheLimitWithoutSign) {
    const TemporaryFolder folder;
    set(single_move);
    engine.st_mode = true;
    engine.st_time = -1;
    engine.clock_left = -500;
    log_enabled = add_info_in_log = true;
    play();
    reset_log();
    EXPECT_EQ(log_lines(), (std::vector<std::string>{
                               ">>>>>>> Time for analyze: time_begin = 0",
                               "ST_MODE IN Table::Mashine_chod()",
                               "4294967286",
                               ">>>>>>> Time for analyze: all_moves_game = 40",
                               ">>>>>>> Time for analyze: make_moves_game = 0",
                               ">>>>>>> Time for analyze:  time_plus = 0",
                               "",
                               ">>>>>>> Time for analyze: Time=-5000",
                               ">>>>>>> Time for analyze: 4294967286",
                               ">>>>>>> Time for analyze: not DWORD0",
                               "move a1b1 ",
                               ">>>>>>> Used time: 0",
                           }));
}

TEST_F(ComputerMove, InformationNeedsBothSwitches) {
    const TemporaryFolder folder;
    set(single_move);
    log_enabled = true;
    play();
    log_enabled = false;
    add_info_in_log = true;
    set(single_move);
    play();
    reset_log();
    EXPECT_EQ(log_lines(), std::vector<std::string>{"move a1b1 "});
}
