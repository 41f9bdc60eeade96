// SPDX-License-Identifier: MIT
// Attack and check tests.
#include "board/attack.h"

#include <gtest/gtest.h>
#include <tuple>
#include <utility>

#include "board/square_tables.h"
#include "support/generated.h"
#include "support/position.h"

namespace {

/// The squares that the enemy of `side` attacks, as a word.
Bitboard attacked_squares(const Table& table, Side side) {
    Bitboard word = 0;
    for (const Square square : square_of_bit) {
        word |= square_attacked(table, square, side) ? mask_of(square) : 0;
    }
    return word;
}

Bitboard squares(std::initializer_list<Square> list) {
    Bitboard word = 0;
    for (const Square square : list) {
        word |= mask_of(square);
    }
    return word;
}

}  // namespace

// A lone man and the kings in far corners: k h8, K a1 unless the man stands in their way.
TEST(Attack, WhitePawnAttacksTwoSquaresAhead) {
    const Table table = position_from_fen("7k/8/8/8/4P3/8/8/K7 w - -");
    EXPECT_EQ(attacked_squares(table, black), squares({d5, f5, a2, b2, b1}));
}

TEST(Attack, BlackPawnAttacksTwoSquaresAhead) {
    const Table table = position_from_fen("7k/8/8/4p3/8/8/8/K7 w - -");
    EXPECT_EQ(attacked_squares(table, white), squares({d4, f4, g8, g7, h7}));
}

TEST(Attack, PawnsOnTheEdgeDoNotReachAround) {
    const Table table = position_from_fen("7k/8/8/8/P6P/8/8/3K4 w - -");
    EXPECT_EQ(attacked_squares(table, black), squares({b5, g5, c1, e1, c2, d2, e2}));
}

TEST(Attack, KnightsAndKings) {
    const Table table = position_from_fen("7k/8/8/3n4/8/8/8/K7 w - -");
    EXPECT_EQ(attacked_squares(table, white),
              squares({c7, e7, b6, f6, b4, f4, c3, e3, g8, g7, h7}));
    EXPECT_EQ(attacked_squares(table, black), squares({a2, b2, b1}));
}

TEST(Attack, SlidersSeeUpToTheFirstManAndItsSquare) {
    // The white rook on d4 is hemmed in by the pawns d6 and f4; the bishop on b2 by c3.
    const Table table = position_from_fen("7k/8/3p4/8/3R1p2/2P5/1B6/6K1 w - -");
    const Bitboard rook = squares({d5, d6, d3, d2, d1, a4, b4, c4, e4, f4});
    const Bitboard bishop = squares({a3, a1, c1, c3});
    const Bitboard pawn = squares({b4, d4});
    const Bitboard king = squares({f1, h1, f2, g2, h2});
    EXPECT_EQ(attacked_squares(table, black), rook | bishop | pawn | king);
}

TEST(Attack, QueenUsesBothKindsOfLine) {
    for (const auto& [fen, side] :
         {std::pair<const char*, Side>{"k7/8/8/3Q4/8/8/8/7K w - -", black},
          {"K7/8/8/3q4/8/8/8/7k w - -", white}}) {
        const Table table = position_from_fen(fen);
        EXPECT_EQ(attacked_squares(table, side) & ~squares({g1, g2, h2}),
                  squares({d1, d2, d3, d4, d6, d7, d8, a5, b5, c5, e5, f5, g5,
                           h5, a8, b7, c6, e4, f3, h1, a2, b3, c4, e6, f7, g8}))
            << fen;
    }
}

TEST(Attack, RookBehindARookIsFoundAtTheFirst) {
    const Table table = position_from_fen("3r3k/3r4/8/8/8/8/8/K7 w - -");
    EXPECT_TRUE(square_attacked(table, d1, white));
}

TEST(Attack, ManOfTheAttackersOwnColourEndsTheLine) {
    const Table table = position_from_fen("3r3k/3n4/8/8/8/8/8/K7 w - -");
    EXPECT_FALSE(square_attacked(table, d1, white));
    EXPECT_TRUE(square_attacked(table, d7, white));
    const Table bishops = position_from_fen("7k/8/5b2/4p3/8/8/8/K7 w - -");
    EXPECT_FALSE(square_attacked(bishops, b2, white));
    EXPECT_TRUE(square_attacked(bishops, e5, white));
}

