// SPDX-License-Identifier: MIT
// Steps that the nodes of the tree and of the quiescence search share.
#pragma once

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "search/move_order.h"
#include "search/search_state.h"

/// The slot with the lowest score; the lowest slot among equals. The list must not be empty.
[[nodiscard]] inline std::int32_t lowest_slot(const MoveList& list) {
    std::int32_t lowest = 1;
    for (std::int32_t i = 2; i <= list.count; ++i) {
        if (list.score(i) < list.score(lowest)) {
            lowest = i;
        }
    }
    return lowest;
}

/// Walks on along the previous iteration's line: if its move of this ply is in the list, it comes
/// first, and the walk goes on below it; if not, the walk ends here.
inline void mark_old_line(MoveList& list) {
    if (follow_pv == 0) {
        return;
    }
    follow_pv = 0;
    if (ply >= line_rows) {
        return;
    }
    const Move& old_move = vetka[0][line_slot(ply)];
    for (std::int32_t i = 1; i <= list.count; ++i) {
        if (list.move(i) == old_move) {
            list.score(i) = old_line_score;
            follow_pv = 1;
            return;
        }
    }
}

/// Whether the king of the side that has just moved is safe; `side` is still that side.
[[nodiscard]] inline bool mover_is_safe(const Table& position) {
    return !in_check(position, position.side);
}

inline void flip_side(Table& position) {
    position.side ^= 1;
}

/// The score of a side in check without a legal move.
[[nodiscard]] inline std::int32_t mated_here() {
    return ply - mate_base;
}
