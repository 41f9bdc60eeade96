// SPDX-License-Identifier: MIT
// What a node takes from the hash table and what it leaves there.
#include <cstdlib>
#include <gtest/gtest.h>
#include <utility>

#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/tree_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr std::int32_t stored_score = 4321;

class TreeHash : public TreeScene {
  protected:
    /// The pawn ending, and an entry for it.
    HashEntry& entry(std::int32_t depth, HashType type, std::int32_t score) {
        set(pawn_ending);
        return put_entry(position, depth, type, score);
    }

    /// The pawn ending, and an entry with a move that a node does not try first by itself, and
    /// whose score never cuts.
    HashEntry& entry_with_move(std::int32_t depth) {
        set(pawn_ending);
        return put_entry_with_move(position, depth, hash_lower, -full_window,
                                   move_of(position, "a1b1"));
    }
};

constexpr const char* first_by_itself = "a2a4";
constexpr const char* move_of_entry = "a1b1";

}  // namespace

TEST_F(TreeHash, ExactEntryDeepEnoughIsTheScoreWhateverTheWindow) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t entry_depth : {3, 4, 70}) {
            for (const std::int32_t alpha : {-full_window, 0, 5000}) {
                entry(entry_depth, hash_exact, stored_score);
                EXPECT_EQ(search(node, 3, alpha, alpha + 10), stored_score);
                EXPECT_EQ(TotalNodes, 1U);
            }
        }
    }
}

TEST_F(TreeHash, ScoreComesBackAsStoredWithoutALookAtThePly) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t at_ply : {3, 5, 40}) {
            entry(3, hash_exact, -599990);
            ply = at_ply;
            EXPECT_EQ(search(node, 3, -10, 10), -599990);
        }
    }
}

TEST_F(TreeHash, ShallowerEntryDoesNotCut) {
    for (const Node node : remembering_nodes) {
        for (const HashType type : {hash_exact, hash_lower, hash_upper}) {
            entry(1, type, type == hash_upper ? -stored_score : stored_score);
            EXPECT_NE(std::abs(search(node, 2, -50, 50)), stored_score);
            EXPECT_GT(TotalNodes, 2U);
        }
    }
}

TEST_F(TreeHash, LowerBoundCutsFromBetaOn) {
    for (const Node node : remembering_nodes) {
        entry(2, hash_lower, 500);
        EXPECT_EQ(search(node, 2, 0, 500), 500);
        EXPECT_EQ(TotalNodes, 1U);
        entry(2, hash_lower, 500);
        EXPECT_EQ(search(node, 2, 0, 499), 500);
        EXPECT_EQ(TotalNodes, 1U);
        entry(2, hash_lower, 500);
        search(node, 2, 0, 501);
        EXPECT_GT(TotalNodes, 2U);
    }
}

TEST_F(TreeHash, UpperBoundCutsUpToAlpha) {
    for (const Node node : remembering_nodes) {
        entry(2, hash_upper, -500);
        EXPECT_EQ(search(node, 2, -500, 0), -500);
        EXPECT_EQ(TotalNodes, 1U);
        entry(2, hash_upper, -500);
        EXPECT_EQ(search(node, 2, -499, 0), -500);
        EXPECT_EQ(TotalNodes, 1U);
        entry(2, hash_upper, -500);
        search(node, 2, -501, 0);
        EXPECT_GT(TotalNodes, 2U);
    }
}

TEST_F(TreeHash, EntryOfAnotherKeyOrSideIsNoHit) {
    for (const Node node : remembering_nodes) {
        entry(9, hash_exact, stored_score).key ^= 1;
        EXPECT_NE(search(node, 1, -full_window, full_window), stored_score);
        entry(9, hash_exact, stored_score).side = 1;
        EXPECT_NE(search(node, 1, -full_window, full_window), stored_score);
    }
}

