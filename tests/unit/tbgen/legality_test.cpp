// SPDX-License-Identifier: MIT
// Words of 64 positions against each position looked at on its own.
#include "tbgen/legality.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int words_a_table = 400;
#else
constexpr int words_a_table = 40;
#endif
constexpr std::uint32_t seed = 31;

const std::vector<std::string>& tables() {
    static const std::vector<std::string> names = {"kpk",   "kqk",   "krkn",  "kpkp",
                                                   "kbnk",  "kqpkr", "kppkn", "krrkb",
                                                   "kqqkq", "kppkp", "kpppk", "knnkp"};
    return names;
}

class LegalityTest : public testing::Test {
  protected:
    LegalityTest() { tb_build_enumeration(); }
};

/// Compares a word; gives how many positions of it are possible.
int compare_word(const EndgameLayout& layout, std::size_t slab, std::size_t word) {
    const Endgame& endgame = layout.endgame();
    const KingSquares& kings = layout.pairs().kings(slab);
    const SquareSet possible = possible_squares(endgame, kings, word);
    const std::array<SquareSet, 2> attacking = {
        possible == 0 ? 0 : attacking_squares(endgame, kings, word, 0),
        possible == 0 ? 0 : attacking_squares(endgame, kings, word, 1)};
    int count = 0;
    for (TbSquare square = 0; square < 64; ++square) {
        const SlowPosition position = layout.position({slab, word, square}, 0);
        const SquareSet bit = square_bit(square);
        bool is_misplaced = false;
        SquareSet occupied = 0;
        for (const SlowMan& man : position.men) {
            const bool is_rank_out = man.square < 8 || man.square >= 56;
            is_misplaced = is_misplaced || (man.kind == tb_pawn && is_rank_out) ||
                           (occupied & square_bit(man.square)) != 0 || man.square == kings[0] ||
                           man.square == kings[1];
            occupied |= square_bit(man.square);
        }
        EXPECT_EQ((possible & bit) != 0, !is_misplaced) << slab << ' ' << word << ' ' << square;
        if (is_misplaced) continue;
        ++count;
        for (std::uint8_t side = 0; side < 2; ++side) {
            EXPECT_EQ((attacking[side] & bit) != 0, slow_in_check(position, side ^ 1U))
                << slab << ' ' << word << ' ' << square << ' ' << int{side};
        }
    }
    return count;
}

TEST_F(LegalityTest, PossibleAndAttackingSquaresOfAWord) {
    LayoutRandom random(seed);
    for (const std::string& name : tables()) {
        const EndgameLayout layout(name);
        const auto slabs = static_cast<std::uint32_t>(layout.pairs().slabs());
        const auto words = static_cast<std::uint32_t>(layout.endgame().slab_words());
        int count = 0;
        for (int i = 0; i < words_a_table && !HasFailure(); ++i) {
            count += compare_word(layout, drawn_below(random, slabs), drawn_below(random, words));
        }
        EXPECT_GT(count, words_a_table * 20) << name;
    }
}

TEST_F(LegalityTest, WordsWithPostsThatMeetOrPawnsOnTheLastRanksHaveNoPositions) {
    const EndgameLayout layout("kppkn");
    const KingSquares kings = {named_square("c3"), named_square("h6")};
    const auto word = [](std::string_view first, std::string_view second) {
        return std::size_t{named_square(first)} * 64 + named_square(second);
    };
    const auto possible = [&](std::size_t at) {
        return possible_squares(layout.endgame(), kings, at);
    };
    EXPECT_EQ(std::popcount(possible(word("e4", "e5"))), 60);
    EXPECT_EQ(possible(word("e4", "e4")), 0U);
    EXPECT_EQ(possible(word("c3", "e4")), 0U);
    EXPECT_EQ(possible(word("e4", "h6")), 0U);
    EXPECT_EQ(possible(word("e1", "e4")), 0U);
    EXPECT_EQ(possible(word("e4", "e8")), 0U);
}

TEST_F(LegalityTest, OccupiedSquaresAreThoseOfKingsAndPosts) {
    const EndgameLayout layout("kbnkr");
    const SquareSet occupied = occupied_by(layout.endgame(), {1, 50}, 20 * 64 + 40);
    EXPECT_EQ(occupied, square_bit(1) | square_bit(50) | square_bit(20) | square_bit(40));
}

TEST_F(LegalityTest, AttackersStandWhereTheyAttackFrom) {
    std::mt19937_64 random(seed);
    for (std::uint8_t side = 0; side < 2; ++side) {
        for (std::uint8_t kind = tb_pawn; kind <= tb_queen; ++kind) {
            for (TbSquare target = 0; target < 64; ++target) {
                const SquareSet occupied = random() & random();
                const SquareSet found = attackers_of({side, kind}, target, occupied);
                for (TbSquare from = 0; from < 64; ++from) {
                    EXPECT_EQ((found & square_bit(from)) != 0,
                              slow_attacks(side, kind, from, target, occupied))
                        << int{side} << int{kind} << ' ' << from << ' ' << target;
                }
            }
        }
    }
}

}  // namespace
