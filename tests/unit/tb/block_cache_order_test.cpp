// SPDX-License-Identifier: MIT
// Long random runs against a simple model: a list of blocks, the latest in front, cut at the
// cache's size.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "support/cache_buffer.h"
#include "support/cache_lists.h"
#include "support/endgame_files.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_memory.h"

namespace {

constexpr std::uint32_t block_size = 8192;
constexpr int probes = 100'000;
constexpr unsigned seed = 4711;

/// A half and what it holds.
struct Half {
    std::int32_t id;
    std::int32_t half;
    std::string bytes;
};

class Model {
  public:
    explicit Model(std::size_t size) : size_(size) {}

    /// True if the block was there.
    bool ask(const CachedBlock& block) {
        const auto found = std::find(blocks_.begin(), blocks_.end(), block);
        const bool is_there = found != blocks_.end();
        if (is_there) {
            std::rotate(blocks_.begin(), found, found + 1);
        } else {
            blocks_.insert(blocks_.begin(), block);
            blocks_.resize(std::min(blocks_.size(), size_));
        }
        return is_there;
    }

    [[nodiscard]] const std::vector<CachedBlock>& blocks() const { return blocks_; }

  private:
    std::size_t size_;
    std::vector<CachedBlock> blocks_;
};

class BlockCacheOrder : public testing::TestWithParam<std::uint32_t> {
  protected:
    void SetUp() override {
        reset_all();
        for (const char* const name : {"krk.nbw", "krk.nbb", "kbk.nbb"}) {
            std::string bytes(block_size * 90 + 100, '\0');
            std::generate(bytes.begin(), bytes.end(),
                          [this] { return static_cast<char>(random_()); });
            write_file(name, bytes);
        }
        copy_half("kpk.nbw.emd");
        ASSERT_EQ(TbRegisterAll(""), 3);
        halves_ = {{4, 0, read_file("krk.nbw")},
                   {4, 1, read_file("krk.nbb")},
                   {3, 1, read_file("kbk.nbb")},
                   {1, 0, read_file(endgame_data + "/kpk.nbw")}};
    }
    void TearDown() override { reset_all(); }

    /// A place that is near the start more often than not, so that there are hits in small caches.
    std::uint32_t random_index(const Half& half) {
        const auto size = static_cast<std::uint32_t>(half.bytes.size());
        const std::uint32_t range = random_() % 4 == 0 ? size : std::min(size, 6 * block_size);
        return static_cast<std::uint32_t>(random_()) % range;
    }

    std::mt19937 random_{seed};
    std::vector<Half> halves_;

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_P(BlockCacheOrder, BlocksAreThoseAskedForLast) {
    const std::uint32_t entries = GetParam();
    const CacheBuffer cache(entries * tb_entry_size);
    ASSERT_EQ(tb_cache_entries, entries);
    Model model(entries);
    int hits = 0;
    for (int i = 0; i < probes; ++i) {
        const Half& half = halves_[random_() % halves_.size()];
        const std::uint32_t index = random_index(half);
        hits += model.ask({half.id, half.half, index / block_size * block_size}) ? 1 : 0;
        ASSERT_EQ(TbProbeRaw(half.id, half.half, index),
                  static_cast<std::int8_t>(half.bytes[index]))
            << "probe " << i << ", seed " << seed;
        ASSERT_EQ(cached_blocks(), model.blocks()) << "probe " << i << ", seed " << seed;
        if (i % 16 == 0) {
            ASSERT_EQ(cache_fault(), "") << "probe " << i << ", seed " << seed;
        }
    }
    EXPECT_EQ(cache_fault(), "");
    EXPECT_GT(hits, 1000);
    EXPECT_LT(hits, probes - 1000);
}

TEST_P(BlockCacheOrder, ChainsHoldTheLatestInFront) {
    const CacheBuffer cache(GetParam() * tb_entry_size);
    const Half& half = halves_[0];
    std::vector<CachedBlock> latest;
    int probed = 0;
    for (int i = 0; i < 2000; ++i) {
        const auto number = static_cast<std::uint32_t>(random_()) % 3;
        const CachedBlock block = {half.id, half.half, (5 + 32 * number) * block_size};
        std::erase(latest, block);
        latest.insert(latest.begin(), block);
        latest.resize(std::min<std::size_t>(latest.size(), GetParam()));
        static_cast<void>(TbProbeRaw(half.id, half.half, block.start));
        ASSERT_EQ(chained_blocks(half.id, half.half, 5), latest);
        ++probed;
    }
    EXPECT_EQ(probed, 2000);
}

TEST_P(BlockCacheOrder, FaultsLeaveTheListsInOrder) {
    const CacheBuffer cache(GetParam() * tb_entry_size);
    int faults = 0;
    for (int i = 0; i < 3000; ++i) {
        const Half& half = halves_[random_() % halves_.size()];
        const std::uint32_t index = random_index(half);
        char*& path = TbCatalogue[static_cast<std::size_t>(half.id)]
                          .path[static_cast<std::size_t>(half.half)];
        const std::string name = path;
        const bool is_lost = random_() % 8 == 0;
        if (is_lost) {
            TbCloseFiles();
            path[0] = 'x';
        }
        const std::int8_t byte = TbProbeRaw(half.id, half.half, index);
        const bool failed = path == nullptr;
        ASSERT_TRUE(is_lost || !failed);
        ASSERT_EQ(byte, failed ? tb_no_value : static_cast<std::int8_t>(half.bytes[index]));
        ASSERT_EQ(cache_fault(), "") << "probe " << i << ", seed " << seed;
        if (failed) {
            path = tb_alloc_array<char>(name.size() + 1);
            ++faults;
        }
        std::copy(name.begin(), name.end(), path);
    }
    EXPECT_GT(faults, 50);
}

INSTANTIATE_TEST_SUITE_P(Entries, BlockCacheOrder, testing::Values(1U, 2U, 3U, 7U, 64U),
                         [](const auto& run) { return std::to_string(run.param); });
