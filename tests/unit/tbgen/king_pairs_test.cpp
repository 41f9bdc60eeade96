// SPDX-License-Identifier: MIT
// Slabs have each pair of kings once, turns of the board aside, and king moves lead to the slab
// that has the pair after the move.
#include "tbgen/king_pairs.h"

#include <gtest/gtest.h>
#include <set>

#include "tb/index/enumeration.h"

namespace {

bool touch(TbSquare a, TbSquare b) {
    const int files = static_cast<int>(a % 8) - static_cast<int>(b % 8);
    const int ranks = static_cast<int>(a / 8) - static_cast<int>(b / 8);
    return files * files <= 1 && ranks * ranks <= 1;
}

class KingPairsTest : public testing::TestWithParam<bool> {
  protected:
    KingPairsTest() { tb_build_enumeration(); }

    /// A pair as it is seen after each turn that a table with such men allows.
    static std::set<KingSquares> images_of(const KingSquares& kings) {
        std::set<KingSquares> images;
        for (Turn turn = 0; turn < (GetParam() ? 2 : turns); ++turn) {
            images.insert({turned(turn, kings[0]), turned(turn, kings[1])});
        }
        return images;
    }
};

TEST_P(KingPairsTest, EveryPairStandsInOneSlabOnce) {
    const KingPairs pairs(GetParam());
    EXPECT_EQ(pairs.slabs(), GetParam() ? 1806U : 462U);
    std::set<KingSquares> known;
    std::size_t images = 0;
    for (std::size_t slab = 0; slab < pairs.slabs(); ++slab) {
        const std::set<KingSquares> of_slab = images_of(pairs.kings(slab));
        images += of_slab.size();
        known.insert(of_slab.begin(), of_slab.end());
    }
    EXPECT_EQ(known.size(), images);
    EXPECT_EQ(known.size(), 3612U);  // 64 * 63 less 420 pairs side by side
    for (const KingSquares& kings : known) {
        EXPECT_FALSE(touch(kings[0], kings[1]));
    }
}

TEST_P(KingPairsTest, MovesAreThoseOfAKingThatKeepsOff) {
    const KingPairs pairs(GetParam());
    for (std::size_t slab = 0; slab < pairs.slabs(); ++slab) {
        for (std::uint8_t side = 0; side < 2; ++side) {
            const TbSquare own = pairs.kings(slab)[side];
            const TbSquare other = pairs.kings(slab)[side ^ 1U];
            std::set<TbSquare> expected;
            for (TbSquare to = 0; to < 64; ++to) {
                if (to != own && touch(to, own) && !touch(to, other)) expected.insert(to);
            }
            std::set<TbSquare> found;
            for (const KingMove& move : pairs.moves(slab, side)) {
                found.insert(move.to);
            }
            EXPECT_EQ(found, expected) << slab << ' ' << int{side};
            EXPECT_EQ(found.size(), pairs.moves(slab, side).size());
        }
    }
}

TEST_P(KingPairsTest, TurnBringsTheMovedPairToTheKingsOfItsSlab) {
    const KingPairs pairs(GetParam());
    std::size_t moves = 0;
    for (std::size_t slab = 0; slab < pairs.slabs(); ++slab) {
        for (std::uint8_t side = 0; side < 2; ++side) {
            for (const KingMove& move : pairs.moves(slab, side)) {
                KingSquares kings = pairs.kings(slab);
                kings[side] = move.to;
                ASSERT_LT(move.slab, pairs.slabs());
                EXPECT_EQ(pairs.kings(move.slab),
                          (KingSquares{turned(move.turn, kings[0]), turned(move.turn, kings[1])}))
                    << slab << ' ' << move.to;
                EXPECT_TRUE(!GetParam() || move.turn < 2) << "pawns go up";
                ++moves;
            }
        }
    }
    EXPECT_GT(moves, pairs.slabs() * 8);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutPawns, KingPairsTest, testing::Bool());

}  // namespace
