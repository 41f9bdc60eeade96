// SPDX-License-Identifier: MIT
// What the computer's move leaves behind between calls; the move itself is `Table::Mashine_chod`.
#pragma once

#include <cstdint>

/// Milliseconds that should be left on the clock after the last move.
extern std::int32_t expected_clock;

/// Forgets the score of the last search, so that the next one has nothing to be surprised by: at
/// start-up and for a new game.
void forget_previous_score();

/// All that is kept between calls, as at program start.
void reset_computer_move();
