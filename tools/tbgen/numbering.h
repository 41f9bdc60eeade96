// SPDX-License-Identifier: MIT
// The place of a position's byte in a half, worked out fast for many positions with the same kings:
// what the kings decide is settled once for them all.
#pragma once

#include <array>
#include <cstdint>

#include "tb/index/half_plan.h"
#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/symmetry.h"

/// What `number` gives for squares on which no position can have a number: a man touches the enemy
/// king of the side that has just moved, or two men meet.
inline constexpr std::uint32_t no_number = UINT32_MAX;

class Numbering {
  public:
    /// What two kings decide.
    struct Frame {
        const std::uint8_t* turned = nullptr;  ///< turned squares
        std::uint32_t flip = 0;                ///< of the enumeration: 56 or 0
        std::uint32_t base = 0;                ///< number of the first position with these kings
        TbSquare own = 0;                      ///< king of the side to move, as enumerated
        std::array<TbSquare, 2> kings{};       ///< both as turned
        // For each enumerated man: its squares' numbers, its kind's count, and whether the own king
        // takes one of them.
        std::array<const std::uint8_t*, tb_most_men> ordinals{};
        std::array<std::uint32_t, tb_most_men> counts{};
        std::array<bool, tb_most_men> king_in_the_way{};
    };

    /// The numbering of a half: row 1 to 145, half 0 or 1. The plans' tables have to be built.
    Numbering(std::int32_t row, std::int32_t half);

    /// What these kings decide. They may stand anywhere, but not side by side. Index: 0 the side
    /// named first, whose pawns go up.
    [[nodiscard]] Frame frame(const KingSquares& kings) const;

    /// The number of a position, its men in the order of the name without kings.
    [[nodiscard]] std::uint32_t number(const Frame& frame, const MenSquares& men) const;

    /// The same where no two men meet.
    [[nodiscard]] std::uint32_t number_apart(const Frame& frame, const MenSquares& men) const;

  private:
    /// One digit behind the enumeration.
    struct Digit {
        std::uint8_t first = 0;  ///< man
        std::uint8_t men = 0;
        bool pawns = false;
        bool kings = false;  ///< their squares are left out
        std::uint8_t taken_count = 0;
        std::array<std::uint8_t, tb_most_men> taken{};  ///< men whose squares are left out
        std::uint32_t radix = 1;
    };

    [[nodiscard]] std::uint8_t man_at(ManPlace place) const;
    [[nodiscard]] std::uint32_t number_of_turned(const Frame& frame,
                                                 const MenSquares& squares) const;
    [[nodiscard]] std::uint32_t enumerated(const Frame& frame, const MenSquares& squares) const;
    [[nodiscard]] static std::uint32_t digit_value(const Digit& digit, const Frame& frame,
                                                   const MenSquares& squares);

    const TbHalfPlan& plan_;
    std::uint8_t men_ = 0;
    std::array<std::uint8_t, tb_most_men> enumerated_{};  ///< men
    std::uint8_t enumerated_count_ = 0;
    std::array<Digit, tb_most_men> digits_{};
    std::uint32_t first_radix_ = 1;  ///< product of all digits' radices
};
