// SPDX-License-Identifier: MIT
// All pseudo-legal moves and their order. The lists are worked out by hand: queens, rooks, knights,
// bishops, pawns, king, castling; men from a8 towards h1; rook lines to the right, left, down, up,
// bishop lines by the steps +9, -9, +11, -11.
#include <gtest/gtest.h>

#include "board/generate.h"
#include "support/generated.h"

namespace {

bool offers(const std::string& fen, const std::string& move) {
    const std::string moves = " " + generated_text(gen_all, position_from_fen(fen)) + " ";
    return moves.find(" " + move + " ") != std::string::npos;
}

}  // namespace

TEST(GenerateAll, StartingPosition) {
    EXPECT_EQ(generated_text(gen_all, start_position()),
              "b1a3 b1c3 g1f3 g1h3 a2a4 a2a3 b2b4 b2b3 c2c4 c2c3 d2d4 d2d3 e2e4 e2e3 f2f4 f2f3 "
              "g2g4 g2g3 h2h4 h2h3");
}

TEST(GenerateAll, StartingPositionForBlack) {
    Table table = start_position();
    table.side = black;
    EXPECT_EQ(generated_text(gen_all, table),
              "b8a6 b8c6 g8f6 g8h6 a7a5 a7a6 b7b5 b7b6 c7c5 c7c6 d7d5 d7d6 e7e5 e7e6 f7f5 f7f6 "
              "g7g5 g7g6 h7h5 h7h6");
}

//  r . b . k . . .
//  . P . . . . . .
//  . . . . . . . .
//  . . . p P . . .   d7-d5 was just played
//  . . . . . . . .
//  . . . . . N . .
//  B . . . . . P Q
//  R . . . K . . R
TEST(GenerateAll, EveryKindOfMoveOfWhite) {
    EXPECT_EQ(
        generated_text(gen_all, position_from_fen("r1b1k3/1P6/8/3pP3/8/5N2/B5PQ/R3K2R w KQ d6")),
        "h2h3 h2h4 h2h5 h2h6 h2h7 h2h8 h2g1 h2g3 h2f4 "
        "a1b1 a1c1 a1d1 h1g1 h1f1 "
        "f3g5 f3d4 f3h4 f3d2 f3g1 "
        "a2b3 a2c4 a2d5 a2b1 "
        "b7b8q b7b8r b7b8b b7b8n b7c8q b7c8r b7c8b b7c8n b7a8q b7a8r b7a8b b7a8n "
        "e5d6 e5e6 g2g4 g2g3 "
        "e1d2 e1e2 e1f2 e1d1 e1f1 e1g1 e1c1");
}

//  r . . . k . . r
//  p . . . . . . .
//  . n . . . . . b
//  . . . . . q . .
//  . P p . . . . .   b2-b4 was just played
//  . . . . . . . .
//  . . . . . . p .
//  . . . K . B . R
TEST(GenerateAll, EveryKindOfMoveOfBlack) {
    EXPECT_EQ(
        generated_text(gen_all, position_from_fen("r3k2r/p7/1n5b/5q2/1Pp5/8/6p1/3K1B1R b kq b3")),
        "f5g5 f5h5 f5e5 f5d5 f5c5 f5b5 f5a5 f5f4 f5f3 f5f2 f5f1 f5f6 f5f7 f5f8 "
        "f5e4 f5d3 f5c2 f5b1 f5g6 f5h7 f5g4 f5h3 f5e6 f5d7 f5c8 "
        "a8b8 a8c8 a8d8 h8g8 h8f8 h8h7 "
        "b6c8 b6d7 b6d5 b6a4 "
        "h6g5 h6f4 h6e3 h6d2 h6c1 h6g7 h6f8 "
        "a7a5 a7a6 c4b3 c4c3 "
        "g2g1q g2g1r g2g1b g2g1n g2f1q g2f1r g2f1b g2f1n g2h1q g2h1r g2h1b g2h1n "
        "e8d8 e8f8 e8d7 e8e7 e8f7 e8g8 e8c8");
}

TEST(GenerateAll, PromotionsCarryTheCodesOfTheSide) {
    const auto moves = generated(gen_all, position_from_fen("7k/P7/8/8/8/8/7p/K7 w - -"));
    ASSERT_GE(moves.size(), 4U);
    EXPECT_EQ(moves[0], (Move{a7, a8, 8208}));
    EXPECT_EQ(moves[1], (Move{a7, a8, 8200}));
    EXPECT_EQ(moves[2], (Move{a7, a8, 8196}));
    EXPECT_EQ(moves[3], (Move{a7, a8, 8194}));
    const auto other = generated(gen_all, position_from_fen("7k/P7/8/8/8/8/7p/K7 b - -"));
    ASSERT_GE(other.size(), 4U);
    EXPECT_EQ(other[0], (Move{h2, h1, 5120}));
    EXPECT_EQ(other[1], (Move{h2, h1, 4608}));
    EXPECT_EQ(other[2], (Move{h2, h1, 4352}));
    EXPECT_EQ(other[3], (Move{h2, h1, 4224}));
}

