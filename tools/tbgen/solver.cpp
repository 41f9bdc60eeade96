// SPDX-License-Identifier: MIT
// Slabs are independent of each other within a phase: a thread writes its own slab and reads what
// the phase before has written in the others.
#include "tbgen/solver.h"

#include <algorithm>

#include "tbgen/legality.h"
#include "tbgen/parallel.h"
#include "tbgen/pawn_steps.h"
#include "tbgen/predecessors.h"

namespace {

/// Words of one slab, empty at first; each thread has its own.
std::vector<SquareSet>& empty_slab(const Endgame& endgame) {
    thread_local std::vector<SquareSet> words;
    words.assign(endgame.slab_words(), 0);
    return words;
}

bool is_used(const SquareSet* slab, std::size_t words) {
    return std::any_of(slab, slab + words, [](SquareSet word) { return word != 0; });
}

int longest_win(const Bytes& bytes) {
    Value slowest = mates_in(1);
    bool any = false;
    for (const std::uint8_t byte : bytes) {
        const auto value = static_cast<Value>(byte);
        any = any || value > drawn;
        slowest = value > drawn ? std::min(slowest, value) : slowest;
    }
    return any ? mates_in(1) + 1 - slowest : 0;
}

}  // namespace

Solver::Half::Half(const Endgame& endgame, const KingPairs& pairs, std::uint8_t to_move)
    : open(pairs.slabs(), endgame.slab_words()),
      won(pairs.slabs(), endgame.slab_words()),
      lost(pairs.slabs(), endgame.slab_words()),
      writer(endgame, pairs, to_move),
      en_passant(endgame, pairs, to_move) {}

Solver::Solver(std::int32_t row, std::size_t threads)
    : threads_(threads), endgame_(endgame_of(row)), pairs_(endgame_.has_pawns) {
    halves_.reserve(2);
    halves_.emplace_back(endgame_, pairs_, std::uint8_t{0});
    halves_.emplace_back(endgame_, pairs_, std::uint8_t{1});
}

template <class Work>
void Solver::for_each_slab(const Work& work) {
    in_parallel(threads_, pairs_.slabs() * 2,
                [&](std::size_t i) { work(static_cast<std::uint8_t>(i % 2), i / 2); });
}

bool Solver::find_outside_values(const LoadHalf& load_half) {
    for (std::uint8_t side = 0; side < 2; ++side) {
        bool has_promotion = false;
        for (std::size_t i = 0; i < endgame_.men.size(); ++i) {
            const EndgameMan man = endgame_.men[i];
            if (i > 0 && man == endgame_.men[i - 1]) continue;
            if (man.side != side) {
                halves_[side].captures.push_back(
                    {man, OutsideValues(pairs_, endgame_.men.without(i), side,
                                        OutsideValues::Kind::capture)});
                if (!halves_[side].captures.back().values.fill(load_half, threads_)) return false;
            } else if (man.kind == tb_pawn && !has_promotion) {
                has_promotion = true;
                MenList men;
                men.push_back(man);
                for (const EndgameMan& other : endgame_.men.without(i)) {
                    men.push_back(other);
                }
                std::vector<OutsideValues>& promotions = halves_[side ^ 1U].promotions;
                promotions.emplace_back(pairs_, men, side, OutsideValues::Kind::promotion);
                if (!promotions.back().fill(load_half, threads_)) return false;
            }
        }
    }
    return true;
}

void Solver::find_legal(std::size_t slab) {
    const KingSquares& kings = pairs_.kings(slab);
    for (std::size_t word = 0; word < endgame_.slab_words(); ++word) {
        const SquareSet possible = possible_squares(endgame_, kings, word);
        if (possible == 0) continue;
        for (std::uint8_t side = 0; side < 2; ++side) {
            const SquareSet legal = possible & ~attacking_squares(endgame_, kings, word, side);
            halves_[side].open.slab(slab)[word] = legal;
            halves_[side].writer.write(slab, word, legal, drawn);
        }
    }
}

