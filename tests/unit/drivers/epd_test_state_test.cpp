// SPDX-License-Identifier: MIT
// The search of a suite, and what a suite leaves in the engine's state.
#include <algorithm>

#include "board/set_up.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "shell/command_loop.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/epd_scene.h"
#include "support/fixed_depth.h"

namespace {

const std::string back_rank_line = "6k1/5ppp/8/8/8/8/5PPP/3R2K1 w - - ";
const std::string middle_game_line =
    "r1bqkb1r/pppp1ppp/2n2n2/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR w KQkq - ";

class EpdTestState : public EpdScene {
  protected:
    EpdTestState() { set_start_position(game_); }

    /// The command loop over a whole input; gives what was printed.
    std::string loop(const std::string& text) {
        std::istringstream stream(text);
        const CapturedOutput output;
        run_command_loop(stream, game_);
        return output.text();
    }

    Table game_;
};

/// What a search to a fixed depth prints, without times.
std::vector<std::string> without_times(const std::string& line, std::int32_t depth) {
    std::vector<std::string> lines;
    reset_search_state();
    hash_clear();
    history_reset();
    search_fixed_depth(epd_position(line), depth, [&](const Iteration& iteration) {
        lines.push_back(std::to_string(iteration.depth) + " " + std::to_string(iteration.score) +
                        " " + std::to_string(iteration.nodes) + " " + iteration.line);
    });
    return lines;
}

/// Lines of iterations with their third word, the time, and the last blank taken out.
std::vector<std::string> stripped(const std::vector<std::string>& lines) {
    std::vector<std::string> result;
    for (std::string line : lines) {
        const std::size_t time = line.find(' ', line.find(' ') + 1);
        line.erase(time, line.find(' ', time + 1) - time);
        line.erase(line.find_last_not_of(' ') + 1);
        result.push_back(line);
    }
    return result;
}

}  // namespace

TEST_F(EpdTestState, DeepensWithTheFullWindowAsFarAsTheTimeReaches) {
    std::size_t compared = 0;
    for (const std::string& line : {middle_game_line, back_rank_line}) {
        begin_scene();
        fake_ticks_per_reading = 1;
        const std::vector<std::string> lines = stripped(iterations(line + "bm Qxf7+\n", 30));
        ASSERT_GE(lines.size(), 4U);
        ASSERT_LE(lines.size(), 12U) << "the comparison has no clock";
        begin_scene();
        EXPECT_EQ(lines, without_times(line, static_cast<std::int32_t>(lines.size())));
        compared += lines.size();
    }
    EXPECT_GE(compared, 8U);
}

TEST_F(EpdTestState, EveryTestStartsFromEmptyTables) {
    fake_ticks_per_reading = 1;
    const std::string text = run(middle_game_line + "bm x\n" + middle_game_line + "bm x\n", 10);
    const std::size_t second = text.find("\n2 ");
    const std::size_t start = text.find("Start...");
    const std::size_t start_of_second = text.find("Start...", second);
    const std::size_t end = text.find("\nmove: ", start);
    const std::size_t end_of_second = text.find("\nmove: ", start_of_second);
    ASSERT_NE(end_of_second, std::string::npos);
    EXPECT_GT(end - start, 60U);
    EXPECT_EQ(text.substr(start_of_second, end_of_second - start_of_second),
              text.substr(start, end - start));
}

TEST_F(EpdTestState, KeysAreThoseOfThePosition) {
    // Wrong keys would show where two tests with different pawns share the cache of pawns.
    fake_ticks_per_reading = 1;
    const std::string both = run(middle_game_line + "bm x\n" + back_rank_line + "bm x\n", 10);
    const Table position = position_from_fen(back_rank_line);
    const std::vector<std::string> moves = legal_moves(position);
    const auto is_known = [&](const std::string& move) {
        return is_stored(after(position, {move}));
    };
    EXPECT_EQ(moves.size(), 20U);
    EXPECT_GE(std::count_if(moves.begin(), moves.end(), is_known), 5);
    begin_scene();
    fake_ticks_per_reading = 1;
    const std::string alone = run(back_rank_line + "bm x\n", 10);
    const std::size_t second = both.find("\n2 ");
    const std::size_t start = both.find("Start...", second);
    const std::size_t start_alone = alone.find("Start...");
    const std::size_t length = alone.find("\nmove: ") - start_alone;
    EXPECT_GT(length, 60U);
    EXPECT_EQ(both.substr(start, length), alone.substr(start_alone, length));
}

