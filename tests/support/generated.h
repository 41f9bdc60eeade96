// SPDX-License-Identifier: MIT
// What a generator gives, as lists that tests can compare.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"
#include "support/position.h"

using Generator = void (*)(const Table&, Side);

/// The moves of a generator for the side to move, in the order of the list.
[[nodiscard]] inline std::vector<Move> generated(Generator generator, const Table& table) {
    MoveList list;
    cur_moves = &list;
    generator(table, table.side);
    cur_moves = nullptr;
    return {list.moves.begin() + 1, list.moves.begin() + 1 + list.count};
}

/// The same as one line of text: moves with a promotion letter, separated by blanks.
[[nodiscard]] inline std::string move_texts(const std::vector<Move>& moves) {
    std::string text;
    for (const Move& move : moves) {
        text += text.empty() ? "" : " ";
        text += move_text(move.posFrom, move.posTo, move.posInfo);
    }
    return text;
}

[[nodiscard]] inline std::string generated_text(Generator generator, const Table& table) {
    return move_texts(generated(generator, table));
}

/// Whether the move leaves the mover's king safe.
[[nodiscard]] inline bool leaves_king_safe(const Table& table, const Move& move) {
    Table copy = table;
    make_plain(copy, move.posFrom, move.posTo, move.posInfo);
    return !in_check(copy, copy.side);
}

/// The moves that leave the mover's king safe, as sorted text.
[[nodiscard]] inline std::vector<std::string> sorted_legal(const std::vector<Move>& moves,
                                                           const Table& table) {
    std::vector<std::string> texts;
    for (const Move& move : moves) {
        if (leaves_king_safe(table, move)) {
            texts.push_back(move_text(move.posFrom, move.posTo, move.posInfo));
        }
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}
