// SPDX-License-Identifier: MIT
// Taking moves back: every member as before, for each of the eight kinds of record.
#include <array>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

#include "board/make.h"
#include "board/square_tables.h"
#include "support/captured_output.h"
#include "support/generated.h"
#include "support/position.h"

namespace {

struct TakenBack {
    const char* fen;
    Move move;
    std::int32_t kind;
};

// clang-format off
constexpr auto taken_back = std::to_array<TakenBack>({
    {"4k3/8/8/8/8/8/4P3/4K3 w - -", {e2, e4, 0}, 0},
    {"4k3/8/8/8/8/8/4P3/4K3 w - -", {e2, e3, 0}, 0},
    {"4k3/8/8/8/8/8/8/1N2K3 w - -", {b1, c3, 0}, 0},
    {"4k3/8/8/8/8/8/8/2B1K3 w - -", {c1, h6, 0}, 0},
    {"4k3/8/8/8/8/8/8/R3K2R w KQ -", {a1, a8, 0}, 0},
    {"4k3/8/8/8/8/8/8/R3K2R w KQ -", {h1, h4, 0}, 0},
    {"4k3/8/8/8/8/8/8/3QK3 w - -", {d1, a4, 0}, 0},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, e2, 0}, 0},
    {"4k3/4p3/8/8/8/8/8/4K3 b - -", {e7, e5, 0}, 0},
    {"1n2k3/8/8/8/8/8/8/4K3 b - -", {b8, c6, 0}, 0},
    {"2b1k3/8/8/8/8/8/8/4K3 b - -", {c8, h3, 0}, 0},
    {"r3k2r/8/8/8/8/8/8/4K3 b kq -", {a8, a2, 0}, 0},
    {"r3k2r/8/8/8/8/8/8/4K3 b kq -", {h8, h2, 0}, 0},
    {"3qk3/8/8/8/8/8/8/4K3 b - -", {d8, a5, 0}, 0},
    {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, f7, 0}, 0},
    {"4k3/8/8/3p4/4P3/8/8/4K3 w - d6", {e4, d5, 0}, 1},
    {"4k3/8/8/3n4/4P3/8/8/4K3 w - -", {e4, d5, 0}, 1},
    {"4k3/8/8/3p4/8/2N5/8/4K3 w - -", {c3, d5, 0}, 1},
    {"4k3/8/8/6q1/8/8/8/2B1K3 w - -", {c1, g5, 0}, 1},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {a1, a8, 0}, 1},
    {"4k3/8/8/8/3b4/8/8/3QK3 w - -", {d1, d4, 0}, 1},
    {"4k3/8/8/8/8/8/4p3/R3K2R w KQ -", {e1, e2, 0}, 1},
    {"4k3/8/8/4p3/3P4/8/8/4K3 b - -", {e5, d4, 0}, 1},
    {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {h8, h1, 0}, 1},
    {"r3k3/3P4/8/8/8/8/8/4K3 b q -", {e8, d7, 0}, 1},
    {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", {e5, d6, 0}, 1},
    {"4k3/8/8/8/3pP3/8/8/4K3 b - e3", {d4, e3, 0}, 1},
    {"4k3/P7/8/8/8/8/8/4K3 w - -", {a7, a8, w_queen}, 2},
    {"4k3/P7/8/8/8/8/8/4K3 w - -", {a7, a8, w_bishop}, 2},
    {"4k3/8/8/8/8/8/p7/4K3 b - -", {a2, a1, b_knight}, 2},
    {"r3k3/1P6/8/8/8/8/8/4K3 w q -", {b7, a8, w_rook}, 22},
    {"r1q1k3/1P6/8/8/8/8/8/4K3 w q -", {b7, c8, w_queen}, 22},
    {"4k3/8/8/8/8/8/6p1/4KB1N b - -", {g2, f1, b_queen}, 22},
    {"4k3/8/8/8/8/8/6p1/4KB1N b - -", {g2, h1, b_rook}, 22},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, g1, 0}, 3},
    {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", {e1, c1, 0}, 4},
    {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, g8, 0}, 5},
    {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", {e8, c8, 0}, 6},
});
// clang-format on

}  // namespace

TEST(Unmake, RestoresEveryMemberForEachKind) {
    int rows = 0;
    for (const TakenBack& row : taken_back) {
        for (const std::int32_t capture_flag : {0, 1}) {
            Table table = position_from_fen(row.fen);
            table.capture_flag = capture_flag;
            const Table before = table;
            UndoRecord undo;
            make(table, row.move.posFrom, row.move.posTo, row.move.posInfo, undo);
            EXPECT_EQ(undo.undo_kind, row.kind) << row.fen;
            EXPECT_FALSE(table == before) << row.fen;
            unmake(table, undo);
            EXPECT_TRUE(table == before)
                << row.fen << ' ' << move_text(row.move.posFrom, row.move.posTo, 0);
            ++rows;
        }
    }
    EXPECT_EQ(rows, 76);
}

