// SPDX-License-Identifier: MIT
// The numbers of the evaluation that depend on a square, a file or a distance, other than the
// piece-square tables. Pawn = 72.
#pragma once

#include "eval/square_values.h"

// clang-format off
/// Bonus for a white knight that no black pawn can drive away. Highest on the own half of the board.
inline constexpr MailboxTable outpost_white = square_values_detail::to_mailbox({
//   a    b    c    d    e    f    g    h
     0,   0,   0,   0,   0,   0,   0,   0,  // 8
     0,   0,   0,   0,   0,   0,   0,   0,
     0,   0,   0,   0,   0,   0,   0,   0,
     0,   0,   6,   8,   8,   6,   0,   0,
     0,   0,  12,  15,  15,  12,   0,   0,
     0,   0,  15,  20,  20,  15,   0,   0,
     0,   0,   8,  12,  12,   8,   0,   0,
     0,   0,   0,   0,   0,   0,   0,   0,  // 1
});

/// Bonus for a queen by its distance from the enemy king: the larger of files and rows. Boards that
/// are set up by hand can have a king off the board, two more rows away.
inline constexpr std::array<std::int32_t, 12> queen_tropism =
    {0, 100, 60, 25, 0, 0, 0, 0, 0, 0, 0, 0};

// Penalties of pawns by file: entry 1 is the a-file, 8 the h-file, 0 and 9 are guards.
using FileTable = std::array<std::int32_t, 10>;
//                                                    a   b   c   d   e   f   g   h
inline constexpr FileTable isolated_penalty =         {0, 15, 18, 20, 25, 25, 20, 18, 15, 0};
inline constexpr FileTable isolated_doubled_penalty = {0,  0,  1,  2,  3,  3,  2,  1,  0, 0};
inline constexpr FileTable doubled_penalty =          {0,  3,  4,  5,  6,  6,  5,  4,  3, 0};
inline constexpr FileTable backward_penalty =         {0,  1,  3,  4,  5,  5,  4,  3,  1, 0};
// clang-format on

/// The same for Black.
inline constexpr MailboxTable outpost_black = square_values_detail::mirrored(outpost_white);

/// 1 on a light square such as a8, 10 on a dark one; only equality of two entries means anything.
inline constexpr MailboxTable square_colour = []() {
    constexpr std::int32_t light = 1;
    constexpr std::int32_t dark = 10;
    MailboxTable table{};
    for (std::size_t bit = 0; bit < square_of_bit.size(); ++bit) {
        const bool is_light = (bit / 8 + bit % 8) % 2 == 0;
        table[at_square(square_of_bit[bit])] = is_light ? light : dark;
    }
    return table;
}();
