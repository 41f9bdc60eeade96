// SPDX-License-Identifier: MIT
// Where pawns go, and the codes that two ranks without pawns are used for. With the other side to
// move, a pawn on its own first rank stands for one on the fourth that has just made a double step
// and can be captured en passant; a pawn on its last rank for one that has just promoted.
#pragma once

#include <cstddef>

#include "tbgen/endgame.h"
#include "tbgen/square_set.h"

/// A pawn's way by side; side 0 goes up.
struct PawnWay {
    bool up;
    TbSquare code_rank;    ///< own first rank, as an index 0 to 7
    TbSquare start_rank;   ///< of double steps
    TbSquare double_rank;  ///< where they end
    TbSquare last_rank;
};

[[nodiscard]] constexpr PawnWay pawn_way(std::uint8_t side) {
    return side == 0 ? PawnWay{true, 0, 1, 3, 7} : PawnWay{false, 7, 6, 4, 0};
}

/// A set or a square some ranks ahead of a pawn; ranks of a set beyond the board are gone.
[[nodiscard]] constexpr SquareSet ahead(const PawnWay& way, SquareSet set, unsigned ranks) {
    return way.up ? set << (board_width * ranks) : set >> (board_width * ranks);
}
[[nodiscard]] constexpr SquareSet behind(const PawnWay& way, SquareSet set, unsigned ranks) {
    return way.up ? set >> (board_width * ranks) : set << (board_width * ranks);
}
[[nodiscard]] constexpr TbSquare square_ahead(const PawnWay& way, TbSquare square, unsigned ranks) {
    return way.up ? square + board_width * ranks : square - board_width * ranks;
}
[[nodiscard]] constexpr TbSquare square_behind(const PawnWay& way, TbSquare square,
                                               unsigned ranks) {
    return way.up ? square - board_width * ranks : square + board_width * ranks;
}

/// Squares to the left and right.
[[nodiscard]] constexpr SquareSet beside(SquareSet set) {
    return step<Way::east>(set) | step<Way::west>(set);
}

/// Whether a man on a square is a pawn that stands for a code.
[[nodiscard]] constexpr bool is_code(EndgameMan man, TbSquare square) {
    return man.kind == tb_pawn && (square_bit(square) & pawn_ranks) == 0;
}

/// The post that is a code in a word; the number of posts if none is.
[[nodiscard]] inline std::size_t code_post(const Endgame& endgame, std::size_t word) {
    std::size_t post = 0;
    while (post < endgame.posts() && !is_code(endgame.men[post], endgame.post_square(word, post))) {
        ++post;
    }
    return post;
}

/// Squares of the runner that are no code.
[[nodiscard]] inline SquareSet plain_squares(const Endgame& endgame) {
    return endgame.runner().kind == tb_pawn ? pawn_ranks : all_squares;
}

/// Where `side`'s pawns, having made a double step, stand beside an enemy pawn among the posts.
[[nodiscard]] SquareSet beside_enemy_posts(const Endgame& endgame, std::size_t word,
                                           std::uint8_t side);

/// Squares of the runner with which a pawn of `side` on `square`, having made a double step, stands
/// beside an enemy pawn.
[[nodiscard]] SquareSet runners_beside(const Endgame& endgame, std::size_t word, std::uint8_t side,
                                       TbSquare square);
