// SPDX-License-Identifier: MIT
// Capital letters serve for both colours, small ones for Black alone; so a black bishop on c3 meets
// the text of a pawn's bxc3.
#include "drivers/epd_solution.h"

#include <algorithm>

#include "board/square_tables.h"
#include "shell/position_text.h"

namespace {

// Lengths of kept texts. Signs for check and capture are gone, and a '=' stands twice.
constexpr std::size_t pawn_move = 2;          // e4
constexpr std::size_t man_or_capture = 3;     // Nf3, ed5
constexpr std::size_t with_origin = 4;        // Nbd7, R1d2
constexpr std::size_t promotion = 5;          // d8==Q
constexpr std::size_t capture_promotion = 6;  // ed8==Q

/// Whether a letter fits a man, or the piece that a pawn promotes to.
bool letter_fits(char letter, PieceCode man) {
    switch (letter) {
        case 'Q': return man == w_queen || man == b_queen;
        case 'R': return man == w_rook || man == b_rook;
        case 'B': return man == w_bishop || man == b_bishop;
        case 'N': return man == w_knight || man == b_knight;
        case 'K': return man == w_king || man == b_king;
        case 'q': return man == b_queen;
        case 'r': return man == b_rook;
        case 'b': return man == b_bishop;
        case 'n': return man == b_knight;
        case 'k': return man == b_king;
        default: return false;
    }
}

/// Whether `text` from character `at` on is the name of a square, as far as that reaches.
bool names_square(std::string_view text, std::size_t at, Square square) {
    return text.substr(at, 2) == square_names[at_square(square)];
}

}  // namespace

bool is_solution(std::string_view text, const Table& table, const Move& move) {
    const Square from = move.posFrom;
    const PieceCode man = table.at(from);
    switch (text.size()) {
        case pawn_move: return names_square(text, 0, move.posTo) && is_pawn(man);
        case man_or_capture:
            return names_square(text, 1, move.posTo) &&
                   (letter_fits(text[0], man) || (is_on_file(from, text[0]) && is_pawn(man)));
        case with_origin:
            return names_square(text, 2, move.posTo) && letter_fits(text[0], man) &&
                   (is_on_file(from, text[1]) || is_on_rank(from, text[1]));
        case promotion:
            return letter_fits(text[4], move.posInfo) && names_square(text, 0, move.posTo) &&
                   is_pawn(man);
        case capture_promotion:
            return letter_fits(text[5], move.posInfo) && names_square(text, 1, move.posTo) &&
                   is_pawn(man) && is_on_file(from, text[0]);
        default: return false;
    }
}

bool is_solved(const std::vector<std::string>& solutions, const Table& table, const Move& move) {
    return std::any_of(solutions.begin(), solutions.end(),
                       [&](const std::string& text) { return is_solution(text, table, move); });
}
