// SPDX-License-Identifier: MIT
// The two square numberings. The digests were worked out by a program that shares no code with the
// engine, from the rules that the header states for each table.
#include "board/square_tables.h"

#include <gtest/gtest.h>

#include "support/word_digest.h"

namespace {

bool is_board_square(std::size_t index) {
    return index >= 21 && index <= 98 && index % 10 >= 1 && index % 10 <= 8;
}

}  // namespace

TEST(SquareTables, SquaresHaveTheirMailboxNumbers) {
    EXPECT_EQ(a8, 21);
    EXPECT_EQ(e8, 25);
    EXPECT_EQ(h8, 28);
    EXPECT_EQ(a1, 91);
    EXPECT_EQ(e1, 95);
    EXPECT_EQ(h1, 98);
    EXPECT_EQ(a8 + step_down, a7);
    EXPECT_EQ(a1 + step_up, a2);
    EXPECT_EQ(a1 + step_right, b1);
    EXPECT_EQ(b1 + step_left, a1);
}

TEST(SquareTables, PieceCodesHaveOneColourBitAndOneKindBit) {
    const std::array<PieceCode, 6> whites = {w_pawn, w_knight, w_bishop, w_rook, w_queen, w_king};
    const std::array<PieceCode, 6> blacks = {b_pawn, b_knight, b_bishop, b_rook, b_queen, b_king};
    const std::array<PieceCode, 6> white_numbers = {8193, 8194, 8196, 8200, 8208, 8224};
    const std::array<PieceCode, 6> black_numbers = {4160, 4224, 4352, 4608, 5120, 6144};
    EXPECT_EQ(whites, white_numbers);
    EXPECT_EQ(blacks, black_numbers);
    PieceCode kinds = 0;
    for (std::size_t i = 0; i < whites.size(); ++i) {
        EXPECT_EQ(w_figure(whites[i]), 0x2000U);
        EXPECT_EQ(b_figure(whites[i]), 0U);
        EXPECT_EQ(w_figure(blacks[i]), 0U);
        EXPECT_EQ(b_figure(blacks[i]), 0x1000U);
        const PieceCode white_kind = whites[i] & ~white_bit;
        const PieceCode black_kind = blacks[i] & ~black_bit;
        EXPECT_EQ(kinds & (white_kind | black_kind), 0U) << "kind bits overlap";
        EXPECT_TRUE(std::has_single_bit(white_kind) && std::has_single_bit(black_kind));
        kinds |= white_kind | black_kind;
    }
    EXPECT_EQ(w_figure(empty_square) | b_figure(empty_square), 0U);
    EXPECT_EQ(w_figure(off_board) | b_figure(off_board), 0U);
    EXPECT_EQ(empty_square, 16384U);
}

TEST(SquareTables, EmptyBoardMarksTheSixtyFourSquares) {
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        EXPECT_EQ(empty_board[i], is_board_square(i) ? 16384U : 0U) << i;
    }
    EXPECT_EQ(word_digest(empty_board), 0x4519fe4e43a28e25U);
}

TEST(SquareTables, StartBoardHoldsTheMen) {
    EXPECT_EQ(start_board[a8], 4608U);
    EXPECT_EQ(start_board[h8], 4608U);
    EXPECT_EQ(start_board[d8], 5120U);
    EXPECT_EQ(start_board[e8], 6144U);
    EXPECT_EQ(start_board[a1], 8200U);
    EXPECT_EQ(start_board[d1], 8208U);
    EXPECT_EQ(start_board[e1], 8224U);
    EXPECT_EQ(word_digest(start_board), 0x6a42e7a76c2cee71U);
}

TEST(SquareTables, BitsAndSquaresTranslateBothWays) {
    EXPECT_EQ(square_of_bit[0], a8);
    EXPECT_EQ(square_of_bit[7], h8);
    EXPECT_EQ(square_of_bit[8], a7);
    EXPECT_EQ(square_of_bit[56], a1);
    EXPECT_EQ(square_of_bit[63], h1);
    EXPECT_EQ(word_digest(square_of_bit), 0xc7bcfa1aac446885U);
    for (std::size_t bit = 0; bit < 64; ++bit) {
        EXPECT_EQ(mask_of(square_of_bit[bit]), Bitboard{1} << bit);
    }
    Bitboard all = 0;
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        EXPECT_EQ(square_mask[i] != 0, is_board_square(i)) << i;
        all |= square_mask[i];
    }
    EXPECT_EQ(all, ~Bitboard{0});
    EXPECT_EQ(word_digest(square_mask), 0x6cc8b2c73fceec1dU);
}

