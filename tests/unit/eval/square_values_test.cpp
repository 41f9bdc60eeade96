// SPDX-License-Identifier: MIT
// The piece-square tables: digests and sums of the whole tables, corners, symmetry, oddities.
#include "eval/square_values.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "support/table_digest.h"

namespace {

std::int32_t at(const MailboxTable& table, Square square) {
    return table[at_square(square)];
}

/// The square in the same file on the other side of the board's middle.
Square turned_over(Square square) {
    constexpr Square rows_sum = 11;
    return 10 * (rows_sum - square / 10) + square % 10;
}

/// The square in the same rank on the other side of the board's middle.
Square left_for_right(Square square) {
    constexpr Square columns_sum = 9;
    return square - square % 10 + columns_sum - square % 10;
}

/// Squares of files a to d whose value differs from that of the same square on the other wing.
std::vector<Square> squares_without_twin(const MailboxTable& table) {
    std::vector<Square> squares;
    for (const Square square : square_of_bit) {
        if (square % 10 <= 4 && at(table, square) != at(table, left_for_right(square))) {
            squares.push_back(square);
        }
    }
    return squares;
}

struct NamedTable {
    std::string name;
    const MailboxTable* table;
    std::uint32_t digest;
    std::int32_t sum;  ///< over all 120 entries
};

}  // namespace

TEST(SquareValues, WholeTablesHaveTheirDigests) {
    // Worked out outside the program from the tables' rows.
    const std::vector<NamedTable> tables = {
        {"pst_WPawns", &pst_WPawns, 0x23aede55, 9078},
        {"pst_WKnight", &pst_WKnight, 0xa043af57, 27650},
        {"pst_WBishop", &pst_WBishop, 0x7e7f3c65, 27912},
        {"pst_WRook", &pst_WRook, 0x688684b5, 43440},
        {"pst_WQuins", &pst_WQuins, 0x51dfc770, 84775},
        {"pst_WKing", &pst_WKing, 0xa35b96af, -1290},
        {"pst_WKing_half", &pst_WKing_half, 0xc107c9c5, 960},
        {"pst_BPawns", &pst_BPawns, 0xc9c72d55, 9078},
        {"pst_BKnight", &pst_BKnight, 0x38bd1c0f, 27650},
        {"pst_BBishop", &pst_BBishop, 0x2825fce5, 27912},
        {"pst_BRook", &pst_BRook, 0x688684b5, 43440},
        {"pst_BQuins", &pst_BQuins, 0xe17bb448, 84775},
        {"pst_BKing", &pst_BKing, 0xbfae702f, -1290},
        {"pst_BKing_half", &pst_BKing_half, 0xc107c9c5, 960},
    };
    int compared = 0;
    for (const NamedTable& row : tables) {
        EXPECT_EQ(table_digest(*row.table), row.digest) << row.name;
        EXPECT_EQ(table_sum(*row.table), row.sum) << row.name;
        ++compared;
    }
    EXPECT_EQ(compared, 14);
}

TEST(SquareValues, MaterialIsTheNominalValueTimes0725CutOff) {
    EXPECT_EQ(pawn_value, 72);     // 100 x 0.725 = 72.5
    EXPECT_EQ(knight_value, 235);  // 325 x 0.725 = 235.625
    EXPECT_EQ(bishop_value, 235);  // 325 x 0.725 = 235.625
    EXPECT_EQ(rook_value, 362);    // 500 x 0.725 = 362.5
    EXPECT_EQ(queen_value, 706);   // 975 x 0.725 = 706.875
}

TEST(SquareValues, PawnCornersAndCentre) {
    EXPECT_EQ(at(pst_WPawns, a8), 72);  // 72 + 0
    EXPECT_EQ(at(pst_WPawns, h8), 72);
    EXPECT_EQ(at(pst_WPawns, a1), 72);
    EXPECT_EQ(at(pst_WPawns, h1), 72);
    EXPECT_EQ(at(pst_WPawns, a7), 87);  // 72 + 15
    EXPECT_EQ(at(pst_WPawns, c7), 98);  // 72 + 26
    EXPECT_EQ(at(pst_WPawns, d4), 85);  // 72 + 13
    EXPECT_EQ(at(pst_WPawns, c3), 80);  // 72 + 8
    EXPECT_EQ(at(pst_WPawns, d3), 72);  // 72 + 0
}

