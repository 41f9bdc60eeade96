// SPDX-License-Identifier: MIT
// How a block is written most cheaply, by literals and by matches at a file's distances, when it is
// known what each symbol costs.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "emd/match_symbol.h"

/// Distances of a file, bytes; 0 for a slot without use.
using EmdDistances = std::array<std::uint32_t, emd_slots>;

/// Costs are told in parts of a bit.
inline constexpr std::uint32_t emd_bit_cost = 64;

/// Cost of a symbol that cannot be written, and of a block that needs one. Beyond the cost of any
/// block that is worth packing.
inline constexpr std::uint32_t emd_unreachable = 1U << 26U;

/// What the symbols cost, further bits not counted.
using EmdCosts = std::array<std::uint32_t, emd_symbols>;

/// A literal, or a match: the cut of one that runs past the end of the block has any class.
struct EmdStep {
    static constexpr std::uint8_t literal_slot = emd_slots;

    std::uint32_t length = 1;  ///< bytes of the block
    std::uint8_t slot = literal_slot;
    std::uint8_t length_class = 0;

    [[nodiscard]] bool is_literal() const { return slot == literal_slot; }
    friend bool operator==(const EmdStep&, const EmdStep&) = default;
};

/// The cheapest way through a part of a block.
struct EmdPath {
    std::uint32_t cost = 0;  ///< at most `emd_unreachable`; no path then
    std::vector<EmdStep> steps;
};

/// Symbol of a step; `byte` is the block's byte there.
[[nodiscard]] std::size_t emd_symbol_of(const EmdStep& step, std::uint8_t byte);

class EmdParser {
  public:
    EmdParser(const EmdDistances& distances, const EmdCosts& costs);

    /// From the place `begin` to the end of a block of at most 65536 bytes. May be called from
    /// several threads at a time.
    [[nodiscard]] EmdPath parse(std::span<const std::uint8_t> block, std::size_t begin) const;

  private:
    class Walk;

    static constexpr std::size_t mask_parts = 3;
    static constexpr unsigned part_bits = 8;
    static constexpr std::size_t part_values = 1U << part_bits;

    /// The cheapest slot of each set of eight slots: its cost above the bits of its number.
    using CheapestOf = std::array<std::array<std::uint32_t, part_values>, mask_parts>;

    [[nodiscard]] std::uint32_t cost_of(std::size_t slot, unsigned length_class) const;

    EmdDistances distances_;
    EmdCosts costs_;
    std::array<CheapestOf, emd_longest_plain> cheapest_plain_;
    /// A class for each slot and class.
    using OtherClass = std::array<std::array<std::uint8_t, emd_length_classes>, emd_slots>;

    OtherClass class_past_end_;  ///< the cheapest one that is not shorter
    OtherClass class_below_;     ///< the longest one that is shorter and can be written, else 0
};
