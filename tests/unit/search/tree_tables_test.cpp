// SPDX-License-Identifier: MIT
// Where a node asks the endgame tables, what it makes of the answer, and which nodes never ask.
#include <algorithm>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "board/move_list.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_state.h"
#include "support/endgame_files.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/reset_all.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"
#include "support/tree_scene.h"

namespace {

constexpr const char* won = "7k/8/8/8/8/1Q6/8/K7 w - -";
constexpr std::int32_t score_of_won = 32760;
constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";

/// A position of the three-man tables and what they say of it.
struct Known {
    const char* fen;
    std::int32_t score;
};
constexpr std::array<Known, 8> known_positions = {{
    {won, score_of_won},
    {"7k/8/8/8/8/1Q6/8/K7 b - -", -32759},
    {"k7/8/1q6/8/8/8/8/7K b - -", score_of_won},
    {"k7/8/1q6/8/8/8/8/7K w - -", -32759},
    {"8/8/8/8/8/8/6kR/K7 b - -", 0},         // the rook is lost
    {"7k/6Q1/6K1/8/8/8/8/8 b - -", -32640},  // mated
    {"8/8/8/8/7k/8/7Q/K7 b - -", -32758},    // in check
    {"8/8/4k3/8/8/8/4P3/4K3 w - -", 0},
}};

/// Counts that no position of these tests has: they stay unless a node has asked.
constexpr TbCounts nobody_asked = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};

class TreeTables : public TreeScene {
  protected:
    void TearDown() override { reset_all(); }

    /// The position with the tables of a folder. The time runs out after many nodes, so that a
    /// search in the place of an answer ends.
    void set_with_tables(const char* fen, const std::string& path = endgame_data) {
        set(fen);
        fake_ticks_per_reading = 1;
        time_limit_ms = 100000;
        start_endgame_tables(path);
        tb_counts = nobody_asked;
    }
};

}  // namespace

TEST_F(TreeTables, AnswerIsTheScoreWhateverWindowAndDepth) {
    int cases = 0;
    for (const Node node : remembering_nodes) {
        for (const Known& known : known_positions) {
            for (const std::int32_t alpha : {-full_window, -32700, 0, 32700, 40000}) {
                for (const std::int32_t depth : {1, 2, 30}) {
                    set_with_tables(known.fen);
                    EXPECT_EQ(search(node, depth, alpha, alpha + 10), known.score) << known.fen;
                    EXPECT_EQ(TotalNodes, 1U);
                    ++cases;
                }
            }
        }
    }
    EXPECT_EQ(cases, 240);
}

TEST_F(TreeTables, AnswerDoesNotDependOnThePly) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t at_ply : {1, 2, 3, 40, 68}) {
            set_with_tables(won);
            ply = at_ply;
            EXPECT_EQ(search(node, 2, -full_window, full_window), score_of_won);
            EXPECT_EQ(ply, at_ply);
            EXPECT_EQ(line_length(at_ply), at_ply);
        }
    }
}

TEST_F(TreeTables, NoMoveIsGeneratedAndNothingIsRemembered) {
    for (const Node node : remembering_nodes) {
        set_with_tables(won);
        const Table before = position;
        MoveList list_of_parent{};
        cur_moves = &list_of_parent;
        const auto history_before = history_good;
        EXPECT_EQ(search(node, 3, -full_window, full_window), score_of_won);
        EXPECT_EQ(cur_moves, &list_of_parent);
        EXPECT_EQ(list_of_parent.count, 0);
        EXPECT_EQ(history_good, history_before);
        EXPECT_EQ(cutting_move(), Move{});
        EXPECT_EQ(position, before);
        for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
            ASSERT_EQ(hash_table[slot].key, 777U);
        }
    }
}

TEST_F(TreeTables, AnswerComesBeforeStaticCutAndNullMove) {
    // Both would return beta: the side to move stands far above it.
    for (const Node node : remembering_nodes) {
        set_with_tables("7k/8/8/8/8/1Q6/1Q6/K7 w - -");
        iteration_depth = 5;
        ASSERT_EQ(search(Table::search_main, 1, -300, -200), -200);
        set_with_tables(won);
        iteration_depth = 5;
        EXPECT_EQ(search(node, 1, -300, -200), score_of_won);
        EXPECT_EQ(TotalNodes, 1U);
    }
}

