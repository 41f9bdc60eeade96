// SPDX-License-Identifier: MIT
// One move as three words.
#pragma once

#include "board/types.h"

/// A move as the generators give it.
struct Move {
    Square posFrom;     ///< mailbox from-square
    Square posTo;       ///< mailbox to-square
    PieceCode posInfo;  ///< 0, or the piece promoted to, or a castling label (see below)

    friend bool operator==(const Move&, const Move&) = default;
};

// Castling labels: they mark a castling move that is announced. The generators leave posInfo at 0,
// and making a move reads posInfo only when a pawn arrives on the last rank.
inline constexpr PieceCode label_white_short = 17;
inline constexpr PieceCode label_white_long = 16;
inline constexpr PieceCode label_black_short = 257;
inline constexpr PieceCode label_black_long = 256;
