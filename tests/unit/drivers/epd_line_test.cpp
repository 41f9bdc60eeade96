// SPDX-License-Identifier: MIT
// What is read from a line of an EPD file.
#include "drivers/epd_line.h"

#include <gtest/gtest.h>

#include "board/square_tables.h"
#include "support/board_invariants.h"
#include "support/epd_scene.h"
#include "support/position.h"

namespace {

const std::string kings = "4k3/8/8/8/8/8/8/4K3 ";

using Words = std::vector<std::string>;

/// Where the en passant pawn of a line stands; 0 if the line has none.
Square en_passant_of(const std::string& line) {
    const Table table = epd_position(line);
    EXPECT_TRUE(table.ep_flag == 0 || table.ep_flag == 1) << line;
    return table.ep_flag == 1 ? table.ep_square : 0;
}

}  // namespace

TEST(EpdLine, LineIsBoardAndSide) {
    const Table table = epd_position("r3k2r/8/8/8/4P3/8/8/R3K2R w - - bm O-O;");
    EXPECT_EQ(fen_of(table), "r3k2r/8/8/8/4P3/8/8/R3K2R w - -");
    EXPECT_EQ(table.Kol_figur, 7);
    EXPECT_EQ(table.hash_lock | table.hash_index | table.pawn_hash, 0U) << "no keys yet";
    EXPECT_EQ(broken_board(table), "");
}

TEST(EpdLine, NoCastlingRightIsRead) {
    EXPECT_EQ(epd_position("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1").castling, 0U);
}

TEST(EpdLine, SmallWIsWhiteAndAllElseIsBlack) {
    EXPECT_EQ(epd_position(kings + "w - -").side, white);
    EXPECT_EQ(epd_position(kings + "w").side, white);
    EXPECT_EQ(epd_position(kings + "white").side, white);
    for (const char* text : {"b - -", "W - -", "- -", " w - -", "x", ""}) {
        EXPECT_EQ(epd_position(kings + text).side, black) << '"' << text << '"';
    }
}

TEST(EpdLine, LineWithoutABlankIsABoardWithBlackToMove) {
    const Table table = epd_position("4k3/8/8/8/8/8/8/4K3");
    EXPECT_EQ(table.side, black);
    EXPECT_EQ(table.Kol_figur, 2);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(epd_position("wwwwwwww").side, black);
    EXPECT_EQ(epd_position("").Array, empty_board);
}

TEST(EpdLine, KingThatTheLineDoesNotPlaceStaysWhereTheBoardHasIt) {
    Table table;
    set_epd_position("8/8/8/3P4/8/8/8/8 w - -", table);
    EXPECT_EQ(table.xywK, e1) << "a board of its own";
    EXPECT_EQ(table.xybK, e8);
    set_epd_position("k7/8/8/8/8/8/8/7K w - -", table);
    set_epd_position("8/8/8/3P4/8/8/8/8 w - -", table);
    EXPECT_EQ(table.xywK, h1);
    EXPECT_EQ(table.xybK, a8);
    EXPECT_EQ(table.at(h1), empty_square);
    EXPECT_EQ(table.Kol_figur, 1);
    set_epd_position("8/8/8/8/8/8/8/3K4 w - -", table);
    EXPECT_EQ(table.xywK, d1);
    EXPECT_EQ(table.xybK, a8) << "of two lines before";
}

TEST(EpdLine, SkippedSquareBecomesTheSquareOfThePawn) {
    EXPECT_EQ(en_passant_of("4k3/8/8/8/4P3/8/8/4K3 b - e3 bm d4"), 65);
    EXPECT_EQ(en_passant_of("4k3/8/8/3p4/8/8/8/4K3 w - d6 bm d4"), 54);
    EXPECT_EQ(en_passant_of("4k3/8/8/p7/8/8/8/4K3 w - a6"), a5);
    EXPECT_EQ(en_passant_of("4k3/8/8/8/7P/8/8/4K3 b - h3"), h4);
}

TEST(EpdLine, SquareWithoutSuchAPawnStaysAsItIs) {
    EXPECT_EQ(en_passant_of(kings + "w - e3"), e3);
    EXPECT_EQ(en_passant_of("4k3/8/8/8/4p3/8/4P3/4K3 b - e3"), e3) << "the wrong colours";
    EXPECT_EQ(en_passant_of("4k3/8/8/8/4R3/8/4r3/4K3 b - e3"), e3) << "no pawns";
    EXPECT_EQ(en_passant_of(kings + "w - a8"), 21);
    EXPECT_EQ(en_passant_of(kings + "w - h1"), 98);
}

TEST(EpdLine, BlackPawnBelowIsLookedForBeforeWhitePawnAbove) {
    EXPECT_EQ(en_passant_of("4k3/8/8/8/4P3/8/4p3/7K b - e3"), e2);
    EXPECT_EQ(en_passant_of("4k3/8/8/8/8/4P3/4p3/7K b - e3"), e3) << "one down and one up again";
}

