// SPDX-License-Identifier: MIT
// Kings and pawns alone: square tables, the rule of the square for passed pawns, the kings.
#include <cstdlib>

#include "board/geometry.h"
#include "eval/eval_side.h"
#include "eval/passed_pawn.h"
#include "eval/pawn_cache.h"

namespace {

constexpr std::int32_t out_of_reach = 350;

/// Whether the enemy king can catch a passed pawn. Neither the side to move nor the first double
/// step is looked at.
template <Side S>
bool is_in_the_square(const Table& table, Square pawn) {
    using Own = EvalSide<S>;
    constexpr std::int32_t row_gap_limit = 2;
    constexpr std::int32_t rows_of_the_square = 9;
    const std::size_t king = at_square(table.*SideTraits<Own::enemy>::king_square);
    const std::int32_t row = row_of[at_square(pawn)];
    const std::int32_t row_gap = Own::sign * (rank_of[king] - row);
    const std::int32_t file_gap = std::abs(file_of[king] - file_of[at_square(pawn)]);
    return row_gap < row_gap_limit && file_gap < rows_of_the_square - Own::advance(row);
}

template <Side S>
std::int32_t pawns(const Table& table, const PawnEntry& entry) {
    using Own = EvalSide<S>;
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::pawns; men != 0;) {
        const Square square = take_first_square(men);
        sum += Own::pst_pawn[at_square(square)];
        const auto file = static_cast<std::size_t>(file_of[at_square(square)]);
        if (is_passed<S>(entry, file, row_of[at_square(square)])) {
            sum += is_in_the_square<S>(table, square) ? -blocked_passed_penalty<S>(table, square)
                                                      : out_of_reach;
        }
    }
    return sum;
}

}  // namespace

std::int32_t Table::evaluate_pawn_ending(const Table& position) {
    const PawnEntry& entry = pawn_entry_of(position);
    std::int32_t score = pawns<white>(position, entry) - pawns<black>(position, entry);
    if (pop_count(position.WPawns) + pop_count(position.BPawns) == 1) {
        Bitboard pawn = position.WPawns | position.BPawns;
        score += lone_pawn_kings(position, take_first_square(pawn));
    }
    score += pst_WKing_half[at_square(position.xywK)] - pst_BKing_half[at_square(position.xybK)];
    score += entry.pawn_score;
    return position.side == white ? score : -score;
}
