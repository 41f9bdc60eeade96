// SPDX-License-Identifier: MIT
// What a node did is read from the history, the table and the counters.
#include "support/tree_scene.h"

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"
#include "search/move_order.h"
#include "support/fixed_depth.h"
#include "support/position.h"

namespace {

MoveList moves_of(const Table& position) {
    MoveList list{};
    cur_moves = &list;
    if (in_check(position, position.side)) {
        gen_evasions(position, position.side);
    } else {
        gen_all(position, position.side);
    }
    return list;
}

}  // namespace

void TreeScene::set(const char* fen) {
    constexpr std::int32_t ply_of_scene = 5;
    begin_scene();
    position = position_from_fen(fen);
    ply = ply_of_scene;
}

std::int32_t TreeScene::evaluation() const {
    return Table::evaluate(position, 0, 0);
}

std::string TreeScene::first_tried(Node node, std::int32_t depth) {
    position.capture_flag = 1;
    EXPECT_GT(node(position, depth, -full_window, -full_window + 1), -full_window);
    const Move move = cutting_move();
    return move_text(move.posFrom, move.posTo, move.posInfo);
}

Move TreeScene::cutting_move() const {
    Move found{};
    const MoveList list = moves_of(position);
    for (std::int32_t i = 1; i <= list.count; ++i) {
        if (cut_by(list.move(i)) != history_never_cut) {
            EXPECT_EQ(found, Move{}) << "two moves have cut";
            found = list.move(i);
        }
    }
    return found;
}

Move TreeScene::first_generated() const {
    const MoveList list = moves_of(position);
    for (std::int32_t i = 1; i <= list.count; ++i) {
        Table copy = position;
        const Move& move = list.move(i);
        make_plain(copy, move.posFrom, move.posTo, move.posInfo);
        if (!in_check(copy, copy.side)) {
            return move;
        }
    }
    return {};
}
