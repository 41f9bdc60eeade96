// SPDX-License-Identifier: MIT
// Loops walk the bitboards from a8 towards h1; patterns and pawn tests look at the mailbox. Every
// term is told in its own side's view and added with the side's sign.
#include "eval/piece_terms.h"

#include <algorithm>
#include <cstdlib>

#include "eval/eval_side.h"
#include "eval/passed_pawn.h"

namespace {

constexpr std::int32_t trapped_bishop = 130;
constexpr std::int32_t rook_shut_in = 35;
constexpr std::int32_t rook_shut_in_by_king_at_home = 10;
constexpr std::int32_t guarded_minor = 3;
constexpr std::int32_t rook_half_open_file = 8;
constexpr std::int32_t rook_on_seventh = 16;
constexpr std::int32_t queen_half_open_file = 5;
constexpr std::int32_t queen_on_other_half = 2;
constexpr std::int32_t pawn_on_bishops_colour = 5;

std::size_t file_index(Square square) {
    return static_cast<std::size_t>(file_of[at_square(square)]);
}

/// A bishop deep in the enemy's corner with an enemy pawn across its way back.
/// Intended(first-trapped-bishop): the first pattern that applies counts alone, Black's bishops
/// before White's.
std::int32_t trapped_bishops(const Table& table) {
    if (table.at(h2) == b_bishop && table.at(g3) == w_pawn) {
        return trapped_bishop;
    }
    if (table.at(a2) == b_bishop && table.at(b3) == w_pawn) {
        return trapped_bishop;
    }
    if (table.at(h7) == w_bishop && table.at(g6) == b_pawn) {
        return -trapped_bishop;
    }
    if (table.at(a7) == w_bishop && table.at(b6) == b_pawn) {
        return -trapped_bishop;
    }
    return 0;
}

/// A rook between its own king and the corner. A positive number.
/// Intended(rook-shut-in-king-side): a rook shut in on the queen's side costs nothing.
template <Side S>
std::int32_t rook_shut_in_penalty(const Table& table) {
    using Own = SideTraits<S>;
    constexpr Square e = Own::king_home;
    const Square king = table.*Own::king_square;
    const auto rook_on = [&](Square square) { return table.at(square) == Own::rook; };
    const bool rook_outside = rook_on(e + 2) || rook_on(e + 3);
    if (king == e + 1) {
        return rook_outside ? rook_shut_in : 0;
    }
    if (king == e + 2) {
        return rook_on(e + 3) ? rook_shut_in : 0;
    }
    if (king == e) {
        return rook_outside || rook_on(e + 1) ? rook_shut_in_by_king_at_home : 0;
    }
    return 0;
}

/// One bonus when an own pawn guards the square, also when two do.
template <Side S>
std::int32_t guarded_bonus(const Table& table, Square square) {
    using Own = SideTraits<S>;
    const Square behind = square - Own::forward;
    const bool guarded = table.at(behind - 1) == Own::pawn || table.at(behind + 1) == Own::pawn;
    return guarded ? guarded_minor : 0;
}

/// Whether no enemy pawn stands ahead on the file of `beside`, which lies beside the knight. Pawns
/// level with the knight or behind it cannot drive it away.
template <Side S>
bool no_pawn_ahead(const Table& table, Square beside) {
    constexpr PieceCode enemy_pawn = SideTraits<SideTraits<S>::enemy>::pawn;
    for (Square ahead = beside + SideTraits<S>::forward;
         ahead >= 1 && ahead < static_cast<Square>(mailbox_size); ahead += SideTraits<S>::forward) {
        if (table.at(ahead) == enemy_pawn) {
            return false;
        }
    }
    return true;
}

template <Side S>
std::int32_t knights(const Table& table) {
    using Own = EvalSide<S>;
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::knights; men != 0;) {
        const Square square = take_first_square(men);
        sum += Own::pst_knight[at_square(square)] + guarded_bonus<S>(table, square);
        const std::int32_t outpost = Own::outpost[at_square(square)];
        if (outpost > 0 && no_pawn_ahead<S>(table, square + 1) &&
            no_pawn_ahead<S>(table, square - 1)) {
            sum += outpost;
        }
    }
    return sum;
}