TEST_F(TreeTables, RepetitionComesFirst) {
    for (const Node node : remembering_nodes) {
        set_with_tables(won);
        stood_in_game(position, 2);
        ply = 2;
        EXPECT_EQ(search(node, 2, -full_window, full_window), 0);
        EXPECT_EQ(tb_counts, nobody_asked);
    }
}

TEST_F(TreeTables, HashEntryThatCutsComesFirst) {
    constexpr std::int32_t stored_score = 4321;
    for (const Node node : remembering_nodes) {
        set_with_tables(won);
        put_entry(position, 3, hash_exact, stored_score);
        EXPECT_EQ(search(node, 3, -full_window, full_window), stored_score);
        EXPECT_EQ(tb_counts, nobody_asked);
        // Too shallow, a bound on the wrong side, or passed over on the walk: the table answers.
        set_with_tables(won);
        put_entry(position, 2, hash_exact, stored_score);
        EXPECT_EQ(search(node, 3, -full_window, full_window), score_of_won);
        put_entry(position, 3, hash_lower, stored_score);
        EXPECT_EQ(search(node, 3, -full_window, full_window), score_of_won);
        put_entry(position, 3, hash_exact, stored_score);
        follow_pv = 1;
        EXPECT_EQ(search(node, 3, -full_window, full_window), score_of_won);
        EXPECT_EQ(follow_pv, 1U);
        EXPECT_EQ(hash_slot(position).score, stored_score);
    }
}

TEST_F(TreeTables, StopComesFirst) {
    for (const Node node : remembering_nodes) {
        set_with_tables(won);
        stop_flag = 1;
        EXPECT_EQ(search(node, 3, -17, 500), -17);
        EXPECT_EQ(tb_counts, nobody_asked);
        set_with_tables(won);
        time_limit_ms = 0;
        EXPECT_EQ(search(node, 3, -17, 500), -17);
        EXPECT_EQ(stop_flag, 1U);
        EXPECT_EQ(tb_counts, nobody_asked);
        // A node whose count is a multiple of 2048 does not look at the clock.
        set_with_tables(won);
        time_limit_ms = 0;
        TotalNodes = 2047;
        EXPECT_EQ(search(node, 3, -17, 500), score_of_won);
        EXPECT_EQ(stop_flag, 0U);
    }
}

TEST_F(TreeTables, ClockIsReadOnceForAnAnswer) {
    for (const Node node : remembering_nodes) {
        set_with_tables(won);
        EXPECT_EQ(search(node, 3, -17, 500), score_of_won);
        EXPECT_EQ(fake_clock_readings, 1U);
    }
}

TEST_F(TreeTables, HorizonAndPlyLimitGoToQuiescence) {
    int cases = 0;
    for (const Node node : remembering_nodes) {
        for (const auto& [depth, at_ply] : {std::pair(0, 5), std::pair(-2, 5), std::pair(3, 69)}) {
            set_with_tables(won);
            ply = at_ply;
            const std::int32_t score = search(node, depth, -full_window, full_window);
            EXPECT_EQ(tb_counts, nobody_asked);
            EXPECT_EQ(score, evaluation());
            EXPECT_NE(score, score_of_won);
            ++cases;
        }
    }
    EXPECT_EQ(cases, 6);
}

TEST_F(TreeTables, CheckAtTheHorizonIsAsked) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t depth : {0, -3}) {
            set_with_tables("8/8/8/8/7k/8/7Q/K7 b - -");
            EXPECT_EQ(search(node, depth, -10, 10), -32758);
            EXPECT_EQ(TotalNodes, 1U);
        }
    }
}

TEST_F(TreeTables, NullNodeAndQuiescenceNeverAsk) {
    for (const char* const fen : {won, pawn_ending, "7k/8/8/3n4/8/8/3Q4/K7 w - -"}) {
        set_with_tables(fen);
        search(Table::search_null, 3, -full_window, full_window);
        EXPECT_GT(TotalNodes, 10U);
        EXPECT_EQ(tb_counts, nobody_asked);
        static_cast<void>(Table::quiesce(position, -full_window, full_window));
        EXPECT_EQ(tb_counts, nobody_asked);
    }
}

