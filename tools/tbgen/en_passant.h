// SPDX-License-Identifier: MIT
// Positions in which a pawn has just made a double step past an enemy pawn. They are codes of the
// layout, and their values come from the same position without the right to capture and from the
// captures themselves.
#pragma once

#include <cstdint>
#include <vector>

#include "tbgen/endgame.h"
#include "tbgen/escapes.h"
#include "tbgen/half_bytes.h"
#include "tbgen/half_writer.h"
#include "tbgen/king_pairs.h"
#include "tbgen/position_set.h"

/// The codes of one half.
class EnPassant {
  public:
    /// `to_move` can capture. Empty where the sides have not both pawns.
    EnPassant(const Endgame& endgame, const KingPairs& pairs, std::uint8_t to_move);

    /// Finds the codes of a slab that can be reached and adds them to `open`. The two sets have the
    /// legal positions with `to_move` and with the other side to move.
    void begin(std::size_t slab, const std::vector<CaptureValues>& captures, PositionSet& open,
               const PositionSet& open_of_other, HalfWriter& writer);

    /// Tells which positions of a word have no move and no check, a bit each.
    void note_stalemates(std::size_t slab, std::size_t word, SquareSet bits);

    /// Adds the codes that are won in `moves` to `won`, which has the other positions of the slab
    /// that are. Whether there were any.
    [[nodiscard]] bool add_won(std::size_t slab, int moves, SquareSet* won, HalfWriter& writer);

    /// The same for lost ones.
    [[nodiscard]] bool add_lost(std::size_t slab, int moves, SquareSet* lost, HalfWriter& writer);

  private:
    /// A position by word and runner.
    struct Place {
        std::uint32_t word;
        std::uint32_t square;
    };

    /// A code, kings aside.
    struct Code {
        MenSquares men;   ///< the pawn on the rank where its double step ended
        TbSquare target;  ///< of the capture
        Place code;
        Place plain;                            ///< the same position without the right to capture
        Place before;                           ///< the pawn still at its start
        std::array<std::uint32_t, 2> captures;  ///< cells of the values behind them
        std::uint8_t capture_count;
    };

    /// What is known of a code in a slab.
    struct State {
        Value capture = not_reachable;  ///< value of the best capture for the other side
        bool reached = false;
        bool decided = false;
        bool plain_lost = false;  ///< or stalemate
    };

    void add_code(const MenSquares& men, std::size_t pawn);
    [[nodiscard]] Place place_of(const MenSquares& men) const;
    [[nodiscard]] State& state(std::size_t slab, std::size_t code) {
        return states_[slab * codes_.size() + code];
    }

    const Endgame& endgame_;
    const KingPairs& pairs_;
    std::uint8_t to_move_;
    std::vector<Code> codes_;
    std::vector<State> states_;
};
