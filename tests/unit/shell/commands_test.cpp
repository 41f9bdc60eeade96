// SPDX-License-Identifier: MIT
// What command words do to the engine's state, as far as it cannot be seen in what is printed.
#include "shell/commands.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>

#include "board/generate.h"
#include "board/set_up.h"
#include "shell/command_loop.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/captured_output.h"
#include "support/position.h"
#include "support/reset_all.h"

class Commands : public testing::Test {
  protected:
    Commands() {
        reset_all();
        set_start_position(table_);
    }
    ~Commands() override { reset_all(); }

    /// Runs the first word of a text as a command; gives the next word that it left.
    std::string run(const std::string& text) {
        std::istringstream stream(text);
        WordReader in(stream);
        const auto word = in.word();
        const auto legal = std::make_unique<MoveList>();
        cur_moves = legal.get();
        gen_legal(table_, table_.side);
        const CapturedOutput output;
        EXPECT_TRUE(run_command(word.value_or(""), {table_, *legal, in})) << text;
        output_ = output.text();
        return in.word().value_or("(end)");
    }

    /// The loop over a whole input; gives what was printed.
    std::string loop(const std::string& text) {
        std::istringstream stream(text);
        const CapturedOutput output;
        run_command_loop(stream, table_);
        return output.text();
    }

    Table table_;
    std::string output_;
};

TEST_F(Commands, LevelTakesThreeWordsAndTouchesNoClock) {
    EXPECT_EQ(run("level 40 5 0 after"), "after");
    EXPECT_EQ(engine.all_moves_game, 40);
    EXPECT_EQ(engine.time_plus, 0);
    EXPECT_EQ(run("level 30 5:00 12 after"), "after");
    EXPECT_EQ(engine.all_moves_game, 30);
    EXPECT_EQ(engine.time_plus, 12);
    EXPECT_EQ(engine.clock_left, 30000);
    EXPECT_EQ(engine.other_clock, 555);
}

TEST_F(Commands, LevelHasAtMostTwoHundredMoves) {
    run("level 300 5 0");
    EXPECT_EQ(engine.all_moves_game, 200);
    run("level 200 5 0");
    EXPECT_EQ(engine.all_moves_game, 200);
    run("level 199 5 0");
    EXPECT_EQ(engine.all_moves_game, 199);
    run("level 0 5 3");
    EXPECT_EQ(engine.all_moves_game, 0);
    EXPECT_EQ(engine.time_plus, 3);
}

TEST_F(Commands, LevelWithoutNumbersKeepsItsSettings) {
    EXPECT_EQ(run("level x 5 0"), "x");
    EXPECT_EQ(engine.all_moves_game, 40);
    EXPECT_EQ(run("level 60 5 x"), "x");
    EXPECT_EQ(engine.all_moves_game, 60);
    EXPECT_EQ(engine.time_plus, 0);
}

TEST_F(Commands, StrongIsStoredClamped) {
    run("strong 5000");
    EXPECT_EQ(engine.strong_level, 1000);
    run("strong -3");
    EXPECT_EQ(engine.strong_level, 0);
    EXPECT_EQ(run("strong x"), "x");
    EXPECT_EQ(engine.strong_level, 0);
}

TEST_F(Commands, WhiteAndBlackChangeTheSideAlone) {
    table_ = position_from_fen("r3k2r/8/8/8/4P3/8/8/R3K2R b KQkq e3");
    Table expected = table_;
    const EngineState before = engine;
    expected.side = white;
    run("white");
    EXPECT_TRUE(table_ == expected);
    run("white");
    EXPECT_TRUE(table_ == expected);
    expected.side = black;
    run("Black");
    EXPECT_TRUE(table_ == expected);
    EXPECT_EQ(engine.game_plies, before.game_plies);
    EXPECT_EQ(engine.force_mode, before.force_mode);
}

TEST_F(Commands, NextWordIsLookedUpForTheNewSide) {
    EXPECT_EQ(loop("force black e7e5 white e2e4"), "");
    EXPECT_EQ(table_.at(e5), b_pawn);
    EXPECT_EQ(table_.at(e4), w_pawn);
    EXPECT_EQ(table_.side, black);
    EXPECT_EQ(engine.game_line, "e7e5e2e4");
}

TEST_F(Commands, NewSetsAGameBackAndKeepsTheSettings) {
    engine.clock_left = engine.all_moves_game = engine.make_moves_game = engine.max_depth = 1;
    engine.other_clock = engine.time_plus = engine.st_time = engine.strong_level = 2;
    engine.st_mode = engine.force_mode = engine.book_out = engine.hint_valid = true;
    engine.fifty_count = engine.game_plies = 3;
    engine.game_line = "e2e4";
    engine.check_on = engine.resign_on = true;
    table_ = position_from_fen("4k3/8/8/8/8/8/8/4K3 b - -");
    game_store(black, table_.Array.data());
    game_store(white, table_.Array.data());
    run("new");
    Table start;
    set_start_position(start);
    EXPECT_EQ(table_.Array, start.Array);
    EXPECT_EQ(table_.side, white);
    EXPECT_EQ(table_.castling, 15U);
    EXPECT_EQ(engine.clock_left, 30000);
    EXPECT_EQ(engine.all_moves_game, 40);
    EXPECT_EQ(engine.make_moves_game, 0);
    EXPECT_EQ(engine.max_depth, 70);
    EXPECT_FALSE(engine.st_mode);
    EXPECT_FALSE(engine.force_mode);
    EXPECT_FALSE(engine.book_out);
    EXPECT_FALSE(engine.hint_valid);
    EXPECT_EQ(engine.fifty_count, 0);
    EXPECT_EQ(engine.game_plies, 0);
    EXPECT_EQ(engine.game_line, "");
    EXPECT_EQ(engine.other_clock, 2);
    EXPECT_EQ(engine.time_plus, 2);
    EXPECT_EQ(engine.st_time, 2);
    EXPECT_EQ(engine.strong_level, 2);
    EXPECT_TRUE(engine.check_on);
    EXPECT_TRUE(engine.resign_on);
}

