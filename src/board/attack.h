// SPDX-License-Identifier: MIT
// Whether a square or a king is attacked: worked out on demand from bitboards and mailbox together.
#pragma once

#include "board/table.h"

/// Whether `square` is attacked by the enemy of `side`: 0 asks about Black's men, any other value
/// about White's. All men stand as they are, a moving king included.
[[nodiscard]] bool square_attacked(const Table& table, Square square, Side side);

/// Whether the king of `side` is attacked. `side` may be 0 or 1 or a piece code of that colour.
[[nodiscard]] bool in_check(const Table& table, std::uint32_t side);

/// Whether an enemy slider bears on `square` along the line that runs through `through`. Blind to
/// all else: knights, pawns, kings and other lines. `side` as for `square_attacked`.
[[nodiscard]] bool line_attack(const Table& table, Square square, Side side, Square through);

/// `line_attack` on the king of `side`, which is chosen as in `in_check`.
[[nodiscard]] bool line_check(const Table& table, std::uint32_t side, Square through);
