// SPDX-License-Identifier: MIT
// A post's move leads from word to word, the runner staying: the bits go along, less those whose
// runner stands in the way. The runner's moves stay within its word.
#include "tbgen/predecessors.h"

#include "tbgen/legality.h"
#include "tbgen/pawn_steps.h"

namespace {

/// One word whose men are moved back.
struct From {
    const Endgame& endgame;
    std::size_t word;
    SquareSet bits;
    SquareSet occupied;  ///< by kings and posts
};

void take_back_slider(const From& from, std::size_t post, SquareSet* to) {
    const TbSquare square = from.endgame.post_square(from.word, post);
    const std::uint8_t kind = from.endgame.men[post].kind;
    const Rays& rays = rays_from(square);
    const std::size_t first_way = kind == tb_bishop ? rook_ways.size() : 0;
    const std::size_t last_way = kind == tb_rook ? rook_ways.size() : queen_ways.size();
    for (std::size_t way = first_way; way < last_way; ++way) {
        SquareSet bits = from.bits;
        for (std::size_t i = 0; i < rays.lengths[way]; ++i) {
            const TbSquare origin = rays.squares[way][i];
            bits &= ~square_bit(origin);
            if ((from.occupied & square_bit(origin)) != 0 || bits == 0) break;
            to[from.endgame.with_post(from.word, post, origin)] |= bits;
        }
    }
}

void take_back_knight(const From& from, std::size_t post, SquareSet* to) {
    const TbSquare square = from.endgame.post_square(from.word, post);
    for_each_square(knight_reach(square_bit(square)) & ~from.occupied, [&](TbSquare origin) {
        to[from.endgame.with_post(from.word, post, origin)] |= from.bits & ~square_bit(origin);
    });
}

void take_back_pawn_post(const From& from, std::size_t post, SquareSet* to) {
    const PawnWay way = pawn_way(from.endgame.men[post].side);
    const TbSquare square = from.endgame.post_square(from.word, post);
    const auto put = [&](TbSquare origin, SquareSet bits) {
        to[from.endgame.with_post(from.word, post, origin)] |= bits;
    };
    if (square / board_width == way.code_rank) {
        put(square_ahead(way, square, 1), from.bits);  // a double step
        return;
    }
    const TbSquare origin = square_behind(way, square, 1);
    const SquareSet bit = square_bit(origin);
    if (((from.occupied | ~pawn_ranks) & bit) != 0) {
        return;
    }
    const SquareSet bits = from.bits & ~bit;
    put(origin, bits);
    if (square / board_width != way.double_rank) {
        return;
    }
    const TbSquare start = square_behind(way, square, 2);
    if ((from.occupied & square_bit(start)) == 0) {
        // Where an enemy pawn stands beside, a double step leads to a code.
        const EndgameMan pawn = from.endgame.men[post];
        put(start, bits & ~square_bit(start) &
                       ~runners_beside(from.endgame, from.word, pawn.side, square));
    }
}

SquareSet pawn_runner_origins(const From& from) {
    const EndgameMan pawn = from.endgame.runner();
    const PawnWay way = pawn_way(pawn.side);
    const SquareSet codes = rank_set(way.code_rank);
    const SquareSet empty = ~from.occupied & pawn_ranks;
    const SquareSet plain = from.bits & ~codes;
    SquareSet doubled = plain & rank_set(way.double_rank);
    if (from.endgame.en_passant) {
        doubled &= ~beside_enemy_posts(from.endgame, from.word, pawn.side);
    }
    return (behind(way, plain, 1) & empty) |
           (behind(way, behind(way, doubled, 1) & empty, 1) & empty) |
           ahead(way, from.bits & codes, 1);
}

void take_back_post(const From& from, std::size_t post, SquareSet* to) {
    switch (from.endgame.men[post].kind) {
        case tb_pawn: take_back_pawn_post(from, post, to); break;
        case tb_knight: take_back_knight(from, post, to); break;
        default: take_back_slider(from, post, to); break;
    }
}

/// Where a capturing man can have come from.
SquareSet capture_origins(EndgameMan man, TbSquare target, SquareSet occupied) {
    return attackers_of(man, target, occupied) & ~occupied &
           (man.kind == tb_pawn ? pawn_ranks : all_squares);
}

/// Squares of the men that are left, from a cell of the values behind captures.
MenSquares squares_of_cell(const MenList& men, std::size_t cell) {
    MenSquares squares{};
    for (std::size_t i = men.size(); i-- > 0; cell /= 64) {
        squares[i] = static_cast<TbSquare>(cell % 64);
    }
    return squares;
}

/// Whether a captured man can have stood on a square.
bool can_stand(EndgameMan man, TbSquare square) {
    return man.kind != tb_pawn || (square_bit(square) & pawn_ranks) != 0;
}

}  // namespace

