// SPDX-License-Identifier: MIT
// The cache's memory and its lists step by step: how many blocks a size gives, what a hit, a miss
// and an eviction change, and when the disk is read.
#include "tb/block_cache.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include "support/cache_buffer.h"
#include "support/cache_lists.h"
#include "support/endgame_files.h"
#include "support/open_files.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/probe_raw.h"
#include "tb/register.h"

namespace {

constexpr std::int32_t kbk = 3;
constexpr std::int32_t krk = 4;
constexpr std::uint32_t block = 8192;
constexpr std::uint32_t same_bucket = 32 * block;

using Blocks = std::vector<CachedBlock>;

class BlockCache : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    /// Both halves of krk and the first one of kbk, each of 100 blocks; every byte of a block is
    /// its number, and 100 more or 50 less in the other halves.
    static void register_halves() {
        put_numbered("krk.nbw", 0);
        put_numbered("krk.nbb", 100);
        put_numbered("kbk.nbw", -50);
        ASSERT_EQ(TbRegisterAll(""), 3);
    }

    /// The file's blocks are numbered from another number on.
    static void put_numbered(const std::string& name, int first) {
        std::string bytes;
        for (int number = 0; number < 100; ++number) {
            bytes.append(block, static_cast<char>(number + first));
        }
        write_file(name, bytes);
    }

    static std::int8_t probe(std::uint32_t index) { return TbProbeRaw(krk, 0, index); }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(BlockCache, SizesThatTurnItOff) {
    for (const std::uint32_t size : {0U, 1U, 31U}) {
        const CacheBuffer cache(size);
        EXPECT_EQ(cache.result(), 0);
        EXPECT_EQ(tb_cache_entries, 0U);
    }
}

TEST_F(BlockCache, SizesThatHoldNoBlock) {
    register_halves();
    for (const std::uint32_t size : {32U, 8259U}) {
        const CacheBuffer cache(size);
        EXPECT_EQ(cache.result(), 1);
        EXPECT_EQ(tb_cache_entries, 0U);
        EXPECT_EQ(probe(0), tb_no_value);
        EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
        EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    }
}

TEST_F(BlockCache, AnEntryTakes8260Bytes) {
    EXPECT_EQ(tb_entry_data_size, 8228U);
    EXPECT_EQ(tb_entry_size, 8260U);
    for (const std::uint32_t entries : {1U, 2U, 3U, 100U}) {
        const CacheBuffer exact(entries * 8260);
        EXPECT_EQ(tb_cache_entries, entries);
        const CacheBuffer larger(entries * 8260 + 8259);
        EXPECT_EQ(tb_cache_entries, entries);
    }
}

TEST_F(BlockCache, UsualSizeGives4062Entries) {
    const CacheBuffer cache(32U << 20U);
    EXPECT_EQ(cache.result(), 1);
    EXPECT_EQ(tb_cache_entries, 4062U);
    EXPECT_EQ(tb_cache_base, cache.memory());
    EXPECT_EQ(free_entries(), 4062U);
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, DataLieBehindAllEntries) {
    const CacheBuffer cache(5 * tb_entry_size, 0xff);
    std::set<std::uint32_t> places;
    for (TbEntryRef ref = 1; ref <= 5; ++ref) {
        const TbCacheEntry& entry = tb_cache_entry(ref);
        EXPECT_EQ(entry.data, 5 * 32 + (ref - 1) * 8228);
        EXPECT_EQ(tb_cache_data(entry), tb_cache_base + entry.data);
        EXPECT_EQ(entry.newer, tb_no_entry);
        EXPECT_EQ(entry.chain_next, tb_no_entry);
        EXPECT_EQ(entry.chain_prev, tb_no_entry);
        places.insert(entry.data);
    }
    EXPECT_EQ(places.size(), 5U);
    EXPECT_EQ(*places.rbegin() + 8228, 5U * 8260U);
}

TEST_F(BlockCache, EntriesAreFreeInTheirOrder) {
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(entries_along(tb_free_list, &TbCacheEntry::older),
              (std::vector<TbEntryRef>{1, 2, 3}));
    EXPECT_EQ(tb_lru_newest, tb_no_entry);
    EXPECT_EQ(tb_lru_oldest, tb_no_entry);
    EXPECT_EQ(tb_cache_take(), 1U);
    EXPECT_EQ(tb_cache_take(), 2U);
    tb_cache_give_back(1);
    EXPECT_EQ(tb_cache_take(), 1U);
    EXPECT_EQ(tb_cache_take(), 3U);
    EXPECT_EQ(tb_free_list, tb_no_entry);
}

TEST_F(BlockCache, MissTakesAFreeEntry) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(probe(5 * block + 17), 5);
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 5 * block}}));
    EXPECT_EQ(free_entries(), 2U);
    EXPECT_EQ(probe(6 * block), 6);
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 6 * block}, {krk, 0, 5 * block}}));
    EXPECT_EQ(free_entries(), 1U);
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, HitMakesABlockTheNewest) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    for (const std::uint32_t number : {0U, 1U, 2U}) {
        EXPECT_EQ(probe(number * block), static_cast<std::int8_t>(number));
    }
    EXPECT_EQ(probe(1 * block), 1);  // from the middle
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, block}, {krk, 0, 2 * block}, {krk, 0, 0}}));
    EXPECT_EQ(cache_fault(), "");
    EXPECT_EQ(probe(0), 0);  // the oldest
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 0}, {krk, 0, block}, {krk, 0, 2 * block}}));
    EXPECT_EQ(cache_fault(), "");
    EXPECT_EQ(probe(1), 0);  // the newest
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 0}, {krk, 0, block}, {krk, 0, 2 * block}}));
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, HitComesToTheFrontOfItsChain) {
    register_halves();
    const CacheBuffer cache(4 * tb_entry_size);
    const Blocks rising = {{krk, 0, 7 * block},
                           {krk, 0, 7 * block + same_bucket},
                           {krk, 0, 7 * block + 2 * same_bucket}};
    for (const CachedBlock& one : rising) {
        static_cast<void>(probe(one.start));
    }
    EXPECT_EQ(chained_blocks(krk, 0, 7), (Blocks{rising[2], rising[1], rising[0]}));
    static_cast<void>(probe(rising[1].start + 8191));
    EXPECT_EQ(chained_blocks(krk, 0, 7), (Blocks{rising[1], rising[2], rising[0]}));
    static_cast<void>(probe(rising[0].start));
    EXPECT_EQ(chained_blocks(krk, 0, 7), (Blocks{rising[0], rising[1], rising[2]}));
    static_cast<void>(probe(rising[0].start));
    EXPECT_EQ(chained_blocks(krk, 0, 7), (Blocks{rising[0], rising[1], rising[2]}));
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, BlockLiesInTheBucketOfItsNumberModulo32) {
    register_halves();
    const CacheBuffer cache(100 * tb_entry_size);
    for (std::uint32_t number = 0; number < 100; ++number) {
        static_cast<void>(probe(number * block));
        ASSERT_FALSE(chained_blocks(krk, 0, number % 32).empty());
        EXPECT_EQ(chained_blocks(krk, 0, number % 32).front(),
                  (CachedBlock{krk, 0, number * block}));
    }
    EXPECT_EQ(chained_blocks(krk, 0, 3).size(), 4U);
    EXPECT_EQ(chained_blocks(krk, 0, 4).size(), 3U);
}