TEST(SquareValues, PawnOnE2Is57AndOnE7Is102) {
    EXPECT_EQ(at(pst_WPawns, e2), 57);   // 72 - 15
    EXPECT_EQ(at(pst_WPawns, d2), 57);   // 72 - 15
    EXPECT_EQ(at(pst_WPawns, e7), 102);  // 72 + 30
    EXPECT_EQ(at(pst_BPawns, e7), 57);   // Black's own second rank
    EXPECT_EQ(at(pst_BPawns, e2), 102);
}

TEST(SquareValues, KnightCornersAndCentre) {
    EXPECT_EQ(at(pst_WKnight, a8), 135);  // 235 - 100
    EXPECT_EQ(at(pst_WKnight, h8), 135);  // 235 - 100
    EXPECT_EQ(at(pst_WKnight, a1), 185);  // 235 - 50
    EXPECT_EQ(at(pst_WKnight, h1), 185);  // 235 - 50
    EXPECT_EQ(at(pst_WKnight, e5), 260);  // 235 + 25
    EXPECT_EQ(at(pst_BKnight, a1), 135);
    EXPECT_EQ(at(pst_BKnight, h1), 135);
    EXPECT_EQ(at(pst_BKnight, e4), 260);
}

TEST(SquareValues, KnightIsWorthMoreOnB8ThanOnG8) {
    EXPECT_EQ(at(pst_WKnight, b8), 210);  // 235 - 25
    EXPECT_EQ(at(pst_WKnight, g8), 200);  // 235 - 35
    EXPECT_EQ(at(pst_BKnight, b1), 210);
    EXPECT_EQ(at(pst_BKnight, g1), 200);
    // On the first rank the two are alike.
    EXPECT_EQ(at(pst_WKnight, b1), 195);  // 235 - 40
    EXPECT_EQ(at(pst_WKnight, g1), 195);
}

TEST(SquareValues, BishopCornersAndCentre) {
    EXPECT_EQ(at(pst_WBishop, a8), 221);  // 235 - 14
    EXPECT_EQ(at(pst_WBishop, h8), 221);
    EXPECT_EQ(at(pst_WBishop, a1), 211);  // 235 - 24
    EXPECT_EQ(at(pst_WBishop, h1), 211);
    EXPECT_EQ(at(pst_WBishop, b2), 241);  // 235 + 6, the long diagonal
    EXPECT_EQ(at(pst_WBishop, g2), 241);
    EXPECT_EQ(at(pst_WBishop, b7), 233);  // 235 - 2
    EXPECT_EQ(at(pst_WBishop, d5), 245);  // 235 + 10
    EXPECT_EQ(at(pst_WBishop, e4), 245);
}

TEST(SquareValues, RookIs362OnEverySquare) {
    int squares = 0;
    for (const Square square : square_of_bit) {
        EXPECT_EQ(at(pst_WRook, square), 362) << square;
        EXPECT_EQ(at(pst_BRook, square), 362) << square;
        ++squares;
    }
    EXPECT_EQ(squares, 64);
}

TEST(SquareValues, QueenCornersAndCentre) {
    EXPECT_EQ(at(pst_WQuins, a8), 708);  // 706 + 2
    EXPECT_EQ(at(pst_WQuins, h8), 708);
    EXPECT_EQ(at(pst_WQuins, a1), 708);
    EXPECT_EQ(at(pst_WQuins, h1), 708);
    EXPECT_EQ(at(pst_WQuins, d1), 706);  // 706 + 0
    EXPECT_EQ(at(pst_WQuins, d4), 708);  // 706 + 2
    EXPECT_EQ(at(pst_WQuins, a4), 706);
}

TEST(SquareValues, QueenHasNothingOnE3) {
    EXPECT_EQ(at(pst_WQuins, e3), 706);  // 706 + 0
    EXPECT_EQ(at(pst_WQuins, d3), 707);  // 706 + 1
    EXPECT_EQ(at(pst_WQuins, d6), 707);  // the sixth rank keeps the pattern
    EXPECT_EQ(at(pst_WQuins, e6), 707);
    EXPECT_EQ(at(pst_BQuins, e6), 706);
    EXPECT_EQ(at(pst_BQuins, d6), 707);
}

