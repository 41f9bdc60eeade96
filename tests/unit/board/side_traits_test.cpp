// SPDX-License-Identifier: MIT
// What differs between the colours, and the bitboard of a code.
#include "board/side_traits.h"

#include <gtest/gtest.h>

#include "board/square_tables.h"

namespace {

std::string rows_where(bool (*holds)(Square)) {
    std::string rows;
    for (std::int32_t row = 0; row < 8; ++row) {
        int files = 0;
        for (std::int32_t column = 1; column <= 8; ++column) {
            files += holds(10 * (row + 2) + column) ? 1 : 0;
        }
        EXPECT_TRUE(files == 0 || files == 8);
        rows += files == 8 ? static_cast<char>('0' + row) : '.';
    }
    return rows;
}

}  // namespace

// A letter a row, the eighth rank first. Whether a pawn may step twice asks only for "this rank or
// behind it", and so do the tests of the seventh and of the last rank.
TEST(SideTraits, RanksOfWhitePawns) {
    using Own = SideTraits<white>;
    EXPECT_EQ(rows_where(Own::on_second_rank), "......67");
    EXPECT_EQ(rows_where(Own::on_fifth_rank), "...3....");
    EXPECT_EQ(rows_where(Own::on_sixth_rank), "..2.....");
    EXPECT_EQ(rows_where(Own::on_seventh_rank), "01......");
    EXPECT_EQ(rows_where(Own::on_last_rank), "0.......");
}

TEST(SideTraits, RanksOfBlackPawns) {
    using Own = SideTraits<black>;
    EXPECT_EQ(rows_where(Own::on_second_rank), "01......");
    EXPECT_EQ(rows_where(Own::on_fifth_rank), "....4...");
    EXPECT_EQ(rows_where(Own::on_sixth_rank), ".....5..");
    EXPECT_EQ(rows_where(Own::on_seventh_rank), "......67");
    EXPECT_EQ(rows_where(Own::on_last_rank), ".......7");
}

TEST(SideTraits, EachManHasItsBitboardAndKingsHaveNone) {
    EXPECT_EQ(bitboard_of(w_pawn), &Table::WPawns);
    EXPECT_EQ(bitboard_of(w_knight), &Table::WKnight);
    EXPECT_EQ(bitboard_of(w_bishop), &Table::WBishop);
    EXPECT_EQ(bitboard_of(w_rook), &Table::WRook);
    EXPECT_EQ(bitboard_of(w_queen), &Table::WQuins);
    EXPECT_EQ(bitboard_of(b_pawn), &Table::BPawns);
    EXPECT_EQ(bitboard_of(b_knight), &Table::BKnight);
    EXPECT_EQ(bitboard_of(b_bishop), &Table::BBishop);
    EXPECT_EQ(bitboard_of(b_rook), &Table::BRook);
    EXPECT_EQ(bitboard_of(b_queen), &Table::BQuins);
    EXPECT_EQ(bitboard_of(w_king), nullptr);
    EXPECT_EQ(bitboard_of(b_king), nullptr);
    EXPECT_EQ(bitboard_of(empty_square), nullptr);
    EXPECT_EQ(bitboard_of(off_board), nullptr);
}
