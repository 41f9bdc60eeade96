// SPDX-License-Identifier: MIT
// Moves taken back in sets against moves made one at a time: a position is a predecessor if, and
// only if, some move leads from it into the set.
#include "tbgen/predecessors.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"
#include "tbgen/escapes.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int slabs_a_table = 6;
constexpr int positions_a_slab = 150;
constexpr int tested_a_slab = 400;
#else
constexpr int slabs_a_table = 2;
constexpr int positions_a_slab = 90;
constexpr int tested_a_slab = 130;
#endif
constexpr std::uint32_t seed = 77;

struct Parameter {
    const char* table;
    std::uint8_t mover;

    friend std::ostream& operator<<(std::ostream& out, const Parameter& parameter) {
        return out << parameter.table << int{parameter.mover};
    }
};

/// A slab and positions of it to take moves back to.
class Slab {
  public:
    Slab(const EndgameLayout& layout, std::uint8_t mover, LayoutRandom& random)
        : layout_(layout), mover_(mover), random_(random) {
        number_ = drawn_below(random, static_cast<std::uint32_t>(layout.pairs().slabs()));
        for (int i = 0; i < positions_a_slab; ++i) {
            positions_.push_back(layout.draw(random, number_, mover));
        }
    }

    [[nodiscard]] std::size_t number() const { return number_; }
    [[nodiscard]] const std::vector<SlowPosition>& positions() const { return positions_; }

    /// The legal ones among the positions of a set, as many as can be tested, and the own ones.
    [[nodiscard]] std::vector<SlowPosition> to_test(const std::vector<SquareSet>& words) const {
        std::vector<SlowPosition> found;
        for (std::size_t word = 0; word < words.size(); ++word) {
            for_each_square(words[word], [&](TbSquare square) {
                found.push_back(layout_.position({number_, word, square}, mover_));
            });
        }
        std::shuffle(found.begin(), found.end(), random_);
        std::erase_if(found, [](const SlowPosition& position) { return !slow_legal(position); });
        found.resize(std::min<std::size_t>(found.size(), tested_a_slab));
        found.insert(found.end(), positions_.begin(), positions_.end());
        return found;
    }

    [[nodiscard]] bool has(const std::vector<SquareSet>& words,
                           const SlowPosition& position) const {
        const LayoutPlace place = layout_.place_of(position);
        return (words[place.word] & square_bit(place.square)) != 0;
    }

    [[nodiscard]] std::string text(const SlowPosition& position) const {
        std::string text =
            "kings " + std::to_string(position.kings[0]) + ' ' + std::to_string(position.kings[1]);
        for (const SlowMan& man : position.men) {
            text += ' ' + std::to_string(man.square);
        }
        return text;
    }

  private:
    const EndgameLayout& layout_;
    std::uint8_t mover_;
    LayoutRandom& random_;
    std::size_t number_ = 0;
    std::vector<SlowPosition> positions_;
};

class PredecessorsTest : public testing::TestWithParam<Parameter> {
  protected:
    PredecessorsTest() { tb_build_enumeration(); }
};

class CapturesTakenBackTest : public testing::TestWithParam<Parameter> {
  protected:
    CapturesTakenBackTest() { tb_build_enumeration(); }
};

TEST_P(PredecessorsTest, QuietMovesAreTakenBack) {
    const EndgameLayout layout(GetParam().table);
    const std::uint8_t mover = GetParam().mover;
    LayoutRandom random(seed);
    PositionSet from = layout.empty_set();
    int inside = 0;
    int outside = 0;
    for (int i = 0; i < slabs_a_table && !HasFailure(); ++i) {
        const Slab slab(layout, mover, random);
        for (const SlowPosition& position : slab.positions()) {
            const std::vector<SlowMove> moves = slow_moves(position);
            for (const SlowMove& move : moves) {
                if (!move.is_legal || !layout.is_quiet(position, move) || random() % 24 != 0) {
                    continue;
                }
                for (const LayoutPlace& place : layout.places_after(position, move)) {
                    place.put_into(from);
                }
            }
        }
        const KingSquares& kings = layout.pairs().kings(slab.number());
        std::vector<SquareSet> to(layout.endgame().slab_words());
        take_back_men(layout.endgame(), kings, mover, from.slab(slab.number()), to.data());
        for (const KingMove& move : layout.pairs().moves(slab.number(), mover)) {
            take_back_king(layout.endgame(), move, from.slab(move.slab), to.data());
        }
        std::vector<SlowPosition> tested = slab.to_test(to);
        for (int j = 0; j < positions_a_slab; ++j) {
            tested.push_back(layout.draw(random, slab.number(), mover));
        }
        for (const SlowPosition& position : tested) {
            bool leads_in = false;
            for (const SlowMove& move : slow_moves(position)) {
                if (move.is_legal && layout.is_quiet(position, move)) {
                    leads_in = leads_in || layout.places_after(position, move)[0].is_in(from);
                }
            }
            EXPECT_EQ(slab.has(to, position), leads_in) << slab.text(position);
            ++(leads_in ? inside : outside);
        }
        for (std::size_t other = 0; other < layout.pairs().slabs(); ++other) {
            from.clear(other);
        }
    }
    EXPECT_GT(inside, slabs_a_table * positions_a_slab / 6);
    EXPECT_GT(outside, slabs_a_table * positions_a_slab / 20);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, PredecessorsTest,
    testing::Values(Parameter{"kpk", 0}, Parameter{"kpk", 1}, Parameter{"krkn", 0},
                    Parameter{"krkn", 1}, Parameter{"kqkb", 0}, Parameter{"kpkp", 0},
                    Parameter{"kpkp", 1}, Parameter{"kppk", 0}, Parameter{"kbnkr", 0},
                    Parameter{"kbnkr", 1}, Parameter{"kqpkr", 0}, Parameter{"kppkn", 0},
                    Parameter{"kppkp", 0}, Parameter{"kppkp", 1}, Parameter{"krpkp", 0},
                    Parameter{"krpkp", 1}, Parameter{"kpppk", 0}));

