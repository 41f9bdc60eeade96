// SPDX-License-Identifier: MIT
// The reports of a promotion without a proper piece, to the letter.
#include "board/make_report.h"

#include <gtest/gtest.h>
#include <tuple>

#include "board/make.h"
#include "board/search_line.h"
#include "support/captured_output.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

const std::string no_men(64, '0');

/// The dump of kings on e8 and e1 while a pawn leaves: the mailbox still shows it, its bitboard no
/// longer does.
std::string dump(const std::string& row_of_pawn, bool on_seventh, const std::string& black_rook) {
    std::string text = "\n";
    text += black_rook.empty() ? ". . . . k . . . \n" : ". r . . k . . . \n";
    for (int row = 1; row < 7; ++row) {
        const bool here = on_seventh ? row == 1 : row == 6;
        text += here ? row_of_pawn + "\n" : ". . . . . . . . \n";
    }
    text += ". . . . K . . . \n";
    for (const char* label : {"WPawns: ", "WKnight: ", "WBishop: ", "WRook: ", "WQuins: ",
                              "BPawns: ", "BKnight: ", "BBishop: "}) {
        text += label + no_men + "\n";
    }
    text += "BRook: " + (black_rook.empty() ? no_men : black_rook) + "\nBQuins: " + no_men + "\n";
    return text + "xywK= 95\nxybK= 25\n";
}

const std::string underscores(36, '_');

}  // namespace

class MakeReport : public testing::Test {
  protected:
    MakeReport() { reset_all(); }
    ~MakeReport() override { reset_search_line(); }
};

TEST_F(MakeReport, WhiteWithoutAPiece) {
    TotalNodes = 4000000001;
    ply = 2;
    length_vetka[2] = 3;
    vetka[0][0] = {e2, e4, 0};
    vetka[1][1] = {e7, e8, w_queen};
    vetka[2][2] = {e7, e8, 0};
    const std::string expected =
        "SUPER ERROR w_figure(posInfo)  == 0 pos Info: 0\n"
        "Array[posTo] =  16384\n"
        "posTo =  21\n"
        "posFrom =  31\n" +
        dump("P . . . . . . . ", true, "") +
        "Kol_figur  is  3\n"
        "TotalNodes =  4000000001\n"
        "ply =  2\n"
        "length_vetka[ply] =  3\n"
        "e2e4 e7e8q e7e8 \n" +
        underscores + "\n";
    Table table = position_from_fen("4k3/P7/8/8/8/8/8/4K3 w - -");
    Table copy = table;
    {
        const CapturedOutput output;
        make_plain(table, a7, a8, 0);
        EXPECT_EQ(output.text(), expected);
    }
    const CapturedOutput output;
    UndoRecord undo;
    make(copy, a7, a8, 0, undo);
    EXPECT_EQ(output.text(), expected);
}

TEST_F(MakeReport, WhiteWithABlackPieceAndACapture) {
    const std::string expected =
        "SUPER ERROR w_figure(posInfo)  == 0 pos Info: 5120\n"
        "Array[posTo] =  4608\n"
        "posTo =  22\n"
        "posFrom =  31\n" +
        // The rook is lifted from its bitboard already and still stands in the mailbox.
        dump("P . . . . . . . ", true, no_men) +
        "Kol_figur  is  3\n"
        "TotalNodes =  0\n"
        "ply =  0\n"
        "length_vetka[ply] =  0\n"
        "\n" +
        underscores + "\n";
    Table table = position_from_fen("1r2k3/P7/8/8/8/8/8/4K3 w - -");
    const CapturedOutput output;
    make_plain(table, a7, b8, b_queen);
    EXPECT_EQ(output.text(), expected);
    EXPECT_EQ(table.at(b8), b_rook);
}

TEST_F(MakeReport, BlackWithoutAPieceStopsShort) {
    TotalNodes = 7;
    ply = 2;
    length_vetka[2] = 3;
    const std::string expected =
        "SUPER ERROR b_figure(posInfo)  == 0 pos Info: 8208\n"
        "Array[posTo] =  16384\n"
        "posTo =  98\n"
        "posFrom =  88\n" +
        dump(". . . . . . . p ", false, "") +
        "Kol_figur  is  3\n"
        "TotalNodes =  7\n" +
        underscores + "\n";
    Table table = position_from_fen("4k3/8/8/8/8/8/7p/4K3 b - -");
    Table copy = table;
    const CapturedOutput output;
    make_plain(table, h2, h1, w_queen);
    EXPECT_EQ(output.text(), expected);
    const CapturedOutput recorded;
    UndoRecord undo;
    make(copy, h2, h1, w_queen, undo);
    EXPECT_EQ(recorded.text(), expected);
}

TEST_F(MakeReport, UnknownPieceOfTheRightColour) {
    for (const auto& [fen, from, to, info] : {std::tuple<const char*, Square, Square, PieceCode>{
                                                  "4k3/P7/8/8/8/8/8/4K3 w - -", a7, a8, w_king},
                                              {"4k3/P7/8/8/8/8/8/4K3 w - -", a7, a8, w_pawn},
                                              {"4k3/8/8/8/8/8/7p/4K3 b - -", h2, h1, b_pawn}}) {
        const Table before = position_from_fen(fen);
        const std::string line = "ERRPR net takoi figuri pos Info: " + std::to_string(info) + "\n";
        Table table = before;
        {
            const CapturedOutput output;
            make_plain(table, from, to, info);
            EXPECT_EQ(output.text(), line);
        }
        EXPECT_EQ(table.at(to), info);
        EXPECT_EQ(table.at(from), empty_square);
        EXPECT_EQ(table.WPawns | table.BPawns, 0U) << "no bitboard takes it";
        Table recorded = before;
        UndoRecord undo;
        const CapturedOutput output;
        make(recorded, from, to, info, undo);
        EXPECT_EQ(output.text(), line);
        EXPECT_TRUE(recorded == table);
        EXPECT_EQ(undo.undo_kind, 2);
    }
}

TEST_F(MakeReport, LineLongerThanTheTableEndsWithIt) {
    ply = 69;
    length_vetka[69] = 1000;
    Table table = position_from_fen("4k3/P7/8/8/8/8/8/4K3 w - -");
    const CapturedOutput output;
    make_plain(table, a7, a8, 0);
    // 70 moves of two blank names and a blank.
    EXPECT_NE(output.text().find("length_vetka[ply] =  1000\n" + std::string(70 * 5, ' ') + "\n"),
              std::string::npos);
}
