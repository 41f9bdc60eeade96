// SPDX-License-Identifier: MIT
// Cells are filled table by table, so that only one other half is in memory at a time.
#include "tbgen/outside_values.h"

#include <algorithm>
#include <cstring>

#include "tbgen/parallel.h"

namespace {

constexpr std::size_t squares = 64;
constexpr std::size_t files = 8;

/// The better of two values for the side that has moved: the other one is to move, and values rise
/// from its quickest loss to its quickest win.
Value better_for_mover(Value a, Value b) {
    if (a == not_reachable) return b;
    return b == not_reachable ? a : std::min(a, b);
}

}  // namespace

std::size_t find_value(const std::uint8_t* at, std::size_t count, Value value) {
    if (count == 0) {
        return 0;
    }
    const void* const found = std::memchr(at, static_cast<std::uint8_t>(value), count);
    return found == nullptr
               ? count
               : static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - at);
}

OutsideValues::OutsideValues(const KingPairs& pairs, const MenList& men, std::uint8_t mover,
                             Kind kind)
    : pairs_(&pairs), men_(men), mover_(mover), kind_(kind) {
    for (std::size_t i = 0; i < men.size(); ++i) {
        slab_cells_ *= kind == Kind::promotion && i == 0 ? files : squares;
    }
    cells_.assign(pairs.slabs() * slab_cells_, static_cast<std::uint8_t>(not_reachable));
    present_.resize(pairs.slabs());
    if (kind == Kind::capture) {
        open_.resize(pairs.slabs() * slab_words());
    }
}

MenSquares OutsideValues::squares_of(std::size_t cell) const {
    MenSquares result{};
    for (std::size_t i = men_.size(); i-- > 0;) {
        if (kind_ == Kind::promotion && i == 0) {
            const TbSquare last_rank = mover_ == 0 ? squares - files : 0;
            result[i] = last_rank + static_cast<TbSquare>(cell);
        } else {
            result[i] = static_cast<TbSquare>(cell % squares);
            cell /= squares;
        }
    }
    return result;
}

void OutsideValues::fill_slab(std::size_t slab, const OtherHalf& half,
                              std::optional<std::size_t> promoted) {
    const SquareSet last_rank = rank_set(mover_ == 0 ? 7 : 0);
    const Numbering::Frame frame = half.frame(pairs_->kings(slab));
    std::uint8_t* const cells = cells_.data() + slab * slab_cells_;
    for (std::size_t cell = 0; cell < slab_cells_; ++cell) {
        const MenSquares at = squares_of(cell);
        bool fits = true;
        for (std::size_t i = 0; i < men_.size(); ++i) {
            if (men_[i].kind != tb_pawn) continue;
            fits = fits && (square_bit(at[i]) & (i == promoted ? last_rank : pawn_ranks)) != 0;
        }
        if (!fits) continue;
        const Value value =
            better_for_mover(static_cast<Value>(cells[cell]), half.value(frame, at));
        cells[cell] = static_cast<std::uint8_t>(value);
    }
}

void OutsideValues::note_slab(std::size_t slab) {
    for (std::size_t cell = 0; cell < slab_cells_; ++cell) {
        const Value found = value(slab, cell);
        present_[slab].set(static_cast<std::uint8_t>(found));
        if (kind_ == Kind::capture && found != not_reachable) {
            open_[slab * slab_words() + cell / squares] |=
                square_bit(static_cast<TbSquare>(cell % squares));
        }
    }
}

bool OutsideValues::fill(const LoadHalf& load_half, std::size_t threads) {
    const auto fill_from = [&](const MenList& men, std::optional<std::size_t> promoted) {
        OtherHalf half(men, mover_ ^ 1U);
        if (!half.load(load_half)) {
            return false;
        }
        in_parallel(threads, pairs_->slabs(),
                    [&](std::size_t slab) { fill_slab(slab, half, promoted); });
        return true;
    };
    if (kind_ == Kind::capture && !fill_from(men_, std::nullopt)) {
        return false;
    }
    const std::size_t may_promote = kind_ == Kind::promotion ? 1 : men_.size();
    for (std::size_t i = 0; i < may_promote; ++i) {
        if (men_[i].kind != tb_pawn || men_[i].side != mover_) continue;
        for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
            MenList promoted = men_;
            promoted.set(i, {mover_, kind});
            if (!fill_from(promoted, i)) {
                return false;
            }
        }
    }
    in_parallel(threads, pairs_->slabs(), [&](std::size_t slab) { note_slab(slab); });
    return true;
}

void OutsideValues::close_wins(std::size_t slab, int moves) {
    for_each_cell(slab, mates_in(moves), [&](std::size_t cell) {
        open_[slab * slab_words() + cell / squares] &=
            ~square_bit(static_cast<TbSquare>(cell % squares));
    });
}

int OutsideValues::longest() const {
    std::bitset<256> all;
    for (const std::bitset<256>& slab : present_) {
        all |= slab;
    }
    int longest = 0;
    for (int moves = 0; moves <= longest_told; ++moves) {
        if (all[static_cast<std::uint8_t>(mated_in(moves))] ||
            (moves > 0 && all[static_cast<std::uint8_t>(mates_in(moves))])) {
            longest = moves;
        }
    }
    return longest;
}
