// SPDX-License-Identifier: MIT
// No step is shared with the engine's board/make.
#include "support/reference_moves.h"

#include <array>

#include "board/piece_keys.h"

namespace {

/// A kind of man: its code, its bitboard (none for a king) and its place among the keys.
struct Man {
    PieceCode code;
    Bitboard Table::*men;
    std::size_t slot;
};

constexpr std::array<Man, 12> men = {{
    {8193, &Table::WPawns, 0},
    {8194, &Table::WKnight, 1},
    {8196, &Table::WBishop, 2},
    {8200, &Table::WRook, 3},
    {8208, &Table::WQuins, 4},
    {8224, nullptr, 5},
    {4160, &Table::BPawns, 6},
    {4224, &Table::BKnight, 7},
    {4352, &Table::BBishop, 8},
    {4608, &Table::BRook, 9},
    {5120, &Table::BQuins, 10},
    {6144, nullptr, 11},
}};

const Man* man_of(PieceCode code) {
    for (const Man& man : men) {
        if (man.code == code) {
            return &man;
        }
    }
    return nullptr;
}

/// The bit of a square; 0 off the board.
Bitboard bit_of(Square square) {
    const Square row = square / 10 - 2;
    const Square column = square % 10 - 1;
    const bool on_board = row >= 0 && row < 8 && column >= 0 && column < 8;
    return on_board ? Bitboard{1} << (8 * row + column) : 0;
}

void change_keys(Table& table, PieceCode code, Square square) {
    const std::size_t at = man_of(code)->slot * 120 + static_cast<std::size_t>(square);
    table.hash_lock ^= piece_keys[at];
    table.hash_index ^= piece_keys[1440 + at];
    if (code == 8193) {
        table.pawn_hash ^= piece_keys[2880 + static_cast<std::size_t>(square)];
    }
    if (code == 4160) {
        table.pawn_hash ^= piece_keys[2880 + 120 + static_cast<std::size_t>(square)];
    }
}

void flip_bit(Table& table, PieceCode code, Square square) {
    if (Bitboard Table::*const bits = man_of(code)->men) {
        table.*bits ^= bit_of(square);
    }
}

void set_bit(Table& table, PieceCode code, Square square) {
    table.*man_of(code)->men |= bit_of(square);
}

/// A man that is not a pawn in the keys and, but for a king, in its bitboard.
void shift(Table& table, PieceCode code, Square from, Square to) {
    change_keys(table, code, from);
    change_keys(table, code, to);
    if (man_of(code)->men != nullptr) {
        flip_bit(table, code, from);
        set_bit(table, code, to);
    }
}

void move_in_array(Table& table, Square from, Square to) {
    table.at(to) = table.at(from);
    table.at(from) = 16384;
}

void play_rook(Table& table, Square from, Square to) {
    const bool is_white = table.at(from) == 8200;
    shift(table, table.at(from), from, to);
    if (is_white && from == 91) {
        table.castling &= 13;
    }
    if (is_white && from == 98) {
        table.castling &= 14;
    }
    if (!is_white && from == 21) {
        table.castling &= 7;
    }
    if (!is_white && from == 28) {
        table.castling &= 11;
    }
    move_in_array(table, from, to);
}

/// One of the four castling moves: the king's squares, the rook's squares and the kind of record.
struct Castling {
    PieceCode king;
    Square from;
    Square to;
    PieceCode rook;
    Square rook_from;
    Square rook_to;
    std::int32_t kind;
};

constexpr std::array<Castling, 4> castlings = {{
    {8224, 95, 97, 8200, 98, 96, 3},
    {8224, 95, 93, 8200, 91, 94, 4},
    {6144, 25, 27, 4608, 28, 26, 5},
    {6144, 25, 23, 4608, 21, 24, 6},
}};

void play_king(Table& table, Square from, Square to, UndoRecord& undo) {
    const PieceCode king = table.at(from);
    shift(table, king, from, to);
    move_in_array(table, from, to);
    for (const Castling& castling : castlings) {
        if (castling.king == king && castling.from == from && castling.to == to) {
            shift(table, castling.rook, castling.rook_from, castling.rook_to);
            table.at(castling.rook_to) = castling.rook;
            table.at(castling.rook_from) = 16384;
            undo.undo_kind = castling.kind;
        }
    }
    if (king == 8224) {
        table.xywK = to;
        table.castling &= 12;
    } else {
        table.xybK = to;
        table.castling &= 3;
    }
}

/// The piece of a promotion, or a report where there is none.
void promote(Table& table, const Move& move, UndoRecord& undo, Reports& reports) {
    const PieceCode info = move.posInfo;
    const bool is_white = table.at(move.posFrom) == 8193;
    if ((info & (is_white ? 0x2000U : 0x1000U)) == 0) {
        reports.push_back(std::string("SUPER ERROR ") + (is_white ? "w" : "b") +
                          "_figure(posInfo)  == 0 pos Info: " + std::to_string(info));
        return;
    }
    table.at(move.posTo) = info;
    undo.undo_kind = undo.undo_kind == 1 ? 22 : 2;
    const bool is_piece = is_white ? info == 8208 || info == 8200 || info == 8196 || info == 8194
                                   : info == 5120 || info == 4608 || info == 4352 || info == 4224;
    if (is_piece) {
        change_keys(table, info, move.posTo);
        set_bit(table, info, move.posTo);
        undo.promoted = info;
    } else {
        reports.push_back("ERRPR net takoi figuri pos Info: " + std::to_string(info));
    }
}

void play_pawn(Table& table, const Move& move, bool recorded, UndoRecord& undo, Reports& reports) {
    const Square from = move.posFrom;
    const Square to = move.posTo;
    const PieceCode pawn = table.at(from);
    const bool is_white = pawn == 8193;
    const bool stays_pawn = is_white ? to >= 31 : to <= 88;
    change_keys(table, pawn, from);
    flip_bit(table, pawn, from);
    if (stays_pawn) {
        change_keys(table, pawn, to);
        set_bit(table, pawn, to);
    } else {
        promote(table, move, undo, reports);
    }
    const Square ahead = is_white ? from - to : to - from;
    if (ahead == 20) {
        table.ep_flag = 1;
        table.ep_square = to;
    }
    if ((ahead == 11 || ahead == 9) && table.at(to) == 16384) {
        const Square beside = is_white ? to + 10 : to - 10;
        const PieceCode taken = is_white ? 4160 : 8193;
        flip_bit(table, taken, beside);
        table.capture_flag = 1;
        undo.en_passant = 1;
        undo.undo_kind = 1;
        undo.captured = taken;
        change_keys(table, taken, beside);
        table.at(beside) = 16384;
        --table.Kol_figur;
    }
    if (recorded ? undo.undo_kind < 2 : stays_pawn) {
        table.at(to) = table.at(from);
    }
    table.at(from) = 16384;
}

UndoRecord play(Table& table, const Move& move, bool recorded, Reports& reports) {
    UndoRecord undo{};
    undo.hash_lock = table.hash_lock;
    undo.hash_index = table.hash_index;
    undo.pawn_hash = table.pawn_hash;
    undo.posFrom = move.posFrom;
    undo.posTo = move.posTo;
    undo.ep_flag = table.ep_flag;
    undo.ep_square = table.ep_square;
    undo.castling = table.castling;
    undo.capture_flag = table.capture_flag;

    table.capture_flag = 0;
    const PieceCode target = table.at(move.posTo);
    if (target != 16384) {
        table.capture_flag = 1;
        --table.Kol_figur;
        undo.undo_kind = 1;
        undo.captured = target;
        const Man* const taken = man_of(target);
        if (taken != nullptr && taken->men != nullptr) {
            change_keys(table, target, move.posTo);
            flip_bit(table, target, move.posTo);
        }
    }
    table.ep_flag = 0;

    const PieceCode mover = table.at(move.posFrom);
    if (mover == 8193 || mover == 4160) {
        play_pawn(table, move, recorded, undo, reports);
    } else if (mover == 8224 || mover == 6144) {
        play_king(table, move.posFrom, move.posTo, undo);
    } else if (mover == 8200 || mover == 4608) {
        play_rook(table, move.posFrom, move.posTo);
    } else if (man_of(mover) != nullptr) {
        shift(table, mover, move.posFrom, move.posTo);
        move_in_array(table, move.posFrom, move.posTo);
    }
    return undo;
}

/// The man on `posFrom`, just come back there.
void return_mover(Table& table, const UndoRecord& undo) {
    const PieceCode mover = table.at(undo.posFrom);
    if (mover == 8224) {
        table.xywK = undo.posFrom;
    } else if (mover == 6144) {
        table.xybK = undo.posFrom;
    } else if (man_of(mover) != nullptr) {
        flip_bit(table, mover, undo.posFrom);
        flip_bit(table, mover, undo.posTo);
        if (mover == 8193 || mover == 4160) {
            table.pawn_hash = undo.pawn_hash;
        }
    }
}

void return_captured(Table& table, PieceCode captured, Square square) {
    if (man_of(captured) != nullptr) {
        flip_bit(table, captured, square);
    }
    table.at(square) = captured;
}

void take_back_move_or_capture(Table& table, const UndoRecord& undo) {
    move_in_array(table, undo.posTo, undo.posFrom);
    return_mover(table, undo);
    if (undo.undo_kind == 0) {
        return;
    }
    ++table.Kol_figur;
    const PieceCode mover = table.at(undo.posFrom);
    if (undo.en_passant == 1 && mover == 8193) {
        return_captured(table, undo.captured, undo.posTo + 10);
    } else if (undo.en_passant == 1 && mover == 4160) {
        return_captured(table, undo.captured, undo.posTo - 10);
    } else {
        return_captured(table, undo.captured, undo.posTo);
    }
    if (undo.captured == 8193 || undo.captured == 4160) {
        table.pawn_hash = undo.pawn_hash;
    }
}

void take_back_promotion(Table& table, const UndoRecord& undo) {
    const PieceCode pawn = (table.at(undo.posTo) & 0x2000U) != 0 ? 8193 : 4160;
    flip_bit(table, pawn, undo.posFrom);
    table.pawn_hash = undo.pawn_hash;
    table.at(undo.posFrom) = pawn;
    table.at(undo.posTo) = 16384;
    if (undo.promoted != 0) {
        flip_bit(table, undo.promoted, undo.posTo);
    }
    if (undo.undo_kind == 22) {
        ++table.Kol_figur;
        return_captured(table, undo.captured, undo.posTo);
    }
}

void take_back_castling(Table& table, const UndoRecord& undo) {
    const Castling& castling = castlings[static_cast<std::size_t>(undo.undo_kind - 3)];
    (castling.king == 8224 ? table.xywK : table.xybK) = undo.posFrom;
    flip_bit(table, castling.rook, castling.rook_from);
    flip_bit(table, castling.rook, castling.rook_to);
    table.at(castling.from) = castling.king;
    table.at(castling.to) = 16384;
    table.at(castling.rook_from) = castling.rook;
    table.at(castling.rook_to) = 16384;
}

}  // namespace

UndoRecord reference_make(Table& table, const Move& move, Reports& reports) {
    return play(table, move, true, reports);
}

void reference_make_plain(Table& table, const Move& move, Reports& reports) {
    static_cast<void>(play(table, move, false, reports));
}

void reference_unmake(Table& table, const UndoRecord& undo) {
    table.hash_lock = undo.hash_lock;
    table.hash_index = undo.hash_index;
    table.ep_flag = undo.ep_flag;
    table.ep_square = undo.ep_square;
    table.capture_flag = undo.capture_flag;
    table.castling = undo.castling;
    if (undo.undo_kind == 0 || undo.undo_kind == 1) {
        take_back_move_or_capture(table, undo);
    } else if (undo.undo_kind == 2 || undo.undo_kind == 22) {
        take_back_promotion(table, undo);
    } else {
        take_back_castling(table, undo);
    }
}