TEST_F(EpdTestState, FirstMoveOfTheLastWholeIterationIsTheMove) {
    const std::string line = back_rank_line + "bm Rd8+\n";
    EXPECT_NE(run(line, 0).find("Start...\nmove: d1e1 \nError "), std::string::npos)
        << "no iteration: the first of the list";
    // Whatever reading the clock stops at, the move is that of the last line printed.
    std::vector<std::string> moves;
    for (std::uint32_t ticks = 1000; ticks > 5; ticks = ticks * 9 / 10) {
        begin_scene();
        fake_ticks_per_reading = ticks;
        const std::string text = run(line, 1);
        const std::string move = line_of(text, "move: ");
        const std::size_t last = text.rfind('\n', text.find("\nmove: ") - 1);
        const std::string before = text.substr(last, text.find("\nmove: ") - last);
        const bool searched = before != "\nStart...";
        EXPECT_EQ(move, searched ? "d1d8 " : "d1e1 ") << ticks << before;
        EXPECT_NE(text.find(searched ? "\nOk " : "\nError "), std::string::npos) << ticks;
        moves.push_back(move);
    }
    EXPECT_EQ(moves.front(), "d1e1 ");
    EXPECT_EQ(moves.back(), "d1d8 ");
}

TEST_F(EpdTestState, RepetitionOfTheGameInProgressIsLookedAt) {
    const Table position = epd_position(back_rank_line);
    stood_in_game(after(position, {"d1d8"}), 2);
    fake_ticks_per_reading = 1;
    const std::vector<std::string> lines = iterations(back_rank_line + "\n", 5);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines.front().find("1 599999 "), std::string::npos) << "the mate is a draw";
    EXPECT_EQ(lines.front().find(" d1d8 "), std::string::npos);
}

TEST_F(EpdTestState, EnPassantCaptureIsAMoveOfTheTest) {
    const std::string board = "4k3/8/8/8/3Pp3/8/8/4K3 b - ";
    EXPECT_NE(run(board + "d3\n", 0).find(" e4d3 "), std::string::npos);
    EXPECT_EQ(run(board + "-\n", 0).find("e4d3"), std::string::npos);
    EXPECT_EQ(run(board + "- bm d3\n", 0).find("e4d3"), std::string::npos);
}

TEST_F(EpdTestState, CastlingIsNoMoveOfTheTest) {
    EXPECT_EQ(run("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -\n", 0).find("e1g1"), std::string::npos);
}

TEST_F(EpdTestState, TimeLimitIsLeftInMilliseconds) {
    run("", 7);
    EXPECT_EQ(time_limit_ms, 7000U);
    run(one_move_line + "\n", 0);
    EXPECT_EQ(time_limit_ms, 0U);
    EXPECT_NE(run("", -1).find("\nTime:-1\n\n"), std::string::npos);
    EXPECT_EQ(time_limit_ms, 4294966296U);
    run("", 5000000);
    EXPECT_EQ(time_limit_ms, 705032704U) << "5000000000 less 2 to the 32";
}

TEST_F(EpdTestState, SearchStateStartsAnewForEachTest) {
    TotalNodes = 4711;
    ply = 12;
    stop_flag = 1;
    follow_pv = 0;
    fake_ticks = 1234;
    vetka[0][0] = vetka[69][69] = {e2, e4, 0};
    run(one_move_line + "\n", 3);
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(ply, 0);
    EXPECT_EQ(stop_flag, 0U);
    EXPECT_EQ(search_start_tick, 1234U);
    EXPECT_EQ(vetka[0][0], Move{});
    EXPECT_EQ(vetka[69][69], Move{});
}

TEST_F(EpdTestState, SearchThatRanOutOfTimeDoesNotStopTheNext) {
    repeat_both_moves();
    fake_ticks_per_reading = 300;
    const std::string text = run(two_moves_line + "\n" + two_moves_line + "\n", 2);
    const std::string search = "Start...\n1 0 1200 1 \nmove: a1a2 \n";
    const std::size_t first = text.find(search);
    ASSERT_NE(first, std::string::npos) << text;
    EXPECT_NE(text.find(search, first + 1), std::string::npos) << text;
}

TEST_F(EpdTestState, PreviousLineIsFollowedAgainInEachIteration) {
    follow_pv = 0;
    repeat_both_moves();
    run(two_moves_line + "\n", 1);
    EXPECT_EQ(follow_pv, 1U) << "no node below the root has left the line";
}

