// SPDX-License-Identifier: MIT
// The three keys of a position from scratch. They describe the men's placement alone: neither the
// side to move nor castling rights nor the en passant state enters any of them.
#pragma once

#include "board/table.h"

/// Key for `hash_lock`, from the bitboards and the king squares.
[[nodiscard]] std::uint32_t hash_lock_from_scratch(const Table& table);

/// Key for `hash_index`, likewise.
[[nodiscard]] std::uint32_t hash_index_from_scratch(const Table& table);

/// Key for `pawn_hash`, from the two bitboards of pawns.
[[nodiscard]] std::uint32_t pawn_hash_from_scratch(const Table& table);

/// Sets the three keys of `table` from scratch.
void compute_keys(Table& table);
