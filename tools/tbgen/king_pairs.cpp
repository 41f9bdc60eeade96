// SPDX-License-Identifier: MIT
// The pairs are those that the tables' own numbering counts.
#include "tbgen/king_pairs.h"

#include "tb/index/enumeration.h"

namespace {

/// The turn that brings the first side's king, and with it the second's, to its part of the board.
Turn turn_to_part(const KingSquares& kings, bool has_pawns) {
    Turn turn = file_index(kings[0]) >= 4 ? turn_files : no_turn;
    if (has_pawns) {
        return turn;
    }
    turn |= rank_index(kings[0]) >= 4 ? turn_ranks : no_turn;
    if (!triangle_test(turned(turn, kings[0]), turned(turn, kings[1]))) {
        turn |= turn_diagonal;
    }
    return turn;
}

}  // namespace

KingPairs::KingPairs(bool has_pawns) {
    const TbSquarePairTable<std::int16_t>& pairs = has_pawns ? *tb_kk_pawn : *tb_kk_pawnless;
    for (TbSquare first = 0; first < tb_squares; ++first) {
        for (TbSquare second = 0; second < tb_squares; ++second) {
            if (pairs[first][second] != tb_no_pair) {
                kings_.push_back({first, second});
            }
        }
    }
    moves_.resize(kings_.size());
    for (std::size_t slab = 0; slab < kings_.size(); ++slab) {
        for (std::size_t side = 0; side < 2; ++side) {
            for_each_square(king_reach(square_bit(kings_[slab][side])), [&](TbSquare to) {
                KingSquares moved = kings_[slab];
                moved[side] = to;
                if (((king_reach(square_bit(moved[0])) | square_bit(moved[0])) &
                     square_bit(moved[1])) != 0) {
                    return;
                }
                const Turn turn = turn_to_part(moved, has_pawns);
                const auto pair = pairs[turned(turn, moved[0])][turned(turn, moved[1])];
                moves_[slab][side].push_back({to, static_cast<std::uint16_t>(pair), turn});
            });
        }
    }
}