TEST_F(EpdTestState, HashTableIsClearedAndItsAgeFlipsForEachTest) {
    const Table start = start_position();
    const std::uint8_t age = hash_age;
    put_entry(start, 5, hash_exact, 10);
    run("", 0);
    EXPECT_TRUE(is_stored(start)) << "no test, no search";
    EXPECT_EQ(hash_age, age);
    run(one_move_line + "\n", 0);
    EXPECT_FALSE(is_stored(start));
    EXPECT_NE(hash_age, age);
    run(one_move_line + "\n" + one_move_line + "\n", 0);
    EXPECT_NE(hash_age, age) << "twice";
    run(one_move_line + "\n", 0);
    EXPECT_EQ(hash_age, age);
}

TEST_F(EpdTestState, HistoryIsReset) {
    const Move move = {e2, e4, 0};
    history_raise(move, 500);
    history_lower_cut(move, 500);
    run("", 0);
    EXPECT_EQ(raised_by(move), 500);
    run(one_move_line + "\n", 0);
    EXPECT_EQ(raised_by(move), 0);
    EXPECT_EQ(cut_by(move), history_never_cut);
}

TEST_F(EpdTestState, RootSideIsThatOfTheLastTest) {
    run("7k/8/6K1/8/8/8/8/R7 b - -\n", 0);
    EXPECT_EQ(engine.root_side, black);
    run("7k/8/6K1/8/8/8/8/R7 b - -\n" + one_move_line + "\n", 0);
    EXPECT_EQ(engine.root_side, white);
}

TEST_F(EpdTestState, DeepestIterationOfTheGameIsNotThatOfATest) {
    engine.max_depth = 1;
    repeat_both_moves();
    EXPECT_EQ(iterations(two_moves_line + "\n", 1).size(), 100U);
    EXPECT_EQ(engine.max_depth, 1);
}

TEST_F(EpdTestState, GameClocksAndRecordStayAsTheyAre) {
    loop("force e2e4 e7e5 g1f3");
    const Table before = game_;
    engine.fifty_count = 33;
    engine.clock_left = 12345;
    engine.other_clock = 54321;
    engine.make_moves_game = 7;
    engine.hint_valid = true;
    engine.hint_move = {b8, c6, 0};
    const std::int32_t top = game_top;
    const std::uint32_t calendar = fake_calendar_seconds;
    fake_ticks_per_reading = 1;
    const std::string printed = loop("epdtest suite 2");
    EXPECT_NE(printed.find("Can't find test suite"), std::string::npos);
    run(middle_game_line + "bm Qxf7\n" + one_move_line + "\n", 2);
    EXPECT_TRUE(game_ == before);
    EXPECT_EQ(game_top, top);
    EXPECT_TRUE(engine.force_mode);
    EXPECT_FALSE(engine.book_out);
    EXPECT_FALSE(engine.st_mode);
    EXPECT_EQ(engine.game_line, "e2e4e7e5g1f3");
    EXPECT_EQ(engine.game_plies, 3);
    EXPECT_EQ(engine.fifty_count, 33);
    EXPECT_EQ(engine.clock_left, 12345);
    EXPECT_EQ(engine.other_clock, 54321);
    EXPECT_EQ(engine.make_moves_game, 7);
    EXPECT_TRUE(engine.hint_valid);
    EXPECT_EQ(engine.hint_move, (Move{b8, c6, 0}));
    EXPECT_EQ(fake_calendar_seconds, calendar);
}

TEST_F(EpdTestState, GameGoesOnAfterASuite) {
    write_file("suite", back_rank_line + "bm Rd8\n");
    const std::string text = loop("force e2e4 epdtest suite 0 e7e5 all_moves");
    EXPECT_NE(text.find("All 20 moves"), std::string::npos);
    EXPECT_TRUE(text.ends_with("All 29 moves\n")) << text;
    EXPECT_EQ(engine.game_line, "e2e4e7e5");
}

TEST_F(EpdTestState, CommandTakesTheFileAndThenTheSeconds) {
    const std::string expected = run(one_move_line + "bm Kb8\n", 4);
    EXPECT_NE(expected.find("\nTime:4\n"), std::string::npos);
    for (const char* word : {"epdtest", "test", "EPDTest", "TEST"}) {
        EXPECT_EQ(loop(std::string(word) + " suite 4"), expected) << word;
    }
}

TEST_F(EpdTestState, CommandWithoutSecondsRunsNoTest) {
    time_limit_ms = 99;
    EXPECT_EQ(loop("epdtest suite force"), "");
    EXPECT_TRUE(engine.force_mode) << "the word is a word of its own";
    EXPECT_EQ(loop("epdtest suite e2e4"), "");
    EXPECT_EQ(engine.game_line, "e2e4");
    EXPECT_EQ(loop("epdtest suite"), "");
    EXPECT_EQ(loop("epdtest"), "");
    EXPECT_EQ(time_limit_ms, 99U);
}
