// SPDX-License-Identifier: MIT
// The engine's search and its plain second writing, side by side on one position.
#pragma once

#include "board/move_list.h"
#include "support/reference_search.h"

class SearchPair {
  public:
    /// A new scene with a table of so many slots for both, 65536 at most.
    SearchPair(const Table& position, std::uint32_t slots);

    /// A new search of the position; the tables stay as they are.
    void begin();

    /// One iteration of both; whatever is not the same fails. `lines`: the tables of lines too.
    void iterate(std::int32_t depth, std::int32_t alpha, std::int32_t beta, bool lines);

    /// The time runs out after so many readings of the clock.
    void set_limit(std::uint32_t readings);

    ReferenceSearch reference;
    std::int32_t score = 0;

  private:
    Table position_;
    Table table_;
    MoveList list_{};
};
