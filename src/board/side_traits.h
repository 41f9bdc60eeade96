// SPDX-License-Identifier: MIT
// Everything that differs between the two colours, by name. Rules are written once, as templates
// on the side; what cannot be mirrored stands in the open at its rule.
#pragma once

#include "board/table.h"

template <Side S>
struct SideTraits;

template <>
struct SideTraits<white> {
    static constexpr Side self = white;
    static constexpr Side enemy = black;
    static constexpr std::int32_t sign = +1;  ///< White's terms raise the score
    static constexpr Square forward = -10;    ///< mailbox step towards the last rank
    /// A pawn's two captures in the order of generation: each side begins with the smaller step in
    /// size, so White begins towards the h-file and Black towards the a-file.
    static constexpr Square first_capture = -9;
    static constexpr Square second_capture = -11;

    static constexpr PieceCode pawn = w_pawn;
    static constexpr PieceCode knight = w_knight;
    static constexpr PieceCode bishop = w_bishop;
    static constexpr PieceCode rook = w_rook;
    static constexpr PieceCode queen = w_queen;
    static constexpr PieceCode king = w_king;
    static constexpr PieceCode colour_bit = white_bit;

    static constexpr Bitboard Table::*pawns = &Table::WPawns;
    static constexpr Bitboard Table::*knights = &Table::WKnight;
    static constexpr Bitboard Table::*bishops = &Table::WBishop;
    static constexpr Bitboard Table::*rooks = &Table::WRook;
    static constexpr Bitboard Table::*queens = &Table::WQuins;
    static constexpr Square Table::*king_square = &Table::xywK;

    static constexpr Square king_home = e1;
    static constexpr Square short_rook_home = h1;
    static constexpr Square long_rook_home = a1;
    static constexpr std::uint32_t short_right = right_white_short;
    static constexpr std::uint32_t long_right = right_white_long;

    static constexpr std::int32_t home_row = 7;     ///< row of the pieces at the start
    static constexpr std::int32_t last_row = 0;     ///< row on which pawns promote
    static constexpr std::int32_t seventh_row = 1;  ///< row from which they do

    /// Whether a pawn on `square` stands on its second rank.
    static constexpr bool on_second_rank(Square square) { return square >= a2; }
    /// Whether a pawn on `square` stands on its seventh rank: its next step promotes.
    static constexpr bool on_seventh_rank(Square square) { return square < h7 + 1; }
    /// Whether a pawn on `square` stands on its sixth rank.
    static constexpr bool on_sixth_rank(Square square) { return square >= a6 && square <= h6; }
    /// Whether `square` is on the last rank or beyond it.
    static constexpr bool on_last_rank(Square square) { return square < a7; }
    /// Whether a pawn on `square` stands on the rank from which it takes en passant.
    static constexpr bool on_fifth_rank(Square square) { return square >= a5 && square <= h5; }
};

template <>
struct SideTraits<black> {
    static constexpr Side self = black;
    static constexpr Side enemy = white;
    static constexpr std::int32_t sign = -1;
    static constexpr Square forward = +10;
    static constexpr Square first_capture = +9;
    static constexpr Square second_capture = +11;

    static constexpr PieceCode pawn = b_pawn;
    static constexpr PieceCode knight = b_knight;
    static constexpr PieceCode bishop = b_bishop;
    static constexpr PieceCode rook = b_rook;
    static constexpr PieceCode queen = b_queen;
    static constexpr PieceCode king = b_king;
    static constexpr PieceCode colour_bit = black_bit;

    static constexpr Bitboard Table::*pawns = &Table::BPawns;
    static constexpr Bitboard Table::*knights = &Table::BKnight;
    static constexpr Bitboard Table::*bishops = &Table::BBishop;
    static constexpr Bitboard Table::*rooks = &Table::BRook;
    static constexpr Bitboard Table::*queens = &Table::BQuins;
    static constexpr Square Table::*king_square = &Table::xybK;

    static constexpr Square king_home = e8;
    static constexpr Square short_rook_home = h8;
    static constexpr Square long_rook_home = a8;
    static constexpr std::uint32_t short_right = right_black_short;
    static constexpr std::uint32_t long_right = right_black_long;

    static constexpr std::int32_t home_row = 0;
    static constexpr std::int32_t last_row = 7;
    static constexpr std::int32_t seventh_row = 6;

    static constexpr bool on_second_rank(Square square) { return square < h7 + 1; }
    static constexpr bool on_seventh_rank(Square square) { return square >= a2; }
    static constexpr bool on_sixth_rank(Square square) { return square >= a3 && square <= h3; }
    static constexpr bool on_last_rank(Square square) { return square > h2; }
    static constexpr bool on_fifth_rank(Square square) { return square >= a4 && square <= h4; }
};

/// All men of a side but its king.
template <Side S>
[[nodiscard]] inline Bitboard men_without_king(const Table& table) {
    using Own = SideTraits<S>;
    return table.*Own::pawns | table.*Own::knights | table.*Own::bishops | table.*Own::rooks |
           table.*Own::queens;
}

/// The bitboard that holds the men of a code; a null member for kings and for what is no man.
[[nodiscard]] constexpr Bitboard Table::*bitboard_of(PieceCode code) {
    switch (code) {
        case w_pawn: return &Table::WPawns;
        case w_knight: return &Table::WKnight;
        case w_bishop: return &Table::WBishop;
        case w_rook: return &Table::WRook;
        case w_queen: return &Table::WQuins;
        case b_pawn: return &Table::BPawns;
        case b_knight: return &Table::BKnight;
        case b_bishop: return &Table::BBishop;
        case b_rook: return &Table::BRook;
        case b_queen: return &Table::BQuins;
        default: return nullptr;
    }
}