TEST_F(TreeTables, ParentTakesTheAnswerAsAScoreLikeOthers) {
    // The queen takes the knight; Black is then mated in eight moves.
    for (const Node node : remembering_nodes) {
        set_with_tables("7k/8/8/3n4/8/8/3Q4/K7 w - -");
        const Table child = after(position, {"d2d5"});
        const std::int32_t score = -answer_of_table(child);
        ASSERT_EQ(score, 32759);
        EXPECT_EQ(search(node, 2, -full_window, full_window), score);
        EXPECT_EQ(line_length(5), 6);
        EXPECT_EQ(vetka[5][5], move_of(position, "d2d5"));
        EXPECT_EQ(hash_slot(position).score, score);
        EXPECT_EQ(hash_slot(position).type, hash_exact);
        EXPECT_FALSE(is_stored(child));
    }
}

TEST_F(TreeTables, FiveMenAreAskedForAndSixAreNot) {
    constexpr std::uint32_t kqqqk_size = 12479974;
    const TemporaryFolder folder;
    for (const Node node : remembering_nodes) {
        set("7k/8/8/8/8/QQQ5/8/K7 w - -");
        know_all_tables();
        const std::uint32_t index = tb_index_of(position, tb_address(position));
        std::filesystem::remove("kqqqk.nbw");
        put_half("kqqqk.nbw", kqqqk_size, {{index, 33}});
        set_with_tables("7k/8/8/8/8/QQQ5/8/K7 w - -", "");
        EXPECT_EQ(search(node, 1, -10, 10), 32673);
        set_with_tables("7k/8/8/8/8/QQQR4/8/K7 w - -", "");
        search(node, 1, -10, 10);
        EXPECT_EQ(tb_counts, nobody_asked);
    }
}

TEST_F(TreeTables, FixedAnswerOfKppkpReachesTheSearch) {
    constexpr std::uint32_t kppkp_size = 89391280;
    const TemporaryFolder folder;
    put_half("kppkp.nbb", kppkp_size, {});
    for (const Node node : remembering_nodes) {
        set_with_tables("8/1p6/8/8/4P3/k1K1P3/8/8 b - -", "");
        EXPECT_EQ(search(node, 4, -10, 10), -32639);
        set_with_tables("8/1p6/8/8/8/k1K1P3/4P3/8 b - -", "");
        EXPECT_EQ(search(node, 4, -10, 10), 0);
    }
}

TEST_F(TreeTables, HalfThatIsMissingLeavesTheNodeToTheSearch) {
    const TemporaryFolder folder;
    copy_half("kqk.nbw");
    for (const Node node : remembering_nodes) {
        set_with_tables("7k/8/8/8/8/1Q6/8/K7 b - -", "");
        const std::int32_t score = search(node, 1, -full_window, full_window);
        const std::uint32_t nodes = TotalNodes;
        EXPECT_NE(tb_counts, nobody_asked);
        EXPECT_TRUE(is_stored(position));
        set("7k/8/8/8/8/1Q6/8/K7 b - -");
        EXPECT_EQ(search(node, 1, -full_window, full_window), score);
        EXPECT_EQ(TotalNodes, nodes);
    }
}

TEST_F(TreeTables, FailedReadIsAScoreOnceAndThenASearch) {
    for (const Node node : remembering_nodes) {
        const TemporaryFolder folder;
        copy_half("kqk.nbw");
        set_with_tables(won, "");
        std::filesystem::remove("kqk.nbw");
        EXPECT_EQ(search(node, 2, -10, 10), 32767);
        EXPECT_EQ(TotalNodes, 1U);
        EXPECT_FALSE(is_stored(position));
        const std::int32_t score = search(node, 2, -full_window, full_window);
        const std::uint32_t nodes = TotalNodes - 1;
        set(won);
        EXPECT_EQ(search(node, 2, -full_window, full_window), score);
        EXPECT_EQ(TotalNodes, nodes);
    }
}

