// SPDX-License-Identifier: MIT
// How many sets of men of one kind there are on so many squares.
#pragma once

#include <cstdint>

/// n things taken two at a time; wraps for n of 0, as all index arithmetic may.
[[nodiscard]] constexpr std::uint32_t choose2(std::uint32_t n) {
    return n * (n - 1) / 2;
}

/// n things taken three at a time; wraps for n of 0.
[[nodiscard]] constexpr std::uint32_t choose3(std::uint32_t n) {
    return n * (n - 1) * (n - 2) / 6;
}

/// n things taken one, two or three at a time.
[[nodiscard]] constexpr std::uint32_t choose(std::uint32_t n, std::uint32_t men) {
    return men == 1 ? n : men == 2 ? choose2(n) : choose3(n);
}
