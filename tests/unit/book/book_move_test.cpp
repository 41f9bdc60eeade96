// SPDX-License-Identifier: MIT
// The lookup: which lines agree with the game, and which candidates they give.
#include "book/book_move.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "shell/engine_state.h"
#include "support/lookup_scene.h"

namespace {

class BookMoveTest : public LookupScene {};

}  // namespace

TEST_F(BookMoveTest, EveryLineCountsAtTheStart) {
    EXPECT_EQ(lookup_in("e2e4e7e5\ne2e4c7c5\ne2e4\n"), "1 e2e4 3 \n");
    EXPECT_EQ(move_, (Move{e2, e4, 0}));
    EXPECT_FALSE(engine.book_out);
}

TEST_F(BookMoveTest, CandidatesComeInTheOrderOfTheirFirstLines) {
    EXPECT_EQ(lookup_in("g1f3\ne2e4\nd2d4\ne2e4\ng1f3\ne2e4\n"),
              "1 g1f3 2 \n2 e2e4 3 \n3 d2d4 1 \n");
    EXPECT_EQ(book_moves[0], (Move{g1, f3, 0}));
    EXPECT_EQ(book_moves[1], (Move{e2, e4, 0}));
    EXPECT_EQ(book_moves[2], (Move{d2, d4, 0}));
    EXPECT_EQ(book_weights[0], 2);
    EXPECT_EQ(book_weights[1], 3);
    EXPECT_EQ(book_weights[2], 1);
}

TEST_F(BookMoveTest, TwoLinesThatDifferWeighOneEach) {
    EXPECT_EQ(lookup_in("d2d4\ne2e4\n"), "1 d2d4 1 \n2 e2e4 1 \n");
}

TEST_F(BookMoveTest, MovesOfOneFromSquareOrOneTargetDiffer) {
    EXPECT_EQ(lookup_in("e2e4\ne2e3\nd2e3\n"), "1 e2e4 1 \n2 e2e3 1 \n3 d2e3 1 \n");
}

TEST_F(BookMoveTest, WeightsBeginAnewWithEveryLookup) {
    load_books("e2e4\ne2e4\nd2d4\n", "");
    const std::string first = lookup();
    EXPECT_EQ(first, "1 e2e4 2 \n2 d2d4 1 \n");
    EXPECT_EQ(lookup(), first);
}

TEST_F(BookMoveTest, OnlyLinesThatBeginWithTheGameCount) {
    played("e2e4e7e5");
    EXPECT_EQ(lookup_in("e2e4e7e5g1f3\nd2d4e7e5c2c4\ne2e4c7c5g1f3\ne2e4e7e5f1c4\ne2e4e7e6d2d4\n"),
              "1 g1f3 1 \n2 f1c4 1 \n");
}

TEST_F(BookMoveTest, EveryCharacterOfTheGameIsCompared) {
    played("e2e4e7e5");
    const std::string line = "e2e4e7e5g1f3\n";
    for (std::size_t i = 0; i < engine.game_line.size(); ++i) {
        std::string other = line;
        other[i] = 'h';
        EXPECT_EQ(lookup_in(other), "") << other;
    }
    EXPECT_EQ(lookup_in(line), "1 g1f3 1 \n");
}

TEST_F(BookMoveTest, TranspositionIsNotRecognised) {
    played("g1f3g8f6d2d4");
    EXPECT_EQ(lookup_in("d2d4g8f6g1f3e7e6\n"), "");
    EXPECT_TRUE(engine.book_out);
}

TEST_F(BookMoveTest, LineThatEndsHereGivesNothing) {
    played("e2e4");
    EXPECT_EQ(lookup_in("e2e4\ne2\n\n"), "");
    EXPECT_TRUE(engine.book_out);
}

TEST_F(BookMoveTest, EmptyLinesGiveNothing) {
    EXPECT_EQ(lookup_in("\n\ne2e4\n\n"), "1 e2e4 1 \n");
    EXPECT_EQ(lookup_in("\n\n"), "");
    EXPECT_TRUE(engine.book_out);
}

TEST_F(BookMoveTest, WithoutACandidateThreeZeroesAndTheBookIsOut) {
    move_ = {e2, e4, 5};
    EXPECT_EQ(lookup(), "");
    EXPECT_EQ(move_, Move{});
    EXPECT_TRUE(engine.book_out);
}

TEST_F(BookMoveTest, EachSideHasItsOwnBook) {
    load_books("e2e4\n", "d2d4\nd2d4\n");
    engine.root_side = white;
    EXPECT_EQ(lookup(), "1 e2e4 1 \n");
    engine.root_side = black;
    EXPECT_EQ(lookup(), "1 d2d4 2 \n");
    engine.root_side = 5;
    EXPECT_EQ(lookup(), "1 d2d4 2 \n");
}

TEST_F(BookMoveTest, LineOfTwentyFivePliesServesForTwentyTwo) {
    const std::string line = repeated("g1f3g8f6f3g1f6g8", 7).substr(0, 100);
    load_books(line + "\n", line + "\n");
    for (std::int32_t plies = 0; plies <= 30; ++plies) {
        played(repeated(line, 2).substr(0, 4 * static_cast<std::size_t>(plies)));
        engine.root_side = static_cast<Side>(plies % 2);
        const std::string move = line.substr(engine.game_line.size() % 16, 4);
        engine.book_out = false;
        EXPECT_EQ(lookup(), plies < 22 ? "1 " + move + " 1 \n" : "") << plies;
        EXPECT_EQ(engine.book_out, plies >= 22) << plies;
    }
}

