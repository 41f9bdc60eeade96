// SPDX-License-Identifier: MIT
// The globals of the search and their start values.
#include "search/search_state.h"

namespace {

constexpr std::int32_t usual_null_reduction = 4;
constexpr std::int32_t usual_null_full_depth = 4;

}  // namespace

std::uint32_t stop_flag = 0;
std::uint32_t search_start_tick = 0;
std::uint32_t time_limit_ms = 0;
std::int32_t iteration_depth = 0;
std::uint32_t follow_pv = 0;
std::array<Move, line_rows + 1> current_line{};
std::int32_t null_reduction = usual_null_reduction;
std::int32_t null_full_depth = usual_null_full_depth;

void reset_search_state() {
    reset_search_line();
    stop_flag = 0;
    search_start_tick = 0;
    time_limit_ms = 0;
    iteration_depth = 0;
    follow_pv = 0;
    current_line = {};
    null_reduction = usual_null_reduction;
    null_full_depth = usual_null_full_depth;
}