TEST_F(BlockCache, OldestBlockMakesRoom) {
    register_halves();
    const CacheBuffer cache(2 * tb_entry_size);
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(probe(2 * block), 2);
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 2 * block}, {krk, 0, 0}}));
    EXPECT_TRUE(chained_blocks(krk, 0, 1).empty());
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, BlockMayMakeRoomForAnotherHalf) {
    register_halves();
    const CacheBuffer cache(2 * tb_entry_size);
    EXPECT_EQ(probe(3 * block), 3);
    EXPECT_EQ(probe(3 * block + same_bucket), 35);
    EXPECT_EQ(TbProbeRaw(krk, 1, 3 * block), 103);
    EXPECT_EQ(chained_blocks(krk, 0, 3), (Blocks{{krk, 0, 3 * block + same_bucket}}));
    EXPECT_EQ(chained_blocks(krk, 1, 3), (Blocks{{krk, 1, 3 * block}}));
    EXPECT_EQ(TbProbeRaw(kbk, 0, 3 * block), -47);
    EXPECT_TRUE(chained_blocks(krk, 0, 3).empty());
    EXPECT_EQ(cached_blocks(), (Blocks{{kbk, 0, 3 * block}, {krk, 1, 3 * block}}));
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, BlockOfAnotherHalfIsNotFound) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(TbProbeRaw(krk, 0, 9 * block), 9);
    EXPECT_EQ(TbProbeRaw(krk, 1, 9 * block), 109);
    EXPECT_EQ(TbProbeRaw(kbk, 0, 9 * block), -41);
    EXPECT_EQ(TbProbeRaw(krk, 0, 9 * block), 9);
    EXPECT_EQ(free_entries(), 0U);
}

TEST_F(BlockCache, BlockInCacheIsNotReadAgain) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(probe(2 * block), 2);
    put_numbered("krk.nbw", 20);
    EXPECT_EQ(probe(2 * block), 2);
    EXPECT_EQ(probe(3 * block - 1), 2);
    EXPECT_EQ(probe(3 * block), 23);
    EXPECT_EQ(probe(2 * block), 2);
}

TEST_F(BlockCache, EvictedBlockIsReadAgain) {
    register_halves();
    const CacheBuffer cache(2 * tb_entry_size);
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(probe(2 * block), 2);
    put_numbered("krk.nbw", 20);
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(probe(2 * block), 2);
    EXPECT_EQ(probe(0), 20);
}

