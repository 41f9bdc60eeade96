// SPDX-License-Identifier: MIT
// The road of a move from the interface: squares, letter, legal list, board, record, claims,
// answer.
#include "shell/move_input.h"

#include <optional>

#include "board/make.h"
#include "shell/draw_claims.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/position_text.h"

namespace {

constexpr std::size_t shortest_move = 4;
constexpr std::size_t longest_move = 5;

/// The code that a promotion letter, in either case, names for a side; 0 for any other character.
PieceCode promotion_of_letter(char letter, Side side) {
    const bool is_white = side == white;
    switch (letter) {
        case 'q':
        case 'Q': return is_white ? w_queen : b_queen;
        case 'r':
        case 'R': return is_white ? w_rook : b_rook;
        case 'b':
        case 'B': return is_white ? w_bishop : b_bishop;
        case 'n':
        case 'N': return is_white ? w_knight : b_knight;
        default: return 0;
    }
}

/// The move that a word names. On a promotion the typed letter stands, also when there is none: the
/// board then reports it. On any other move a letter is dropped.
std::optional<Move> find_move(const MoveList& legal, std::string_view word, Side side) {
    if (word.size() != shortest_move && word.size() != longest_move) {
        return std::nullopt;
    }
    Move move{square_of_text(word.substr(0, 2)), square_of_text(word.substr(2, 2)), 0};
    if (word.size() == longest_move) {
        move.posInfo = promotion_of_letter(word.back(), side);
    }
    for (std::int32_t i = 1; i <= legal.count; ++i) {
        const Move& entry = legal.move(i);
        if (entry.posFrom == move.posFrom && entry.posTo == move.posTo) {
            if (w_figure(entry.posInfo) == 0 && b_figure(entry.posInfo) == 0) {
                move.posInfo = entry.posInfo;
            }
            return move;
        }
    }
    return std::nullopt;
}

}  // namespace

bool play_move_word(Table& table, const MoveList& legal, std::string_view word) {
    const std::optional<Move> move = find_move(legal, word, table.side);
    if (!move) {
        return false;
    }
    count_fifty(table, move->posFrom, move->posTo);
    make_plain(table, move->posFrom, move->posTo, move->posInfo);
    ++engine.game_plies;
    engine.game_line += square_names[static_cast<std::size_t>(move->posFrom)];
    engine.game_line += square_names[static_cast<std::size_t>(move->posTo)];
    table.side ^= 1;
    game_store(table.side, table.Array.data());
    if (!engine.force_mode && !claim_after_user_move(table)) {
        let_computer_move(table);
    }
    return true;
}

void let_computer_move(Table& table) {
    table.Mashine_chod();
    table.side ^= 1;
}
