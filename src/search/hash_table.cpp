// SPDX-License-Identifier: MIT
// Allocation, clearing and the rule of replacement: within a search an entry gives way only to a
// deeper one, and a new search may replace every older entry. The age has two values, so an entry
// two searches old counts as current again.
#include "search/hash_table.h"

#include <algorithm>
#include <cstdlib>

#include "platform/memory_limit.h"
#include "shell/log.h"

namespace {

constexpr std::uint64_t bytes_a_megabyte = 1048576;
constexpr std::uint64_t spare_entries = 10;
constexpr std::int32_t most_megabytes = 65535;  // entries are counted in 32 bits

/// Memory for the entries, or null if the machine has not as much.
HashEntry* try_to_allocate(std::int32_t megabytes) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(megabytes) * bytes_a_megabyte;
    if (bytes >= memory_limit_bytes()) {
        return nullptr;
    }
    const std::uint64_t entries = bytes / sizeof(HashEntry) + spare_entries;
    return static_cast<HashEntry*>(std::calloc(entries, sizeof(HashEntry)));
}

}  // namespace

HashEntry* hash_table = nullptr;
std::uint32_t hash_entries = 0;
std::int32_t hash_mb = usual_hash_mb;
std::uint8_t hash_age = '1';

void hash_allocate() {
    hash_free();
    std::int32_t megabytes = std::clamp(hash_mb, 1, most_megabytes);
    hash_table = try_to_allocate(megabytes);
    while (hash_table == nullptr && megabytes > 1) {
        megabytes /= 2;
        hash_table = try_to_allocate(megabytes);
    }
    if (hash_table == nullptr) {
        std::abort();  // a machine without one megabyte runs nothing
    }
    const std::uint64_t bytes = static_cast<std::uint64_t>(megabytes) * bytes_a_megabyte;
    hash_entries = static_cast<std::uint32_t>(bytes / sizeof(HashEntry));
    if (hash_mb >= 1) {
        mirror("Hashsize ", bytes, " bytes", end_line);
    }
}

void hash_clear() {
    // Fill values that no position hits: no side is 5.
    constexpr std::uint32_t empty_key = 777;
    constexpr std::int32_t empty_score = 220;
    constexpr std::int8_t empty_depth = -50;
    constexpr std::int8_t empty_type = 100;
    constexpr std::int8_t empty_side = 5;
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        HashEntry& entry = hash_table[slot];
        entry.key = empty_key;
        entry.score = empty_score;
        entry.depth = empty_depth;
        entry.type = empty_type;
        entry.side = empty_side;
        entry.has_move = 0;
        entry.age = 0;
    }
}

void hash_free() {
    std::free(hash_table);
    hash_table = nullptr;
    hash_entries = 0;
}

void hash_flip_age() {
    hash_age = hash_age == '1' ? '0' : '1';
}

void hash_store(HashEntry& entry, const Table& position, std::int32_t depth, HashType type,
                std::int32_t score, const Move* best) {
    if (entry.depth >= depth && entry.age == hash_age) {
        return;
    }
    entry.key = position.hash_lock;
    entry.age = hash_age;
    entry.side = static_cast<std::int8_t>(position.side);
    entry.depth = static_cast<std::int8_t>(depth);
    entry.type = type;
    entry.score = score;
    entry.has_move = best != nullptr ? 1 : 0;
    if (best != nullptr) {
        entry.from = static_cast<std::uint8_t>(best->posFrom);
        entry.to = static_cast<std::uint8_t>(best->posTo);
        entry.info = static_cast<std::int8_t>(best->posInfo);
    }
}
