// SPDX-License-Identifier: MIT
// The node of the tree, rule by rule: repetition, mate and stalemate, horizon, stop, history, line
// and the walk along the old line. The hash table, the cuts and the extensions have files of their
// own.
#include "search/tree.h"

#include <gtest/gtest.h>

#include "board/generate.h"
#include "board/move_list.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* checked_by_rook = "4r2k/8/8/8/8/8/8/4K3 w - -";
constexpr const char* mated = "7k/6Q1/6K1/8/8/8/8/8 b - -";
constexpr const char* stalemated = "7k/5Q2/8/8/8/8/8/K7 b - -";

class Tree : public TreeScene {};

}  // namespace

TEST_F(Tree, CountPiecesCountsOfficersOfOneSide) {
    set("rnb1k3/pppppppp/8/8/8/8/PPPP4/RNBQKBNR w - -");
    EXPECT_EQ(count_pieces(position, white), 7);
    EXPECT_EQ(count_pieces(position, black), 3);
    set("4k3/pppppppp/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(count_pieces(position, white), 0);
    EXPECT_EQ(count_pieces(position, black), 0);
    for (const char* fen : {"4k3/8/8/8/8/8/8/N3K3 w - -", "4k3/8/8/8/8/8/8/B3K3 w - -",
                            "4k3/8/8/8/8/8/8/R3K3 w - -", "4k3/8/8/8/8/8/8/Q3K3 w - -"}) {
        set(fen);
        EXPECT_EQ(count_pieces(position, white), 1) << fen;
        EXPECT_EQ(count_pieces(mirrored(position), black), 1) << fen;
        EXPECT_EQ(count_pieces(position, black), 0) << fen;
    }
}

TEST_F(Tree, ThirdRepetitionAtPliesOneAndTwoScoresZeroWhateverTheWindow) {
    int cases = 0;
    for (const Node node : remembering_nodes) {
        for (const std::int32_t at_ply : {1, 2}) {
            for (const std::int32_t alpha : {-full_window, -300, 100}) {
                set(pawn_ending);
                stood_in_game(position, 2);
                ply = at_ply;
                EXPECT_EQ(search(node, 3, alpha, alpha + 50), 0);
                EXPECT_EQ(TotalNodes, 0U);
                ++cases;
            }
        }
    }
    EXPECT_EQ(cases, 12);
}

TEST_F(Tree, RepetitionFromPlyThreeOnIsSearched) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t at_ply : {3, 4, 20}) {
            set(pawn_ending);
            stood_in_game(position, 2);
            ply = at_ply;
            EXPECT_GT(search(node, 2, -full_window, full_window), 50);
            EXPECT_GT(TotalNodes, 5U);
        }
    }
}

TEST_F(Tree, PositionThatStoodOnceOrWithTheOtherSideIsSearched) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        stood_in_game(position, 1);
        Table other_side = position;
        other_side.side = black;
        stood_in_game(other_side, 5);
        ply = 1;
        EXPECT_GT(search(node, 2, -full_window, full_window), 50);
    }
}

TEST_F(Tree, RepetitionIsNotAskedUnderANullMove) {
    set(pawn_ending);
    stood_in_game(position, 3);
    ply = 1;
    EXPECT_GT(search(Table::search_null, 1, -full_window, full_window), 50);
}

TEST_F(Tree, RepetitionReturnsBeforeTheLengthIsSet) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        stood_in_game(position, 2);
        ply = 2;
        line_length(2) = 7;
        search(node, 3, -50, 50);
        EXPECT_EQ(line_length(2), 7);
    }
}

TEST_F(Tree, ParentOfARepetitionCopiesWhateverLineThatPlyHeld) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        for (const std::string& move : legal_moves(position)) {
            stood_in_game(after(position, {move}), 2);
        }
        ply = 1;
        line_length(2) = 4;
        vetka[2][2] = {a7, a5, 0};
        vetka[2][3] = {b7, b5, 0};
        EXPECT_EQ(search(node, 2, -100, 100), 0);
        EXPECT_EQ(TotalNodes, 1U);
        EXPECT_EQ(line_length(1), 4);
        EXPECT_EQ(vetka[1][1], first_generated());
        EXPECT_EQ(vetka[1][2], (Move{a7, a5, 0}));
        EXPECT_EQ(vetka[1][3], (Move{b7, b5, 0}));
    }
}

TEST_F(Tree, MateScoresThePlyLess600000) {
    for (const Node node : all_nodes) {
        for (const std::int32_t at_ply : {1, 3, 40, 68}) {
            for (const std::int32_t depth : {-1, 0, 1, 4}) {
                set(mated);
                ply = at_ply;
                EXPECT_EQ(search(node, depth, -10, 10), at_ply - 600000);
                EXPECT_EQ(TotalNodes, 1U);
                EXPECT_FALSE(is_stored(position));
            }
        }
    }
    set(mated);
    ply = 3;
    EXPECT_EQ(search(Table::search_main, 1, -10, 10), -599997);
}

