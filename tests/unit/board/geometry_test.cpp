// SPDX-License-Identifier: MIT
// Attack masks, rays, relations and the population table. The digests were worked out by a program
// that shares no code with the engine.
#include "board/geometry.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <vector>

#include "support/word_digest.h"

namespace {

Bitboard squares(std::initializer_list<Square> list) {
    Bitboard word = 0;
    for (const Square square : list) {
        word |= mask_of(square);
    }
    return word;
}

int bits_of(Bitboard word) {
    return std::popcount(word);
}

std::uint64_t relation_digest(const RelationTable& table) {
    std::vector<std::uint32_t> words;
    for (const auto& row : table) {
        words.insert(words.end(), row.begin(), row.end());
    }
    return word_digest(words);
}

/// Whether a reaches b exactly when b reaches a, over the board.
bool is_symmetric(const Mailbox<Bitboard>& table) {
    for (const Square one : square_of_bit) {
        for (const Square other : square_of_bit) {
            if (((table[at_square(one)] & mask_of(other)) != 0) !=
                ((table[at_square(other)] & mask_of(one)) != 0)) {
                return false;
            }
        }
    }
    return true;
}

int related_pairs(const RelationTable& table) {
    int pairs = 0;
    for (const Square one : square_of_bit) {
        for (const Square other : square_of_bit) {
            pairs += table[at_square(one)][at_square(other)] != 0 ? 1 : 0;
        }
    }
    return pairs;
}

}  // namespace

TEST(Geometry, BitAndFileMasks) {
    EXPECT_EQ(bit_mask[0], 1U);
    EXPECT_EQ(bit_mask[63], 0x8000000000000000U);
    EXPECT_EQ(word_digest(bit_mask), 0x963934cc3e610f1dU);
    EXPECT_EQ(file_mask[0], 0x0101010101010101U);
    EXPECT_EQ(file_mask[7], 0x8080808080808080U);
    EXPECT_EQ(word_digest(file_mask), 0x548456db3534f5adU);
}

TEST(Geometry, DarkAndLightSquaresShareTheBoard) {
    EXPECT_EQ(dark_squares, 0x55aa55aa55aa55aaU);
    EXPECT_EQ(light_squares, 0xaa55aa55aa55aa55U);
    EXPECT_NE(dark_squares & mask_of(a1), 0U);
    EXPECT_NE(light_squares & mask_of(h1), 0U);
    EXPECT_EQ(dark_squares ^ light_squares, ~Bitboard{0});
}

TEST(Geometry, KnightInTheCornerHasTwoSquares) {
    EXPECT_EQ(knight_attacks[a8], squares({b6, c7}));
    EXPECT_EQ(knight_attacks[h1], squares({g3, f2}));
    EXPECT_EQ(knight_attacks[d4], squares({e6, c6, b5, f5, b3, f3, c2, e2}));
}

TEST(Geometry, KingInTheCornerHasThreeSquares) {
    EXPECT_EQ(king_attacks[h1], squares({g1, g2, h2}));
    EXPECT_EQ(king_attacks[a8], squares({b8, a7, b7}));
    EXPECT_EQ(bits_of(king_attacks[h1]), 3);
    EXPECT_EQ(bits_of(king_attacks[e4]), 8);
}

TEST(Geometry, PawnsAttackForwards) {
    EXPECT_EQ(white_pawn_attacks[e4], squares({d5, f5}));
    EXPECT_EQ(black_pawn_attacks[e4], squares({d3, f3}));
    EXPECT_EQ(white_pawn_attacks[a2], squares({b3}));
    EXPECT_EQ(white_pawn_attacks[h8], 0U);
    EXPECT_EQ(black_pawn_attacks[h7], squares({g6}));
    EXPECT_EQ(black_pawn_attacks[a1], 0U);
}

TEST(Geometry, RaysEndAtTheEdge) {
    EXPECT_EQ(bits_of(rook_rays[a1]), 14);
    EXPECT_EQ(bits_of(rook_rays[e4]), 14);
    EXPECT_EQ(bishop_rays[a1], squares({b2, c3, d4, e5, f6, g7, h8}));
    EXPECT_EQ(bishop_rays[h1], squares({g2, f3, e4, d5, c6, b7, a8}));
    EXPECT_EQ(rook_rays[h8] & mask_of(h8), 0U);
    EXPECT_EQ(rook_rays[a8], squares({b8, c8, d8, e8, f8, g8, h8, a7, a6, a5, a4, a3, a2, a1}));
    EXPECT_EQ(queen_rays[d4], bishop_rays[d4] | rook_rays[d4]);
    EXPECT_EQ(bits_of(queen_rays[d4]), 27);
}

TEST(Geometry, StepTablesHaveTheirDigests) {
    EXPECT_EQ(word_digest(knight_attacks), 0x8d829817e466640dU);
    EXPECT_EQ(word_digest(king_attacks), 0x1517aa81cb230705U);
    EXPECT_EQ(word_digest(white_pawn_attacks), 0x14d53e67d85766e5U);
    EXPECT_EQ(word_digest(black_pawn_attacks), 0x9f8371865bcc406aU);
    EXPECT_EQ(word_digest(bishop_rays), 0x37c8bdc88cd084f8U);
    EXPECT_EQ(word_digest(rook_rays), 0x4e65073bc954b5f3U);
    EXPECT_EQ(word_digest(queen_rays), 0x87e2bf045fc4fad2U);
}

