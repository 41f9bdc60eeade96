// SPDX-License-Identifier: MIT
// The engine plans with one move more than the control has left, so that it always keeps a reserve.
#include "search/time_limit.h"

#include <algorithm>

#include "platform/int32_math.h"

namespace {

constexpr std::int32_t ms_per_hundredth = 10;
constexpr std::int32_t ms_per_second = 1000;
constexpr std::int32_t moves_of_sudden_death = 30;

/// Moves to share the clock among: those left in the control and one more. Book moves can carry the
/// count of moves past the control.
std::int32_t moves_to_share(const ClockState& state) {
    if (state.all_moves_game == 0) {
        return moves_of_sudden_death;
    }
    const std::int32_t left = wrap_sub(wrap_add(state.all_moves_game, 1), state.make_moves_game);
    return std::max(left, 1);
}

}  // namespace

TimeLimit time_for_move(const ClockState& state) {
    const std::int32_t clock_ms = wrap_mul(ms_per_hundredth, state.clock_left);
    const std::int32_t share = clock_ms / moves_to_share(state);
    // The increment counts only if something stays on the clock.
    const std::int32_t with_increment = wrap_add(share, wrap_mul(ms_per_second, state.time_plus));
    std::int32_t limit = clock_ms > with_increment ? with_increment : share;
    const std::int32_t sudden_death_signed = state.all_moves_game == 0 ? limit : 0;
    if (state.st_mode) {
        limit = wrap_mul(ms_per_hundredth, state.st_time);
    }
    return {static_cast<std::uint32_t>(limit), clock_ms, sudden_death_signed};
}
