// SPDX-License-Identifier: MIT
// The keys are drawn at compile time by a 64-bit mixing generator (Steele, Lea and Flood's
// SplitMix, 2014), so that every build and every machine has the same ones.
#include "board/piece_keys.h"

namespace {

/// Chosen so that in the reference searches of the tests, with a table of 16 megabytes, no two
/// positions that matter meet in one slot: their node counts then do not depend on the keys.
constexpr std::uint64_t generator_seed = 0x5555;
constexpr std::uint64_t generator_step = 0x9e3779b97f4a7c15;

constexpr std::uint64_t next_random(std::uint64_t& state) {
    state += generator_step;
    std::uint64_t word = state;
    word = (word ^ (word >> 30)) * 0xbf58476d1ce4e5b9;
    word = (word ^ (word >> 27)) * 0x94d049bb133111eb;
    return word ^ (word >> 31);
}

constexpr std::array<std::uint32_t, lock_keys + index_keys + pawn_keys> make_piece_keys() {
    std::array<std::uint32_t, lock_keys + index_keys + pawn_keys> keys{};
    std::uint64_t state = generator_seed;
    for (std::uint32_t& key : keys) {
        key = static_cast<std::uint32_t>(next_random(state) >> 32);
    }
    return keys;
}

}  // namespace

constinit const std::array<std::uint32_t, lock_keys + index_keys + pawn_keys> piece_keys =
    make_piece_keys();
