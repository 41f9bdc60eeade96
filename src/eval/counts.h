// SPDX-License-Identifier: MIT
// Men by kind, counted once for each evaluation.
#pragma once

#include "board/geometry.h"
#include "board/table.h"

struct MenCounts {
    std::int32_t w_rooks, b_rooks;
    std::int32_t w_queens, b_queens;
    std::int32_t w_minors, b_minors;  ///< knights and bishops
    std::int32_t w_pawns, b_pawns;
    std::int32_t w_weight, b_weight;  ///< 3 a minor, 5 a rook, 10 a queen
    std::int32_t w_pieces, b_pieces;  ///< minors, rooks and queens
};

[[nodiscard]] inline MenCounts count_men(const Table& table) {
    constexpr std::int32_t minor_weight = 3;
    constexpr std::int32_t rook_weight = 5;
    constexpr std::int32_t queen_weight = 10;
    MenCounts men{};
    men.w_rooks = pop_count(table.WRook);
    men.b_rooks = pop_count(table.BRook);
    men.w_queens = pop_count(table.WQuins);
    men.b_queens = pop_count(table.BQuins);
    men.w_minors = pop_count(table.WKnight | table.WBishop);
    men.b_minors = pop_count(table.BKnight | table.BBishop);
    men.w_pawns = pop_count(table.WPawns);
    men.b_pawns = pop_count(table.BPawns);
    men.w_weight =
        minor_weight * men.w_minors + rook_weight * men.w_rooks + queen_weight * men.w_queens;
    men.b_weight =
        minor_weight * men.b_minors + rook_weight * men.b_rooks + queen_weight * men.b_queens;
    men.w_pieces = men.w_rooks + men.w_queens + men.w_minors;
    men.b_pieces = men.b_rooks + men.b_queens + men.b_minors;
    return men;
}
