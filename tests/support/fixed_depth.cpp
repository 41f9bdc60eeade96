// SPDX-License-Identifier: MIT
// The driver of a computer's move without clock, aspiration and output.
#include "support/fixed_depth.h"

#include <limits>

#include "board/generate.h"
#include "board/move_list.h"
#include "board/position_keys.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_state.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

std::string principal_variation() {
    std::string text;
    for (std::int32_t i = 0; i < line_length(0); ++i) {
        const Move& move = vetka[0][line_slot(i)];
        text += text.empty() ? "" : " ";
        text += move_text(move.posFrom, move.posTo, move.posInfo);
    }
    return text;
}

}  // namespace

void search_fixed_depth(const Table& position, std::int32_t depth,
                        const std::function<void(const Iteration&)>& seen) {
    Table table = position;
    compute_keys(table);
    TotalNodes = 0;
    vetka = {};
    search_start_tick = GetTickCount();
    time_limit_ms = std::numeric_limits<std::uint32_t>::max();
    MoveList list;
    cur_moves = &list;
    gen_legal(table, table.side);
    score_moves(table, list);
    history_reset();
    hash_flip_age();
    for (iteration_depth = 1; iteration_depth <= depth; ++iteration_depth) {
        reset_root_scores(list.count);
        ply = 0;
        follow_pv = 1;
        stop_flag = 0;
        const std::int32_t score =
            Table::search_root(table, iteration_depth, -full_window, full_window, list);
        sort_root_list(list);
        seen({iteration_depth, score, TotalNodes, principal_variation()});
    }
}

Iteration search_result(const Table& position, std::int32_t depth) {
    reset_all();
    Iteration last{};
    search_fixed_depth(position, depth, [&](const Iteration& iteration) { last = iteration; });
    return last;
}
