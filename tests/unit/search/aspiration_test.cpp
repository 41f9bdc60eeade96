// SPDX-License-Identifier: MIT
// The windows of the deepening, read from the engine's own log, and what an iteration that ends
// outside its window, or not at all, does to the move.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "search/search_state.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::int32_t infinity = 60000001;

/// One call of the root search.
struct Call {
    std::int32_t alpha;
    std::int32_t beta;
    bool printed = false;  ///< a thinking line followed
    std::int32_t depth = 0;
    std::int32_t score = 0;
    std::vector<std::string> moves{};

    [[nodiscard]] bool failed_high() const { return printed && score >= beta; }
    [[nodiscard]] bool exact() const { return printed && score < beta; }
};

struct Search {
    std::vector<Call> calls;
    std::string move;
};

std::int32_t number_behind(const std::string& line, const std::string& text) {
    return std::stoi(line.substr(line.find(text) + text.size()));
}

Search search_in(const std::vector<std::string>& log) {
    Search search;
    for (const std::string& line : log) {
        if (line.find("RootAlpha = ") != std::string::npos) {
            search.calls.push_back(
                {number_behind(line, "RootAlpha = "), number_behind(line, "RootBeta = ")});
        } else if (line.starts_with("move ")) {
            search.move = line.substr(5, line.find(' ', 5) - 5);
        } else if (!line.empty() && line[0] >= '1' && line[0] <= '9' && !search.calls.empty()) {
            Call& call = search.calls.back();
            EXPECT_FALSE(call.printed) << "two lines of one call";
            std::istringstream words(line);
            std::int32_t hundredths = 0;
            std::uint32_t nodes = 0;
            words >> call.depth >> call.score >> hundredths >> nodes;
            for (std::string move; words >> move;) {
                call.moves.push_back(move);
            }
            call.printed = true;
        }
    }
    return search;
}

/// The search of a move to a depth, ended by the clock after so many readings at the latest. The
/// limit is a multiple of ten.
Search search_of(const std::string& fen, std::int32_t depth, std::int32_t readings) {
    const TemporaryFolder folder;
    begin_scene();
    engine.book_out = true;
    engine.max_depth = depth;
    engine.st_mode = true;
    engine.st_time = readings / 10;
    fake_ticks_per_reading = 1;
    Table table = position_from_fen(fen);
    log_enabled = add_info_in_log = true;
    {
        const CapturedOutput output;
        table.Mashine_chod();
    }
    reset_log();
    log_enabled = false;
    return search_in(log_lines());
}

std::vector<std::string> positions() {
    std::vector<std::string> found;
    std::ifstream file(CORVANE_TEST_DATA "/search/lines.expected");
    for (std::string line; std::getline(file, line);) {
        if (line.find('/') != std::string::npos && line[0] != '#') {
            found.push_back(line);
        }
    }
    return found;
}

class Aspiration : public testing::Test {};

}  // namespace

TEST_F(Aspiration, WindowLineOfTheLogIsIndented) {
    const TemporaryFolder folder;
    begin_scene();
    engine.max_depth = 1;
    Table table = start_position();
    log_enabled = add_info_in_log = true;
    {
        const CapturedOutput output;
        table.Mashine_chod();
    }
    reset_log();
    log_enabled = false;
    const std::vector<std::string> log = log_lines();
    EXPECT_EQ(std::ranges::count(log, std::string(41, ' ') +
                                          ">>>>>>> RootAlpha = -60000001 -  RootBeta = 60000001"),
              1);
}

