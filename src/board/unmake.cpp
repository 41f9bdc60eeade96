// SPDX-License-Identifier: MIT
// Taking a move back, a branch for each kind of record. pawn_hash is restored only on the branches
// that can have changed it.
#include "board/make.h"
#include "board/side_traits.h"
#include "board/square_tables.h"

namespace {

/// Puts the mover's bit or king square back; the mailbox already shows it on its old square.
void return_mover(Table& table, const UndoRecord& undo) {
    const Bitboard both = mask_of(undo.posFrom) ^ mask_of(undo.posTo);
    switch (table.at(undo.posFrom)) {
        case w_pawn:
            table.WPawns ^= both;
            table.pawn_hash = undo.pawn_hash;
            break;
        case w_knight: table.WKnight ^= both; break;
        case w_bishop: table.WBishop ^= both; break;
        case w_rook: table.WRook ^= both; break;
        case w_queen: table.WQuins ^= both; break;
        case w_king: table.xywK = undo.posFrom; break;
        case b_pawn:
            table.BPawns ^= both;
            table.pawn_hash = undo.pawn_hash;
            break;
        case b_knight: table.BKnight ^= both; break;
        case b_bishop: table.BBishop ^= both; break;
        case b_rook: table.BRook ^= both; break;
        case b_queen: table.BQuins ^= both; break;
        case b_king: table.xybK = undo.posFrom; break;
        default: break;
    }
}

/// Puts a captured man back on `square`; a king has no bitboard.
void return_captured(Table& table, PieceCode code, Square square) {
    const auto bitboard = bitboard_of(code);
    if (bitboard != nullptr) {
        table.*bitboard ^= mask_of(square);
    }
    table.at(square) = code;
}

void take_back_plain(Table& table, const UndoRecord& undo) {
    table.at(undo.posFrom) = table.at(undo.posTo);
    table.at(undo.posTo) = empty_square;
    return_mover(table, undo);
}

void take_back_capture(Table& table, const UndoRecord& undo) {
    take_back_plain(table, undo);
    ++table.Kol_figur;
    const PieceCode mover = table.at(undo.posFrom);
    if (undo.en_passant != 0 && is_pawn(mover)) {
        const Square forward =
            mover == w_pawn ? SideTraits<white>::forward : SideTraits<black>::forward;
        return_captured(table, undo.captured, undo.posTo - forward);
    } else {
        return_captured(table, undo.captured, undo.posTo);
    }
    if (is_pawn(undo.captured)) {
        table.pawn_hash = undo.pawn_hash;
    }
}

template <Side S>
void return_promoted_pawn(Table& table, const UndoRecord& undo) {
    using Own = SideTraits<S>;
    table.*Own::pawns ^= mask_of(undo.posFrom);
    table.pawn_hash = undo.pawn_hash;
    table.at(undo.posFrom) = Own::pawn;
    table.at(undo.posTo) = empty_square;
    const auto promoted = bitboard_of(undo.promoted);
    if (promoted != nullptr) {
        table.*promoted ^= mask_of(undo.posTo);
    }
}

void take_back_promotion(Table& table, const UndoRecord& undo) {
    if (w_figure(table.at(undo.posTo)) != 0) {
        return_promoted_pawn<white>(table, undo);
    } else {
        return_promoted_pawn<black>(table, undo);
    }
}

/// The rook goes back from `rook_to` to `rook_from`, the king to its home.
template <Side S>
void take_back_castling(Table& table, const UndoRecord& undo, Square rook_from, Square rook_to) {
    using Own = SideTraits<S>;
    table.*Own::king_square = undo.posFrom;
    table.*Own::rooks ^= mask_of(rook_from) ^ mask_of(rook_to);
    const Square king_to = rook_to < Own::king_home ? Own::king_home - 2 : Own::king_home + 2;
    table.at(Own::king_home) = Own::king;
    table.at(king_to) = empty_square;
    table.at(rook_from) = Own::rook;
    table.at(rook_to) = empty_square;
}

}  // namespace

void unmake(Table& table, const UndoRecord& undo) {
    table.hash_lock = undo.hash_lock;
    table.hash_index = undo.hash_index;
    table.ep_flag = undo.ep_flag;
    table.ep_square = undo.ep_square;
    table.capture_flag = undo.capture_flag;
    table.castling = undo.castling;
    switch (undo.undo_kind) {
        case undo_plain: take_back_plain(table, undo); break;
        case undo_capture: take_back_capture(table, undo); break;
        case undo_promotion: take_back_promotion(table, undo); break;
        case undo_capture_promotion:
            take_back_promotion(table, undo);
            ++table.Kol_figur;
            return_captured(table, undo.captured, undo.posTo);
            break;
        case undo_white_short: take_back_castling<white>(table, undo, h1, f1); break;
        case undo_white_long: take_back_castling<white>(table, undo, a1, d1); break;
        case undo_black_short: take_back_castling<black>(table, undo, h8, f8); break;
        case undo_black_long: take_back_castling<black>(table, undo, a8, d8); break;
        default: break;
    }
}
