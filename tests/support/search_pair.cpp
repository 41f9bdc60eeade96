// SPDX-License-Identifier: MIT
// Both begin, iterate and stop at the same moments.
#include "support/search_pair.h"

#include <gtest/gtest.h>

#include "board/generate.h"
#include "board/position_keys.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/search_scene.h"

SearchPair::SearchPair(const Table& position, std::uint32_t slots)
    : reference(slots), position_(position) {
    begin_scene();
    hash_entries = slots;
}

void SearchPair::begin() {
    reference.begin(position_);
    table_ = position_;
    compute_keys(table_);
    TotalNodes = 0;
    vetka = {};
    search_start_tick = GetTickCount();
    cur_moves = &list_;
    gen_legal(table_, table_.side);
    score_moves(table_, list_);
    history_reset();
    hash_flip_age();
}

void SearchPair::iterate(std::int32_t depth, std::int32_t alpha, std::int32_t beta, bool lines) {
    iteration_depth = depth;
    reset_root_scores(list_.count);
    ply = 0;
    follow_pv = 1;
    stop_flag = 0;
    score = Table::search_root(table_, depth, alpha, beta, list_);
    if (stop_flag == 0) {
        sort_root_list(list_);
    }
    const std::int32_t expected = reference.iterate(depth, alpha, beta);
    const std::string where = fen_of(position_) + " depth " + std::to_string(depth) + " (" +
                              std::to_string(alpha) + ", " + std::to_string(beta) + ")";
    EXPECT_EQ(score, expected) << where;
    EXPECT_EQ(reference.difference_from_engine(lines), "") << where;
    for (std::size_t i = 0; i < reference.root_results.size(); ++i) {
        EXPECT_EQ(root_scores[i + 1], reference.root_results[i]) << where << " move " << i;
    }
}

void SearchPair::set_limit(std::uint32_t readings) {
    time_limit_ms = readings;
    fake_ticks_per_reading = 1;
    reference.limit_ms = readings;
    reference.ticks_per_reading = 1;
}
