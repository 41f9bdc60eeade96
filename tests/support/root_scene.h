// SPDX-License-Identifier: MIT
// The root search, called by hand.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>

#include "board/move_list.h"
#include "support/fixed_depth.h"
#include "support/search_scene.h"

class RootScene : public testing::Test {
  protected:
    void SetUp() override { begin_scene(); }

    /// The position with its legal moves as the root list.
    void set(const char* fen);

    /// One iteration from ply 0.
    std::int32_t search(std::int32_t depth, std::int32_t alpha, std::int32_t beta);
    std::int32_t search(std::int32_t depth) { return search(depth, -full_window, full_window); }

    /// The position after the move of a slot, with the other side to move.
    [[nodiscard]] Table after_move(std::int32_t slot) const;

    /// Each move leads to a position that has stood twice.
    void repeat_every_move() const;

    void move_to_front(const char* text);

    Table position;
    MoveList list{};
};