TEST_F(TreeHash, EntryIsNotAskedAtTheQuietHorizonButByQuiescence) {
    for (const Node node : remembering_nodes) {
        entry(0, hash_exact, stored_score);
        EXPECT_EQ(search(node, 0, -full_window, full_window), evaluation());
        entry(1, hash_exact, stored_score);
        EXPECT_EQ(search(node, 0, -full_window, full_window), stored_score);
    }
}

TEST_F(TreeHash, EntryOfDepthZeroServesACheckAtTheHorizon) {
    for (const Node node : remembering_nodes) {
        set("4r2k/8/8/8/8/8/8/4K3 w - -");
        put_entry(position, 0, hash_exact, stored_score);
        EXPECT_EQ(search(node, 0, -full_window, full_window), stored_score);
        put_entry(position, -1, hash_exact, stored_score);
        EXPECT_NE(search(node, 0, -full_window, full_window), stored_score);
    }
}

TEST_F(TreeHash, EntryCutsBeforeTheStopTest) {
    for (const Node node : remembering_nodes) {
        entry(3, hash_exact, stored_score);
        stop_flag = 1;
        time_limit_ms = 0;
        EXPECT_EQ(search(node, 3, -10, 10), stored_score);
        EXPECT_EQ(fake_clock_readings, 0U);
    }
}

TEST_F(TreeHash, WalkAlongTheOldLineSkipsTheProbe) {
    for (const Node node : remembering_nodes) {
        entry(9, hash_exact, stored_score);
        follow_pv = 1;
        EXPECT_NE(search(node, 1, -full_window, full_window), stored_score);
        entry_with_move(0);
        follow_pv = 1;
        EXPECT_EQ(first_tried(node), first_by_itself);
    }
}

TEST_F(TreeHash, MoveOfAShallowerEntryComesFirst) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t depth : {0, -1}) {
            entry_with_move(depth);
            EXPECT_EQ(first_tried(node), move_of_entry);
        }
    }
}

TEST_F(TreeHash, MoveOfAnEntryDeepEnoughThatDoesNotCutIsNotUsed) {
    for (const Node node : remembering_nodes) {
        for (const std::int32_t depth : {1, 2, 60}) {
            entry_with_move(depth);
            EXPECT_EQ(first_tried(node), first_by_itself);
        }
    }
}

TEST_F(TreeHash, EntryWithoutAMoveGivesNone) {
    for (const Node node : remembering_nodes) {
        entry_with_move(0).has_move = 0;
        EXPECT_EQ(first_tried(node), first_by_itself);
    }
}

TEST_F(TreeHash, MoveOfAnEntryOfTheOtherSideIsNotUsed) {
    for (const Node node : remembering_nodes) {
        entry_with_move(0).side = 1;
        EXPECT_EQ(first_tried(node), first_by_itself);
    }
}

TEST_F(TreeHash, ExtendedNodeTakesTheMoveOfAnEntryLessThanFourShallower) {
    for (const std::int32_t gap : {1, 2, 3}) {
        entry_with_move(1 - gap);
        EXPECT_EQ(first_tried(Table::search_extended), move_of_entry) << gap;
    }
    for (const std::int32_t gap : {4, 5, 9}) {
        entry_with_move(1 - gap);
        EXPECT_EQ(first_tried(Table::search_extended), first_by_itself) << gap;
    }
}

TEST_F(TreeHash, NormalNodeTakesTheMoveHoweverShallowTheEntry) {
    for (const std::int32_t gap : {1, 3, 4, 5, 9, 100}) {
        entry_with_move(1 - gap);
        EXPECT_EQ(first_tried(Table::search_main), move_of_entry) << gap;
    }
}

