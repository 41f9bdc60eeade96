// SPDX-License-Identifier: MIT
// One number for a whole table of words of any width, so that a slip of one entry is seen.
#pragma once

#include <cstdint>

/// FNV-1a of 64 bits over the entries, each as eight bytes, the lowest first; signed entries with
/// their sign extended.
template <class Entries>
[[nodiscard]] constexpr std::uint64_t word_digest(const Entries& entries) {
    constexpr std::uint64_t basis = 0xcbf29ce484222325;
    constexpr std::uint64_t prime = 0x100000001b3;
    std::uint64_t digest = basis;
    for (const auto entry : entries) {
        const auto bits = static_cast<std::uint64_t>(entry);
        for (std::uint32_t shift = 0; shift < 64; shift += 8) {
            digest = (digest ^ ((bits >> shift) & 0xff)) * prime;
        }
    }
    return digest;
}
