// SPDX-License-Identifier: MIT
// The best lengths of code words for symbols of known frequency, with none above a limit.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// A length for each symbol, 0 where the count is 0. The lengths make a complete code, the cheapest
/// one without words longer than `longest`; 2^longest must not be below the number of symbols that
/// occur. One symbol alone gets the length 1.
[[nodiscard]] std::vector<std::uint8_t> emd_huffman_lengths(std::span<const std::uint64_t> counts,
                                                            unsigned longest);
