// SPDX-License-Identifier: MIT
// Retrograde analysis of one table. Step by step, a move more at a time: positions that can move
// into a lost one are won; of the positions that can move into a newly won one, those that have no
// other way out are lost. Each position is met once, and 64 of them together.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tbgen/en_passant.h"
#include "tbgen/endgame.h"
#include "tbgen/escapes.h"
#include "tbgen/half_bytes.h"
#include "tbgen/half_writer.h"
#include "tbgen/king_pairs.h"
#include "tbgen/outside_values.h"
#include "tbgen/position_set.h"

/// Told of the progress of one table: a phase in words, the share of it that is done, 0 to 1.
using ReportPhase = std::function<void(const std::string& phase, double share)>;

/// Both halves of a table. Index: half.
struct SolvedTable {
    std::array<Bytes, 2> halves;
    std::array<int, 2> longest{};  ///< moves of the longest win of the side to move; 0: no win
};

class Solver {
  public:
    Solver(std::int32_t row, std::size_t threads);

    /// Computes the table; empty if one that it needs cannot be had.
    [[nodiscard]] std::optional<SolvedTable> solve(const LoadHalf& load_half,
                                                   const ReportPhase& report);

  private:
    /// What is known of the positions with one side to move.
    struct Half {
        Half(const Endgame& endgame, const KingPairs& pairs, std::uint8_t to_move);

        PositionSet open;  ///< legal, and not known to be won
        PositionSet won;   ///< newly won
        PositionSet lost;  ///< newly lost
        HalfWriter writer;
        EnPassant en_passant;
        std::vector<CaptureValues> captures;    ///< that its side to move can make
        std::vector<OutsideValues> promotions;  ///< that the other side has just made; 0 or 1
    };

    [[nodiscard]] bool find_outside_values(const LoadHalf& load_half);
    void find_legal(std::size_t slab);
    void find_codes(std::uint8_t side, std::size_t slab);
    void find_mates(std::uint8_t side, std::size_t slab);
    void find_won(std::uint8_t side, std::size_t slab, int moves);
    void find_lost(std::uint8_t side, std::size_t slab, int moves);
    void add_promotions(Half& half, std::size_t slab, Value value, SquareSet* to) const;
    void take_back(std::uint8_t side, std::size_t slab, const PositionSet& from, Value outside,
                   SquareSet* to) const;
    void write(Half& half, std::size_t slab, const SquareSet* words, Value value) const;
    [[nodiscard]] bool any_new() const;
    [[nodiscard]] int longest_outside() const;

    /// Calls `work(side, slab)` for all slabs of both halves.
    template <class Work>
    void for_each_slab(const Work& work);

    std::size_t threads_;
    Endgame endgame_;
    KingPairs pairs_;
    std::vector<Half> halves_;
};
