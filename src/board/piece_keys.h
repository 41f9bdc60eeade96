// SPDX-License-Identifier: MIT
// The random numbers whose XOR is a position's Zobrist key. The values are fixed and live only in
// memory; no file depends on them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>

#include "board/types.h"

inline constexpr std::size_t key_men = 12;  ///< kinds of men, both colours
inline constexpr std::size_t lock_keys = key_men * mailbox_size;
inline constexpr std::size_t index_keys = key_men * mailbox_size;
inline constexpr std::size_t pawn_keys = 2 * mailbox_size;

/// Three blocks: for `hash_lock` and for `hash_index` each slot * 120 + square, for `pawn_hash`
/// colour * 120 + square. Slots: pawn, knight, bishop, rook, queen, king of White, then of Black.
extern const std::array<std::uint32_t, lock_keys + index_keys + pawn_keys> piece_keys;

/// Slot 0..11 of a piece code: the codes' kind bits stand in the order of the slots.
[[nodiscard]] constexpr std::size_t key_slot(PieceCode code) {
    return static_cast<std::size_t>(std::countr_zero(code));
}

/// Entry of the first block, for `hash_lock`.
[[nodiscard]] inline std::uint32_t lock_key(std::size_t slot, Square square) {
    return piece_keys[slot * mailbox_size + static_cast<std::size_t>(square)];
}

/// Entry of the second block, for `hash_index`.
[[nodiscard]] inline std::uint32_t index_key(std::size_t slot, Square square) {
    return piece_keys[lock_keys + slot * mailbox_size + static_cast<std::size_t>(square)];
}

/// Entry of the pawn block, for `pawn_hash`.
[[nodiscard]] inline std::uint32_t pawn_key(Side colour, Square square) {
    return piece_keys[lock_keys + index_keys + colour * mailbox_size +
                      static_cast<std::size_t>(square)];
}
