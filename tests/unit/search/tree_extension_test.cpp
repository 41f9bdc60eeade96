// SPDX-License-Identifier: MIT
// Which moves are extended, and into which kind of node.
#include <gtest/gtest.h>
#include <string_view>
#include <vector>

#include "search/hash_table.h"
#include "search/search_state.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

constexpr std::int32_t not_stored = -99;

class TreeExtension : public TreeScene {
  protected:
    /// The depth at which the position after the moves stands in the table.
    [[nodiscard]] std::int32_t depth_after(const std::vector<std::string_view>& moves) const {
        const Table there = after(position, moves);
        return is_stored(there) ? hash_slot(there).depth : not_stored;
    }

    /// The same after a search of the position at depth 2.
    std::int32_t depth_of(const char* fen, const char* move, Node node) {
        set(fen);
        search(node, 2, -full_window, full_window);
        return depth_after({move});
    }
};

}  // namespace

TEST_F(TreeExtension, CheckIsSearchedAtTheDepthOfItsNode) {
    for (const Node node : remembering_nodes) {
        set("7k/8/8/8/8/8/8/R3K3 w - -");
        search(node, 2, -full_window, full_window);
        EXPECT_EQ(depth_after({"a1a8"}), 2);
        EXPECT_EQ(depth_after({"a1a7"}), 1);
        EXPECT_EQ(depth_after({"e1d1"}), 1);
    }
}

TEST_F(TreeExtension, DiscoveredCheckIsACheck) {
    for (const Node node : remembering_nodes) {
        EXPECT_EQ(depth_of("4k3/8/8/8/8/8/4N3/K3R3 w - -", "e2c3", node), 2);
    }
}

TEST_F(TreeExtension, PawnThatReachesTheSeventhRankIsSearchedAtTheDepthOfItsNode) {
    struct Case {
        const char* fen;
        const char* move;
        std::int32_t depth;
    };
    const std::vector<Case> cases = {
        // Pushes and captures of both colours.
        {"8/8/P6k/8/8/8/8/K7 w - -", "a6a7", 2},
        {"8/1p6/P6k/8/8/8/8/K7 w - -", "a6b7", 2},
        {"8/6p1/k6P/8/8/8/8/K7 w - -", "h6g7", 2},
        {"k7/8/8/8/8/p7/8/7K b - -", "a3a2", 2},
        {"k7/8/8/8/8/p7/1P6/7K b - -", "a3b2", 2},
        {"k7/8/8/8/8/7p/6P1/K7 b - -", "h3g2", 2},
        // One rank before and after, and the other colour's rank.
        {"8/8/7k/P7/8/8/8/K7 w - -", "a5a6", 1},
        {"k7/8/8/8/p7/8/8/7K b - -", "a4a3", 1},
        {"8/8/7k/8/8/P7/8/K7 w - -", "a3a4", 1},
        {"k7/8/p7/8/8/8/8/7K b - -", "a6a5", 1},
        // Another man on the sixth rank.
        {"8/8/R6k/8/8/8/8/K7 w - -", "a6a7", 1},
        {"8/8/K7/8/8/8/7k/8 w - -", "a6a7", 1},
    };
    for (const Node node : remembering_nodes) {
        for (const Case& each : cases) {
            EXPECT_EQ(depth_of(each.fen, each.move, node), each.depth)
                << each.fen << " " << each.move;
        }
    }
}

TEST_F(TreeExtension, PromotionIsNotExtendedUnlessItChecks) {
    EXPECT_EQ(depth_of("8/P6k/8/8/8/8/8/K7 w - -", "a7a8r", Table::search_main), 1);
    EXPECT_EQ(depth_of("7k/P7/8/8/8/8/8/K7 w - -", "a7a8r", Table::search_main), 2);
}

TEST_F(TreeExtension, NodeAfterAnExtensionKnowsNoNullMove) {
    // Black is far ahead: a normal node of its own would end in a null move, with nothing stored.
    const char* fen = "1qr4k/8/2P5/8/8/8/8/K7 w - -";
    set(fen);
    search(Table::search_main, 2, -100, -99);
    EXPECT_EQ(depth_after({"c6c7"}), 2);
    EXPECT_EQ(depth_after({"a1a2"}), not_stored);
}

TEST_F(TreeExtension, ExtendedNodeGoesOnInNormalNodes) {
    // The same from the node after an extension: its extended move leads to a normal node.
    const char* fen = "1qr4k/8/2P5/8/8/8/8/K7 w - -";
    set(fen);
    search(Table::search_extended, 2, -100, -99);
    EXPECT_EQ(depth_after({"c6c7"}), not_stored);
    EXPECT_EQ(depth_after({"a1a2"}), not_stored);
    EXPECT_TRUE(is_stored(position));
}

TEST_F(TreeExtension, ChecksAnsweredByChecksLoseNoDepth) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t depth : {0, 1, 3}) {
            set("4r2k/8/8/8/8/6B1/8/4K3 w - -");
            search(node, depth, -full_window, full_window);
            EXPECT_EQ(depth_after({"g3e5"}), depth);
            EXPECT_EQ(depth_after({"g3e5", "e8e5"}), depth);
        }
    }
}

TEST_F(TreeExtension, NullNodeExtendsChecks) {
    set("8/8/8/7k/8/8/8/R3K3 w - -");
    const std::size_t quiet_moves = legal_moves(position).size();
    search(Table::search_null, 1, 90000, 90001);
    // One check, a1-a5 or a1-h1; behind it a full node instead of a stand-pat.
    const std::size_t replies = legal_moves(after(position, {"a1a5"})).size();
    ASSERT_GT(replies, 0U);
    EXPECT_GT(TotalNodes, 1 + quiet_moves);
}

TEST_F(TreeExtension, NullNodeDoesNotExtendPawns) {
    for (const char* fen : {"8/8/P6k/8/8/8/8/K7 w - -", "k7/8/8/8/8/p7/8/7K b - -"}) {
        set(fen);
        const std::size_t moves = legal_moves(position).size();
        search(Table::search_null, 1, 90000, 90001);
        EXPECT_EQ(TotalNodes, 1 + moves);
        for (const Node node : remembering_nodes) {
            set(fen);
            search(node, 1, 90000, 90001);
            EXPECT_GT(TotalNodes, 1 + moves);
        }
    }
}
