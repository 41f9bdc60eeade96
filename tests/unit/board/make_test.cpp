// SPDX-License-Identifier: MIT
// Making moves, with and without a record: what a position looks like afterwards, to the last
// member. Expected positions are drawn, their keys worked out from scratch.
#include "board/make.h"

#include <array>
#include <gtest/gtest.h>
#include <tuple>
#include <utility>

#include "board/move.h"
#include "board/piece_keys.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "support/captured_output.h"
#include "support/position.h"

namespace {

/// A move and everything that it leaves behind.
struct MadeMove {
    const char* name;
    const char* before;  ///< board, side, rights, en passant
    Move move;
    const char* after;  ///< board, rights; the side to move is still the mover
    std::int32_t kind;
    std::int32_t capture_flag;
    PieceCode captured;
    PieceCode promoted;
};

// clang-format off
constexpr auto made_moves = std::to_array<MadeMove>({
    {"white pawn, one step", "4k3/8/8/8/8/8/4P3/4K3 w - -", {e2, e3, 0},
        "4k3/8/8/8/8/4P3/8/4K3 w - -", 0, 0, 0, 0},
    {"white knight", "4k3/8/8/8/8/8/8/1N2K3 w - -", {b1, c3, 0},
        "4k3/8/8/8/8/2N5/8/4K3 w - -", 0, 0, 0, 0},
    {"white bishop", "4k3/8/8/8/8/8/8/2B1K3 w - -", {c1, h6, 0},
        "4k3/8/7B/8/8/8/8/4K3 w - -", 0, 0, 0, 0},
    {"white rook", "4k3/8/8/8/8/8/1R6/4K3 w KQkq -", {b2, b7, 0},
        "4k3/1R6/8/8/8/8/8/4K3 w KQkq -", 0, 0, 0, 0},
    {"white queen", "4k3/8/8/8/8/8/8/3QK3 w - -", {d1, a4, 0},
        "4k3/8/8/8/Q7/8/8/4K3 w - -", 0, 0, 0, 0},
    {"white king", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, e2, 0},
        "r3k2r/8/8/8/8/8/4K3/R6R w kq -", 0, 0, 0, 0},
    {"black pawn, one step", "4k3/4p3/8/8/8/8/8/4K3 b - -", {e7, e6, 0},
        "4k3/8/4p3/8/8/8/8/4K3 b - -", 0, 0, 0, 0},
    {"black knight", "1n2k3/8/8/8/8/8/8/4K3 b - -", {b8, c6, 0},
        "4k3/8/2n5/8/8/8/8/4K3 b - -", 0, 0, 0, 0},
    {"black bishop", "2b1k3/8/8/8/8/8/8/4K3 b - -", {c8, h3, 0},
        "4k3/8/8/8/8/7b/8/4K3 b - -", 0, 0, 0, 0},
    {"black rook", "4k3/1r6/8/8/8/8/8/4K3 b KQkq -", {b7, b2, 0},
        "4k3/8/8/8/8/8/1r6/4K3 b KQkq -", 0, 0, 0, 0},
    {"black queen", "3qk3/8/8/8/8/8/8/4K3 b - -", {d8, a5, 0},
        "4k3/8/8/q7/8/8/8/4K3 b - -", 0, 0, 0, 0},
    {"black king", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, f7, 0},
        "r6r/5k2/8/8/8/8/8/R3K2R b KQ -", 0, 0, 0, 0},
    {"pawn takes pawn", "4k3/8/8/3p4/4P3/8/8/4K3 w - -", {e4, d5, 0},
        "4k3/8/8/3P4/8/8/8/4K3 w - -", 1, 1, b_pawn, 0},
    {"pawn takes knight", "4k3/8/8/5n2/4P3/8/8/4K3 w - -", {e4, f5, 0},
        "4k3/8/8/5P2/8/8/8/4K3 w - -", 1, 1, b_knight, 0},
    {"knight takes bishop", "4k3/8/8/3b4/8/2N5/8/4K3 w - -", {c3, d5, 0},
        "4k3/8/8/3N4/8/8/8/4K3 w - -", 1, 1, b_bishop, 0},
    {"bishop takes queen", "4k3/8/8/6q1/8/8/8/2B1K3 w - -", {c1, g5, 0},
        "4k3/8/8/6B1/8/8/8/4K3 w - -", 1, 1, b_queen, 0},
    {"rook takes rook of its kind's corner", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {h1, h8, 0},
        "r3k2R/8/8/8/8/8/8/R3K3 w Qkq -", 1, 1, b_rook, 0},
    {"queen takes pawn", "4k3/8/8/8/3p4/8/8/3QK3 w - -", {d1, d4, 0},
        "4k3/8/8/8/3Q4/8/8/4K3 w - -", 1, 1, b_pawn, 0},
    {"king takes pawn", "4k3/8/8/8/8/8/4p3/4K3 w - -", {e1, e2, 0},
        "4k3/8/8/8/8/8/4K3/8 w - -", 1, 1, b_pawn, 0},
    {"black pawn takes rook", "4k3/8/8/4p3/3R4/8/8/4K3 b - -", {e5, d4, 0},
        "4k3/8/8/8/3p4/8/8/4K3 b - -", 1, 1, w_rook, 0},
    {"black knight takes queen", "4k3/8/2n5/8/3Q4/8/8/4K3 b - -", {c6, d4, 0},
        "4k3/8/8/8/3n4/8/8/4K3 b - -", 1, 1, w_queen, 0},
    {"black bishop, past a man", "4k3/8/8/8/8/6B1/8/b3K3 b - -", {a1, g7, 0},
        "4k3/6b1/8/8/8/6B1/8/4K3 b - -", 0, 0, 0, 0},
    {"black bishop takes knight", "4k3/6N1/8/8/8/8/8/b3K3 b - -", {a1, g7, 0},
        "4k3/6b1/8/8/8/8/8/4K3 b - -", 1, 1, w_knight, 0},
    {"black rook takes the rook on h1", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {h8, h1, 0},
        "r3k3/8/8/8/8/8/8/R3K2r b KQq -", 1, 1, w_rook, 0},
    {"black rook takes the rook on a1", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {a8, a1, 0},
        "4k2r/8/8/8/8/8/8/r3K2R b KQk -", 1, 1, w_rook, 0},
    {"black queen takes pawn", "3qk3/8/8/8/3P4/8/8/4K3 b - -", {d8, d4, 0},
        "4k3/8/8/8/3q4/8/8/4K3 b - -", 1, 1, w_pawn, 0},
    {"black king takes bishop", "4k3/3B4/8/8/8/8/8/4K3 b - -", {e8, d7, 0},
        "8/3k4/8/8/8/8/8/4K3 b - -", 1, 1, w_bishop, 0},
    {"white promotes to a queen", "4k3/P7/8/8/8/8/8/4K3 w - -", {a7, a8, w_queen},
        "Q3k3/8/8/8/8/8/8/4K3 w - -", 2, 0, 0, w_queen},
    {"white promotes to a knight", "4k3/7P/8/8/8/8/8/4K3 w - -", {h7, h8, w_knight},
        "4k2N/8/8/8/8/8/8/4K3 w - -", 2, 0, 0, w_knight},
    {"black promotes to a rook", "4k3/8/8/8/8/8/7p/4K3 b - -", {h2, h1, b_rook},
        "4k3/8/8/8/8/8/8/4K2r b - -", 2, 0, 0, b_rook},
    {"black promotes to a bishop", "4k3/8/8/8/8/8/p7/4K3 b - -", {a2, a1, b_bishop},
        "4k3/8/8/8/8/8/8/b3K3 b - -", 2, 0, 0, b_bishop},
    {"white takes and promotes to a queen", "r3k3/1P6/8/8/8/8/8/4K3 w q -", {b7, a8, w_queen},
        "Q3k3/8/8/8/8/8/8/4K3 w q -", 22, 1, b_rook, w_queen},
    {"white takes and promotes to a bishop", "2q1k3/1P6/8/8/8/8/8/4K3 w - -", {b7, c8, w_bishop},
        "2B1k3/8/8/8/8/8/8/4K3 w - -", 22, 1, b_queen, w_bishop},
    {"black takes and promotes to a knight", "4k3/8/8/8/8/8/6p1/4KB2 b - -", {g2, f1, b_knight},
        "4k3/8/8/8/8/8/8/4Kn2 b - -", 22, 1, w_bishop, b_knight},
    {"black takes and promotes to a queen", "4k3/8/8/8/8/8/6p1/4K2N b - -", {g2, h1, b_queen},
        "4k3/8/8/8/8/8/8/4K2q b - -", 22, 1, w_knight, b_queen},
    {"white castles short", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, g1, 0},
        "r3k2r/8/8/8/8/8/8/R4RK1 w kq -", 3, 0, 0, 0},
    {"white castles long", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, c1, 0},
        "r3k2r/8/8/8/8/8/8/2KR3R w kq -", 4, 0, 0, 0},
    {"black castles short", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, g8, 0},
        "r4rk1/8/8/8/8/8/8/R3K2R b KQ -", 5, 0, 0, 0},
    {"black castles long", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, c8, 0},
        "2kr3r/8/8/8/8/8/8/R3K2R b KQ -", 6, 0, 0, 0},
    {"a label changes nothing", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, g1, label_white_short},
        "r3k2r/8/8/8/8/8/8/R4RK1 w kq -", 3, 0, 0, 0},
});
// clang-format on

