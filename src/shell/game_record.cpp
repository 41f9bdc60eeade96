// SPDX-License-Identifier: MIT
// Whole boards, compared word by word. Room for the longest games is taken at once; a longer one
// makes the record grow.
#include "shell/game_record.h"

#include <algorithm>
#include <array>
#include <vector>

std::int32_t game_top = -1;

namespace {

using GameBoard = std::array<std::uint32_t, game_board_words>;

constexpr std::size_t usual_rows = 500;

std::vector<GameBoard> game_boards;
std::vector<std::uint32_t> game_sides;

std::int32_t times_stored(std::uint32_t side, const std::uint32_t* board) {
    std::int32_t times = 0;
    const std::size_t rows = static_cast<std::size_t>(game_top) + 1;
    for (std::size_t row = 0; row < rows; ++row) {
        if (game_sides[row] == side &&
            std::equal(game_boards[row].begin(), game_boards[row].end(), board)) {
            ++times;
        }
    }
    return times;
}

}  // namespace

void game_reset() {
    game_top = -1;
}

void game_store(std::uint32_t side, const std::uint32_t* board) {
    ++game_top;
    const std::size_t row = static_cast<std::size_t>(game_top);
    if (row >= game_boards.size()) {
        const std::size_t rows = std::max(usual_rows, 2 * game_boards.size());
        game_boards.resize(rows);
        game_sides.resize(rows);
    }
    std::copy_n(board, game_board_words, game_boards[row].begin());
    game_sides[row] = side;
}

bool game_repeated_thrice(std::uint32_t side, const std::uint32_t* board) {
    constexpr std::int32_t times_of_a_claim = 3;
    return times_stored(side, board) >= times_of_a_claim;
}

bool game_repeated_twice(std::uint32_t side, const std::uint32_t* board) {
    constexpr std::int32_t times_before_the_third = 2;
    return times_stored(side, board) >= times_before_the_third;
}
