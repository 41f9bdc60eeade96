// SPDX-License-Identifier: MIT
// Seeded random games: the same positions on every machine.
#pragma once

#include <cstdint>

#include "board/move_list.h"
#include "board/table.h"

/// A small generator of its own: what the library's distributions give differs between libraries.
class RandomNumbers {
  public:
    explicit RandomNumbers(std::uint64_t seed) : state_(seed) {}

    /// A number from 0 to `limit` - 1.
    [[nodiscard]] std::uint32_t below(std::uint32_t limit) {
        constexpr std::uint64_t multiplier = 6364136223846793005;
        constexpr std::uint64_t increment = 1442695040888963407;
        state_ = state_ * multiplier + increment;
        return static_cast<std::uint32_t>((state_ >> 33) % limit);
    }

  private:
    std::uint64_t state_;
};

/// Plays one random legal move on `table` and flips its side. One time in six it is drawn from the
/// captures and promotions, when there are any, so that games reach endings. False: no legal move.
[[nodiscard]] bool play_random_move(Table& table, RandomNumbers& random);
