// SPDX-License-Identifier: MIT
// Squares, moves and positions as text.
#include "shell/position_text.h"

#include <gtest/gtest.h>
#include <memory>

#include "board/move_list.h"
#include "board/set_up.h"
#include "board/square_tables.h"
#include "support/captured_output.h"
#include "support/generated.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

std::string printed_move(Square from, Square to, PieceCode info) {
    const CapturedOutput output;
    print_move(from, to, info);
    return output.text();
}

std::string printed_list(std::int32_t count) {
    const auto list = std::make_unique<MoveList>();
    list->count = count;
    for (std::int32_t i = 1; i <= count; ++i) {
        list->move(i) = {a2, a4, 0};
    }
    const CapturedOutput output;
    print_moves(*list);
    return output.text();
}

std::string dumped(const Table& table) {
    const CapturedOutput output;
    dump_position(table);
    return output.text();
}

}  // namespace

class PositionText : public testing::Test {
  protected:
    PositionText() { reset_all(); }
};

TEST_F(PositionText, NamesFollowTheMailbox) {
    EXPECT_EQ(square_names[21], "a8");
    EXPECT_EQ(square_names[98], "h1");
    int names = 0;
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        if (empty_board[i] == off_board) {
            EXPECT_EQ(square_names[i], "  ") << i;
            continue;
        }
        const std::string name = {static_cast<char>('a' + i % 10 - 1),
                                  static_cast<char>('8' - (i / 10 - 2))};
        EXPECT_EQ(square_names[i], name);
        EXPECT_EQ(square_of_text(name), static_cast<Square>(i));
        ++names;
    }
    EXPECT_EQ(names, 64);
}

TEST_F(PositionText, TextThatIsNoSquareIsEntryZero) {
    for (const char* text : {"i9", "", "E2", "e", "e9", "a0", "e22", "e2 ", "22"}) {
        EXPECT_EQ(square_of_text(text), 0) << '"' << text << '"';
    }
    EXPECT_EQ(square_of_text("  "), 0) << "the first entry off the board";
}

TEST_F(PositionText, MovesEndInOneBlank) {
    EXPECT_EQ(printed_move(e2, e4, 0), "e2e4 ");
    EXPECT_EQ(printed_move(e1, g1, 17), "e1g1 ");
    EXPECT_EQ(printed_move(e8, c8, 256), "e8c8 ");
    EXPECT_EQ(printed_move(0, 0, 0), "     ");
    EXPECT_EQ(printed_move(119, 29, 0), "     ");
}

TEST_F(PositionText, PromotionsHaveALetter) {
    EXPECT_EQ(printed_move(e7, e8, 8208), "e7e8q ");
    EXPECT_EQ(printed_move(e7, d8, 8200), "e7d8r ");
    EXPECT_EQ(printed_move(a7, a8, 8196), "a7a8b ");
    EXPECT_EQ(printed_move(h7, h8, 8194), "h7h8n ");
    EXPECT_EQ(printed_move(e2, e1, 5120), "e2e1q ");
    EXPECT_EQ(printed_move(e2, f1, 4608), "e2f1r ");
    EXPECT_EQ(printed_move(a2, a1, 4352), "a2a1b ");
    EXPECT_EQ(printed_move(h2, h1, 4224), "h2h1n ");
}

TEST_F(PositionText, PromotionCodesOnOtherSquaresHaveNone) {
    EXPECT_EQ(printed_move(e6, e8, 8208), "e6e8 ");
    EXPECT_EQ(printed_move(e7, e6, 8208), "e7e6 ");
    EXPECT_EQ(printed_move(e2, e1, 8208), "e2e1 ");
    EXPECT_EQ(printed_move(e7, e8, 5120), "e7e8 ");
    EXPECT_EQ(printed_move(e3, e1, 5120), "e3e1 ");
    EXPECT_EQ(printed_move(e2, e3, 5120), "e2e3 ");
    EXPECT_EQ(printed_move(39, 29, 8208), "     ");
    EXPECT_EQ(printed_move(h7, 29, 8208), "h7   ");
    EXPECT_EQ(printed_move(a7, 20, 8208), "a7   ");
    EXPECT_EQ(printed_move(h2, 99, 5120), "h2   ");
    EXPECT_EQ(printed_move(30, 21, 8208), "  a8 ");
    EXPECT_EQ(printed_move(80, 91, 5120), "  a1 ");
    EXPECT_EQ(printed_move(e7, e8, 8224), "e7e8 ") << "a king is no promotion";
    EXPECT_EQ(printed_move(e7, e8, 8193), "e7e8 ");
}

