// SPDX-License-Identifier: MIT
// Single nodes of the tree, called by hand.
#pragma once

#include <array>
#include <gtest/gtest.h>
#include <string>

#include "search/search_state.h"
#include "support/search_scene.h"

/// One of the three kinds of node.
using Node = std::int32_t (*)(Table&, std::int32_t, std::int32_t, std::int32_t);

inline constexpr std::array<Node, 3> all_nodes = {Table::search_main, Table::search_extended,
                                                  Table::search_null};

/// The kinds that know the game record and the hash table.
inline constexpr std::array<Node, 2> remembering_nodes = {Table::search_main,
                                                          Table::search_extended};

class TreeScene : public testing::Test {
  protected:
    void SetUp() override { begin_scene(); }

    /// A new scene with the position, at ply 5, where no repetition is asked for.
    void set(const char* fen);

    std::int32_t search(Node node, std::int32_t depth, std::int32_t alpha, std::int32_t beta) {
        return node(position, depth, alpha, beta);
    }

    /// The static score from the side to move.
    [[nodiscard]] std::int32_t evaluation() const;

    /// The move that a node tries first: in a window below all scores it cuts. The position counts
    /// as one after a capture, so that nothing but a move can cut.
    [[nodiscard]] std::string first_tried(Node node, std::int32_t depth = 1);

    /// The move whose cuts have changed; more than one is a failure.
    [[nodiscard]] Move cutting_move() const;

    /// The first legal move of the generator that a node uses.
    [[nodiscard]] Move first_generated() const;

    Table position;
};
