// SPDX-License-Identifier: MIT
// The steps of a move, one for each kind of man, as templates on the man's code or side. No table
// is indexed by piece: the compiler knows the man in every step.
#pragma once

#include "board/make_report.h"
#include "board/piece_keys.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "board/undo_record.h"

/// XORs the two keys of a man on a square.
template <PieceCode Man>
inline void toggle_keys(Table& table, Square square) {
    constexpr std::size_t slot = key_slot(Man);
    table.hash_lock ^= lock_key(slot, square);
    table.hash_index ^= index_key(slot, square);
}

/// XORs the three keys of a pawn on a square.
template <Side S>
inline void toggle_pawn_keys(Table& table, Square square) {
    toggle_keys<SideTraits<S>::pawn>(table, square);
    table.pawn_hash ^= pawn_key(S, square);
}

/// Takes a man's bit off a bitboard. A recorded move flips it: taking back flips it again, which
/// restores any board, also one set up by hand whose bitboards and mailbox disagree. A final move
/// clears it.
template <bool Recorded>
inline void lift_bit(Bitboard& men, Square square) {
    if constexpr (Recorded) {
        men ^= mask_of(square);
    } else {
        men &= ~mask_of(square);
    }
}

/// Takes a captured man that is no pawn out of the keys and its bitboard.
template <PieceCode Man, bool Recorded>
inline void lift_officer(Table& table, Square square) {
    toggle_keys<Man>(table, square);
    lift_bit<Recorded>(table.*bitboard_of(Man), square);
}

/// Takes a pawn, captured or about to move, out of the keys and its bitboard.
template <Side S, bool Recorded>
inline void lift_pawn(Table& table, Square square) {
    toggle_pawn_keys<S>(table, square);
    lift_bit<Recorded>(table.*SideTraits<S>::pawns, square);
}

/// Takes a captured man out of the keys and its bitboard. Kings have no branch: a king that is
/// taken (when the side to move was changed by hand) leaves the keys as they are.
template <bool Recorded>
inline void lift_captured(Table& table, PieceCode code, Square square) {
    switch (code) {
        case w_pawn: lift_pawn<white, Recorded>(table, square); break;
        case w_knight: lift_officer<w_knight, Recorded>(table, square); break;
        case w_bishop: lift_officer<w_bishop, Recorded>(table, square); break;
        case w_rook: lift_officer<w_rook, Recorded>(table, square); break;
        case w_queen: lift_officer<w_queen, Recorded>(table, square); break;
        case b_pawn: lift_pawn<black, Recorded>(table, square); break;
        case b_knight: lift_officer<b_knight, Recorded>(table, square); break;
        case b_bishop: lift_officer<b_bishop, Recorded>(table, square); break;
        case b_rook: lift_officer<b_rook, Recorded>(table, square); break;
        case b_queen: lift_officer<b_queen, Recorded>(table, square); break;
        default: break;
    }
}

/// Moves a man in the mailbox alone.
inline void move_in_mailbox(Table& table, Square from, Square to) {
    table.at(to) = table.at(from);
    table.at(from) = empty_square;
}

/// A knight, bishop, rook or queen: bitboard, keys, mailbox.
template <PieceCode Man>
inline void move_officer(Table& table, Square from, Square to) {
    Bitboard& men = table.*bitboard_of(Man);
    men ^= mask_of(from);
    men |= mask_of(to);
    toggle_keys<Man>(table, from);
    toggle_keys<Man>(table, to);
    move_in_mailbox(table, from, to);
}

/// A rook that leaves its corner takes the castling right with it. A rook that is captured there
/// does not: the generators look for a rook on the corner before they offer castling.
template <Side S>
inline void move_rook(Table& table, Square from, Square to) {
    using Own = SideTraits<S>;
    if (from == Own::long_rook_home) {
        table.castling &= all_rights & ~Own::long_right;
    } else if (from == Own::short_rook_home) {
        table.castling &= all_rights & ~Own::short_right;
    }
    move_officer<Own::rook>(table, from, to);
}

/// The king's step or castling, which is known by the king's two squares alone. Gives the kind for
/// the record: castling, or the kind that stood there before.
template <Side S>
[[nodiscard]] inline std::int32_t move_king(Table& table, Square from, Square to,
                                            std::int32_t undo_kind) {
    using Own = SideTraits<S>;
    constexpr Square home = Own::king_home;
    toggle_keys<Own::king>(table, from);
    toggle_keys<Own::king>(table, to);
    move_in_mailbox(table, from, to);
    if (from == home && to == home + 2) {
        move_officer<Own::rook>(table, Own::short_rook_home, home + 1);
        undo_kind = S == white ? undo_white_short : undo_black_short;
    } else if (from == home && to == home - 2) {
        move_officer<Own::rook>(table, Own::long_rook_home, home - 1);
        undo_kind = S == white ? undo_white_long : undo_black_long;
    }
    table.*Own::king_square = to;
    table.castling &= all_rights & ~(Own::short_right | Own::long_right);
    return undo_kind;
}

/// Puts a man that is no pawn into the keys and its bitboard.
template <PieceCode Man>
inline void put_officer(Table& table, Square square) {
    toggle_keys<Man>(table, square);
    table.*bitboard_of(Man) |= mask_of(square);
}

/// Puts the piece promoted to on the board: mailbox, keys, bitboard. False: not one of the four
/// pieces; the mailbox has taken the code all the same.
template <Side S>
[[nodiscard]] inline bool put_promoted(Table& table, Square to, PieceCode info) {
    using Own = SideTraits<S>;
    table.at(to) = info;
    switch (info) {
        case Own::queen: put_officer<Own::queen>(table, to); return true;
        case Own::rook: put_officer<Own::rook>(table, to); return true;
        case Own::bishop: put_officer<Own::bishop>(table, to); return true;
        case Own::knight: put_officer<Own::knight>(table, to); return true;
        default: return false;
    }
}
