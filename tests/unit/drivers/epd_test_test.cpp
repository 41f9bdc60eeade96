// SPDX-License-Identifier: MIT
// Suites of test positions: what is printed, to the character.
#include "drivers/epd_test.h"

#include "search/search_state.h"
#include "shell/log.h"
#include "support/epd_scene.h"

namespace {

class EpdTest : public EpdScene {};

const std::string head = "EPD-Test: suite\nTime:0\n\n";

/// The summary of tests without a node.
std::string summary(int total, int solved, const std::string& solved_numbers,
                    const std::string& failed_numbers) {
    return "Total: " + std::to_string(total) + "\nSolutions: " + std::to_string(solved) +
           "\nErrors: " + std::to_string(total - solved) +
           "\nMaxSpeed: 0 KNodes/sec\nMinSpeed: 0 KNodes/sec\nSpeed: 0 KNodes/sec\n"
           "Solitions\n" +
           solved_numbers + "\n\nNoSolitions\n" + failed_numbers + "\n";
}

/// A summary from its speeds on to its lists.
std::string speeds(int highest, int lowest, int average) {
    const std::string unit = " KNodes/sec\n";
    return "MaxSpeed: " + std::to_string(highest) + unit + "MinSpeed: " + std::to_string(lowest) +
           unit + "Speed: " + std::to_string(average) + unit + "Solitions\n";
}

}  // namespace

TEST_F(EpdTest, OneTestFromHeadToSummary) {
    const std::string line = one_move_line + "bm Kb8; id \"one\";";
    EXPECT_EQ(run(line + "\n", 0), head + "\n1 " + line + "\n" + dumped(line) +
                                       "1. a8b8  \nAll 1 moves\nStart...\nmove: a8b8 \n"
                                       "Ok Speed: 0 KNodes/sec\n" +
                                       summary(1, 1, "1 ", ""));
}

TEST_F(EpdTest, TestThatFailsIsAnError) {
    const std::string line = one_move_line + "bm Ka7;";
    EXPECT_EQ(run(line + "\n", 0), head + "\n1 " + line + "\n" + dumped(line) +
                                       "1. a8b8  \nAll 1 moves\nStart...\nmove: a8b8 \n"
                                       "Error Speed: 0 KNodes/sec\n" +
                                       summary(1, 0, "", "1 "));
}

TEST_F(EpdTest, WhiteKingsLetterIsACapital) {
    const std::string black_to_move = "7k/8/6K1/8/8/8/8/R7 b - - bm ";
    EXPECT_NE(run(one_move_line + "bm kb8\n", 0).find("\nError Speed"), std::string::npos);
    EXPECT_NE(run(black_to_move + "kg8\n", 0).find("\nOk Speed"), std::string::npos);
    EXPECT_NE(run(black_to_move + "Kg8\n", 0).find("\nOk Speed"), std::string::npos);
}

