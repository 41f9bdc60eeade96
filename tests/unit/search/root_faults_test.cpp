// SPDX-License-Identifier: MIT
// The root when the time runs out or its list is not legal; the reset and the sort of its scores.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "board/generate.h"
#include "search/root.h"
#include "search/search_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/root_scene.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr const char* rook_ending = "7k/8/8/8/8/8/8/R3K3 w - -";
constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* checked_by_rook = "4r2k/8/8/8/8/8/8/4K3 w - -";

class RootFaults : public RootScene {};

}  // namespace

TEST_F(RootFaults, IllegalMoveIsReportedAndScoredAsAMate) {
    position = position_from_fen("4r2k/8/8/8/8/8/4N3/4K3 w - -");
    cur_moves = &list;
    gen_all(position, position.side);
    const auto legal = static_cast<std::int32_t>(legal_moves(position).size());
    const CapturedOutput output;
    EXPECT_GT(search(1), -5000);
    std::string expected;
    std::int32_t illegal = 0;
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        if (root_scores[static_cast<std::size_t>(slot)] == -600000) {
            expected += "Eto kogda-nibud rabotaet?\n";
            ++illegal;
        }
    }
    EXPECT_EQ(illegal, list.count - legal);
    EXPECT_GE(illegal, 6);
    EXPECT_EQ(output.text(), expected);
}

TEST_F(RootFaults, IllegalMoveIsReportedInTheLog) {
    const TemporaryFolder folder;
    set("4r2k/8/8/8/8/8/4N3/4K3 w - -");
    list.count = 1;
    list.move(1) = {e2, c3, 0};
    log_enabled = true;
    const CapturedOutput output;
    EXPECT_EQ(search(1, 20, 30), 0);  // not in check and no legal move
    log_enabled = false;
    EXPECT_EQ(log_lines(), std::vector<std::string>{"Eto kogda-nibud rabotaet?"});
}

TEST_F(RootFaults, ListOfIllegalMovesInCheckIsAMate) {
    set(checked_by_rook);
    list.count = 1;
    list.move(1) = {e1, e2, 0};
    const CapturedOutput output;
    EXPECT_EQ(search(1), -600000);
    EXPECT_EQ(root_scores[1], -600000);
}

TEST_F(RootFaults, NoTimeStopsOnEntry) {
    set(rook_ending);
    time_limit_ms = 0;
    line_length(0) = 9;
    EXPECT_EQ(search(1, 17, 30), 17);
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(fake_clock_readings, 1U);
    EXPECT_EQ(line_length(0), 9);
}

TEST_F(RootFaults, EntryReadsTheClockOnEveryCall) {
    set(rook_ending);
    time_limit_ms = 0;
    TotalNodes = 2047;  // no exception for a count of 2048 here
    search(1);
    EXPECT_EQ(TotalNodes, 2048U);
    EXPECT_EQ(fake_clock_readings, 1U);
    EXPECT_EQ(stop_flag, 1U);
}

TEST_F(RootFaults, ClockIsReadBeforeEachMove) {
    // Readings: entry, then one before a move and one in its quiet child, in turns.
    set(pawn_ending);
    ASSERT_GE(list.count, 4);
    fake_ticks_per_reading = 1;
    time_limit_ms = 5;  // the sixth reading, before the third move, sees 5
    const std::int32_t score = search(1);
    EXPECT_EQ(fake_clock_readings, 6U);
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_EQ(TotalNodes, 3U);
    EXPECT_EQ(score, std::max(root_scores[1], root_scores[2]));
    EXPECT_NE(root_scores[2], 0);
    EXPECT_EQ(root_scores[3], 0);
}

TEST_F(RootFaults, ScoreOfAnAbandonedMoveIsUsedLikeAnyOther) {
    // The fifth reading is that of the second move's child, which returns its alpha: beta here.
    set(pawn_ending);
    fake_ticks_per_reading = 1;
    time_limit_ms = 4;
    EXPECT_EQ(search(1, -full_window, 5000), 5000);
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_EQ(root_scores[2], 5000);
    EXPECT_EQ(cut_by(list.move(2)), 1000000 - 3);
}

TEST_F(RootFaults, ResetClearsTheScoresOfTheListAlone) {
    root_scores.fill(9);
    reset_root_scores(3);
    EXPECT_EQ(root_scores[0], 9);
    EXPECT_EQ(root_scores[1], 0);
    EXPECT_EQ(root_scores[3], 0);
    EXPECT_EQ(root_scores[4], 9);
}

TEST_F(RootFaults, SortPutsHighScoresFirstAndKeepsTheOrderOfEquals) {
    std::mt19937 random(3);  // NOLINT(cert-msc51-cpp): the same lists every time
    int lists = 0;
    for (std::int32_t count = 0; count <= 60; ++count) {
        for (int round = 0; round < 5; ++round) {
            struct Row {
                std::int32_t score;
                Move move;
            };
            std::vector<Row> rows;
            list.count = count;
            for (std::int32_t slot = 1; slot <= count; ++slot) {
                const auto score = static_cast<std::int32_t>(random() % 7) - 3;
                rows.push_back({score, {slot, 0, 0}});
                list.move(slot) = rows.back().move;
                root_scores[static_cast<std::size_t>(slot)] = score;
            }
            std::stable_sort(rows.begin(), rows.end(),
                             [](const Row& a, const Row& b) { return a.score > b.score; });
            sort_root_list(list);
            for (std::int32_t slot = 1; slot <= count; ++slot) {
                const Row& row = rows[static_cast<std::size_t>(slot) - 1];
                ASSERT_EQ(list.move(slot), row.move);
                ASSERT_EQ(root_scores[static_cast<std::size_t>(slot)], row.score);
            }
            ++lists;
        }
    }
    EXPECT_EQ(lists, 305);
}
