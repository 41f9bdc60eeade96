// SPDX-License-Identifier: MIT
// Building the opening book: the games of a PGN file become lines of the two book files. The book
// in memory stays as it is; new lines are used from the next start of the program on.
#pragma once

#include <string>

/// The temporary file between the two passes. It is left behind.
inline constexpr const char* book_words_name = "corvane.tmp";

/// Plies of a game that are written.
inline constexpr int book_line_plies = 25;

/// Adds the games of the PGN file `name` to the books of the working directory. Says on standard
/// output that it begins and that it has ended, or which file cannot be had. Where writing fails,
/// standard error says so and the books are as they were before. Progress goes to standard error if
/// that is a terminal. The game that is being played is not touched.
void createbook(const std::string& name);
