// SPDX-License-Identifier: MIT
// The static cut and the null move, each of their conditions alone.
#include <gtest/gtest.h>

#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

// No officers, so no null move.
constexpr const char* pawn_ending = "6k1/5ppp/8/8/8/8/5PPP/6K1 w - -";
constexpr const char* checked_by_rook = "4r2k/8/8/8/8/8/8/4K3 w - -";

constexpr const char* knight_and_bishop = "6k1/5ppp/8/8/8/8/5PPP/1NB3K1 w - -";
constexpr const char* knight_alone = "6k1/5ppp/8/8/8/8/5PPP/1N4K1 w - -";
constexpr const char* far_ahead = "6k1/8/8/8/8/8/8/QQQQQ1K1 w - -";

/// What a node did.
enum class Did { cut_at_once, cut_by_null_move, moves };

class TreeCuts : public TreeScene {
  protected:
    /// The pawn ending in iteration 3.
    void static_scene() {
        set(pawn_ending);
        iteration_depth = 3;
    }

    /// How the node ended with this beta. A cut returns beta itself; a cut of either kind stores
    /// nothing, and only a null move has nodes below.
    Did end_of(Node node, std::int32_t depth, std::int32_t beta) {
        const Table before = position;
        const std::int32_t score = search(node, depth, beta - 1, beta);
        EXPECT_EQ(position, before);
        EXPECT_EQ(ply, 5);
        if (is_stored(position) || node == Table::search_null) {
            EXPECT_GT(TotalNodes, 1U);
            return Did::moves;
        }
        EXPECT_EQ(score, beta);
        return TotalNodes == 1 ? Did::cut_at_once : Did::cut_by_null_move;
    }

    std::uint32_t nodes_of(const char* fen, std::int32_t depth, std::int32_t above,
                           std::int32_t full_depth, std::int32_t reduction) {
        set(fen);
        null_full_depth = full_depth;
        null_reduction = reduction;
        const std::int32_t beta = evaluation() + above;
        search(Table::search_main, depth, beta - 1, beta);
        return TotalNodes;
    }
};

}  // namespace

TEST_F(TreeCuts, StaticCutReturnsBetaWithFiftyToSpare) {
    for (const std::int32_t depth : {1, 2}) {
        for (const std::int32_t margin : {50, 51, 500}) {
            static_scene();
            EXPECT_EQ(end_of(Table::search_main, depth, evaluation() - margin), Did::cut_at_once);
        }
    }
}

TEST_F(TreeCuts, StaticCutNeedsFiftyToSpare) {
    for (const std::int32_t margin : {49, 0, -100}) {
        static_scene();
        EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - margin), Did::moves);
    }
}

TEST_F(TreeCuts, StaticCutNeedsTheThirdIteration) {
    for (const std::int32_t iteration : {1, 2}) {
        static_scene();
        iteration_depth = iteration;
        EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 500), Did::moves);
    }
    for (const std::int32_t iteration : {3, 4, 20}) {
        static_scene();
        iteration_depth = iteration;
        EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 500), Did::cut_at_once);
    }
}

TEST_F(TreeCuts, StaticCutNeedsDepthTwoOrLess) {
    static_scene();
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation() - 500), Did::moves);
    static_scene();
    EXPECT_EQ(end_of(Table::search_main, 4, evaluation() - 500), Did::moves);
}

TEST_F(TreeCuts, StaticCutIsNotTriedAfterACapture) {
    static_scene();
    position.capture_flag = 1;
    EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 500), Did::moves);
}

TEST_F(TreeCuts, StaticCutIsNotTriedInCheck) {
    for (const std::int32_t depth : {0, 1, 2}) {
        set(checked_by_rook);
        iteration_depth = 3;
        EXPECT_EQ(end_of(Table::search_main, depth, evaluation() - 500), Did::moves);
    }
}

TEST_F(TreeCuts, StaticCutIsForNormalNodesAlone) {
    static_scene();
    EXPECT_EQ(end_of(Table::search_extended, 2, evaluation() - 500), Did::moves);
    static_scene();
    EXPECT_EQ(end_of(Table::search_null, 2, evaluation() - 500), Did::moves);
}

TEST_F(TreeCuts, StaticCutComesBeforeTheNullMove) {
    set(knight_and_bishop);
    iteration_depth = 3;
    EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 50), Did::cut_at_once);
    set(knight_and_bishop);
    iteration_depth = 3;
    EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 49), Did::cut_by_null_move);
}

