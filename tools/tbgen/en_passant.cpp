// SPDX-License-Identifier: MIT
// A code is won as soon as the plain position is, or the capture wins. It is lost when both are,
// except that a side that has no other move has to capture.
#include "tbgen/en_passant.h"

#include <algorithm>

#include "tbgen/pawn_steps.h"

namespace {

bool has(const SquareSet* slab, std::uint32_t word, std::uint32_t square) {
    return (slab[word] & square_bit(square)) != 0;
}

}  // namespace

EnPassant::EnPassant(const Endgame& endgame, const KingPairs& pairs, std::uint8_t to_move)
    : endgame_(endgame), pairs_(pairs), to_move_(to_move) {
    if (!endgame.en_passant) {
        return;
    }
    const PawnWay way = pawn_way(to_move ^ 1U);
    for (std::size_t word = 0; word < endgame.slab_words(); ++word) {
        for (TbSquare runner = 0; runner < 64; ++runner) {
            MenSquares men{};
            for (std::size_t post = 0; post < endgame.posts(); ++post) {
                men[post] = endgame.post_square(word, post);
            }
            men[endgame.posts()] = runner;
            for (std::size_t i = 0; i < endgame.men.size(); ++i) {
                if (endgame.men[i] ==
                        EndgameMan{static_cast<std::uint8_t>(to_move ^ 1U), tb_pawn} &&
                    men[i] / board_width == way.double_rank) {
                    add_code(men, i);
                }
            }
        }
    }
    states_.resize(pairs.slabs() * codes_.size());
}

EnPassant::Place EnPassant::place_of(const MenSquares& men) const {
    std::uint32_t word = 0;
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        word = word * 64 + men[post];
    }
    return {word, men[endgame_.posts()]};
}

void EnPassant::add_code(const MenSquares& men, std::size_t pawn) {
    const PawnWay way = pawn_way(to_move_ ^ 1U);
    Code code{};
    code.men = men;
    code.plain = place_of(men);
    code.target = square_behind(way, men[pawn], 1);
    const TbSquare start = square_behind(way, men[pawn], 2);
    MenSquares moved = men;
    moved[pawn] = start;
    code.before = place_of(moved);
    moved[pawn] = square_behind(way, men[pawn], 3);
    code.code = place_of(moved);
    for (std::size_t i = 0; i < endgame_.men.size(); ++i) {
        const bool blocks = men[i] == code.target || men[i] == start || men[i] == men[pawn];
        if (i != pawn && (blocks || is_code(endgame_.men[i], men[i]))) {
            return;
        }
    }
    const SquareSet beside_pawn = beside(square_bit(men[pawn]));
    for (std::size_t i = 0; i < endgame_.men.size(); ++i) {
        const bool captures = endgame_.men[i] == EndgameMan{to_move_, tb_pawn} &&
                              (beside_pawn & square_bit(men[i])) != 0;
        if (!captures) continue;
        std::uint32_t cell = 0;
        for (std::size_t man = 0; man < endgame_.men.size(); ++man) {
            if (man != pawn) {
                cell = cell * 64 + (man == i ? code.target : men[man]);
            }
        }
        code.captures[code.capture_count++] = cell;
    }
    if (code.capture_count > 0) {
        codes_.push_back(code);
    }
}

void EnPassant::begin(std::size_t slab, const std::vector<CaptureValues>& captures,
                      PositionSet& open, const PositionSet& open_of_other, HalfWriter& writer) {
    if (codes_.empty()) {
        return;
    }
    const EndgameMan captured{static_cast<std::uint8_t>(to_move_ ^ 1U), tb_pawn};
    const auto values = std::find_if(captures.begin(), captures.end(), [&](const auto& capture) {
        return capture.captured == captured;
    });
    const SquareSet kings = square_bit(pairs_.kings(slab)[0]) | square_bit(pairs_.kings(slab)[1]);
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        const Code& code = codes_[i];
        State& at = state(slab, i);
        at.reached = (kings & square_bit(code.target)) == 0 &&
                     has(open.slab(slab), code.plain.word, code.plain.square) &&
                     has(open_of_other.slab(slab), code.before.word, code.before.square);
        if (!at.reached) continue;
        for (std::size_t c = 0; c < code.capture_count; ++c) {
            const Value value = values->values.value(slab, code.captures[c]);
            if (value != not_reachable) {
                at.capture = at.capture == not_reachable ? value : std::min(at.capture, value);
            }
        }
        writer.write_en_passant(slab, code.men, code.target, drawn);
    }
    // Codes are members of the set only now: they lie where no pawn stands.
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        if (state(slab, i).reached) {
            open.slab(slab)[codes_[i].code.word] |= square_bit(codes_[i].code.square);
        }
    }
}

void EnPassant::note_stalemates(std::size_t slab, std::size_t word, SquareSet bits) {
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        const Place& plain = codes_[i].plain;
        // Without a capture it is a stalemate as well.
        if (plain.word == word && (bits & square_bit(plain.square)) != 0 &&
            state(slab, i).capture != not_reachable) {
            state(slab, i).plain_lost = true;
        }
    }
}

bool EnPassant::add_won(std::size_t slab, int moves, SquareSet* won, HalfWriter& writer) {
    bool any = false;
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        const Code& code = codes_[i];
        State& at = state(slab, i);
        if (!at.reached || at.decided) continue;
        if (has(won, code.plain.word, code.plain.square) || is_mated_in(at.capture, moves - 1)) {
            at.decided = true;
            any = true;
            won[code.code.word] |= square_bit(code.code.square);
            writer.write_en_passant(slab, code.men, code.target, mates_in(moves));
        }
    }
    return any;
}

bool EnPassant::add_lost(std::size_t slab, int moves, SquareSet* lost, HalfWriter& writer) {
    bool any = false;
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        const Code& code = codes_[i];
        State& at = state(slab, i);
        if (!at.reached || at.decided) continue;
        at.plain_lost = at.plain_lost || has(lost, code.plain.word, code.plain.square);
        const bool capture_loses =
            at.capture == not_reachable || (at.capture > drawn && at.capture >= mates_in(moves));
        if (at.plain_lost && capture_loses) {
            at.decided = true;
            any = true;
            lost[code.code.word] |= square_bit(code.code.square);
            writer.write_en_passant(slab, code.men, code.target, mated_in(moves));
        }
    }
    return any;
}
