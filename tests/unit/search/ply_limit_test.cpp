// SPDX-License-Identifier: MIT
// The limit of 69 plies: that it is reached, that the search ends, and that nothing outside a table
// is touched when the count of plies drifts. To be run under the sanitizers as well.
#include <array>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "board/generate.h"
#include "board/move_list.h"
#include "search/search_state.h"
#include "shell/engine_state.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_pair.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

/// Two kings in cages of two squares, behind pawns and bishops that cannot move. Beside them one
/// pawn of each side can make one step.
constexpr const char* cages = "5bk1/4p1p1/4P1P1/8/p7/4p1p1/P3P1P1/5BK1 w - -";

/// Positions with captures in nearly every line.
const std::vector<std::string> busy_positions = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "r2q1rk1/ppp2ppp/2np1n2/2b1p1B1/2B1P1b1/2NP1N2/PPP2PPP/R2Q1RK1 b - -",
    "5bk1/4p1p1/4P1P1/pp6/PP6/4p1p1/4P1P1/5BK1 w - -",
    "k7/8/3p4/p2P1p2/P2P1P2/8/8/K7 w - -",
};

/// The thinking lines of a computer's move in the cages.
std::vector<std::string> lines_of_cages(std::int32_t max_depth) {
    begin_scene();
    engine.max_depth = max_depth;
    Table table = position_from_fen(cages);
    const CapturedOutput output;
    table.Mashine_chod();
    std::istringstream text(output.text());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::size_t moves_in(const std::string& thinking_line) {
    std::istringstream words(thinking_line);
    std::size_t count = 0;
    for (std::string word; words >> word;) {
        ++count;
    }
    return count - 4;
}

/// A count of plies that has drifted leaves moves on the board; the reports of make-move that
/// follow from it are kept off the screen.
class PlyLimit : public testing::Test {
  private:
    CapturedOutput reports_;
};

}  // namespace

TEST_F(PlyLimit, BlockedPawnEndingIsSearchedToPly69) {
    const std::vector<std::string> lines = lines_of_cages(70);
    EXPECT_EQ(lines.back(), "move a2a3 ");
    const std::string& deepest = lines[lines.size() - 2];
    EXPECT_EQ(deepest.substr(0, 3), "70 ");
    EXPECT_EQ(moves_in(deepest), 69U);
    EXPECT_EQ(line_length(0), 69);
    EXPECT_EQ(line_length(69), 69);
}

TEST_F(PlyLimit, IterationsBeyondTheLimitAddNoPly) {
    for (const std::int32_t max_depth : {71, 90, 128, 150, 300}) {
        const std::vector<std::string> lines = lines_of_cages(max_depth);
        const std::string& deepest = lines[lines.size() - 2];
        EXPECT_EQ(deepest.substr(0, deepest.find(' ')), std::to_string(max_depth));
        EXPECT_LE(moves_in(deepest), 69U);
        EXPECT_EQ(line_length(69), 69);
        EXPECT_EQ(line_length(70), 0);
        EXPECT_EQ(ply, 0);
    }
}

TEST_F(PlyLimit, WholeRunAgreesWithTheSecondWriting) {
    SearchPair pair(position_from_fen(cages), 4096);
    pair.begin();
    for (std::int32_t depth = 1; depth <= 100; ++depth) {
        pair.iterate(depth, -full_window, full_window, true);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(line_length(69), 69);
}

TEST_F(PlyLimit, CapturesAtTheLimitMakeThePlyDriftAndTheSearchStillEnds) {
    // Straight to depth 75, so that the first line runs into the limit.
    int drifted = 0;
    for (const std::string& fen : busy_positions) {
        SearchPair pair(position_from_fen(fen), 4096);
        pair.set_limit(60000);
        pair.begin();
        pair.iterate(75, -full_window, full_window, false);
        EXPECT_EQ(line_length(69), 69) << fen;
        // Without a drift no move is made at ply 70.
        drifted += current_line[70] != Move{} ? 1 : 0;
    }
    EXPECT_GE(drifted, 3);
}

TEST_F(PlyLimit, DriftAtTheRootLeavesItsPositionAlone) {
    int moved = 0;
    for (const std::string& fen : busy_positions) {
        begin_scene();
        const Table table = position_from_fen(fen);
        const Table before = table;
        MoveList list;
        cur_moves = &list;
        gen_legal(table, table.side);
        iteration_depth = 75;
        follow_pv = 1;
        fake_ticks_per_reading = 1;
        time_limit_ms = 20000;
        static_cast<void>(Table::search_root(table, 75, -full_window, full_window, list));
        EXPECT_EQ(table, before);
        moved += ply != 0 ? 1 : 0;  // the driver sets it right before the next iteration
    }
    EXPECT_GE(moved, 6);
}

TEST_F(PlyLimit, DriverSetsTheDriftedPlyRight) {
    begin_scene();
    ply = 500;
    Table table = position_from_fen(cages);
    engine.max_depth = 3;
    table.Mashine_chod();
    EXPECT_EQ(ply, 0);
}

TEST_F(PlyLimit, EveryKindOfNodeNearTheLimitAgreesWithTheSecondWriting) {
    using Kind = ReferenceSearch::Node;
    constexpr std::array<Kind, 3> kinds = {Kind::normal, Kind::extended, Kind::null};
    int cases = 0;
    int drifted = 0;
    for (const std::string& fen : busy_positions) {
        for (const std::int32_t at_ply : {60, 66, 67, 68, 69, 70, 90}) {
            for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
                SearchPair pair(position_from_fen(fen), 4096);
                pair.set_limit(3000);
                Table table = position_from_fen(fen);
                Table same = table;
                ply = pair.reference.ply = at_ply;
                iteration_depth = pair.reference.iteration = 20;
                const std::int32_t score = all_nodes[kind](table, 12, -500, 500);
                EXPECT_EQ(score, pair.reference.search(kinds[kind], same, 12, -500, 500)) << fen;
                EXPECT_EQ(table, same) << fen;
                EXPECT_EQ(pair.reference.difference_from_engine(false), "") << fen << at_ply;
                drifted += ply > at_ply ? 1 : 0;
                ++cases;
            }
        }
    }
    EXPECT_EQ(cases, 168);
    EXPECT_GT(drifted, 50);
}

TEST_F(PlyLimit, QuiescenceNearTheLimitAgreesWithTheSecondWriting) {
    int drifted = 0;
    for (const std::string& fen : busy_positions) {
        for (const std::int32_t at_ply : {50, 66, 67, 68, 69, 70, 71, 90, 300}) {
            SearchPair pair(position_from_fen(fen), 4096);
            pair.set_limit(3000);
            Table table = position_from_fen(fen);
            Table same = table;
            ply = pair.reference.ply = at_ply;
            const std::int32_t score = Table::quiesce(table, -full_window, full_window);
            EXPECT_EQ(score, pair.reference.quiesce(same, -full_window, full_window)) << fen;
            EXPECT_EQ(table, same) << fen;
            EXPECT_EQ(pair.reference.difference_from_engine(false), "") << fen << at_ply;
            drifted += ply > at_ply ? 1 : 0;
        }
    }
    EXPECT_GT(drifted, 20);
}
