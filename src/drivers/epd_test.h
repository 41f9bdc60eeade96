// SPDX-License-Identifier: MIT
// A suite of positions with their best moves: each is searched for a fixed time, and the move found
// is held against the solutions.
#pragma once

#include <cstdint>
#include <string>

/// Runs the EPD file `file_name` with `seconds` for each position, and prints verdicts and a
/// summary. The game's position and record, its clocks and the book are not touched; the time
/// limit, the transposition table, the history and `root_side` are.
void epd_test(std::int32_t seconds, const std::string& file_name);
