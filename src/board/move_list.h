// SPDX-License-Identifier: MIT
// The list that a generator fills and a search node empties.
#pragma once

#include <array>
#include <cstddef>

#include "board/move.h"

/// Slots of a list. No chess position has more than 218 moves; boards that are set up freely can.
inline constexpr std::int32_t move_list_slots = 400;

/// Moves and their scores in slots 1 to `count`; slot 0 is never filled. Left uninitialised on
/// purpose: every node of the search has one in its frame.
struct MoveList {
    std::array<Move, move_list_slots> moves;
    std::array<std::int32_t, move_list_slots> scores;  ///< lower means earlier
    std::int32_t count;

    [[nodiscard]] Move& move(std::int32_t slot) { return moves[static_cast<std::size_t>(slot)]; }
    [[nodiscard]] const Move& move(std::int32_t slot) const {
        return moves[static_cast<std::size_t>(slot)];
    }
    [[nodiscard]] std::int32_t& score(std::int32_t slot) {
        return scores[static_cast<std::size_t>(slot)];
    }
    [[nodiscard]] std::int32_t score(std::int32_t slot) const {
        return scores[static_cast<std::size_t>(slot)];
    }

    /// Takes the move out of `slot` (1..count): the last move and its score take its place.
    void take_out(std::int32_t slot) {
        move(slot) = move(count);
        score(slot) = score(count);
        --count;
    }
};

/// The list that the generators fill. The caller points it at its own list first.
extern MoveList* cur_moves;
