// SPDX-License-Identifier: MIT
// Which positions of a word are legal, and in which of them a king is attacked.
#pragma once

#include <cstddef>

#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/square_set.h"

/// Squares of the kings and the posts.
[[nodiscard]] SquareSet occupied_by(const Endgame& endgame, const KingSquares& kings,
                                    std::size_t word);

/// Squares of the runner with which no two men meet and pawns stand on ranks 2 to 7.
[[nodiscard]] SquareSet possible_squares(const Endgame& endgame, const KingSquares& kings,
                                         std::size_t word);

/// Squares of the runner with which the men of a side attack the other side's king. The word has
/// possible squares.
[[nodiscard]] SquareSet attacking_squares(const Endgame& endgame, const KingSquares& kings,
                                          std::size_t word, std::uint8_t side);

/// Squares from which a man of a kind and side, kings aside, attacks a square.
[[nodiscard]] SquareSet attackers_of(EndgameMan man, TbSquare target, SquareSet occupied);
