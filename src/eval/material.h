// SPDX-License-Identifier: MIT
// What the men alone say, before any piece's place is looked at: draws, bare kings, imbalance.
#pragma once

#include <optional>

#include "eval/counts.h"

/// Whether three men or fewer cannot win: two kings, or a minor piece beside them.
[[nodiscard]] bool is_dead_draw(const Table& table);

/// Sum of the material terms, White's view; empty if the position is a draw.
[[nodiscard]] std::optional<std::int32_t> material_score(const Table& table, const MenCounts& men);

/// Whether few enough men are left for the king to come out.
[[nodiscard]] bool is_endgame(const MenCounts& men);
