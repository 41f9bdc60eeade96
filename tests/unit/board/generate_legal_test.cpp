// SPDX-License-Identifier: MIT
// The legal moves and the order in which removals leave them.
#include <gtest/gtest.h>
#include <memory>

#include "board/generate.h"
#include "support/captured_output.h"
#include "support/generated.h"
#include "support/reset_all.h"

namespace {

std::string legal(const std::string& fen) {
    return generated_text(gen_legal, position_from_fen(fen));
}

}  // namespace

// The rook on e2 is pinned. Pseudo-legal are, in order: 1 e2f2, 2 e2g2, 3 e2h2, 4 e2d2, 5 e2c2,
// 6 e2b2, 7 e2a2, 8 e2e3, 9 e2e4, 10 e2e5, 11 e2e6, 12 e2e7, 13 e2e8, 14 e1d2, 15 e1f2, 16 e1d1,
// 17 e1f1. The first seven go, and the last one of the moment takes the place of each.
TEST(GenerateLegal, LastMoveTakesThePlaceOfARemovedOne) {
    EXPECT_EQ(legal("4r2k/8/8/8/8/8/4R3/4K3 w - -"),
              "e1f1 e1d1 e1f2 e1d2 e2e8 e2e7 e2e6 e2e3 e2e4 e2e5");
}

// The same with f1 and f2 attacked: moves that take a place are tested there and may go too. 17
// into slot 1, illegal; 16 into slot 1, stays; 15 into slot 2, illegal; 14 into slot 2; 13 to 9
// into slots 3 to 7; 8 is left.
TEST(GenerateLegal, MoveThatTakesAPlaceIsTestedToo) {
    EXPECT_EQ(legal("4rr1k/8/8/8/8/8/4R3/4K3 w - -"), "e1d1 e1d2 e2e8 e2e7 e2e6 e2e5 e2e4 e2e3");
}

// A black pawn stands where White's king is looked for. Pseudo-legal are 1 e1d2, 2 e1e2, 3 e1f2,
// 4 e1d1, 5 e1f1; on d2 and f2 the pawn attacks e1. 1 goes and 5 takes its place; 5 and 2 pass; 3
// goes and 4 takes its place; 5 and 2 pass again before 4 does. Moves to the first rank report.
TEST(GenerateLegal, ScanRestartsAfterARemovalAndReportsAgain) {
    reset_all();
    Table table = position_from_fen("8/8/8/8/7k/8/8/4K3 w - -");
    table.at(e1) = b_pawn;
    const CapturedOutput output;
    EXPECT_EQ(generated_text(gen_legal, table), "e1f1 e1e2 e1d1");
    std::string targets;
    const std::string text = output.text();
    const std::string label = "posTo =  ";
    for (std::size_t at = text.find(label); at != std::string::npos; at = text.find(label, at)) {
        at += label.size();
        targets += text.substr(at, text.find('\n', at) - at) + " ";
    }
    EXPECT_EQ(targets, "96 96 94 ");
}

TEST(GenerateLegal, ScoresMoveWithTheirMoves) {
    const auto list = std::make_unique<MoveList>();
    cur_moves = list.get();
    for (std::int32_t slot = 1; slot < move_list_slots; ++slot) {
        list->score(slot) = 100 + slot;
    }
    gen_legal(position_from_fen("4rr1k/8/8/8/8/8/4R3/4K3 w - -"), white);
    cur_moves = nullptr;
    ASSERT_EQ(list->count, 8);
    const std::array<std::int32_t, 8> expected = {116, 114, 113, 112, 111, 110, 109, 108};
    for (std::int32_t slot = 1; slot <= 8; ++slot) {
        EXPECT_EQ(list->score(slot), expected[static_cast<std::size_t>(slot - 1)]) << slot;
    }
}

TEST(GenerateLegal, NoLegalMoveLeavesTheCountAtZero) {
    EXPECT_EQ(legal("7k/5Q2/6K1/8/8/8/8/8 b - -"), "");    // stalemate
    EXPECT_EQ(legal("R5k1/5ppp/8/8/8/8/8/K7 b - -"), "");  // mate
    EXPECT_EQ(legal("8/8/8/8/8/5k2/5p2/5K2 w - -"), "");
}

TEST(GenerateLegal, StartingPositionIsAsGenerated) {
    EXPECT_EQ(generated_text(gen_legal, start_position()),
              generated_text(gen_all, start_position()));
}

TEST(GenerateLegal, PositionIsNotChanged) {
    const Table before = position_from_fen("r1b1k3/1P6/8/3pP3/8/5N2/B5PQ/R3K2R w KQ d6");
    const Table table = before;
    static_cast<void>(generated(gen_legal, table));
    EXPECT_TRUE(table == before);
}

// The king of the position's own side is looked at, whatever side the moves are made for.
TEST(GenerateLegal, KingOfTheSideToMoveDecides) {
    const Table table = position_from_fen("4r2k/8/8/8/8/8/8/4K3 w - -");
    MoveList list;
    cur_moves = &list;
    gen_legal(table, black);
    cur_moves = nullptr;
    // White's king stays in check after every move of Black's that keeps the e-file open.
    std::string moves;
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        moves += move_text(list.move(slot).posFrom, list.move(slot).posTo, 0) + " ";
    }
    EXPECT_EQ(moves.find("h8"), std::string::npos);
    EXPECT_NE(moves.find("e8g8"), std::string::npos);
}

TEST(GenerateLegal, EnPassantThatOpensALineIsIllegal) {
    for (const char* fen : {"8/5bk1/8/2Pp4/8/1K6/8/8 w - d6", "7k/8/8/K1Pp3r/8/8/8/8 w - d6",
                            "8/8/1k6/8/2pP4/8/5BK1/8 b - d3", "8/8/8/8/k1pP3R/8/8/7K b - d3"}) {
        const std::string moves = legal(fen);
        EXPECT_EQ(moves.find("c5d6"), std::string::npos) << fen;
        EXPECT_EQ(moves.find("c4d3"), std::string::npos) << fen;
        EXPECT_NE(moves, "") << fen;
    }
}
