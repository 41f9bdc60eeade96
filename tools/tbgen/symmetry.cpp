// SPDX-License-Identifier: MIT
// The turned squares, made by the compiler.
#include "tbgen/symmetry.h"

namespace {

constexpr std::array<std::array<std::uint8_t, 64>, turns> make_turned() {
    std::array<std::array<std::uint8_t, 64>, turns> all{};
    for (Turn turn = 0; turn < turns; ++turn) {
        for (TbSquare square = 0; square < all[turn].size(); ++square) {
            all[turn][square] = static_cast<std::uint8_t>(turned(turn, square));
        }
    }
    return all;
}

}  // namespace

constinit const std::array<std::array<std::uint8_t, 64>, turns> turned_squares = make_turned();
