// SPDX-License-Identifier: MIT
// One iteration at the root. Every move is made on a copy of the position, so that an abandoned
// search leaves nothing behind; the moves are tried in list order.
#include "search/root.h"

#include <algorithm>
#include <utility>

#include "search/node_steps.h"
#include "shell/game_record.h"
#include "shell/log.h"

std::array<std::int32_t, move_list_slots> root_scores{};

namespace {

/// History counts three times as much at the root as below it.
constexpr std::int32_t root_history_weight = 3;

std::int32_t& score_of_slot(std::int32_t slot) {
    return root_scores[static_cast<std::size_t>(slot)];
}

/// The depth for a move: at depth 1 a check is searched one ply deeper. That is the root's only
/// extension.
std::int32_t depth_of_move(const Table& after_move, std::int32_t depth) {
    return depth == 1 && in_check(after_move, after_move.side) ? depth + 1 : depth;
}

/// Searches one root move whose position is `copy`, with the mover still to move.
std::int32_t search_root_move(Table& copy, const Move& move, std::int32_t depth, std::int32_t alpha,
                              std::int32_t beta) {
    current_line[line_slot(ply)] = move;
    ++ply;
    flip_side(copy);
    const std::int32_t score =
        -Table::search_main(copy, depth_of_move(copy, depth) - 1, -beta, -alpha);
    --ply;
    return score;
}

}  // namespace

void reset_root_scores(std::int32_t count) {
    for (std::int32_t slot = 1; slot <= count; ++slot) {
        score_of_slot(slot) = 0;
    }
}

void sort_root_list(MoveList& list) {
    for (std::int32_t pass = 1; pass <= list.count; ++pass) {
        bool swapped = false;
        for (std::int32_t slot = 1; slot <= list.count - pass; ++slot) {
            if (score_of_slot(slot) < score_of_slot(slot + 1)) {
                std::swap(score_of_slot(slot), score_of_slot(slot + 1));
                std::swap(list.move(slot), list.move(slot + 1));
                swapped = true;
            }
        }
        if (!swapped) {
            return;
        }
    }
}

std::int32_t Table::search_root(const Table& position, std::int32_t depth, std::int32_t alpha,
                                std::int32_t beta, const MoveList& list) {
    ++TotalNodes;
    if (time_is_up()) {
        stop_flag = 1;
        return alpha;
    }
    line_length(ply) = ply;
    const bool checked = in_check(position, position.side);
    std::int32_t legal = 0;
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        if (time_is_up()) {
            stop_flag = 1;
            return alpha;
        }
        const Move move = list.move(slot);
        Table copy = position;
        make_plain(copy, move.posFrom, move.posTo, move.posInfo);
        if (game_repeated_twice(copy.side ^ 1, copy.Array.data())) {
            score_of_slot(slot) = 0;
            if (alpha < 0) {
                copy_line_up(ply, move);
                alpha = 0;  // even if beta is at or below 0: no cut here
            }
        } else if (!mover_is_safe(copy)) {
            mirror("Eto kogda-nibud rabotaet?", end_line);
            score_of_slot(slot) = -mate_base;
        } else {
            ++legal;
            const std::int32_t score = search_root_move(copy, move, depth, alpha, beta);
            score_of_slot(slot) = score;
            if (score > alpha) {
                history_raise(move, root_history_weight * depth);
                if (score >= beta) {
                    history_lower_cut(move, root_history_weight * depth);
                    return beta;
                }
                alpha = score;
                copy_line_up(ply, move);
            }
        }
    }
    if (legal > 0) {
        return alpha;
    }
    return checked ? mated_here() : 0;
}
