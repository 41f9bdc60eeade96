// SPDX-License-Identifier: MIT
// The search against its plain second writing, state for state: scores, nodes, lines, clock
// readings, history, the whole table. Positions of all phases, with full and narrow windows, tables
// of any size, a game record, and a clock that runs out at any moment.
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "search/search_state.h"
#include "shell/game_record.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/reference_search.h"
#include "support/search_pair.h"
#include "support/search_scene.h"

namespace {

/// Castling, en passant, promotions, pawns about to reach the seventh rank, checks both ways.
const std::vector<std::string> special_positions = {
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R b KQkq -",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "rnbqkb1r/ppp1pppp/5n2/3pP3/8/8/PPPP1PPP/RNBQKBNR w KQkq d6",
    "rnbqkbnr/ppp1pppp/8/8/3pP3/5N2/PPPP1PPP/RNBQKB1R b KQkq e3",
    "8/8/1P1k4/8/8/3K2p1/8/8 w - -",
    "8/8/1P1k4/8/8/3K2p1/8/8 b - -",
    "6k1/5ppp/8/8/8/8/r4PPP/1R4K1 w - -",
    "3r2k1/5ppp/2P5/8/8/2p5/5PPP/3R2K1 w - -",
    "r1bqkbnr/pppp1ppp/2n5/4p3/2B1P3/5Q2/PPPP1PPP/RNB1K1NR w KQkq -",
    "6k1/8/6K1/8/8/8/8/7R w - -",
    "7k/5Q2/8/8/8/8/8/K7 b - -",
    "k7/2Q5/1K6/8/8/8/8/8 b - -",
    "4k3/8/8/8/7q/8/6PP/4K1NR w - -",
    "8/P5k1/8/8/8/8/p5K1/8 w - -",
    "r2q1rk1/ppp2ppp/2np1n2/2b1p1B1/2B1P1b1/2NP1N2/PPP2PPP/R2Q1RK1 w - -",
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
};

std::vector<std::string> all_positions() {
    std::vector<std::string> positions = special_positions;
    std::ifstream file(CORVANE_TEST_DATA "/search/scores.expected");
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            positions.push_back(line.substr(0, line.find(" | ")));
        }
    }
    return positions;
}

constexpr std::uint32_t usual_slots = 4096;

/// Ends the deepening of a position, so that a run of many stays short.
constexpr std::uint32_t node_budget = 4000;

}  // namespace