TEST_F(TreeHash, CapturesGoByTheirTableBesideAHashMove) {
    // Without a hash move the queen's capture of a pawn has the score of its history.
    const char* fen = "6k1/8/8/1p6/8/8/1Q6/K7 w - -";
    set(fen);
    put_entry_with_move(position, 0, hash_lower, -full_window, {h1, h2, 0});
    EXPECT_EQ(first_tried(Table::search_main), "b2b5");
    set(fen);
    EXPECT_EQ(first_tried(Table::search_main), legal_moves(position).front());
}

TEST_F(TreeHash, NullNodeNeitherAsksNorStores) {
    entry(9, hash_exact, stored_score);
    EXPECT_NE(search(Table::search_null, 2, -full_window, full_window), stored_score);
    entry_with_move(0);
    EXPECT_EQ(first_tried(Table::search_null), first_by_itself);
    set(pawn_ending);
    search(Table::search_null, 3, -full_window, full_window);
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        ASSERT_EQ(hash_table[slot].key, 777U);
    }
}

TEST_F(TreeHash, ImprovedNodeIsStoredAsExactWithItsMove) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        const std::int32_t score = search(node, 2, -full_window, full_window);
        const HashEntry& stored = hash_slot(position);
        EXPECT_EQ(stored.key, position.hash_lock);
        EXPECT_EQ(stored.type, hash_exact);
        EXPECT_EQ(stored.score, score);
        EXPECT_EQ(stored.depth, 2);
        EXPECT_EQ(stored.side, 0);
        EXPECT_EQ(stored.age, hash_age);
        EXPECT_EQ(stored.has_move, 1);
        EXPECT_EQ(stored.from, vetka[5][5].posFrom);
        EXPECT_EQ(stored.to, vetka[5][5].posTo);
        EXPECT_EQ(stored.info, 0);
    }
}

TEST_F(TreeHash, CutIsStoredAsALowerBoundWithItsMoveAndWholeScore) {
    for (const Node node : remembering_nodes) {
        set("6k1/5ppp/8/8/8/8/8/R5K1 w - -");
        history_good[a1][a8] = 1;
        EXPECT_EQ(search(node, 2, -10, 0), 599994);
        const HashEntry& stored = hash_slot(position);
        EXPECT_EQ(stored.type, hash_lower);
        EXPECT_EQ(stored.score, 599994);
        EXPECT_EQ(stored.depth, 2);
        EXPECT_EQ(stored.has_move, 1);
        EXPECT_EQ(stored.from, a1);
        EXPECT_EQ(stored.to, a8);
        EXPECT_EQ(stored.age, hash_age);
    }
}

TEST_F(TreeHash, NodeWithoutImprovementIsStoredAsAnUpperBoundAndKeepsTheOldWords) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        HashEntry& slot = hash_slot(position);
        slot.from = h1;
        slot.to = h2;
        slot.info = 7;
        EXPECT_EQ(search(node, 2, 5000, 5001), 5000);
        EXPECT_EQ(slot.key, position.hash_lock);
        EXPECT_EQ(slot.type, hash_upper);
        EXPECT_EQ(slot.score, 5000);
        EXPECT_EQ(slot.has_move, 0);
        EXPECT_EQ(slot.from, h1);
        EXPECT_EQ(slot.to, h2);
        EXPECT_EQ(slot.info, 7);
    }
}

TEST_F(TreeHash, PromotionIsStoredWithTheLowByteOfItsCode) {
    set("8/P6k/8/8/8/8/8/K7 w - -");
    search(Table::search_main, 1, -full_window, full_window);
    EXPECT_EQ(vetka[5][5], (Move{a7, a8, w_queen}));
    EXPECT_EQ(hash_slot(position).info, 16);
}

