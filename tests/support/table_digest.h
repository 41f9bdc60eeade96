// SPDX-License-Identifier: MIT
// One number for a whole table, so that a slip of one digit is seen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// FNV-1a of 32 bits over the words of a table, each as four bytes, the lowest first.
[[nodiscard]] constexpr std::uint32_t table_digest(std::span<const std::int32_t> words) {
    constexpr std::uint32_t basis = 2166136261;
    constexpr std::uint32_t prime = 16777619;
    std::uint32_t digest = basis;
    for (const std::int32_t word : words) {
        const auto bits = static_cast<std::uint32_t>(word);
        for (std::uint32_t shift = 0; shift < 32; shift += 8) {
            digest = (digest ^ ((bits >> shift) & 0xff)) * prime;
        }
    }
    return digest;
}

/// Sum of all words of a table.
[[nodiscard]] constexpr std::int32_t table_sum(std::span<const std::int32_t> words) {
    std::int32_t sum = 0;
    for (const std::int32_t word : words) {
        sum += word;
    }
    return sum;
}