TEST(GenerateAll, AllOtherMovesHaveNoInfo) {
    for (const Move& move :
         generated(gen_all, position_from_fen("r3k2r/p7/1n5b/5q2/1Pp5/8/6p1/3K1B1R b kq b3"))) {
        EXPECT_EQ(move.posInfo != 0, move.posFrom == g2) << move.posFrom << ' ' << move.posTo;
    }
}

TEST(GenerateAll, SideZeroIsWhiteAndAnyOtherBlack) {
    Table table = start_position();
    table.side = 0;
    MoveList list;
    cur_moves = &list;
    gen_all(table, 5);
    EXPECT_EQ(list.move(1), (Move{b8, a6, 0}));
    gen_all(table, 0);
    EXPECT_EQ(list.move(1), (Move{b1, a3, 0}));
    cur_moves = nullptr;
}

TEST(GenerateAll, KingsMayStepOntoAttackedSquares) {
    EXPECT_TRUE(offers("3rk3/8/8/8/8/8/8/4K3 w - -", "e1d1"));
}

TEST(GenerateAll, EnPassantNeedsTheFlagAndANeighbour) {
    EXPECT_TRUE(offers("4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6"));
    EXPECT_TRUE(offers("4k3/8/8/4Pp2/8/8/8/4K3 w - f6", "e5f6"));
    EXPECT_FALSE(offers("4k3/8/8/3pP3/8/8/8/4K3 w - -", "e5d6"));
    EXPECT_FALSE(offers("4k3/8/8/2p1P3/8/8/8/4K3 w - c6", "e5c6"));
    EXPECT_TRUE(offers("4k3/8/8/8/3Pp3/8/8/4K3 b - d3", "e4d3"));
    // A stale square without the flag, and a flag whose pawn stands on another rank.
    Table table = position_from_fen("4k3/8/8/3pP3/8/8/8/4K3 w - -");
    table.ep_square = d5;
    EXPECT_EQ(generated_text(gen_all, table), "e5e6 e1d2 e1e2 e1f2 e1d1 e1f1");
    table.ep_flag = 1;
    table.ep_square = 64;
    EXPECT_EQ(generated_text(gen_all, table), "e5e6 e1d2 e1e2 e1f2 e1d1 e1f1");
}

TEST(GenerateAll, EnPassantDoesNotReachAroundTheEdge) {
    // h5 is 58, a4 is 61; the neighbours of h5 are 57 and the margin.
    Table table = position_from_fen("4k3/8/8/p6P/8/8/8/4K3 w - a6");
    EXPECT_EQ(generated_text(gen_all, table), "h5h6 e1d2 e1e2 e1f2 e1d1 e1f1");
}

TEST(GenerateAll, DoublePushNeedsBothSquaresEmpty) {
    EXPECT_TRUE(offers("4k3/8/8/8/8/8/4P3/K7 w - -", "e2e4"));
    EXPECT_FALSE(offers("4k3/8/8/8/4p3/8/4P3/K7 w - -", "e2e4"));
    EXPECT_TRUE(offers("4k3/8/8/8/4p3/8/4P3/K7 w - -", "e2e3"));
    EXPECT_FALSE(offers("4k3/8/8/8/8/4p3/4P3/K7 w - -", "e2e4"));
    EXPECT_FALSE(offers("4k3/8/8/8/8/4P3/8/K7 w - -", "e3e5"));
    EXPECT_FALSE(offers("k7/4p3/4P3/8/8/8/8/K7 b - -", "e7e5"));
    EXPECT_FALSE(offers("k7/4p3/8/4P3/8/8/8/K7 b - -", "e7e5"));
}

// A pawn that stands behind its second rank may step twice too: the test asks for the rank or less.
TEST(GenerateAll, PawnsOnTheirFirstRankStepTwice) {
    EXPECT_TRUE(offers("4k3/8/8/8/8/8/8/K3P3 w - -", "e1e3"));
    EXPECT_TRUE(offers("4p2k/8/8/8/8/8/8/K7 b - -", "e8e6"));
}

TEST(GenerateAll, NoCastlingInCheck) {
    EXPECT_FALSE(offers("4k3/8/8/8/4r3/8/8/R3K2R w KQ -", "e1g1"));
    EXPECT_FALSE(offers("4k3/8/8/8/4r3/8/8/R3K2R w KQ -", "e1c1"));
    EXPECT_FALSE(offers("r3k2r/8/8/8/4R3/8/8/4K3 b kq -", "e8g8"));
    EXPECT_FALSE(offers("r3k2r/8/8/8/4R3/8/8/4K3 b kq -", "e8c8"));
}

