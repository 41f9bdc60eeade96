// SPDX-License-Identifier: MIT
// The table of principal variations and the counters.
#include "board/search_line.h"

#include <gtest/gtest.h>

class SearchLine : public testing::Test {
  protected:
    SearchLine() { reset_search_line(); }
    ~SearchLine() override { reset_search_line(); }
};

TEST_F(SearchLine, CopiesTheNextPlysLineBehindTheMove) {
    vetka[4][4] = {44, 54, 0};
    vetka[4][5] = {45, 55, 0};
    length_vetka[4] = 6;
    copy_line_up(3, {43, 53, 8208});
    EXPECT_EQ(vetka[3][3], (Move{43, 53, 8208}));
    EXPECT_EQ(vetka[3][4], (Move{44, 54, 0}));
    EXPECT_EQ(vetka[3][5], (Move{45, 55, 0}));
    EXPECT_EQ(vetka[3][6], Move{});
    EXPECT_EQ(length_vetka[3], 6);
    EXPECT_EQ(vetka[4][3], Move{});
}

TEST_F(SearchLine, LineOfOneMoveEndsJustBehindIt) {
    length_vetka[1] = 1;
    copy_line_up(0, {84, 64, 0});
    EXPECT_EQ(vetka[0][0], (Move{84, 64, 0}));
    EXPECT_EQ(length_vetka[0], 1);
    EXPECT_EQ(vetka[0][1], Move{});
}

TEST_F(SearchLine, LastRowsAreReachedAndNothingBeyond) {
    length_vetka[69] = 70;
    vetka[69][69] = {1, 2, 0};
    copy_line_up(68, {3, 4, 0});
    EXPECT_EQ(vetka[68][68], (Move{3, 4, 0}));
    EXPECT_EQ(vetka[68][69], (Move{1, 2, 0}));
    EXPECT_EQ(length_vetka[68], 70);
    const auto before = vetka;
    const auto lengths = length_vetka;
    for (const std::int32_t far_ply : {69, 70, 71, 500}) {
        copy_line_up(far_ply, {5, 6, 0});
    }
    EXPECT_EQ(vetka, before);
    EXPECT_EQ(length_vetka, lengths);
}

TEST_F(SearchLine, LengthBeyondTheTableIsNotFollowed) {
    length_vetka[1] = 1000;
    for (std::int32_t row = 1; row < line_rows; ++row) {
        for (std::int32_t column = 0; column < line_rows; ++column) {
            vetka[line_slot(row)][line_slot(column)] = {row, column, 0};
        }
    }
    auto expected = vetka;
    copy_line_up(0, {7, 8, 0});
    expected[0] = expected[1];
    expected[0][0] = {7, 8, 0};
    EXPECT_EQ(vetka, expected) << "one row is copied and no other is touched";
    EXPECT_EQ(length_vetka[0], 1000);
}

TEST_F(SearchLine, PliesBeyondTheTableShareOneLength) {
    EXPECT_EQ(line_slot(0), 0U);
    EXPECT_EQ(line_slot(69), 69U);
    EXPECT_EQ(line_slot(70), 70U);
    EXPECT_EQ(line_slot(1000), 70U);
    line_length(71) = 5;
    EXPECT_EQ(line_length(70), 5);
    EXPECT_EQ(line_length(69), 0);
}

TEST_F(SearchLine, ResetSetsAllFourBack) {
    ply = 3;
    TotalNodes = 9;
    vetka[5][7] = {1, 1, 1};
    length_vetka[5] = 2;
    reset_search_line();
    EXPECT_EQ(ply, 0);
    EXPECT_EQ(TotalNodes, 0U);
    EXPECT_EQ(vetka[5][7], Move{});
    EXPECT_EQ(length_vetka[5], 0);
}