void Solver::add_promotions(Half& half, std::size_t slab, Value value, SquareSet* to) const {
    for (const OutsideValues& promotions : half.promotions) {
        const EndgameMan pawn{promotions.mover(), tb_pawn};
        const TbSquare last_rank = pawn_way(pawn.side).last_rank * board_width;
        promotions.for_each_cell(slab, value, [&](std::size_t cell) {
            MenSquares others{};
            for (std::size_t i = endgame_.posts(); i-- > 0; cell /= 64) {
                others[i] = static_cast<TbSquare>(cell % 64);
            }
            add_with_man(endgame_, pawn, last_rank + static_cast<TbSquare>(cell), others, to);
        });
    }
}

void Solver::find_codes(std::uint8_t side, std::size_t slab) {
    Half& half = halves_[side];
    half.en_passant.begin(slab, half.captures, half.open, halves_[side ^ 1U].open, half.writer);
    if (half.promotions.empty()) {
        return;
    }
    for (int value = -127; value <= longest_told; ++value) {
        add_promotions(half, slab, static_cast<Value>(value), half.open.slab(slab));
    }
}

void Solver::find_mates(std::uint8_t side, std::size_t slab) {
    Half& half = halves_[side];
    const Half& other = halves_[side ^ 1U];
    const KingSquares& kings = pairs_.kings(slab);
    const Escapes escapes(endgame_, pairs_, side, other.open, half.captures);
    SquareSet* const lost = half.lost.slab(slab);
    for (std::size_t word = 0; word < endgame_.slab_words(); ++word) {
        if (code_post(endgame_, word) < endgame_.posts()) continue;
        const SquareSet legal = half.open.slab(slab)[word] & plain_squares(endgame_);
        const SquareSet stuck = legal & ~escapes.of(slab, word, legal);
        if (stuck == 0) continue;
        lost[word] = stuck & attacking_squares(endgame_, kings, word, side ^ 1U);
        half.en_passant.note_stalemates(slab, word, stuck & ~lost[word]);
    }
    write(half, slab, lost, mated_in(0));
    add_promotions(half, slab, mated_in(0), lost);
    static_cast<void>(half.en_passant.add_lost(slab, 0, lost, half.writer));
    half.lost.set_used(slab, is_used(lost, endgame_.slab_words()));
}

void Solver::take_back(std::uint8_t side, std::size_t slab, const PositionSet& from, Value outside,
                       SquareSet* to) const {
    const KingSquares& kings = pairs_.kings(slab);
    const Half& half = halves_[side];
    if (from.is_used(slab)) {
        take_back_men(endgame_, kings, side, from.slab(slab), to);
    }
    for (const KingMove& move : pairs_.moves(slab, side)) {
        if (from.is_used(move.slab)) {
            take_back_king(endgame_, move, from.slab(move.slab), to);
        }
    }
    if (outside == drawn) {
        return;  // longer than any value can tell
    }
    for (const CaptureValues& capture : half.captures) {
        take_back_captures(endgame_, kings, capture.captured, capture.values, slab, outside, to);
        for (const KingMove& move : pairs_.moves(slab, side)) {
            take_back_king_captures(endgame_, move, capture.captured, capture.values, outside, to);
        }
    }
}

void Solver::write(Half& half, std::size_t slab, const SquareSet* words, Value value) const {
    const SquareSet plain = plain_squares(endgame_);
    for (std::size_t word = 0; word < endgame_.slab_words(); ++word) {
        if ((words[word] & plain) != 0 && code_post(endgame_, word) == endgame_.posts()) {
            half.writer.write(slab, word, words[word] & plain, value);
        }
    }
}

void Solver::find_won(std::uint8_t side, std::size_t slab, int moves) {
    Half& half = halves_[side];
    half.won.clear(slab);
    std::vector<SquareSet>& found = empty_slab(endgame_);
    take_back(side, slab, halves_[side ^ 1U].lost, mated_in(moves - 1), found.data());
    SquareSet* const open = half.open.slab(slab);
    for (std::size_t word = 0; word < found.size(); ++word) {
        found[word] &= open[word];
    }
    write(half, slab, found.data(), mates_in(moves));
    if (moves <= longest_told) {
        add_promotions(half, slab, mates_in(moves), found.data());
    }
    static_cast<void>(half.en_passant.add_won(slab, moves, found.data(), half.writer));
    if (is_used(found.data(), found.size())) {
        std::copy(found.begin(), found.end(), half.won.slab(slab));
        half.won.set_used(slab, true);
        for (std::size_t word = 0; word < found.size(); ++word) {
            open[word] &= ~found[word];
        }
    }
}

