// SPDX-License-Identifier: MIT
// The checksum of compressed table files.
#pragma once

#include <cstdint>
#include <span>

/// Checksum of some bytes, starting from 0. Not the common CRC-32, though it has its polynomial.
[[nodiscard]] std::uint32_t tb_checksum(std::span<const std::uint8_t> bytes);
