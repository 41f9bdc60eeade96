// SPDX-License-Identifier: MIT
// The pseudo-random numbers of the opening book: a small linear congruential generator, the same on
// every system, so that a seed always gives the same draw.
#pragma once

#include <cstdint>

/// Starts the generator anew. Every seed comes in through here.
void seed_random(std::uint32_t seed);

/// The next number, 0 to 32767.
[[nodiscard]] std::int32_t next_random();
