// SPDX-License-Identifier: MIT
// Moves made: which positions of a word have a move to a position that the opponent is not known to
// win. Those without one are lost, or stalemate.
#pragma once

#include <vector>

#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/outside_values.h"
#include "tbgen/position_set.h"

/// An enemy man of one kind that a side may capture, and the values behind it.
struct CaptureValues {
    EndgameMan captured;
    OutsideValues values;
};

/// Finds moves of one side.
class Escapes {
  public:
    /// `open`: legal positions and codes with the other side to move that it is not known to win.
    Escapes(const Endgame& endgame, const KingPairs& pairs, std::uint8_t mover,
            const PositionSet& open, const std::vector<CaptureValues>& captures)
        : endgame_(endgame), pairs_(pairs), mover_(mover), open_(open), captures_(captures) {}

    /// Squares of the runner, of those in `bits`, with which `mover` has a move out. The positions
    /// are legal, without codes.
    [[nodiscard]] SquareSet of(std::size_t slab, std::size_t word, SquareSet bits) const;

  private:
    struct At;

    void runner_moves(At& at) const;
    void post_moves(At& at, std::size_t post) const;
    void pawn_post_moves(At& at, std::size_t post) const;
    void king_moves(At& at) const;
    void captures(At& at, const CaptureValues& capture) const;
    void captures_of_post(At& at, std::size_t target_post, const OutsideValues& values) const;
    void captures_of_runner(At& at, const OutsideValues& values) const;

    const Endgame& endgame_;
    const KingPairs& pairs_;
    std::uint8_t mover_;
    const PositionSet& open_;
    const std::vector<CaptureValues>& captures_;
};
