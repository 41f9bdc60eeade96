// SPDX-License-Identifier: MIT
// The board field of FEN text. There is no command that sets a position from FEN; test files use
// it.
#pragma once

#include <string_view>

#include "board/table.h"

/// Places men on a cleared `Table`, character by character of a board field.
class FenBoardCursor {
  public:
    /// Starts at a8.
    explicit FenBoardCursor(Table& table);

    /// Takes one character: a man, a digit 1 to 8, or a slash; any other is passed over.
    void take(char character);

  private:
    void place(PieceCode code);

    Table& table_;
    Square row_base_;
    Square column_ = 0;
};

/// Fills a cleared `Table` from the text up to its first blank: `Array`, bitboards, king squares
/// and `Kol_figur`. Side, rights, en passant state and keys stay as they are. A man beyond the
/// eighth file goes into the neighbouring mailbox entry; beyond the mailbox nothing is written.
void read_fen_board(std::string_view text, Table& table);
