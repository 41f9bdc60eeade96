// SPDX-License-Identifier: MIT
// The principal-variation table. A ply beyond it keeps no line.
#include "board/search_line.h"

#include <algorithm>

std::int32_t ply = 0;
std::uint32_t TotalNodes = 0;
std::array<std::array<Move, line_rows>, line_rows> vetka{};
std::array<std::int32_t, line_rows + 1> length_vetka{};

void copy_line_up(std::int32_t at_ply, const Move& move) {
    if (at_ply + 1 >= line_rows) {
        return;
    }
    const std::size_t row = line_slot(at_ply);
    vetka[row][row] = move;
    const std::int32_t length = line_length(at_ply + 1);
    const std::size_t end = static_cast<std::size_t>(std::min(length, line_rows));
    for (std::size_t column = row + 1; column < end; ++column) {
        vetka[row][column] = vetka[row + 1][column];
    }
    line_length(at_ply) = length;
}

void reset_search_line() {
    ply = 0;
    TotalNodes = 0;
    vetka = {};
    length_vetka = {};
}
