// SPDX-License-Identifier: MIT
// Of the operations only "bm " is known. It also ends the search for the en passant square.
#include "drivers/epd_line.h"

#include "board/set_up.h"
#include "shell/fen_board.h"
#include "shell/position_text.h"

namespace {

constexpr std::string_view best_move_operation = "bm ";
constexpr std::string_view kept_characters = "abcdefghknqrKQRBN12345678=";
constexpr std::size_t square_length = 2;

/// A line gives the square that the pawn skipped; the position keeps the square where it stands.
Square square_of_pushed_pawn(const Table& table, Square skipped) {
    Square square = skipped;
    if (table.at(square + step_down) == b_pawn) {
        square += step_down;
    }
    if (table.at(square + step_up) == w_pawn) {
        square += step_up;
    }
    return square;
}

/// The first two characters that name a square count, in whatever field they stand.
void find_en_passant(std::string_view fields, Table& table) {
    for (std::size_t i = 0; i + 1 < fields.size(); ++i) {
        const std::string_view rest = fields.substr(i);
        if (rest.starts_with(best_move_operation)) {
            return;
        }
        const Square square = square_of_text(rest.substr(0, square_length));
        if (square != 0) {
            table.ep_flag = 1;
            table.ep_square = square_of_pushed_pawn(table, square);
            return;
        }
    }
}

std::string kept_text(std::string_view word) {
    std::string kept;
    for (const char character : word) {
        if (kept_characters.find(character) != std::string_view::npos) {
            // Intended(equals-sign-twice): the lengths by which a move is judged count on it.
            kept.append(character == '=' ? 2 : 1, character);
        }
    }
    return kept;
}

}  // namespace

void set_epd_position(std::string_view line, Table& table) {
    clear_position(table);
    read_fen_board(line, table, FenView::as_written);
    const std::size_t blank = line.find(' ');
    const std::string_view fields =
        blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
    table.side = fields.starts_with('w') ? white : black;
    find_en_passant(fields, table);
}

std::vector<std::string> epd_solutions(std::string_view line) {
    std::vector<std::string> solutions;
    const std::size_t start = line.find(best_move_operation);
    if (start == std::string_view::npos) {
        return solutions;
    }
    std::string_view rest = line.substr(start + best_move_operation.size());
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        solutions.push_back(kept_text(rest.substr(0, end)));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return solutions;
}
