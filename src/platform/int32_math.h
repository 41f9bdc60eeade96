// SPDX-License-Identifier: MIT
// Arithmetic that wraps in 32 bits, as the clock rules and the history counters want it.
// It runs on unsigned words, where wrapping is defined.
#pragma once

#include <cstdint>

/// Sum, wrapped in 32 bits.
[[nodiscard]] constexpr std::int32_t wrap_add(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// Difference, wrapped in 32 bits.
[[nodiscard]] constexpr std::int32_t wrap_sub(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// Product, wrapped in 32 bits.
[[nodiscard]] constexpr std::int32_t wrap_mul(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// Quotient, truncated towards zero and wrapped in 32 bits: the lowest number by -1 is itself.
/// Requires: `b` is not 0.
[[nodiscard]] constexpr std::int32_t wrap_div(std::int32_t a, std::int32_t b) {
    return b == -1 ? wrap_sub(0, a) : a / b;
}
