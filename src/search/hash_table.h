// SPDX-License-Identifier: MIT
// The transposition table: one entry a slot, bounds and best moves of the main search. Scores are
// kept as the search had them, mates included: there is no adjustment by ply.
#pragma once

#include <cstdint>

#include "board/move.h"
#include "board/table.h"

enum HashType : std::int8_t { hash_exact = 0, hash_lower = 1, hash_upper = 2 };

/// Sixteen bytes, so that a slot is a shift away.
struct HashEntry {
    std::uint32_t key;      ///< `hash_lock` of the position
    std::int32_t score;     ///< side to move's view
    std::int8_t depth;      ///< plies; 0 or below for nodes in check at the horizon
    std::int8_t type;       ///< one of HashType
    std::int8_t side;       ///< side to move
    std::uint8_t has_move;  ///< 1 when the three words below hold a move
    std::uint8_t from;
    std::uint8_t to;
    std::int8_t info;  ///< the low byte of posInfo alone
    std::uint8_t age;  ///< `hash_age` at the time of the store
};
static_assert(sizeof(HashEntry) == 16);

/// Size unless the configuration asks for another, megabytes.
inline constexpr std::int32_t usual_hash_mb = 16;

extern HashEntry* hash_table;
extern std::uint32_t hash_entries;  ///< slots in use
extern std::int32_t hash_mb;        ///< size asked for, megabytes
extern std::uint8_t hash_age;       ///< '1' or '0'; flips with each search

/// Takes the memory for `hash_mb` megabytes, at least 1, and says how much on a line of its own if
/// the configuration asked for 1 or more. What the machine cannot give is halved until it can.
void hash_allocate();

/// Makes every entry one that no position hits.
void hash_clear();

/// Gives the memory back.
void hash_free();

/// Flips the age, before each search: all entries of the last search become replaceable.
void hash_flip_age();

/// The slot of a position.
[[nodiscard]] inline HashEntry& hash_slot(const Table& position) {
    return hash_table[position.hash_index % hash_entries];
}

/// Asks the memory for the slot of a position that is about to be searched, long before its entry
/// is read. Changes nothing.
inline void hash_prefetch(const Table& position) {
    __builtin_prefetch(&hash_slot(position));
}

/// Whether the entry is the position's. Castling rights and en passant state are not in the keys,
/// so positions that differ only there share an entry.
[[nodiscard]] inline bool hash_hit(const HashEntry& entry, const Table& position) {
    return entry.key == position.hash_lock &&
           static_cast<std::uint32_t>(entry.side) == position.side;
}

/// Whether the entry's score ends a node with this window: exact, or a bound beyond it.
[[nodiscard]] inline bool hash_cuts(const HashEntry& entry, std::int32_t alpha, std::int32_t beta) {
    return entry.type == hash_exact || (entry.type == hash_lower && entry.score >= beta) ||
           (entry.type == hash_upper && entry.score <= alpha);
}

/// Stores a result, unless the slot holds one of this search that is as deep. `best`: the move, or
/// null; the slot's move words then stay as they were.
void hash_store(HashEntry& entry, const Table& position, std::int32_t depth, HashType type,
                std::int32_t score, const Move* best);
