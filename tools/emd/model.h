// SPDX-License-Identifier: MIT
// What all blocks of a file share: block size, distances and code. They are chosen from the data.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "emd/lz_parse.h"

/// How much is compared to choose the distances of a single file.
inline constexpr std::size_t emd_most_compared = std::size_t{1} << 28U;

struct EmdPackOptions {
    unsigned block_shift = 13;  ///< log2 of the block size, 0 to 16; the engine reads 13 alone
    std::size_t sample_size = std::size_t{4} << 20U;  ///< bytes that the code is chosen by, about
    std::size_t most_compared = emd_most_compared;    ///< pairs of bytes, for the distances
};

struct EmdModel {
    unsigned block_shift = 13;  ///< log2 of the block size
    EmdDistances distances{};
    std::array<std::uint8_t, emd_symbols> lengths{};  ///< of the code words
};

/// A model for the data, which is not empty. It can write each of its blocks, or leaves it raw.
[[nodiscard]] EmdModel emd_choose_model(std::span<const std::uint8_t> bytes,
                                        const EmdPackOptions& options);