TEST_F(TreeCuts, NullMoveThatHoldsReturnsBeta) {
    for (const std::int32_t depth : {1, 2, 3, 4}) {
        for (const std::int32_t margin : {0, 10, 200}) {
            set(knight_and_bishop);
            EXPECT_EQ(end_of(Table::search_main, depth, evaluation() - margin),
                      Did::cut_by_null_move);
            EXPECT_EQ(TotalNodes, 2U);  // the reply is quiescence up to depth 4
        }
    }
}

TEST_F(TreeCuts, NullMoveIsForNormalNodesAlone) {
    set(knight_and_bishop);
    EXPECT_EQ(end_of(Table::search_extended, 3, evaluation()), Did::moves);
    set(knight_and_bishop);
    const std::size_t moves = legal_moves(position).size();
    search(Table::search_null, 1, 90000, 90001);
    EXPECT_EQ(TotalNodes, 1 + moves);
}

TEST_F(TreeCuts, NullMoveIsNotTriedAfterACapture) {
    set(knight_and_bishop);
    position.capture_flag = 1;
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation()), Did::moves);
}

TEST_F(TreeCuts, EnPassantIsACaptureForBothCuts) {
    // Black moves after e5xd6 in passing, or after e5-e6.
    const Table before = position_from_fen("1nb3k1/5ppp/8/3pP3/8/8/5PPP/6K1 w - d6");
    for (const bool captures : {true, false}) {
        begin_scene();
        iteration_depth = 3;
        ply = 5;
        position = after(before, {captures ? "e5d6" : "e5e6"});
        EXPECT_EQ(end_of(Table::search_main, 2, evaluation() - 300),
                  captures ? Did::moves : Did::cut_at_once);
        begin_scene();
        ply = 5;
        EXPECT_EQ(end_of(Table::search_main, 3, evaluation() - 300),
                  captures ? Did::moves : Did::cut_by_null_move);
    }
}

TEST_F(TreeCuts, NullMoveIsNotTriedInCheck) {
    set("4r1k1/5ppp/8/8/8/8/5PPP/NNBBK3 w - -");
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation() - 300), Did::moves);
}

TEST_F(TreeCuts, NullMoveNeedsTwoOfficers) {
    set(knight_alone);
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation()), Did::moves);
    for (const char* fen :
         {knight_and_bishop, "6k1/5ppp/8/8/8/8/5PPP/R4RK1 w - -",
          "6k1/5ppp/8/8/8/8/5PPP/1Q3RK1 w - -", "6k1/5ppp/8/8/8/8/5PPP/NN4K1 w - -"}) {
        set(fen);
        EXPECT_EQ(end_of(Table::search_main, 3, evaluation()), Did::cut_by_null_move) << fen;
    }
}

TEST_F(TreeCuts, NullMoveCountsTheOfficersOfTheSideToMove) {
    set("1nb3k1/5ppp/8/8/8/8/5PPP/1N4K1 w - -");
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation() - 10), Did::moves);
    set("1nb3k1/5ppp/8/8/8/8/5PPP/1N4K1 b - -");
    EXPECT_EQ(end_of(Table::search_main, 3, evaluation() - 10), Did::cut_by_null_move);
}

TEST_F(TreeCuts, NullMoveNeedsABetaBelow3000) {
    set(far_ahead);
    ASSERT_GT(evaluation(), 3100);
    EXPECT_EQ(end_of(Table::search_main, 1, 2999), Did::cut_by_null_move);
    set(far_ahead);
    EXPECT_EQ(end_of(Table::search_main, 1, 3000), Did::moves);
    set(far_ahead);
    EXPECT_EQ(end_of(Table::search_main, 1, 3001), Did::moves);
}

TEST_F(TreeCuts, BetaOf3000DoesNotHinderTheStaticCut) {
    set(far_ahead);
    iteration_depth = 3;
    EXPECT_EQ(end_of(Table::search_main, 1, 3000), Did::cut_at_once);
}

TEST_F(TreeCuts, BelowDepthFourTheEvaluationHasToReachBeta) {
    // A null move that fails costs one node here: the reply's stand-pat.
    for (const std::int32_t depth : {1, 2, 3}) {
        const std::uint32_t without = nodes_of(knight_and_bishop, depth, 1, 4, 4);
        EXPECT_EQ(without, nodes_of(knight_and_bishop, depth, 1, 99, 4)) << depth;
    }
    EXPECT_EQ(nodes_of(knight_and_bishop, 3, 1, 3, 4), nodes_of(knight_and_bishop, 3, 1, 4, 4) + 1);
}

