// SPDX-License-Identifier: MIT
// Both lists are linked both ways, so that no step walks over more than one short chain.
#include "tb/block_cache.h"

#include <algorithm>

std::uint32_t tb_cache_entries = 0;
std::uint8_t* tb_cache_base = nullptr;
TbEntryRef tb_lru_newest = tb_no_entry;
TbEntryRef tb_lru_oldest = tb_no_entry;
TbEntryRef tb_free_list = tb_no_entry;

namespace {

/// The head of the chain that a block belongs to. Only blocks of one half share its buckets.
std::uint32_t& bucket_of(std::int32_t id, std::int32_t half, std::uint32_t index) {
    TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
    return (*row.buckets[static_cast<std::size_t>(half)])[index / tb_block_size % tb_bucket_count];
}

std::uint32_t& bucket_of(const TbCacheEntry& entry) {
    return bucket_of(entry.table_id, entry.half, entry.start);
}

void unlink_by_age(const TbCacheEntry& entry) {
    (entry.older == tb_no_entry ? tb_lru_oldest : tb_cache_entry(entry.older).newer) = entry.newer;
    (entry.newer == tb_no_entry ? tb_lru_newest : tb_cache_entry(entry.newer).older) = entry.older;
}

void make_newest(TbEntryRef ref) {
    TbCacheEntry& entry = tb_cache_entry(ref);
    entry.newer = tb_no_entry;
    entry.older = tb_lru_newest;
    (tb_lru_newest == tb_no_entry ? tb_lru_oldest : tb_cache_entry(tb_lru_newest).newer) = ref;
    tb_lru_newest = ref;
}

void unlink_from_chain(const TbCacheEntry& entry, std::uint32_t& bucket) {
    (entry.chain_prev == tb_no_entry ? bucket : tb_cache_entry(entry.chain_prev).chain_next) =
        entry.chain_next;
    if (entry.chain_next != tb_no_entry) {
        tb_cache_entry(entry.chain_next).chain_prev = entry.chain_prev;
    }
}

void make_head(TbEntryRef ref, std::uint32_t& bucket) {
    TbCacheEntry& entry = tb_cache_entry(ref);
    entry.chain_prev = tb_no_entry;
    entry.chain_next = bucket;
    if (bucket != tb_no_entry) {
        tb_cache_entry(bucket).chain_prev = ref;
    }
    bucket = ref;
}

}  // namespace

TbCacheEntry& tb_cache_entry(TbEntryRef ref) {
    return reinterpret_cast<TbCacheEntry*>(tb_cache_base)[ref - 1];
}

std::uint8_t* tb_cache_data(const TbCacheEntry& entry) {
    return tb_cache_base + entry.data;
}

std::int32_t TbCacheInit(void* buffer, std::uint32_t size) {
    constexpr std::uint32_t too_small = 32;  // sizes below turn the cache off
    TbCloseFiles();
    tb_cache_entries = 0;
    tb_cache_base = nullptr;
    if (size < too_small) {
        return 0;
    }
    tb_cache_entries = size / tb_entry_size;
    tb_cache_base = static_cast<std::uint8_t*>(buffer);
    TbCacheReset();
    return 1;
}

void TbCacheReset() {
    if (tb_cache_entries == 0) {
        return;
    }
    TbCloseFiles();
    const auto records = static_cast<std::uint32_t>(tb_cache_entries * sizeof(TbCacheEntry));
    for (TbEntryRef ref = 1; ref <= tb_cache_entries; ++ref) {
        const TbEntryRef next = ref < tb_cache_entries ? ref + 1 : tb_no_entry;
        tb_cache_entry(ref) = {};
        tb_cache_entry(ref).older = next;
        tb_cache_entry(ref).data = records + (ref - 1) * tb_entry_data_size;
    }
    tb_free_list = 1;
    tb_lru_newest = tb_no_entry;
    tb_lru_oldest = tb_no_entry;
    for (TbEntry& row : TbCatalogue) {
        for (TbBuckets* const buckets : row.buckets) {
            if (buckets != nullptr) {
                buckets->fill(tb_no_entry);
            }
        }
    }
}

void TbCloseFiles() {
    if (tb_cache_entries == 0) {
        return;
    }
    for (TbEntry& row : TbCatalogue) {
        for (std::FILE*& file : row.file) {
            if (file != nullptr) {
                std::fclose(file);
                file = nullptr;
            }
        }
    }
}

TbEntryRef tb_cache_find(std::int32_t id, std::int32_t half, std::uint32_t index) {
    std::uint32_t& bucket = bucket_of(id, half, index);
    TbEntryRef ref = bucket;
    while (ref != tb_no_entry && index - tb_cache_entry(ref).start >= tb_block_size) {
        ref = tb_cache_entry(ref).chain_next;
    }
    if (ref != tb_no_entry) {
        if (ref != tb_lru_newest) {
            unlink_by_age(tb_cache_entry(ref));
            make_newest(ref);
        }
        if (ref != bucket) {
            unlink_from_chain(tb_cache_entry(ref), bucket);
            make_head(ref, bucket);
        }
    }
    return ref;
}

TbEntryRef tb_cache_take() {
    if (tb_free_list != tb_no_entry) {
        const TbEntryRef ref = tb_free_list;
        tb_free_list = tb_cache_entry(ref).older;
        return ref;
    }
    const TbEntryRef ref = tb_lru_oldest;
    TbCacheEntry& entry = tb_cache_entry(ref);
    unlink_by_age(entry);
    unlink_from_chain(entry, bucket_of(entry));
    return ref;
}

void tb_cache_enter(TbEntryRef ref) {
    make_newest(ref);
    make_head(ref, bucket_of(tb_cache_entry(ref)));
}

void tb_cache_give_back(TbEntryRef ref) {
    tb_cache_entry(ref).older = tb_free_list;
    tb_free_list = ref;
}
