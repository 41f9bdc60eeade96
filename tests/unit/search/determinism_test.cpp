// SPDX-License-Identifier: MIT
// The same input gives the same nodes, scores and lines, on every run and on both sides of `new`.
#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "board/set_up.h"
#include "search/hash_table.h"
#include "shell/command_loop.h"
#include "support/captured_output.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

/// Iterations of a search as text.
std::string searched(const Table& position, std::int32_t depth) {
    std::string text;
    search_fixed_depth(position, depth, [&](const Iteration& each) {
        text += std::to_string(each.depth) + " " + std::to_string(each.score) + " " +
                std::to_string(each.nodes) + " " + each.line + "\n";
    });
    return text;
}

const std::vector<std::string> positions = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "r2q1rk1/ppp2ppp/2np1n2/2b1p1B1/2B1P1b1/2NP1N2/PPP2PPP/R2Q1RK1 b - -",
    "6k1/5ppp/8/8/8/8/5PPP/1NB3K1 w - -",
};

constexpr const char* first_game = "new sd 5 time 30000 otim 30000 e2e4 d2d4 b1c3 hint ";
constexpr const char* second_game = "new sd 4 force d2d4 d7d5 c2c4 go g1f3 e2e3 ";

}  // namespace

TEST(Determinism, FreshSearchesAreEqual) {
    for (const std::string& fen : positions) {
        begin_scene();
        const std::string first = searched(position_from_fen(fen), 4);
        begin_scene();
        EXPECT_EQ(searched(position_from_fen(fen), 4), first) << fen;
        EXPECT_NE(first.find("\n4 "), std::string::npos);
    }
}

TEST(Determinism, SearchesWithAClearedTableAreEqualWhateverCameBetween) {
    for (const std::string& fen : positions) {
        begin_scene();
        const std::string first = searched(position_from_fen(fen), 4);
        for (const std::string& other : positions) {
            searched(position_from_fen(other), 3);
            hash_clear();
            EXPECT_EQ(searched(position_from_fen(fen), 4), first) << fen << " after " << other;
        }
    }
}

TEST(Determinism, GamesAreEqualOnBothSidesOfNew) {
    const auto output_of = [](Table& table, const std::string& words) {
        std::istringstream input(words);
        const CapturedOutput output;
        run_command_loop(input, table);
        return output.text();
    };
    begin_scene();
    Table table;
    set_start_position(table);
    const std::string first = output_of(table, first_game);
    const std::string second = output_of(table, second_game);
    EXPECT_GT(std::count(first.begin(), first.end(), '\n'), 15);
    EXPECT_GT(std::count(second.begin(), second.end(), '\n'), 8);
    EXPECT_NE(first, second);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(output_of(table, first_game), first);
        EXPECT_EQ(output_of(table, second_game), second);
        EXPECT_EQ(output_of(table, second_game), second);
    }
}
