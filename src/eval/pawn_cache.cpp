// SPDX-License-Identifier: MIT
// An entry is recognised by its key alone, and its slot is the key reduced.
#include "eval/pawn_cache.h"

#include <vector>

namespace {

static_assert(sizeof(PawnEntry) == 168);
static_assert(pawn_cache_entries == 12483);

std::vector<PawnEntry> pawn_cache;

}  // namespace

void pawn_cache_allocate() {
    pawn_cache.resize(pawn_cache_entries);
    for (std::uint32_t slot = 0; slot < pawn_cache_entries; ++slot) {
        pawn_cache[slot].key = slot + 1;  // a key of the next slot, so none that is looked for here
    }
}

const PawnEntry& pawn_entry_of(const Table& table) {
    PawnEntry& entry = pawn_cache[table.pawn_hash % pawn_cache_entries];
    if (entry.key != table.pawn_hash) {
        fill_pawn_entry(table, entry);
    }
    return entry;
}
