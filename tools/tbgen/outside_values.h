// SPDX-License-Identifier: MIT
// What lies behind the moves that lead out of a table: captures and promotions. Their values are
// known from other tables and are laid out by this table's slabs, so that each step of the
// generation finds those that become known with it.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

#include "tbgen/endgame.h"
#include "tbgen/half_bytes.h"
#include "tbgen/king_pairs.h"
#include "tbgen/square_set.h"

/// Positions of the men that are left when `mover` has captured or promoted; the other side is to
/// move. A pawn of the mover on its last rank stands for the best piece that it can become.
///
/// A slab has a cell for each placement of the men, whose squares are digits to the base of 64.
/// After a promotion the first man is the pawn that has promoted, and its digit is the file.
class OutsideValues {
  public:
    enum class Kind : std::uint8_t { capture, promotion };

    /// `men`: those that are left; for a promotion the pawn comes first.
    OutsideValues(const KingPairs& pairs, const MenList& men, std::uint8_t mover, Kind kind);

    /// Fills in the values from the tables that they are in; false if one cannot be had.
    [[nodiscard]] bool fill(const LoadHalf& load_half, std::size_t threads);

    [[nodiscard]] const MenList& men() const { return men_; }
    [[nodiscard]] std::uint8_t mover() const { return mover_; }
    [[nodiscard]] std::size_t slab_cells() const { return slab_cells_; }

    /// Whether some position of a slab has a value.
    [[nodiscard]] bool has(std::size_t slab, Value value) const {
        return present_[slab][static_cast<std::uint8_t>(value)];
    }

    [[nodiscard]] Value value(std::size_t slab, std::size_t cell) const {
        return static_cast<Value>(cells_[slab * slab_cells_ + cell]);
    }

    /// Calls `visit(cell)` for each cell of a slab with this value.
    template <class Visit>
    void for_each_cell(std::size_t slab, Value value, const Visit& visit) const;

    /// The reachable positions of a slab that the side to move is not yet known to win. Word: the
    /// cell without its last digit; bit: the last digit.
    [[nodiscard]] SquareSet open_word(std::size_t slab, std::size_t word) const {
        return open_[slab * slab_words() + word];
    }

    /// The side to move is now known to win where it mates in so many moves.
    void close_wins(std::size_t slab, int moves);

    /// The longest way to mate among the values, in moves.
    [[nodiscard]] int longest() const;

  private:
    [[nodiscard]] std::size_t slab_words() const { return slab_cells_ < 64 ? 1 : slab_cells_ / 64; }
    [[nodiscard]] MenSquares squares_of(std::size_t cell) const;
    void fill_slab(std::size_t slab, const OtherHalf& half, std::optional<std::size_t> promoted);
    void note_slab(std::size_t slab);

    const KingPairs* pairs_;
    MenList men_;
    std::uint8_t mover_;
    Kind kind_;
    std::size_t slab_cells_ = 1;
    Bytes cells_;
    std::vector<std::bitset<256>> present_;
    std::vector<SquareSet> open_;  ///< of captures alone
};

/// The first of `count` bytes from `at` on that equals a value, as an offset; `count` if none does.
[[nodiscard]] std::size_t find_value(const std::uint8_t* at, std::size_t count, Value value);

template <class Visit>
void OutsideValues::for_each_cell(std::size_t slab, Value value, const Visit& visit) const {
    if (!has(slab, value)) {
        return;
    }
    const std::uint8_t* const cells = cells_.data() + slab * slab_cells_;
    std::size_t cell = find_value(cells, slab_cells_, value);
    while (cell < slab_cells_) {
        visit(cell);
        ++cell;
        cell += find_value(cells + cell, slab_cells_ - cell, value);
    }
}
