// SPDX-License-Identifier: MIT
// The bitboards say cheaply which sliders could matter at all; a walk on the mailbox then settles
// whether the line is open. A walk needs no bounds test: off-board entries are 0 and end it.
#include "board/attack.h"

#include "board/geometry.h"
#include "board/side_traits.h"

namespace {

/// The kind bits of two codes of a side, without the colour.
constexpr PieceCode kinds(PieceCode a, PieceCode b) {
    return (a | b) & ~(white_bit | black_bit);
}

/// The first entry that is not an empty square, walking from `square` by `step`.
PieceCode first_man(const Table& table, Square square, Square step) {
    do {
        square += step;
    } while (table.at(square) == empty_square);
    return table.at(square);
}

/// The step from `square` towards `target` on a common file or, failing that, rank.
Square step_along_line(Square square, Square target) {
    if (file_of[at_square(square)] == file_of[at_square(target)]) {
        return rank_of[at_square(square)] >= rank_of[at_square(target)] ? step_up : step_down;
    }
    return file_of[at_square(square)] >= file_of[at_square(target)] ? step_left : step_right;
}

constexpr Square diagonal_a1h8_up = -9;
constexpr Square diagonal_a8h1_up = -11;

template <Side Attacker>
bool attacked_by(const Table& table, Square square) {
    using Enemy = SideTraits<Attacker>;
    constexpr PieceCode pawn_or_king = kinds(Enemy::pawn, Enemy::king);
    constexpr PieceCode rook_or_queen = kinds(Enemy::rook, Enemy::queen);
    constexpr PieceCode bishop_or_queen = kinds(Enemy::bishop, Enemy::queen);

    // Pawns attack forwards, so they are found backwards.
    const Square behind = square - Enemy::forward;
    if (((table.at(behind + 1) | table.at(behind - 1)) & pawn_or_king) != 0) {
        return true;
    }
    if ((knight_attacks[at_square(square)] & table.*Enemy::knights) != 0) {
        return true;
    }
    if ((king_attacks[at_square(square)] & mask_of(table.*Enemy::king_square)) != 0) {
        return true;
    }
    Bitboard candidates =
        (table.*Enemy::rooks | table.*Enemy::queens) & rook_rays[at_square(square)];
    while (candidates != 0) {
        const Square candidate = take_first_square(candidates);
        if ((first_man(table, square, step_along_line(square, candidate)) & rook_or_queen) != 0) {
            return true;
        }
    }
    candidates = (table.*Enemy::bishops | table.*Enemy::queens) & bishop_rays[at_square(square)];
    while (candidates != 0) {
        const Square candidate = take_first_square(candidates);
        // Both directions of the candidate's diagonal.
        const Square step = diag_a1h8[at_square(square)] != diag_a1h8[at_square(candidate)]
                                ? diagonal_a8h1_up
                                : diagonal_a1h8_up;
        if (((first_man(table, square, step) | first_man(table, square, -step)) &
             bishop_or_queen) != 0) {
            return true;
        }
    }
    return false;
}

/// Intended(line-attack-both-ways): on a diagonal White's sliders are looked for in both
/// directions, Black's only towards `through`. Perft alone asks, and only whether the one line is
/// open.
template <Side Attacker>
constexpr bool looks_both_ways = Attacker == white;

template <Side Attacker>
bool diagonal_attack(const Table& table, Square square, Square up, bool towards_up) {
    using Enemy = SideTraits<Attacker>;
    constexpr PieceCode bishop_or_queen = kinds(Enemy::bishop, Enemy::queen);
    if constexpr (looks_both_ways<Attacker>) {
        return ((first_man(table, square, -up) | first_man(table, square, up)) & bishop_or_queen) !=
               0;
    } else {
        return (first_man(table, square, towards_up ? up : -up) & bishop_or_queen) != 0;
    }
}

template <Side Attacker>
bool line_attacked_by(const Table& table, Square square, Square through) {
    using Enemy = SideTraits<Attacker>;
    const std::size_t s = at_square(square);
    const std::size_t t = at_square(through);
    if (file_of[s] == file_of[t] || rank_of[s] == rank_of[t]) {
        return (first_man(table, square, step_along_line(square, through)) &
                kinds(Enemy::rook, Enemy::queen)) != 0;
    }
    const bool towards_up = rank_of[s] >= rank_of[t];
    if (diag_a1h8[s] == diag_a1h8[t] &&
        diagonal_attack<Attacker>(table, square, diagonal_a1h8_up, towards_up)) {
        return true;
    }
    if (diag_a8h1[s] != diag_a8h1[t]) {
        return false;
    }
    return diagonal_attack<Attacker>(table, square, diagonal_a8h1_up, towards_up);
}

/// Whether `in_check` and `line_check` test Black's king: `side` is 1 or a black piece code.
bool means_black(std::uint32_t side) {
    return side != white && (side & white_bit) == 0;
}

/// Whether the king of S is attacked. A king can be set up in the outer rows of the mailbox; where
/// the two entries that it looks at ahead of it would lie outside, it is never in check.
template <Side S>
bool king_attacked(const Table& table) {
    constexpr Square widest_step = 11;
    const Square king = table.*SideTraits<S>::king_square;
    const bool looks_inside =
        S == white ? king >= widest_step : king < static_cast<Square>(mailbox_size) - widest_step;
    return looks_inside && attacked_by<SideTraits<S>::enemy>(table, king);
}

}  // namespace

bool square_attacked(const Table& table, Square square, Side side) {
    return side == white ? attacked_by<black>(table, square) : attacked_by<white>(table, square);
}

bool in_check(const Table& table, std::uint32_t side) {
    return means_black(side) ? king_attacked<black>(table) : king_attacked<white>(table);
}

bool line_attack(const Table& table, Square square, Side side, Square through) {
    return side == white ? line_attacked_by<black>(table, square, through)
                         : line_attacked_by<white>(table, square, through);
}

bool line_check(const Table& table, std::uint32_t side, Square through) {
    return means_black(side) ? line_attacked_by<white>(table, table.xybK, through)
                             : line_attacked_by<black>(table, table.xywK, through);
}
