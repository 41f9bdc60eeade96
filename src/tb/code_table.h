// SPDX-License-Identifier: MIT
// Canonical Huffman codes: reading the description of a code from a file, turning it into a table,
// and decoding a symbol by that table. The codes are the same for a whole file.
#pragma once

#include <cstdint>
#include <span>

#include "tb/bit_reader.h"

/// Longest code word, bits.
inline constexpr std::uint32_t tb_longest_code = 31;

// An entry of the root is symbol * 32 + bits of the code word, or, for a longer word, the negated
// place of a pair of entries behind the root: one for the bit 0, one for the bit 1. An entry of a
// pair is the plain symbol or the negated place of the next pair.
inline constexpr unsigned tb_entry_length_bits = 5;

/// Reads the lengths of the code words of a code, 0 for a symbol that does not occur. False, with
/// `lengths` in any state, when the description is broken or runs past its end. A length that no
/// code word has is stored as such and refused by tb_build_code_table.
[[nodiscard]] bool tb_read_code_lengths(TbBitReader& reader, std::span<std::uint8_t> lengths);

/// Fills `table` for a root of `root_bits`; it has 2^root_bits entries and room for the pairs of
/// the longer words, at most twice as many as there are symbols. False, with `table` in any state,
/// when the lengths make no complete code. One symbol alone, of length 1, costs no bits.
[[nodiscard]] bool tb_build_code_table(std::span<const std::uint8_t> lengths, unsigned root_bits,
                                       std::span<std::int16_t> table);

/// The next symbol.
template <unsigned RootBits>
[[nodiscard]] inline std::uint32_t tb_decode_symbol(TbBitReader& reader,
                                                    const std::int16_t* table) {
    constexpr std::int32_t length_mask = (1 << tb_entry_length_bits) - 1;
    std::int32_t entry = table[reader.peek(RootBits)];
    if (entry >= 0) [[likely]] {
        reader.skip(static_cast<unsigned>(entry & length_mask));
        return static_cast<std::uint32_t>(entry) >> tb_entry_length_bits;
    }
    reader.skip(RootBits);
    while (entry < 0) {
        entry = table[static_cast<std::uint32_t>(-entry) + reader.take(1)];
    }
    return static_cast<std::uint32_t>(entry);
}