/// The table of a row's outcome; `ep_square` stays what it was before.
Table expected_after(const MadeMove& row, const Table& before) {
    Table after = position_from_fen(row.after);
    after.ep_square = before.ep_square;
    after.capture_flag = row.capture_flag;
    return after;
}

}  // namespace

TEST(Make, LeavesThePositionAndTheRecordOfEachKind) {
    std::string kinds;
    for (const MadeMove& row : made_moves) {
        Table table = position_from_fen(row.before);
        table.ep_square = 57;
        table.ep_flag = 1;
        table.capture_flag = 1;
        const Table before = table;
        UndoRecord undo{};
        make(table, row.move.posFrom, row.move.posTo, row.move.posInfo, undo);
        EXPECT_TRUE(table == expected_after(row, before)) << row.name << ": " << fen_of(table);
        EXPECT_EQ(undo.undo_kind, row.kind) << row.name;
        EXPECT_EQ(undo.captured, row.captured) << row.name;
        EXPECT_EQ(undo.promoted, row.promoted) << row.name;
        EXPECT_EQ(undo.posFrom, row.move.posFrom);
        EXPECT_EQ(undo.posTo, row.move.posTo);
        EXPECT_EQ(undo.ep_flag, 1);
        EXPECT_EQ(undo.ep_square, 57);
        EXPECT_EQ(undo.en_passant, 0);
        EXPECT_EQ(undo.castling, before.castling);
        EXPECT_EQ(undo.capture_flag, 1);
        EXPECT_EQ(undo.hash_lock, before.hash_lock);
        EXPECT_EQ(undo.hash_index, before.hash_index);
        EXPECT_EQ(undo.pawn_hash, before.pawn_hash);
        kinds += std::to_string(row.kind) + " ";
    }
    for (const char* kind : {"0 ", "1 ", "2 ", "22 ", "3 ", "4 ", "5 ", "6 "}) {
        EXPECT_NE((" " + kinds).find(" " + std::string(kind)), std::string::npos) << kind;
    }
}

