// SPDX-License-Identifier: MIT
// A block of a compressed table file decoded the slow way, to compare with: a code word is looked
// up bit by bit in a list of all words, and every bound is tested where it matters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

/// Bits one by one; zeros behind the end.
class SlowBits {
  public:
    explicit SlowBits(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint32_t bit() {
        const std::size_t at = taken_++;
        const std::uint32_t byte = at / 8 < bytes_.size() ? bytes_[at / 8] : 0;
        return (byte >> (7 - at % 8)) & 1U;
    }

    std::uint32_t number(unsigned bits) {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < bits; ++i) {
            value = value << 1U | bit();
        }
        return value;
    }

    [[nodiscard]] std::size_t taken() const { return taken_; }
    [[nodiscard]] bool overran() const { return taken_ > 8 * bytes_.size(); }

  private:
    std::span<const std::uint8_t> bytes_;
    std::size_t taken_ = 0;
};

/// The canonical code of some lengths, which make a complete one, or none, or a single word.
class SlowCode {
  public:
    explicit SlowCode(std::span<const std::uint8_t> lengths) {
        std::uint32_t word = 0;
        for (std::uint32_t length = 1; length < 32; ++length) {
            word <<= 1U;
            for (std::uint32_t symbol = 0; symbol < lengths.size(); ++symbol) {
                if (lengths[symbol] == length) {
                    symbols_[{length, word++}] = symbol;
                }
            }
        }
    }

    std::uint32_t symbol(SlowBits& bits) const {
        if (symbols_.size() < 2) {
            return symbols_.empty() ? 0 : symbols_.begin()->second;  // costs no bits
        }
        std::pair<std::uint32_t, std::uint32_t> word{0, 0};
        auto found = symbols_.end();
        while (found == symbols_.end()) {
            word = {word.first + 1, word.second << 1U | bits.bit()};
            found = symbols_.find(word);
        }
        return found->second;
    }

  private:
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> symbols_;  // length and word
};

/// A coded block of `length` bytes; empty if it is broken. The room for it holds `filler`
/// beforehand, which a match at the distance 0 finds there.
[[nodiscard]] inline std::optional<std::vector<std::uint8_t>> slow_block(
    const SlowCode& code, std::span<const std::uint32_t> distances,
    std::span<const std::uint8_t> stored, std::size_t length, std::uint8_t filler) {
    constexpr std::size_t short_copy = 4;  // what a match of up to four bytes copies
    std::vector<std::uint8_t> output(length + short_copy, filler);
    SlowBits bits(stored);
    std::size_t at = 0;
    while (at < length) {
        const std::uint32_t symbol = code.symbol(bits);
        if (symbol < 256) {
            output[at++] = static_cast<std::uint8_t>(symbol);
            continue;
        }
        const std::size_t distance = distances[(symbol - 256) / 32];
        const std::uint32_t length_class = symbol % 32;
        if (distance > at) {
            return std::nullopt;
        }
        std::size_t match = length_class + 1;
        if (length_class >= 15) {
            const unsigned further = length_class - 14;
            match = (std::size_t{1} << further) + bits.number(further) + 14;
        }
        const std::size_t copied = match < short_copy ? short_copy : match;
        for (std::size_t i = 0; i < copied && at + i < output.size(); ++i) {
            output[at + i] = output[at + i - distance];
        }
        at += match;
    }
    if (bits.overran()) {
        return std::nullopt;
    }
    output.resize(length);
    return output;
}
