// SPDX-License-Identifier: MIT
// A block is written symbol by symbol along its cheapest path, or raw where that is no longer. A
// coded block is always shorter than the block itself: the reader tells raw ones by their length.
#include "emd/block_packer.h"

#include <utility>

#include "emd/bit_writer.h"
#include "emd/emd_file.h"
#include "emd/symbol_costs.h"
#include "tb/checksum.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The further bits of a match. One that runs past the end of its block has a class whose lengths
/// all do, and the shortest of them is as good as any.
void put_extra_bits(EmdBitWriter& writer, const EmdStep& step) {
    const std::uint32_t shortest = emd_shortest_of(step.length_class);
    writer.put(step.length > shortest ? step.length - shortest : 0,
               emd_extra_bits(step.length_class));
}

Bytes write_path(std::span<const std::uint8_t> block, const EmdPath& path, const EmdCode& code) {
    EmdBitWriter writer;
    std::size_t at = 0;
    for (const EmdStep& step : path.steps) {
        code.put(writer, emd_symbol_of(step, block[at]));
        if (!step.is_literal()) {
            put_extra_bits(writer, step);
        }
        at += step.length;
    }
    if (writer.bit_count() == 0) {
        writer.put(0, 1);  // no block is stored in no bytes
    }
    return writer.bytes();
}

/// Bytes of the file; an upper bound, a few bytes too much.
std::uint64_t file_size(const EmdFile& file) {
    constexpr std::uint64_t fixed_parts = 512;
    constexpr std::uint64_t header_of_block = 2 * sizeof(std::uint32_t) + 2;
    std::uint64_t size = fixed_parts + file.code.size();
    for (const Bytes& block : file.stored) {
        size += header_of_block + block.size();
    }
    return size;
}

}  // namespace

EmdBlockPacker::EmdBlockPacker(const EmdModel& model)
    : parser_(model.distances, emd_code_costs(model.lengths)), code_(model.lengths) {}

EmdPackedBlock EmdBlockPacker::pack(std::span<const std::uint8_t> block) const {
    const std::uint32_t checksum = tb_checksum(block);
    const EmdPath path = parser_.parse(block, 0);
    if (path.cost < emd_unreachable) {
        Bytes coded = write_path(block, path, code_);
        if (coded.size() < block.size()) {
            return {std::move(coded), checksum};
        }
    }
    return {Bytes(block.begin(), block.end()), checksum};
}

std::vector<std::uint8_t> emd_join(const EmdModel& model, std::vector<EmdPackedBlock> blocks,
                                   std::uint32_t last_block_size) {
    EmdFile file;
    file.block_shift = model.block_shift;
    file.distances = model.distances;
    file.last_block_size = last_block_size;
    file.code = emd_code_description(model.lengths);
    for (EmdPackedBlock& block : blocks) {
        file.stored.push_back(std::move(block.stored));
        file.decoded_checksums.push_back(block.decoded_checksum);
    }
    if (file_size(file) > UINT32_MAX) {
        return {};
    }
    return emd_file_bytes(file);
}
