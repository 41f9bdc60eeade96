// SPDX-License-Identifier: MIT
// The quiescence search, rule by rule.
#include <gtest/gtest.h>

#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

constexpr const char* quiet_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* checked_by_rook = "4r2k/8/8/8/8/8/8/4K3 w - -";
constexpr const char* hanging_queen = "7k/8/8/3q4/4P3/8/8/K7 w - -";
constexpr const char* two_victims = "7k/7p/8/3r1n2/4P3/8/P7/K7 w - -";
constexpr const char* mated = "7k/6Q1/6K1/8/8/8/8/8 b - -";

class Quiesce : public testing::Test {
  protected:
    void SetUp() override { begin_scene(); }

    std::int32_t quiesce(std::int32_t alpha, std::int32_t beta) {
        return Table::quiesce(position, alpha, beta);
    }
    std::int32_t quiesce() { return quiesce(-full_window, full_window); }

    std::int32_t set(const char* fen) {
        position = position_from_fen(fen);
        return Table::evaluate(position, 0, 0);
    }

    Table position;
};

}  // namespace

TEST_F(Quiesce, QuietPositionIsWorthItsStandPat) {
    const std::int32_t stand_pat = set(quiet_ending);
    EXPECT_EQ(quiesce(), stand_pat);
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(quiesce(stand_pat - 1, stand_pat + 1), stand_pat);
}

TEST_F(Quiesce, StandPatAtOrAboveBetaIsReturnedItself) {
    const std::int32_t stand_pat = set(hanging_queen);
    for (const std::int32_t beta : {stand_pat, stand_pat - 1, stand_pat - 500}) {
        TotalNodes = 0;
        EXPECT_EQ(quiesce(beta - 10, beta), stand_pat);
        EXPECT_EQ(TotalNodes, 1U);
    }
}

TEST_F(Quiesce, StandPatAtOrBelowAlphaGivesAlphaIfQuiet) {
    const std::int32_t stand_pat = set(quiet_ending);
    EXPECT_EQ(quiesce(stand_pat, stand_pat + 10), stand_pat);
    EXPECT_EQ(quiesce(stand_pat + 5, stand_pat + 10), stand_pat + 5);
}

TEST_F(Quiesce, CaptureAtOrAboveBetaReturnsExactlyBeta) {
    const std::int32_t stand_pat = set(hanging_queen);
    EXPECT_EQ(quiesce(stand_pat, stand_pat + 100), stand_pat + 100);
    EXPECT_EQ(TotalNodes, 2U);
}

TEST_F(Quiesce, CaptureThatMatesStillReturnsBeta) {
    const std::int32_t stand_pat = set("r5k1/5ppp/8/8/8/8/8/R6K w - -");
    EXPECT_EQ(quiesce(stand_pat, stand_pat + 100), stand_pat + 100);
    EXPECT_EQ(quiesce(), 599999);
}

TEST_F(Quiesce, CaptureInsideTheWindowIsTheScoreAndTheLine) {
    set(hanging_queen);
    ply = 5;
    const std::int32_t after_capture = -Table::evaluate(after(position, {"e4d5"}), 0, 0);
    EXPECT_EQ(quiesce(), after_capture);
    EXPECT_EQ(vetka[5][5], move_of(position, "e4d5"));
    EXPECT_EQ(line_length(5), 6);
    EXPECT_EQ(current_line[5], move_of(position, "e4d5"));
    EXPECT_EQ(ply, 5);
}

TEST_F(Quiesce, LengthOfTheOwnPlyIsNotSetWithoutAnImprovement) {
    set(quiet_ending);
    ply = 5;
    line_length(5) = 44;
    line_length(6) = 45;
    quiesce();
    EXPECT_EQ(line_length(5), 44);
    EXPECT_EQ(line_length(6), 45);
    set(hanging_queen);
    quiesce(90000, 90001);
    EXPECT_EQ(line_length(5), 44);
    EXPECT_EQ(line_length(6), 6);
}