TEST(SquareTables, FirstBitIsTheLowest) {
    EXPECT_EQ(first_bit(1), 0);
    EXPECT_EQ(first_bit(0x8000000000000001), 0);
    EXPECT_EQ(first_bit(0x80000000), 31);
    for (std::int32_t bit = 0; bit < 64; ++bit) {
        EXPECT_EQ(first_bit(~Bitboard{0} << bit), bit);
    }
}

TEST(SquareTables, FirstBitOfAWordWithAnEmptyLowHalfIsFrom32Up) {
    EXPECT_EQ(first_bit(0x0000000100000000), 32);
    EXPECT_EQ(first_bit(0x00ff000000000000), 48);
    EXPECT_EQ(first_bit(0x8000000000000000), 63);
}

TEST(SquareTables, SquaresAreTakenFromA8TowardsH1) {
    Bitboard word = mask_of(h1) | mask_of(a8) | mask_of(e4) | mask_of(h8) | mask_of(a7);
    EXPECT_EQ(take_first_square(word), a8);
    EXPECT_EQ(take_first_square(word), h8);
    EXPECT_EQ(take_first_square(word), a7);
    EXPECT_EQ(take_first_square(word), e4);
    EXPECT_EQ(take_first_square(word), h1);
    EXPECT_EQ(word, 0U);
}

TEST(SquareTables, FilesAreTheIndexModuloTen) {
    EXPECT_EQ(file_of[a8], 1);
    EXPECT_EQ(file_of[h1], 8);
    EXPECT_EQ(file_of[0], 0);
    EXPECT_EQ(file_of[119], 9);
    EXPECT_EQ(word_digest(file_of), 0xeff24e967d97cca5U);
}

TEST(SquareTables, RanksAreClampedAndRowsAreNot) {
    EXPECT_EQ(rank_of[0], -1);
    EXPECT_EQ(rank_of[19], -1);
    EXPECT_EQ(rank_of[20], 0);
    EXPECT_EQ(rank_of[29], 0);
    EXPECT_EQ(rank_of[30], 1);
    EXPECT_EQ(rank_of[99], 7);
    EXPECT_EQ(rank_of[100], 8);
    EXPECT_EQ(rank_of[119], 8);
    EXPECT_EQ(row_of[9], -2);
    EXPECT_EQ(row_of[10], -1);
    EXPECT_EQ(row_of[a8], 0);
    EXPECT_EQ(row_of[h1], 7);
    EXPECT_EQ(row_of[109], 8);
    EXPECT_EQ(row_of[110], 9);
    EXPECT_EQ(word_digest(rank_of), 0x38ec3722db472205U);
    EXPECT_EQ(word_digest(row_of), 0x50c61ed2547dbcc5U);
}

TEST(SquareTables, DiagonalsAreNumbered) {
    EXPECT_EQ(diag_a1h8[a1], 1);
    EXPECT_EQ(diag_a1h8[h8], 1);
    EXPECT_EQ(diag_a1h8[a2], 9);
    EXPECT_EQ(diag_a1h8[b1], 2);
    EXPECT_EQ(diag_a1h8[h1], 8);
    EXPECT_EQ(diag_a1h8[a8], 15);
    EXPECT_EQ(diag_a8h1[a8], 16);
    EXPECT_EQ(diag_a8h1[h1], 16);
    EXPECT_EQ(diag_a8h1[a1], 23);
    EXPECT_EQ(diag_a8h1[h8], 30);
    EXPECT_EQ(diag_a1h8[29], 0);
    EXPECT_EQ(diag_a8h1[90], 0);
    EXPECT_EQ(word_digest(diag_a1h8), 0xc2722cd985ad13adU);
    EXPECT_EQ(word_digest(diag_a8h1), 0xbbd45cd1e109c4a5U);
}

TEST(SquareTables, SquaresShareADiagonalExactlyWhenANumberIsShared) {
    int pairs = 0;
    for (const Square one : square_of_bit) {
        for (const Square other : square_of_bit) {
            const std::int32_t files = file_of[at_square(one)] - file_of[at_square(other)];
            const std::int32_t rows = row_of[at_square(one)] - row_of[at_square(other)];
            const bool shared = diag_a1h8[at_square(one)] == diag_a1h8[at_square(other)] ||
                                diag_a8h1[at_square(one)] == diag_a8h1[at_square(other)];
            EXPECT_EQ(shared, files == rows || files == -rows) << one << ' ' << other;
            ++pairs;
        }
    }
    EXPECT_EQ(pairs, 64 * 64);
}
