// SPDX-License-Identifier: MIT
// The steps that the generators are made of: lines, masks and pawn steps, as templates on the side
// and on what the generator wants of a square.
#pragma once

#include <array>

#include "board/generate.h"
#include "board/geometry.h"
#include "board/move_list.h"
#include "board/side_traits.h"

/// What a generator wants.
enum class Wanted {
    all,       ///< every move
    captures,  ///< captures and promotions
    evasions,  ///< moves to squares on a line with the own king or a knight's step from it
};

inline constexpr std::array<Square, 4> rook_lines = {+1, -1, +10, -10};
inline constexpr std::array<Square, 4> bishop_lines = {+9, -9, +11, -11};

/// Adds a move from `gen_from`; the list never grows past its slots.
inline void put_move(Square to, PieceCode info) {
    MoveList& list = *cur_moves;
    if (list.count + 1 >= move_list_slots) [[unlikely]] {
        return;
    }
    ++list.count;
    list.move(list.count) = Move{gen_from, to, info};
}

/// The four promotions of a pawn's step to `to`.
template <Side S>
inline void put_promotions(Square to) {
    using Own = SideTraits<S>;
    put_move(to, Own::queen);
    put_move(to, Own::rook);
    put_move(to, Own::bishop);
    put_move(to, Own::knight);
}

/// Whether a move to `square` can answer a check on the king of side S.
template <Side S>
[[nodiscard]] inline bool can_answer_check(const Table& table, Square square) {
    return on_line_or_knight(table.*SideTraits<S>::king_square, square);
}

/// Whether a generator takes a move to `square`, as far as the filter of evasions goes.
template <Side S, Wanted W>
[[nodiscard]] inline bool passes(const Table& table, Square square) {
    if constexpr (W == Wanted::evasions) {
        return can_answer_check<S>(table, square);
    } else {
        return true;
    }
}

/// One line of the man on `gen_from`, whose mailbox code says who the enemy is.
template <Side S, Wanted W>
inline void put_line(const Table& table, Square step, PieceCode enemy_bit) {
    Square to = gen_from + step;
    for (; table.at(to) == empty_square; to += step) {
        if constexpr (W != Wanted::captures) {
            if (passes<S, W>(table, to)) {
                put_move(to, 0);
            }
        }
    }
    if ((table.at(to) & enemy_bit) != 0 && passes<S, W>(table, to)) {
        put_move(to, 0);
    }
}

template <Side S, Wanted W>
inline void put_lines(const Table& table, const std::array<Square, 4>& steps) {
    const PieceCode enemy_bit = w_figure(table.at(gen_from)) != 0 ? black_bit : white_bit;
    for (const Square step : steps) {
        put_line<S, W>(table, step, enemy_bit);
    }
}

/// The squares of a mask, from a8 towards h1.
inline void put_mask(Bitboard targets) {
    while (targets != 0) {
        put_move(take_first_square(targets), 0);
    }
}

template <Side S, Wanted W>
inline void put_queens(const Table& table) {
    for (Bitboard men = table.*SideTraits<S>::queens; men != 0;) {
        gen_from = take_first_square(men);
        put_lines<S, W>(table, rook_lines);
        put_lines<S, W>(table, bishop_lines);
    }
}

template <Side S, Wanted W>
inline void put_rooks(const Table& table) {
    for (Bitboard men = table.*SideTraits<S>::rooks; men != 0;) {
        gen_from = take_first_square(men);
        put_lines<S, W>(table, rook_lines);
    }
}

template <Side S, Wanted W>
inline void put_bishops(const Table& table) {
    for (Bitboard men = table.*SideTraits<S>::bishops; men != 0;) {
        gen_from = take_first_square(men);
        put_lines<S, W>(table, bishop_lines);
    }
}

/// Knights to the squares of `targets`.
template <Side S>
inline void put_knights(const Table& table, Bitboard targets) {
    for (Bitboard men = table.*SideTraits<S>::knights; men != 0;) {
        gen_from = take_first_square(men);
        put_mask(knight_attacks[at_square(gen_from)] & targets);
    }
}

/// The king to the squares of `targets`, attacked or not.
template <Side S>
inline void put_king(const Table& table, Bitboard targets) {
    gen_from = table.*SideTraits<S>::king_square;
    put_mask(king_attacks[at_square(gen_from)] & targets);
}

/// All men of a side, its king included.
template <Side S>
[[nodiscard]] inline Bitboard men_of(const Table& table) {
    return men_without_king<S>(table) | mask_of(table.*SideTraits<S>::king_square);
}

/// Intended(evasion-filter-beside-target): White's promoting capture towards the a-file is filtered
/// on the square straight ahead of the pawn, not on its target. So such a capture of the checker
/// can be missing among the evasions.
template <Side S>
[[nodiscard]] constexpr Square promoting_capture_filter(Square from, Square step) {
    return S == white && step == SideTraits<S>::second_capture ? from + SideTraits<S>::forward
                                                               : from + step;
}

template <Side S, Wanted W>
inline void put_pawn_capture(const Table& table, Square step) {
    using Enemy = SideTraits<SideTraits<S>::enemy>;
    const Square to = gen_from + step;
    if ((table.at(to) & Enemy::colour_bit) == 0) {
        return;
    }
    if (SideTraits<S>::on_seventh_rank(gen_from)) {
        if (passes<S, W>(table, promoting_capture_filter<S>(gen_from, step))) {
            put_promotions<S>(to);
        }
    } else if (passes<S, W>(table, to)) {
        put_move(to, 0);
    }
}

template <Side S, Wanted W>
inline void put_pawn_push(const Table& table) {
    const Square to = gen_from + SideTraits<S>::forward;
    if (table.at(to) != empty_square || !passes<S, W>(table, to)) {
        return;
    }
    if (SideTraits<S>::on_seventh_rank(gen_from)) {
        put_promotions<S>(to);
    } else if constexpr (W != Wanted::captures) {
        put_move(to, 0);
    }
}

/// Double push, en passant, push, the two captures, for each pawn in turn.
template <Side S, Wanted W>
inline void put_pawns(const Table& table) {
    using Own = SideTraits<S>;
    for (Bitboard men = table.*Own::pawns; men != 0;) {
        gen_from = take_first_square(men);
        if constexpr (W != Wanted::captures) {
            const Square to = gen_from + 2 * Own::forward;
            if (Own::on_second_rank(gen_from) &&
                table.at(gen_from + Own::forward) == empty_square && table.at(to) == empty_square &&
                passes<S, W>(table, to)) {
                put_move(to, 0);
            }
        }
        if (table.ep_flag == 1 && Own::on_fifth_rank(gen_from) &&
            (table.ep_square == gen_from + 1 || table.ep_square == gen_from - 1)) {
            put_move(table.ep_square + Own::forward, 0);  // never filtered
        }
        put_pawn_push<S, W>(table);
        put_pawn_capture<S, W>(table, Own::first_capture);
        put_pawn_capture<S, W>(table, Own::second_capture);
    }
}
