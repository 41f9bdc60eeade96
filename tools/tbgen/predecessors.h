// SPDX-License-Identifier: MIT
// Moves taken back: from the positions of a set to those in which the side that is not to move
// there could have moved into them. All 64 positions of a word go back together.
#pragma once

#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/outside_values.h"
#include "tbgen/position_set.h"

/// Adds the position of a man and the others, who stand in the order of the layout without it. It
/// may be any of its kind, so each placement of alike men gets its bit.
void add_with_man(const Endgame& endgame, EndgameMan man, TbSquare on, const MenSquares& others,
                  SquareSet* to);

/// Takes back the moves of `mover`'s men but for its king within a slab. Adds positions with
/// `mover` to move to `to`, a slab; some of them may be illegal. `from` has legal positions and
/// codes with the other side to move.
void take_back_men(const Endgame& endgame, const KingSquares& kings, std::uint8_t mover,
                   const SquareSet* from, SquareSet* to);

/// The same for one king move, which led from the slab of `to` to the slab of `from`.
void take_back_king(const Endgame& endgame, const KingMove& move, const SquareSet* from,
                    SquareSet* to);

/// Takes back the captures of one enemy man by men other than the king that led to positions of
/// `outside` with some value. `captured`: the man.
void take_back_captures(const Endgame& endgame, const KingSquares& kings, EndgameMan captured,
                        const OutsideValues& outside, std::size_t slab, Value value, SquareSet* to);

/// The same for the captures by one king move.
void take_back_king_captures(const Endgame& endgame, const KingMove& move, EndgameMan captured,
                             const OutsideValues& outside, Value value, SquareSet* to);