TEST(EpdLine, FirstPairThatNamesASquareWins) {
    EXPECT_EQ(en_passant_of(kings + "w KQkq c4 e3"), c4);
    EXPECT_EQ(en_passant_of(kings + "w - - 0 1 id \"g5h6\";"), g5);
    EXPECT_EQ(en_passant_of(kings + "b4 - c5"), b4) << "the side field counts";
    EXPECT_EQ(en_passant_of(kings + "w aa3"), a3) << "every pair of neighbours is looked at";
    EXPECT_EQ(en_passant_of("b4k2/8/8/8/8/8/8/4K3 w - -"), 0) << "the board field does not";
}

TEST(EpdLine, TextThatNamesNoSquareIsNone) {
    for (const char* text :
         {"w - -", "w - E3", "w - e9", "w - e0", "w - i3", "w - e 3", "w - 3e", "w -  ", "w", ""}) {
        EXPECT_EQ(en_passant_of(kings + text), 0) << text;
    }
}

TEST(EpdLine, BestMoveOperationEndsTheLookForASquare) {
    EXPECT_EQ(en_passant_of(kings + "w - - bm e4;"), 0);
    EXPECT_EQ(en_passant_of(kings + "bm e4;"), 0) << "in the place of the side";
    EXPECT_EQ(en_passant_of(kings + "w - - bmx e4; bm d4"), e4) << "no blank, no operation";
    EXPECT_EQ(en_passant_of(kings + "w - - bm"), 0);
}

TEST(EpdLine, OnlyCharactersOfMovesAreKept) {
    EXPECT_EQ(epd_solutions("8/8 w - - bm Nf3;"), Words{"Nf3"});
    EXPECT_EQ(epd_solutions("bm Bxd5+"), Words{"Bd5"});
    EXPECT_EQ(epd_solutions("bm R1d2!?"), Words{"R1d2"});
    EXPECT_EQ(epd_solutions("bm O-O;"), Words{""});
    std::string all_bytes;
    for (int byte = 1; byte < 256; ++byte) {
        all_bytes += byte == ' ' ? '\0' : static_cast<char>(byte);
    }
    EXPECT_EQ(epd_solutions("bm " + all_bytes), Words{"12345678==BKNQRabcdefghknqr"});
}

// The mark equals-sign-twice.
TEST(EpdLine, EqualsSignIsKeptTwice) {
    EXPECT_EQ(epd_solutions("bm exd8=Q"), Words{"ed8==Q"});
    EXPECT_EQ(epd_solutions("bm d8=Q"), Words{"d8==Q"});
    EXPECT_EQ(epd_solutions("bm =a==="), Words{"==a======"});
}

TEST(EpdLine, WordsReachToTheEndOfTheLine) {
    EXPECT_EQ(epd_solutions("8/8 w - - bm Nf3 e4; id \"A.1\";"), (Words{"Nf3", "e4", "d", "1"}));
    EXPECT_EQ(epd_solutions("bm e4; bm d4"), (Words{"e4", "b", "d4"}));
    EXPECT_EQ(epd_solutions("bm e4  d4"), (Words{"e4", "", "d4"}));
    EXPECT_EQ(epd_solutions("bm e4\tBd4"), Words{"e4Bd4"}) << "blanks alone cut";
}

TEST(EpdLine, OnlyBestMovesAreSolutions) {
    EXPECT_EQ(epd_solutions("8/8 w - - am Nf3; id \"x\";"), Words{});
    EXPECT_EQ(epd_solutions("8/8 w - - bm"), Words{});
    EXPECT_EQ(epd_solutions("8/8 w - - BM Nf3"), Words{});
    EXPECT_EQ(epd_solutions("8/8 w - - bm "), Words{});
    EXPECT_EQ(epd_solutions(""), Words{});
    EXPECT_EQ(epd_solutions("8/8 w - - am d4; bm Nf3"), Words{"Nf3"});
    EXPECT_EQ(epd_solutions("8/8 w - - abm Nf3"), Words{"Nf3"}) << "wherever the letters stand";
}

TEST(EpdLine, LongLinesAndManyWordsAreReadWhole) {
    std::string line = kings + "w - - id " + std::string(2000, 'x') + "e3 bm";
    Words words;
    for (int i = 0; i < 120; ++i) {
        line += " e4";
        words.emplace_back("e4");
    }
    line += " " + std::string(500, 'd');
    words.emplace_back(500, 'd');
    EXPECT_EQ(epd_solutions(line), words);
    EXPECT_EQ(en_passant_of(line), e3);
    EXPECT_EQ(epd_position(line).side, white);
}
