// SPDX-License-Identifier: MIT
// The triangular table of lines, its bounds above all.
#include "board/search_line.h"

#include <gtest/gtest.h>

namespace {

constexpr Move first{e2, e4, 0};
constexpr Move second{e7, e5, 0};
constexpr Move third{g1, f3, 0};
constexpr Move fourth{b8, c6, 0};

class SearchLine : public testing::Test {
  protected:
    void SetUp() override { reset_search_line(); }
};

}  // namespace

TEST_F(SearchLine, ResetEmptiesAll) {
    ply = 3;
    TotalNodes = 17;
    vetka[2][4] = first;
    length_vetka.fill(9);
    reset_search_line();
    EXPECT_EQ(ply, 0);
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(vetka[2][4], Move{});
    for (const std::int32_t length : length_vetka) {
        EXPECT_EQ(length, 0);
    }
}

TEST_F(SearchLine, SeventyRowsOfSeventyMoves) {
    EXPECT_EQ(vetka.size(), 70U);
    EXPECT_EQ(vetka[0].size(), 70U);
}

TEST_F(SearchLine, CopiesMoveAndLineOfTheNextPly) {
    vetka[3][3] = second;
    vetka[3][4] = third;
    vetka[3][5] = fourth;
    line_length(3) = 6;
    copy_line_up(2, first);
    EXPECT_EQ(line_length(2), 6);
    EXPECT_EQ(vetka[2][2], first);
    EXPECT_EQ(vetka[2][3], second);
    EXPECT_EQ(vetka[2][4], third);
    EXPECT_EQ(vetka[2][5], fourth);
    EXPECT_EQ(vetka[2][6], Move{});
}

TEST_F(SearchLine, CopiesUpToButWithoutTheLength) {
    vetka[3][3] = second;
    vetka[3][4] = third;
    line_length(3) = 4;
    copy_line_up(2, first);
    EXPECT_EQ(vetka[2][3], second);
    EXPECT_EQ(vetka[2][4], Move{});
}

TEST_F(SearchLine, EmptyLineBelowLeavesTheMoveAlone) {
    line_length(3) = 3;
    vetka[3][3] = second;
    copy_line_up(2, first);
    EXPECT_EQ(line_length(2), 3);
    EXPECT_EQ(vetka[2][2], first);
    EXPECT_EQ(vetka[2][3], Move{});
}

TEST_F(SearchLine, ShorterLengthBelowIsTakenAsItStands) {
    line_length(3) = 0;
    copy_line_up(2, first);
    EXPECT_EQ(line_length(2), 0);
    EXPECT_EQ(vetka[2][2], first);
}

TEST_F(SearchLine, LastRowBelowIsCopied) {
    vetka[69][69] = second;
    line_length(69) = 70;
    copy_line_up(68, first);
    EXPECT_EQ(vetka[68][68], first);
    EXPECT_EQ(vetka[68][69], second);
    EXPECT_EQ(line_length(68), 70);
}

TEST_F(SearchLine, LengthPastTheTableCopiesNoFurtherThanTheTable) {
    vetka[69][69] = second;
    line_length(69) = 75;
    copy_line_up(68, first);
    EXPECT_EQ(vetka[68][69], second);
    EXPECT_EQ(line_length(68), 75);
    EXPECT_EQ(vetka[69][0], Move{});
}

TEST_F(SearchLine, PliesAtAndPastTheEndKeepNoLine) {
    const auto before = vetka;
    for (const std::int32_t at_ply : {69, 70, 71, 100, 1000}) {
        copy_line_up(at_ply, first);
    }
    EXPECT_EQ(vetka, before);
}

TEST_F(SearchLine, PliesPastTheTableShareTheLastSlot) {
    EXPECT_EQ(line_slot(0), 0U);
    EXPECT_EQ(line_slot(69), 69U);
    EXPECT_EQ(line_slot(70), 70U);
    EXPECT_EQ(line_slot(71), 70U);
    EXPECT_EQ(line_slot(100000), 70U);
    line_length(90) = 12;
    EXPECT_EQ(line_length(70), 12);
    EXPECT_EQ(line_length(69), 0);
}