TEST(SquareValues, KingWithManyMenOnTheBoardStaysAtHome) {
    const std::vector<std::int32_t> first_rank = {10, 15, 10, -15, 0, -15, 15, 10};
    for (Square file = 0; file < 8; ++file) {
        EXPECT_EQ(at(pst_WKing, a1 + file), first_rank[static_cast<std::size_t>(file)]) << file;
        EXPECT_EQ(at(pst_BKing, a8 + file), first_rank[static_cast<std::size_t>(file)]) << file;
    }
    EXPECT_EQ(at(pst_WKing, a2), -5);
    EXPECT_EQ(at(pst_WKing, b2), -5);
    EXPECT_EQ(at(pst_WKing, c2), -25);
    EXPECT_EQ(at(pst_WKing, f2), -25);
    EXPECT_EQ(at(pst_WKing, g2), -5);
    EXPECT_EQ(at(pst_WKing, h2), -5);
    int squares = 0;
    for (Square square = a8; square <= h3; ++square) {
        if (mask_of(square) != 0) {
            EXPECT_EQ(at(pst_WKing, square), -25) << square;
            ++squares;
        }
    }
    EXPECT_EQ(squares, 48);
}

TEST(SquareValues, KingInTheEndGameIs0InACornerAnd30InTheMiddle) {
    for (const Square corner : {a8, h8, a1, h1}) {
        EXPECT_EQ(at(pst_WKing_half, corner), 0);
        EXPECT_EQ(at(pst_BKing_half, corner), 0);
    }
    for (const Square centre : {d4, d5, e4, e5}) {
        EXPECT_EQ(at(pst_WKing_half, centre), 30);
        EXPECT_EQ(at(pst_BKing_half, centre), 30);
    }
    EXPECT_EQ(at(pst_WKing_half, e1), 15);
    EXPECT_EQ(at(pst_WKing_half, e2), 20);
    EXPECT_EQ(at(pst_WKing_half, e3), 25);
    EXPECT_EQ(at(pst_WKing_half, a2), 5);
    EXPECT_EQ(at(pst_WKing_half, b2), 10);
}

TEST(SquareValues, KingInTheEndGameIsStoredTwofold) {
    EXPECT_EQ(at(square_values_detail::stored_king_half, e4), 60);
    EXPECT_EQ(at(square_values_detail::stored_king_half, e1), 30);
    EXPECT_EQ(square_values_detail::halved({-3, 3})[0], -1);  // towards zero
    EXPECT_EQ(square_values_detail::halved({-3, 3})[1], 1);
}

TEST(SquareValues, BlackTablesAreWhiteTablesTurnedOver) {
    const std::vector<std::pair<const MailboxTable*, const MailboxTable*>> pairs = {
        {&pst_WPawns, &pst_BPawns},         {&pst_WKnight, &pst_BKnight},
        {&pst_WBishop, &pst_BBishop},       {&pst_WRook, &pst_BRook},
        {&pst_WQuins, &pst_BQuins},         {&pst_WKing, &pst_BKing},
        {&pst_WKing_half, &pst_BKing_half},
    };
    int entries = 0;
    for (const auto& [white_table, black_table] : pairs) {
        for (Square square = 0; square < static_cast<Square>(mailbox_size); ++square) {
            EXPECT_EQ(at(*black_table, square), at(*white_table, turned_over(square))) << square;
            ++entries;
        }
    }
    EXPECT_EQ(entries, 7 * 120);
}

TEST(SquareValues, WingsAreAlikeBesideTheNamedSquares) {
    using Squares = std::vector<Square>;
    EXPECT_EQ(squares_without_twin(pst_WPawns), Squares{});
    EXPECT_EQ(squares_without_twin(pst_WKnight), Squares{b8});
    EXPECT_EQ(squares_without_twin(pst_WBishop), Squares{});
    EXPECT_EQ(squares_without_twin(pst_WRook), Squares{});
    EXPECT_EQ(squares_without_twin(pst_WQuins), Squares{d3});
    EXPECT_EQ(squares_without_twin(pst_WKing), (Squares{c1, d1}));  // c1 10, f1 -15; d1 -15, e1 0
    EXPECT_EQ(squares_without_twin(pst_WKing_half), Squares{});
}

TEST(SquareValues, EntriesOffTheBoardHoldMaterialAlone) {
    int entries = 0;
    for (Square square = 0; square < static_cast<Square>(mailbox_size); ++square) {
        if (mask_of(square) != 0) {
            continue;
        }
        EXPECT_EQ(at(pst_WPawns, square), 72) << square;
        EXPECT_EQ(at(pst_BKnight, square), 235) << square;
        EXPECT_EQ(at(pst_WBishop, square), 235) << square;
        EXPECT_EQ(at(pst_BRook, square), 362) << square;
        EXPECT_EQ(at(pst_WQuins, square), 706) << square;
        EXPECT_EQ(at(pst_WKing, square), 0) << square;
        EXPECT_EQ(at(pst_BKing_half, square), 0) << square;
        ++entries;
    }
    EXPECT_EQ(entries, 56);
}
