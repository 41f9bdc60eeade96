// SPDX-License-Identifier: MIT
// Outposts, tropism, pawn penalties and the colours of the squares.
#include "eval/eval_tables.h"

#include <gtest/gtest.h>
#include <vector>

#include "board/geometry.h"
#include "support/table_digest.h"

namespace {

std::int32_t at(const MailboxTable& table, Square square) {
    return table[at_square(square)];
}

using Row = std::vector<std::int32_t>;

/// The eight entries of a rank from its a-file square on.
Row rank_from(const MailboxTable& table, Square first) {
    Row row;
    for (Square file = 0; file < 8; ++file) {
        row.push_back(at(table, first + file));
    }
    return row;
}

Row row_of_files(const FileTable& table) {
    return {table.begin(), table.end()};
}

}  // namespace

TEST(EvalTables, WholeTablesHaveTheirDigests) {
    // Worked out outside the program from the tables' rows.
    EXPECT_EQ(table_digest(outpost_white), 0x526224e5U);
    EXPECT_EQ(table_sum(outpost_white), 192);
    EXPECT_EQ(table_digest(outpost_black), 0xfdacdae5U);
    EXPECT_EQ(table_sum(outpost_black), 192);
    EXPECT_EQ(table_digest(square_colour), 0x3d0ef145U);
    EXPECT_EQ(table_sum(square_colour), 352);  // 32 x 1 + 32 x 10
}

TEST(EvalTables, WhiteOutpostsLieOnTheOwnHalfAndTheFifthRank) {
    const Row none(8, 0);
    EXPECT_EQ(rank_from(outpost_white, a8), none);
    EXPECT_EQ(rank_from(outpost_white, a7), none);
    EXPECT_EQ(rank_from(outpost_white, a6), none);
    EXPECT_EQ(rank_from(outpost_white, a5), (Row{0, 0, 6, 8, 8, 6, 0, 0}));
    EXPECT_EQ(rank_from(outpost_white, a4), (Row{0, 0, 12, 15, 15, 12, 0, 0}));
    EXPECT_EQ(rank_from(outpost_white, a3), (Row{0, 0, 15, 20, 20, 15, 0, 0}));
    EXPECT_EQ(rank_from(outpost_white, a2), (Row{0, 0, 8, 12, 12, 8, 0, 0}));
    EXPECT_EQ(rank_from(outpost_white, a1), none);
}

TEST(EvalTables, BlackOutpostsLieOnTheOwnHalfAndTheFourthRank) {
    const Row none(8, 0);
    EXPECT_EQ(rank_from(outpost_black, a8), none);
    EXPECT_EQ(rank_from(outpost_black, a7), (Row{0, 0, 8, 12, 12, 8, 0, 0}));
    EXPECT_EQ(rank_from(outpost_black, a6), (Row{0, 0, 15, 20, 20, 15, 0, 0}));
    EXPECT_EQ(rank_from(outpost_black, a5), (Row{0, 0, 12, 15, 15, 12, 0, 0}));
    EXPECT_EQ(rank_from(outpost_black, a4), (Row{0, 0, 6, 8, 8, 6, 0, 0}));
    EXPECT_EQ(rank_from(outpost_black, a3), none);
    EXPECT_EQ(rank_from(outpost_black, a2), none);
    EXPECT_EQ(rank_from(outpost_black, a1), none);
}

TEST(EvalTables, OutpostsAre0OffTheBoard) {
    int entries = 0;
    for (Square square = 0; square < static_cast<Square>(mailbox_size); ++square) {
        if (mask_of(square) == 0) {
            EXPECT_EQ(at(outpost_white, square), 0) << square;
            EXPECT_EQ(at(outpost_black, square), 0) << square;
            ++entries;
        }
    }
    EXPECT_EQ(entries, 56);
}

TEST(EvalTables, QueenTropismFallsFrom100AtOneStepTo0AtFour) {
    const Row values(queen_tropism.begin(), queen_tropism.begin() + 8);
    EXPECT_EQ(values, (Row{0, 100, 60, 25, 0, 0, 0, 0}));
    EXPECT_EQ(table_sum(queen_tropism), 185);  // nothing at any greater distance
}

TEST(EvalTables, PawnPenaltiesByFile) {
    EXPECT_EQ(row_of_files(isolated_penalty), (Row{0, 15, 18, 20, 25, 25, 20, 18, 15, 0}));
    EXPECT_EQ(row_of_files(isolated_doubled_penalty), (Row{0, 0, 1, 2, 3, 3, 2, 1, 0, 0}));
    EXPECT_EQ(row_of_files(doubled_penalty), (Row{0, 3, 4, 5, 6, 6, 5, 4, 3, 0}));
    EXPECT_EQ(row_of_files(backward_penalty), (Row{0, 1, 3, 4, 5, 5, 4, 3, 1, 0}));
}

TEST(EvalTables, PawnPenaltiesAreAlikeOnBothWings) {
    int entries = 0;
    for (std::size_t file = 0; file < 10; ++file) {
        EXPECT_EQ(isolated_penalty[file], isolated_penalty[9 - file]) << file;
        EXPECT_EQ(isolated_doubled_penalty[file], isolated_doubled_penalty[9 - file]) << file;
        EXPECT_EQ(doubled_penalty[file], doubled_penalty[9 - file]) << file;
        EXPECT_EQ(backward_penalty[file], backward_penalty[9 - file]) << file;
        ++entries;
    }
    EXPECT_EQ(entries, 10);
}

TEST(EvalTables, SquareColourIs1OnLightAnd10OnDarkSquares) {
    EXPECT_EQ(at(square_colour, a8), 1);
    EXPECT_EQ(at(square_colour, b8), 10);
    EXPECT_EQ(at(square_colour, a1), 10);
    EXPECT_EQ(at(square_colour, h1), 1);
    EXPECT_EQ(at(square_colour, h8), 10);
    int squares = 0;
    for (const Square square : square_of_bit) {
        const bool is_light = (light_squares & mask_of(square)) != 0;
        EXPECT_EQ(at(square_colour, square), is_light ? 1 : 10) << square;
        EXPECT_NE(is_light, (dark_squares & mask_of(square)) != 0) << square;
        ++squares;
    }
    EXPECT_EQ(squares, 64);
}