/// The positions that captures lead to, with the values behind them.
using ByValue = std::map<Value, std::vector<SquareSet>>;

ByValue taken_back_by_value(const EndgameLayout& layout, const CaptureValues& capture,
                            std::size_t slab, std::uint8_t mover) {
    ByValue found;
    for (int value = -127; value <= longest_told; ++value) {
        std::vector<SquareSet> to(layout.endgame().slab_words());
        const auto wanted = static_cast<Value>(value);
        take_back_captures(layout.endgame(), layout.pairs().kings(slab), capture.captured,
                           capture.values, slab, wanted, to.data());
        for (const KingMove& move : layout.pairs().moves(slab, mover)) {
            take_back_king_captures(layout.endgame(), move, capture.captured, capture.values,
                                    wanted, to.data());
        }
        const bool any =
            std::any_of(to.begin(), to.end(), [](SquareSet bits) { return bits != 0; });
        if (any) found[wanted] = to;
    }
    return found;
}

/// Whether a capture of a kind of man leads to a value.
bool captures_into(const SlowPosition& position, EndgameMan captured, Value value,
                   SlowTables& tables) {
    for (const SlowMove& move : slow_moves(position)) {
        if (!move.is_legal || EndgameLayout::is_quiet(position, move)) continue;
        const SlowMan man = position.men[move.captured];
        if (man.kind == captured.kind && tables.value_behind(position, move) == value) {
            return true;
        }
    }
    return false;
}

TEST_P(CapturesTakenBackTest, EachValueLeadsToThePositionsWithThatCapture) {
    const EndgameLayout layout(GetParam().table);
    const std::uint8_t mover = GetParam().mover;
    SlowTables tables(three_men_bytes);
    LayoutRandom random(seed);
    int inside = 0;
    for (const EndgameMan man : layout.endgame().men) {
        if (man.side == mover) continue;
        std::size_t place = 0;
        while (!(layout.endgame().men[place] == man)) {
            ++place;
        }
        CaptureValues capture{
            man, OutsideValues(layout.pairs(), layout.endgame().men.without(place), mover,
                               OutsideValues::Kind::capture)};
        ASSERT_TRUE(capture.values.fill(three_men_bytes, 2));
        for (int i = 0; i < slabs_a_table * 2 && !HasFailure(); ++i) {
            const Slab slab(layout, mover, random);
            const ByValue found = taken_back_by_value(layout, capture, slab.number(), mover);
            EXPECT_FALSE(found.contains(not_reachable));
            std::vector<SquareSet> all(layout.endgame().slab_words());
            for (const auto& [value, words] : found) {
                for (std::size_t word = 0; word < all.size(); ++word) {
                    all[word] |= words[word];
                }
            }
            for (const SlowPosition& position : slab.to_test(all)) {
                for (const auto& [value, words] : found) {
                    const bool is_in = slab.has(words, position);
                    if (is_in || random() % found.size() == 0) {
                        EXPECT_EQ(is_in, captures_into(position, man, value, tables))
                            << slab.text(position) << " value " << int{value};
                    }
                    inside += is_in ? 1 : 0;
                }
                for (const SlowMove& move : slow_moves(position)) {
                    const bool is_other = !move.is_legal || layout.is_quiet(position, move) ||
                                          position.men[move.captured].kind != man.kind;
                    if (is_other) continue;
                    const Value value = tables.value_behind(position, move);
                    EXPECT_TRUE(found.contains(value) && slab.has(found.at(value), position))
                        << slab.text(position) << " value " << int{value};
                }
            }
        }
    }
    EXPECT_GT(inside, slabs_a_table * 20);
}

INSTANTIATE_TEST_SUITE_P(Tables, CapturesTakenBackTest,
                         testing::Values(Parameter{"krkn", 0}, Parameter{"krkn", 1},
                                         Parameter{"kqkr", 0}, Parameter{"kbkp", 0},
                                         Parameter{"kbkp", 1}, Parameter{"kpkp", 0},
                                         Parameter{"kpkp", 1}, Parameter{"kppk", 1},
                                         Parameter{"kqqk", 1}, Parameter{"kbnk", 1}));

}  // namespace
