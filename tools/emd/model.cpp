// SPDX-License-Identifier: MIT
// Costs decide how blocks are written, and how they are written decides what symbols cost: the two
// are settled in rounds, over a part of the data if there is much of it.
#include "emd/model.h"

#include <algorithm>
#include <vector>

#include "emd/choose_distances.h"
#include "emd/code_writer.h"
#include "emd/huffman.h"
#include "emd/symbol_costs.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr unsigned longest_word = 31;
constexpr std::uint64_t byte_cost = std::uint64_t{8} * emd_bit_cost;

EmdByteCounts count_bytes(Bytes bytes) {
    EmdByteCounts counts{};
    for (const std::uint8_t byte : bytes) {
        ++counts[byte];
    }
    return counts;
}

/// Blocks that stand for the whole of the data, evenly spread over it.
std::vector<Bytes> sample_blocks(Bytes bytes, std::size_t block_size, std::size_t sample_size) {
    const std::size_t blocks = (bytes.size() + block_size - 1) / block_size;
    const std::size_t step = (bytes.size() + sample_size - 1) / sample_size;
    std::vector<Bytes> sample;
    for (std::size_t i = 0; i < blocks; i += step) {
        const std::size_t at = i * block_size;
        sample.push_back(bytes.subspan(at, std::min(block_size, bytes.size() - at)));
    }
    return sample;
}

/// Symbols of some blocks; blocks that do not pay are stored raw and have none.
struct SampleCount {
    EmdCounts symbols{};
    std::uint64_t saved = 0;  ///< against raw blocks, in parts of a bit
};

SampleCount count_symbols(std::span<const Bytes> sample, const EmdDistances& distances,
                          const EmdCosts& costs) {
    const EmdParser parser(distances, costs);
    SampleCount count;
    for (const Bytes block : sample) {
        const EmdPath path = parser.parse(block, 0);
        const std::uint64_t raw_cost = block.size() * byte_cost;
        if (path.cost < raw_cost) {
            emd_count_symbols(block, path, count.symbols);
            count.saved += raw_cost - path.cost;
        }
    }
    return count;
}

/// Lengths of the code words of a file. Not all bytes of it may have been counted; those that are
/// needed all the same get a word too.
void choose_code(EmdCounts counts, const EmdByteCounts& needed, EmdModel& model) {
    for (std::size_t byte = 0; byte < emd_literals; ++byte) {
        counts[byte] = std::max(counts[byte], std::min<std::uint64_t>(needed[byte], 1));
    }
    const std::vector<std::uint8_t> lengths = emd_huffman_lengths(counts, longest_word);
    std::copy(lengths.begin(), lengths.end(), model.lengths.begin());
}

}  // namespace

EmdModel emd_choose_model(Bytes bytes, const EmdPackOptions& options) {
    constexpr int measured_rounds = 5;  // rounds with costs in parts of a bit
    constexpr int rounds = 7;
    const std::size_t block_size = std::size_t{1} << options.block_shift;
    const EmdByteCounts byte_counts = count_bytes(bytes);
    EmdCosts costs = emd_guessed_costs(byte_counts);
    EmdModel model;
    model.block_shift = options.block_shift;
    model.distances = emd_choose_distances(emd_stretches(bytes, block_size, options.most_compared),
                                           block_size, costs);

    const std::vector<Bytes> sample = sample_blocks(bytes, block_size, options.sample_size);
    const bool is_whole = sample.size() * block_size >= bytes.size();
    const EmdByteCounts needed = is_whole ? EmdByteCounts{} : byte_counts;
    for (int round = 0; round < rounds; ++round) {
        const SampleCount count = count_symbols(sample, model.distances, costs);
        if (round < measured_rounds) {
            costs = emd_measured_costs(count.symbols);
        } else {
            choose_code(count.symbols, needed, model);
            costs = emd_code_costs(model.lengths);
        }
    }
    const std::uint64_t code_cost = emd_code_description(model.lengths).size() * byte_cost;
    if (count_symbols(sample, model.distances, costs).saved <= code_cost) {
        return {options.block_shift, {}, {}};
    }
    return model;
}
