// SPDX-License-Identifier: MIT
// The search for a way out ends as soon as every position of the word has one.
#include "tbgen/escapes.h"

#include "tbgen/legality.h"
#include "tbgen/pawn_steps.h"

/// A word in work.
struct Escapes::At {
    std::size_t slab;
    std::size_t word;
    const KingSquares& kings;
    SquareSet occupied;  ///< by kings and posts
    SquareSet left;      ///< positions that have no way out yet
    SquareSet found = 0;

    void add(SquareSet bits) {
        found |= bits & left;
        left &= ~bits;
    }
};

namespace {

/// The word of the men that are left when one is captured: the posts but for one, the runner last.
std::size_t word_without(const Endgame& endgame, std::size_t word, std::size_t post) {
    return endgame.posts() == 2 ? endgame.post_square(word, 1 - post) : 0;
}

}  // namespace

void Escapes::runner_moves(At& at) const {
    const EndgameMan runner = endgame_.runner();
    const SquareSet open = open_.slab(at.slab)[at.word];
    if (runner.kind != tb_pawn) {
        at.add(piece_moves(runner.kind, open, ~at.occupied));
        return;
    }
    const PawnWay way = pawn_way(runner.side);
    const SquareSet codes = rank_set(way.code_rank);
    const SquareSet starts = rank_set(way.start_rank) & behind(way, ~at.occupied, 1);
    SquareSet doubled = open & rank_set(way.double_rank);
    if (endgame_.en_passant) {
        doubled &= ~beside_enemy_posts(endgame_, at.word, runner.side);
        at.add(ahead(way, open & codes, 1));
    }
    at.add(behind(way, open & ~codes, 1) | (behind(way, doubled, 2) & starts));
}

void Escapes::pawn_post_moves(At& at, std::size_t post) const {
    const EndgameMan pawn = endgame_.men[post];
    const PawnWay way = pawn_way(pawn.side);
    const TbSquare square = endgame_.post_square(at.word, post);
    const SquareSet* const open = open_.slab(at.slab);
    const auto open_with = [&](TbSquare to) { return open[endgame_.with_post(at.word, post, to)]; };
    const TbSquare one = square_ahead(way, square, 1);
    if ((at.occupied & square_bit(one)) != 0) {
        return;
    }
    const SquareSet clear = ~square_bit(one);
    at.add(clear & open_with(one));
    if (square / board_width != way.start_rank) {
        return;
    }
    const TbSquare two = square_ahead(way, square, 2);
    if ((at.occupied & square_bit(two)) == 0) {
        const SquareSet clear_twice = clear & ~square_bit(two);
        const SquareSet coded = runners_beside(endgame_, at.word, pawn.side, two);
        const TbSquare code = square_behind(way, square, 1);
        at.add(clear_twice & ~coded & open_with(two));
        if (coded != 0) {
            at.add(clear_twice & coded & open_with(code));
        }
    }
}

void Escapes::post_moves(At& at, std::size_t post) const {
    const std::uint8_t kind = endgame_.men[post].kind;
    if (kind == tb_pawn) {
        pawn_post_moves(at, post);
        return;
    }
    const TbSquare square = endgame_.post_square(at.word, post);
    const SquareSet* const open = open_.slab(at.slab);
    if (kind == tb_knight) {
        for_each_square(knight_reach(square_bit(square)) & ~at.occupied,
                        [&](TbSquare to) { at.add(open[endgame_.with_post(at.word, post, to)]); });
        return;
    }
    const Rays& rays = rays_from(square);
    const std::size_t first_way = kind == tb_bishop ? rook_ways.size() : 0;
    const std::size_t last_way = kind == tb_rook ? rook_ways.size() : queen_ways.size();
    for (std::size_t way = first_way; way < last_way; ++way) {
        SquareSet clear = at.left;
        for (std::size_t i = 0; i < rays.lengths[way]; ++i) {
            const TbSquare to = rays.squares[way][i];
            clear &= ~square_bit(to);
            if ((at.occupied & square_bit(to)) != 0 || (clear & at.left) == 0) break;
            at.add(clear & open[endgame_.with_post(at.word, post, to)]);
        }
    }
}

