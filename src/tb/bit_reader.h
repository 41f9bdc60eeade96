// SPDX-License-Identifier: MIT
// Bits of a byte sequence, the highest bit of each byte first. Behind the end come zero bits, as
// many as are asked for; the reader knows how far behind it stands, so that nothing is checked bit
// by bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

class TbBitReader {
  public:
    TbBitReader() = default;
    explicit TbBitReader(std::span<const std::uint8_t> bytes)
        : begin_(bytes.data()), size_(bytes.size()) {
        refill();
    }

    /// Most bits of one peek, take or skip.
    static constexpr unsigned most_bits = 16;

    /// The next `count` bits, 1 to `most_bits`, without taking them.
    [[nodiscard]] std::uint32_t peek(unsigned count) const {
        return static_cast<std::uint32_t>(bits_ >> (word_bits - count));
    }

    /// Passes over `count` bits, 0 to `most_bits`.
    void skip(unsigned count) {
        bits_ <<= count;
        bit_count_ -= count;
        if (bit_count_ < most_bits) {
            refill();
        }
    }

    /// The next `count` bits, 0 to `most_bits`.
    [[nodiscard]] std::uint32_t take(unsigned count) {
        if (count == 0) {
            return 0;
        }
        const std::uint32_t value = peek(count);
        skip(count);
        return value;
    }

    /// The next `count` bits, 0 to 32; more than `most_bits` come in two steps, the first
    /// `most_bits` being the high part.
    [[nodiscard]] std::uint32_t take_wide(unsigned count) {
        if (count <= most_bits) {
            return take(count);
        }
        const std::uint32_t high = take(most_bits);
        const unsigned rest = count - most_bits;
        return (high << rest) | take(rest);
    }

    /// Whether bits behind the end have been taken.
    [[nodiscard]] bool overran() const {
        constexpr std::size_t byte_bits = 8;
        return read_ * byte_bits - bit_count_ > size_ * byte_bits;
    }

  private:
    static constexpr unsigned word_bits = 64;

    /// Fills up to at least 57 bits.
    void refill() {
        constexpr unsigned byte_bits = 8;
        while (bit_count_ <= word_bits - byte_bits) {
            const std::uint64_t byte = read_ < size_ ? begin_[read_] : 0;
            bits_ |= byte << (word_bits - byte_bits - bit_count_);
            bit_count_ += byte_bits;
            ++read_;
        }
    }

    const std::uint8_t* begin_ = nullptr;
    std::size_t size_ = 0;    ///< bytes
    std::size_t read_ = 0;    ///< bytes taken in, those behind the end counted
    std::uint64_t bits_ = 0;  ///< what is taken in and not yet used, from the highest bit on
    unsigned bit_count_ = 0;  ///< how many bits that are
};
