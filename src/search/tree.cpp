// SPDX-License-Identifier: MIT
// The recursive search below the root: one body for three kinds of node. Plain alpha-beta with full
// windows; a subtree is made smaller by the static cut and the null move alone, and deeper by
// checks and by pawns that reach the seventh rank.
#include "search/tree.h"

#include <limits>
#include <optional>

#include "board/geometry.h"
#include "board/side_traits.h"
#include "search/hash_table.h"
#include "search/node_steps.h"
#include "shell/game_record.h"

namespace {

using SearchFunction = std::int32_t (*)(Table&, std::int32_t, std::int32_t, std::int32_t);

/// What the three kinds of node may do, side by side.
struct MainNode {
    static constexpr bool remembers = true;      ///< repetition test, hash table, endgame tables
    static constexpr bool cuts_early = true;     ///< static cut and null move
    static constexpr bool extends_pawns = true;  ///< pawns that reach the seventh rank
    /// A hash entry that is shallower by this much or more gives no hash move.
    static constexpr std::int32_t hash_move_gap = std::numeric_limits<std::int32_t>::max();
    static constexpr SearchFunction after_extension = Table::search_extended;
    static constexpr SearchFunction otherwise = Table::search_main;
};

/// Straight after an extended move: no cut, so that the extension is not lost at once. A line of
/// nothing but checks goes to and fro between this kind and the normal one at one depth.
struct ExtendedNode {
    static constexpr bool remembers = true;
    static constexpr bool cuts_early = false;
    static constexpr bool extends_pawns = true;
    static constexpr std::int32_t hash_move_gap = 4;
    static constexpr SearchFunction after_extension = Table::search_main;
    static constexpr SearchFunction otherwise = Table::search_main;
};

/// Under a null move: a bare alpha-beta, which neither remembers nor cuts.
struct NullNode {
    static constexpr bool remembers = false;
    static constexpr bool cuts_early = false;
    static constexpr bool extends_pawns = false;
    static constexpr std::int32_t hash_move_gap = 0;
    static constexpr SearchFunction after_extension = Table::search_null;
    static constexpr SearchFunction otherwise = Table::search_null;
};

constexpr std::int32_t repetition_plies = 3;  ///< plies below this ask the game record

/// The static score of a node, worked out when it is first asked for.
class LazyScore {
  public:
    LazyScore(const Table& position, std::int32_t alpha, std::int32_t beta)
        : position_(position), alpha_(alpha), beta_(beta) {}

    std::int32_t operator()() {
        if (!score_) {
            score_ = Table::evaluate(position_, alpha_, beta_);
        }
        return *score_;
    }

