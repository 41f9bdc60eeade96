// SPDX-License-Identifier: MIT
// Captures and promotions and their order. The lists are worked out by hand.
#include <gtest/gtest.h>

#include "board/generate.h"
#include "support/generated.h"

namespace {

std::string captures(const std::string& fen) {
    return generated_text(gen_captures, position_from_fen(fen));
}

}  // namespace

//  r . b . . . k .
//  . P . . . . . p
//  p . . . . . . .
//  . . . p P . N .   d7-d5 was just played
//  . . . Q . . . .
//  . . . . p . p .
//  . . B . . P . p
//  R . . . K n . .
TEST(GenerateCaptures, WhiteInOrder) {
    EXPECT_EQ(captures("r1b3k1/1P5p/p7/3pP1N1/3Q4/4p1p1/2B2P1p/R3Kn2 w - d6"),
              "d4d5 d4e3 a1a6 g5h7 c2h7 "
              "b7b8q b7b8r b7b8b b7b8n b7c8q b7c8r b7c8b b7c8n b7a8q b7a8r b7a8b b7a8n "
              "e5d6 f2g3 f2e3 e1f1");
}

//  . . . . k N . r
//  . . p . . b . .
//  . P . P . . . .
//  . . . . q . . P
//  . n . p P . . .   e2-e4 was just played
//  . . . . . . . .
//  P . . . . . p .
//  K . . . . B . R
TEST(GenerateCaptures, BlackInOrder) {
    EXPECT_EQ(captures("4kN1r/2p2b2/1P1P4/4q2P/1n1pP3/8/P5p1/K4B1R b - e3"),
              "e5h5 e5e4 e5d6 h8f8 h8h5 b4a2 f7a2 f7h5 "
              "c7b6 c7d6 d4e3 "
              "g2g1q g2g1r g2g1b g2g1n g2f1q g2f1r g2f1b g2f1n g2h1q g2h1r g2h1b g2h1n "
              "e8f8");
}

TEST(GenerateCaptures, QuietPromotionsAreAllFour) {
    EXPECT_EQ(captures("7k/P7/8/8/8/8/7p/K7 w - -"), "a7a8q a7a8r a7a8b a7a8n");
    EXPECT_EQ(captures("7k/P7/8/8/8/8/7p/K7 b - -"), "h2h1q h2h1r h2h1b h2h1n");
}

TEST(GenerateCaptures, NothingToTakeMeansAnEmptyList) {
    EXPECT_EQ(captures("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"), "");
    EXPECT_EQ(captures("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -"), "");
    EXPECT_EQ(captures("r3k2r/p7/8/8/8/8/P7/R3K2R w KQkq -"), "h1h8");
}

TEST(GenerateCaptures, EnemyKingIsAmongTheTargets) {
    EXPECT_EQ(captures("4k3/3P4/8/8/1B6/8/8/4R2K w - -"),
              "e1e8 d7d8q d7d8r d7d8b d7d8n d7e8q d7e8r d7e8b d7e8n");
    EXPECT_EQ(captures("8/8/8/3k4/4K3/2N5/8/8 w - -"), "c3d5 e4d5");
    EXPECT_EQ(captures("8/8/8/3k4/4K3/8/8/8 b - -"), "d5e4");
}

TEST(GenerateCaptures, SlidersStopAtTheFirstMan) {
    EXPECT_EQ(captures("7k/8/p7/P7/R2Pp3/8/8/K7 w - -"), "");
    EXPECT_EQ(captures("7k/8/p7/8/R3pp2/8/8/K7 w - -"), "a4e4 a4a6");
}