TEST(Make, MakePlainLeavesTheSamePosition) {
    int rows = 0;
    for (const MadeMove& row : made_moves) {
        Table table = position_from_fen(row.before);
        table.ep_square = 57;
        table.ep_flag = 1;
        const Table before = table;
        make_plain(table, row.move.posFrom, row.move.posTo, row.move.posInfo);
        EXPECT_TRUE(table == expected_after(row, before)) << row.name << ": " << fen_of(table);
        ++rows;
    }
    EXPECT_EQ(rows, 40);
}

TEST(Make, DoublePushNamesThePawnNotTheSquareItSkipped) {
    Table table = start_position();
    make_plain(table, e2, e4, 0);
    EXPECT_EQ(table.ep_flag, 1);
    EXPECT_EQ(table.ep_square, 65);
    make_plain(table, a7, a5, 0);
    EXPECT_EQ(table.ep_flag, 1);
    EXPECT_EQ(table.ep_square, a5);
}

TEST(Make, DoublePushSetsTheFlagWithoutAnEnemyPawnAndTheNextMoveClearsIt) {
    Table table = position_from_fen("4k3/8/8/8/8/8/4P3/4K3 w - -");
    UndoRecord undo;
    make(table, e2, e4, 0, undo);
    EXPECT_EQ(table.ep_flag, 1);
    EXPECT_EQ(table.ep_square, e4);
    make(table, e8, e7, 0, undo);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.ep_square, e4) << "the old square stays";
    make(table, e4, e5, 0, undo);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.ep_square, e4);
}

