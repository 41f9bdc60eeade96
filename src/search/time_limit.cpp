// SPDX-License-Identifier: MIT
// The engine plans with one move more than the control has left, so that it always keeps a reserve.
#include "search/time_limit.h"

#include "platform/int32_math.h"

namespace {

constexpr std::int32_t ms_per_hundredth = 10;
constexpr std::int32_t ms_per_second = 1000;
constexpr std::int32_t moves_of_sudden_death = 30;

/// The divisor of the clock: the moves left in the control and one more.
///
/// Intended(time-past-the-control): moves of the book, which do not begin the control anew, or a
/// shorter `level` in mid-game carry the count of moves past the end, and `level` takes a number
/// below 0. A divisor below 0 is used as it is: the share is negative, and as a limit without a
/// sign no limit at all. Only 0 is guarded, since nothing can be divided by it: it counts as 1.
std::int32_t moves_to_share(const ClockState& state) {
    if (state.all_moves_game == 0) {
        return moves_of_sudden_death;
    }
    const std::int32_t left = wrap_sub(wrap_add(state.all_moves_game, 1), state.make_moves_game);
    return left == 0 ? 1 : left;
}

}  // namespace

TimeLimit time_for_move(const ClockState& state) {
    const std::int32_t clock_ms = wrap_mul(ms_per_hundredth, state.clock_left);
    const std::int32_t share = wrap_div(clock_ms, moves_to_share(state));
    // The increment counts only if something stays on the clock.
    const std::int32_t with_increment = wrap_add(share, wrap_mul(ms_per_second, state.time_plus));
    std::int32_t limit = clock_ms > with_increment ? with_increment : share;
    const std::int32_t sudden_death_signed = state.all_moves_game == 0 ? limit : 0;
    if (state.st_mode) {
        limit = wrap_mul(ms_per_hundredth, state.st_time);
    }
    return {static_cast<std::uint32_t>(limit), clock_ms, sudden_death_signed};
}