TEST(Unmake, RestoresCastlingAfterRookCapture) {
    Table table = position_from_fen("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    UndoRecord undo;
    make(table, h1, h8, 0, undo);
    EXPECT_EQ(table.castling, 14U) << "the mover's own right goes, the taken rook's stays";
    unmake(table, undo);
    EXPECT_EQ(table.castling, 15U);
}

TEST(Unmake, TakesALineBackInReverse) {
    const Table before = start_position();
    Table table = before;
    const std::vector<Move> line = {{e2, e4, 0},        {d7, d5, 0}, {e4, d5, 0}, {c7, c5, 0},
                                    {d5, c6, 0},        {d8, d2, 0}, {c6, b7, 0}, {d2, c1, 0},
                                    {b7, a8, w_knight}, {c1, b1, 0}, {a8, c7, 0}, {e8, d8, 0}};
    std::vector<UndoRecord> records(line.size());
    std::vector<Table> positions;
    for (std::size_t i = 0; i < line.size(); ++i) {
        positions.push_back(table);
        make(table, line[i].posFrom, line[i].posTo, line[i].posInfo, records[i]);
    }
    for (std::size_t i = line.size(); i-- > 0;) {
        unmake(table, records[i]);
        EXPECT_TRUE(table == positions[i]) << i;
    }
    EXPECT_TRUE(table == before);
}

TEST(Unmake, TakenKingIsPutBack) {
    for (const auto& [fen, move, kind] :
         {std::tuple<const char*, Move, int>{"4k3/8/8/8/8/8/8/4RK2 w - -", {e1, e8, 0}, 1},
          {"5k2/8/8/8/8/8/5r2/5K2 b - -", {f2, f1, 0}, 1},
          {"4k3/8/8/8/8/8/4K3/8 w - -", {e2, e8, 0}, 1},
          {"4k3/3P4/8/8/8/8/8/4K3 w - -", {d7, e8, w_queen}, 22},
          {"4k3/8/8/8/8/8/3p4/4K3 b - -", {d2, e1, b_rook}, 22}}) {
        Table table = position_from_fen(fen);
        const Table before = table;
        UndoRecord undo;
        make(table, move.posFrom, move.posTo, move.posInfo, undo);
        EXPECT_EQ(undo.undo_kind, kind) << fen;
        unmake(table, undo);
        EXPECT_TRUE(table == before) << fen;
    }
}

TEST(Unmake, UnknownKindRestoresTheSavedWordsAlone) {
    Table table = position_from_fen("4k3/8/8/8/8/8/4P3/4K3 w - -");
    const Table before = table;
    UndoRecord undo;
    make(table, e2, e4, 0, undo);
    Table expected = table;
    expected.hash_lock = before.hash_lock;
    expected.hash_index = before.hash_index;
    expected.ep_flag = before.ep_flag;
    expected.ep_square = before.ep_square;
    undo.undo_kind = 7;
    unmake(table, undo);
    EXPECT_TRUE(table == expected);
    EXPECT_NE(table.pawn_hash, before.pawn_hash);
}

// A promotion without a proper piece is taken back as a plain move: the pawn's bit on the last
// rank, which make had not set, is turned over with the other and stays behind.
TEST(Unmake, PromotionWithoutAPieceLeavesABitBehind) {
    const CapturedOutput output;
    Table table = position_from_fen("4k3/P7/8/8/8/8/8/4K3 w - -");
    const Table before = table;
    UndoRecord undo;
    make(table, a7, a8, 0, undo);
    unmake(table, undo);
    EXPECT_EQ(table.WPawns, mask_of(a7) | mask_of(a8));
    table.WPawns = before.WPawns;
    EXPECT_TRUE(table == before);
}

TEST(Unmake, PromotionToAnUnknownPieceIsTakenBackWhole) {
    const CapturedOutput output;
    for (const char* fen : {"4k3/P7/8/8/8/8/8/4K3 w - -", "1r2k3/P7/8/8/8/8/8/4K3 w - -"}) {
        Table table = position_from_fen(fen);
        const Table before = table;
        UndoRecord undo;
        const Square to = before.at(b8) == b_rook ? b8 : a8;
        make(table, a7, to, w_king, undo);
        EXPECT_EQ(table.at(to), w_king);
        unmake(table, undo);
        EXPECT_TRUE(table == before) << fen;
    }
}
