// SPDX-License-Identifier: MIT
// The reader of a FEN board field.
#include "shell/fen_board.h"

#include <gtest/gtest.h>

#include "board/set_up.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "support/board_invariants.h"
#include "support/position.h"
#include "support/random_game.h"

namespace {

/// A table between two guards: nothing may be written beside it.
struct Guarded {
    std::array<std::uint32_t, 64> before;
    Table table;
    std::array<std::uint32_t, 64> after;
};

Table read(std::string_view text) {
    Table table;
    clear_position(table);
    read_fen_board(text, table, FenView::as_written);
    return table;
}

std::int32_t men_in_mailbox(const Table& table) {
    std::int32_t men = 0;
    for (const PieceCode code : table.Array) {
        men += code != off_board && code != empty_square ? 1 : 0;
    }
    return men;
}

}  // namespace

TEST(FenBoard, FillsBoardMenAndKings) {
    const Table table = read("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR");
    EXPECT_EQ(table.Array, start_board);
    EXPECT_EQ(broken_board(table), "");
    EXPECT_EQ(table.Kol_figur, 32);
}

TEST(FenBoard, EndsAtTheFirstBlank) {
    const Table table = read("4k3/8/8/8/8/8/8/4K3 w KQkq - QQQQ");
    EXPECT_EQ(table.Kol_figur, 2);
    EXPECT_EQ(table.castling, 0U);
    EXPECT_EQ(read(" 4k3").Kol_figur, 0);
    EXPECT_EQ(read("").Array, empty_board);
}

TEST(FenBoard, LeavesSideRightsAndKeys) {
    Table table;
    clear_position(table);
    table.side = black;
    table.ep_square = e4;
    table.capture_flag = 1;
    Table expected = table;
    read_fen_board("8/8/8/8/8/8/8/7N", table, FenView::as_written);
    expected.at(h1) = w_knight;
    expected.WKnight = mask_of(h1);
    expected.Kol_figur = 1;
    EXPECT_TRUE(table == expected);
}

TEST(FenBoard, EveryLetterIsItsMan) {
    const std::array<PieceCode, 12> codes = {w_pawn, w_knight, w_bishop, w_rook, w_queen, w_king,
                                             b_pawn, b_knight, b_bishop, b_rook, b_queen, b_king};
    const std::string letters = "PNBRQKpnbrqk";
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const Table table = read(std::string("8/3") + letters[i] + "4");
        EXPECT_EQ(table.at(d7), codes[i]);
        EXPECT_EQ(table.Kol_figur, 1);
        if (const auto bitboard = bitboard_of(codes[i]); bitboard != nullptr) {
            EXPECT_EQ(table.*bitboard, mask_of(d7));
        }
    }
    EXPECT_EQ(read("8/3K4").xywK, d7);
    EXPECT_EQ(read("8/3k4").xybK, d7);
}

TEST(FenBoard, OtherCharactersArePassedOverInPlace) {
    const Table table = read("x0P9-P,/.*");
    EXPECT_EQ(table.at(a8), w_pawn);
    EXPECT_EQ(table.at(b8), w_pawn);
    EXPECT_EQ(table.Kol_figur, 2);
}

TEST(FenBoard, ShortRanksNeedNoDigits) {
    const Table table = read("R/N/B");
    EXPECT_EQ(table.at(a8), w_rook);
    EXPECT_EQ(table.at(a7), w_knight);
    EXPECT_EQ(table.at(a6), w_bishop);
}

TEST(FenBoard, NinthFileRunsIntoTheMargin) {
    const Table table = read("8N/8/8P");
    EXPECT_EQ(table.at(29), w_knight);
    EXPECT_EQ(table.at(49), w_pawn);
    EXPECT_EQ(table.WKnight | table.WPawns, 0U) << "the margin has no bit";
    EXPECT_EQ(table.Kol_figur, 2);
}

TEST(FenBoard, LongRankRunsIntoTheNextOne) {
    const Table table = read("88QqK");
    EXPECT_EQ(table.at(37), w_queen);
    EXPECT_EQ(table.at(38), b_queen);
    EXPECT_EQ(table.WQuins, mask_of(g7));
    EXPECT_EQ(table.BQuins, mask_of(h7));
    EXPECT_EQ(table.at(39), w_king);
    EXPECT_EQ(table.xywK, 39);
}

TEST(FenBoard, NinthRankRunsBelowTheBoard) {
    const Table table = read("/////////k");
    EXPECT_EQ(table.at(111), b_king);
    EXPECT_EQ(table.xybK, 111);
    EXPECT_EQ(table.Kol_figur, 1);
}

TEST(FenBoard, NothingIsWrittenBeyondTheMailbox) {
    const std::string many_men(1000, 'q');
    const std::string many_slashes(5000, '/');
    const std::string many_eights(5000, '8');
    for (const std::string& text :
         {many_men, many_slashes + "K", many_eights + "K", many_slashes + many_men,
          "/////////8" + many_men, many_eights + many_slashes + many_men + "/PPP"}) {
        auto guarded = std::make_unique<Guarded>();
        guarded->before.fill(4711);
        guarded->after.fill(4711);
        clear_position(guarded->table);
        const Table cleared = guarded->table;
        read_fen_board(text, guarded->table, FenView::as_written);
        for (std::size_t i = 0; i < guarded->before.size(); ++i) {
            ASSERT_EQ(guarded->before[i], 4711U);
            ASSERT_EQ(guarded->after[i], 4711U);
        }
        EXPECT_EQ(guarded->table.Kol_figur, men_in_mailbox(guarded->table));
        EXPECT_EQ(guarded->table.castling, cleared.castling);
        EXPECT_EQ(guarded->table.xywK, cleared.xywK) << "a king beyond stays where it was";
    }
    EXPECT_EQ(read(many_men).Kol_figur, 99) << "from a8 to the last entry";
}

TEST(FenBoard, AnyCharactersAreSafe) {
    RandomNumbers random(77);
    const std::string alphabet = "PNBRQKpnbrqk12345678//// 90x-";
    int texts = 0;
    for (; texts < 20000; ++texts) {
        std::string text;
        const std::uint32_t length = random.below(60);
        for (std::uint32_t i = 0; i < length; ++i) {
            text += alphabet[random.below(static_cast<std::uint32_t>(alphabet.size()))];
        }
        const Table table = read(text);
        ASSERT_GE(table.Kol_figur, men_in_mailbox(table)) << text;
        ASSERT_GE(table.xywK, 0);
        ASSERT_LT(table.xywK, 120);
        ASSERT_LT(table.xybK, 120);
    }
    EXPECT_EQ(texts, 20000);
}
