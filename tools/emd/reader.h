// SPDX-License-Identifier: MIT
// A compressed table file decoded by the engine's own decoder, with all checksums tested.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "tb/decoder.h"

class EmdReader {
  public:
    /// Reads the header of an open file, which stays the caller's.
    explicit EmdReader(std::FILE* file);

    /// Whether the header could be read. The rest is for such readers alone.
    [[nodiscard]] bool is_open() const { return state_ != nullptr; }

    [[nodiscard]] const TbDecoder& decoder() const { return *decoder_; }

    /// Block 0 to decoder().block_count - 1, good until the next call; empty if it is broken.
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> block(std::int32_t number);

  private:
    struct FreeDecoder {
        void operator()(TbDecoder* decoder) const { TbFreeDecoder(decoder); }
    };
    struct FreeState {
        void operator()(TbBlockState* state) const { TbFreeBlockState(state); }
    };

    std::FILE* file_;
    std::unique_ptr<TbDecoder, FreeDecoder> decoder_;
    std::unique_ptr<TbBlockState, FreeState> state_;
    std::vector<std::uint8_t> output_;
};