TEST(Attack, BishopOnAFileAndRookOnADiagonalAreNoHit) {
    const Table table = position_from_fen("3b3k/8/8/8/3R4/8/8/K7 w - -");
    EXPECT_FALSE(square_attacked(table, d1, white));
    EXPECT_FALSE(square_attacked(table, f6, black));
    EXPECT_TRUE(square_attacked(table, d1, black));
}

TEST(Attack, PawnAttackIsSeenWhateverStandsOnTheSquare) {
    for (const char* fen : {"7k/8/8/8/8/4p3/8/K7 w - -", "7k/8/8/8/8/4p3/3N4/K7 w - -",
                            "7k/8/8/8/8/4p3/3n4/K7 w - -", "7k/8/8/8/8/4p3/3K4/8 w - -"}) {
        EXPECT_TRUE(square_attacked(position_from_fen(fen), d2, white)) << fen;
    }
}

TEST(Attack, CandidateBeyondAnotherManDoesNotHideANearerOne) {
    // The rook on a4 is shut off by b4; the one on h4 is not.
    const Table table = position_from_fen("7k/8/8/8/rP2K2r/8/8/8 w - -");
    EXPECT_TRUE(in_check(table, white));
    // The bishop on a8 is shut off by b7; the one on h1 is not.
    const Table bishops = position_from_fen("b6k/1P6/8/8/4K3/8/8/7b w - -");
    EXPECT_TRUE(in_check(bishops, white));
    const Table none = position_from_fen("b6k/1P6/8/8/rP2K1Pr/8/6P1/7b w - -");
    EXPECT_FALSE(in_check(none, white));
}

TEST(Attack, InCheckTakesASideOrAPieceCode) {
    const Table table = position_from_fen("4k3/8/8/8/8/8/8/r3K3 w - -");
    EXPECT_TRUE(in_check(table, 0));
    EXPECT_FALSE(in_check(table, 1));
    EXPECT_TRUE(in_check(table, 8193));
    EXPECT_TRUE(in_check(table, w_king));
    EXPECT_FALSE(in_check(table, 4160));
    EXPECT_FALSE(in_check(table, b_queen));
    const Table other = position_from_fen("4k2R/8/8/8/8/8/8/4K3 b - -");
    EXPECT_FALSE(in_check(other, 8193));
    EXPECT_TRUE(in_check(other, 4160));
    EXPECT_TRUE(in_check(other, 2));
}

TEST(Attack, AnyOtherSideAsksForWhitesMen) {
    const Table table = position_from_fen("4k3/8/8/8/8/8/8/R3K3 w - -");
    EXPECT_TRUE(square_attacked(table, a8, 1));
    EXPECT_TRUE(square_attacked(table, a8, 7));
    EXPECT_FALSE(square_attacked(table, a8, 0));
}

// The bitboards say which sliders could matter at all: a queen in the mailbox alone is not seen,
// and one in the bitboard alone is stopped by what the mailbox holds.
TEST(Attack, BitboardsChooseTheLineAndTheMailboxSettlesIt) {
    Table table = position_from_fen("7k/8/8/8/3q4/8/8/K7 w - -");
    ASSERT_TRUE(in_check(table, white));
    table.BQuins = 0;
    EXPECT_FALSE(in_check(table, white));
    table.BBishop = mask_of(h8);  // a candidate on the same diagonal makes the walk find the queen
    EXPECT_TRUE(in_check(table, white));
    table.at(d4) = empty_square;
    table.at(b2) = w_pawn;
    EXPECT_FALSE(in_check(table, white));
}