TEST_F(TreeCuts, FromDepthFourOnTheEvaluationIsNotConsulted) {
    EXPECT_EQ(nodes_of(knight_and_bishop, 4, 1, 4, 4), nodes_of(knight_and_bishop, 4, 1, 5, 4) + 1);
}

TEST_F(TreeCuts, NullMoveIsVerifiedFourPliesShallower) {
    EXPECT_EQ(nodes_of(knight_and_bishop, 4, 0, 4, 4), 2U);
    const std::uint32_t at_depth_five = nodes_of(knight_and_bishop, 5, -300, 4, 4);
    EXPECT_GT(at_depth_five, 2U);
    EXPECT_FALSE(is_stored(position));
    EXPECT_EQ(at_depth_five, nodes_of(knight_and_bishop, 4, -300, 4, 3));
    EXPECT_EQ(nodes_of(knight_and_bishop, 5, -300, 4, 5), 2U);
}

TEST_F(TreeCuts, NullMoveIsVerifiedWithAWindowOfOne) {
    // Black could capture, but its stand-pat alone shows that White stays below beta.
    const char* fen = "6k1/5ppp/8/3p4/4P3/8/5PPP/1NB3K1 w - -";
    Table passed = position_from_fen(fen);
    passed.side = black;
    ASSERT_FALSE(legal_captures(passed).empty());
    for (const std::int32_t above : {1, 50, 150}) {
        EXPECT_EQ(nodes_of(fen, 4, above, 4, 4), nodes_of(fen, 4, above, 5, 4) + 1) << above;
    }
}

TEST_F(TreeCuts, NullMoveDoesNotChangeThePly) {
    // At ply 68 a search one ply further on would be quiescence.
    const auto nodes_at = [&](std::int32_t at_ply) {
        set(knight_and_bishop);
        ply = at_ply;
        const std::int32_t beta = evaluation() - 300;
        EXPECT_EQ(search(Table::search_main, 5, beta - 1, beta), beta);
        EXPECT_EQ(ply, at_ply);
        EXPECT_FALSE(is_stored(position));
        return TotalNodes;
    };
    EXPECT_EQ(nodes_at(68), nodes_at(10));
    EXPECT_GT(nodes_at(68), 2U);
}

TEST_F(TreeCuts, NullMoveThatHoldsTouchesNeitherTableNorOwnHistory) {
    set(knight_and_bishop);
    const std::int32_t beta = evaluation() - 300;
    EXPECT_EQ(search(Table::search_main, 5, beta - 1, beta), beta);
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        ASSERT_EQ(hash_table[slot].key, 777U);
    }
    EXPECT_EQ(cutting_move(), Move{});
}

TEST_F(TreeCuts, NullMoveEndsTheWalkAlongTheOldLine) {
    for (const std::int32_t depth : {4, 5, 6}) {
        set(knight_and_bishop);
        vetka[0][5] = move_of(position, "b1c3");
        follow_pv = 1;
        const std::int32_t beta = evaluation() - 300;
        EXPECT_EQ(search(Table::search_main, depth, beta - 1, beta), beta);
        EXPECT_FALSE(is_stored(position));
        EXPECT_EQ(follow_pv, 0U);
    }
}

TEST_F(TreeCuts, OldLinesMoveIsNotMarkedAfterANullMoveThatFailed) {
    // In the verification White may answer a reply with b1c3, but at ply 5 Black is to move.
    set(knight_and_bishop);
    vetka[0][5] = move_of(position, "b1c3");
    follow_pv = 1;
    const std::int32_t beta = 2000;
    search(Table::search_main, 5, beta - 1, beta);
    EXPECT_EQ(follow_pv, 0U);
    EXPECT_TRUE(is_stored(position));
}

TEST_F(TreeCuts, AbandonedNullMoveCountsLikeAnyOther) {
    // The second reading, under the null move, returns its alpha: minus beta.
    for (const std::int32_t depth : {4, 5}) {
        set(knight_and_bishop);
        const Table before = position;
        fake_ticks_per_reading = 1;
        time_limit_ms = 1;
        EXPECT_EQ(search(Table::search_main, depth, 1000, 2000), 2000);
        EXPECT_EQ(stop_flag, 1U);
        EXPECT_EQ(TotalNodes, 2U);
        EXPECT_EQ(position, before);
        EXPECT_EQ(ply, 5);
    }
}