TEST_F(Quiesce, LosingCaptureIsSearchedToo) {
    // The queen may take a protected pawn: there is no test of exchanges.
    const std::int32_t stand_pat = set("7k/8/1p6/2p5/8/8/2Q5/K7 w - -");
    EXPECT_EQ(legal_captures(position), std::vector<std::string>{"c2c5"});
    EXPECT_EQ(quiesce(), stand_pat);
    EXPECT_EQ(TotalNodes, 3U);  // the stand-pat, the capture, the recapture
}

TEST_F(Quiesce, MostValuableVictimComesFirst) {
    const std::int32_t stand_pat = set(two_victims);
    ply = 3;
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "e4d5"));
}

TEST_F(Quiesce, QuietChecksAreNotSearched) {
    set("7k/8/8/8/8/8/8/R3K3 w - -");
    quiesce();
    EXPECT_EQ(TotalNodes, 1U);
}

TEST_F(Quiesce, AllFourPromotionsAreSearched) {
    set("8/P6k/8/8/8/8/8/K7 w - -");
    ply = 1;
    EXPECT_GT(quiesce(), 500);
    EXPECT_EQ(TotalNodes, 5U);
    EXPECT_EQ(vetka[1][1], move_of(position, "a7a8q"));
}

TEST_F(Quiesce, EnPassantIsSearched) {
    set("7k/8/8/3pP3/8/8/8/K7 w - d6");
    quiesce();
    EXPECT_EQ(TotalNodes, 2U);
}

TEST_F(Quiesce, IllegalCaptureIsPassedOver) {
    // The knight is pinned.
    const std::int32_t stand_pat = set("4r2k/8/8/5p2/8/4N3/8/4K3 w - -");
    const Table before = position;
    EXPECT_TRUE(legal_captures(position).empty());
    EXPECT_EQ(quiesce(), stand_pat);
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(position, before);
    EXPECT_EQ(ply, 0);
}

TEST_F(Quiesce, StalemateWithoutACaptureIsNotSeen) {
    const std::int32_t stand_pat = set("7k/5Q2/8/8/8/8/8/K7 b - -");
    ASSERT_TRUE(legal_moves(position).empty());
    ASSERT_NE(stand_pat, 0);
    EXPECT_EQ(quiesce(), stand_pat);
    EXPECT_EQ(quiesce(-5, 5), -5);
}

TEST_F(Quiesce, MateIsSeenInCheck) {
    const std::int32_t stand_pat = set(mated);
    ASSERT_LT(stand_pat, -1000);
    for (const std::int32_t at_ply : {0, 3, 60}) {
        ply = at_ply;
        EXPECT_EQ(quiesce(), at_ply - 600000);
        EXPECT_EQ(quiesce(-50, 50), at_ply - 600000);
    }
}

TEST_F(Quiesce, MateIsNotSeenWhereTheStandPatReachesBeta) {
    const std::int32_t stand_pat = set(mated);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat), stand_pat);
    EXPECT_EQ(TotalNodes, 1U);
}

TEST_F(Quiesce, StandPatHoldsInCheckToo) {
    const std::int32_t stand_pat = set(checked_by_rook);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat), stand_pat);
    EXPECT_EQ(TotalNodes, 1U);
    TotalNodes = 0;
    EXPECT_GE(quiesce(), stand_pat);
}

TEST_F(Quiesce, QuietEvasionsAreSearchedInCheck) {
    set(checked_by_rook);
    quiesce(90000, 90001);
    EXPECT_EQ(TotalNodes, 1U + 4U);  // d1, d2, f1, f2
}

TEST_F(Quiesce, ThinEvasionGeneratorIsUsedInCheck) {
    // b7xa8 with promotion would be legal; the generator of evasions does not offer it.
    set("r6k/1P6/8/8/8/8/8/K7 w - -");
    ASSERT_GT(legal_moves(position).size(), 2U);
    quiesce(90000, 90001);
    EXPECT_EQ(TotalNodes, 1U + 2U);  // b1, b2
}

TEST_F(Quiesce, StopFlagIsNotLookedAt) {
    set(hanging_queen);
    const std::int32_t score = quiesce();
    stop_flag = 1;
    EXPECT_EQ(quiesce(), score);
    EXPECT_EQ(TotalNodes, 4U);
}