TEST(Make, EnPassantTakesThePawnBesideTheTarget) {
    Table table = position_from_fen("4k3/8/8/3pP3/8/8/8/4K3 w - d6");
    Table expected = position_from_fen("4k3/8/3P4/8/8/8/8/4K3 w - -");
    expected.ep_square = d5;
    expected.capture_flag = 1;
    UndoRecord undo;
    make(table, e5, d6, 0, undo);
    EXPECT_TRUE(table == expected) << fen_of(table);
    EXPECT_EQ(table.Kol_figur, 3);
    EXPECT_EQ(table.at(d5), 16384U);
    EXPECT_EQ(table.at(d6), 8193U);
    EXPECT_EQ(undo.undo_kind, 1);
    EXPECT_EQ(undo.en_passant, 1);
    EXPECT_EQ(undo.captured, 4160U);
    EXPECT_EQ(undo.ep_flag, 1);
}

TEST(Make, EnPassantOfBlack) {
    Table table = position_from_fen("4k3/8/8/8/3pP3/8/8/4K3 b - e3");
    Table expected = position_from_fen("4k3/8/8/8/8/4p3/8/4K3 b - -");
    expected.ep_square = e4;
    expected.capture_flag = 1;
    UndoRecord undo;
    make(table, d4, e3, 0, undo);
    EXPECT_TRUE(table == expected) << fen_of(table);
    EXPECT_EQ(undo.undo_kind, 1);
    EXPECT_EQ(undo.en_passant, 1);
    EXPECT_EQ(undo.captured, 8193U);
}

TEST(Make, DiagonalPawnStepToAnEmptySquareIsEnPassantWhateverTheFlagSays) {
    for (const char* fen : {"4k3/8/8/3pP3/8/8/8/4K3 w - -", "4k3/8/8/3pP3/7p/8/8/4K3 w - h3"}) {
        Table table = position_from_fen(fen);
        const std::int32_t men = table.Kol_figur;
        make_plain(table, e5, d6, 0);
        EXPECT_EQ(table.at(d5), empty_square);
        EXPECT_EQ(table.at(d6), w_pawn);
        EXPECT_EQ(table.Kol_figur, men - 1);
        EXPECT_EQ(table.capture_flag, 1);
    }
}

TEST(Make, RookTakenOnItsCornerKeepsTheRight) {
    Table table = position_from_fen("4k3/8/8/8/8/8/6b1/R3K2R b KQ -");
    make_plain(table, g2, h1, 0);
    EXPECT_EQ(table.castling, 3U);
    table = position_from_fen("r3k2r/6B1/8/8/8/8/8/4K3 w kq -");
    make_plain(table, g7, h8, 0);
    EXPECT_EQ(table.castling, 12U);
}

TEST(Make, RooksThatLeaveTheirCornersLoseTheRight) {
    const char* fen = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";
    const std::array<std::pair<Square, std::uint32_t>, 4> corners = {
        {{a1, 13}, {h1, 14}, {a8, 7}, {h8, 11}}};
    for (const auto& [corner, rights] : corners) {
        Table table = position_from_fen(fen);
        const Square to = corner == a1 || corner == h1 ? corner - 10 : corner + 10;
        make_plain(table, corner, to, 0);
        EXPECT_EQ(table.castling, rights) << corner;
        make_plain(table, to, corner, 0);
        EXPECT_EQ(table.castling, rights) << "coming back restores nothing";
    }
}

TEST(Make, RookOfTheOtherColourOnACornerTakesNoRight) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/r3K2r b KQkq -");
    make_plain(table, a1, a2, 0);
    make_plain(table, h1, h2, 0);
    EXPECT_EQ(table.castling, 15U);
}

