// SPDX-License-Identifier: MIT
// What a move destroys, kept so that it can be taken back.
#pragma once

#include "board/types.h"

/// The kind of move that a record takes back.
enum UndoKind : std::int32_t {
    undo_plain = 0,
    undo_capture = 1,  ///< en passant included
    undo_promotion = 2,
    undo_white_short = 3,
    undo_white_long = 4,
    undo_black_short = 5,
    undo_black_long = 6,
    undo_capture_promotion = 22,
};

/// Thirteen words, filled by `make` and read by `unmake`.
struct UndoRecord {
    std::int32_t undo_kind;  ///< one of UndoKind
    std::uint32_t hash_lock;
    std::uint32_t hash_index;
    std::uint32_t pawn_hash;
    Square posFrom;
    Square posTo;
    std::int32_t ep_flag;
    Square ep_square;
    PieceCode promoted;       ///< on the two kinds of promotion
    PieceCode captured;       ///< on the two kinds of capture
    std::int32_t en_passant;  ///< 1 when the capture was en passant
    std::uint32_t castling;
    std::int32_t capture_flag;

    friend bool operator==(const UndoRecord&, const UndoRecord&) = default;
};
