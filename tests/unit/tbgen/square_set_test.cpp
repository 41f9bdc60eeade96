// SPDX-License-Identifier: MIT
// Moves of whole sets of squares against a loop over files and ranks.
#include "tbgen/square_set.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "support/slow_endgame.h"

namespace {

using Random = std::mt19937_64;
constexpr std::uint64_t seed = 4711;
constexpr int sets_a_piece = 40;

struct Direction {
    int files;
    int ranks;
};

constexpr std::array<Direction, 8> directions = {
    {{0, 1}, {0, -1}, {1, 0}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};

SquareSet at(int file, int rank) {
    const bool is_on_board = file >= 0 && file < 8 && rank >= 0 && rank < 8;
    return is_on_board ? SquareSet{1} << static_cast<unsigned>(rank * 8 + file) : 0;
}

/// The squares from a square on along a direction, nearest first.
std::vector<SquareSet> slow_ray(TbSquare from, Direction direction) {
    std::vector<SquareSet> ray;
    int file = static_cast<int>(from % 8) + direction.files;
    int rank = static_cast<int>(from / 8) + direction.ranks;
    while (at(file, rank) != 0) {
        ray.push_back(at(file, rank));
        file += direction.files;
        rank += direction.ranks;
    }
    return ray;
}

SquareSet slow_step(SquareSet set, Direction direction) {
    SquareSet result = 0;
    for_each_square(set, [&](TbSquare from) {
        const std::vector<SquareSet> ray = slow_ray(from, direction);
        result |= ray.empty() ? 0 : ray.front();
    });
    return result;
}

SquareSet slow_slide(SquareSet set, SquareSet empty, Direction direction) {
    SquareSet result = 0;
    for_each_square(set, [&](TbSquare from) {
        for (const SquareSet square : slow_ray(from, direction)) {
            if ((square & empty) == 0) break;
            result |= square;
        }
    });
    return result;
}

/// Sets from nearly empty to nearly full.
SquareSet drawn_set(Random& random, int i) {
    switch (i % 4) {
        case 0: return random() & random() & random();
        case 1: return random() & random();
        case 2: return random();
        default: return random() | random();
    }
}

SquareSet slow_attacked(std::uint8_t side, std::uint8_t kind, TbSquare from, SquareSet occupied) {
    SquareSet attacked = 0;
    for (TbSquare to = 0; to < 64; ++to) {
        attacked |= slow_attacks(side, kind, from, to, occupied) ? square_bit(to) : 0;
    }
    return attacked;
}

template <Way W>
void compare_way(Random& random) {
    const Direction direction = directions[static_cast<std::size_t>(W)];
    for (int i = 0; i < sets_a_piece; ++i) {
        const SquareSet set = drawn_set(random, i);
        const SquareSet empty = drawn_set(random, i / 4);
        EXPECT_EQ(step<W>(set), slow_step(set, direction)) << set;
        EXPECT_EQ(slide<W>(set, empty), slow_slide(set, empty, direction)) << set << ' ' << empty;
    }
    for (TbSquare from = 0; from < 64; ++from) {
        const SquareSet set = square_bit(from);
        EXPECT_EQ(step<W>(set), slow_step(set, direction)) << from;
        EXPECT_EQ(slide<W>(set, all_squares), slow_slide(set, all_squares, direction)) << from;
    }
}

TEST(SquareSet, ConstantsAreSquaresOfTheBoard) {
    for (int i = 0; i < 8; ++i) {
        EXPECT_NE(file_a & at(0, i), 0U);
        EXPECT_NE(file_h & at(7, i), 0U);
        for (TbSquare rank = 0; rank < 8; ++rank) {
            EXPECT_NE(rank_set(rank) & at(i, static_cast<int>(rank)), 0U);
            const bool has_pawns = rank >= 1 && rank <= 6;
            EXPECT_EQ((pawn_ranks & at(i, static_cast<int>(rank))) != 0, has_pawns);
        }
    }
    EXPECT_EQ(std::popcount(file_a), 8);
    EXPECT_EQ(std::popcount(file_h), 8);
    EXPECT_EQ(std::popcount(rank_set(5)), 8);
    EXPECT_EQ(square_bit(named_square("h8")), at(7, 7));
}

TEST(SquareSet, VisitsEachSquareOnceInRisingOrder) {
    const SquareSet set = at(0, 0) | at(3, 2) | at(7, 7) | at(4, 4);
    std::vector<TbSquare> visited;
    for_each_square(set, [&](TbSquare square) { visited.push_back(square); });
    EXPECT_EQ(visited, (std::vector<TbSquare>{0, 19, 36, 63}));
    for_each_square(0, [](TbSquare) { FAIL() << "an empty set has no square"; });
}

TEST(SquareSet, StepsAndSlidesAllEightWays) {
    Random random(seed);
    compare_way<Way::north>(random);
    compare_way<Way::south>(random);
    compare_way<Way::east>(random);
    compare_way<Way::west>(random);
    compare_way<Way::north_east>(random);
    compare_way<Way::north_west>(random);
    compare_way<Way::south_east>(random);
    compare_way<Way::south_west>(random);
}

TEST(SquareSet, ReachOfKnightsAndKingsIsThatOfEachOfThem) {
    Random random(seed);
    for (int i = 0; i < sets_a_piece; ++i) {
        const SquareSet set = drawn_set(random, i);
        SquareSet knights = 0;
        SquareSet kings = 0;
        for_each_square(set, [&](TbSquare from) {
            knights |= slow_attacked(0, tb_knight, from, 0);
            kings |= slow_attacked(0, tb_king, from, 0);
        });
        EXPECT_EQ(knight_reach(set), knights) << set;
        EXPECT_EQ(king_reach(set), kings & ~set) << set;
    }
}

TEST(SquareSet, PiecesMoveToEmptySquaresAlone) {
    Random random(seed);
    for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
        for (int i = 0; i < sets_a_piece; ++i) {
            const SquareSet set = drawn_set(random, i % 2);
            const SquareSet empty = drawn_set(random, i / 2);
            SquareSet expected = 0;
            for_each_square(set, [&](TbSquare from) {
                expected |= slow_attacked(0, kind, from, ~empty) & empty;
            });
            EXPECT_EQ(piece_moves(kind, set, empty), expected) << int{kind} << ' ' << set;
        }
    }
    EXPECT_EQ(piece_moves(tb_pawn, all_squares, all_squares), 0U);
}

TEST(SquareSet, PiecesAttackUpToTheFirstMan) {
    Random random(seed);
    int compared = 0;
    for (std::uint8_t kind = tb_knight; kind <= tb_king; ++kind) {
        for (TbSquare from = 0; from < 64; ++from) {
            const SquareSet occupied = drawn_set(random, static_cast<int>(from));
            EXPECT_EQ(piece_attacks(kind, from, occupied), slow_attacked(0, kind, from, occupied))
                << int{kind} << ' ' << from << ' ' << occupied;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 5 * 64);
    EXPECT_EQ(piece_attacks(tb_pawn, 20, 0), 0U);
}

TEST(SquareSet, PawnsAttackForward) {
    for (std::uint8_t side = 0; side < 2; ++side) {
        for (TbSquare from = 0; from < 64; ++from) {
            EXPECT_EQ(pawn_attacks(side, from), slow_attacked(side, tb_pawn, from, 0)) << from;
        }
    }
}

TEST(SquareSet, SquaresBetweenAreThoseOfALine) {
    for (TbSquare from = 0; from < 64; ++from) {
        std::array<SquareSet, 64> between{};
        for (const Direction direction : directions) {
            SquareSet passed = 0;
            for (const SquareSet square : slow_ray(from, direction)) {
                between[static_cast<std::size_t>(std::countr_zero(square))] = passed;
                passed |= square;
            }
        }
        for (TbSquare to = 0; to < 64; ++to) {
            EXPECT_EQ(squares_between(from, to), between[to]) << from << ' ' << to;
        }
    }
}

TEST(SquareSet, RaysLeadAwayRooksBeforeBishops) {
    for (TbSquare from = 0; from < 64; ++from) {
        const Rays& rays = rays_from(from);
        for (std::size_t way = 0; way < directions.size(); ++way) {
            const std::vector<SquareSet> expected = slow_ray(from, directions[way]);
            ASSERT_EQ(rays.lengths[way], expected.size()) << from << ' ' << way;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(square_bit(rays.squares[way][i]), expected[i]) << from << ' ' << way;
            }
        }
    }
}

}  // namespace
