// SPDX-License-Identifier: MIT
// Squares of the tables' numbering, the masks that turn the board, and men taken off a board.
#include "tb/index/index_squares.h"

#include <gtest/gtest.h>

#include "support/table_boards.h"

namespace {

std::uint32_t square(const char* text) {
    return static_cast<std::uint32_t>(square_number(text));
}

/// A predicate over the board, a letter a square, the eighth rank first.
template <class Predicate>
std::string drawn(Predicate holds) {
    std::string board;
    for (const char rank : std::string("87654321")) {
        for (const char file : std::string("abcdefgh")) {
            board += holds(square((std::string{file} + rank).c_str())) ? 'x' : '.';
        }
        board += '\n';
    }
    return board;
}

}  // namespace

TEST(IndexSquares, CountFromA1AlongTheRanks) {
    EXPECT_EQ(index_square[a1], 0);
    EXPECT_EQ(index_square[b1], 1);
    EXPECT_EQ(index_square[h1], 7);
    EXPECT_EQ(index_square[a2], 8);
    EXPECT_EQ(index_square[e4], 28);
    EXPECT_EQ(index_square[d5], 35);
    EXPECT_EQ(index_square[a8], 56);
    EXPECT_EQ(index_square[h8], 63);
}

TEST(IndexSquares, AreAllDifferentAndZeroOffTheBoard) {
    std::uint64_t met = 0;
    int squares = 0;
    for (int rank = 0; rank < 8; ++rank) {
        for (int file = 0; file < 8; ++file) {
            const std::size_t mailbox = mailbox_square(8 * rank + file);
            EXPECT_EQ(index_square[mailbox], 8 * rank + file);
            met |= std::uint64_t{1} << index_square[mailbox];
            ++squares;
        }
    }
    EXPECT_EQ(squares, 64);
    EXPECT_EQ(met, ~std::uint64_t{0});
    int outside_squares = 0;
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        const bool outside = i < 20 || i >= 100 || i % 10 == 0 || i % 10 == 9;
        if (outside) {
            EXPECT_EQ(index_square[i], 0) << i;
            ++outside_squares;
        }
    }
    EXPECT_EQ(outside_squares, 56);
}

TEST(IndexSquares, RanksAndFilesCountFromZero) {
    EXPECT_EQ(rank_index(square("a1")), 0U);
    EXPECT_EQ(rank_index(square("h1")), 0U);
    EXPECT_EQ(rank_index(square("c5")), 4U);
    EXPECT_EQ(rank_index(square("h8")), 7U);
    EXPECT_EQ(file_index(square("a8")), 0U);
    EXPECT_EQ(file_index(square("c5")), 2U);
    EXPECT_EQ(file_index(square("h1")), 7U);
}

TEST(IndexSquares, FileMaskCoversTheKingsSide) {
    EXPECT_EQ(drawn([](std::uint32_t s) { return file_mask_of(s) == 7; }),
              "....xxxx\n....xxxx\n....xxxx\n....xxxx\n....xxxx\n....xxxx\n....xxxx\n....xxxx\n");
    EXPECT_EQ(drawn([](std::uint32_t s) { return file_mask_of(s) == 0; }),
              "xxxx....\nxxxx....\nxxxx....\nxxxx....\nxxxx....\nxxxx....\nxxxx....\nxxxx....\n");
}

TEST(IndexSquares, QuadrantMaskHasAValueForEachQuarter) {
    const auto has = [](std::uint32_t mask) {
        return drawn([mask](std::uint32_t s) { return quadrant_mask_of(s) == mask; });
    };
    const std::string left = "xxxx....\n";
    const std::string right = "....xxxx\n";
    const std::string none = "........\n";
    const auto four = [](const std::string& rank) { return rank + rank + rank + rank; };
    EXPECT_EQ(has(0), four(none) + four(left));
    EXPECT_EQ(has(7), four(none) + four(right));
    EXPECT_EQ(has(56), four(left) + four(none));
    EXPECT_EQ(has(63), four(right) + four(none));
}

TEST(IndexSquares, MasksMirrorFilesAndRanks) {
    EXPECT_EQ(square("e1") ^ tb_file_mask, square("d1"));
    EXPECT_EQ(square("a6") ^ tb_file_mask, square("h6"));
    EXPECT_EQ(square("a7") ^ tb_rank_mask, square("a2"));
    EXPECT_EQ(square("h1") ^ tb_rank_mask, square("h8"));
}