TEST(Geometry, AttacksGoBothWays) {
    EXPECT_TRUE(is_symmetric(knight_attacks));
    EXPECT_TRUE(is_symmetric(king_attacks));
    EXPECT_TRUE(is_symmetric(bishop_rays));
    EXPECT_TRUE(is_symmetric(rook_rays));
    for (const Square one : square_of_bit) {
        for (const Square other : square_of_bit) {
            EXPECT_EQ((white_pawn_attacks[at_square(one)] & mask_of(other)) != 0,
                      (black_pawn_attacks[at_square(other)] & mask_of(one)) != 0);
        }
    }
}

TEST(Geometry, OuterRowsReachNothing) {
    for (const auto* table : {&knight_attacks, &king_attacks, &white_pawn_attacks,
                              &black_pawn_attacks, &bishop_rays, &rook_rays, &queen_rays}) {
        for (std::size_t i = 0; i < mailbox_size; ++i) {
            if (i < 21 || i > 98) {
                EXPECT_EQ((*table)[i], 0U) << i;
            }
        }
    }
}

TEST(Geometry, OuterColumnsAreWorkedOutLikeTheOthers) {
    EXPECT_EQ(king_attacks[29], squares({h8, h7}));
    // From index 30, left of a7: to 9, 11, 22, 18, 38, 42, 49 and 51.
    EXPECT_EQ(knight_attacks[30], squares({b8, h7, b6, a5}));
    // From index 90, left of a1: to 79, 80, 81, 89, 91, 99, 100 and 101.
    EXPECT_EQ(king_attacks[90], squares({a2, a1}));
    EXPECT_EQ(rook_rays[29], squares({a8, b8, c8, d8, e8, f8, g8, h8}));
}

TEST(Geometry, LineOrKnightOfTheKingOnE1) {
    EXPECT_EQ(line_or_knight[e1][f1], 1U);
    EXPECT_EQ(line_or_knight[e1][d3], 1U);  // a knight's step
    EXPECT_EQ(line_or_knight[e1][c3], 1U);  // a diagonal
    EXPECT_EQ(line_or_knight[e1][b3], 0U);  // nothing
    EXPECT_EQ(line_or_knight[e1][e8], 1U);
    EXPECT_EQ(line_or_knight[e1][h4], 1U);
    EXPECT_EQ(line_or_knight[e1][e1], 0U);
    EXPECT_FALSE(on_line_or_knight(e1, h8));
    EXPECT_TRUE(on_line_or_knight(e1, a1));
}

TEST(Geometry, RelationsOverTheBoardAreThoseOfTheMasks) {
    for (const Square one : square_of_bit) {
        for (const Square other : square_of_bit) {
            const std::size_t i = at_square(one);
            const std::size_t j = at_square(other);
            const Bitboard lines = queen_rays[i] | knight_attacks[i];
            EXPECT_EQ(line_or_knight[i][j], (lines & mask_of(other)) != 0 ? 1U : 0U);
            EXPECT_EQ(king_step[i][j], (king_attacks[i] & mask_of(other)) != 0 ? 1U : 0U);
            EXPECT_EQ(knight_step[i][j], (knight_attacks[i] & mask_of(other)) != 0 ? 1U : 0U);
        }
    }
    // Rook lines 64 * 14, diagonals 560, knight's steps 336, king's steps 420.
    EXPECT_EQ(related_pairs(line_or_knight), 64 * 14 + 560 + 336);
    EXPECT_EQ(related_pairs(king_step), 420);
    EXPECT_EQ(related_pairs(knight_step), 336);
}

TEST(Geometry, RelationsAreFilledOverAllPairs) {
    EXPECT_EQ(relation_digest(line_or_knight), 0x6ba35f8bd6e1c9a5U);
    EXPECT_EQ(relation_digest(king_step), 0x71cc8600800e3e85U);
    EXPECT_EQ(relation_digest(knight_step), 0x70967c9be6a9b9e5U);
    EXPECT_EQ(line_or_knight[0][1], 1U);  // one rank, off the board
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        EXPECT_EQ(line_or_knight[i][i] + king_step[i][i] + knight_step[i][i], 0U) << i;
        for (std::size_t j = 0; j < mailbox_size; ++j) {
            EXPECT_EQ(line_or_knight[i][j], line_or_knight[j][i]);
        }
    }
}

TEST(Geometry, PopCountCountsBits) {
    EXPECT_EQ(pop_count(0), 0);
    EXPECT_EQ(pop_count(0x00000000000000ff), 8);
    EXPECT_EQ(pop_count(0x000000000001ffff), 1);
    EXPECT_EQ(pop_count(0x8000000000000001), 2);
    EXPECT_EQ(pop_count(0x7fff7fff7fff7fff), 60);
    EXPECT_EQ(pop_count(0x00ff000000000000), 8);
    EXPECT_EQ(pop_count(0x5555aaaa5555aaaa), 32);
    EXPECT_EQ(word_digest(pop_table), 0x66446a1dc7de6325U);
}

TEST(Geometry, PopCountTakesAFullGroupForNone) {
    EXPECT_EQ(pop_table[65534], 15);
    EXPECT_EQ(pop_table[65535], 0);
    EXPECT_EQ(pop_count(0x000000000000ffff), 0);
    EXPECT_EQ(pop_count(0xffff000000000000), 0);
    EXPECT_EQ(pop_count(0xffffffffffffffff), 0);
    EXPECT_EQ(pop_count(0x0001ffff00010001), 3);
}
