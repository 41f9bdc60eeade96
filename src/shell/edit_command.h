// SPDX-License-Identifier: MIT
// The position set-up dialogue of the interface. It changes less than its name promises.
#pragma once

#include "board/table.h"
#include "shell/word_reader.h"

/// Reads words up to "end" or "." (or the end of the input) and writes men into `Array`,
/// `Kol_figur` and the king squares alone: bitboards, rights, side, en passant state and keys stay
/// as they are, so that board and bitboards disagree until the next `new`.
void run_edit(Table& table, WordReader& in);
