// SPDX-License-Identifier: MIT
// Squares, moves and positions as text, and what is printed of them.
#pragma once

#include <string_view>

#include "board/table.h"

/// Names by mailbox index: "a8" at 21 to "h1" at 98, two blanks off the board.
extern const Mailbox<std::string_view> square_names;

/// The first index whose name is `text`, case included; 0, which is off the board, if none is.
[[nodiscard]] Square square_of_text(std::string_view text);

/// Whether the name of a square begins with this letter: 'a' to 'h'.
[[nodiscard]] bool is_on_file(Square square, char letter);

/// Whether the name of a square ends in this digit: '1' to '8'.
[[nodiscard]] bool is_on_rank(Square square, char digit);

/// Prints a move, mirrored: the two squares, the letter of a promotion, and one blank always.
void print_move(Square from, Square to, PieceCode info);

/// Prints a list, numbered, seven moves a line, and its length.
void print_moves(const MoveList& list);

/// Prints the board, the ten bitboards, the king squares and the number of men.
void dump_position(const Table& table);

/// Prints 64 digits from bit 0 to bit 63, with no line end.
void print_bitboard(Bitboard word);
