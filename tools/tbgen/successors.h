// SPDX-License-Identifier: MIT
// One move on: what the values of a position's successors make of it. Written for plainness; the
// generator shares no code with it but the squares that men attack.
#pragma once

#include "tbgen/half_bytes.h"
#include "tbgen/stored_values.h"

/// Whether a side's king is attacked by the other side's men.
[[nodiscard]] bool is_in_check(const MenList& men, const MenPosition& position, std::uint8_t side);

/// The value that follows from the successors' stored values; `not_reachable` if one of those has
/// none. The position is legal.
[[nodiscard]] Value value_by_successors(const Material& material, const MenPosition& position);