TEST_F(Commands, NewStoresTheStartingPositionOnce) {
    run("new");
    // set_start_position empties the record too, and `start` would undo what is looked at here.
    EXPECT_EQ(game_top, 0);
    EXPECT_FALSE(game_repeated_twice(white, table_.Array.data()));
    game_store(white, table_.Array.data());
    EXPECT_TRUE(game_repeated_twice(white, table_.Array.data()));
}

TEST_F(Commands, TimeSetsTheClockAndInFixedTimeThatToo) {
    run("time 1234");
    EXPECT_EQ(engine.clock_left, 1234);
    EXPECT_EQ(engine.st_time, 0);
    run("st 5");
    EXPECT_TRUE(engine.st_mode);
    EXPECT_EQ(engine.st_time, 5);
    run("time 777");
    EXPECT_EQ(engine.clock_left, 777);
    EXPECT_EQ(engine.st_time, 777);
    run("otim 888");
    EXPECT_EQ(engine.other_clock, 888);
    EXPECT_EQ(engine.clock_left, 777);
}

TEST_F(Commands, WordThatIsNoNumberKeepsTheSettingAndGoesOn) {
    for (const char* command : {"sd", "st", "time", "otim", "strong", "level"}) {
        EXPECT_EQ(run(std::string(command) + " abc"), "abc") << command;
        EXPECT_EQ(run(std::string(command) + " 99999999999"), "99999999999") << command;
    }
    EXPECT_EQ(engine.max_depth, 70);
    EXPECT_FALSE(engine.st_mode);
    EXPECT_EQ(engine.clock_left, 30000);
    EXPECT_EQ(engine.other_clock, 555);
}

TEST_F(Commands, DepthHasNoBounds) {
    run("sd 500");
    EXPECT_EQ(engine.max_depth, 500);
    run("sd -4");
    EXPECT_EQ(engine.max_depth, -4);
}

TEST_F(Commands, GoLeavesForceModeAlsoWhenItOnlyClaims) {
    engine.force_mode = true;
    engine.fifty_count = 100;
    run("go");
    EXPECT_EQ(output_, "1/2-1/2 {50 moves}\n");
    EXPECT_FALSE(engine.force_mode);
    EXPECT_EQ(table_.side, white);
}

TEST_F(Commands, AnalyzeLeavesTheGameButNotTheRecord) {
    engine.max_depth = 1;
    engine.book_out = false;
    const Table before = table_;
    run("analyze");
    EXPECT_NE(output_.find("move "), std::string::npos);
    EXPECT_TRUE(table_ == before);
    EXPECT_EQ(engine.clock_left, 30000);
    EXPECT_FALSE(engine.book_out);
    EXPECT_EQ(game_top, 0) << "the position after its move is stored";
    EXPECT_EQ(engine.make_moves_game, 1);
}

TEST_F(Commands, ResultPassesOverItsComment) {
    EXPECT_EQ(run("result 1-0 {White mates} after"), "after");
    EXPECT_EQ(run("result 1-0 {} after"), "after");
    EXPECT_EQ(run("result 1-0 no comment at all"), "(end)");
    EXPECT_EQ(run("result * more words} after"), "after");
}

TEST_F(Commands, ProtoverTakesOneWord) {
    EXPECT_EQ(run("protover 2 after"), "after");
    EXPECT_EQ(output_, "feature myname=\"Corvane 4.97\"\nfeature done=1\n");
}

TEST_F(Commands, WordsThatDoNothing) {
    const Table before = table_;
    for (const char* word : {"xboard", "accepted", "post", "done", "myname", "hard", "easy"}) {
        EXPECT_EQ(run(std::string(word) + " after"), "after");
        EXPECT_EQ(output_, "");
    }
    EXPECT_TRUE(table_ == before);
}

TEST_F(Commands, HintBeforeASearchPrintsNothing) {
    run("hint");
    EXPECT_EQ(output_, "");
    engine.hint_valid = true;
    engine.hint_move = {e7, e5, 0};
    run("hint");
    EXPECT_EQ(output_, "Hint: e7e5 \n");
}

TEST_F(Commands, QuitEndsTheLoopInAnyCase) {
    EXPECT_EQ(loop("quit table"), "");
    EXPECT_EQ(loop("QUIT table"), "");
    EXPECT_EQ(loop(""), "");
}

TEST_F(Commands, OtherWordsAreNoCommands) {
    std::istringstream stream("x");
    WordReader in(stream);
    const auto legal = std::make_unique<MoveList>();
    for (const char* word :
         {"ping", "undo", "remove", "setboard", "draw", "name", "rating", "computer", "nopost",
          "exit", "epdtests", "tests", "evaltests", "book", "createbooks", "e2e4", "quit", ""}) {
        EXPECT_FALSE(run_command(word, {table_, *legal, in})) << word;
    }
}
