// SPDX-License-Identifier: MIT
// A compressed table file in memory, opened and decoded by the engine's own decoder, and made-up
// bytes to pack.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "emd/reader.h"

using PackBytes = std::vector<std::uint8_t>;

class PackedFile {
  public:
    explicit PackedFile(PackBytes bytes)
        : bytes_(std::move(bytes)),
          file_(fmemopen(bytes_.data(), bytes_.size(), "rb")),
          reader_(file_) {}
    ~PackedFile() { std::fclose(file_); }
    PackedFile(const PackedFile&) = delete;
    PackedFile& operator=(const PackedFile&) = delete;

    [[nodiscard]] bool is_open() const { return reader_.is_open(); }
    [[nodiscard]] const TbDecoder& decoder() const { return reader_.decoder(); }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

    /// All blocks, their checksums tested; empty at a fault.
    [[nodiscard]] PackBytes unpack() {
        PackBytes all;
        for (std::int32_t i = 0; is_open() && i < decoder().block_count; ++i) {
            const auto block = reader_.block(i);
            if (!block) {
                return {};
            }
            all.insert(all.end(), block->begin(), block->end());
        }
        return all;
    }

    [[nodiscard]] std::uint32_t stored_length(std::int32_t block) const {
        return decoder().block_offsets[block + 1] - decoder().block_offsets[block];
    }

    /// Whether a block is stored as it is.
    [[nodiscard]] bool is_raw(std::int32_t block) const {
        const bool is_last = block == decoder().block_count - 1;
        return static_cast<std::int32_t>(stored_length(block)) ==
               (is_last ? decoder().last_block_size : decoder().block_size);
    }

    [[nodiscard]] int raw_blocks() const {
        int raw = 0;
        for (std::int32_t i = 0; i < decoder().block_count; ++i) {
            raw += is_raw(i) ? 1 : 0;
        }
        return raw;
    }

  private:
    PackBytes bytes_;
    std::FILE* file_;
    EmdReader reader_;
};

using PackRandom = std::mt19937;

/// A number from 0 to `below` - 1, the same on every system.
inline std::size_t random_below(PackRandom& random, std::size_t below) {
    return random() % below;
}

/// Bytes from 0 to `values` - 1.
inline PackBytes random_bytes(PackRandom& random, std::size_t size, std::size_t values) {
    PackBytes bytes(size);
    std::generate(bytes.begin(), bytes.end(),
                  [&] { return static_cast<std::uint8_t>(random_below(random, values)); });
    return bytes;
}

/// A piece of `period` random bytes over and over.
inline PackBytes periodic_bytes(PackRandom& random, std::size_t size, std::size_t period) {
    PackBytes bytes = random_bytes(random, size, 256);
    for (std::size_t i = period; i < size; ++i) {
        bytes[i] = bytes[i - period];
    }
    return bytes;
}

inline PackBytes read_bytes(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