// A king counts twice: in the mailbox where a pawn would attack from, and by its square all around.
// After a set-up by hand the two can name different squares.
TEST(Attack, KingsAreSeenInTheMailboxAndOnTheirSquare) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/K7 w - -");
    table.at(d4) = w_king;  // xywK stays on a1
    EXPECT_TRUE(square_attacked(table, c5, black));
    EXPECT_TRUE(square_attacked(table, e5, black));
    EXPECT_FALSE(square_attacked(table, d5, black));
    EXPECT_FALSE(square_attacked(table, c3, black));
    EXPECT_TRUE(square_attacked(table, b2, black));
    table.at(g6) = b_king;
    EXPECT_TRUE(square_attacked(table, f5, white));
    EXPECT_TRUE(square_attacked(table, h5, white));
    EXPECT_FALSE(square_attacked(table, g5, white));
    EXPECT_FALSE(square_attacked(table, f7, black));
    EXPECT_TRUE(square_attacked(table, f7, white)) << "beside e8";
}

TEST(Attack, LineAttackLooksAlongTheLineOnly) {
    const Table table = position_from_fen("4r2k/8/8/8/8/8/3n4/4K2q w - -");
    EXPECT_TRUE(line_attack(table, e1, white, e4));
    EXPECT_TRUE(line_attack(table, e1, white, g1));
    EXPECT_FALSE(line_attack(table, e1, white, c1));
    EXPECT_FALSE(line_attack(table, e1, white, h4));
    EXPECT_FALSE(line_attack(table, e1, white, d2));
    EXPECT_TRUE(line_check(table, white, e7));
    EXPECT_FALSE(line_check(table, black, h2));
}

TEST(Attack, LineAttackSeesNoKnightPawnOrKing) {
    const Table table = position_from_fen("8/8/8/8/8/3n4/3p1k2/4K3 w - -");
    for (const Square square : square_of_bit) {
        EXPECT_FALSE(line_attack(table, e1, white, square)) << square;
    }
    EXPECT_TRUE(in_check(table, white));
}

TEST(Attack, LineAttackOfAKnightsStepIsNone) {
    const Table table = position_from_fen("4r2k/8/8/8/7b/8/8/q3K3 w - -");
    for (const Square square : {d3, f3, c2, g2}) {
        EXPECT_FALSE(line_attack(table, e1, white, square));
    }
}

TEST(Attack, LineAttackTakesTheKindThatFitsTheLine) {
    const Table table = position_from_fen("4b2k/8/8/8/7r/8/8/4K3 w - -");
    EXPECT_FALSE(line_attack(table, e1, white, e5));
    EXPECT_FALSE(line_attack(table, e1, white, g3));
    const Table queens = position_from_fen("4q2k/8/8/8/7q/8/8/4K3 w - -");
    EXPECT_TRUE(line_attack(queens, e1, white, e5));
    EXPECT_TRUE(line_attack(queens, e1, white, g3));
}

TEST(Attack, WhitesFilesAndRanksAreLookedAtOneWay) {
    const Table table = position_from_fen("4R3/8/8/8/4k2R/8/8/K7 b - -");
    EXPECT_TRUE(line_attack(table, e4, black, e5));
    EXPECT_FALSE(line_attack(table, e4, black, e3));
    EXPECT_TRUE(line_attack(table, e4, black, f4));
    EXPECT_FALSE(line_attack(table, e4, black, d4));
    EXPECT_TRUE(line_check(table, black, e7));
    EXPECT_TRUE(line_check(table, 4160, e7));
    EXPECT_FALSE(line_check(table, 8193, e7));
}

