// SPDX-License-Identifier: MIT
// A lookup is one pass over the lines of a side. A line drops out at the ply where it ends, differs
// from the game, or holds what is no move.
#include "book/book_move.h"

#include <cstring>
#include <optional>
#include <string_view>

#include "book/book_lines.h"
#include "platform/random.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "shell/position_text.h"

std::array<Move, book_candidates> book_moves{};
std::array<std::int32_t, book_candidates> book_weights{};

namespace {

constexpr std::size_t move_length = 4;  ///< two squares, such as e2e4
constexpr std::size_t square_length = 2;
constexpr std::int32_t last_candidate = static_cast<std::int32_t>(book_candidates) - 1;

std::size_t index(std::int32_t candidate) {
    return static_cast<std::size_t>(candidate);
}

bool is_file(char letter) {
    return letter >= 'a' && letter <= 'h';
}

bool is_rank(char digit) {
    return digit >= '1' && digit <= '8';
}

/// The move that a row gives after `played` characters of the game, or none.
std::optional<Move> move_in_row(const BookRow& row, const std::string& game, std::size_t played) {
    if (played + move_length > row.size() || std::strncmp(game.c_str(), row.data(), played) != 0) {
        return std::nullopt;
    }
    const std::string_view text(row.data() + played, move_length);
    if (!is_file(text[0]) || !is_rank(text[1]) || !is_file(text[2]) || !is_rank(text[3])) {
        return std::nullopt;
    }
    return Move{square_of_text(text.substr(0, square_length)),
                square_of_text(text.substr(square_length)), 0};
}

/// Fills the tables of candidates; gives the index of the last one, -1 if there is none.
std::int32_t collect_candidates(const BookLines& lines, std::int32_t count) {
    const std::size_t played = move_length * static_cast<std::size_t>(engine.game_plies);
    std::int32_t last = -1;
    for (std::int32_t row = 0; row < count && last < last_candidate; ++row) {
        const std::optional<Move> move = move_in_row(lines[index(row)], engine.game_line, played);
        if (move && BookSeen(last, move->posFrom, move->posTo) != 0) {
            ++last;
            book_moves[index(last)] = *move;
            book_weights[index(last)] = 1;
        }
    }
    return last;
}

/// Candidates of the book for the side that plays `side`.
std::int32_t collect_for(Side side) {
    return side == white ? collect_candidates(book_white_lines, book_white_count)
                         : collect_candidates(book_black_lines, book_black_count);
}

void print_candidates(std::int32_t last) {
    for (std::int32_t i = 0; i <= last; ++i) {
        const Move& move = book_moves[index(i)];
        mirror(i + 1, " ");
        print_move(move.posFrom, move.posTo, move.posInfo);
        mirror(book_weights[index(i)], " ", end_line);
    }
}

/// The candidate that a number from 1 to the sum of all weights falls on.
const Move& candidate_at(std::int32_t number) {
    std::size_t i = 0;
    std::int32_t sum = book_weights[i];
    while (sum < number) {
        ++i;
        sum += book_weights[i];
    }
    return book_moves[i];
}

std::int32_t sum_of_weights(std::int32_t last) {
    std::int32_t sum = 0;
    for (std::int32_t i = 0; i <= last; ++i) {
        sum += book_weights[index(i)];
    }
    return sum;
}

}  // namespace

Move BookMove() {
    const std::int32_t last = collect_for(engine.root_side);
    if (last < 0) {
        engine.book_out = true;
        return {};
    }
    print_candidates(last);
    return candidate_at(next_random() % sum_of_weights(last) + 1);
}

void BookHint() {
    // `root_side` is the side that the computer played last, so its opponent asks.
    const std::int32_t last = collect_for(engine.root_side == white ? black : white);
    if (last < 0) {
        return;
    }
    mirror("Hint: ");
    print_move(book_moves[0].posFrom, book_moves[0].posTo, book_moves[0].posInfo);
    mirror(end_line);
}

std::int32_t BookSeen(std::int32_t last, Square from, Square to) {
    for (std::int32_t i = 0; i <= last; ++i) {
        const Move& move = book_moves[index(i)];
        if (move.posFrom == from && move.posTo == to) {
            ++book_weights[index(i)];
            return 0;
        }
    }
    return 1;
}

void reset_book_move() {
    book_moves = {};
    book_weights = {};
}
