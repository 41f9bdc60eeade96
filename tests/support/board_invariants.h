// SPDX-License-Identifier: MIT
// What must hold of every sound position: its two boards agree, its counts and its keys are right.
#pragma once

#include <string>

#include "board/table.h"

/// The first thing that does not hold, in words with the position; empty if all is sound. Looked at
/// are the ten bitboards and the king squares against the mailbox, the entries off the board, the
/// number of men, and the three keys.
[[nodiscard]] std::string broken_invariant(const Table& table);

/// The same without the keys, for positions that have just been set up.
[[nodiscard]] std::string broken_board(const Table& table);
