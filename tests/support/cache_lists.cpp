// SPDX-License-Identifier: MIT
// Each entry is marked where it is met; an entry met twice, or never, is a fault.
#include "support/cache_lists.h"

#include <algorithm>

namespace {

enum class Place { nowhere, free, by_age, chained };

class Marks {
  public:
    Marks() : places_(tb_cache_entries + 1, Place::nowhere) {}

    /// False if the entry was met somewhere else before.
    bool move(TbEntryRef ref, Place from, Place to) {
        const bool is_there = ref < places_.size() && places_[ref] == from;
        if (is_there) {
            places_[ref] = to;
        }
        return is_there;
    }

    [[nodiscard]] std::size_t count(Place place) const {
        return static_cast<std::size_t>(std::count(places_.begin() + 1, places_.end(), place));
    }

  private:
    std::vector<Place> places_;
};

std::string fault_of_ages(Marks& marks) {
    const std::vector<TbEntryRef> down = entries_along(tb_lru_newest, &TbCacheEntry::older);
    std::vector<TbEntryRef> up = entries_along(tb_lru_oldest, &TbCacheEntry::newer);
    std::reverse(up.begin(), up.end());
    if (down != up) {
        return "the list by age reads otherwise from its other end";
    }
    for (const TbEntryRef ref : down) {
        if (!marks.move(ref, Place::nowhere, Place::by_age)) {
            return "an entry is in the list by age twice";
        }
    }
    return "";
}

std::string fault_of_chain(const TbEntry& row, std::int32_t half, std::size_t bucket,
                           Marks& marks) {
    TbEntryRef before = tb_no_entry;
    const TbBuckets& buckets = *row.buckets[static_cast<std::size_t>(half)];
    for (const TbEntryRef ref : entries_along(buckets[bucket], &TbCacheEntry::chain_next)) {
        const TbCacheEntry& entry = tb_cache_entry(ref);
        if (entry.chain_prev != before) {
            return "a chain reads otherwise from its other end";
        }
        if (entry.table_id != row.id || entry.half != half ||
            entry.start / tb_block_size % tb_bucket_count != bucket ||
            entry.start % tb_block_size != 0) {
            return "a block is in the chain of another";
        }
        if (!marks.move(ref, Place::by_age, Place::chained)) {
            return "an entry of a chain is not in the list by age, or in two chains";
        }
        before = ref;
    }
    return "";
}

std::string fault_of_chains(Marks& marks) {
    for (const TbEntry& row : TbCatalogue) {
        for (const std::int32_t half : {0, 1}) {
            if (row.buckets[static_cast<std::size_t>(half)] == nullptr) continue;
            for (std::size_t bucket = 0; bucket < tb_bucket_count; ++bucket) {
                const std::string fault = fault_of_chain(row, half, bucket, marks);
                if (!fault.empty()) {
                    return fault;
                }
            }
        }
    }
    return marks.count(Place::by_age) == 0 ? "" : "an entry in use is in no chain";
}

}  // namespace

std::string cache_fault() {
    Marks marks;
    for (const TbEntryRef ref : entries_along(tb_free_list, &TbCacheEntry::older)) {
        if (!marks.move(ref, Place::nowhere, Place::free)) {
            return "an entry is free twice";
        }
    }
    std::string fault = fault_of_ages(marks);
    if (fault.empty()) {
        fault = fault_of_chains(marks);
    }
    if (fault.empty() && marks.count(Place::nowhere) != 0) {
        fault = "an entry is in no list";
    }
    return fault;
}
