// SPDX-License-Identifier: MIT
// As the driver calls it, without the driver.
#include "support/root_scene.h"

#include <utility>

#include "board/generate.h"
#include "board/make.h"
#include "search/root.h"
#include "search/search_state.h"
#include "support/position.h"

void RootScene::set(const char* fen) {
    position = position_from_fen(fen);
    cur_moves = &list;
    gen_legal(position, position.side);
}

std::int32_t RootScene::search(std::int32_t depth, std::int32_t alpha, std::int32_t beta) {
    reset_root_scores(list.count);
    iteration_depth = depth;
    ply = 0;
    follow_pv = 1;
    stop_flag = 0;
    return Table::search_root(position, depth, alpha, beta, list);
}

Table RootScene::after_move(std::int32_t slot) const {
    Table copy = position;
    const Move& move = list.move(slot);
    make_plain(copy, move.posFrom, move.posTo, move.posInfo);
    copy.side ^= 1;
    return copy;
}

void RootScene::repeat_every_move() const {
    for (std::int32_t slot = 1; slot <= list.count; ++slot) {
        stood_in_game(after_move(slot), 2);
    }
}

void RootScene::move_to_front(const char* text) {
    const Move move = move_of(position, text);
    for (std::int32_t slot = 2; slot <= list.count; ++slot) {
        if (list.move(slot) == move) {
            std::swap(list.move(slot), list.move(1));
        }
    }
    ASSERT_EQ(list.move(1), move);
}
