// SPDX-License-Identifier: MIT
// The symbols of packed blocks: literal bytes, and matches told by a distance slot and a class of
// lengths. Short classes stand for one length each, the others have further bits.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

inline constexpr std::size_t emd_literals = 256;
inline constexpr std::size_t emd_slots = 24;
inline constexpr std::size_t emd_length_classes = 32;
inline constexpr std::size_t emd_symbols = emd_literals + emd_slots * emd_length_classes;

/// Classes up to this one stand for a single length, one more than their number.
inline constexpr unsigned emd_last_plain_class = 14;
inline constexpr std::uint32_t emd_longest_plain = emd_last_plain_class + 1;

/// Symbol of a match.
[[nodiscard]] constexpr std::size_t emd_match_symbol(std::size_t slot, unsigned length_class) {
    return emd_literals + slot * emd_length_classes + length_class;
}

/// Further bits of a class.
[[nodiscard]] constexpr unsigned emd_extra_bits(unsigned length_class) {
    return length_class <= emd_last_plain_class ? 0 : length_class - emd_last_plain_class;
}

/// Shortest length of a class.
[[nodiscard]] constexpr std::uint32_t emd_shortest_of(unsigned length_class) {
    const unsigned extra_bits = emd_extra_bits(length_class);
    return extra_bits == 0 ? length_class + 1 : (1U << extra_bits) + emd_last_plain_class;
}

/// Longest length of a class.
[[nodiscard]] constexpr std::uint32_t emd_longest_of(unsigned length_class) {
    return emd_shortest_of(length_class) + (1U << emd_extra_bits(length_class)) - 1;
}

/// The class that a length of 1 to 262157 falls into.
[[nodiscard]] constexpr unsigned emd_class_of(std::uint32_t length) {
    if (length <= emd_longest_plain) {
        return length - 1;
    }
    const auto extra_bits =
        static_cast<std::uint8_t>(std::bit_width(length - emd_last_plain_class) - 1);
    return emd_last_plain_class + extra_bits;
}
