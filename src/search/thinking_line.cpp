// SPDX-License-Identifier: MIT
// The line is printed always; the `post` command changes nothing.
#include "search/thinking_line.h"

#include "search/search_state.h"
#include "shell/log.h"
#include "shell/position_text.h"

void print_thinking_line(std::int32_t score) {
    constexpr std::uint32_t ms_per_hundredth = 10;
    print_iteration(score, (GetTickCount() - search_start_tick) / ms_per_hundredth);
}

void print_iteration(std::int32_t score, std::uint32_t elapsed) {
    mirror(iteration_depth, " ", score, " ", elapsed, " ", TotalNodes, " ");
    for (std::int32_t i = 0; i < line_length(0) && i < line_rows; ++i) {
        const Move& move = vetka[0][line_slot(i)];
        print_move(move.posFrom, move.posTo, move.posInfo);
    }
    mirror(end_line);
}
