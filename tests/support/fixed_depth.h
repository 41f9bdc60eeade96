// SPDX-License-Identifier: MIT
// Searches to a fixed depth with the full window, an iteration at a time.
#pragma once

#include <functional>
#include <string>

#include "board/table.h"

/// One finished iteration.
struct Iteration {
    std::int32_t depth;
    std::int32_t score;   ///< side to move's view
    std::uint32_t nodes;  ///< since the start of the search
    std::string line;     ///< the principal variation, moves separated by a blank
};

/// Bounds of such a search: just outside all scores.
inline constexpr std::int32_t full_window = 600001;

/// Searches iterations 1 to `depth` on a copy of `position`, with no limit of time, and hands each
/// to `seen`. The tables are used as they are; `reset_all` empties them. Keys are computed here.
void search_fixed_depth(const Table& position, std::int32_t depth,
                        const std::function<void(const Iteration&)>& seen);

/// The result of the last iteration of such a search from empty tables.
[[nodiscard]] Iteration search_result(const Table& position, std::int32_t depth);
