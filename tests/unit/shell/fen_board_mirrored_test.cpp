// SPDX-License-Identifier: MIT
// The reader of a FEN board field, laid on the board from White's side with the colours exchanged.
#include <gtest/gtest.h>

#include "board/set_up.h"
#include "board/square_tables.h"
#include "shell/fen_board.h"
#include "support/board_invariants.h"
#include "support/perft_positions.h"
#include "support/position.h"

namespace {

Table read(std::string_view text, FenView view) {
    Table table;
    clear_position(table);
    read_fen_board(text, table, view);
    return table;
}

Table read_mirrored(std::string_view text) {
    return read(text, FenView::mirrored);
}

}  // namespace

TEST(FenBoardMirrored, FirstRowIsTheFirstRankAndColoursAreExchanged) {
    const Table table = read_mirrored("rnbqk3/8/8/8/8/8/5P2/6K1 w");
    EXPECT_EQ(fen_of(table), "6k1/5p2/8/8/8/8/8/RNBQK3 w - -");
    EXPECT_EQ(table.xywK, e1);
    EXPECT_EQ(table.xybK, g8);
    EXPECT_EQ(table.Kol_figur, 7);
    EXPECT_EQ(broken_board(table), "");
}

TEST(FenBoardMirrored, StartingPositionIsItsOwnImage) {
    const std::string start = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";
    EXPECT_TRUE(read_mirrored(start) == read(start, FenView::as_written));
}

TEST(FenBoardMirrored, FilesStayAndEveryManIsTurnedOver) {
    const Table table = read_mirrored("PNBRQ3/1p1n1b1r/q7/k7/7K");
    EXPECT_EQ(fen_of(table), "8/8/8/7k/K7/Q7/1P1N1B1R/pnbrq3 w - -");
}

TEST(FenBoardMirrored, IsTheMirrorOfTheBoardAsWritten) {
    int compared = 0;
    for (const char* fen : {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R",
                            "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8", "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N",
                            "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1"}) {
        Table written = read(fen, FenView::as_written);
        Table image = read_mirrored(fen);
        image.side = black;
        Table expected = mirrored(written);
        expected.hash_lock = expected.hash_index = expected.pawn_hash = 0;
        EXPECT_TRUE(image == expected) << fen;
        EXPECT_EQ(broken_board(image), "") << fen;
        ++compared;
    }
    EXPECT_EQ(compared, 4);
}

TEST(FenBoardMirrored, OtherCharactersArePassedOver) {
    const Table table = read_mirrored("x0P9-P,.*\xd0\x10 K");
    EXPECT_EQ(fen_of(table), "8/8/8/8/8/8/8/pp6 w - -");
    EXPECT_EQ(table.Kol_figur, 2);
}

TEST(FenBoardMirrored, NinthFileRunsIntoTheMarginAndNinthRankAboveTheBoard) {
    EXPECT_EQ(read_mirrored("8N").at(99), b_knight);
    EXPECT_EQ(read_mirrored("////////N").at(11), b_knight);
    EXPECT_EQ(read_mirrored("////////k").xywK, 11);
    EXPECT_EQ(read_mirrored("88Q").at(107), b_queen);
}

TEST(FenBoardMirrored, NothingIsWrittenBeyondTheMailbox) {
    EXPECT_EQ(read_mirrored("//////////N").Kol_figur, 0) << "row base -9";
    EXPECT_EQ(read_mirrored("//////////8NN").Kol_figur, 1) << "and column 9: the first entry";
    EXPECT_EQ(read_mirrored("//////////8NN").at(0), b_knight);
    EXPECT_EQ(read_mirrored(std::string(5000, '/') + std::string(5000, '8') + "N").Kol_figur, 0);
    EXPECT_EQ(read_mirrored(std::string(1000, 'q')).Kol_figur, 29) << "from a1 to the last entry";
}
