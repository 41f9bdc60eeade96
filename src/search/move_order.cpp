// SPDX-License-Identifier: MIT
// Rows are the man that moves, columns the man taken: king, queen, rook, knight, bishop, pawn.
#include "search/move_order.h"

#include <algorithm>
#include <bit>

#include "platform/int32_math.h"

HistoryTable history_good;
HistoryTable history_cut;

namespace {

constexpr std::size_t order_men = 6;
using OrderTable = std::array<std::array<std::int32_t, order_men>, order_men>;

// clang-format off
/// The victim counts first, among equal victims the cheaper attacker goes first.
/// Intended(knight-takes-bishop): 26, behind all other captures of a minor piece.
constexpr OrderTable capture_order = {{
//    K   Q   R   N   B   P
    { 6, 12, 18, 24, 24, 36},  // king
    { 5, 11, 17, 23, 23, 35},  // queen
    { 4, 10, 16, 22, 22, 34},  // rook
    { 2,  8, 14, 20, 26, 32},  // knight
    { 2,  8, 14, 20, 20, 32},  // bishop
    { 1,  7, 13, 19, 19, 31},  // pawn
}};

/// Whether a capture goes by the table above when no hash move is in play. A queen that takes a pawn
/// does not: it is mostly a blunder or nothing special, and goes by history.
constexpr OrderTable capture_by_table = {{
//    K  Q  R  N  B  P
    { 1, 1, 1, 1, 1, 1},  // king
    { 1, 1, 1, 1, 1, 0},  // queen
    { 1, 1, 1, 1, 1, 1},  // rook
    { 1, 1, 1, 1, 1, 1},  // knight
    { 1, 1, 1, 1, 1, 1},  // bishop
    { 1, 1, 1, 1, 1, 1},  // pawn
}};

/// Row or column by the number of a code's kind bit: pawn, knight, bishop, rook, queen, king of
/// White, then of Black.
constexpr std::array<std::uint8_t, 2 * order_men> order_of_kind =
    {5, 3, 4, 2, 1, 0, 5, 3, 4, 2, 1, 0};
// clang-format on

/// Row or column of a man. A node's lists hold men alone; what is none counts as a pawn.
std::size_t order_index(PieceCode code) {
    const auto kind = static_cast<std::size_t>(std::countr_zero(code));
    return kind < order_of_kind.size() ? order_of_kind[kind] : order_of_kind[0];
}

std::int32_t& entry_of(HistoryTable& table, const Move& move) {
    return table[static_cast<std::size_t>(move.posFrom)][static_cast<std::size_t>(move.posTo)];
}

/// A move that has ever cut goes by its cuts alone, one that has not by what it raised alpha.
std::int32_t history_score(const Move& move) {
    const std::int32_t cut = entry_of(history_cut, move);
    return cut < history_never_cut ? cut
                                   : wrap_sub(history_never_cut, entry_of(history_good, move));
}

template <bool AllByTable>
std::int32_t score_move(const Table& position, const Move& move) {
    const PieceCode victim = position.at(move.posTo);
    if (victim == empty_square) {
        return history_score(move);
    }
    const std::size_t row = order_index(position.at(move.posFrom));
    const std::size_t column = order_index(victim);
    if (!AllByTable && capture_by_table[row][column] == 0) {
        return history_score(move);
    }
    return capture_order[row][column];
}

template <bool AllByTable>
void score_all(const Table& position, MoveList& list) {
    for (std::int32_t i = 1; i <= list.count; ++i) {
        list.score(i) = score_move<AllByTable>(position, list.move(i));
    }
}

}  // namespace

void history_reset() {
    for (Mailbox<std::int32_t>& row : history_cut) {
        row.fill(history_never_cut);
    }
    for (Mailbox<std::int32_t>& row : history_good) {
        row.fill(0);
    }
}

void history_raise(const Move& move, std::int32_t by) {
    std::int32_t& entry = entry_of(history_good, move);
    entry = wrap_add(entry, by);
}

void history_lower_cut(const Move& move, std::int32_t by) {
    std::int32_t& entry = entry_of(history_cut, move);
    entry = wrap_sub(entry, by);
}

void score_moves(const Table& position, MoveList& list) {
    score_all<false>(position, list);
}

void score_moves_hash(const Table& position, MoveList& list, Square from, Square to,
                      PieceCode info) {
    score_all<true>(position, list);
    const Move hash_move{from, to, info};
    for (std::int32_t i = 1; i <= list.count; ++i) {
        if (list.move(i) == hash_move) {
            list.score(i) = hash_move_score;
            return;
        }
    }
}
