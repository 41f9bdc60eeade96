// SPDX-License-Identifier: MIT
// Tables of rays and of the squares between two, made by the compiler.
#include "tbgen/square_set.h"

#include <utility>

namespace {

constexpr std::size_t squares = 64;

constexpr SquareSet step_along(Way way, SquareSet set) {
    switch (way) {
        case Way::north: return step<Way::north>(set);
        case Way::south: return step<Way::south>(set);
        case Way::east: return step<Way::east>(set);
        case Way::west: return step<Way::west>(set);
        case Way::north_east: return step<Way::north_east>(set);
        case Way::north_west: return step<Way::north_west>(set);
        case Way::south_east: return step<Way::south_east>(set);
        default: return step<Way::south_west>(set);
    }
}

constexpr std::array<Rays, squares> make_rays() {
    std::array<Rays, squares> all{};
    for (TbSquare square = 0; square < squares; ++square) {
        for (std::size_t way = 0; way < queen_ways.size(); ++way) {
            std::uint8_t length = 0;
            for (SquareSet at = step_along(queen_ways[way], square_bit(square)); at != 0;
                 at = step_along(queen_ways[way], at)) {
                all[square].squares[way][length++] =
                    static_cast<std::uint8_t>(std::countr_zero(at));
            }
            all[square].lengths[way] = length;
        }
    }
    return all;
}

constexpr std::array<Rays, squares> all_rays = make_rays();

using SquarePairs = std::array<std::array<SquareSet, squares>, squares>;

constexpr SquarePairs make_between() {
    SquarePairs between{};
    for (TbSquare from = 0; from < squares; ++from) {
        for (std::size_t way = 0; way < queen_ways.size(); ++way) {
            SquareSet passed = 0;
            for (std::size_t i = 0; i < all_rays[from].lengths[way]; ++i) {
                const TbSquare to = all_rays[from].squares[way][i];
                between[from][to] = passed;
                passed |= square_bit(to);
            }
        }
    }
    return between;
}

constexpr SquarePairs all_between = make_between();

/// Attacks along some ways: the empty squares, and the first ones that are not.
template <std::size_t N, std::array<Way, N> Ways>
SquareSet sliding_attacks(SquareSet from, SquareSet occupied) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return (step<Ways[I]>(from | slide<Ways[I]>(from, ~occupied)) | ...);
    }
    (std::make_index_sequence<N>{});
}

}  // namespace

SquareSet piece_attacks(std::uint8_t kind, TbSquare from, SquareSet occupied) {
    const SquareSet set = square_bit(from);
    switch (kind) {
        case tb_knight: return knight_reach(set);
        case tb_bishop: return sliding_attacks<4, bishop_ways>(set, occupied);
        case tb_rook: return sliding_attacks<4, rook_ways>(set, occupied);
        case tb_queen: return sliding_attacks<8, queen_ways>(set, occupied);
        case tb_king: return king_reach(set);
        default: return 0;
    }
}

SquareSet squares_between(TbSquare from, TbSquare to) {
    return all_between[from][to];
}

const Rays& rays_from(TbSquare square) {
    return all_rays[square];
}