TEST(GenerateAll, NoCastlingOverAnAttackedSquareOrOntoOne) {
    for (const char* file : {"5r2", "6r1"}) {
        const std::string fen = std::string("4k3/8/8/8/8/") + file + "/8/R3K2R w KQ -";
        EXPECT_FALSE(offers(fen, "e1g1")) << fen;
        EXPECT_TRUE(offers(fen, "e1c1")) << fen;
    }
    for (const char* file : {"3R4", "2R5"}) {
        const std::string fen = std::string("r3k2r/8/8/") + file + "/8/8/8/4K3 b kq -";
        EXPECT_TRUE(offers(fen, "e8g8")) << fen;
        EXPECT_FALSE(offers(fen, "e8c8")) << fen;
    }
}

TEST(GenerateAll, SquareBesideTheLongRookMayBeAttackedButMustBeEmpty) {
    EXPECT_TRUE(offers("4k3/8/8/8/8/1r6/8/R3K3 w Q -", "e1c1"));
    EXPECT_FALSE(offers("4k3/8/8/8/8/8/8/RN2K3 w Q -", "e1c1"));
    EXPECT_TRUE(offers("r3k3/8/8/1R6/8/8/8/4K3 b q -", "e8c8"));
    EXPECT_FALSE(offers("rn2k3/8/8/8/8/8/8/4K3 b q -", "e8c8"));
}

TEST(GenerateAll, RookUnderAttackMayCastle) {
    EXPECT_TRUE(offers("4k3/8/8/8/8/r6r/8/R3K2R w KQ -", "e1g1"));
    EXPECT_TRUE(offers("4k3/8/8/8/8/r6r/8/R3K2R w KQ -", "e1c1"));
}

TEST(GenerateAll, CastlingNeedsTheRight) {
    EXPECT_FALSE(offers("r3k2r/8/8/8/8/8/8/R3K2R w Qkq -", "e1g1"));
    EXPECT_TRUE(offers("r3k2r/8/8/8/8/8/8/R3K2R w Qkq -", "e1c1"));
    EXPECT_FALSE(offers("r3k2r/8/8/8/8/8/8/R3K2R b KQk -", "e8c8"));
    EXPECT_TRUE(offers("r3k2r/8/8/8/8/8/8/R3K2R b KQk -", "e8g8"));
}

// The right outlives the rook; what counts is an own rook on the corner.
TEST(GenerateAll, StaleRightNeedsAnOwnRookOnTheCorner) {
    for (const char* corner : {"1", "n", "N", "B"}) {
        const std::string man = corner;
        EXPECT_FALSE(offers("4k3/8/8/8/8/8/8/4K2" + man + " w KQ -", "e1g1")) << man;
        EXPECT_FALSE(offers("4k3/8/8/8/8/8/8/" + man + "3K3 w KQ -", "e1c1")) << man;
    }
    for (const char* corner : {"1", "N", "n", "b"}) {
        const std::string man = corner;
        EXPECT_FALSE(offers("4k2" + man + "/8/8/8/8/8/8/4K3 b kq -", "e8g8")) << man;
        EXPECT_FALSE(offers(man + "3k3/8/8/8/8/8/8/4K3 b kq -", "e8c8")) << man;
    }
}

TEST(GenerateAll, RightOfATakenRookServesTheNextOne) {
    Table table = position_from_fen("4k3/8/8/8/8/8/6b1/R3K2R b K -");
    make_plain(table, g2, h1, 0);  // takes the rook
    EXPECT_EQ(table.castling, 1U);
    make_plain(table, h1, a8, 0);
    make_plain(table, a1, a2, 0);
    make_plain(table, a2, h2, 0);
    table.side = white;
    EXPECT_EQ(generated_text(gen_all, table).find("e1g1"), std::string::npos);
    make_plain(table, h2, h1, 0);  // a rook that was never there
    EXPECT_EQ(table.castling, 1U);
    make_plain(table, a8, c6, 0);
    make_plain(table, c6, b5, 0);
    EXPECT_EQ(generated_text(gen_all, table).find("e1g1"), std::string::npos) << "b5 attacks f1";
    make_plain(table, b5, a4, 0);
    EXPECT_NE(generated_text(gen_all, table).find("e1g1"), std::string::npos);
}

TEST(GenerateAll, CastlingOnlyFromTheKingsHome) {
    EXPECT_FALSE(offers("4k3/8/8/8/8/8/8/R2K3R w KQ -", "d1f1"));
    EXPECT_FALSE(offers("4k3/8/8/8/8/8/4K3/R6R w KQ -", "e2g2"));
}
