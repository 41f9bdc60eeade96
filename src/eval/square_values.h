// SPDX-License-Identifier: MIT
// Piece-square tables with material inside, one for each man and colour, by mailbox index. Walking
// a bitboard and adding entries gives material and placement in one go. A pawn is 72. Black's
// tables mirror White's; their entries are positive and the evaluation subtracts them.
#pragma once

#include "board/square_tables.h"

/// One evaluation word for each mailbox entry.
using MailboxTable = Mailbox<std::int32_t>;

namespace square_values_detail {

/// Values of the 64 squares, a8 first, as a mailbox table; 0 off the board.
constexpr MailboxTable to_mailbox(const std::array<std::int32_t, 64>& values) {
    MailboxTable table{};
    for (std::size_t bit = 0; bit < values.size(); ++bit) {
        table[at_square(square_of_bit[bit])] = values[bit];
    }
    return table;
}

/// The same rows seen from Black's side: the twelve rows of the mailbox in reverse order.
constexpr MailboxTable mirrored(const MailboxTable& table) {
    constexpr std::size_t width = 10;
    constexpr std::size_t last_row = 11;
    MailboxTable mirror{};
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        mirror[i] = table[width * (last_row - i / width) + i % width];
    }
    return mirror;
}

/// Material added to every entry, off-board ones included.
constexpr MailboxTable with_material(MailboxTable table, std::int32_t material) {
    for (std::int32_t& value : table) {
        value += material;
    }
    return table;
}

/// Nominal values are scaled once, truncated.
constexpr std::int32_t scaled(std::int32_t nominal) {
    constexpr double scale = 0.725;
    return static_cast<std::int32_t>(nominal * scale);
}

/// Half of each entry, truncated towards zero.
constexpr MailboxTable halved(MailboxTable table) {
    for (std::int32_t& value : table) {
        value /= 2;
    }
    return table;
}

// clang-format off
inline constexpr MailboxTable stored_pawn = to_mailbox({
//   a    b    c    d    e    f    g    h
     0,   0,   0,   0,   0,   0,   0,   0,  // 8
    15,  18,  26,  30,  30,  26,  18,  15,  // 7
    10,  12,  15,  20,  20,  15,  12,  10,
     3,   6,  12,  15,  15,  12,   6,   3,
     2,   5,  10,  13,  13,  10,   5,   2,
     1,   4,   8,   0,   0,   8,   4,   1,
     0,   3,   6, -15, -15,   6,   3,   0,
     0,   0,   0,   0,   0,   0,   0,   0,  // 1
});

/// Intended(knight-eighth-rank): b8 has -25 and g8 -35.
inline constexpr MailboxTable stored_knight = to_mailbox({
//   a    b    c    d    e    f    g    h
  -100, -25, -15,  -5,  -5, -15, -35,-100,  // 8
   -20, -10,   0,  10,  10,   0, -10, -20,
    -5,   5,  15,  20,  20,  15,   5,  -5,
     0,  10,  20,  25,  25,  20,  10,   0,
    -5,   5,  15,  20,  20,  15,   5,  -5,
   -20, -10,  10,  10,  10,  10, -10, -20,
   -35, -25, -15,  -5,  -5, -15, -25, -35,
   -50, -40, -30, -20, -20, -30, -40, -50,  // 1
});

inline constexpr MailboxTable stored_bishop = to_mailbox({
//   a    b    c    d    e    f    g    h
   -14, -12,  -9,  -6,  -6,  -9, -12, -14,  // 8
   -12,  -2,  -3,   0,   0,  -3,  -2, -12,
    -9,  -3,   4,   3,   3,   4,  -3,  -9,
    -6,   0,   3,  10,  10,   3,   0,  -6,
    -6,   0,   3,  10,  10,   3,   0,  -6,
    -9,  -3,   4,   3,   3,   4,  -3,  -9,
   -12,   6,  -3,   0,   0,  -3,   6, -12,
   -24, -22, -19, -16, -16, -19, -22, -24,  // 1
});