TEST_F(BlockCache, OneEntryReadsTheDiskAtEveryChange) {
    register_halves();
    const CacheBuffer cache(tb_entry_size);
    for (int time = 0; time < 20; ++time) {
        put_numbered("krk.nbw", time);
        EXPECT_EQ(probe(4 * block), 4 + time);
        EXPECT_EQ(cache_fault(), "");
        EXPECT_EQ(probe(4 * block + same_bucket), 36 + time);
        EXPECT_EQ(cache_fault(), "");
        EXPECT_EQ(chained_blocks(krk, 0, 4), (Blocks{{krk, 0, 4 * block + same_bucket}}));
    }
}

TEST_F(BlockCache, BorderOfABlock) {
    register_halves();
    const CacheBuffer cache(2 * tb_entry_size);
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(probe(2 * block - 1), 1);
    EXPECT_EQ(cached_blocks().size(), 1U);
    EXPECT_EQ(probe(block - 1), 0);
    EXPECT_EQ(cached_blocks(), (Blocks{{krk, 0, 0}, {krk, 0, block}}));
}

TEST_F(BlockCache, ResetFreesAllEntriesAndClosesTheFiles) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    const int before = open_files();
    for (const std::int32_t half : {0, 1}) {
        for (const std::uint32_t index : {0U, same_bucket, 2 * block}) {
            static_cast<void>(TbProbeRaw(krk, half, index));
        }
    }
    EXPECT_EQ(open_files(), before + 2);
    TbCacheReset();
    EXPECT_EQ(open_files(), before);
    EXPECT_EQ(entries_along(tb_free_list, &TbCacheEntry::older),
              (std::vector<TbEntryRef>{1, 2, 3}));
    EXPECT_TRUE(cached_blocks().empty());
    EXPECT_EQ(cache_fault(), "");
    put_numbered("krk.nbb", 20);
    EXPECT_EQ(TbProbeRaw(krk, 1, 0), 20);
}

TEST_F(BlockCache, NewMemoryBeginsEmpty) {
    register_halves();
    const CacheBuffer first(3 * tb_entry_size);
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(probe(same_bucket), 32);
    const int open = open_files();
    const CacheBuffer second(2 * tb_entry_size, 0xff);
    EXPECT_EQ(open_files(), open - 1);
    EXPECT_EQ(free_entries(), 2U);
    EXPECT_TRUE(cached_blocks().empty());
    EXPECT_EQ(cache_fault(), "");
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, TurnedOffItClosesTheFilesAndTurnedOnItBeginsEmpty) {
    register_halves();
    CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(probe(block), 1);
    const int open = open_files();
    EXPECT_EQ(TbCacheInit(nullptr, 0), 0);
    EXPECT_EQ(open_files(), open - 1);
    EXPECT_EQ(tb_cache_base, nullptr);
    EXPECT_EQ(probe(block), tb_no_value);
    const CacheBuffer again(3 * tb_entry_size);
    EXPECT_TRUE(chained_blocks(krk, 0, 1).empty());
    EXPECT_EQ(probe(block), 1);
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(BlockCache, WithoutEntriesNothingIsResetOrClosed) {
    register_halves();
    const TbEntryRef free_before = tb_free_list;
    TbEntry& row = TbCatalogue[krk];
    (*row.buckets[0])[3] = 77;
    std::FILE* const file = std::tmpfile();
    row.file[0] = file;
    TbCacheReset();
    TbCloseFiles();
    EXPECT_EQ(tb_free_list, free_before);
    EXPECT_EQ((*row.buckets[0])[3], 77U);
    EXPECT_EQ(row.file[0], file);
    row.file[0] = nullptr;
    EXPECT_EQ(std::fclose(file), 0);
}

TEST_F(BlockCache, FilesAreClosedAndOpenedAgainWithoutLossOfBlocks) {
    register_halves();
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(TbProbeRaw(kbk, 0, 0), -50);
    const int open = open_files();
    TbCloseFiles();
    EXPECT_EQ(open_files(), open - 2);
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    EXPECT_EQ(TbCatalogue[kbk].file[0], nullptr);
    EXPECT_EQ(cached_blocks(), (Blocks{{kbk, 0, 0}, {krk, 0, 0}}));
    EXPECT_EQ(probe(0), 0);
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    EXPECT_EQ(probe(block), 1);
    EXPECT_NE(TbCatalogue[krk].file[0], nullptr);
    EXPECT_EQ(TbCatalogue[kbk].file[0], nullptr);
}

TEST_F(BlockCache, HalfWithoutBucketsIsNotFound) {
    const CacheBuffer cache(3 * tb_entry_size);
    EXPECT_EQ(probe(0), tb_no_value);
    EXPECT_EQ(free_entries(), 3U);
}