// On both diagonals of e4, a slider on one side and `through` on either.
TEST(Attack, LineAttackSeesWhitesDiagonalSlidersBothWaysAndBlacksOneWay) {
    for (const char* slider : {"b", "q"}) {
        const std::string letter = slider;
        const Table falling = position_from_fen("8/1" + letter + "6/8/8/4K3/8/8/k7 w - -");
        EXPECT_TRUE(line_attack(falling, e4, white, d5));
        EXPECT_FALSE(line_attack(falling, e4, white, f3));
        const Table rising = position_from_fen("8/8/8/8/4K3/8/2" + letter + "5/k7 w - -");
        EXPECT_TRUE(line_attack(rising, e4, white, d3));
        EXPECT_FALSE(line_attack(rising, e4, white, f5));
    }
    for (const char* slider : {"B", "Q"}) {
        const std::string letter = slider;
        const Table falling = position_from_fen("8/1" + letter + "6/8/8/4k3/8/8/K7 b - -");
        EXPECT_TRUE(line_attack(falling, e4, black, d5));
        EXPECT_TRUE(line_attack(falling, e4, black, f3));
        EXPECT_FALSE(line_attack(falling, e4, black, f5));
        const Table rising = position_from_fen("8/8/8/8/4k3/8/2" + letter + "5/K7 b - -");
        EXPECT_TRUE(line_attack(rising, e4, black, d3));
        EXPECT_TRUE(line_attack(rising, e4, black, f5));
        EXPECT_FALSE(line_attack(rising, e4, black, d5));
    }
}

// Kings can be set up beside the board. No look at them may leave the mailbox; the sanitizers
// watch.
TEST(Attack, KingsInTheMargins) {
    int kings = 0;
    for (Square square = 0; square < static_cast<Square>(mailbox_size); ++square) {
        if (empty_board[at_square(square)] != off_board) {
            continue;
        }
        for (const auto& [king, home, code, side] : {std::tuple{&Table::xywK, e1, w_king, white},
                                                     std::tuple{&Table::xybK, e8, b_king, black}}) {
            Table table = position_from_fen("rnbqkbnr/pppp1ppp/8/8/8/8/PPPP1PPP/RNBQKBNR w KQkq -");
            table.at(home) = empty_square;
            table.at(square) = code;
            table.*king = square;
            ++kings;
            EXPECT_TRUE((square >= 11 && square <= 108) || !in_check(table, side)) << square;
            for (const Square through : square_of_bit) {
                static_cast<void>(line_check(table, side, through));
            }
            for (table.side = white; table.side <= black; ++table.side) {
                for (const Generator generator : {gen_all, gen_evasions, gen_captures, gen_legal}) {
                    EXPECT_LE(generated(generator, table).size(), 60U);
                }
            }
        }
    }
    EXPECT_EQ(kings, 2 * 56);
}

// A king looks for pawns and kings ahead of it, from every entry from which that stays inside.
TEST(Attack, KingsOfTheOuterRowsAreInCheckFromEntriesAheadOfThem) {
    const Table empty = position_from_fen("8/8/8/8/8/8/8/8 w - -");
    int attacked = 0;
    for (Square king = 0; king < static_cast<Square>(mailbox_size); ++king) {
        for (const Square step : {9, 11}) {
            for (const PieceCode man : {b_pawn, b_king, b_knight, w_pawn}) {
                if (king - step < 0) {
                    continue;
                }
                Table table = empty;
                table.xywK = king;
                table.xybK = 0;
                table.at(king - step) = man;
                const bool in_reach = king >= 11 && (man == b_pawn || man == b_king);
                EXPECT_EQ(in_check(table, white), in_reach) << king << " " << step << " " << man;
                attacked += in_reach ? 1 : 0;
            }
            for (const PieceCode man : {w_pawn, w_king, w_knight, b_pawn}) {
                if (king + step >= static_cast<Square>(mailbox_size)) {
                    continue;
                }
                Table table = empty;
                table.xywK = 0;
                table.xybK = king;
                table.at(king + step) = man;
                const bool in_reach = king <= 108 && (man == w_pawn || man == w_king);
                EXPECT_EQ(in_check(table, black), in_reach) << king << " " << step << " " << man;
                attacked += in_reach ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(attacked, 2 * 109 * 2 * 2);
}

TEST(Attack, KingRightOfTheEighthRankIsSeenFromTheBoard) {
    Table table = position_from_fen("r7/8/8/8/8/8/8/k7 w - -");
    table.xywK = 29;
    EXPECT_TRUE(in_check(table, white));  // down the rank from h8 to a8
    table.xywK = 0;
    EXPECT_FALSE(in_check(table, white));
    table.xywK = 119;
    EXPECT_FALSE(in_check(table, white));
}