TEST_F(PositionText, ListsHaveSevenMovesALine) {
    EXPECT_EQ(printed_list(0), "\nAll 0 moves\n");
    EXPECT_EQ(printed_list(2), "1. a2a4  2. a2a4  \nAll 2 moves\n");
    EXPECT_EQ(printed_list(7),
              "1. a2a4  2. a2a4  3. a2a4  4. a2a4  5. a2a4  6. a2a4  7. a2a4  \n"
              "\nAll 7 moves\n");
    EXPECT_EQ(printed_list(8),
              "1. a2a4  2. a2a4  3. a2a4  4. a2a4  5. a2a4  6. a2a4  7. a2a4  \n"
              "8. a2a4  \nAll 8 moves\n");
}

TEST_F(PositionText, ListOfFourteenEndsWithAnEmptyLine) {
    EXPECT_EQ(printed_list(14),
              "1. a2a4  2. a2a4  3. a2a4  4. a2a4  5. a2a4  6. a2a4  7. a2a4  \n"
              "8. a2a4  9. a2a4  10. a2a4  11. a2a4  12. a2a4  13. a2a4  14. a2a4  \n"
              "\n"
              "All 14 moves\n");
}

TEST_F(PositionText, BitboardsAreDigitsFromA8ToH1) {
    const CapturedOutput output;
    print_bitboard(0x8000000000000003);
    EXPECT_EQ(output.text(), "11" + std::string(61, '0') + "1");
}

TEST_F(PositionText, DumpOfTheStartingPosition) {
    Table table;
    set_start_position(table);
    const std::string row(8, '0');
    const auto rows = [&](const std::string& first, const std::string& last) {
        return first + row + row + row + row + row + row + last;
    };
    EXPECT_EQ(dumped(table),
              "\n"
              "r n b q k b n r \n"
              "p p p p p p p p \n"
              ". . . . . . . . \n"
              ". . . . . . . . \n"
              ". . . . . . . . \n"
              ". . . . . . . . \n"
              "P P P P P P P P \n"
              "R N B Q K B N R \n"
              "WPawns: " +
                  row + row + row + row + row + row + "11111111" + row +
                  "\n"
                  "WKnight: " +
                  rows(row, "01000010") +
                  "\n"
                  "WBishop: " +
                  rows(row, "00100100") +
                  "\n"
                  "WRook: " +
                  rows(row, "10000001") +
                  "\n"
                  "WQuins: " +
                  rows(row, "00010000") +
                  "\n"
                  "BPawns: " +
                  row + "11111111" + row + row + row + row + row + row +
                  "\n"
                  "BKnight: " +
                  rows("01000010", row) +
                  "\n"
                  "BBishop: " +
                  rows("00100100", row) +
                  "\n"
                  "BRook: " +
                  rows("10000001", row) +
                  "\n"
                  "BQuins: " +
                  rows("00010000", row) +
                  "\n"
                  "xywK= 95\n"
                  "xybK= 25\n"
                  "Kol_figur  is  32\n");
}

// Entries off the board print nothing as long as they hold nothing; a man written there does.
TEST_F(PositionText, DumpGoesByWhatAnEntryHolds) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
    table.Array[0] = w_pawn;
    const std::string text = dumped(table);
    EXPECT_EQ(text.substr(0, 36), "\nP . . . . k . . \n. . . . . . . . \n.");
    EXPECT_NE(text.find("\n. . . . . K . . \n. WPawns: "), std::string::npos);
    table.Array[0] = 0x2003;
    EXPECT_EQ(dumped(table).substr(0, 18), "\n. . . . k . . . \n") << "no man, no letter";
}
