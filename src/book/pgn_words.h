// SPDX-License-Identifier: MIT
// The first pass of book building: a PGN file loses its tags and becomes a text of words, one line
// a game, with a letter for the result in front.
#pragma once

#include <streambuf>

#include "book/build_progress.h"
#include "platform/text_file.h"

/// Result letters in the temporary file. Their case means nothing when they are read back.
inline constexpr char letter_white_won = 'w';
inline constexpr char letter_black_won = 'b';
inline constexpr char letter_draw = 'd';

/// Reads `pgn` to its end or to the first byte 255, and writes what is left of it to `words`. False
/// if that could not be written. Uses no memory that grows with the file.
[[nodiscard]] bool write_pgn_words(TextFile& pgn, std::streambuf& words, BuildProgress& progress);