TEST(Make, KingThatMovesAndComesBackHasLostBothRights) {
    Table table = position_from_fen("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    make_plain(table, e1, e2, 0);
    make_plain(table, e2, e1, 0);
    EXPECT_EQ(table.castling, 12U);
    make_plain(table, e8, d8, 0);
    make_plain(table, d8, e8, 0);
    EXPECT_EQ(table.castling, 0U);
}

TEST(Make, KingStepThatIsNotFromHomeMovesNoRook) {
    Table table = position_from_fen("4k3/8/8/8/8/8/4K3/R6R w - -");
    make_plain(table, e2, g2, 0);
    EXPECT_EQ(table.at(h1), w_rook);
    EXPECT_EQ(table.at(a1), w_rook);
    EXPECT_EQ(table.xywK, g2);
}

TEST(Make, PromotionChangesThePawnKeyOnceAndTheOthersByBothMen) {
    const Table before = position_from_fen("4k3/P7/8/8/8/8/8/4K3 w - -");
    Table table = before;
    make_plain(table, a7, a8, w_rook);
    EXPECT_EQ(table.pawn_hash, before.pawn_hash ^ pawn_key(white, a7));
    EXPECT_EQ(table.hash_lock, before.hash_lock ^ lock_key(0, a7) ^ lock_key(3, a8));
    EXPECT_EQ(table.hash_index, before.hash_index ^ index_key(0, a7) ^ index_key(3, a8));
}

TEST(Make, TakenKingIsNotedAndKeepsItsKeys) {
    const Table before = position_from_fen("4k3/8/8/8/8/8/8/4RK2 w - -");
    Table table = before;
    UndoRecord undo;
    make(table, e1, e8, 0, undo);
    EXPECT_EQ(undo.undo_kind, 1);
    EXPECT_EQ(undo.captured, b_king);
    EXPECT_EQ(table.capture_flag, 1);
    EXPECT_EQ(table.Kol_figur, before.Kol_figur - 1);
    EXPECT_EQ(table.xybK, e8);
    EXPECT_EQ(table.at(e8), w_rook);
    EXPECT_EQ(table.hash_lock, before.hash_lock ^ lock_key(3, e1) ^ lock_key(3, e8));
}

TEST(Make, NoManOnTheFromSquareEndsTheMoveAfterTheCapture) {
    const Table before = position_from_fen("4k3/8/8/3n4/8/8/8/4K3 w - e6");
    Table table = before;
    make_plain(table, d4, d5, 0);
    EXPECT_EQ(table.Kol_figur, 2);
    EXPECT_EQ(table.capture_flag, 1);
    EXPECT_EQ(table.ep_flag, 0);
    EXPECT_EQ(table.BKnight, 0U);
    EXPECT_EQ(table.at(d5), b_knight);
    EXPECT_EQ(table.at(d4), empty_square);
}

TEST(Make, SideIsNeverTouched) {
    for (const Side side : {white, black}) {
        Table table = start_position();
        table.side = side;
        UndoRecord undo;
        make(table, e2, e4, 0, undo);
        EXPECT_EQ(table.side, side);
        unmake(table, undo);
        EXPECT_EQ(table.side, side);
        make_plain(table, e2, e4, 0);
        EXPECT_EQ(table.side, side);
    }
}

namespace {

/// A castling move: the king's squares, the rook's corner and where the rook goes.
struct CastlingSquares {
    Square from;
    Square to;
    Square corner;
    Square rook_to;
    PieceCode rook;
};

constexpr std::array<CastlingSquares, 4> castling_squares = {{
    {e1, g1, h1, f1, w_rook},
    {e1, c1, a1, d1, w_rook},
    {e8, g8, h8, f8, b_rook},
    {e8, c8, a8, d8, b_rook},
}};

/// The position after `make_plain`. `make` has to leave the same one, and `unmake` then
/// `taken_back`.
Table made_in_both_forms(const Table& before, const Move& move, const Table& taken_back) {
    Table plain = before;
    make_plain(plain, move.posFrom, move.posTo, move.posInfo);
    Table recorded = before;
    UndoRecord undo;
    make(recorded, move.posFrom, move.posTo, move.posInfo, undo);
    EXPECT_TRUE(recorded == plain);
    unmake(recorded, undo);
    EXPECT_TRUE(recorded == taken_back);
    return plain;
}

}  // namespace

// Where the mailbox shows a man that its bitboard lacks, the flipped bit stays behind.
TEST(Make, LeavingPawnWithoutItsBitLeavesOneBehindInBothForms) {
    for (const auto& [pawn, from, to] :
         {std::tuple<PieceCode, Square, Square>{w_pawn, e4, e5}, {b_pawn, d5, d4}}) {
        Table before = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
        before.at(from) = pawn;
        const Table after = made_in_both_forms(before, {from, to, 0}, before);
        EXPECT_EQ(after.*bitboard_of(pawn), mask_of(from) | mask_of(to));
    }
}

TEST(Make, TakenManWithoutItsBitLeavesOneBehindInBothForms) {
    for (const PieceCode taken : {w_pawn, w_knight, w_bishop, w_rook, w_queen, b_pawn, b_knight,
                                  b_bishop, b_rook, b_queen}) {
        SCOPED_TRACE(taken);
        Table before = position_from_fen("7k/8/8/8/3K4/8/8/8 w - -");
        before.at(d5) = taken;
        const Table after = made_in_both_forms(before, {d4, d5, 0}, before);
        EXPECT_EQ(after.*bitboard_of(taken), mask_of(d5));
    }
}

TEST(Make, PawnTakenInPassingWithoutItsBitLeavesOneBehindInBothForms) {
    Table before = position_from_fen("4k3/8/8/4P3/8/8/8/4K3 w - -");
    before.at(d5) = b_pawn;
    const Table after = made_in_both_forms(before, {e5, d6, 0}, before);
    EXPECT_EQ(after.BPawns, mask_of(d5));
}

TEST(Make, CastlingPutsARookBesideTheKingWhateverStandsOnTheCorner) {
    for (const CastlingSquares& castling : castling_squares) {
        for (const PieceCode on_corner : {empty_square, w_knight, b_queen}) {
            Table before = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
            // A rook comes back, without its bit.
            Table taken_back = before;
            taken_back.at(castling.corner) = castling.rook;
            before.at(castling.corner) = on_corner;
            const Table after =
                made_in_both_forms(before, {castling.from, castling.to, 0}, taken_back);
            EXPECT_EQ(after.at(castling.rook_to), castling.rook);
            EXPECT_EQ(after.at(castling.corner), empty_square);
            EXPECT_EQ(after.*bitboard_of(castling.rook),
                      mask_of(castling.rook_to) | mask_of(castling.corner))
                << "the corner had no bit, and it is flipped";
        }
    }
}

// The two forms of the move differ only for a pawn on the last rank without a proper piece.
TEST(Make, PawnWithoutAPieceVanishesInMakePlainAndStandsInMake) {
    for (const auto& [fen, move] :
         {std::pair<const char*, Move>{"4k3/P7/8/8/8/8/8/4K3 w - -", {a7, a8, 0}},
          {"4k3/8/8/8/8/8/p7/4K3 b - -", {a2, a1, w_queen}}}) {
        const CapturedOutput output;
        const Table before = position_from_fen(fen);
        Table plain = before;
        make_plain(plain, move.posFrom, move.posTo, move.posInfo);
        EXPECT_EQ(plain.at(move.posTo), empty_square);
        EXPECT_EQ(plain.at(move.posFrom), empty_square);
        EXPECT_EQ(plain.WPawns | plain.BPawns | plain.WQuins | plain.BQuins, 0U);
        Table recorded = before;
        UndoRecord undo;
        make(recorded, move.posFrom, move.posTo, move.posInfo, undo);
        EXPECT_EQ(recorded.at(move.posTo), before.at(move.posFrom));
        EXPECT_EQ(recorded.at(move.posFrom), empty_square);
        EXPECT_EQ(recorded.WPawns | recorded.BPawns, 0U);
        EXPECT_EQ(undo.undo_kind, 0);
        EXPECT_EQ(recorded.hash_lock, plain.hash_lock);
    }
}
