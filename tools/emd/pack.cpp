// SPDX-License-Identifier: MIT
// Model first, then block by block.
#include "emd/pack.h"

#include <algorithm>
#include <utility>

#include "emd/block_packer.h"

std::vector<std::uint8_t> emd_pack(std::span<const std::uint8_t> bytes,
                                   const EmdPackOptions& options) {
    if (bytes.empty()) {
        return {};
    }
    const EmdModel model = emd_choose_model(bytes, options);
    const EmdBlockPacker packer(model);
    const std::size_t block_size = std::size_t{1} << options.block_shift;
    std::vector<EmdPackedBlock> blocks;
    std::size_t last_size = 0;
    for (std::size_t at = 0; at < bytes.size(); at += block_size) {
        last_size = std::min(block_size, bytes.size() - at);
        blocks.push_back(packer.pack(bytes.subspan(at, last_size)));
    }
    return emd_join(model, std::move(blocks), static_cast<std::uint32_t>(last_size));
}