  private:
    const Table& position_;
    std::int32_t alpha_;
    std::int32_t beta_;
    std::optional<std::int32_t> score_;
};

/// Near the horizon a quiet position that stands well above beta is not searched.
bool static_cut(std::int32_t depth, std::int32_t beta, LazyScore& static_score) {
    constexpr std::int32_t first_iteration = 3;
    constexpr std::int32_t deepest = 2;
    constexpr std::int32_t margin = 50;
    return iteration_depth >= first_iteration && depth <= deepest &&
           static_score() - margin >= beta;
}

/// Whether the side to move would stand above beta even if it passed. Nothing of the position but
/// the side changes, and the ply stays. A search that was abandoned under the null move gives a
/// score like any other.
bool null_move_cuts(Table& position, std::int32_t depth, std::int32_t beta,
                    LazyScore& static_score) {
    constexpr std::int32_t beta_ceiling = 3000;
    constexpr std::int32_t fewest_pieces = 2;
    if (beta >= beta_ceiling || count_pieces(position, position.side) < fewest_pieces) {
        return false;
    }
    if (depth < null_full_depth && static_score() < beta) {
        return false;
    }
    flip_side(position);
    const std::int32_t score =
        -Table::search_null(position, depth - null_reduction, -beta, 1 - beta);
    flip_side(position);
    return score >= beta;
}

/// A pawn that stands on its sixth rank, about to step or capture to the seventh.
bool is_pawn_to_seventh(const Table& position, Square from) {
    return (position.at(from) == w_pawn && SideTraits<white>::on_sixth_rank(from)) ||
           (position.at(from) == b_pawn && SideTraits<black>::on_sixth_rank(from));
}

/// The stop test of a node: the flag first, then the clock.
bool node_is_stopped() {
    return stop_flag == 1 || clock_stops_node();
}

void generate_for_node(const Table& position, MoveList& list, bool checked) {
    cur_moves = &list;
    if (checked) {
        gen_evasions(position, position.side);
    } else {
        gen_all(position, position.side);
    }
}

/// Result of the moves of a node.
struct LoopResult {
    enum class End { stopped, cut, finished } end;
    std::int32_t score;  ///< alpha as raised, or the cutting score
    std::int32_t legal;  ///< legal moves tried
    bool improved;       ///< a move raised alpha below beta
    Move best;           ///< the cutting move, or the last that raised alpha
};

template <class Rules>
LoopResult search_moves(Table& position, MoveList& list, std::int32_t depth, std::int32_t alpha,
                        std::int32_t beta) {
    LoopResult result{LoopResult::End::finished, alpha, 0, false, {}};
    while (list.count > 0) {
        const std::int32_t slot = lowest_slot(list);
        const Move move = list.move(slot);
        const bool pawn_extends =
            Rules::extends_pawns && is_pawn_to_seventh(position, move.posFrom);
        UndoRecord undo;
        make(position, move.posFrom, move.posTo, move.posInfo, undo);
        list.take_out(slot);
        if (!mover_is_safe(position)) {
            unmake(position, undo);
            continue;
        }
        current_line[line_slot(ply)] = move;
        ++result.legal;
        ++ply;
        flip_side(position);
        const bool extended = in_check(position, position.side) || pawn_extends;
        const std::int32_t score =
            extended ? -Rules::after_extension(position, depth, -beta, -result.score)
                     : -Rules::otherwise(position, depth - 1, -beta, -result.score);
        unmake(position, undo);
        flip_side(position);
        if (stop_flag != 0) {
            result.end = LoopResult::End::stopped;  // ply stays: the driver puts it right
            return result;
        }
        --ply;
        if (score <= result.score) {
            continue;
        }
        history_raise(move, depth);
        result.score = score;
        result.best = move;
        if (score >= beta) {
            history_lower_cut(move, depth);
            result.end = LoopResult::End::cut;
            return result;
        }
        copy_line_up(ply, move);
        result.improved = true;
    }
    return result;
}

/// Stores what the moves of a node gave, unless the walk along the previous line goes on.
void store_result(HashEntry& entry, const Table& position, std::int32_t depth,
                  const LoopResult& result) {
    if (follow_pv != 0) {
        return;
    }
    if (result.end == LoopResult::End::cut) {
        hash_store(entry, position, depth, hash_lower, result.score, &result.best);
    } else if (result.improved) {
        hash_store(entry, position, depth, hash_exact, result.score, &result.best);
    } else {
        hash_store(entry, position, depth, hash_upper, result.score, nullptr);
    }
}

template <class Rules>
std::int32_t search_node(Table& position, std::int32_t depth, std::int32_t alpha,
                         std::int32_t beta) {
    // Repetition: of the game's positions alone, and only near the root.
    if constexpr (Rules::remembers) {
        if (ply < repetition_plies && game_repeated_twice(position.side, position.Array.data())) {
            return 0;
        }
    }

    // Horizon: a side in check goes on as a full node.
    line_length(ply) = ply;
    if (ply >= ply_limit) {
        return Table::quiesce(position, alpha, beta);
    }
    bool checked = false;
    if (depth < 1) {
        checked = in_check(position, position.side);
        if (!checked) {
            return Table::quiesce(position, alpha, beta);
        }
    }
    ++TotalNodes;

    // Hash table. An entry deep enough that does not cut gives no hash move either: the move comes
    // from entries too shallow to cut alone.
    HashEntry& entry = hash_slot(position);
    bool hash_move_usable = false;
    if constexpr (Rules::remembers) {
        if (follow_pv == 0 && hash_hit(entry, position)) {
            if (entry.depth < depth) {
                hash_move_usable =
                    entry.has_move == 1 && depth - entry.depth < Rules::hash_move_gap;
            } else if (hash_cuts(entry, alpha, beta)) {
                return entry.score;
            }
        }
    }

    if (node_is_stopped()) {
        return alpha;
    }

    // Here the endgame tables will answer for nodes that remember, with fewer than six men.

    if (depth >= 1) {
        checked = in_check(position, position.side);
    }

    if constexpr (Rules::cuts_early) {
        if (!checked && position.capture_flag == 0) {
            LazyScore static_score(position, alpha, beta);
            if (static_cut(depth, beta, static_score) ||
                null_move_cuts(position, depth, beta, static_score)) {
                return beta;
            }
        }
    }

    // Moves.
    MoveList list;
    generate_for_node(position, list, checked);
    if (hash_move_usable) {
        score_moves_hash(position, list, entry.from, entry.to,
                         static_cast<PieceCode>(static_cast<std::int32_t>(entry.info)));
    } else {
        score_moves(position, list);
    }
    mark_old_line(list);
    const LoopResult result = search_moves<Rules>(position, list, depth, alpha, beta);
    if (result.end == LoopResult::End::stopped) {
        return result.score;
    }
    if (result.legal == 0) {
        return checked ? mated_here() : 0;
    }
    if constexpr (Rules::remembers) {
        store_result(entry, position, depth, result);
    }
    return result.score;
}

}  // namespace

std::int32_t count_pieces(const Table& position, Side side) {
    return side == white
               ? pop_count(position.WKnight | position.WBishop | position.WRook | position.WQuins)
               : pop_count(position.BKnight | position.BBishop | position.BRook | position.BQuins);
}

std::int32_t Table::search_main(Table& position, std::int32_t depth, std::int32_t alpha,
                                std::int32_t beta) {
    return search_node<MainNode>(position, depth, alpha, beta);
}

std::int32_t Table::search_extended(Table& position, std::int32_t depth, std::int32_t alpha,
                                    std::int32_t beta) {
    return search_node<ExtendedNode>(position, depth, alpha, beta);
}

std::int32_t Table::search_null(Table& position, std::int32_t depth, std::int32_t alpha,
                                std::int32_t beta) {
    return search_node<NullNode>(position, depth, alpha, beta);
}
