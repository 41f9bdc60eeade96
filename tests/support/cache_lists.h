// SPDX-License-Identifier: MIT
// The lists of the block cache as a test sees them: walked from both ends, and compared with one
// another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tb/block_cache.h"

/// A block by its half and its first index.
struct CachedBlock {
    std::int32_t id;
    std::int32_t half;
    std::uint32_t start;
    friend bool operator==(const CachedBlock&, const CachedBlock&) = default;
};

[[nodiscard]] inline CachedBlock block_of_entry(TbEntryRef ref) {
    const TbCacheEntry& entry = tb_cache_entry(ref);
    return {entry.table_id, entry.half, entry.start};
}

/// The entries from `first` along one link; an endless list is cut.
[[nodiscard]] inline std::vector<TbEntryRef> entries_along(TbEntryRef first,
                                                           TbEntryRef TbCacheEntry::*link) {
    std::vector<TbEntryRef> entries;
    for (TbEntryRef ref = first; ref != tb_no_entry && entries.size() <= tb_cache_entries;
         ref = tb_cache_entry(ref).*link) {
        entries.push_back(ref);
    }
    return entries;
}

/// The blocks in use, the newest first.
[[nodiscard]] inline std::vector<CachedBlock> cached_blocks() {
    std::vector<CachedBlock> blocks;
    for (const TbEntryRef ref : entries_along(tb_lru_newest, &TbCacheEntry::older)) {
        blocks.push_back(block_of_entry(ref));
    }
    return blocks;
}

/// The blocks in one bucket of a half, in the order of the chain.
[[nodiscard]] inline std::vector<CachedBlock> chained_blocks(std::int32_t id, std::int32_t half,
                                                             std::size_t bucket) {
    const TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
    const TbBuckets& buckets = *row.buckets[static_cast<std::size_t>(half)];
    std::vector<CachedBlock> blocks;
    for (const TbEntryRef ref : entries_along(buckets[bucket], &TbCacheEntry::chain_next)) {
        blocks.push_back(block_of_entry(ref));
    }
    return blocks;
}

[[nodiscard]] inline std::size_t free_entries() {
    return entries_along(tb_free_list, &TbCacheEntry::older).size();
}

/// What is wrong with the lists: each entry has to be either free or both in the list by age and
/// in the one chain where its block belongs. Empty if all is well.
[[nodiscard]] std::string cache_fault();
