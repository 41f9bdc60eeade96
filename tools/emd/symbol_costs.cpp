// SPDX-License-Identifier: MIT
// Logarithms are worked out in whole numbers, so that a file comes out the same on every system.
#include "emd/symbol_costs.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace {

/// Logarithm to the base 2 of a number above 0, in parts of a bit: squaring doubles the logarithm,
/// and each overflow beyond 2 is one more binary digit.
std::uint32_t log_cost(std::uint64_t number) {
    constexpr unsigned mantissa_bits = 31;
    const auto leading_zeros = static_cast<unsigned>(std::countl_zero(number));
    const std::uint32_t whole = 63 - leading_zeros;
    std::uint64_t mantissa = number << leading_zeros >> (mantissa_bits + 1);
    std::uint32_t log = whole;
    for (std::uint32_t part = 1; part < emd_bit_cost; part *= 2) {
        mantissa = mantissa * mantissa >> mantissa_bits;
        const auto digit = static_cast<unsigned>(mantissa >> (mantissa_bits + 1));
        mantissa >>= digit;
        log = 2 * log + digit;
    }
    return log;
}

}  // namespace

std::uint32_t emd_share_cost(std::uint64_t count, std::uint64_t total) {
    constexpr std::uint32_t longest = 31 * emd_bit_cost;
    return std::min(log_cost(total) - log_cost(count), longest);
}

EmdCosts emd_guessed_costs(const EmdByteCounts& bytes) {
    constexpr std::uint32_t match_cost = 8 * emd_bit_cost;
    const std::uint64_t total = std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
    EmdCosts costs;
    costs.fill(match_cost);
    for (std::size_t byte = 0; byte < emd_literals; ++byte) {
        costs[byte] = bytes[byte] > 0 ? emd_share_cost(bytes[byte], total) : match_cost;
    }
    return costs;
}

EmdCosts emd_measured_costs(const EmdCounts& counts) {
    // What a word takes in the description of the code, which those who use it share.
    constexpr std::uint32_t description_cost = 5 * emd_bit_cost;
    const std::uint64_t total = 1 + std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
    EmdCosts costs;
    for (std::size_t symbol = 0; symbol < emd_symbols; ++symbol) {
        const std::uint64_t count = std::max<std::uint64_t>(counts[symbol], 1);
        costs[symbol] =
            emd_share_cost(count, total) + static_cast<std::uint32_t>(description_cost / count);
    }
    return costs;
}

EmdCosts emd_code_costs(std::span<const std::uint8_t> lengths) {
    EmdCosts costs;
    for (std::size_t symbol = 0; symbol < emd_symbols; ++symbol) {
        costs[symbol] = lengths[symbol] > 0 ? lengths[symbol] * emd_bit_cost : emd_unreachable;
    }
    const auto used =
        emd_symbols - static_cast<std::size_t>(std::count(lengths.begin(), lengths.end(), 0));
    if (used == 1) {  // alone in its code, a symbol costs nothing
        std::replace(costs.begin(), costs.end(), emd_bit_cost, 0U);
    }
    return costs;
}

void emd_count_symbols(std::span<const std::uint8_t> block, const EmdPath& path,
                       EmdCounts& counts) {
    std::size_t at = block.size();
    for (const EmdStep& step : path.steps) {
        at -= step.length;
    }
    for (const EmdStep& step : path.steps) {
        ++counts[emd_symbol_of(step, block[at])];
        at += step.length;
    }
}
