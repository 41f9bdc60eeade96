// SPDX-License-Identifier: MIT
// The block cache with memory of the test's own, for the life of an object.
#pragma once

#include <cstdint>
#include <vector>

#include "tb/block_cache.h"

class CacheBuffer {
  public:
    /// The cache gets `size` bytes; all are `filler` before.
    explicit CacheBuffer(std::uint32_t size, std::uint8_t filler = 0)
        : memory_(size / sizeof(std::uint64_t) + 1, filler * every_byte),
          result_(TbCacheInit(memory_.data(), size)) {}
    ~CacheBuffer() { TbCacheInit(nullptr, 0); }
    CacheBuffer(const CacheBuffer&) = delete;
    CacheBuffer& operator=(const CacheBuffer&) = delete;

    /// What TbCacheInit gave.
    [[nodiscard]] std::int32_t result() const { return result_; }

    [[nodiscard]] const void* memory() const { return memory_.data(); }

  private:
    static constexpr std::uint64_t every_byte = 0x0101010101010101;
    std::vector<std::uint64_t> memory_;  // aligned for an entry
    std::int32_t result_;
};
