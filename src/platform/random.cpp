// SPDX-License-Identifier: MIT
// The state has 32 bits and wraps; fifteen of its upper bits are given out, because the lower ones
// of such a generator repeat soon.
#include "platform/random.h"

namespace {

// Multiplier and increment are those of a widespread C runtime.
constexpr std::uint32_t multiplier = 214013;
constexpr std::uint32_t increment = 2531011;
constexpr std::uint32_t dropped_bits = 16;
constexpr std::uint32_t given_bits = 0x7fff;

std::uint32_t state = 1;

}  // namespace

void seed_random(std::uint32_t seed) {
    state = seed;
}

std::int32_t next_random() {
    state = state * multiplier + increment;
    return static_cast<std::int32_t>((state >> dropped_bits) & given_bits);
}
