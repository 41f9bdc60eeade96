// SPDX-License-Identifier: MIT
// Positions with a way out against moves made one at a time.
#include "tbgen/escapes.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <ostream>
#include <string_view>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int words_a_table = 60;
#else
constexpr int words_a_table = 14;
#endif
constexpr std::uint32_t seed = 1234;
constexpr int closed_up_to = 2;  ///< moves: the opponent is known to win what it wins this soon

struct Parameter {
    const char* table;
    std::uint8_t mover;
    bool with_captures;

    friend std::ostream& operator<<(std::ostream& out, const Parameter& parameter) {
        return out << parameter.table << int{parameter.mover};
    }
};

class EscapesTest : public testing::TestWithParam<Parameter> {
  protected:
    EscapesTest()
        : layout_((tb_build_enumeration(), GetParam().table)), open_(layout_.empty_set()) {
        if (GetParam().with_captures) {
            find_captures();
        }
    }

    static bool is_made_up() { return std::string_view(GetParam().table).size() == 5; }
    static LoadHalf load() { return is_made_up() ? made_up_bytes : three_men_bytes; }

    /// Made-up values are also behind captures that leave the king attacked.
    static bool has_pinned_captor(const SlowPosition& position) {
        const std::vector<SlowMove> moves = slow_moves(position);
        return std::any_of(moves.begin(), moves.end(), [&](const SlowMove& move) {
            return !move.is_legal && !EndgameLayout::is_quiet(position, move);
        });
    }

    void find_captures() {
        const MenList& men = layout_.endgame().men;
        for (std::size_t i = 0; i < men.size(); ++i) {
            if (men[i].side == GetParam().mover || (i > 0 && men[i] == men[i - 1])) continue;
            captures_.push_back(
                {men[i], OutsideValues(layout_.pairs(), men.without(i), GetParam().mover,
                                       OutsideValues::Kind::capture)});
            ASSERT_TRUE(captures_.back().values.fill(load(), 2));
            for (std::size_t slab = 0; slab < layout_.pairs().slabs(); ++slab) {
                for (int moves = 1; moves <= closed_up_to; ++moves) {
                    captures_.back().values.close_wins(slab, moves);
                }
            }
        }
    }

    /// The legal positions of a word.
    std::vector<SlowPosition> positions_of(std::size_t slab, std::size_t word) {
        std::vector<SlowPosition> positions;
        for (TbSquare square = 0; square < 64; ++square) {
            const SlowPosition position = layout_.position({slab, word, square}, GetParam().mover);
            if (slow_legal(position)) {
                positions.push_back(position);
            }
        }
        return positions;
    }

    /// A word that has legal positions; in every second one of those with pawns on both sides, one
    /// of them can make a double step past an enemy pawn.
    LayoutPlace draw_word(LayoutRandom& random) {
        const auto slabs = static_cast<std::uint32_t>(layout_.pairs().slabs());
        const std::size_t slab = drawn_below(random, slabs);
        return layout_.place_of(layout_.draw(random, slab, GetParam().mover));
    }

    /// Opens some of the positions that moves lead to.
    void open_some(const std::vector<SlowPosition>& positions, std::size_t one_of,
                   LayoutRandom& random) {
        for (const SlowPosition& position : positions) {
            for (const SlowMove& move : slow_moves(position)) {
                if (!move.is_legal || !EndgameLayout::is_quiet(position, move)) continue;
                if (move.after.en_passant != tb_no_en_passant) {
                    // Another move may lead to the position without the right to capture.
                    if (random() % 2 == 0) layout_.place_of(move.after).put_into(open_);
                }
                if (random() % one_of != 0) continue;
                for (const LayoutPlace& place : layout_.places_after(position, move)) {
                    place.put_into(open_);
                }
            }
        }
    }

    /// Opens some of the positions that no move may lead to: all squares of the other men, one man
    /// elsewhere.
    void open_neighbours(const std::vector<SlowPosition>& positions, std::size_t count,
                         LayoutRandom& random) {
        for (std::size_t j = 0; j < count && !positions.empty(); ++j) {
            SlowPosition position = positions[random() % positions.size()];
            position.to_move ^= 1U;
            for (std::size_t i = 1; i < position.men.size(); ++i) {
                SlowPosition other = position;
                SlowMan& man = other.men[random() % other.men.size()];
                // Every second one on the same file, where the men between matter.
                man.square = random() % 2 == 0 ? man.square % 8 + 8 * drawn_below(random, 8)
                                               : drawn_below(random, 64);
                if (!slow_legal(other) || is_on_diagonal(other.kings)) continue;
                layout_.place_of(other).put_into(open_);
            }
        }
    }

