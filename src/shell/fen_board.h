// SPDX-License-Identifier: MIT
// The board field of FEN text. There is no command that sets a position from FEN; test files use
// it.
#pragma once

#include <string_view>

#include "board/table.h"

/// How a board field is laid on the board.
enum class FenView {
    as_written,  ///< the first row is the eighth rank
    mirrored     ///< the first row is the first rank, and every man changes its colour
};

/// Places men on a cleared `Table`, character by character of a board field.
class FenBoardCursor {
  public:
    /// Starts at a8, or at a1 if mirrored.
    FenBoardCursor(Table& table, FenView view);

    /// Takes one character: a man, a digit 1 to 8, or a slash; any other is passed over.
    void take(char character);

  private:
    void place(PieceCode code);

    Table& table_;
    FenView view_;
    Square row_base_;
    Square column_ = 0;
};

/// Fills a cleared `Table` from the text up to its first blank: `Array`, bitboards, king squares
/// and `Kol_figur`. Side, rights, en passant state and keys stay as they are. A man beyond the
/// eighth file goes into the neighbouring mailbox entry; beyond the mailbox nothing is written.
void read_fen_board(std::string_view text, Table& table, FenView view);