TEST(TreeReference, FullWindowTreesAgree) {
    const std::vector<std::string> positions = all_positions();
    ASSERT_EQ(positions.size(), 170U);
    int iterations = 0;
    int at_depth_four = 0;
    for (const std::string& fen : positions) {
        SearchPair pair(position_from_fen(fen), usual_slots);
        pair.begin();
        for (std::int32_t depth = 1; depth <= 6; ++depth) {
            pair.iterate(depth, -full_window, full_window, true);
            ++iterations;
            at_depth_four += depth == 4 ? 1 : 0;
            if (pair.reference.nodes > node_budget) {
                break;
            }
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(iterations, 500);
    EXPECT_GT(at_depth_four, 100);
}

TEST(TreeReference, NarrowWindowsAgree) {
    int iterations = 0;
    for (const std::string& fen : all_positions()) {
        SearchPair pair(position_from_fen(fen), usual_slots);
        pair.begin();
        for (std::int32_t depth = 1; depth <= 4; ++depth) {
            pair.iterate(depth, -full_window, full_window, true);
            const std::int32_t middle = pair.score;
            if (pair.reference.nodes > node_budget / 2) {
                break;
            }
            pair.iterate(depth, middle - 37, middle + 37, true);
            pair.iterate(depth, middle - 200, middle - 30, true);
            pair.iterate(depth, middle + 30, middle + 200, true);
            pair.iterate(depth, 2950, 3050, true);
            iterations += 5;
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(iterations, 1500);
}

TEST(TreeReference, CrowdedTablesAgree) {
    int searches = 0;
    for (const std::string& fen : all_positions()) {
        for (const std::uint32_t slots : {1U, 7U, 64U}) {
            SearchPair pair(position_from_fen(fen), slots);
            // Three searches in a row, so that both ages come back.
            for (int search = 0; search < 3; ++search) {
                pair.begin();
                for (std::int32_t depth = 1; depth <= 3; ++depth) {
                    pair.iterate(depth, -full_window, full_window, true);
                    if (pair.reference.nodes > node_budget / 8) {
                        break;
                    }
                }
                ++searches;
            }
            ASSERT_FALSE(HasFailure());
        }
    }
    EXPECT_EQ(searches, 170 * 9);
}

TEST(TreeReference, SearchesOfTheNextMovesAgree) {
    int searches = 0;
    for (const std::string& fen : all_positions()) {
        SearchPair pair(position_from_fen(fen), usual_slots);
        for (int search = 0; search < 4; ++search) {
            pair.begin();
            const int depth_limit = search == 3 ? 2 : search + 2;
            for (std::int32_t depth = 1; depth <= depth_limit; ++depth) {
                pair.iterate(depth, -full_window, full_window, true);
                if (pair.reference.nodes > node_budget / 4) {
                    break;
                }
            }
            ++searches;
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(searches, 680);
}

TEST(TreeReference, TreesWithAGameBehindThemAgree) {
    std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same games every time
    int searches = 0;
    for (const std::string& fen : all_positions()) {
        const Table position = position_from_fen(fen);
        SearchPair pair(position, usual_slots);
        game_reset();
        // Positions one to four plies away stood in the game once, twice or three times.
        for (int walk = 0; walk < 12; ++walk) {
            Table there = position;
            for (int step = 0; step <= walk % 4; ++step) {
                const std::vector<std::string> moves = legal_moves(there);
                if (moves.empty()) {
                    break;
                }
                there = after(there, {moves[random() % moves.size()]});
            }
            stood_in_game(there, 1 + walk % 3);
        }
        // Captures without end, where a window lies far from the score, are cut off by the clock.
        pair.set_limit(4 * node_budget);
        pair.begin();
        for (std::int32_t depth = 1; depth <= 4; ++depth) {
            pair.iterate(depth, -full_window, full_window, true);
            for (const auto& [alpha, beta] : {std::pair(-50, 20), std::pair(-300, -100)}) {
                if (stop_flag == 0) {
                    pair.iterate(depth, alpha, beta, true);
                }
            }
            if (stop_flag != 0 || pair.reference.nodes > node_budget) {
                break;
            }
        }
        ++searches;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(searches, 170);
}

TEST(TreeReference, AbandonedTreesAgree) {
    int abandoned = 0;
    for (const std::string& fen : all_positions()) {
        for (const std::uint32_t readings : {2U, 3U, 5U, 9U, 40U, 333U, 1500U}) {
            SearchPair pair(position_from_fen(fen), usual_slots);
            pair.set_limit(readings);
            pair.begin();
            for (std::int32_t depth = 1; depth <= 8 && stop_flag == 0; ++depth) {
                pair.iterate(depth, -full_window, full_window, true);
            }
            abandoned += stop_flag != 0 ? 1 : 0;
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(abandoned, 1100);
}

TEST(TreeReference, SingleNodesAgreeAtAnyDepthAndPly) {
    using Node = ReferenceSearch::Node;
    int nodes = 0;
    for (const std::string& fen : all_positions()) {
        const Table position = position_from_fen(fen);
        SearchPair pair(position, usual_slots);
        for (const Node node : {Node::normal, Node::extended, Node::null}) {
            for (std::int32_t depth = -2; depth <= 2; ++depth) {
                for (const std::int32_t at_ply : {1, 2, 3, 40}) {
                    Table table = position;
                    table.capture_flag = depth & 1;
                    Table same = table;
                    iteration_depth = pair.reference.iteration = at_ply;
                    ply = pair.reference.ply = at_ply;
                    const std::int32_t score =
                        node == Node::normal     ? Table::search_main(table, depth, -90, 90)
                        : node == Node::extended ? Table::search_extended(table, depth, -90, 90)
                                                 : Table::search_null(table, depth, -90, 90);
                    EXPECT_EQ(score, pair.reference.search(node, same, depth, -90, 90)) << fen;
                    EXPECT_EQ(table, same) << fen;
                    ++nodes;
                }
            }
            EXPECT_EQ(pair.reference.difference_from_engine(true), "") << fen;
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(nodes, 170 * 60);
}
