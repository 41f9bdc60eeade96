// SPDX-License-Identifier: MIT
// The static evaluation: one sum from White's view, worked out from scratch at every call, its sign
// turned at the very end. The statements read as its table of contents.
#include "eval/king_terms.h"
#include "eval/material.h"
#include "eval/pawn_cache.h"
#include "eval/piece_terms.h"

std::int32_t Table::evaluate(const Table& position, std::int32_t /*alpha*/, std::int32_t /*beta*/) {
    if (is_dead_draw(position)) {
        return 0;
    }
    const MenCounts men = count_men(position);
    if (men.w_weight == 0 && men.b_weight == 0) {
        return evaluate_pawn_ending(position);
    }
    const std::optional<std::int32_t> material = material_score(position, men);
    if (!material) {
        return 0;
    }
    const PawnEntry& entry = pawn_entry_of(position);
    BishopFacts bishops;
    std::int32_t score = *material;
    score += pattern_terms(position);
    score += piece_terms(position, men, entry, bishops);
    score += king_terms(position, men, bishops, is_endgame(men));
    score += entry.pawn_score;
    return position.side == white ? score : -score;
}
