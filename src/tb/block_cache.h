// SPDX-License-Identifier: MIT
// The blocks of table halves that were asked for last, shared by all halves. An entry is either
// free or in use; one in use hangs in two lists, that of all by time of use and the short chain of
// its half by which it is found.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "tb/catalogue.h"
#include "tb/decoder.h"
#include "tb/tb_types.h"

/// Number of a cache entry plus 1; 0: none. Numbers in the place of pointers keep an entry at 32
/// bytes on every system, and so a size of cache at the same count of entries.
using TbEntryRef = std::uint32_t;
inline constexpr TbEntryRef tb_no_entry = 0;

/// What is known of one cached block.
struct TbCacheEntry {
    std::int32_t table_id;
    std::int32_t half;
    std::uint32_t start;    ///< index of the first byte, a multiple of `tb_block_size`
    TbEntryRef older;       ///< towards the oldest; in the free list the next free one
    TbEntryRef newer;       ///< towards the newest
    TbEntryRef chain_next;  ///< in the chain of its bucket
    TbEntryRef chain_prev;
    std::uint32_t data;  ///< where its bytes lie, from the start of the buffer
};
static_assert(sizeof(TbCacheEntry) == 32);

/// Bytes of a block and of the room that decoding may write behind it.
inline constexpr std::uint32_t tb_entry_data_size = tb_block_size + tb_output_slack;

/// Bytes of the buffer that an entry needs in all.
inline constexpr std::uint32_t tb_entry_size = sizeof(TbCacheEntry) + tb_entry_data_size;

extern std::uint32_t tb_cache_entries;  ///< 0: the cache is off
extern std::uint8_t* tb_cache_base;     ///< the buffer: all entries, then the data of each
extern TbEntryRef tb_lru_newest;
extern TbEntryRef tb_lru_oldest;
extern TbEntryRef tb_free_list;

/// Closes everything and takes a buffer of `size` bytes, aligned for an entry, which has to outlive
/// the cache. 0, and the cache is off, if `size` is below 32; else 1, though there may be no entry.
std::int32_t TbCacheInit(void* buffer, std::uint32_t size);

/// Empties the cache and closes all files. Without entries nothing happens.
void TbCacheReset();

/// Closes all files; they are opened again when they are needed. Without entries nothing happens.
void TbCloseFiles();

/// The entry behind a number that is not `tb_no_entry`.
[[nodiscard]] TbCacheEntry& tb_cache_entry(TbEntryRef ref);

/// An entry's bytes.
[[nodiscard]] std::uint8_t* tb_cache_data(const TbCacheEntry& entry);

/// The cached block of a half that holds `index`, made the newest of all and the first of its
/// chain; `tb_no_entry` if it is not there. The half has to have buckets.
[[nodiscard]] TbEntryRef tb_cache_find(std::int32_t id, std::int32_t half, std::uint32_t index);

/// An entry for a new block: a free one, else the oldest, which then is in no list. The cache has
/// to have entries.
[[nodiscard]] TbEntryRef tb_cache_take();

/// Enters a taken entry, whose `table_id`, `half` and `start` are set, as the newest of all and the
/// first of its chain.
void tb_cache_enter(TbEntryRef ref);

/// Puts a taken entry back among the free ones.
void tb_cache_give_back(TbEntryRef ref);