TEST_F(Tree, StalemateScoresZeroWhateverTheWindow) {
    for (const Node node : all_nodes) {
        for (const std::int32_t alpha : {-full_window, -500, 100}) {
            set(stalemated);
            ply = 3;
            EXPECT_EQ(search(node, 2, alpha, alpha + 50), 0);
            EXPECT_EQ(TotalNodes, 1U);
            EXPECT_FALSE(is_stored(position));
        }
    }
}

TEST_F(Tree, HorizonOfAQuietSideIsQuiescence) {
    const char* fen = "7k/7p/8/3r1n2/4P3/8/P7/K7 w - -";
    for (const Node node : all_nodes) {
        for (const std::int32_t depth : {0, -1, -3}) {
            set(fen);
            ply = 5;
            line_length(5) = 99;
            const std::int32_t score = search(node, depth, -full_window, full_window);
            const std::uint32_t nodes = TotalNodes;
            EXPECT_FALSE(is_stored(position));
            set(fen);
            ply = 5;
            EXPECT_EQ(score, Table::quiesce(position, -full_window, full_window));
            EXPECT_EQ(nodes, TotalNodes);
        }
    }
}

TEST_F(Tree, SideInCheckAtTheHorizonGetsAFullNodeOfEvasions) {
    for (const Node node : all_nodes) {
        set(checked_by_rook);
        ply = 5;
        search(node, 0, -full_window, full_window);
        EXPECT_EQ(TotalNodes, 1U + 4U);  // d1, d2, f1, f2, each quiet
        EXPECT_EQ(is_stored(position), node != Table::search_null);
        if (is_stored(position)) {
            EXPECT_EQ(hash_slot(position).depth, 0);
        }
    }
}

TEST_F(Tree, ThinEvasionGeneratorIsUsedInCheck) {
    // b7xa8 with promotion would be legal; the generator of evasions does not offer it.
    for (const Node node : all_nodes) {
        set("r6k/1P6/8/8/8/8/8/K7 w - -");
        ply = 5;
        ASSERT_EQ(legal_moves(position).size(), 6U);
        search(node, 1, 90000, 90001);
        EXPECT_EQ(TotalNodes, 1U + 2U);  // b1, b2
    }
}

TEST_F(Tree, EvasionsAtDepthZeroThatCheckBackStayAtDepthZeroAndAreStored) {
    set("4r2k/8/8/8/8/6B1/8/4K3 w - -");
    ply = 5;
    search(Table::search_main, 0, -full_window, full_window);
    const Table checks_back = after(position, {"g3e5"});
    const Table checks_again = after(position, {"g3e5", "e8e5"});
    ASSERT_TRUE(is_stored(checks_back));
    EXPECT_EQ(hash_slot(checks_back).depth, 0);
    ASSERT_TRUE(is_stored(checks_again));
    EXPECT_EQ(hash_slot(checks_again).depth, 0);
    EXPECT_FALSE(is_stored(after(position, {"e1d2"})));
}

TEST_F(Tree, EvasionsAtANegativeDepthAreStoredAndLowerWhatTheyRaise) {
    for (const Node node : remembering_nodes) {
        set(checked_by_rook);
        ply = 5;
        search(node, -3, -full_window, full_window);
        ASSERT_TRUE(is_stored(position));
        EXPECT_EQ(hash_slot(position).depth, -3);
        EXPECT_LT(raised_by(vetka[5][5]), 0);
        set(checked_by_rook);
        ply = 5;
        search(node, -3, -full_window, -500000);
        EXPECT_EQ(cut_by(cutting_move()), 1000003);
    }
}

TEST_F(Tree, MoveThatRaisesAlphaAddsTheDepth) {
    for (const Node node : all_nodes) {
        for (const std::int32_t depth : {1, 2}) {
            set(pawn_ending);
            search(node, depth, -full_window, full_window);
            EXPECT_EQ(raised_by(vetka[5][5]), depth);
            EXPECT_EQ(raised_by(first_generated()), depth);
            EXPECT_EQ(cut_by(vetka[5][5]), 1000000);
        }
    }
}

TEST_F(Tree, MoveThatCutsAddsTheDepthAndTakesItFromItsCuts) {
    for (const Node node : all_nodes) {
        for (const std::int32_t depth : {1, 2}) {
            set(pawn_ending);
            search(node, depth, -full_window, -500000);
            EXPECT_EQ(cutting_move(), first_generated());
            EXPECT_EQ(cut_by(first_generated()), 1000000 - depth);
            EXPECT_EQ(raised_by(first_generated()), depth);
        }
    }
}

