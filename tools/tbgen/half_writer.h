// SPDX-License-Identifier: MIT
// Turns positions of the layout into bytes of a half.
#pragma once

#include <cstdint>
#include <vector>

#include "tbgen/endgame.h"
#include "tbgen/half_bytes.h"
#include "tbgen/king_pairs.h"
#include "tbgen/numbering.h"

class HalfWriter {
  public:
    /// All numbers are `not_reachable` at first.
    HalfWriter(const Endgame& endgame, const KingPairs& pairs, std::int32_t half);

    /// Sets the bytes of legal positions of a word, without codes. Slabs may be written at the same
    /// time.
    void write(std::size_t slab, std::size_t word, SquareSet bits, Value value);

    /// Sets the byte of a position with a capture en passant on `target`, if the half keeps such.
    void write_en_passant(std::size_t slab, const MenSquares& men, TbSquare target, Value value);

    /// The bytes up to the last position that can be reached; the writer is spent.
    [[nodiscard]] Bytes take_bytes();

  private:
    [[nodiscard]] SquareSet in_order(std::size_t word, SquareSet bits) const;

    const Endgame& endgame_;
    const KingPairs& pairs_;
    std::int32_t half_;
    Numbering numbering_;
    EndgameAddress address_;
    std::vector<Numbering::Frame> frames_;  ///< by slab
    Bytes bytes_;
};
