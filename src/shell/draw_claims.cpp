// SPDX-License-Identifier: MIT
// Three occasions, each with its own order and words.
#include "shell/draw_claims.h"

#include <cstdlib>
#include <string_view>

#include "board/square_tables.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"

namespace {

constexpr std::string_view draw_by_repetition = "1/2-1/2 {Draw by repetition}";
constexpr std::string_view draw_by_fifty_at_go = "1/2-1/2 {50 moves}";
constexpr std::string_view draw_by_fifty = "1/2-1/2 {Draw by the 50 moves rule}";
constexpr std::string_view draw_by_material = "1/2-1/2 {Draw by insufficient material}";

constexpr std::int32_t fifty_limit = 100;  ///< half moves
constexpr std::int32_t mate_on_the_board = 600000;

/// Weight of a man in the material test.
std::int32_t material_weight(PieceCode code) {
    constexpr std::int32_t minor = 300;
    constexpr std::int32_t other = 500;
    switch (code) {
        case w_knight:
        case w_bishop:
        case b_knight:
        case b_bishop: return minor;
        case w_pawn:
        case w_rook:
        case w_queen:
        case b_pawn:
        case b_rook:
        case b_queen: return other;
        default: return 0;
    }
}

bool repeated_thrice(const Table& table, Side to_move) {
    return game_repeated_thrice(to_move, table.Array.data());
}

}  // namespace

bool material_is_insufficient(const Table& table, Square first_entry) {
    constexpr std::int32_t one_minor = 300;
    std::int32_t sum = 0;
    for (std::size_t i = at_square(first_entry); i < mailbox_size; ++i) {
        sum += material_weight(table.Array[i]);
    }
    return sum <= one_minor;
}

void count_fifty(const Table& table, Square from, Square to) {
    const PieceCode mover = table.at(from);
    if (is_pawn(mover) || table.at(to) != empty_square) {
        engine.fifty_count = 0;
    } else {
        ++engine.fifty_count;
    }
}

bool claim_before_go(const Table& table) {
    if (repeated_thrice(table, table.side)) {
        mirror(draw_by_repetition, end_line);
        return true;
    }
    if (engine.fifty_count >= fifty_limit) {
        mirror(draw_by_fifty_at_go, end_line);
        return true;
    }
    return false;
}

bool claim_after_user_move(const Table& table) {
    if (material_is_insufficient(table, 1)) {
        mirror(draw_by_material, end_line);  // the game goes on all the same
    }
    if (engine.fifty_count >= fifty_limit) {
        mirror(draw_by_fifty, end_line);
        return true;
    }
    if (repeated_thrice(table, table.side)) {
        mirror(draw_by_repetition, end_line);
        return true;
    }
    return false;
}

void claim_after_computer_move(const Table& table, Side opponent, std::int32_t score) {
    if (repeated_thrice(table, opponent)) {
        mirror(draw_by_repetition, end_line);
    } else if (engine.fifty_count >= fifty_limit && std::abs(score) != mate_on_the_board) {
        mirror(draw_by_fifty, end_line);
    }
    if (material_is_insufficient(table, 0)) {
        mirror(draw_by_material, end_line);
    }
}
