// SPDX-License-Identifier: MIT
// What symbols cost: guessed before a block has been parsed, and measured by how often they occur
// or by the length of their code words.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "emd/lz_parse.h"

/// How often each symbol occurs.
using EmdCounts = std::array<std::uint64_t, emd_symbols>;

/// How often each byte occurs.
using EmdByteCounts = std::array<std::uint64_t, emd_literals>;

/// Cost of a word whose share is `count` of `total`, 0 < count <= total.
[[nodiscard]] std::uint32_t emd_share_cost(std::uint64_t count, std::uint64_t total);

/// A guess for data whose bytes occur so often: literals by their share, matches by a usual figure.
[[nodiscard]] EmdCosts emd_guessed_costs(const EmdByteCounts& bytes);

/// By the shares of the symbols, and what the description of the code takes for rare ones. One that
/// has not occurred may be tried as if it had once.
[[nodiscard]] EmdCosts emd_measured_costs(const EmdCounts& counts);

/// By the code words; symbols without one cannot be written.
[[nodiscard]] EmdCosts emd_code_costs(std::span<const std::uint8_t> lengths);

/// Adds the symbols of a path through a block.
void emd_count_symbols(std::span<const std::uint8_t> block, const EmdPath& path, EmdCounts& counts);
