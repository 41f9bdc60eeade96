// SPDX-License-Identifier: MIT
// Static and quiescence scores, and principal variations with node counts, worked out by an
// independent program for positions of all phases.
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

#include "search/search_state.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

const std::string data_dir = CORVANE_TEST_DATA "/search/";

bool is_comment_or_blank(const std::string& line) {
    return line.empty() || line[0] == '#';
}

}  // namespace

TEST(ReferenceScores, StaticAndQuiescenceAgree) {
    std::ifstream file(data_dir + "scores.expected");
    int rows = 0;
    for (std::string line; std::getline(file, line);) {
        if (is_comment_or_blank(line)) {
            continue;
        }
        const auto first = line.find(" | ");
        const auto second = line.find(" | ", first + 3);
        const std::string fen = line.substr(0, first);
        const std::int32_t expected_static = std::stoi(line.substr(first + 3));
        std::istringstream rest(line.substr(second + 3));
        std::int32_t expected_quiescence = 0;
        std::uint32_t expected_nodes = 0;
        rest >> expected_quiescence >> expected_nodes;

        reset_all();
        Table table = position_from_fen(fen);
        EXPECT_EQ(Table::evaluate(table, 0, 0), expected_static) << fen;
        time_limit_ms = std::numeric_limits<std::uint32_t>::max();
        EXPECT_EQ(Table::quiesce(table, -full_window, full_window), expected_quiescence) << fen;
        EXPECT_EQ(TotalNodes, expected_nodes) << fen;
        ++rows;
    }
    EXPECT_EQ(rows, 150);
}

TEST(ReferenceScores, LinesAgreeNodeForNode) {
    std::ifstream file(data_dir + "lines.expected");
    int positions = 0;
    int rows = 0;
    std::string fen;
    std::vector<std::string> expected;
    const auto check = [&] {
        if (expected.empty()) {
            return;
        }
        reset_all(16);
        std::size_t i = 0;
        search_fixed_depth(position_from_fen(fen), static_cast<std::int32_t>(expected.size()),
                           [&](const Iteration& found) {
                               const std::string text =
                                   std::to_string(found.depth) + " " + std::to_string(found.score) +
                                   " " + std::to_string(found.nodes) + " " + found.line;
                               EXPECT_EQ(text, expected[i++]) << fen;
                           });
        ++positions;
        rows += static_cast<int>(expected.size());
        expected.clear();
    };
    for (std::string line; std::getline(file, line);) {
        if (is_comment_or_blank(line)) {
            continue;
        }
        if (line.find('/') != std::string::npos) {
            check();
            fen = line;
        } else {
            expected.push_back(line);
        }
    }
    check();
    EXPECT_EQ(positions, 26);
    EXPECT_EQ(rows, 146);
}
