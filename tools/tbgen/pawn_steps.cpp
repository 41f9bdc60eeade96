// SPDX-License-Identifier: MIT
// Only where both sides have pawns does it matter who stands beside a pawn.
#include "tbgen/pawn_steps.h"

SquareSet beside_enemy_posts(const Endgame& endgame, std::size_t word, std::uint8_t side) {
    SquareSet enemies = 0;
    for (std::size_t post = 0; post < endgame.posts(); ++post) {
        const EndgameMan man = endgame.men[post];
        if (man.kind == tb_pawn && man.side != side) {
            enemies |= square_bit(endgame.post_square(word, post));
        }
    }
    return beside(enemies & rank_set(pawn_way(side).double_rank));
}

SquareSet runners_beside(const Endgame& endgame, std::size_t word, std::uint8_t side,
                         TbSquare square) {
    if (!endgame.en_passant) {
        return 0;
    }
    const SquareSet bit = square_bit(square);
    if ((beside_enemy_posts(endgame, word, side) & bit) != 0) {
        return all_squares;
    }
    const EndgameMan runner = endgame.runner();
    const bool may_be_beside = runner.kind == tb_pawn && runner.side != side;
    return may_be_beside ? beside(bit) : 0;
}
