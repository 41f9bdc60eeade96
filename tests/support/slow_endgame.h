// SPDX-License-Identifier: MIT
// Chess with a few men the slow way: a man at a time, a square at a time, by files and ranks. What
// the generator of endgame tables does with whole sets of squares is compared with this.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tb/tb_types.h"

/// A man beside the kings. Square: a1 = 0, b1 = 1, h8 = 63.
struct SlowMan {
    std::uint8_t side;
    std::uint8_t kind;
    std::uint32_t square;
};

struct SlowPosition {
    std::array<std::uint32_t, 2> kings;
    std::vector<SlowMan> men;
    std::uint8_t to_move;
    std::uint32_t en_passant = tb_no_en_passant;  ///< set where an enemy pawn stands beside
};

struct SlowMove {
    SlowPosition after;
    std::size_t moved;         ///< index of the man before the move; the number of men: the king
    std::size_t captured;      ///< the same; the number of men: none
    std::uint8_t promoted_to;  ///< 0: no promotion
    bool is_legal;             ///< does not leave the own king attacked
};

/// A square by its name.
[[nodiscard]] std::uint32_t named_square(std::string_view name);

/// Whether a man of a kind, kings among them, attacks a square, with men on the squares of
/// `occupied`, a bit each. Side 0 goes up the board.
[[nodiscard]] bool slow_attacks(std::uint8_t side, std::uint8_t kind, std::uint32_t from,
                                std::uint32_t to, std::uint64_t occupied);

/// The squares that have men on them, a bit each.
[[nodiscard]] std::uint64_t slow_occupied(const SlowPosition& position);

/// Whether a side's king is attacked, by the other king too.
[[nodiscard]] bool slow_in_check(const SlowPosition& position, std::uint8_t side);

/// Whether no two men meet, pawns stand where they can, and the side not to move is not in check.
[[nodiscard]] bool slow_legal(const SlowPosition& position);

/// All moves, also those that leave the own king attacked.
[[nodiscard]] std::vector<SlowMove> slow_moves(const SlowPosition& position);
