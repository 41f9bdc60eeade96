// SPDX-License-Identifier: MIT
// The bytes of a half in memory, asked by squares. What the bytes mean:
//   0            draw
//   127 - n      the side to move mates in n moves
//   -127 + n     it is mated in n moves; -127 is mate on the board
//   -128         no position that can be reached has this number
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "tbgen/numbering.h"

using Value = std::int8_t;
inline constexpr Value not_reachable = -128;
inline constexpr Value drawn = 0;

/// The longest way to mate that a byte can tell from a draw.
inline constexpr int longest_told = 126;

/// The value of a position whose side to move mates in so many moves, 1 or more.
[[nodiscard]] constexpr Value mates_in(int moves) {
    return moves > longest_told ? drawn : static_cast<Value>(127 - moves);
}

/// The value of a position whose side to move is mated in so many moves, 0 or more.
[[nodiscard]] constexpr Value mated_in(int moves) {
    return moves > longest_told ? drawn : static_cast<Value>(-127 + moves);
}

/// Whether a value tells of a mate in just so many moves.
[[nodiscard]] constexpr bool is_mate_in(Value value, int moves) {
    return value != drawn && value == mates_in(moves);
}
[[nodiscard]] constexpr bool is_mated_in(Value value, int moves) {
    return value != drawn && value == mated_in(moves);
}

using Bytes = std::vector<std::uint8_t>;

/// Gives the bytes of a half, row 1 to 145, half 0 or 1; empty if they cannot be had.
using LoadHalf = std::function<std::optional<Bytes>(std::int32_t row, std::int32_t half)>;

/// A half of a table that a move out of another table leads to, asked by the men of the latter.
class OtherHalf {
  public:
    /// The half with `to_move` to move. The men are those that are left, in the caller's order.
    OtherHalf(const MenList& men, std::uint8_t to_move);

    /// Loads the bytes; false if they cannot be had. Bare kings need none.
    [[nodiscard]] bool load(const LoadHalf& load_half);

    [[nodiscard]] Numbering::Frame frame(const KingSquares& kings) const;

    /// The value for the side to move; `not_reachable` also where two men meet.
    [[nodiscard]] Value value(const Numbering::Frame& frame, const MenSquares& men) const;

  private:
    EndgameAddress address_;
    std::size_t men_ = 0;
    std::int32_t half_ = 0;
    TbSquare flip_ = 0;  ///< brings the pawns of the side named first to go up
    std::optional<Numbering> numbering_;
    Bytes bytes_;
};