namespace {

/// What a search to a fixed depth gave, an iteration at a time.
using Iterations = std::vector<Iteration>;

bool equal(const Iterations& one, const Iterations& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const Iteration& a, const Iteration& b) {
                          return a.score == b.score && a.nodes == b.nodes && a.line == b.line;
                      });
}

/// A search from empty tables, with the endgame tables of the path, or none.
Iterations iterations(const char* fen, std::int32_t depth, const char* path) {
    begin_scene();
    if (path != nullptr) {
        start_endgame_tables(path);
    }
    tb_counts = nobody_asked;
    Iterations all;
    search_fixed_depth(position_from_fen(fen), depth,
                       [&](const Iteration& iteration) { all.push_back(iteration); });
    return all;
}

}  // namespace

TEST_F(TreeTables, RootDoesNotAskForItsOwnPosition) {
    // Quiet moves of the first iteration lead to quiescence.
    const Iterations with = iterations(pawn_ending, 1, endgame_data.c_str());
    EXPECT_EQ(tb_counts, nobody_asked);
    EXPECT_TRUE(equal(with, iterations(pawn_ending, 1, nullptr)));
}

TEST_F(TreeTables, RootCountsANodeForEachMoveThatIsAnswered) {
    const Iterations with = iterations("7k/8/8/8/8/2Q5/8/1K6 b - -", 3, endgame_data.c_str());
    position = position_from_fen("7k/8/8/8/8/2Q5/8/1K6 b - -");
    std::int32_t best = -full_window;
    for (const std::string& move : legal_moves(position)) {
        best = std::max(best, -answer_of_table(after(position, {move})));
    }
    const auto moves = static_cast<std::uint32_t>(legal_moves(position).size());
    ASSERT_EQ(with.size(), 3U);
    EXPECT_EQ(with[1].score, best);
    EXPECT_EQ(with[2].score, best);
    EXPECT_EQ(with[1].nodes - with[0].nodes, 1 + moves);
    EXPECT_EQ(with[2].nodes - with[1].nodes, 1 + moves);
}

TEST_F(TreeTables, TablesOfOtherMaterialLeaveTheSearchAsItIs) {
    const TemporaryFolder folder;
    copy_half("knk.nbw");
    copy_half("knk.nbb");
    int cases = 0;
    int asked = 0;
    for (const auto& [fen, depth] :
         {std::pair("8/8/4k3/8/3r4/8/8/1K4Q1 w - -", 4),
          std::pair("8/8/4k3/8/3r4/8/8/1K4Q1 b - -", 4), std::pair("7k/8/8/8/8/8/1R6/K7 w - -", 5),
          std::pair("7k/8/8/8/8/1q6/8/3K4 w - -", 5), std::pair("3k4/8/8/2b5/8/8/1RB5/K7 w - -", 4),
          std::pair("3k4/3q4/8/8/8/8/1Q6/K7 b - -", 3),
          std::pair("3k4/8/8/2b5/3r4/8/1RB5/K7 w - -", 3),
          std::pair("8/8/4k3/8/8/8/8/1K6 w - -", 6),
          std::pair("6k1/5ppp/8/8/8/8/r4PPP/1R4K1 w - -", 4),
          std::pair("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 4)}) {
        const Iterations with = iterations(fen, depth, "");
        asked += tb_counts != nobody_asked ? 1 : 0;
        EXPECT_EQ(tb_max_men, 3);
        EXPECT_TRUE(equal(with, iterations(fen, depth, nullptr))) << fen;
        EXPECT_EQ(tb_max_men, 0);
        ++cases;
    }
    EXPECT_EQ(cases, 10);
    EXPECT_EQ(asked, 8);
}

TEST_F(TreeTables, TablesOfTheMaterialChangeTheSearch) {
    constexpr const char* queen_against_rook = "8/8/4k3/8/3r4/8/8/1K4Q1 w - -";
    EXPECT_FALSE(equal(iterations(queen_against_rook, 4, endgame_data.c_str()),
                       iterations(queen_against_rook, 4, nullptr)));
}