TEST_F(Quiesce, ClockThatRanOutReturnsAlpha) {
    set(hanging_queen);
    time_limit_ms = 0;
    EXPECT_EQ(quiesce(-12345, 12345), -12345);
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(fake_clock_readings, 1U);
}

TEST_F(Quiesce, NodeWithACountOf2048DoesNotReadTheClock) {
    set(quiet_ending);
    time_limit_ms = 0;
    TotalNodes = 2047;
    EXPECT_EQ(quiesce(), Table::evaluate(position, 0, 0));
    EXPECT_EQ(stop_flag, 0U);
    EXPECT_EQ(fake_clock_readings, 0U);
}

TEST_F(Quiesce, AbandonedChildLeavesPositionAndPlyAsTheyWere) {
    // The second reading is the child's: it returns its alpha, minus beta.
    const std::int32_t stand_pat = set(two_victims);
    const Table before = position;
    ply = 7;
    fake_ticks_per_reading = 1;
    time_limit_ms = 1;
    EXPECT_EQ(quiesce(stand_pat - 1, 5000), 5000);
    EXPECT_EQ(stop_flag, 1U);
    EXPECT_EQ(TotalNodes, 2U);
    EXPECT_EQ(position, before);
    EXPECT_EQ(ply, 7);
}

TEST_F(Quiesce, EntryOfDepthOneIsUsedAndOneOfDepthZeroIsNot) {
    const std::int32_t stand_pat = set(quiet_ending);
    for (const std::int32_t depth : {1, 2, 60}) {
        put_entry(position, depth, hash_exact, -4321);
        EXPECT_EQ(quiesce(), -4321);
    }
    for (const std::int32_t depth : {0, -1, -50}) {
        put_entry(position, depth, hash_exact, -4321);
        EXPECT_EQ(quiesce(), stand_pat);
    }
}

TEST_F(Quiesce, StandPatComesBeforeTheEntry) {
    const std::int32_t stand_pat = set(quiet_ending);
    put_entry(position, 5, hash_exact, -4321);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat), stand_pat);
}

TEST_F(Quiesce, LowerBoundIsUsedFromBetaOn) {
    const std::int32_t stand_pat = set(quiet_ending);
    put_entry(position, 5, hash_lower, stand_pat + 50);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat + 50), stand_pat + 50);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat + 30), stand_pat + 50);
    EXPECT_EQ(quiesce(stand_pat - 10, stand_pat + 51), stand_pat);
}

TEST_F(Quiesce, UpperBoundIsUsedUpToAlphaAsTheStandPatRaisedIt) {
    const std::int32_t stand_pat = set(quiet_ending);
    put_entry(position, 5, hash_upper, stand_pat - 5);
    EXPECT_EQ(quiesce(stand_pat - 100, stand_pat + 100), stand_pat - 5);
    put_entry(position, 5, hash_upper, stand_pat);
    EXPECT_EQ(quiesce(stand_pat - 100, stand_pat + 100), stand_pat);
    put_entry(position, 5, hash_upper, stand_pat + 1);
    EXPECT_EQ(quiesce(stand_pat - 100, stand_pat + 100), stand_pat);
    put_entry(position, 5, hash_upper, stand_pat + 20);
    EXPECT_EQ(quiesce(stand_pat + 20, stand_pat + 100), stand_pat + 20);
}

TEST_F(Quiesce, EntryOfTheOtherSideOrAnotherKeyIsNoHit) {
    const std::int32_t stand_pat = set(quiet_ending);
    put_entry(position, 5, hash_exact, -4321).side = 1;
    EXPECT_EQ(quiesce(), stand_pat);
    put_entry(position, 5, hash_exact, -4321).key ^= 1;
    EXPECT_EQ(quiesce(), stand_pat);
}

TEST_F(Quiesce, EntryIsUsedOnTheOldLineToo) {
    set(quiet_ending);
    put_entry(position, 5, hash_exact, -4321);
    follow_pv = 1;
    EXPECT_EQ(quiesce(), -4321);
    EXPECT_EQ(follow_pv, 1U);
}