TEST_F(Tree, ExtendedMoveCountsWithTheDepthOfItsNode) {
    for (const Node node : all_nodes) {
        set("6k1/5ppp/8/8/8/8/8/R5K1 w - -");
        ply = 5;
        EXPECT_EQ(search(node, 1, -full_window, full_window), 599994);
        EXPECT_EQ(raised_by({a1, a8, 0}), 1);
    }
}

TEST_F(Tree, ScoreOfACutMayExceedBeta) {
    for (const Node node : all_nodes) {
        set("6k1/5ppp/8/8/8/8/8/R5K1 w - -");
        history_good[a1][a8] = 1;  // the mate is tried first
        EXPECT_EQ(search(node, 1, -10, 0), 599994);
        EXPECT_EQ(cutting_move(), (Move{a1, a8, 0}));
    }
}

TEST_F(Tree, ScoreBelowTheWindowIsAlpha) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        EXPECT_EQ(search(node, 1, 5000, 5001), 5000);
    }
}

TEST_F(Tree, LineOfTheNodeIsTheMoveAndTheLineBelow) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        const Table before = position;
        search(node, 3, -full_window, full_window);
        EXPECT_EQ(position, before);
        EXPECT_EQ(ply, 5);
        ASSERT_EQ(line_length(5), 8);
        Table there = position;
        for (std::size_t at_ply = 5; at_ply < 8; ++at_ply) {
            const Move& move = vetka[5][at_ply];
            there = after(there, {move_text(move.posFrom, move.posTo, move.posInfo)});
        }
    }
}

TEST_F(Tree, CutAndLowFailureLeaveNoLine) {
    for (const Node node : all_nodes) {
        for (const std::int32_t alpha : {-full_window, 5000}) {
            set(pawn_ending);
            line_length(5) = 9;
            vetka[5][5] = {a7, a5, 0};
            search(node, 2, alpha, alpha + 1);
            EXPECT_EQ(line_length(5), 5);
            EXPECT_EQ(vetka[5][5], (Move{a7, a5, 0}));
        }
    }
}

TEST_F(Tree, OldLinesMoveIsTriedFirst) {
    for (const Node node : all_nodes) {
        for (const char* text : {"a2a4", "a2a3", "a1b1", "a1b2"}) {
            set(pawn_ending);
            vetka[0][5] = move_of(position, text);
            follow_pv = 1;
            EXPECT_EQ(first_tried(node), text);
        }
    }
}

TEST_F(Tree, OldLineIsNotLookedAtOffTheWalk) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        vetka[0][5] = move_of(position, "a1b2");
        EXPECT_EQ(first_tried(node), "a2a4");
    }
}

TEST_F(Tree, WalkEndsWhereTheOldLinesMoveIsMissing) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        vetka[0][5] = {a2, a4, w_queen};
        follow_pv = 1;
        search(node, 1, -full_window, full_window);
        EXPECT_EQ(follow_pv, 0U);
    }
}

TEST_F(Tree, WalkGoesOnBelowTheMarkedMove) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        vetka[0][5] = move_of(position, "a1b1");
        vetka[0][6] = {h8, g8, 0};
        follow_pv = 1;
        search(node, 2, -full_window, full_window);
        // The reply that stands first in its list without a mark is another.
        EXPECT_GT(raised_by({h8, g8, 0}), 0);
        EXPECT_EQ(follow_pv, 0U);  // the line ends at ply 7
    }
}

TEST_F(Tree, LowestScoreFirstAndTheLowestSlotAmongEquals) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        EXPECT_EQ(first_tried(node), "a2a4");
        set(pawn_ending);
        history_good[a1][b2] = 1;
        EXPECT_EQ(first_tried(node), "a1b2");
        set(pawn_ending);
        history_good[a1][b2] = 1;
        history_good[a1][b1] = 1;
        EXPECT_EQ(first_tried(node), "a1b2");
        set(pawn_ending);
        history_good[a1][b2] = 1;
        history_good[a1][b1] = 2;
        EXPECT_EQ(first_tried(node), "a1b1");
    }
}

TEST_F(Tree, PliesFrom69OnAreQuiescence) {
    for (const Node node : all_nodes) {
        for (const std::int32_t at_ply : {69, 70, 75}) {
            set(pawn_ending);
            ply = at_ply;
            EXPECT_EQ(search(node, 5, -full_window, full_window), Table::evaluate(position, 0, 0));
            EXPECT_EQ(TotalNodes, 1U);
            EXPECT_EQ(line_length(at_ply), at_ply);
        }
    }
}

TEST_F(Tree, Ply68MakesMovesIntoPly69) {
    for (const Node node : all_nodes) {
        set(pawn_ending);
        ply = 68;
        search(node, 9, -full_window, full_window);
        EXPECT_EQ(TotalNodes, 1U + legal_moves(position).size());
        EXPECT_EQ(line_length(69), 69);
        EXPECT_EQ(line_length(68), 69);
        EXPECT_EQ(ply, 68);
    }
}