TEST(IndexSquares, DiagonalMirrorExchangesRankAndFile) {
    EXPECT_EQ(diagonal_mirror(square("a8")), square("h1"));
    EXPECT_EQ(diagonal_mirror(square("h1")), square("a8"));
    EXPECT_EQ(diagonal_mirror(square("b5")), square("e2"));
    EXPECT_EQ(diagonal_mirror(square("g4")), square("d7"));
    EXPECT_EQ(drawn([](std::uint32_t s) { return diagonal_mirror(s) == s; }),
              ".......x\n......x.\n.....x..\n....x...\n...x....\n..x.....\n.x......\nx.......\n");
}

TEST(IndexSquares, TriangleHasTenSquares) {
    EXPECT_EQ(drawn(in_triangle),
              "........\n........\n........\n........\n...x....\n..xx....\n.xxx....\nxxxx....\n");
}

TEST(IndexSquares, TriangleTestLooksAtTheOtherKingFromTheDiagonal) {
    const std::string on_or_below =
        ".......x\n......xx\n.....xxx\n....xxxx\n...xxxxx\n..xxxxxx\n.xxxxxxx\nxxxxxxxx\n";
    for (const char* const king : {"a1", "b2", "c3", "d4"}) {
        EXPECT_EQ(drawn([king](std::uint32_t other) { return triangle_test(square(king), other); }),
                  on_or_below)
            << king;
    }
}

TEST(IndexSquares, TriangleTestOffTheDiagonalIsForTheKingAlone) {
    const std::string rank = "xxxxxxxx\n";
    std::string everywhere;
    for (int i = 0; i < 8; ++i) {
        everywhere += rank;
    }
    for (const char* const king : {"b1", "c1", "d1", "c2", "d2", "d3"}) {
        EXPECT_EQ(drawn([king](std::uint32_t other) { return triangle_test(square(king), other); }),
                  everywhere)
            << king;
    }
    for (const char* const king : {"a2", "b3", "c4", "e1", "e5", "h8", "a8"}) {
        EXPECT_EQ(drawn([king](std::uint32_t other) {
                      return triangle_test(square(king), other);
                  }).find('x'),
                  std::string::npos)
            << king;
    }
}

TEST(IndexSquares, TakeKingGivesItsSquareAndClearsIt) {
    TbBoard board{};
    board[e4] = tb_king;
    board[d4] = tb_queen;
    EXPECT_EQ(TakeKing(board), square("e4"));
    EXPECT_EQ(board[e4], 0);
    EXPECT_EQ(board[d4], tb_queen);
}

TEST(IndexSquares, TakingFromABoardWithoutTheManGivesZero) {
    TbBoard board{};
    board[g7] = tb_rook;
    const TbBoard before = board;
    EXPECT_EQ(TakeKing(board), 0U);
    EXPECT_EQ(TakeMan(board, tb_bishop), 0U);
    EXPECT_EQ(board, before);
}

TEST(IndexSquares, TakeManGivesMenOfAKindFromTheEighthRankDown) {
    TbBoard board{};
    for (const Square man : {h1, a1, c5, b5, g8}) {
        board[static_cast<std::size_t>(man)] = tb_knight;
    }
    board[a8] = tb_pawn;
    for (const char* const expected : {"g8", "b5", "c5", "a1", "h1"}) {
        EXPECT_EQ(TakeMan(board, tb_knight), square(expected));
    }
    EXPECT_EQ(TakeMan(board, tb_knight), 0U);
    EXPECT_EQ(TakeMan(board, tb_pawn), square("a8"));
    EXPECT_EQ(board, TbBoard{});
}

TEST(IndexSquares, EachManIsFoundOnEachSquare) {
    int taken = 0;
    for (std::int32_t kind = tb_pawn; kind <= tb_king; ++kind) {
        for (int at = 0; at < 64; ++at) {
            TbBoard board{};
            board[mailbox_square(at)] = kind;
            EXPECT_EQ(take_first(board, kind), static_cast<std::uint32_t>(at));
            EXPECT_EQ(board, TbBoard{});
            ++taken;
        }
    }
    EXPECT_EQ(taken, 6 * 64);
}
