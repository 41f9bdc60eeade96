// SPDX-License-Identifier: MIT
// What the root search leaves for its driver.
#pragma once

#include <array>

#include "board/move_list.h"

/// The last score of each root move in this iteration, indexed like the root list from 1.
extern std::array<std::int32_t, move_list_slots> root_scores;

/// Sets the scores of a list of `count` moves to 0, before an iteration.
void reset_root_scores(std::int32_t count);

/// Sorts the root list by `root_scores`, high to low; equal scores keep their order.
void sort_root_list(MoveList& list);
