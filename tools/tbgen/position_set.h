// SPDX-License-Identifier: MIT
// A set of positions of one half of a table, a bit each, in slabs and words.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tbgen/endgame.h"

class PositionSet {
  public:
    PositionSet(std::size_t slabs, std::size_t slab_words)
        : slab_words_(slab_words), words_(slabs * slab_words), used_(slabs) {}

    [[nodiscard]] const SquareSet* slab(std::size_t number) const {
        return words_.data() + number * slab_words_;
    }
    [[nodiscard]] SquareSet* slab(std::size_t number) {
        return words_.data() + number * slab_words_;
    }

    /// Whether a slab may have members. Kept by those who write the slab.
    [[nodiscard]] bool is_used(std::size_t slab) const { return used_[slab] != 0; }
    void set_used(std::size_t slab, bool used) { used_[slab] = used ? 1 : 0; }

    /// Takes all members out of a slab.
    void clear(std::size_t number) {
        if (is_used(number)) {
            std::fill_n(slab(number), slab_words_, SquareSet{0});
            set_used(number, false);
        }
    }

  private:
    std::size_t slab_words_;
    std::vector<SquareSet> words_;
    std::vector<std::uint8_t> used_;  // bytes: threads write neighbours at the same time
};