TEST_F(Aspiration, EveryWindowFollowsFromTheOneBefore) {
    std::map<std::string, int> seen;
    const std::vector<std::string> fens = positions();
    ASSERT_EQ(fens.size(), 26U);
    for (const std::string& fen : fens) {
        const Search search = search_of(fen, 8, 40000);
        ASSERT_FALSE(search.calls.empty()) << fen;
        EXPECT_EQ(search.calls[0].alpha, -infinity);
        EXPECT_EQ(search.calls[0].beta, infinity);
        std::int32_t depth = 1;
        for (std::size_t i = 0; i + 1 < search.calls.size(); ++i) {
            const Call& call = search.calls[i];
            const Call& next = search.calls[i + 1];
            const std::string where = fen + " call " + std::to_string(i);
            const bool narrow = call.beta - call.alpha <= 75;
            EXPECT_TRUE(!call.printed || call.depth == depth) << where;
            if (call.exact()) {
                EXPECT_GT(call.score, call.alpha) << where;
                EXPECT_EQ(next.alpha, call.score - 37) << where;
                EXPECT_EQ(next.beta, call.score + 37) << where;
                ++depth;
                ++seen["exact"];
            } else if (call.failed_high()) {
                EXPECT_EQ(call.score, call.beta) << where;
                EXPECT_EQ(next.alpha, narrow ? call.beta - 1 : call.alpha) << where;
                EXPECT_EQ(next.beta, narrow ? call.beta + 199 : infinity) << where;
                ++seen[narrow ? "high in a narrow window" : "high in a wide one"];
            } else {
                // Nothing is printed; the score is alpha.
                EXPECT_EQ(next.beta, narrow ? call.alpha + 1 : call.beta) << where;
                EXPECT_EQ(next.alpha, narrow ? call.alpha - 199 : -infinity) << where;
                ++seen[narrow ? "low in a narrow window" : "low in a wide one"];
            }
        }
    }
    EXPECT_EQ(seen.size(), 5U);
    for (const auto& [what, times] : seen) {
        EXPECT_GE(times, 2) << what;
    }
}

TEST_F(Aspiration, MoveIsThatOfTheLastIterationInsideItsWindow) {
    int searches = 0;
    int ended_after_a_high_failure = 0;
    int ended_after_a_low_failure = 0;
    int other_move_than_the_high_failures = 0;
    for (const std::string& fen : positions()) {
        for (std::int32_t readings = 10; readings < 12000;
             readings += readings / 4 / 10 * 10 + 10) {
            const Search search = search_of(fen, 70, readings);
            std::string expected = legal_moves(position_from_fen(fen)).front();
            for (const Call& call : search.calls) {
                if (call.exact()) {
                    expected = call.moves.front();
                }
            }
            EXPECT_EQ(search.move, expected) << fen << " " << readings;
            // The last call was abandoned; the one before it tells how the iteration stood.
            if (search.calls.size() >= 2) {
                const Call& before = search.calls[search.calls.size() - 2];
                ended_after_a_high_failure += before.failed_high() ? 1 : 0;
                ended_after_a_low_failure += before.printed ? 0 : 1;
                other_move_than_the_high_failures +=
                    before.failed_high() && !before.moves.empty() && before.moves[0] != expected
                        ? 1
                        : 0;
            }
            ++searches;
        }
    }
    EXPECT_GT(searches, 500);
    EXPECT_GT(ended_after_a_high_failure, 10);
    EXPECT_GT(ended_after_a_low_failure, 10);
    EXPECT_GT(other_move_than_the_high_failures, 0);
}

TEST_F(Aspiration, AbandonedIterationPrintsNothing) {
    for (const std::string& fen : positions()) {
        const Search search = search_of(fen, 70, 3000);
        ASSERT_EQ(stop_flag, 1U);
        EXPECT_FALSE(search.calls.back().printed) << fen;
    }
}

TEST_F(Aspiration, HighFailureLeavesItsHintToo) {
    // Ended right after a line that failed high: the hint is what row 0 held then.
    int checked = 0;
    for (const std::string& fen : positions()) {
        for (std::int32_t readings = 100; readings < 4000; readings += 150) {
            const Search search = search_of(fen, 70, readings);
            for (auto call = search.calls.rbegin(); call != search.calls.rend(); ++call) {
                if (call->printed) {
                    if (call->moves.size() >= 2) {
                        EXPECT_EQ(move_text(engine.hint_move.posFrom, engine.hint_move.posTo,
                                            engine.hint_move.posInfo),
                                  call->moves[1])
                            << fen << " " << readings;
                        ++checked;
                    }
                    break;
                }
            }
        }
    }
    EXPECT_GT(checked, 300);
}

TEST_F(Aspiration, HighFailureOfTheFirstMoveHasALineWithoutMoves) {
    int empty = 0;
    for (const std::string& fen : positions()) {
        for (const Call& call : search_of(fen, 8, 20000).calls) {
            if (call.printed && call.moves.empty()) {
                EXPECT_TRUE(call.failed_high());
                ++empty;
            }
        }
    }
    EXPECT_GT(empty, 0);
}
