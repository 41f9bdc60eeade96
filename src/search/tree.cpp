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
#include "tb/search_probe.h"

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
        if (!known_) {
            score_ = Table::evaluate(position_, alpha_, beta_);
            known_ = true;
        }
        return score_;
    }

  private:
    const Table& position_;
    std::int32_t alpha_;
    std::int32_t beta_;
    std::int32_t score_ = 0;
    bool known_ = false;
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
        hash_prefetch(position);
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

/// Stores what the moves of a node gave.
void store_result(HashEntry& entry, const Table& position, std::int32_t depth,
                  const LoopResult& result) {
    if (result.end == LoopResult::End::cut) {
        hash_store(entry, position, depth, hash_lower, result.score, &result.best);
    } else if (result.improved) {
        hash_store(entry, position, depth, hash_exact, result.score, &result.best);
    } else {
        hash_store(entry, position, depth, hash_upper, result.score, nullptr);
    }
}

/// Whether the position has stood twice in the game, asked near the root alone; the search's own
/// line is not looked at.
bool is_repetition(const Table& position) {
    return ply < repetition_plies && game_repeated_twice(position.side, position.Array.data());
}

/// Whether quiescence takes over: at the limit of plies, or at the horizon with a safe king. A side
/// in check at the horizon goes on as a full node. Works `checked` out only if it needs to.
bool is_horizon(const Table& position, std::int32_t depth, bool& checked) {
    if (ply >= ply_limit) {
        return true;
    }
    if (depth >= 1) {
        return false;
    }
    checked = in_check(position, position.side);
    return !checked;
}

/// What the hash table says of a node: its score, or whether its move may be tried first.
struct HashAnswer {
    bool cuts = false;
    bool move_usable = false;
};

/// Asks the node's slot. An entry deep enough that does not cut gives no move either: the hash move
/// comes from entries too shallow to cut alone.
template <class Rules>
HashAnswer ask_hash(const HashEntry& entry, const Table& position, std::int32_t depth,
                    std::int32_t alpha, std::int32_t beta) {
    if (follow_pv != 0 || !hash_hit(entry, position)) {
        return {};
    }
    if (entry.depth < depth) {
        return {false, entry.has_move == 1 && depth - entry.depth < Rules::hash_move_gap};
    }
    return {hash_cuts(entry, alpha, beta), false};
}

/// Fills the node's list and scores it.
void prepare_moves(const Table& position, MoveList& list, bool checked,
                   const HashEntry* with_move) {
    cur_moves = &list;
    if (checked) {
        gen_evasions(position, position.side);
    } else {
        gen_all(position, position.side);
    }
    if (with_move != nullptr) {
        score_moves_hash(position, list, with_move->from, with_move->to,
                         static_cast<PieceCode>(static_cast<std::int32_t>(with_move->info)));
    } else {
        score_moves(position, list);
    }
    mark_old_line(list);
}

template <class Rules>
std::int32_t search_node(Table& position, std::int32_t depth, std::int32_t alpha,
                         std::int32_t beta) {
    if (Rules::remembers && is_repetition(position)) {
        return 0;  // before the line's length is reset: the parent may copy an older one
    }
    line_length(ply) = ply;
    bool checked = false;
    if (is_horizon(position, depth, checked)) {
        return Table::quiesce(position, alpha, beta);
    }
    ++TotalNodes;

    HashEntry& entry = hash_slot(position);
    HashAnswer hash;
    if constexpr (Rules::remembers) {
        hash = ask_hash<Rules>(entry, position, depth, alpha, beta);
        if (hash.cuts) {
            return entry.score;
        }
    }
    if (node_is_stopped()) {
        return alpha;
    }

    if constexpr (Rules::remembers) {
        if (tb_may_answer(position)) {
            if (const std::optional<std::int32_t> score = tb_answer(position)) {
                return *score;
            }
        }
    }

    if (depth >= 1) {
        checked = in_check(position, position.side);
    }
    if (Rules::cuts_early && !checked && position.capture_flag == 0) {
        LazyScore static_score(position, alpha, beta);
        if (static_cut(depth, beta, static_score) ||
            null_move_cuts(position, depth, beta, static_score)) {
            return beta;
        }
    }

    MoveList list;
    prepare_moves(position, list, checked, hash.move_usable ? &entry : nullptr);
    const LoopResult result = search_moves<Rules>(position, list, depth, alpha, beta);
    if (result.end == LoopResult::End::stopped) {
        return result.score;
    }
    if (result.legal == 0) {
        return checked ? mated_here() : 0;
    }
    if (Rules::remembers && follow_pv == 0) {
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
