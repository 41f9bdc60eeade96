// SPDX-License-Identifier: MIT
// The quiescence search: stand pat, then captures and promotions, or all evasions in check. It
// reads the hash table but never writes it, and leaves the history alone.
#include "search/hash_table.h"
#include "search/node_steps.h"

namespace {

/// Entries of nodes in check at the horizon, at depth 0 or below, say too little.
constexpr std::int8_t least_hash_depth = 1;

/// Searches the moves of the list, each as far as the position is quiet.
std::int32_t search_unquiet_moves(Table& position, MoveList& list, bool checked, std::int32_t alpha,
                                  std::int32_t beta) {
    std::int32_t legal = 0;
    while (list.count > 0) {
        const std::int32_t slot = lowest_slot(list);
        const Move move = list.move(slot);
        UndoRecord undo;
        make(position, move.posFrom, move.posTo, move.posInfo, undo);
        hash_prefetch(position);
        list.take_out(slot);
        if (!mover_is_safe(position)) {
            unmake(position, undo);
            continue;
        }
        current_line[line_slot(ply)] = move;
        ++ply;
        ++legal;
        line_length(ply) = ply;
        if (ply >= ply_limit) {
            // Intended(quiesce-ply-limit): the move stays on the board and the ply stays raised.
            // Only a line of 69 plies gets here, and the root throws its copy of the position away.
            return Table::evaluate(position, alpha, beta);
        }
        flip_side(position);
        const std::int32_t score = -Table::quiesce(position, -beta, -alpha);
        unmake(position, undo);
        flip_side(position);
        --ply;
        if (score <= alpha) {
            continue;
        }
        if (score >= beta) {
            return beta;
        }
        alpha = score;
        copy_line_up(ply, move);
    }
    return legal == 0 && checked ? mated_here() : alpha;
}

}  // namespace

std::int32_t Table::quiesce(Table& position, std::int32_t alpha, std::int32_t beta) {
    ++TotalNodes;
    if (clock_stops_node()) {
        return alpha;
    }

    // Stand pat, in check as well.
    const std::int32_t stand_pat = evaluate(position, alpha, beta);
    if (stand_pat > alpha) {
        if (stand_pat >= beta) {
            return stand_pat;
        }
        alpha = stand_pat;
    }

    const bool checked = in_check(position, position.side);
    const HashEntry& entry = hash_slot(position);
    if (hash_hit(entry, position) && entry.depth >= least_hash_depth &&
        hash_cuts(entry, alpha, beta)) {
        return entry.score;
    }
    MoveList list;
    cur_moves = &list;
    if (checked) {
        gen_evasions(position, position.side);
    } else {
        gen_captures(position, position.side);
    }
    score_moves(position, list);
    mark_old_line(list);
    return search_unquiet_moves(position, list, checked, alpha, beta);
}