TEST_F(EpdTest, LineWithoutBestMovesIsAnError) {
    const std::string text = run(one_move_line + "am Kb8\n", 0);
    EXPECT_NE(text.find("move: a8b8 \nError Speed: 0"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(summary(1, 0, "", "1 "))) << text;
}

TEST_F(EpdTest, NumbersOfSolvedAndFailedTestsAreListedApart) {
    const std::string solved = one_move_line + "bm Kb8\n";
    const std::string failed = one_move_line + "bm Kb7\n";
    EXPECT_TRUE(run(solved + failed + failed + solved + failed, 0)
                    .ends_with(summary(5, 2, "1 4 ", "2 3 5 ")));
    EXPECT_TRUE(run(solved + solved, 0).ends_with(summary(2, 2, "1 2 ", "")));
    EXPECT_TRUE(run(failed + failed, 0).ends_with(summary(2, 0, "", "1 2 ")));
}

TEST_F(EpdTest, ShortLinesAreSkippedAndNotCounted) {
    const std::string solved = one_move_line + "bm Kb8\n";
    const std::string text = run("\n1234567\n" + solved + "8/8 w -\n\n" + solved + "seven 7", 0);
    EXPECT_NE(text.find("\n2 " + solved), std::string::npos);
    EXPECT_TRUE(text.ends_with(summary(2, 2, "1 2 ", ""))) << text;
    EXPECT_EQ(line_of(run("12345678", 0), "Total: "), "1");
}

TEST_F(EpdTest, FileWithoutATestHasASummaryOfZeros) {
    EXPECT_EQ(run("", 0), head + summary(0, 0, "", ""));
    EXPECT_EQ(run("short\n\n1234567\n", 0), head + summary(0, 0, "", ""));
}

TEST_F(EpdTest, MissingFileIsTold) {
    const CapturedOutput output;
    epd_test(3, "nowhere.epd");
    EXPECT_EQ(output.text(), "EPD-Test: nowhere.epd\nTime:3\n\nCan't find test nowhere.epd\n");
    EXPECT_EQ(time_limit_ms, 3000U) << "set before the file is looked for";
}

TEST_F(EpdTest, LineEndsOfBothKindsAndNoneAtAllAreTheSame) {
    const std::string line = one_move_line + "bm Kb8";
    const std::string expected = run(line + "\n" + line + "\n", 0);
    EXPECT_EQ(run(line + "\r\n" + line + "\r\n", 0), expected);
    EXPECT_EQ(run(line + "\n" + line, 0), expected);
    EXPECT_EQ(line_of(expected, "Total: "), "2");
}

TEST_F(EpdTest, SearchlessPositionsPrintNoIterationAtAnyTime) {
    EXPECT_EQ(iterations(one_move_line + "bm Kb8\n", 5), std::vector<std::string>{});
    EXPECT_EQ(iterations("7k/5Q2/6K1/8/8/8/8/8 b - -\n", 5), std::vector<std::string>{});
    EXPECT_EQ(TotalNodes, 0U);
}

TEST_F(EpdTest, PositionWithoutAMoveIsAnError) {
    // The generator leaves its last try in the first slot; a board of pawns has nothing to try.
    const std::string mated = run("R5k1/5ppp/8/8/8/8/8/6K1 b - - bm Kf8\n", 0);
    EXPECT_NE(mated.find("\n\nAll 0 moves\nStart...\nmove: f7f6 \nError Speed: 0 "),
              std::string::npos)
        << mated;
    const std::string stalemated = run("7k/5Q2/6K1/8/8/8/8/8 b - - bm Kg8\n", 0);
    EXPECT_NE(stalemated.find("\n\nAll 0 moves\nStart...\nmove: h8g7 \nError Speed: 0 "),
              std::string::npos)
        << stalemated;
    const std::string rank = "/PPPPPPPP";
    const std::string walled = "KPPPPPPP" + rank + rank + rank + rank + rank + rank + rank;
    const std::string text = run(walled + " w - - bm Kb8 e4 Ne4 Nbd7 e8=Q exd8=Q\n", 5);
    EXPECT_NE(text.find("\n\nAll 0 moves\nStart...\nmove:      \nError Speed: 0 "),
              std::string::npos)
        << text;
}

TEST_F(EpdTest, IterationHasMillisecondsSinceTheStartOfItsTest) {
    repeat_both_moves();
    fake_ticks = 77777;
    fake_ticks_per_reading = 5;
    const std::vector<std::string> lines = iterations(two_moves_line + "bm Ka2\n", 1);
    // Four readings an iteration are 20 ms; the fifty-first is cut off at its first.
    ASSERT_EQ(lines.size(), 50U);
    for (int depth = 1; depth <= 50; ++depth) {
        const std::string number = std::to_string(depth);
        EXPECT_EQ(lines[static_cast<std::size_t>(depth - 1)],
                  number + " 0 " + std::to_string(20 * depth) + " " + number + " ");
    }
}

TEST_F(EpdTest, IterationThatRunsOutOfTimeIsNotPrinted) {
    repeat_both_moves();
    fake_ticks_per_reading = 7;
    // 28 ms each: the last before 1000 ms ends at 980, the next stops at its second move.
    const std::vector<std::string> lines = iterations(two_moves_line + "bm Ka2\n", 1);
    ASSERT_EQ(lines.size(), 35U);
    EXPECT_EQ(lines.back(), "35 0 980 35 ");
    EXPECT_EQ(TotalNodes, 36U);
}

TEST_F(EpdTest, HundredthIterationIsTheLast) {
    repeat_both_moves();
    const std::vector<std::string> lines = iterations(two_moves_line + "bm Ka2\n", 1);
    ASSERT_EQ(lines.size(), 100U);
    EXPECT_EQ(lines.front(), "1 0 0 1 ");
    EXPECT_EQ(lines.back(), "100 0 0 100 ");
}

TEST_F(EpdTest, SpeedIsNodesByMilliseconds) {
    repeat_both_moves();
    // 100 iterations are 100 nodes and 400 readings, and the speed's own.
    EXPECT_EQ(line_of(run(two_moves_line + "bm Ka2\n", 1), "Ok "), "Speed: 100 KNodes/sec")
        << "no time counts as a millisecond";
    fake_ticks_per_reading = 1;
    EXPECT_EQ(line_of(run(two_moves_line + "bm Ka2\n", 1), "Ok "), "Speed: 0 KNodes/sec");
    fake_ticks_per_reading = 0;
    EXPECT_EQ(line_of(run(two_moves_line + "bm Kb1\n", 1), "Error "), "Speed: 100 KNodes/sec");
}

TEST_F(EpdTest, SpeedCountsTheTimeOfTheTest) {
    // A position with many nodes to a reading of the clock: those of its own search.
    fake_ticks = 4000000000U;
    fake_ticks_per_reading = 1;
    const std::string text = run(two_moves_line + "bm Ka2\n", 3);
    const std::uint32_t elapsed = fake_ticks - search_start_tick - fake_ticks_per_reading;
    EXPECT_GE(elapsed, 3000U);
    EXPECT_EQ(line_of(text, "Speed: "), std::to_string(TotalNodes / elapsed) + " KNodes/sec");
}

TEST_F(EpdTest, SpeedIsCutToWholeThousands) {
    repeat_both_moves();
    // Nodes are no more than readings, so that only a clock that wraps gives a speed: after the 401
    // readings of a hundred iterations it shows 3 ms more than at the start.
    fake_ticks_per_reading = 2324209235U;
    const std::string text = run(two_moves_line + "bm Ka2\n", -1);
    EXPECT_EQ(TotalNodes, 100U);
    EXPECT_EQ(fake_clock_readings, 402U) << "with that of the start";
    EXPECT_EQ(line_of(text, "Ok "), "Speed: 33 KNodes/sec");
}

TEST_F(EpdTest, SummaryHasTheHighestTheLowestAndTheMeanSpeed) {
    repeat_both_moves();
    const std::string fast = two_moves_line + "bm Ka2\n";
    const std::string slow = one_move_line + "bm Kb8\n";
    EXPECT_NE(run(fast, 1).find(speeds(100, 100, 100)), std::string::npos) << "one is both";
    EXPECT_NE(run(slow + fast, 1).find(speeds(100, 0, 50)), std::string::npos);
    EXPECT_NE(run(fast + slow, 1).find(speeds(100, 0, 50)), std::string::npos);
    EXPECT_NE(run(fast + slow + slow, 1).find(speeds(100, 0, 33)), std::string::npos);
    EXPECT_NE(run(slow + fast + fast, 1).find(speeds(100, 0, 66)), std::string::npos);
    EXPECT_NE(run(fast + fast, 1).find(speeds(100, 100, 100)), std::string::npos);
}

TEST_F(EpdTest, AllIsInTheLogToo) {
    repeat_both_moves();
    log_enabled = true;
    std::string text = run(two_moves_line + "bm Ka2\n" + one_move_line + "bm Ka7\n", 1);
    text += run("", 1);
    const CapturedOutput output;
    epd_test(1, "nowhere");
    log_enabled = false;
    EXPECT_EQ(read_file("corvane.log"), text + output.text());
    EXPECT_GT(text.size(), 3000U);
}

TEST_F(EpdTest, LongLinesAndManyWordsAreJudgedWhole) {
    std::string line = one_move_line + "id \"" + std::string(5000, '-') + "\"; bm";
    for (int i = 0; i < 200; ++i) {
        line += " Ka" + std::string(i == 100 ? 3000 : 1, '7');
    }
    line += " Kb8";
    const std::string text = run(line + "\n", 0);
    EXPECT_NE(text.find("\n1 " + line + "\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with(summary(1, 1, "1 ", "")));
}

TEST_F(EpdTest, MoreThanTenThousandTestsAreCounted) {
    constexpr int tests = 10100;
    const std::string solved = one_move_line + "bm Kb8\n";
    const std::string failed = one_move_line + "bm Kb7\n";
    std::string suite;
    std::string solved_numbers;
    std::string failed_numbers;
    for (int number = 1; number <= tests; ++number) {
        const bool is_solved = number == 1 || number > 10000;
        suite += is_solved ? solved : failed;
        (is_solved ? solved_numbers : failed_numbers) += std::to_string(number) + " ";
    }
    EXPECT_TRUE(run(suite, 0).ends_with(summary(tests, 101, solved_numbers, failed_numbers)));
}

TEST_F(EpdTest, OneBoardServesTheWholeSuite) {
    // The king that no line places moves from where the line before had it.
    const std::string suite = "7k/8/8/8/8/8/8/K7 w - - bm Kb1\n8/8/8/8/8/8/8/8 w - - bm Ka2\n";
    for (int command = 0; command < 2; ++command) {
        const std::string text = run(suite, 0);
        const std::string second = text.substr(text.find("\n2 8/8"));
        EXPECT_EQ(line_of(second, "xywK= "), "91");
        EXPECT_EQ(line_of(second, "xybK= "), "28");
        EXPECT_NE(second.find("1. a1a2  2. a1b2  3. a1b1"), std::string::npos) << second;
    }
    const std::string text = run("8/8/8/8/8/8/8/8 w - - bm Ka2\n", 0);
    EXPECT_EQ(line_of(text, "xywK= "), "95") << "the next suite has a new board";
    EXPECT_EQ(line_of(text, "xybK= "), "25");
}

TEST_F(EpdTest, BoardsThatAreNoneAreJudgedAsFarAsTheyGo) {
    int tests = 0;
    std::string suite;
    for (const std::string board :
         {"8/8/8/8/8/8/8/8", "4k3/8/8/8/8/8/8/8", "8/8/8/8/8/8/8/4K3", "4k3/4Q3/8/8/8/8/8/4K3",
          "3qk3/8/8/8/8/8/8/3QK3", "kkkkkkkk/8/8/8/8/8/8/KKKKKKKK",
          "PPPPPPPP/8/k7/8/8/7K/8/pppppppp", "QQQQQQQQ/QQQQQQQQ/QQQQQQQQ/8/8/8/8/4K2k",
          "/////////////////////kK", "88888888qQkK",
          "qqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqq",
          "xxxxxxxxxxxxxxxxxxxxxxxx"}) {
        for (const char* rest : {" w - - bm e4 Kd2", " b - e3 bm Ke7", " w - a1", " b h8", ""}) {
            suite += board + rest + "\n";
            ++tests;
        }
    }
    EXPECT_EQ(tests, 60);
    fake_ticks_per_reading = 1;
    const std::string text = run(suite, 1);
    EXPECT_EQ(line_of(text, "Total: "), "60");
    EXPECT_NE(text.find("\nNoSolitions\n"), std::string::npos);
}
