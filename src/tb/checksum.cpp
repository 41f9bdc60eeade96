// SPDX-License-Identifier: MIT
// One table look-up a byte.
#include "tb/checksum.h"

#include <array>

namespace {

constexpr std::uint32_t polynomial = 0xEDB88320;

/// What each value of the low byte adds. Intended(tb-checksum-table): the polynomial goes in where
/// the bit that is shifted out is 0; the common CRC-32 does so where it is 1. The files are written
/// so.
constexpr std::array<std::uint32_t, 256> make_checksum_table() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1) == 0 ? (value >> 1) ^ polynomial : value >> 1;
        }
        table[i] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> checksum_table = make_checksum_table();

}  // namespace

std::uint32_t tb_checksum(std::span<const std::uint8_t> bytes) {
    constexpr std::uint32_t low_byte = 0xff;
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = checksum_table[(value & low_byte) ^ byte] ^ (value >> 8);
    }
    return value;
}
