// SPDX-License-Identifier: MIT
// The clock of the tests: it stands still unless a test moves it.
#pragma once

#include <cstdint>

/// What the next reading gives, milliseconds.
extern std::uint32_t fake_ticks;

/// How much each reading moves the clock on, milliseconds; 0 at start.
extern std::uint32_t fake_ticks_per_reading;

/// Readings so far.
extern std::uint32_t fake_clock_readings;

/// The calendar time, seconds; 0 at start.
extern std::uint32_t fake_calendar_seconds;

/// Clock and calendar at 0, standing still.
void reset_fake_clock();