void add_with_man(const Endgame& endgame, EndgameMan man, TbSquare on, const MenSquares& others,
                  SquareSet* to) {
    for (std::size_t place = 0; place < endgame.men.size(); ++place) {
        if (!(endgame.men[place] == man)) continue;
        std::size_t word = 0;
        TbSquare square = 0;
        for (std::size_t i = 0; i < endgame.men.size(); ++i) {
            square = i == place ? on : others[i < place ? i : i - 1];
            word = i < endgame.posts() ? word * 64 + square : word;
        }
        to[word] |= square_bit(square);
    }
}

void take_back_men(const Endgame& endgame, const KingSquares& kings, std::uint8_t mover,
                   const SquareSet* from, SquareSet* to) {
    const EndgameMan runner = endgame.runner();
    const SquareSet plain = plain_squares(endgame);
    for (std::size_t word = 0; word < endgame.slab_words(); ++word) {
        if (from[word] == 0) continue;
        From at{endgame, word, from[word], occupied_by(endgame, kings, word)};
        const std::size_t code = code_post(endgame, word);
        if (code < endgame.posts()) {
            take_back_post(at, code, to);  // that pawn has just moved
            continue;
        }
        if (runner.side == mover) {
            to[word] |= runner.kind == tb_pawn ? pawn_runner_origins(at)
                                               : piece_moves(runner.kind, at.bits, ~at.occupied);
        }
        at.bits &= plain;
        for (std::size_t post = 0; post < endgame.posts() && at.bits != 0; ++post) {
            if (endgame.men[post].side == mover) {
                take_back_post(at, post, to);
            }
        }
    }
}

void take_back_king(const Endgame& endgame, const KingMove& move, const SquareSet* from,
                    SquareSet* to) {
    const SquareSet plain = plain_squares(endgame);
    const Turn back = inverse(move.turn);
    const auto& squares = turned_squares[back];
    for (std::size_t word = 0; word < endgame.slab_words(); ++word) {
        const SquareSet bits = from[word] & plain;
        if (bits == 0 || code_post(endgame, word) < endgame.posts()) continue;
        std::size_t before = 0;
        for (std::size_t post = 0; post < endgame.posts(); ++post) {
            before = before * 64 + squares[endgame.post_square(word, post)];
        }
        to[before] |= turned_set(back, bits);
    }
}

void take_back_captures(const Endgame& endgame, const KingSquares& kings, EndgameMan captured,
                        const OutsideValues& outside, std::size_t slab, Value value,
                        SquareSet* to) {
    const MenList& men = outside.men();
    const SquareSet king_squares = square_bit(kings[0]) | square_bit(kings[1]);
    outside.for_each_cell(slab, value, [&](std::size_t cell) {
        const MenSquares left = squares_of_cell(men, cell);
        SquareSet occupied = king_squares;
        bool has_promoted = false;
        for (std::size_t i = 0; i < men.size(); ++i) {
            occupied |= square_bit(left[i]);
            has_promoted = has_promoted || is_code(men[i], left[i]);
        }
        for (std::size_t i = 0; i < men.size(); ++i) {
            const bool may_have_moved = !has_promoted || is_code(men[i], left[i]);
            if (men[i].side != outside.mover() || !may_have_moved ||
                !can_stand(captured, left[i])) {
                continue;
            }
            MenSquares before = left;
            for_each_square(capture_origins(men[i], left[i], occupied), [&](TbSquare origin) {
                before[i] = origin;
                add_with_man(endgame, captured, left[i], before, to);
            });
        }
    });
}

void take_back_king_captures(const Endgame& endgame, const KingMove& move, EndgameMan captured,
                             const OutsideValues& outside, Value value, SquareSet* to) {
    if (!can_stand(captured, move.to)) {
        return;
    }
    const MenList& men = outside.men();
    const auto& turned_back = turned_squares[inverse(move.turn)];
    outside.for_each_cell(move.slab, value, [&](std::size_t cell) {
        MenSquares left = squares_of_cell(men, cell);
        bool has_promoted = false;
        for (std::size_t i = 0; i < men.size(); ++i) {
            has_promoted = has_promoted || is_code(men[i], left[i]);
            left[i] = turned_back[left[i]];
        }
        if (!has_promoted) {
            add_with_man(endgame, captured, move.to, left, to);
        }
    });
}
