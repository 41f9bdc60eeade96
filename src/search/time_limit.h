// SPDX-License-Identifier: MIT
// The share of the clock for one move: a pure function of clock and level.
#pragma once

#include <cstdint>

/// What the shell knows of clock and level.
struct ClockState {
    std::int32_t clock_left;       ///< hundredths of a second
    std::int32_t all_moves_game;   ///< moves per control; 0 means all the rest of the game
    std::int32_t make_moves_game;  ///< moves made in this control
    std::int32_t time_plus;        ///< increment, seconds
    bool st_mode;                  ///< fixed time per move
    std::int32_t st_time;          ///< that time, hundredths of a second
};

/// The share, and what the log tells of it.
struct TimeLimit {
    std::uint32_t limit_ms;            ///< milliseconds for the move
    std::int32_t clock_ms;             ///< the clock, milliseconds, wrapped in 32 bits
    std::int32_t sudden_death_signed;  ///< the limit before `st` in sudden death, else 0
};

/// The time for the next move. Never fails: all arithmetic wraps in 32 bits, and a divisor of 0
/// counts as 1. A divisor below 0 makes the limit negative; without a sign it is so high (49 days)
/// that only the depth ends the search.
[[nodiscard]] TimeLimit time_for_move(const ClockState& state);
