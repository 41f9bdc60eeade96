// SPDX-License-Identifier: MIT
// The two models are chosen side by side, then all blocks are packed by turns.
#include "tbgen/packing.h"

#include <algorithm>
#include <atomic>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "emd/block_packer.h"
#include "emd/model.h"
#include "tb/tb_types.h"
#include "tbgen/parallel.h"

namespace {

constexpr std::size_t block_size = tb_block_size;

/// Less than a single file is measured by: tables come by the hundred, and their files grow by less
/// than a hundredth.
EmdPackOptions options_for(std::size_t size) {
    constexpr unsigned block_shift = 13;
    constexpr std::size_t sample_size = std::size_t{1} << 20U;
    constexpr std::size_t most_compared = std::size_t{1} << 26U;
    constexpr std::size_t compared_a_byte = 512;
    return {block_shift, sample_size, std::min(most_compared, size * compared_a_byte)};
}

/// One half in work.
struct Job {
    std::span<const std::uint8_t> bytes;
    EmdModel model;
    std::optional<EmdBlockPacker> packer;
    std::vector<EmdPackedBlock> blocks;

    [[nodiscard]] std::span<const std::uint8_t> block(std::size_t i) const {
        return bytes.subspan(i * block_size, std::min(block_size, bytes.size() - i * block_size));
    }
};

}  // namespace

std::optional<std::array<Bytes, 2>> pack_halves(const std::array<Bytes, 2>& halves,
                                                std::size_t threads,
                                                const std::function<void(double)>& report) {
    std::array<Job, 2> jobs;
    in_parallel(threads, jobs.size(), [&](std::size_t i) {
        jobs[i].bytes = halves[i];
        jobs[i].model = emd_choose_model(halves[i], options_for(halves[i].size()));
        jobs[i].packer.emplace(jobs[i].model);
        jobs[i].blocks.resize((halves[i].size() + block_size - 1) / block_size);
    });
    const std::size_t first = jobs[0].blocks.size();
    const std::size_t count = first + jobs[1].blocks.size();
    const std::thread::id caller = std::this_thread::get_id();
    std::atomic<std::size_t> done{0};
    in_parallel(threads, count, [&](std::size_t i) {
        Job& job = jobs[i < first ? 0 : 1];
        const std::size_t block = i < first ? i : i - first;
        job.blocks[block] = job.packer->pack(job.block(block));
        ++done;
        if (std::this_thread::get_id() == caller) {
            report(static_cast<double>(done) / static_cast<double>(count));
        }
    });
    std::array<Bytes, 2> packed;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const std::size_t last = jobs[i].blocks.size() - 1;
        const auto last_size = static_cast<std::uint32_t>(jobs[i].block(last).size());
        packed[i] = emd_join(jobs[i].model, std::move(jobs[i].blocks), last_size);
        if (packed[i].empty()) {
            return std::nullopt;
        }
    }
    return packed;
}
