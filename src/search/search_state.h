// SPDX-License-Identifier: MIT
// The global state of the one search that runs: the clock, the stop flag, the previous iteration's
// line. The counters that the board shares stand in board/search_line.
#pragma once

#include <array>

#include "board/search_line.h"
#include "platform/clock.h"

/// Half-open limit of plies: at or beyond it every node turns into quiescence.
inline constexpr std::int32_t ply_limit = 69;

/// A side mated at `ply` scores ply - mate_base.
inline constexpr std::int32_t mate_base = 600000;

/// 1 while the search is being abandoned.
extern std::uint32_t stop_flag;

/// Tick count at the start of the search, milliseconds.
extern std::uint32_t search_start_tick;

/// Time for the move, milliseconds.
extern std::uint32_t time_limit_ms;

/// Depth of the current iteration, plies.
extern std::int32_t iteration_depth;

/// Non-zero while the search still walks down the previous iteration's line, row 0 of `vetka`.
extern std::uint32_t follow_pv;

/// The move being searched at each ply, for a look with the debugger.
extern std::array<Move, line_rows + 1> current_line;

/// How much shallower the verification of a null move is, plies.
extern std::int32_t null_reduction;

/// From this depth on a null move is tried without asking the evaluation first.
extern std::int32_t null_full_depth;

/// Whether the time for the move is used up.
[[nodiscard]] inline bool time_is_up() {
    return GetTickCount() - search_start_tick >= time_limit_ms;
}

/// The clock is read in every node but those whose count has these bits all clear.
inline constexpr std::uint32_t clock_mask = 0x7ff;

/// The clock's test in a node; sets `stop_flag` when the time is up.
[[nodiscard]] inline bool clock_stops_node() {
    if ((TotalNodes & clock_mask) != 0 && time_is_up()) {
        stop_flag = 1;
        return true;
    }
    return false;
}

/// All as at program start, the shared counters included.
void reset_search_state();