void Solver::find_lost(std::uint8_t side, std::size_t slab, int moves) {
    Half& half = halves_[side];
    const Half& other = halves_[side ^ 1U];
    half.lost.clear(slab);
    std::vector<SquareSet>& found = empty_slab(endgame_);
    take_back(side, slab, other.won, mates_in(moves), found.data());
    const Escapes escapes(endgame_, pairs_, side, other.open, half.captures);
    const SquareSet* const open = half.open.slab(slab);
    for (std::size_t word = 0; word < found.size(); ++word) {
        if (found[word] == 0) continue;
        found[word] &= open[word];
        if (found[word] != 0) {
            found[word] &= ~escapes.of(slab, word, found[word]);
        }
    }
    write(half, slab, found.data(), mated_in(moves));
    if (moves <= longest_told) {
        add_promotions(half, slab, mated_in(moves), found.data());
    }
    static_cast<void>(half.en_passant.add_lost(slab, moves, found.data(), half.writer));
    if (is_used(found.data(), found.size())) {
        std::copy(found.begin(), found.end(), half.lost.slab(slab));
        half.lost.set_used(slab, true);
    }
}

bool Solver::any_new() const {
    for (std::size_t slab = 0; slab < pairs_.slabs(); ++slab) {
        for (const Half& half : halves_) {
            if (half.won.is_used(slab) || half.lost.is_used(slab)) {
                return true;
            }
        }
    }
    return false;
}

int Solver::longest_outside() const {
    int longest = 0;
    for (const Half& half : halves_) {
        for (const CaptureValues& capture : half.captures) {
            longest = std::max(longest, capture.values.longest());
        }
        for (const OutsideValues& promotions : half.promotions) {
            longest = std::max(longest, promotions.longest());
        }
    }
    return longest;
}

std::optional<SolvedTable> Solver::solve(const LoadHalf& load_half, const ReportPhase& report) {
    // Shares of the time as they are for most tables; how many moves there will be is not known.
    constexpr double outside_share = 0.15;
    constexpr double legal_share = 0.15;
    constexpr double many_moves = 15;
    const double move_share = 1 - outside_share - legal_share;
    report("other tables", 0);
    if (!find_outside_values(load_half)) {
        return std::nullopt;
    }
    report("positions", outside_share);
    in_parallel(threads_, pairs_.slabs(), [&](std::size_t slab) { find_legal(slab); });
    for (Half& half : halves_) {
        for (std::size_t slab = 0; slab < pairs_.slabs(); ++slab) {
            half.open.set_used(slab, true);
        }
    }
    in_parallel(threads_, pairs_.slabs(), [&](std::size_t slab) {
        find_codes(0, slab);
        find_codes(1, slab);
    });
    for_each_slab([&](std::uint8_t side, std::size_t slab) { find_mates(side, slab); });

    const int longest = longest_outside();
    for (int moves = 1; any_new() || moves <= longest + 1; ++moves) {
        report("move " + std::to_string(moves), 1 - move_share * many_moves / (many_moves + moves));
        for_each_slab([&](std::uint8_t side, std::size_t slab) { find_won(side, slab, moves); });
        for_each_slab([&](std::uint8_t side, std::size_t slab) {
            for (CaptureValues& capture : halves_[side].captures) {
                if (moves <= longest_told) capture.values.close_wins(slab, moves);
            }
        });
        for_each_slab([&](std::uint8_t side, std::size_t slab) { find_lost(side, slab, moves); });
    }
    SolvedTable table;
    for (std::size_t i = 0; i < 2; ++i) {
        table.halves[i] = halves_[i].writer.take_bytes();
        table.longest[i] = longest_win(table.halves[i]);
    }
    return table;
}