    /// Such kings have two places for each position.
    static bool is_on_diagonal(const KingSquares& kings) {
        return kings[0] % 9 == 0 && kings[1] % 9 == 0;
    }

    bool has_way_out(const SlowPosition& position) {
        for (const SlowMove& move : slow_moves(position)) {
            if (!move.is_legal) continue;
            if (EndgameLayout::is_quiet(position, move)) {
                for (const LayoutPlace& place : layout_.places_after(position, move)) {
                    if (place.is_in(open_)) return true;
                }
            } else if (GetParam().with_captures) {
                const Value value = tables_.value_behind(position, move);
                const bool is_closed = value > drawn && value >= mates_in(closed_up_to);
                if (value != not_reachable && !is_closed) return true;
            }
        }
        return false;
    }

    EndgameLayout layout_;
    PositionSet open_;
    std::vector<CaptureValues> captures_;
    SlowTables tables_{load()};
};

TEST_P(EscapesTest, ArePositionsWithAMoveIntoTheSetOrACaptureNotLost) {
    LayoutRandom random(seed);
    const Escapes escapes(layout_.endgame(), layout_.pairs(), GetParam().mover, open_, captures_);
    int with = 0;
    int without = 0;
    for (int i = 0; i < words_a_table && !HasFailure(); ++i) {
        const LayoutPlace at = draw_word(random);
        std::vector<SlowPosition> positions = positions_of(at.slab, at.word);
        // From words with hardly a way out to words with many.
        constexpr std::array<std::size_t, 3> one_of = {400, 80, 16};
        open_some(positions, one_of[static_cast<std::size_t>(i) % one_of.size()], random);
        open_neighbours(positions, static_cast<std::size_t>(i) % 4 * 16, random);
        // Those that are not asked for are not told.
        std::erase_if(positions, [&](const SlowPosition& position) {
            return random() % 4 == 0 || (is_made_up() && has_pinned_captor(position));
        });
        SquareSet asked = 0;
        SquareSet expected = 0;
        for (const SlowPosition& position : positions) {
            const SquareSet bit = square_bit(position.men.back().square);
            const bool has_way = has_way_out(position);
            asked |= bit;
            expected |= has_way ? bit : 0;
            ++(has_way ? with : without);
        }
        EXPECT_EQ(escapes.of(at.slab, at.word, asked), expected)
            << "kings " << layout_.pairs().kings(at.slab)[0] << ' '
            << layout_.pairs().kings(at.slab)[1] << " word " << at.word << " differ "
            << (escapes.of(at.slab, at.word, asked) ^ expected);
    }
    EXPECT_GT(with, words_a_table * 3);
    EXPECT_GT(without, words_a_table / 4);
}

INSTANTIATE_TEST_SUITE_P(Tables, EscapesTest,
                         testing::Values(Parameter{"krk", 1, true}, Parameter{"kpk", 0, false},
                                         Parameter{"kpk", 1, true}, Parameter{"krkn", 0, true},
                                         Parameter{"krkn", 1, true}, Parameter{"kpkp", 0, true},
                                         Parameter{"kpkp", 1, true}, Parameter{"krkp", 1, true},
                                         Parameter{"kbkp", 0, true}, Parameter{"kqqk", 1, true},
                                         Parameter{"kbnk", 1, true}, Parameter{"kppk", 0, false},
                                         Parameter{"kqpkr", 0, false}, Parameter{"kqpkr", 1, false},
                                         Parameter{"kppkn", 0, false}, Parameter{"kppkp", 0, false},
                                         Parameter{"kppkp", 1, false}, Parameter{"krpkp", 0, false},
                                         Parameter{"kqbkb", 0, false}, Parameter{"krbkn", 0, true},
                                         Parameter{"krbkn", 1, true}));

/// A set without members; slabs that are not in use are not looked at either.
TEST(Escapes, NoMoveLeadsIntoAnEmptySet) {
    tb_build_enumeration();
    const EndgameLayout layout("kqkr");
    const PositionSet open = layout.empty_set();
    const std::vector<CaptureValues> captures;
    const Escapes escapes(layout.endgame(), layout.pairs(), 0, open, captures);
    for (std::size_t word = 0; word < layout.endgame().slab_words(); ++word) {
        EXPECT_EQ(escapes.of(100, word, all_squares), 0U);
    }
}

}  // namespace
