// SPDX-License-Identifier: MIT
// The loop that reads words and lets them act, one after the other.
#pragma once

#include <iosfwd>

#include "board/table.h"

/// Reads words from `input` until "quit", in any case of letters, or the end of the input. `table`
/// is the game's position.
void run_command_loop(std::istream& input, Table& table);
