// SPDX-License-Identifier: MIT
// Compressed table files: a header, read once, and blocks that are decoded one by one, each without
// the others. Matches of earlier bytes and literals stand in one canonical code of 1024 symbols,
// with 24 match distances that hold for the whole file. Nothing here knows of chess.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "tb/bit_reader.h"

inline constexpr unsigned tb_root_bits = 13;
inline constexpr std::size_t tb_symbols = 1024;
inline constexpr std::size_t tb_distance_slots = 24;

/// Bytes behind a block's room that decoding may write: short matches are copied at a fixed width.
inline constexpr std::int32_t tb_output_slack = 36;

/// What the header of one file tells. The arrays lie behind it in the same allocation.
struct TbDecoder {
    static constexpr std::uint32_t right_magic = 0x5ABC947F;
    static constexpr std::size_t table_size = (std::size_t{1} << tb_root_bits) + 2 * tb_symbols;

    std::array<std::int16_t, table_size> decode_table;      ///< see tb/code_table
    std::array<std::int32_t, tb_distance_slots> distances;  ///< bytes, negated
    std::uint32_t* block_crc;      ///< of each block decoded and stored; else `block_offsets`
    std::uint32_t* block_offsets;  ///< where each block begins, and the end of the last one
    std::int32_t block_shift;      ///< log2 of the block size
    std::int32_t block_size;       ///< bytes
    std::int32_t last_block_size;  ///< bytes of the last block, decoded
    std::int32_t block_count;
    std::int32_t max_stored;  ///< largest stored length plus 32, bytes
    std::uint32_t has_crc;    ///< 1: the checksums are kept
    std::uint32_t reserved;
    std::uint32_t magic;
};

/// One block while it is being decoded.
struct TbBlockState {
    static constexpr std::uint32_t right_magic = 0x79A3F29D;

    std::uint8_t* data;           ///< the decoded block
    std::int32_t available;       ///< bytes decoded so far
    std::int32_t size;            ///< bytes valid after decoding
    std::int32_t block;           ///< its number
    std::uint8_t* output;         ///< room for a block and `tb_output_slack`
    std::int32_t decoded_length;  ///< bytes
    std::uint8_t* input;          ///< the stored bytes
    std::int32_t input_size;      ///< room for them, bytes
    std::int32_t stored_length;   ///< bytes
    std::uint8_t* write;          ///< where the next byte goes
    const std::uint8_t* match_source;
    std::int32_t pending;     ///< rest of a match that was cut at the end of the output, bytes
    TbBitReader reader;       ///< stands behind the last symbol
    std::int32_t block_read;  ///< number of the block in work, -1 at rest
    std::uint32_t magic;
};

/// Reads the header of a file from its start into a new decoder. Gives 0, or a fault with `out`
/// untouched and all memory given back. `keep_crc`: 1 to keep the checksums of the blocks.
[[nodiscard]] std::int32_t TbReadHeader(TbDecoder** out, std::FILE* file, std::uint32_t keep_crc);

/// Gives a decoder back; null is passed over.
void TbFreeDecoder(TbDecoder* decoder);

/// A new state with room for `size` stored bytes, which count in `tb_decoder_bytes`. Gives 0, or a
/// fault with `out` untouched.
[[nodiscard]] std::int32_t TbNewBlockState(TbBlockState** out, std::int32_t size);

/// Gives a state back; null is passed over.
void TbFreeBlockState(TbBlockState* state);

/// Makes a state ready for a block that goes to `buffer`, which has room for it and for
/// `tb_output_slack` bytes more.
void TbInitBlockState(TbBlockState& state, std::uint8_t* buffer);

/// Reads the stored bytes of a block, 0 to block_count - 1. A block stored raw is then decoded
/// already. Gives 0 or a fault.
[[nodiscard]] std::int32_t TbReadBlock(TbBlockState& state, const TbDecoder& decoder,
                                       std::FILE* file, std::int32_t block);

/// Decodes the block that was read, up to `length` bytes, 1 to `decoded_length`; a later call with
/// a larger length goes on. A whole block is tested by its checksum if `keep_crc` is not 0 and the
/// decoder has it. Gives 0 or a fault; no bytes make it leave the room for the block.
[[nodiscard]] std::int32_t TbDecodeBlock(TbBlockState& state, const TbDecoder& decoder,
                                         std::int32_t length, std::uint32_t keep_crc);

/// The one state that the engine decodes with; null while no compressed file is registered.
extern TbBlockState* tb_decode_block;
