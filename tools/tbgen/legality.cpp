// SPDX-License-Identifier: MIT
// Kings never stand side by side: there is no slab for such a pair.
#include "tbgen/legality.h"

SquareSet occupied_by(const Endgame& endgame, const KingSquares& kings, std::size_t word) {
    SquareSet occupied = square_bit(kings[0]) | square_bit(kings[1]);
    for (std::size_t post = 0; post < endgame.posts(); ++post) {
        occupied |= square_bit(endgame.post_square(word, post));
    }
    return occupied;
}

SquareSet possible_squares(const Endgame& endgame, const KingSquares& kings, std::size_t word) {
    SquareSet occupied = square_bit(kings[0]) | square_bit(kings[1]);
    for (std::size_t post = 0; post < endgame.posts(); ++post) {
        const SquareSet bit = square_bit(endgame.post_square(word, post));
        const bool is_misplaced = endgame.men[post].kind == tb_pawn && (bit & pawn_ranks) == 0;
        if ((occupied & bit) != 0 || is_misplaced) {
            return 0;
        }
        occupied |= bit;
    }
    return ~occupied & (endgame.runner().kind == tb_pawn ? pawn_ranks : all_squares);
}

SquareSet attackers_of(EndgameMan man, TbSquare target, SquareSet occupied) {
    if (man.kind == tb_pawn) {
        return pawn_attacks(man.side ^ 1U, target);  // seen from the target
    }
    return piece_attacks(man.kind, target, occupied);
}

SquareSet attacking_squares(const Endgame& endgame, const KingSquares& kings, std::size_t word,
                            std::uint8_t side) {
    const TbSquare king = kings[side ^ 1U];
    const SquareSet occupied = occupied_by(endgame, kings, word);
    SquareSet attacking = 0;
    for (std::size_t post = 0; post < endgame.posts(); ++post) {
        const TbSquare from = endgame.post_square(word, post);
        if (endgame.men[post].side == side &&
            (attackers_of(endgame.men[post], king, occupied) & square_bit(from)) != 0) {
            attacking |= ~squares_between(from, king);  // the runner may stand between
        }
    }
    if (endgame.runner().side == side) {
        attacking |= attackers_of(endgame.runner(), king, occupied);
    }
    return attacking;
}
