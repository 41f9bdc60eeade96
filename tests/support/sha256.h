// SPDX-License-Identifier: MIT
// SHA-256 of bytes, as the 64 digits that sha256sum prints: a digest for data too long to be kept
// beside its test.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

class Sha256 {
  public:
    [[nodiscard]] static std::string digits(std::span<const std::uint8_t> bytes) {
        Sha256 digest;
        const std::vector<std::uint8_t> padded = pad(bytes);
        for (std::size_t at = 0; at < padded.size(); at += block_bytes) {
            digest.add_block(std::span(padded).subspan(at, block_bytes));
        }
        std::string text;
        for (const std::uint32_t word : digest.hash_) {
            for (int shift = 28; shift >= 0; shift -= 4) {
                text += "0123456789abcdef"[(word >> shift) & 0xfU];
            }
        }
        return text;
    }

  private:
    static constexpr std::size_t block_bytes = 64;
    static constexpr std::size_t rounds = 64;

    Sha256() {
        for (std::size_t i = 0; i < hash_.size(); ++i) {
            hash_[i] = fraction(std::sqrt(prime(i)));
        }
        for (std::size_t i = 0; i < rounds; ++i) {
            constants_[i] = fraction(std::cbrt(prime(i)));
        }
    }

    /// The first 32 bits behind the point: what the digest's constants are, of roots of primes.
    static std::uint32_t fraction(double root) {
        constexpr double two_to_32 = 4294967296.0;
        return static_cast<std::uint32_t>((root - std::floor(root)) * two_to_32);
    }

    /// The prime of an index: 2 of 0.
    static double prime(std::size_t index) {
        unsigned number = 1;
        for (std::size_t found = 0; found <= index;) {
            ++number;
            unsigned divisor = 2;
            while (number % divisor != 0) {
                ++divisor;
            }
            found += divisor == number ? 1U : 0U;
        }
        return number;
    }

    /// A bit 1, zeros, and the length in bits as eight bytes: whole blocks.
    static std::vector<std::uint8_t> pad(std::span<const std::uint8_t> bytes) {
        constexpr std::size_t length_bytes = 8;
        std::vector<std::uint8_t> padded(bytes.begin(), bytes.end());
        padded.push_back(0x80);
        while (padded.size() % block_bytes != block_bytes - length_bytes) {
            padded.push_back(0);
        }
        const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
        for (int shift = 56; shift >= 0; shift -= 8) {
            padded.push_back(static_cast<std::uint8_t>(bits >> shift));
        }
        return padded;
    }

    static std::array<std::uint32_t, rounds> schedule(std::span<const std::uint8_t> block) {
        std::array<std::uint32_t, rounds> words{};
        for (std::size_t i = 0; i < block_bytes; ++i) {
            words[i / 4] = words[i / 4] << 8U | block[i];
        }
        for (std::size_t i = 16; i < rounds; ++i) {
            const std::uint32_t early = words[i - 15];
            const std::uint32_t late = words[i - 2];
            words[i] = words[i - 16] + words[i - 7] +
                       (std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3U)) +
                       (std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10U));
        }
        return words;
    }

    void add_block(std::span<const std::uint8_t> block) {
        const std::array<std::uint32_t, rounds> words = schedule(block);
        auto [a, b, c, d, e, f, g, h] = hash_;
        for (std::size_t i = 0; i < rounds; ++i) {
            const std::uint32_t chosen = (e & f) ^ (~e & g);
            const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
            const std::uint32_t first = h +
                                        (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                        chosen + constants_[i] + words[i];
            const std::uint32_t second =
                (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + majority;
            h = g;
            g = f;
            f = e;
            e = d + first;
            d = c;
            c = b;
            b = a;
            a = first + second;
        }
        const std::array<std::uint32_t, 8> worked{a, b, c, d, e, f, g, h};
        for (std::size_t i = 0; i < hash_.size(); ++i) {
            hash_[i] += worked[i];
        }
    }

    std::array<std::uint32_t, 8> hash_{};
    std::array<std::uint32_t, rounds> constants_{};
};
