// SPDX-License-Identifier: MIT
// What the computer claims before it announces its move, what it stores, and the count of fifty.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/computer_move_scene.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr const char* single_move = "7k/8/8/8/8/8/5r2/K7 w - -";
constexpr const char* stalemated = "k7/8/1Q6/8/8/8/8/K7 b - -";

// White's first generated moves are those of the pawn.
constexpr const char* first_of_pawn_ending = "a2a4";
constexpr const char* first_move_line = "move a2a4 ";

class ComputerMoveClaims : public ComputerMoveScene {};

}  // namespace

TEST_F(ComputerMoveClaims, PositionIsStoredWithTheOpponentToMove) {
    set(pawn_ending);
    no_time();
    play();
    EXPECT_EQ(game_top, 0);
    stood_in_game(after(position_from_fen(pawn_ending), {first_of_pawn_ending}), 2);
    EXPECT_TRUE(game_repeated_thrice(black, table.Array.data()));
    EXPECT_FALSE(game_repeated_twice(white, table.Array.data()));
}

TEST_F(ComputerMoveClaims, RepetitionIsClaimedBeforeTheMoveLine) {
    set(pawn_ending);
    stood_in_game(after(table, {first_of_pawn_ending}), 2);
    no_time();
    engine.fifty_count = 100;
    EXPECT_EQ(play(), (std::vector<std::string>{"1/2-1/2 {Draw by repetition}", first_move_line}));
}

TEST_F(ComputerMoveClaims, PositionThatStoodOnceBeforeIsNotClaimed) {
    set(pawn_ending);
    stood_in_game(after(table, {first_of_pawn_ending}), 1);
    no_time();
    EXPECT_EQ(play().size(), 1U);
}

TEST_F(ComputerMoveClaims, FiftyMovesAreClaimedFromAHundredOn) {
    for (const std::int32_t count : {98, 99, 100, 101, 200}) {
        begin_scene();
        set(pawn_ending);
        no_time();
        engine.fifty_count = count;
        const std::vector<std::string> lines = play();
        ASSERT_EQ(lines.size(), count < 100 ? 1U : 2U);
        if (count >= 100) {
            EXPECT_EQ(lines[0], "1/2-1/2 {Draw by the 50 moves rule}");
        }
        EXPECT_TRUE(is_move_line(lines.back()));
    }
}

TEST_F(ComputerMoveClaims, FiftyMovesAreNotClaimedBesideAMateOnTheBoard) {
    for (const std::int32_t score : {600000, -600000, 599999, -599999, 0}) {
        begin_scene();
        set(pawn_ending);
        plant(score);
        engine.max_depth = 1;
        engine.fifty_count = 100;
        const std::vector<std::string> lines = play();
        const bool is_mate = score == 600000 || score == -600000;
        EXPECT_EQ(lines.size(), is_mate ? 2U : 3U) << score;
    }
}

TEST_F(ComputerMoveClaims, SingleMoveCountsAsAScoreOfZeroForTheFiftyMoves) {
    set(single_move);
    engine.fifty_count = 100;
    EXPECT_EQ(play(),
              (std::vector<std::string>{"1/2-1/2 {Draw by the 50 moves rule}", "move a1b1 "}));
}

TEST_F(ComputerMoveClaims, CountOfFiftyIsZeroAfterEverySearchedMove) {
    for (const char* fen : {single_move, pawn_ending, "7k/8/8/3q4/4P3/8/8/K7 w - -"}) {
        set(fen);
        no_time();
        engine.fifty_count = 57;
        play();
        EXPECT_EQ(engine.fifty_count, 0) << fen;
    }
}

TEST_F(ComputerMoveClaims, CountOfFiftyStaysWithoutALegalMove) {
    set(stalemated);
    engine.fifty_count = 57;
    play();
    EXPECT_EQ(engine.fifty_count, 57);
}

TEST_F(ComputerMoveClaims, InsufficientMaterialIsClaimedAfterTheOtherClaims) {
    set("7k/8/8/8/8/8/8/KN6 w - -");
    no_time();
    stood_in_game(after(table, {legal_moves(table).front()}), 2);
    EXPECT_EQ(play(),
              (std::vector<std::string>{"1/2-1/2 {Draw by repetition}",
                                        "1/2-1/2 {Draw by insufficient material}", "move b1a3 "}));
}

TEST_F(ComputerMoveClaims, InsufficientMaterialIsClaimedAlone) {
    set("7k/8/8/8/8/8/8/KB6 w - -");
    no_time();
    const std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "1/2-1/2 {Draw by insufficient material}");
    set("7k/8/8/8/8/8/8/KBN5 w - -");
    EXPECT_EQ(play().size(), 1U);
}