TEST_F(Quiesce, HashMoveIsNotUsed) {
    const std::int32_t stand_pat = set(two_victims);
    ply = 3;
    put_entry_with_move(position, 5, hash_lower, stand_pat - 100, move_of(position, "e4f5"));
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "e4d5"));
}

TEST_F(Quiesce, NothingIsStoredAndNoHistoryKept) {
    set(two_victims);
    quiesce();
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        ASSERT_EQ(hash_table[slot].key, 777U);
    }
    for (std::size_t from = 0; from < mailbox_size; ++from) {
        for (std::size_t to = 0; to < mailbox_size; ++to) {
            ASSERT_EQ(history_good[from][to], 0);
            ASSERT_EQ(history_cut[from][to], 1000000);
        }
    }
}

TEST_F(Quiesce, QueenTakesPawnGoesByHistory) {
    // Two pawns to take: the rook's capture stands in the table, the queen's in the history.
    const char* fen = "7k/8/8/1p1p4/8/8/1Q1R4/K7 w - -";
    const std::int32_t stand_pat = set(fen);
    ply = 3;
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "d2d5"));
    history_cut[b2][b5] = 33;
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "b2b5"));
}

TEST_F(Quiesce, OldLinesMoveComesFirstAndTheWalkGoesOn) {
    const std::int32_t stand_pat = set(two_victims);
    ply = 3;
    vetka[0][3] = move_of(position, "e4f5");
    follow_pv = 1;
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "e4f5"));
}

TEST_F(Quiesce, WalkAlongTheOldLineEndsWhereItsMoveIsNoCapture) {
    const std::int32_t stand_pat = set(two_victims);
    ply = 3;
    vetka[0][3] = move_of(position, "a1b1");
    follow_pv = 1;
    quiesce(stand_pat, stand_pat + 10);
    EXPECT_EQ(current_line[3], move_of(position, "e4d5"));
    EXPECT_EQ(follow_pv, 0U);
}

TEST_F(Quiesce, StandPatCutLeavesTheWalkOn) {
    const std::int32_t stand_pat = set(two_victims);
    follow_pv = 1;
    quiesce(stand_pat - 10, stand_pat);
    EXPECT_EQ(follow_pv, 1U);
}

TEST_F(Quiesce, CaptureIntoPly69IsEvaluatedOnTheSpotAndStays) {
    set(hanging_queen);
    ply = 68;
    Table expected = position;
    const Move capture = move_of(position, "e4d5");
    expected = after(position, {"e4d5"});
    expected.side ^= 1;  // the mover's view: the side is not turned
    EXPECT_EQ(quiesce(), Table::evaluate(expected, 0, 0));
    EXPECT_EQ(position, expected);
    EXPECT_EQ(ply, 69);
    EXPECT_EQ(TotalNodes, 1U);
    EXPECT_EQ(current_line[68], capture);
    EXPECT_EQ(line_length(69), 69);
}

TEST_F(Quiesce, CaptureBeyondPly69DoesTheSame) {
    for (const std::int32_t at_ply : {69, 70, 71, 200}) {
        set(hanging_queen);
        ply = at_ply;
        const Table before = position;
        quiesce();
        EXPECT_NE(position, before);
        EXPECT_EQ(ply, at_ply + 1);
    }
}

TEST_F(Quiesce, CaptureIntoPly68IsTakenBack) {
    set(hanging_queen);
    const Table before = position;
    ply = 67;
    quiesce();
    EXPECT_EQ(position, before);
    EXPECT_EQ(ply, 67);
    EXPECT_EQ(TotalNodes, 2U);
}

TEST_F(Quiesce, LimitOfPliesMattersOnlyToAMove) {
    const std::int32_t stand_pat = set(quiet_ending);
    for (const std::int32_t at_ply : {68, 69, 70, 300}) {
        ply = at_ply;
        EXPECT_EQ(quiesce(), stand_pat);
        EXPECT_EQ(ply, at_ply);
    }
}
