// SPDX-License-Identifier: MIT
// Bits put together to bytes, the highest bit of each byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class EmdBitWriter {
  public:
    /// Appends the lowest `count` bits of a value, 0 to 32, the highest of them first.
    void put(std::uint32_t value, unsigned count) {
        constexpr unsigned byte_bits = 8;
        const std::uint64_t mask = (std::uint64_t{1} << count) - 1;
        waiting_ = (waiting_ << count) | (value & mask);
        waiting_count_ += count;
        while (waiting_count_ >= byte_bits) {
            waiting_count_ -= byte_bits;
            bytes_.push_back(static_cast<std::uint8_t>(waiting_ >> waiting_count_));
        }
    }

    /// All bits so far, with zero bits up to the next whole byte.
    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        constexpr unsigned byte_bits = 8;
        std::vector<std::uint8_t> all = bytes_;
        if (waiting_count_ > 0) {
            all.push_back(static_cast<std::uint8_t>(waiting_ << (byte_bits - waiting_count_)));
        }
        return all;
    }

    /// How many bits have been put.
    [[nodiscard]] std::size_t bit_count() const {
        constexpr std::size_t byte_bits = 8;
        return bytes_.size() * byte_bits + waiting_count_;
    }

  private:
    std::vector<std::uint8_t> bytes_;
    std::uint64_t waiting_ = 0;   ///< the lowest `waiting_count_` bits are still to be written
    unsigned waiting_count_ = 0;  ///< at most 7 between calls
};
