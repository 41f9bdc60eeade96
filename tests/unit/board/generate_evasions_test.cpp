// SPDX-License-Identifier: MIT
// Moves of a side in check and their order. The lists are worked out by hand. A move has to end on
// a line or at a knight's step from the own king; knights, the king and en passant are not
// filtered.
#include <gtest/gtest.h>

#include "board/generate.h"
#include "support/generated.h"

namespace {

std::string evasions(const std::string& fen) {
    return generated_text(gen_evasions, position_from_fen(fen));
}

bool offers(Generator generator, const std::string& fen, const std::string& move) {
    const std::string moves = " " + generated_text(generator, position_from_fen(fen)) + " ";
    return moves.find(" " + move + " ") != std::string::npos;
}

}  // namespace

//  . k . . r . . .
//  . . . P . P . .
//  . . . . . . . B
//  . p P . . . . R   b7-b5 was just played
//  . . . . . . . .
//  Q . . . . p . p
//  . P . . . . P .
//  . . . . K . . N
// Related to e1 are its file and rank, d2 c3 b4 a5, f2 g3 h4, and d3 f3 c2 g2. f7xe8 is missing:
// f8 is none of them. Order: queens, rooks, bishops, pawns, knights, king.
TEST(GenerateEvasions, WhiteInOrder) {
    EXPECT_EQ(evasions("1k2r3/3P1P2/7B/1pP4R/8/Q4p1p/1P4P1/4K2N w - b6"),
              "a3c3 a3d3 a3e3 a3f3 a3a1 a3a5 a3b4 "
              "h5e5 h5h4 "
              "h6e3 h6d2 h6c1 "
              "d7e8q d7e8r d7e8b d7e8n c5b6 b2b4 g2g3 g2f3 "
              "h1g3 h1f2 "
              "e1d2 e1e2 e1f2 e1d1 e1f1");
}

//  . . . . k . . n
//  . p . . . . p .
//  P . N . . P . q
//  . . . . . . . .
//  r . . . . p P .   g2-g4 was just played
//  b . . . . . . .
//  . . . p . p . .
//  . K . . R . N .
// Related to e8 are its file and rank, d7 c6 b5 a4, f7 g6 h5, and c7 g7 d6 f6. Order: queens,
// rooks, bishops, pawns, king, knights.
TEST(GenerateEvasions, BlackInOrderWithTheKingBeforeTheKnights) {
    EXPECT_EQ(evasions("4k2n/1p4p1/P1N2P1q/8/r4pP1/b7/3p1p2/1K2R1N1 b - g3"),
              "h6g6 h6f6 h6h5 "
              "a4e4 "
              "a3d6 a3e7 a3f8 "
              "b7b5 b7c6 g7g6 g7f6 f4g3 d2e1q d2e1r d2e1b d2e1n f2e1q f2e1r f2e1b f2e1n "
              "e8d8 e8f8 e8d7 e8e7 e8f7 "
              "h8f7 h8g6");
}

TEST(GenerateEvasions, NoCastlingEver) {
    EXPECT_FALSE(offers(gen_evasions, "4k3/8/8/8/8/8/8/R3K2R w KQ -", "e1g1"));
    EXPECT_FALSE(offers(gen_evasions, "4k3/8/8/8/8/8/8/R3K2R w KQ -", "e1c1"));
    EXPECT_FALSE(offers(gen_evasions, "r3k2r/8/8/8/8/8/8/4K3 b kq -", "e8g8"));
}

TEST(GenerateEvasions, KnightsAreNotFiltered) {
    // None of the knight's squares from a8 has to do with e1.
    EXPECT_TRUE(offers(gen_evasions, "N3r2k/8/8/8/8/8/8/4K3 w - -", "a8b6"));
}

TEST(GenerateEvasions, WhiteMissesThePromotingCaptureBesideTheCornerKing) {
    const std::string fen = "r7/1P6/8/8/8/8/8/K6k w - -";
    for (const char* move : {"b7a8q", "b7a8r", "b7a8b", "b7a8n"}) {
        EXPECT_TRUE(offers(gen_all, fen, move));
        EXPECT_FALSE(offers(gen_evasions, fen, move));
    }
    const Table table = position_from_fen(fen);
    EXPECT_TRUE(leaves_king_safe(table, {b7, a8, w_queen}));
    EXPECT_EQ(evasions(fen), "a1a2 a1b2 a1b1");
}

TEST(GenerateEvasions, BlackOffersTheMirroredPromotingCapture) {
    const std::string fen = "k6K/8/8/8/8/8/1p6/R7 b - -";
    for (const char* move : {"b2a1q", "b2a1r", "b2a1b", "b2a1n"}) {
        EXPECT_TRUE(offers(gen_evasions, fen, move));
    }
}

TEST(GenerateEvasions, WhitePromotingCaptureIsFilteredOnTheSquareAhead) {
    // Towards the h-file the target counts: e8 is on the king's file, d8 is not asked.
    EXPECT_TRUE(offers(gen_evasions, "4r2k/3P4/8/8/8/8/8/4K3 w - -", "d7e8q"));
    // Towards the a-file the square ahead does: f8 has nothing to do with e1, but with f1.
    EXPECT_FALSE(offers(gen_evasions, "4r2k/5P2/8/8/8/8/8/4K3 w - -", "f7e8q"));
    EXPECT_TRUE(offers(gen_evasions, "4r2k/5P2/8/8/8/8/8/5K2 w - -", "f7e8q"));
    // So a capture that helps nothing is offered too.
    EXPECT_FALSE(
        leaves_king_safe(position_from_fen("3nr2k/4P3/8/8/8/8/8/4K2r w - -"), {e7, d8, w_queen}));
    EXPECT_TRUE(offers(gen_evasions, "3n3k/4P3/8/8/8/8/8/4K2r w - -", "e7d8q"));
}

TEST(GenerateEvasions, PlainCaptureTowardsTheAFileIsFilteredOnItsTarget) {
    // f5xe6 takes the checker on the king's file; f6 has nothing to do with e1.
    EXPECT_TRUE(offers(gen_evasions, "7k/8/4r3/5P2/8/8/8/4K3 w - -", "f5e6"));
    EXPECT_FALSE(offers(gen_evasions, "4r2k/8/3n4/4P3/8/8/8/4K2r w - -", "e5d6"));
}

TEST(GenerateEvasions, EnPassantIsNotFiltered) {
    // b6 has nothing to do with the king on e1.
    EXPECT_TRUE(offers(gen_evasions, "4r2k/8/8/PpP5/8/8/8/4K3 w - b6", "c5b6"));
    EXPECT_TRUE(offers(gen_evasions, "4r2k/8/8/PpP5/8/8/8/4K3 w - b6", "a5b6"));
    EXPECT_TRUE(offers(gen_evasions, "4k3/8/8/8/1Pp5/8/8/4R2K b - b3", "c4b3"));
}

TEST(GenerateEvasions, PawnStepsAreFilteredOnTheirTargets) {
    // The double step blocks on the diagonal a5-e1, the single step would not.
    EXPECT_EQ(evasions("7k/8/8/b7/8/8/1P6/4K3 w - -"), "b2b4 e1d2 e1e2 e1f2 e1d1 e1f1");
    EXPECT_EQ(evasions("4k3/1p6/8/8/B7/8/8/7K b - -"), "b7b5 e8d8 e8f8 e8d7 e8e7 e8f7");
}
