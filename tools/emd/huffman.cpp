// SPDX-License-Identifier: MIT
// A word of length l is bought with l coins, one of each size 2^-1 to 2^-l. Beginning with the
// smallest size, two neighbours of the sorted list of coins make a package of the next size, and
// packages are sorted in between the coins of that size. The cheapest 2n - 2 items of the last list
// pay for a complete code; how often a symbol's coin is among them is its length.
#include "emd/huffman.h"

#include <algorithm>

namespace {

/// A symbol that occurs.
struct Coin {
    std::uint64_t count;
    std::size_t symbol;
};

/// One size of coins: the weights of coins and packages in order, and which of them are coins.
struct Level {
    std::vector<std::uint64_t> weights;
    std::vector<bool> is_coin;
};

std::vector<Coin> sorted_coins(std::span<const std::uint64_t> counts) {
    std::vector<Coin> coins;
    for (std::size_t symbol = 0; symbol < counts.size(); ++symbol) {
        if (counts[symbol] > 0) {
            coins.push_back({counts[symbol], symbol});
        }
    }
    std::stable_sort(coins.begin(), coins.end(),
                     [](const Coin& a, const Coin& b) { return a.count < b.count; });
    return coins;
}

/// The next level: all coins again, and the packages of `smaller`. A coin goes before a package of
/// the same weight, which keeps words short.
Level next_level(std::span<const Coin> coins, const Level& smaller) {
    Level level;
    const std::size_t packages = smaller.weights.size() / 2;
    std::size_t coin = 0;
    std::size_t package = 0;
    while (coin < coins.size() || package < packages) {
        const std::uint64_t package_weight =
            package < packages ? smaller.weights[2 * package] + smaller.weights[2 * package + 1]
                               : UINT64_MAX;
        const bool takes_coin = coin < coins.size() && coins[coin].count <= package_weight;
        level.weights.push_back(takes_coin ? coins[coin].count : package_weight);
        level.is_coin.push_back(takes_coin);
        if (takes_coin) {
            ++coin;
        } else {
            ++package;
        }
    }
    return level;
}

}  // namespace

std::vector<std::uint8_t> emd_huffman_lengths(std::span<const std::uint64_t> counts,
                                              unsigned longest) {
    std::vector<std::uint8_t> lengths(counts.size());
    const std::vector<Coin> coins = sorted_coins(counts);
    if (coins.empty()) {
        return lengths;
    }
    if (coins.size() == 1) {
        lengths[coins[0].symbol] = 1;
        return lengths;
    }
    std::vector<Level> levels;
    levels.push_back(next_level(coins, {}));
    while (levels.size() < longest) {
        levels.push_back(next_level(coins, levels.back()));
    }
    std::size_t taken = 2 * coins.size() - 2;
    for (std::size_t i = levels.size(); i > 0; --i) {
        const auto& is_coin = levels[i - 1].is_coin;
        const auto end = is_coin.begin() + static_cast<std::ptrdiff_t>(taken);
        const auto bought = static_cast<std::size_t>(std::count(is_coin.begin(), end, true));
        for (std::size_t coin = 0; coin < bought; ++coin) {
            ++lengths[coins[coin].symbol];
        }
        taken = 2 * (taken - bought);
    }
    return lengths;
}
