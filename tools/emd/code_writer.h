// SPDX-License-Identifier: MIT
// A canonical code on its way into a file: the code words that follow from their lengths, and the
// description of the lengths in the header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "emd/bit_writer.h"
#include "emd/match_symbol.h"

/// Code words of canonical codes, a symbol each: in the order of their length, and of the symbols
/// within a length. 0 for a symbol without a word.
[[nodiscard]] std::vector<std::uint32_t> emd_code_words(std::span<const std::uint8_t> lengths);

/// Description of `emd_symbols` lengths, each 0 to 31, padded to whole bytes.
[[nodiscard]] std::vector<std::uint8_t> emd_code_description(std::span<const std::uint8_t> lengths);

/// A code to write symbols with.
class EmdCode {
  public:
    explicit EmdCode(std::span<const std::uint8_t> lengths);

    /// Appends a symbol that has a word. A symbol that is alone in its code takes no bits.
    void put(EmdBitWriter& writer, std::size_t symbol) const {
        writer.put(words_[symbol], lengths_[symbol]);
    }

    /// Bits that `put` appends.
    [[nodiscard]] unsigned bits(std::size_t symbol) const { return lengths_[symbol]; }

  private:
    std::vector<std::uint8_t> lengths_;
    std::vector<std::uint32_t> words_;
};
