// SPDX-License-Identifier: MIT
// The clock of the search, in milliseconds, and the calendar. The implementation is a link target
// of its own, so that tests can set the time by hand.
#pragma once

#include <cstdint>

/// Milliseconds since some fixed moment, wrapping in 32 bits: take differences of two readings
/// without sign. Cheap enough for every node of the search; its grain is a few milliseconds.
[[nodiscard]] std::uint32_t GetTickCount();

/// The calendar time in seconds, its lower 32 bits: a seed for random numbers.
[[nodiscard]] std::uint32_t calendar_seconds();