TEST_F(BookMoveTest, LineThatIsNoLongerThanARowIsReadToItsEndAndNotFurther) {
    // The game is as long as the line, and counted as longer: the comparison ends with both.
    const std::string line = repeated("g1f3g8f6f3g1f6g8", 7).substr(0, 88);
    load_books(line + "\n", "");
    engine.game_line = line;
    for (const std::int32_t plies : {22, 23, 24, 25, 26, 1000000, 2147483647}) {
        engine.game_plies = plies;
        EXPECT_EQ(lookup(), "") << plies;
    }
}

TEST_F(BookMoveTest, WhatIsNoSquareEndsTheLineThereAndNotEarlier) {
    const std::string good = "e2e4e7e5g1f3b8c6";
    for (const char odd : {'`', 'i', 'A', 'E', '0', '9', ' ', '\r', '.', '\x80', '\xff', '\0'}) {
        for (std::size_t column = 8; column < 12; ++column) {
            std::string line = good;
            line[column] = odd;
            load_books(line + "\n", "");
            played(good.substr(0, 4));
            EXPECT_EQ(lookup(), "1 e7e5 1 \n") << line;
            played(good.substr(0, 8));
            EXPECT_EQ(lookup(), "") << line;
            played(good.substr(0, 12));
            EXPECT_EQ(lookup(), "") << line;
        }
    }
}

TEST_F(BookMoveTest, LettersAndDigitsHaveTheirPlaces) {
    EXPECT_EQ(lookup_in("2ee4\ne24e\neee4\n22e4\ne2ee\ne244\n"), "");
    EXPECT_EQ(lookup_in("a1h8\nh8a1\n"), "1 a1h8 1 \n2 h8a1 1 \n");
}

TEST_F(BookMoveTest, SkippedLinesDoNotHideTheNext) {
    EXPECT_EQ(lookup_in("E2E4\ne2e4\n--\nd2d4\n"), "1 e2e4 1 \n2 d2d4 1 \n");
}

TEST_F(BookMoveTest, MoveFromASquareToItselfIsACandidate) {
    EXPECT_EQ(lookup_in("e2e2\n"), "1 e2e2 1 \n");
}

TEST_F(BookMoveTest, ComparisonEndsWhereBothTextsEnd) {
    using namespace std::string_literals;
    engine.game_plies = 1;  // and no move known, as after a set-up by hand
    EXPECT_EQ(lookup_in("e2e4e7e5\ne7e5\n\n"), "");
    EXPECT_EQ(lookup_in("\0...d2d4\n"s), "1 d2d4 1 \n");
}

TEST_F(BookMoveTest, RowsOfAnOlderBookAreNotLookedAt) {
    load_books("e2e4\ne2e4\nd2d4\n", "c2c4\nc2c4\n");
    load_books("e2e4\n", "");
    EXPECT_EQ(lookup(), "1 e2e4 1 \n");
    engine.root_side = black;
    EXPECT_EQ(lookup(), "");
}

TEST_F(BookMoveTest, FortySevenMovesAreToldApart) {
    const std::string printed = lookup_in(joined(different_lines(60)));
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 47);
    EXPECT_NE(printed.find("47 a1f7 1 \n"), std::string::npos) << printed;
}

TEST_F(BookMoveTest, WithTheLastOfThemTheLookupEnds) {
    std::vector<std::string> lines = different_lines(48);
    lines.insert(lines.begin() + 46, lines[0]);  // before the last candidate: counts
    lines.insert(lines.begin() + 48, {lines[0], lines[47]});
    EXPECT_EQ(lines[47], "a1f7\n");
    lookup_in(joined(lines));
    EXPECT_EQ(book_weights[0], 2);
    EXPECT_EQ(book_weights[46], 1);
    for (std::size_t i = 1; i < book_candidates; ++i) {
        EXPECT_EQ(book_weights[i], 1) << i;
    }
}

TEST_F(BookMoveTest, WithOneLessItGoesOn) {
    std::vector<std::string> lines = different_lines(46);
    lines.push_back(lines[0]);
    lines.push_back(lines[45]);
    lookup_in(joined(lines));
    EXPECT_EQ(book_weights[0], 2);
    EXPECT_EQ(book_weights[45], 2);
    EXPECT_EQ(book_weights[46], 0);
}

TEST_F(BookMoveTest, LastOfAllLinesCounts) {
    EXPECT_EQ(lookup_in(repeated("e2e4\n", 2499) + "d2d4\n"), "1 e2e4 2499 \n2 d2d4 1 \n");
}

TEST_F(BookMoveTest, SeenMoveGainsWeight) {
    book_moves[0] = {e2, e4, 0};
    book_moves[1] = {d2, d4, 0};
    book_weights[0] = 3;
    book_weights[1] = 1;
    EXPECT_EQ(BookSeen(1, d2, d4), 0);
    EXPECT_EQ(book_weights[0], 3);
    EXPECT_EQ(book_weights[1], 2);
    EXPECT_EQ(BookSeen(1, e2, d4), 1);
    EXPECT_EQ(BookSeen(1, d2, e4), 1);
    EXPECT_EQ(book_weights[0], 3);
    EXPECT_EQ(book_weights[1], 2);
}

TEST_F(BookMoveTest, CandidatesBehindTheLastAreNotSeen) {
    book_moves[1] = {d2, d4, 0};
    EXPECT_EQ(BookSeen(0, d2, d4), 1);
    EXPECT_EQ(BookSeen(-1, d2, d4), 1);
    EXPECT_EQ(book_weights[1], 0);
}

TEST_F(BookMoveTest, ResetForgetsTheCandidates) {
    lookup_in("e2e4\n");
    reset_book_move();
    EXPECT_EQ(book_moves[0], Move{});
    EXPECT_EQ(book_weights[0], 0);
}
