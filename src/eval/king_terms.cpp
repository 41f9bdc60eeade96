// SPDX-License-Identifier: MIT
// The shelter looks at the side of the board on which the king stands, not at the king's rank.
#include "eval/king_terms.h"

#include <array>

#include "eval/eval_side.h"

namespace {

constexpr std::int32_t bishop_pair = 35;
constexpr std::int32_t first_king_side_file = 5;
constexpr std::int32_t missing_pawn = 1;
constexpr std::int32_t empty_centre = 5;
constexpr std::int32_t weight_with_enemy_queen = 4;
constexpr std::int32_t weight_without_enemy_queen = 2;

/// One file of the shelter: the pawn's home and what is lost when the square ahead has none either.
struct ShelterFile {
    Square home;
    std::int32_t missing_ahead;
};

/// The three files before a king and the middle one, whose emptiness counts once more.
struct Shelter {
    std::array<ShelterFile, 3> files;
    Square centre;
};

// White's squares; Black's are the same on the seventh rank.
constexpr Shelter king_side = {{{{f2, 1}, {g2, 3}, {h2, 3}}}, g2};
constexpr Shelter queen_side = {{{{a2, 3}, {b2, 3}, {c2, 1}}}, b2};

template <Side S>
constexpr Square own_square(Square white_square) {
    constexpr Square second_to_seventh = a7 - a2;
    return S == white ? white_square : white_square + second_to_seventh;
}

/// Whether own bishops fill all four squares diagonally beside the centre.
/// Intended(four-bishops-for-a-pawn): they alone make up for an empty centre. Four bishops hardly
/// ever meet there: an empty centre costs its five points in any practical position.
template <Side S>
bool four_bishops_around(const Table& table, Square centre) {
    constexpr PieceCode bishop = SideTraits<S>::bishop;
    return table.at(centre - 9) == bishop && table.at(centre - 11) == bishop &&
           table.at(centre + 9) == bishop && table.at(centre + 11) == bishop;
}

/// Holes before the king. A positive number, for the king's side to lose.
template <Side S>
std::int32_t shelter_holes(const Table& table) {
    using Own = SideTraits<S>;
    const bool on_king_side = file_of[at_square(table.*Own::king_square)] >= first_king_side_file;
    const Shelter& shelter = on_king_side ? king_side : queen_side;
    std::int32_t holes = 0;
    for (const ShelterFile& file : shelter.files) {
        const Square home = own_square<S>(file.home);
        if (table.at(home) != Own::pawn) {
            holes += missing_pawn;
            if (table.at(home + Own::forward) != Own::pawn) {
                holes += file.missing_ahead;
            }
        }
    }
    const Square centre = own_square<S>(shelter.centre);
    if (table.at(centre) == empty_square && !four_bishops_around<S>(table, centre)) {
        holes += empty_centre;
    }
    return holes;
}

std::int32_t shelter_weight(std::int32_t enemy_queens) {
    return enemy_queens > 0 ? weight_with_enemy_queen : weight_without_enemy_queen;
}

template <Side S>
std::int32_t king_placement(const Table& table, bool endgame) {
    using Own = EvalSide<S>;
    const std::size_t king = at_square(table.*Own::king_square);
    return endgame ? Own::pst_king_half[king] : Own::pst_king[king];
}

}  // namespace

std::int32_t king_terms(const Table& table, const MenCounts& men, const BishopFacts& bishops,
                        bool endgame) {
    std::int32_t score =
        king_placement<white>(table, endgame) - king_placement<black>(table, endgame);
    score += bishops.w_bishops >= 2 ? bishop_pair : 0;
    score -= bishops.b_bishops >= 2 ? bishop_pair : 0;
    if (!endgame) {
        score -= shelter_holes<white>(table) * shelter_weight(men.b_queens);
        score += shelter_holes<black>(table) * shelter_weight(men.w_queens);
    }
    return score;
}
