// SPDX-License-Identifier: MIT
// A word is a letter and a square. A small letter names a black man whatever the colour state; a
// capital one a man of the state's colour.
#include "shell/edit_command.h"

#include <optional>
#include <string>

#include "board/set_up.h"
#include "shell/engine_state.h"
#include "shell/position_text.h"

namespace {

/// The man that a small letter names: always a black one.
PieceCode black_man(char letter) {
    switch (letter) {
        case 'p': return b_pawn;
        case 'n': return b_knight;
        case 'b': return b_bishop;
        case 'r': return b_rook;
        case 'q': return b_queen;
        case 'k': return b_king;
        default: return off_board;
    }
}

/// The man that a capital letter names in the state of `colour`.
PieceCode man_of_state(char letter, Side colour) {
    const bool is_white = colour == white;
    switch (letter) {
        case 'P': return is_white ? w_pawn : b_pawn;
        case 'N': return is_white ? w_knight : b_knight;
        case 'B': return is_white ? w_bishop : b_bishop;
        case 'R': return is_white ? w_rook : b_rook;
        case 'Q': return is_white ? w_queen : b_queen;
        case 'K': return is_white ? w_king : b_king;
        default: return off_board;
    }
}

/// Puts a man on a square: mailbox, number of men and king square. A square that is no square is
/// mailbox entry 0, off the board.
void put_man(Table& table, PieceCode man, Square square) {
    table.at(square) = man;
    ++table.Kol_figur;
    if (man == w_king) {
        table.xywK = square;
    } else if (man == b_king) {
        table.xybK = square;
    }
}

void take_word(Table& table, const std::string& word, Side colour) {
    const char letter = word.front();
    const Square square = square_of_text(std::string_view(word).substr(1));
    PieceCode man = black_man(letter);
    if (man == off_board) {
        man = man_of_state(letter, colour);
    }
    if (man != off_board) {
        put_man(table, man, square);
    } else if (letter == '0') {
        table.at(square) = empty_square;  // the number of men stays
    }
}

}  // namespace

void run_edit(Table& table, WordReader& in) {
    engine.fifty_count = 0;
    engine.game_plies = 1;
    Side colour = white;
    while (const std::optional<std::string> word = in.word()) {
        if (equal_caseless(*word, "clear") || *word == "#") {
            clear_position(table);
        } else if (equal_caseless(*word, "c")) {
            colour = black;
        } else {
            take_word(table, *word, colour);
            if (equal_caseless(*word, "end") || *word == ".") {
                return;
            }
        }
    }
}