TEST_F(TreeHash, EntryOfThisSearchAsDeepIsKeptByEveryKindOfResult) {
    int cases = 0;
    for (const Node node : remembering_nodes) {
        for (const std::int32_t depth : {2, 3, 60}) {
            for (const auto& [alpha, beta] :
                 {std::pair(-full_window, full_window), std::pair(-full_window, -500000),
                  std::pair(5000, 5001)}) {
                HashEntry& stranger = entry(depth, hash_exact, stored_score);
                stranger.key ^= 1;
                search(node, 2, alpha, beta);
                EXPECT_EQ(stranger.key, position.hash_lock ^ 1);
                EXPECT_EQ(stranger.score, stored_score);
                ++cases;
            }
        }
    }
    EXPECT_EQ(cases, 18);
}

TEST_F(TreeHash, ShallowerEntryOfThisSearchAndAnyOfThePreviousOneGiveWay) {
    int cases = 0;
    for (const Node node : remembering_nodes) {
        for (const auto& [alpha, beta] :
             {std::pair(-full_window, full_window), std::pair(-full_window, -500000),
              std::pair(5000, 5001)}) {
            entry(1, hash_exact, stored_score).key ^= 1;
            search(node, 2, alpha, beta);
            EXPECT_TRUE(is_stored(position));
            EXPECT_EQ(hash_slot(position).depth, 2);
            for (const std::int32_t depth : {1, 2, 3, 60}) {
                entry(depth, hash_exact, stored_score).key ^= 1;
                hash_flip_age();
                search(node, 2, alpha, beta);
                EXPECT_TRUE(is_stored(position));
                EXPECT_EQ(hash_slot(position).depth, 2);
                EXPECT_EQ(hash_slot(position).age, '0');
                ++cases;
            }
        }
    }
    EXPECT_EQ(cases, 24);
}

TEST_F(TreeHash, NothingIsStoredWhileTheWalkGoesOn) {
    // The marked move's child returns its stand-pat before it looks at the walk, which goes on.
    for (const Node node : remembering_nodes) {
        for (const bool walks : {false, true}) {
            set(pawn_ending);
            vetka[0][5] = move_of(position, "a1b1");
            follow_pv = walks ? 1 : 0;
            EXPECT_EQ(search(node, 1, 5000, 5001), 5000);
            EXPECT_EQ(follow_pv, walks ? 1U : 0U);
            EXPECT_EQ(is_stored(position), !walks);
        }
    }
}

TEST_F(TreeHash, CutIsNotStoredWhileTheWalkGoesOn) {
    // The marked move's child answers from the table before it looks at the walk, which goes on.
    for (const Node node : remembering_nodes) {
        for (const bool walks : {false, true}) {
            set(pawn_ending);
            const Table child = after(position, {"a1b1"});
            put_entry(child, 60, hash_exact, -9000);
            history_good[a1][b1] = 5;
            vetka[0][5] = move_of(position, "a1b1");
            follow_pv = walks ? 1 : 0;
            EXPECT_EQ(search(node, 1, 0, 100), 9000);
            EXPECT_EQ(cutting_move(), move_of(position, "a1b1"));
            EXPECT_EQ(follow_pv, walks ? 1U : 0U);
            EXPECT_EQ(is_stored(position), !walks);
        }
    }
}

TEST_F(TreeHash, NodeIsStoredOnceTheWalkHasEnded) {
    for (const Node node : remembering_nodes) {
        set(pawn_ending);
        vetka[0][5] = {a2, a4, w_queen};
        follow_pv = 1;
        search(node, 1, 5000, 5001);
        EXPECT_TRUE(is_stored(position));
    }
}

TEST_F(TreeHash, SlotIsLookedAtAgainAfterTheChildren) {
    // One slot for all: a child as deep as its node in the same search keeps the slot. Here every
    // check is searched at the node's own depth.
    for (const Node node : remembering_nodes) {
        set("7k/8/8/8/8/8/8/R3K3 w - -");
        hash_entries = 1;
        const Table child = after(position, {"a1a8"});
        history_good[a1][a8] = 1;
        search(node, 1, -full_window, full_window);
        EXPECT_TRUE(is_stored(child));
        EXPECT_EQ(hash_table[0].depth, 1);
    }
}
