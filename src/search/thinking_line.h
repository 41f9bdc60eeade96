// SPDX-License-Identifier: MIT
// The line that one iteration shows.
#pragma once

#include <cstdint>

/// Prints depth, score (side to move's view, pawn = 72), hundredths of a second since the start of
/// the search, nodes, and the principal variation of row 0 of `vetka`.
void print_thinking_line(std::int32_t score);

/// The same with the time as given, in a unit of the caller's choice.
void print_iteration(std::int32_t score, std::uint32_t elapsed);
