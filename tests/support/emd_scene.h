// SPDX-License-Identifier: MIT
// Bytes as an opened file, and blocks of compressed files decoded into a room with guards: what
// the tests of the decoder share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tb/decoder.h"

using Bytes = std::vector<std::uint8_t>;

[[nodiscard]] inline Bytes bytes_of_file(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    const std::vector<char> text{std::istreambuf_iterator<char>(file), {}};
    return {text.begin(), text.end()};
}

/// A file without a name that holds some bytes.
class OpenedBytes {
  public:
    explicit OpenedBytes(std::span<const std::uint8_t> bytes) : file_(std::tmpfile()) {
        if (file_ == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) {
            throw std::runtime_error("no temporary file");
        }
        std::rewind(file_);
    }
    ~OpenedBytes() { std::fclose(file_); }
    OpenedBytes(const OpenedBytes&) = delete;
    OpenedBytes& operator=(const OpenedBytes&) = delete;

    [[nodiscard]] std::FILE* get() const { return file_; }

  private:
    std::FILE* file_;
};

struct FreeDecoder {
    void operator()(TbDecoder* decoder) const { TbFreeDecoder(decoder); }
};
using DecoderPointer = std::unique_ptr<TbDecoder, FreeDecoder>;

/// The decoder of a header that must be sound.
[[nodiscard]] inline DecoderPointer sound_decoder(std::span<const std::uint8_t> bytes,
                                                  std::uint32_t keep_crc) {
    const OpenedBytes file(bytes);
    TbDecoder* decoder = nullptr;
    if (const std::int32_t fault = TbReadHeader(&decoder, file.get(), keep_crc)) {
        throw std::runtime_error("fault " + std::to_string(fault) + " in a sound header");
    }
    return DecoderPointer(decoder);
}

/// The room for a block, with its slack, between bytes that nobody may touch.
class GuardedRoom {
  public:
    static constexpr std::uint8_t filler = 0xa5;

    explicit GuardedRoom(std::size_t size)
        : memory_(guard + size + tb_output_slack + guard, filler) {}

    [[nodiscard]] std::uint8_t* data() { return memory_.data() + guard; }
    [[nodiscard]] Bytes first(std::size_t count) { return {data(), data() + count}; }
    [[nodiscard]] bool is_intact() const {
        const auto untouched = [](std::uint8_t byte) { return byte == filler; };
        return std::all_of(memory_.begin(), memory_.begin() + guard, untouched) &&
               std::all_of(memory_.end() - guard, memory_.end(), untouched);
    }

  private:
    static constexpr std::size_t guard = 64;
    Bytes memory_;
};

/// A block state with room for stored bytes.
class OwnState {
  public:
    explicit OwnState(std::int32_t input_size) {
        if (TbNewBlockState(&state_, input_size) != 0) {
            throw std::runtime_error("no block state");
        }
    }
    ~OwnState() { TbFreeBlockState(state_); }
    OwnState(const OwnState&) = delete;
    OwnState& operator=(const OwnState&) = delete;

    [[nodiscard]] TbBlockState& operator*() const { return *state_; }
    [[nodiscard]] TbBlockState* operator->() const { return state_; }

  private:
    TbBlockState* state_ = nullptr;
};

/// What decoding a block gave.
struct DecodedBlock {
    std::int32_t read_fault = 0;
    std::int32_t fault = 0;  ///< of decoding; 0 if the block could not be read
    Bytes bytes;             ///< as many as were asked for last; empty at a fault
    std::int32_t pending = 0;
    bool guards_intact = false;
};

/// Reads a block and decodes it to each of the lengths in turn, to its whole one if there is none.
[[nodiscard]] inline DecodedBlock decode_block(const TbDecoder& decoder,
                                               std::span<const std::uint8_t> file_bytes,
                                               std::int32_t block, std::uint32_t keep_crc,
                                               std::initializer_list<std::int32_t> lengths = {}) {
    const OpenedBytes file(file_bytes);
    const OwnState state(decoder.max_stored);
    GuardedRoom room(static_cast<std::size_t>(decoder.block_size));
    TbInitBlockState(*state, room.data());
    DecodedBlock result;
    result.read_fault = TbReadBlock(*state, decoder, file.get(), block);
    if (result.read_fault == 0) {
        std::vector<std::int32_t> steps(lengths);
        if (steps.empty()) {
            steps.push_back(state->decoded_length);
        }
        for (const std::int32_t length : steps) {
            result.fault = TbDecodeBlock(*state, decoder, length, keep_crc);
            result.bytes =
                result.fault == 0 ? room.first(static_cast<std::size_t>(length)) : Bytes{};
        }
    }
    result.pending = state->pending;
    result.guards_intact = room.is_intact();
    return result;
}
