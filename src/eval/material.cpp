// SPDX-License-Identifier: MIT
// Every step is told for White and mirrored for Black by exchanging the two sides' counts.
#include "eval/material.h"

#include "board/side_traits.h"

namespace {

constexpr std::int32_t win_bonus = 21000;
constexpr std::int32_t lone_minor_correction = 270;
constexpr std::int32_t clear_lead = 3;  ///< difference of weights
constexpr std::int32_t no_enemy_queen_bonus = 20;
constexpr std::int32_t no_enemy_rook_bonus = 10;
constexpr std::int32_t lead_in_pieces_bonus = 100;
constexpr std::int32_t queen_against_pawn_bonus = 10000;

/// One side's counts.
struct SideCounts {
    std::int32_t rooks, queens, minors, pawns, weight, pieces;
};

template <Side S>
SideCounts counts_of(const MenCounts& men) {
    if constexpr (S == white) {
        return {men.w_rooks, men.w_queens, men.w_minors, men.w_pawns, men.w_weight, men.w_pieces};
    } else {
        return {men.b_rooks, men.b_queens, men.b_minors, men.b_pawns, men.b_weight, men.b_pieces};
    }
}

/// What side S has gained by the enemy's bare king; empty for a draw.
template <Side S>
std::optional<std::int32_t> against_bare_king(const Table& table, const SideCounts& own) {
    using Own = SideTraits<S>;
    constexpr std::int32_t two_minors_weight = 6;
    const std::int32_t knights = pop_count(table.*Own::knights);
    const std::int32_t bishops = pop_count(table.*Own::bishops);
    std::int32_t gain = own.rooks + own.queens >= 1 ? win_bonus : 0;
    if (knights >= 1 && bishops >= 1) {
        gain += win_bonus;
    }
    if (own.pawns == 0 && own.weight == two_minors_weight && knights == 2) {
        return std::nullopt;
    }
    if (own.pawns == 0 && own.rooks == 0 && own.queens == 0 && knights == 0 && bishops >= 2) {
        if ((table.*Own::bishops & light_squares) == 0 ||
            (table.*Own::bishops & dark_squares) == 0) {
            return std::nullopt;
        }
        gain += win_bonus;
    }
    return gain;
}

/// What side S gains by being ahead in material.
std::int32_t lead_gain(const SideCounts& own, const SideCounts& enemy) {
    if (own.weight - enemy.weight < clear_lead) {
        return 0;
    }
    std::int32_t gain = 0;
    if (enemy.queens == 0) {
        gain += no_enemy_queen_bonus;
    } else if (enemy.rooks == 0) {
        gain += no_enemy_rook_bonus;
    }
    if (own.pieces - enemy.pieces >= 1) {
        const bool only_enemy_pawns = own.pawns == 0 && enemy.pawns >= 1;
        gain += only_enemy_pawns ? -lead_in_pieces_bonus : lead_in_pieces_bonus;
    }
    return gain;
}

/// One queen and one minor against one queen, with nothing else beside the kings.
bool is_queen_and_minor_against_queen(const SideCounts& own, const SideCounts& enemy) {
    return own.queens == 1 && own.minors == 1 && enemy.queens == 1 && enemy.minors == 0;
}

/// What side S gains with a lone queen against a lone pawn: 0 if the material is another; empty if
/// the pawn draws, one step from promotion on an outer or bishop's file.
template <Side S>
std::optional<std::int32_t> queen_against_pawn(const Table& table, const SideCounts& own,
                                               const SideCounts& enemy) {
    using Enemy = SideTraits<SideTraits<S>::enemy>;
    const bool only_queen = own.queens == 1 && own.pieces == 1 && own.pawns == 0;
    const bool only_pawn = enemy.pieces == 0 && enemy.pawns == 1;
    if (!only_queen || !only_pawn) {
        return 0;
    }
    Bitboard pawn = table.*Enemy::pawns;
    const Square square = take_first_square(pawn);
    const std::int32_t file = file_of[at_square(square)];
    const bool drawing_file = file == 1 || file == 3 || file == 6 || file == 8;  // a, c, f, h
    if (drawing_file && row_of[at_square(square)] == Enemy::seventh_row) {
        return std::nullopt;
    }
    return queen_against_pawn_bonus;
}

}  // namespace

bool is_dead_draw(const Table& table) {
    constexpr std::int32_t fewest_men_to_win = 4;
    if (table.Kol_figur >= fewest_men_to_win) {
        return false;
    }
    const Bitboard minors = table.WKnight | table.BKnight | table.WBishop | table.BBishop;
    return table.Kol_figur == 2 || minors != 0;
}

std::optional<std::int32_t> material_score(const Table& table, const MenCounts& men) {
    const SideCounts w = counts_of<white>(men);
    const SideCounts b = counts_of<black>(men);
    std::int32_t score = 0;
    if (b.weight + b.pawns == 0) {
        const auto gain = against_bare_king<white>(table, w);
        if (!gain) {
            return std::nullopt;
        }
        score = *gain;
    }
    if (w.weight + w.pawns == 0) {
        const auto gain = against_bare_king<black>(table, b);
        if (!gain) {
            return std::nullopt;
        }
        score -= *gain;
    }
    const bool only_minors = w.pawns + b.pawns + w.rooks + b.rooks + w.queens + b.queens == 0;
    if (only_minors && w.minors - b.minors == 1) {
        score -= lone_minor_correction;
    } else if (only_minors && w.minors - b.minors == -1) {
        score += lone_minor_correction;
    }
    score += lead_gain(w, b) - lead_gain(b, w);

    const bool no_pawns_or_rooks = w.pawns + b.pawns + w.rooks + b.rooks == 0;
    if (no_pawns_or_rooks &&
        (is_queen_and_minor_against_queen(w, b) || is_queen_and_minor_against_queen(b, w))) {
        return std::nullopt;
    }
    const auto w_queen_gain = queen_against_pawn<white>(table, w, b);
    const auto b_queen_gain = queen_against_pawn<black>(table, b, w);
    if (!w_queen_gain || !b_queen_gain) {
        return std::nullopt;
    }
    return score + *w_queen_gain - *b_queen_gain;
}

bool is_endgame(const MenCounts& men) {
    constexpr std::int32_t few_pieces = 5;
    constexpr std::int32_t very_few_pieces = 4;
    constexpr std::int32_t light_with_queens = 11;
    constexpr std::int32_t light_without_queens = 12;
    const bool no_queens = men.w_queens + men.b_queens == 0;
    if (men.w_pieces < few_pieces && men.b_pieces < few_pieces &&
        ((men.w_pieces < very_few_pieces && men.b_pieces < very_few_pieces) || no_queens)) {
        return true;
    }
    // Weights of this test alone.
    const auto phase = [](std::int32_t minors, std::int32_t rooks, std::int32_t queens) {
        return 2 * minors + 4 * rooks + 8 * queens;
    };
    const std::int32_t limit = no_queens ? light_without_queens : light_with_queens;
    return phase(men.w_minors, men.w_rooks, men.w_queens) < limit &&
           phase(men.b_minors, men.b_rooks, men.b_queens) < limit;
}
