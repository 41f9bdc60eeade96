// SPDX-License-Identifier: MIT
// What comes of the candidates: one drawn by weight for the computer, the first as a hint.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "book/book_move.h"
#include "platform/random.h"
#include "shell/engine_state.h"
#include "support/lookup_scene.h"
#include "support/position.h"

namespace {

class BookMoveDraw : public LookupScene {
  protected:
    [[nodiscard]] std::string drawn() const {
        return move_text(move_.posFrom, move_.posTo, move_.posInfo);
    }

    /// How often each candidate is drawn over so many seeds.
    std::vector<int> draws(std::uint32_t first_seed, std::size_t seeds) {
        std::vector<int> hits(book_candidates);
        for (std::size_t i = 0; i < seeds; ++i) {
            seed_random(first_seed + static_cast<std::uint32_t>(i));
            lookup();
            const auto* const found = std::find(book_moves.begin(), book_moves.end(), move_);
            EXPECT_NE(found, book_moves.end());
            ++hits.at(static_cast<std::size_t>(found - book_moves.begin()));
        }
        return hits;
    }

    /// Each share of 10,000 draws is that of the weight, within a few per cent of it.
    void expect_shares(const std::vector<int>& weights) {
        constexpr std::size_t seeds = 10000;
        int sum = 0;
        for (const int weight : weights) {
            sum += weight;
        }
        const std::vector<int> hits = draws(1800000000, seeds);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const double expected = static_cast<double>(seeds) * weights[i] / sum;
            EXPECT_NEAR(hits[i], expected, 0.05 * expected) << i;
        }
        for (std::size_t i = weights.size(); i < hits.size(); ++i) {
            EXPECT_EQ(hits[i], 0);
        }
    }
};

}  // namespace

// Of weights 1, 2 and 7 the number 1 falls on the first move, 2 and 3 on the second, 4 to 10 on the
// third. Each seed is told with the first random number that follows from it.
TEST_F(BookMoveDraw, DrawnNumberFallsOnTheSumOfTheWeights) {
    struct Case {
        std::uint32_t seed;
        std::int32_t random;
        std::int32_t number;
        const char* move;
    };
    load_books("e2e4\nd2d4\nd2d4\n" + repeated("g1f3\n", 7), "");
    for (const Case& each :
         {Case{16, 90, 1, "e2e4"}, Case{1, 41, 2, "d2d4"}, Case{35, 152, 3, "d2d4"},
          Case{20, 103, 4, "g1f3"}, Case{5, 54, 5, "g1f3"}, Case{0, 38, 9, "g1f3"},
          Case{31, 139, 10, "g1f3"}, Case{19, 100, 1, "e2e4"}}) {
        ASSERT_EQ(each.random % 10 + 1, each.number);
        seed_random(each.seed);
        EXPECT_EQ(next_random(), each.random);
        seed_random(each.seed);
        EXPECT_EQ(lookup(), "1 e2e4 1 \n2 d2d4 2 \n3 g1f3 7 \n");
        EXPECT_EQ(drawn(), each.move) << each.seed;
    }
}

TEST_F(BookMoveDraw, OneNumberIsTakenForADrawAndNoneWithoutCandidates) {
    load_books("e2e4\n", "");
    seed_random(1);
    lookup();
    EXPECT_EQ(next_random(), 18467);  // the second of this seed
    seed_random(1);
    played("d2d4");
    lookup();
    EXPECT_EQ(next_random(), 41);  // the first
}

TEST_F(BookMoveDraw, TwoEqualMovesAreDrawnAlike) {
    load_books("e2e4\nd2d4\n", "");
    expect_shares({1, 1});
}

TEST_F(BookMoveDraw, SharesAreThoseOfTheWeights) {
    load_books("e2e4\nd2d4\nd2d4\n" + repeated("g1f3\n", 7), "");
    expect_shares({1, 2, 7});
}

TEST_F(BookMoveDraw, FortySevenMovesAreDrawnAlike) {
    load_books(joined(different_lines(47)), "");
    expect_shares(std::vector<int>(47, 1));
}

TEST_F(BookMoveDraw, HintIsTheFirstCandidateOfTheOtherSidesBook) {
    load_books("e2e4\nd2d4\nd2d4\n", "c2c4\ng1f3\n");
    engine.root_side = white;
    EXPECT_EQ(hint(), "Hint: c2c4 \n");
    engine.root_side = black;
    EXPECT_EQ(hint(), "Hint: e2e4 \n");
    engine.root_side = 5;
    EXPECT_EQ(hint(), "Hint: e2e4 \n");
}

TEST_F(BookMoveDraw, HintLooksAtTheGame) {
    load_books("", "d2d4d7d5\ne2e4--\ne2e4e7e5g1f3\n");
    played("e2e4");
    EXPECT_EQ(hint(), "Hint: e7e5 \n");
    played("e2e4e7e5");
    EXPECT_EQ(hint(), "Hint: g1f3 \n");
    played("e2e4e7e5g1f3");
    EXPECT_EQ(hint(), "");
}

TEST_F(BookMoveDraw, HintNeitherReadsNorChangesWhetherTheBookIsOut) {
    load_books("", "e2e4\n");
    for (const bool out : {false, true}) {
        engine.book_out = out;
        played("");
        EXPECT_EQ(hint(), "Hint: e2e4 \n");
        EXPECT_EQ(engine.book_out, out);
        played("d2d4");
        EXPECT_EQ(hint(), "");
        EXPECT_EQ(engine.book_out, out);
    }
}

TEST_F(BookMoveDraw, HintDrawsNothing) {
    load_books("e2e4\nd2d4\n", "e2e4\nd2d4\n");
    seed_random(1);
    hint();
    EXPECT_EQ(next_random(), 41);
    EXPECT_EQ(engine.root_side, white);
}
