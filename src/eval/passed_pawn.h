// SPDX-License-Identifier: MIT
// Passed pawns and lone pawns: tests that the full evaluation, the pawn ending and the pawn
// structure share.
#pragma once

#include <cstdlib>

#include "board/square_tables.h"
#include "eval/eval_side.h"

inline constexpr std::int32_t blocked_passed_weight = 7;

/// Whether no enemy pawn stands strictly ahead of a pawn of side S on its file `f` or a
/// neighbouring one; `row` is the pawn's.
template <Side S>
[[nodiscard]] inline bool is_passed(const PawnEntry& entry, std::size_t f, std::int32_t row) {
    const FileCounts& rear = entry.*EvalSide<SideTraits<S>::enemy>::rear;
    if constexpr (S == white) {
        return rear[f - 1] >= row && rear[f] >= row && rear[f + 1] >= row;
    } else {
        return rear[f - 1] <= row && rear[f] <= row && rear[f + 1] <= row;
    }
}

/// Penalty for a passed pawn on `square` whose way is barred: the first man ahead is an enemy. 0 if
/// it is an own man or there is none. A positive number, for the pawn's side to lose.
template <Side S>
[[nodiscard]] inline std::int32_t blocked_passed_penalty(const Table& table, Square square) {
    using Own = EvalSide<S>;
    Square ahead = square + Own::forward;
    while (table.at(ahead) == empty_square) {
        ahead += Own::forward;
    }
    if ((table.at(ahead) & SideTraits<Own::enemy>::colour_bit) == 0) {
        return 0;
    }
    return Own::advance(row_of[at_square(square)]) * blocked_passed_weight;
}

/// The kings' distances from the only pawn on the board: White's squares are taken off, Black's
/// added. White's view. Intended(lone-pawn-same-sign): the signs are the same for a black pawn.
[[nodiscard]] inline std::int32_t lone_pawn_kings(const Table& table, Square pawn) {
    const auto squared_distance = [&](Square king) {
        const std::int32_t files = file_of[at_square(king)] - file_of[at_square(pawn)];
        const std::int32_t ranks = rank_of[at_square(king)] - rank_of[at_square(pawn)];
        return files * files + ranks * ranks;
    };
    return squared_distance(table.xybK) - squared_distance(table.xywK);
}
