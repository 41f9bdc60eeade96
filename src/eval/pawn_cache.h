// SPDX-License-Identifier: MIT
// The cache of pawn structures: direct-mapped, keyed by `pawn_hash`. Most positions of a search
// share their pawns with many others.
#pragma once

#include "eval/pawn_structure.h"

inline constexpr std::uint32_t pawn_cache_mb = 2;  ///< megabytes
/// 12483 entries of 168 bytes.
inline constexpr std::uint32_t pawn_cache_entries =
    pawn_cache_mb * 1024 * 1024 / static_cast<std::uint32_t>(sizeof(PawnEntry));

/// Takes the memory, once, at start-up; entries that were never filled match no key. Called again
/// it empties the cache.
void pawn_cache_allocate();

/// The entry of the position's pawns, filled if the cache does not hold it. It stays good until
/// the next call.
[[nodiscard]] const PawnEntry& pawn_entry_of(const Table& table);
