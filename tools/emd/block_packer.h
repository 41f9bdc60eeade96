// SPDX-License-Identifier: MIT
// Blocks packed one by one, by a model that is chosen beforehand, and joined to a file.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "emd/code_writer.h"
#include "emd/lz_parse.h"
#include "emd/model.h"

struct EmdPackedBlock {
    std::vector<std::uint8_t> stored;    ///< as long as the block: the block itself, raw
    std::uint32_t decoded_checksum = 0;  ///< of the block
};

/// Packs the blocks of a file. May be used from several threads at a time.
class EmdBlockPacker {
  public:
    explicit EmdBlockPacker(const EmdModel& model);

    /// A block of 1 byte to the block size.
    [[nodiscard]] EmdPackedBlock pack(std::span<const std::uint8_t> block) const;

  private:
    EmdParser parser_;
    EmdCode code_;
};

/// The file of these blocks, in order; `last_block_size` is the decoded length of the last one in
/// bytes. Empty if it would be longer than a file can be, 4 GB.
[[nodiscard]] std::vector<std::uint8_t> emd_join(const EmdModel& model,
                                                 std::vector<EmdPackedBlock> blocks,
                                                 std::uint32_t last_block_size);