/// Intended(queen-e3): e3 has 0 where the pattern would give 1.
inline constexpr MailboxTable stored_queen = to_mailbox({
//   a    b    c    d    e    f    g    h
     2,   1,   0,   0,   0,   0,   1,   2,  // 8
     1,   2,   1,   0,   0,   1,   2,   1,
     0,   1,   2,   1,   1,   2,   1,   0,
     0,   0,   1,   2,   2,   1,   0,   0,
     0,   0,   1,   2,   2,   1,   0,   0,
     0,   1,   2,   1,   0,   2,   1,   0,
     1,   2,   1,   0,   0,   1,   2,   1,
     2,   1,   0,   0,   0,   0,   1,   2,  // 1
});

/// Placement of the king while the board is full.
inline constexpr MailboxTable stored_king = to_mailbox({
//   a    b    c    d    e    f    g    h
   -25, -25, -25, -25, -25, -25, -25, -25,  // 8
   -25, -25, -25, -25, -25, -25, -25, -25,
   -25, -25, -25, -25, -25, -25, -25, -25,
   -25, -25, -25, -25, -25, -25, -25, -25,
   -25, -25, -25, -25, -25, -25, -25, -25,
   -25, -25, -25, -25, -25, -25, -25, -25,
    -5,  -5, -25, -25, -25, -25,  -5,  -5,
    10,  15,  10, -15,   0, -15,  15,  10,  // 1
});

/// Twice the placement of the king in the end game.
inline constexpr MailboxTable stored_king_half = to_mailbox({
//   a    b    c    d    e    f    g    h
     0,  10,  20,  30,  30,  20,  10,   0,  // 8
    10,  20,  30,  40,  40,  30,  20,  10,
    20,  30,  40,  50,  50,  40,  30,  20,
    30,  40,  50,  60,  60,  50,  40,  30,
    30,  40,  50,  60,  60,  50,  40,  30,
    20,  30,  40,  50,  50,  40,  30,  20,
    10,  20,  30,  40,  40,  30,  20,  10,
     0,  10,  20,  30,  30,  20,  10,   0,  // 1
});
// clang-format on

}  // namespace square_values_detail

// Material: nominal 100, 325, 325, 500 and 975.
inline constexpr std::int32_t pawn_value = square_values_detail::scaled(100);    // 72
inline constexpr std::int32_t knight_value = square_values_detail::scaled(325);  // 235
inline constexpr std::int32_t bishop_value = square_values_detail::scaled(325);  // 235
inline constexpr std::int32_t rook_value = square_values_detail::scaled(500);    // 362
inline constexpr std::int32_t queen_value = square_values_detail::scaled(975);   // 706

inline constexpr MailboxTable pst_WPawns =
    square_values_detail::with_material(square_values_detail::stored_pawn, pawn_value);
inline constexpr MailboxTable pst_WKnight =
    square_values_detail::with_material(square_values_detail::stored_knight, knight_value);
inline constexpr MailboxTable pst_WBishop =
    square_values_detail::with_material(square_values_detail::stored_bishop, bishop_value);
/// Material alone: the rook's placement comes from files and ranks.
inline constexpr MailboxTable pst_WRook =
    square_values_detail::with_material(MailboxTable{}, rook_value);
inline constexpr MailboxTable pst_WQuins =
    square_values_detail::with_material(square_values_detail::stored_queen, queen_value);
inline constexpr MailboxTable pst_WKing = square_values_detail::stored_king;
/// The king in the end game.
inline constexpr MailboxTable pst_WKing_half =
    square_values_detail::halved(square_values_detail::stored_king_half);

inline constexpr MailboxTable pst_BPawns = square_values_detail::mirrored(pst_WPawns);
inline constexpr MailboxTable pst_BKnight = square_values_detail::mirrored(pst_WKnight);
inline constexpr MailboxTable pst_BBishop = square_values_detail::mirrored(pst_WBishop);
inline constexpr MailboxTable pst_BRook = square_values_detail::mirrored(pst_WRook);
inline constexpr MailboxTable pst_BQuins = square_values_detail::mirrored(pst_WQuins);
inline constexpr MailboxTable pst_BKing = square_values_detail::mirrored(pst_WKing);
inline constexpr MailboxTable pst_BKing_half = square_values_detail::mirrored(pst_WKing_half);
