// SPDX-License-Identifier: MIT
// The walk has no test of ranks and files, only one of the mailbox as a whole.
#include "shell/fen_board.h"

#include <algorithm>

#include "board/side_traits.h"
#include "board/square_tables.h"

namespace {

/// Where the walk stops counting: past every mailbox entry, or so far above that no column leads
/// back.
constexpr Square past_mailbox = static_cast<Square>(mailbox_size);
constexpr Square above_mailbox = -past_mailbox - 1;

PieceCode man_of_letter(char letter) {
    switch (letter) {
        case 'P': return w_pawn;
        case 'N': return w_knight;
        case 'B': return w_bishop;
        case 'R': return w_rook;
        case 'Q': return w_queen;
        case 'K': return w_king;
        case 'p': return b_pawn;
        case 'n': return b_knight;
        case 'b': return b_bishop;
        case 'r': return b_rook;
        case 'q': return b_queen;
        case 'k': return b_king;
        default: return off_board;
    }
}

/// The letter of the same man of the other colour.
char other_colour(char letter) {
    constexpr char case_bit = 'a' - 'A';
    return static_cast<char>(letter ^ case_bit);
}

PieceCode man_in_view(char letter, FenView view) {
    return man_of_letter(view == FenView::mirrored ? other_colour(letter) : letter);
}

}  // namespace

FenBoardCursor::FenBoardCursor(Table& table, FenView view)
    : table_(table), view_(view), row_base_(view == FenView::mirrored ? a1 : a8) {}

void FenBoardCursor::take(char character) {
    if (character == '/') {
        const Square next_row = view_ == FenView::mirrored ? step_up : step_down;
        row_base_ = std::clamp(row_base_ + next_row, above_mailbox, past_mailbox);
        column_ = 0;
    } else if (character >= '1' && character <= '8') {
        column_ = std::min(column_ + (character - '0'), past_mailbox);
    } else if (const PieceCode man = man_in_view(character, view_); man != off_board) {
        place(man);
        column_ = std::min(column_ + 1, past_mailbox);
    }
}

void FenBoardCursor::place(PieceCode code) {
    const Square square = row_base_ + column_;
    if (square < 0 || square >= past_mailbox) {
        return;
    }
    table_.at(square) = code;
    ++table_.Kol_figur;
    if (code == w_king) {
        table_.xywK = square;
    } else if (code == b_king) {
        table_.xybK = square;
    } else {
        table_.*bitboard_of(code) |= mask_of(square);
    }
}

void read_fen_board(std::string_view text, Table& table, FenView view) {
    FenBoardCursor cursor(table, view);
    for (const char character : text.substr(0, text.find(' '))) {
        cursor.take(character);
    }
}
