// SPDX-License-Identifier: MIT
// Pairs of kings, which number the slabs of a table, and the king moves between them. The king of
// the side named first stands in one part of the board: on the a to d files where there are pawns,
// in the triangle a1-d1-d4 where there are none.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tbgen/square_set.h"
#include "tbgen/symmetry.h"

/// Both kings' squares. Index: side.
using KingSquares = std::array<TbSquare, 2>;

/// A king move seen from its slab: the slab it leads to, whose board is turned.
struct KingMove {
    TbSquare to;         ///< on the board of the slab that is left
    std::uint16_t slab;  ///< led to
    Turn turn;           ///< brings the board that is left to that of `slab`
};

class KingPairs {
  public:
    explicit KingPairs(bool has_pawns);

    [[nodiscard]] std::size_t slabs() const { return kings_.size(); }
    [[nodiscard]] const KingSquares& kings(std::size_t slab) const { return kings_[slab]; }

    /// Moves of a side's king, next to the other one never.
    [[nodiscard]] const std::vector<KingMove>& moves(std::size_t slab, std::uint8_t side) const {
        return moves_[slab][side];
    }

  private:
    std::vector<KingSquares> kings_;
    std::vector<std::array<std::vector<KingMove>, 2>> moves_;
};
