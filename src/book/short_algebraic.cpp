// SPDX-License-Identifier: MIT
// The colour of a man is never compared: the list holds the moves of one side alone.
#include "book/short_algebraic.h"

#include "shell/position_text.h"

namespace {

constexpr std::size_t pawn_move = 2;       // e4
constexpr std::size_t man_or_capture = 3;  // Nf3, ed5
constexpr std::size_t with_origin = 4;     // Nbd2, R1e2

/// Whether a capital letter names the kind of a man, of either colour.
bool is_man_of_letter(char letter, PieceCode man) {
    switch (letter) {
        case 'N': return man == w_knight || man == b_knight;
        case 'B': return man == w_bishop || man == b_bishop;
        case 'R': return man == w_rook || man == b_rook;
        case 'Q': return man == w_queen || man == b_queen;
        case 'K': return man == w_king || man == b_king;
        default: return false;
    }
}

/// Whether the move that a word means can start from a square.
bool can_start_from(Square from, std::string_view word, const Table& table) {
    const PieceCode man = table.at(from);
    switch (word.size()) {
        case pawn_move: return is_pawn(man);
        case man_or_capture:
            return is_man_of_letter(word[0], man) || (is_pawn(man) && is_on_file(from, word[0]));
        case with_origin:
            return is_man_of_letter(word[0], man) &&
                   (is_on_file(from, word[1]) || is_on_rank(from, word[1]));
        default: return false;
    }
}

}  // namespace

bool is_as_long_as_a_move(std::string_view word) {
    return word.size() >= pawn_move && word.size() <= with_origin;
}

std::string_view target_of(std::string_view word) {
    return word.substr(word.size() - pawn_move);
}

std::int32_t find_short_algebraic(std::string_view word, const Table& table,
                                  const MoveList& moves) {
    const Square target = square_of_text(target_of(word));
    for (std::int32_t slot = 1; slot <= moves.count; ++slot) {
        const Move& move = moves.move(slot);
        if (move.posTo == target && can_start_from(move.posFrom, word, table)) {
            return slot;
        }
    }
    return 0;
}