template <Side S>
std::int32_t bishops(const Table& table, std::int32_t& number, Square& last) {
    using Own = EvalSide<S>;
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::bishops; men != 0;) {
        const Square square = take_first_square(men);
        ++number;
        last = square;
        sum += Own::pst_bishop[at_square(square)] + guarded_bonus<S>(table, square);
    }
    return sum;
}

/// `half_open` for a file without own pawns, as much again if it has no pawn at all.
template <Side S>
std::int32_t open_file_bonus(const PawnEntry& entry, std::size_t f, std::int32_t half_open) {
    using Own = EvalSide<S>;
    if ((entry.*Own::count)[f] != 0) {
        return 0;
    }
    const bool open = (entry.*EvalSide<Own::enemy>::count)[f] == 0;
    return open ? 2 * half_open : half_open;
}

template <Side S>
std::int32_t rooks(const Table& table, const PawnEntry& entry) {
    using Own = EvalSide<S>;
    using Enemy = SideTraits<Own::enemy>;
    const bool king_on_last_row = row_of[at_square(table.*Enemy::king_square)] == Own::last_row;
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::rooks; men != 0;) {
        const Square square = take_first_square(men);
        sum += Own::pst_rook[at_square(square)] +
               open_file_bonus<S>(entry, file_index(square), rook_half_open_file);
        if (rank_of[at_square(square)] == Own::seventh_row && king_on_last_row) {
            sum += rook_on_seventh;
        }
    }
    return sum;
}

template <Side S>
std::int32_t queens(const Table& table, const PawnEntry& entry) {
    using Own = EvalSide<S>;
    constexpr std::int32_t last_queen_side_file = 4;
    const Square king = table.*SideTraits<Own::enemy>::king_square;
    const std::int32_t king_file = file_of[at_square(king)];
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::queens; men != 0;) {
        const Square square = take_first_square(men);
        const std::int32_t file = file_of[at_square(square)];
        sum += Own::pst_queen[at_square(square)] +
               open_file_bonus<S>(entry, file_index(square), queen_half_open_file);
        if ((file <= last_queen_side_file) != (king_file <= last_queen_side_file)) {
            sum -= queen_on_other_half;
        }
        const std::int32_t distance =
            std::max(std::abs(file - king_file),
                     std::abs(row_of[at_square(square)] - row_of[at_square(king)]));
        sum += queen_tropism[static_cast<std::size_t>(distance)];
    }
    return sum;
}

template <Side S>
std::int32_t pawns(const Table& table, const PawnEntry& entry, std::int32_t own_bishops,
                   Square last_bishop) {
    using Own = EvalSide<S>;
    std::int32_t sum = 0;
    for (Bitboard men = table.*Own::pawns; men != 0;) {
        const Square square = take_first_square(men);
        sum += Own::pst_pawn[at_square(square)];
        if (own_bishops == 1 &&
            square_colour[at_square(square)] == square_colour[at_square(last_bishop)]) {
            sum -= pawn_on_bishops_colour;
        }
        if (is_passed<S>(entry, file_index(square), row_of[at_square(square)])) {
            sum -= blocked_passed_penalty<S>(table, square);
        }
    }
    return sum;
}

}  // namespace

std::int32_t pattern_terms(const Table& table) {
    return trapped_bishops(table) - rook_shut_in_penalty<white>(table) +
           rook_shut_in_penalty<black>(table);
}

std::int32_t piece_terms(const Table& table, const MenCounts& men, const PawnEntry& entry,
                         BishopFacts& facts) {
    std::int32_t score = knights<white>(table) - knights<black>(table);
    score += bishops<white>(table, facts.w_bishops, facts.last_w_bishop);
    score -= bishops<black>(table, facts.b_bishops, facts.last_b_bishop);
    score += rooks<white>(table, entry) - rooks<black>(table, entry);
    score += queens<white>(table, entry) - queens<black>(table, entry);
    score += pawns<white>(table, entry, facts.w_bishops, facts.last_w_bishop);
    score -= pawns<black>(table, entry, facts.b_bishops, facts.last_b_bishop);
    if (men.w_pawns + men.b_pawns == 1) {
        Bitboard pawn = table.WPawns | table.BPawns;
        score += lone_pawn_kings(table, take_first_square(pawn));
    }
    return score;
}
