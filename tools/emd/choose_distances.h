// SPDX-License-Identifier: MIT
// The distances of a file: those at which its blocks repeat themselves so that most bits are saved.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "emd/lz_parse.h"

/// A stretch of a block: from `begin` to the end of `block`, which may be cut short there.
struct EmdStretch {
    std::span<const std::uint8_t> block;
    std::size_t begin = 0;
};

/// Stretches of the data that stand for the whole of it; all blocks whole if they are few.
/// `most_compared`: how many pairs of bytes may be compared to choose one distance, about.
[[nodiscard]] std::vector<EmdStretch> emd_stretches(std::span<const std::uint8_t> bytes,
                                                    std::size_t block_size,
                                                    std::size_t most_compared);

/// Rising distances below `block_size` that pay on these stretches, then zeros. `costs` tells
/// literals, and in the classes of every slot what matches cost about.
[[nodiscard]] EmdDistances emd_choose_distances(std::span<const EmdStretch> stretches,
                                                std::size_t block_size, const EmdCosts& costs);
