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

/// Takes a captured man that is no pawn out of the keys and its bitboard.
///
/// Intended(lifted-bits-flip): the bit is flipped, not cleared, whether the move is recorded or
/// final, and taking back flips it again. So where mailbox and bitboards disagree (set up by hand,
/// or left so by quiescence at the limit of plies) a man without a bit leaves one behind.
template <PieceCode Man>
inline void lift_officer(Table& table, Square square) {
    toggle_keys<Man>(table, square);
    table.*bitboard_of(Man) ^= mask_of(square);
}

/// Takes a pawn, captured or about to move, out of the keys and its bitboard; its bit is flipped as
/// in `lift_officer`.
template <Side S>
inline void lift_pawn(Table& table, Square square) {
    toggle_pawn_keys<S>(table, square);
    table.*SideTraits<S>::pawns ^= mask_of(square);
}

/// Takes a captured man out of the keys and its bitboard. Kings have no branch: a king that is
/// taken (when the side to move was changed by hand) leaves the keys as they are.
inline void lift_captured(Table& table, PieceCode code, Square square) {
    switch (code) {
        case w_pawn: lift_pawn<white>(table, square); break;
        case w_knight: lift_officer<w_knight>(table, square); break;
        case w_bishop: lift_officer<w_bishop>(table, square); break;
        case w_rook: lift_officer<w_rook>(table, square); break;
        case w_queen: lift_officer<w_queen>(table, square); break;
        case b_pawn: lift_pawn<black>(table, square); break;
        case b_knight: lift_officer<b_knight>(table, square); break;
        case b_bishop: lift_officer<b_bishop>(table, square); break;
        case b_rook: lift_officer<b_rook>(table, square); break;
        case b_queen: lift_officer<b_queen>(table, square); break;
        default: break;
    }
}

/// Moves a man in the mailbox alone.
inline void move_in_mailbox(Table& table, Square from, Square to) {
    table.at(to) = table.at(from);
    table.at(from) = empty_square;
}

/// Moves a knight, bishop, rook or queen in its bitboard and the keys; the mailbox stays.
template <PieceCode Man>
inline void shift_officer(Table& table, Square from, Square to) {
    Bitboard& men = table.*bitboard_of(Man);
    men ^= mask_of(from);
    men |= mask_of(to);
    toggle_keys<Man>(table, from);
    toggle_keys<Man>(table, to);
}

/// A knight, bishop, rook or queen: bitboard, keys, mailbox.
template <PieceCode Man>
inline void move_officer(Table& table, Square from, Square to) {
    shift_officer<Man>(table, from, to);
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

/// The rook's part of castling, from its corner to the square that the king has crossed.
///
/// Intended(castling-brings-its-rook): `to` gets a rook whatever stands on the corner, as taking
/// back puts one there. Castling is generated only with the rook in place. The word `O-O` in a game
/// for the book, or a king that moves like a queen on a board set up by hand, castles without it.
template <Side S>
inline void castle_rook(Table& table, Square from, Square to) {
    using Own = SideTraits<S>;
    shift_officer<Own::rook>(table, from, to);
    table.at(to) = Own::rook;
    table.at(from) = empty_square;
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
        castle_rook<S>(table, Own::short_rook_home, home + 1);
        undo_kind = S == white ? undo_white_short : undo_black_short;
    } else if (from == home && to == home - 2) {
        castle_rook<S>(table, Own::long_rook_home, home - 1);
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
