// SPDX-License-Identifier: MIT
// Clearing a position and setting up the start of a game.
#pragma once

#include "board/table.h"

/// Empties the board: `Array`, bitboards, `Kol_figur`, `castling`, `ep_flag` and the three keys.
/// The king squares, `side`, `ep_square` and `capture_flag` stay as they were.
void clear_position(Table& table);

/// Sets up the starting position on a board that has no part in the game. The keys come out as told
/// at the definition: they are not yet those of the position.
void place_start_position(Table& table);

/// The same for the game's own board, and empties the game record.
void set_start_position(Table& table);
