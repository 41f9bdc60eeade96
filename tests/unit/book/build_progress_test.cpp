// SPDX-License-Identifier: MIT
// The progress line, on a stream in the place of a terminal and with a clock set by hand.
#include "book/build_progress.h"

#include <gtest/gtest.h>
#include <sstream>

#include "support/fake_clock.h"

namespace {

// Back to the first column, and clear to the end of the line.
const std::string wipe = "\r\x1b[K";

}  // namespace

class BuildProgressTest : public testing::Test {
  protected:
    BuildProgressTest() { reset_fake_clock(); }

    /// What was shown since the last question.
    std::string shown() {
        std::string text = out_.str();
        out_.str("");
        return text;
    }

    std::ostringstream out_;
};

TEST_F(BuildProgressTest, NothingIsShownInTheFirstFifthOfASecond) {
    {
        BuildProgress progress(&out_, "Reading games", 1000);
        progress.count_game(10);
        fake_ticks = 199;
        progress.count_game(20);
        progress.advance(30);
    }
    EXPECT_EQ(shown(), "") << "and nothing is wiped that was not shown";
}

TEST_F(BuildProgressTest, LineTellsShareGamesAndSpeed) {
    BuildProgress progress(&out_, "Reading games", 1000);
    progress.count_game(100);
    fake_ticks = 200;
    progress.count_game(250);
    EXPECT_EQ(shown(), wipe + "Reading games: 25% of the file, 2 games, 10 games/s");
}

TEST_F(BuildProgressTest, LineTellsWhichPassItIs) {
    BuildProgress progress(&out_, "Writing the book", 50);
    fake_ticks = 1000;
    progress.count_game(49);
    EXPECT_EQ(shown(), wipe + "Writing the book: 98% of the file, 1 games, 1 games/s");
}

TEST_F(BuildProgressTest, LineComesFiveTimesASecondAtMost) {
    BuildProgress progress(&out_, "a", 0);
    fake_ticks = 250;
    progress.count_game(1);
    EXPECT_EQ(shown(), wipe + "a: 1 games, 4 games/s");
    fake_ticks = 449;
    progress.count_game(1);
    EXPECT_EQ(shown(), "");
    fake_ticks = 450;
    progress.count_game(1);
    EXPECT_EQ(shown(), wipe + "a: 3 games, 6 games/s");
    progress.count_game(1);
    EXPECT_EQ(shown(), "");
}

TEST_F(BuildProgressTest, TimeIsThatOfThisPass) {
    fake_ticks = 4294967000U;  // the clock wraps during the pass
    BuildProgress progress(&out_, "a", 0);
    progress.count_game(1);
    EXPECT_EQ(shown(), "");
    fake_ticks += 500;
    progress.count_game(1);
    EXPECT_EQ(shown(), wipe + "a: 2 games, 4 games/s");
}

TEST_F(BuildProgressTest, AdvanceShowsTheLineWithoutCounting) {
    BuildProgress progress(&out_, "a", 100);
    fake_ticks = 200;
    progress.advance(7);
    EXPECT_EQ(shown(), wipe + "a: 7% of the file, 0 games, 0 games/s");
    fake_ticks = 300;
    progress.advance(8);
    EXPECT_EQ(shown(), "");
}

TEST_F(BuildProgressTest, UnknownSizeShowsNoShare) {
    BuildProgress progress(&out_, "a", 0);
    fake_ticks = 200;
    progress.count_game(7);
    EXPECT_EQ(shown(), wipe + "a: 1 games, 5 games/s");
}

TEST_F(BuildProgressTest, FileThatGrowsMeanwhileStaysAtAHundred) {
    BuildProgress progress(&out_, "a", 100);
    fake_ticks = 200;
    progress.count_game(100);
    EXPECT_EQ(shown(), wipe + "a: 100% of the file, 1 games, 5 games/s");
    fake_ticks = 400;
    progress.count_game(250);
    EXPECT_EQ(shown(), wipe + "a: 100% of the file, 2 games, 5 games/s");
}

TEST_F(BuildProgressTest, LargeFilesHaveTheirShareToo) {
    constexpr std::uint64_t hundred_gigabytes = 100'000'000'000;
    BuildProgress progress(&out_, "a", hundred_gigabytes);
    fake_ticks = 200;
    progress.count_game(hundred_gigabytes / 2);
    EXPECT_EQ(shown(), wipe + "a: 50% of the file, 1 games, 5 games/s");
}

TEST_F(BuildProgressTest, LineIsWipedAtTheEnd) {
    {
        BuildProgress progress(&out_, "a", 0);
        fake_ticks = 200;
        progress.count_game(1);
        EXPECT_NE(shown(), "");
    }
    EXPECT_EQ(shown(), wipe);
}

TEST_F(BuildProgressTest, WithoutAStreamNothingIsShown) {
    {
        BuildProgress progress(nullptr, "a", 100);
        fake_ticks = 1000;
        progress.count_game(1);
        progress.advance(1);
    }
    EXPECT_EQ(shown(), "");
}
