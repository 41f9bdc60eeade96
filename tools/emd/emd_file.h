// SPDX-License-Identifier: MIT
// A compressed table file put together from its parts: the header with all its fields and
// checksums, then the stored blocks. How the blocks come about is for others.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

/// The parts of a file. A stored block has 1 to 2^block_shift bytes; one as long as its decoded
/// block is taken for a raw one by the reader. Distances are below 2^block_shift.
struct EmdFile {
    unsigned block_shift = 13;                      ///< log2 of the block size, 0 to 16
    std::array<std::uint32_t, 24> distances{};      ///< bytes; 0 for a slot without use
    std::vector<std::vector<std::uint8_t>> stored;  ///< the stored bytes, a block each
    std::uint32_t last_block_size = 0;              ///< bytes of the last block, decoded
    std::vector<std::uint8_t> code;                 ///< description of the code, whole bytes
    std::vector<std::uint32_t> decoded_checksums;   ///< a block each
};

/// The whole file.
[[nodiscard]] std::vector<std::uint8_t> emd_file_bytes(const EmdFile& file);