void Escapes::king_moves(At& at) const {
    for (const KingMove& move : pairs_.moves(at.slab, mover_)) {
        if (!open_.is_used(move.slab) || (at.occupied & square_bit(move.to)) != 0) continue;
        std::size_t word = 0;
        for (std::size_t post = 0; post < endgame_.posts(); ++post) {
            word = word * 64 + turned_squares[move.turn][endgame_.post_square(at.word, post)];
        }
        const SquareSet open = open_.slab(move.slab)[word];
        if (open != 0) {
            at.add(turned_set(inverse(move.turn), open) & plain_squares(endgame_));
        }
        if (at.left == 0) {
            return;
        }
    }
}

void Escapes::captures_of_post(At& at, std::size_t target_post, const OutsideValues& values) const {
    const TbSquare target = endgame_.post_square(at.word, target_post);
    const std::size_t word = word_without(endgame_, at.word, target_post);
    for (const KingMove& move : pairs_.moves(at.slab, mover_)) {
        if (move.to != target) continue;
        const std::size_t turned_word = endgame_.posts() == 2 ? turned_squares[move.turn][word] : 0;
        at.add(turned_set(inverse(move.turn), values.open_word(move.slab, turned_word)) &
               plain_squares(endgame_));
    }
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        const EndgameMan man = endgame_.men[post];
        const TbSquare from = endgame_.post_square(at.word, post);
        if (man.side == mover_ &&
            (attackers_of(man, target, at.occupied) & square_bit(from)) != 0) {
            at.add(values.open_word(at.slab, target) & ~squares_between(from, target));
        }
    }
    if (endgame_.runner().side == mover_ &&
        (values.open_word(at.slab, word) & square_bit(target)) != 0) {
        at.add(attackers_of(endgame_.runner(), target, at.occupied));
    }
}

void Escapes::captures_of_runner(At& at, const OutsideValues& values) const {
    MenSquares posts{};
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        posts[post] = endgame_.post_square(at.word, post);
    }
    const auto is_open = [&](std::size_t slab, const MenSquares& men) {
        const std::size_t word = endgame_.posts() == 2 ? men[0] : 0;
        const TbSquare last = endgame_.posts() == 0 ? 0 : men[endgame_.posts() - 1];
        return (values.open_word(slab, word) & square_bit(last)) != 0;
    };
    for (const KingMove& move : pairs_.moves(at.slab, mover_)) {
        if ((at.left & square_bit(move.to)) == 0) continue;
        MenSquares turned_posts{};
        for (std::size_t post = 0; post < endgame_.posts(); ++post) {
            turned_posts[post] = turned_squares[move.turn][posts[post]];
        }
        if (is_open(move.slab, turned_posts)) {
            at.add(square_bit(move.to));
        }
    }
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        const EndgameMan man = endgame_.men[post];
        if (man.side != mover_) continue;
        const SquareSet attacked = man.kind == tb_pawn
                                       ? pawn_attacks(man.side, posts[post])
                                       : piece_attacks(man.kind, posts[post], at.occupied);
        MenSquares after = posts;
        for_each_square(attacked & at.left, [&](TbSquare target) {
            after[post] = target;
            if (is_open(at.slab, after)) {
                at.add(square_bit(target));
            }
        });
    }
}

void Escapes::captures(At& at, const CaptureValues& capture) const {
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        if (endgame_.men[post] == capture.captured) {
            captures_of_post(at, post, capture.values);
        }
    }
    if (endgame_.runner() == capture.captured) {
        captures_of_runner(at, capture.values);
    }
}

SquareSet Escapes::of(std::size_t slab, std::size_t word, SquareSet bits) const {
    const KingSquares& kings = pairs_.kings(slab);
    At at{slab, word, kings, occupied_by(endgame_, kings, word), bits};
    if (endgame_.runner().side == mover_) {
        runner_moves(at);
    }
    for (std::size_t post = 0; post < endgame_.posts() && at.left != 0; ++post) {
        if (endgame_.men[post].side == mover_) {
            post_moves(at, post);
        }
    }
    if (at.left != 0) {
        king_moves(at);
    }
    for (std::size_t i = 0; i < captures_.size() && at.left != 0; ++i) {
        captures(at, captures_[i]);
    }
    return at.found;
}
