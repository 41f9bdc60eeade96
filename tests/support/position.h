// SPDX-License-Identifier: MIT
// Positions for tests and benchmarks.
#pragma once

#include <string>
#include <string_view>

#include "board/table.h"

/// The position of a FEN line: board, side, castling rights; an en passant square becomes the state
/// after the double push. The keys are those of the position.
[[nodiscard]] Table position_from_fen(std::string_view fen);

/// The starting position with the keys of the position.
[[nodiscard]] Table start_position();

/// The position with colours exchanged and the board turned over.
[[nodiscard]] Table mirrored(const Table& table);

/// Board and side as FEN text, for messages.
[[nodiscard]] std::string fen_of(const Table& table);

/// A move as coordinate text, with a promotion letter.
[[nodiscard]] std::string move_text(Square from, Square to, PieceCode info);
