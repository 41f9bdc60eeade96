// SPDX-License-Identifier: MIT
// Turns of the board: sets and squares turn alike, and the eight of them are a group.
#include "tbgen/symmetry.h"

#include <gtest/gtest.h>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "support/slow_endgame.h"

namespace {

/// A turn done in words: files, ranks, then the diagonal.
TbSquare slow_turned(Turn turn, TbSquare square) {
    TbSquare file = square % 8;
    TbSquare rank = square / 8;
    if ((turn & turn_files) != 0) file = 7 - file;
    if ((turn & turn_ranks) != 0) rank = 7 - rank;
    if ((turn & turn_diagonal) != 0) std::swap(file, rank);
    return rank * 8 + file;
}

/// All squares as a turn has them.
std::vector<TbSquare> image_of(Turn turn) {
    std::vector<TbSquare> image;
    for (TbSquare square = 0; square < 64; ++square) {
        image.push_back(turned(turn, square));
    }
    return image;
}

TEST(Symmetry, SquaresTurnByFilesAndRanks) {
    for (Turn turn = 0; turn < turns; ++turn) {
        for (TbSquare square = 0; square < 64; ++square) {
            EXPECT_EQ(turned(turn, square), slow_turned(turn, square)) << int{turn};
            EXPECT_EQ(turned_squares[turn][square], slow_turned(turn, square)) << int{turn};
        }
    }
    EXPECT_EQ(turned(turn_files, named_square("b1")), named_square("g1"));
    EXPECT_EQ(turned(turn_ranks, named_square("b1")), named_square("b8"));
    EXPECT_EQ(turned(turn_diagonal, named_square("b1")), named_square("a2"));
    EXPECT_EQ(turned(turn_files | turn_diagonal, named_square("b1")), named_square("a7"));
}

TEST(Symmetry, SetsTurnAsTheirSquaresDo) {
    std::mt19937_64 random(99);
    for (Turn turn = 0; turn < turns; ++turn) {
        for (int i = 0; i < 50; ++i) {
            const SquareSet set = i == 0 ? 1 : random() & random();
            SquareSet expected = 0;
            for_each_square(
                set, [&](TbSquare square) { expected |= square_bit(slow_turned(turn, square)); });
            EXPECT_EQ(turned_set(turn, set), expected) << int{turn} << ' ' << set;
        }
    }
}

TEST(Symmetry, InverseUndoes) {
    for (Turn turn = 0; turn < turns; ++turn) {
        for (TbSquare square = 0; square < 64; ++square) {
            EXPECT_EQ(turned(inverse(turn), turned(turn, square)), square) << int{turn};
            EXPECT_EQ(turned(turn, turned(inverse(turn), square)), square) << int{turn};
        }
    }
}

TEST(Symmetry, EightTurnsAreAGroup) {
    std::set<std::vector<TbSquare>> images;
    for (Turn turn = 0; turn < turns; ++turn) {
        images.insert(image_of(turn));
    }
    EXPECT_EQ(images.size(), turns);
    // Two after each other are one of the eight.
    for (Turn first = 0; first < turns; ++first) {
        for (Turn second = 0; second < turns; ++second) {
            std::vector<TbSquare> image;
            for (TbSquare square = 0; square < 64; ++square) {
                image.push_back(turned(second, turned(first, square)));
            }
            EXPECT_TRUE(images.contains(image)) << int{first} << ' ' << int{second};
        }
    }
    // The most that squares are spread out to: 8 on no mirror line, 4 on a diagonal.
    const auto spread = [](std::string_view name) {
        std::set<TbSquare> squares;
        for (Turn turn = 0; turn < turns; ++turn) {
            squares.insert(turned(turn, named_square(name)));
        }
        return squares.size();
    };
    EXPECT_EQ(spread("b1"), 8U);
    EXPECT_EQ(spread("c3"), 4U);
    EXPECT_EQ(spread("a8"), 4U);
}

}  // namespace
