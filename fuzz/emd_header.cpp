// SPDX-License-Identifier: MIT
// Any bytes as a compressed table file: the header, and where it is fine all blocks. Two bits of a
// byte that no reader looks at tell whether checksums are kept, and whether the header's own one
// stays as it is; else it is put right, since nearly every change of a header would end there.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tb/checksum.h"
#include "tb/decoder.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

constexpr std::size_t header_length_at = 64;
constexpr std::size_t options_at = 68;
constexpr std::uint8_t option_keep_crc = 1;
constexpr std::uint8_t option_own_checksum = 2;

constexpr std::int32_t most_blocks = 64;  // of one file, so that an input does not take seconds

void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::uint8_t options_of(const std::vector<std::uint8_t>& bytes) {
    return options_at < bytes.size() ? bytes[options_at] : 0;
}

/// Writes the checksum behind the header, if a header as long as it tells is there.
void put_checksum_right(std::vector<std::uint8_t>& bytes) {
    constexpr std::size_t checksum_size = 4;
    if (bytes.size() < header_length_at + checksum_size) {
        return;
    }
    std::size_t length = 0;
    for (std::size_t i = 0; i < checksum_size; ++i) {
        length = length << 8U | bytes[header_length_at + i];
    }
    if (length < header_length_at + 2 * checksum_size || length > bytes.size()) {
        return;
    }
    const std::uint32_t checksum = tb_checksum({bytes.data(), length - checksum_size});
    for (std::size_t i = 0; i < checksum_size; ++i) {
        bytes[length - 1 - i] = static_cast<std::uint8_t>(checksum >> (8 * i));
    }
}

void demand_fault(std::int32_t fault) {
    const std::int32_t kind = tb_fault_kind(fault);
    demand(kind == tb_read_fault || kind == tb_no_memory || kind == tb_broken_file);
}

/// A header that was read well tells blocks that lie one behind the other.
void demand_sound(const TbDecoder& decoder) {
    demand(decoder.block_count > 0);
    demand(decoder.block_size == 1 << decoder.block_shift);
    demand(decoder.last_block_size > 0 && decoder.last_block_size <= decoder.block_size);
    for (std::int32_t i = 0; i < decoder.block_count; ++i) {
        const std::uint32_t* const offset = decoder.block_offsets + i;
        demand(offset[0] < offset[1]);
        demand(offset[1] - offset[0] <= static_cast<std::uint32_t>(decoder.block_size));
    }
    for (const std::int32_t distance : decoder.distances) {
        demand(distance <= 0 && distance > -decoder.block_size);
    }
}

/// The room for a block ends where its slack does: the sanitizer sees what goes beyond.
void decode_block(TbBlockState& state, const TbDecoder& decoder, std::FILE* file,
                  std::int32_t block) {
    std::vector<std::uint8_t> output(
        static_cast<std::size_t>(decoder.block_size + tb_output_slack));
    TbInitBlockState(state, output.data());
    if (const std::int32_t fault = TbReadBlock(state, decoder, file, block)) {
        demand_fault(fault);
        return;
    }
    if (const std::int32_t fault =
            TbDecodeBlock(state, decoder, state.decoded_length, decoder.has_crc)) {
        demand_fault(fault);
        return;
    }
    demand(state.available == state.decoded_length && state.size == state.decoded_length);
    demand(state.write == output.data() + state.decoded_length);
}

void decode_all(const TbDecoder& decoder, std::FILE* file) {
    TbBlockState* state = nullptr;
    demand(TbNewBlockState(&state, decoder.max_stored) == 0);
    for (std::int32_t i = 0; i < std::min(decoder.block_count, most_blocks); ++i) {
        decode_block(*state, decoder, file, i);
    }
    TbFreeBlockState(state);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> bytes(data, data + size);
    const std::uint8_t options = options_of(bytes);
    if ((options & option_own_checksum) == 0) {
        put_checksum_right(bytes);
    }
    std::FILE* const file = bytes.empty() ? nullptr : fmemopen(bytes.data(), bytes.size(), "rb");
    if (file == nullptr) {
        return 0;
    }
    TbDecoder* decoder = nullptr;
    tb_decoder_bytes = 0;
    const std::int32_t fault = TbReadHeader(&decoder, file, options & option_keep_crc);
    if (fault != 0) {
        demand_fault(fault);
        demand(decoder == nullptr && tb_decoder_bytes == 0);
    } else {
        demand_sound(*decoder);
        decode_all(*decoder, file);
        TbFreeDecoder(decoder);
    }
    std::fclose(file);
    return 0;
}
