// SPDX-License-Identifier: MIT
// Positions of endgame tables drawn at random, and where the generator's layout has them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "support/slow_endgame.h"
#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/outside_values.h"
#include "tbgen/position_set.h"

using LayoutRandom = std::mt19937;

/// A number from 0 to `below` - 1, the same on every system.
[[nodiscard]] inline std::uint32_t drawn_below(LayoutRandom& random, std::uint32_t below) {
    return static_cast<std::uint32_t>(random() % below);
}

/// Where a position or a code lies.
struct LayoutPlace {
    std::size_t slab;
    std::size_t word;
    TbSquare square;

    [[nodiscard]] bool is_in(const PositionSet& set) const {
        return (set.slab(slab)[word] & square_bit(square)) != 0;
    }
    void put_into(PositionSet& set) const {
        set.slab(slab)[word] |= square_bit(square);
        set.set_used(slab, true);
    }
};

class EndgameLayout {
  public:
    explicit EndgameLayout(std::string_view name);

    [[nodiscard]] const Endgame& endgame() const { return endgame_; }
    [[nodiscard]] const KingPairs& pairs() const { return pairs_; }
    [[nodiscard]] PositionSet empty_set() const { return {pairs_.slabs(), endgame_.slab_words()}; }

    /// The position of a place, without codes; it need not be legal.
    [[nodiscard]] SlowPosition position(const LayoutPlace& place, std::uint8_t to_move) const;

    /// A legal position in a slab. Where both sides have pawns, in every second one a pawn of the
    /// side to move can pass an enemy pawn by a double step.
    [[nodiscard]] SlowPosition draw(LayoutRandom& random, std::size_t slab,
                                    std::uint8_t to_move) const;

    /// The place of a position whose kings are those of a slab.
    [[nodiscard]] LayoutPlace place_of(const SlowPosition& position) const;

    /// Where the position after a quiet move lies; two places if the kings' line mirrors it. After
    /// a promotion or a double step past an enemy pawn it is a code.
    [[nodiscard]] std::vector<LayoutPlace> places_after(const SlowPosition& before,
                                                        const SlowMove& move) const;

    [[nodiscard]] static bool is_quiet(const SlowPosition& before, const SlowMove& move) {
        return move.captured == before.men.size();
    }

    /// The slab of two kings; the number of slabs if they have none.
    [[nodiscard]] std::size_t slab_of(const KingSquares& kings) const;

  private:
    void draw_double_step(LayoutRandom& random, SlowPosition& position) const;

    Endgame endgame_;
    KingPairs pairs_;
    std::vector<std::size_t> slabs_;  ///< by both kings' squares
};

/// The bytes of the tables of three men in tests/data.
[[nodiscard]] std::optional<Bytes> three_men_bytes(std::int32_t row, std::int32_t half);

/// A value of an unsolved table: one of a few, by the number of the position alone.
[[nodiscard]] std::optional<Bytes> made_up_bytes(std::int32_t row, std::int32_t half);

/// Values of single positions, found by the engine's own index.
class SlowTables {
  public:
    explicit SlowTables(LoadHalf load_half) : load_half_(std::move(load_half)) {}

    /// The value of a legal position; bare kings are a draw.
    [[nodiscard]] Value value(const SlowPosition& position);

    /// Of a capture, what stands behind it; of one that promotes, what is best for the side that
    /// makes it. `not_reachable` if it leaves the king attacked.
    [[nodiscard]] Value value_behind(const SlowPosition& before, const SlowMove& move);

  private:
    [[nodiscard]] Value value_of(const SlowPosition& position, bool is_swapped, std::int32_t row);

    LoadHalf load_half_;
    std::map<std::pair<std::int32_t, std::int32_t>, Bytes> halves_;
};
