// SPDX-License-Identifier: MIT
// Literals and matches, symbol by symbol. The loop is the cost of a probe that misses the cache:
// its state lives in registers, and all bounds are tested once a symbol.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/binary_file.h"
#include "tb/checksum.h"
#include "tb/code_table.h"
#include "tb/decoder.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

/// Places of faults in this file.
enum Place : std::int32_t {
    place_state_memory = 0x201,
    place_read_state,
    place_block_number,
    place_stored_length,
    place_stored_bytes,
    place_stored_checksum,
    place_decode_state,
    place_length,
    place_match,
    place_input_end,
    place_decoded_checksum,
};

// Symbols below are literal bytes; above, a distance slot and a class of lengths.
constexpr std::uint32_t literals = 256;
constexpr unsigned class_bits = 5;
constexpr std::uint32_t class_mask = (1U << class_bits) - 1;

constexpr std::uint32_t longest_short_class = 3;   ///< matches of 1 to 4, copied at a fixed width
constexpr std::uint32_t longest_plain_class = 14;  ///< classes up to here: the length, less 1
constexpr std::int32_t short_copy = 4;             ///< bytes

/// Length of a match whose class has further bits.
std::int32_t long_match(TbBitReader& reader, std::uint32_t length_class) {
    const unsigned extra_bits = length_class - longest_plain_class;
    return static_cast<std::int32_t>((1U << extra_bits) + reader.take_wide(extra_bits) +
                                     longest_plain_class);
}

/// Copies byte by byte in rising order: a source that overlaps the target repeats itself.
void copy_match(std::uint8_t* target, const std::uint8_t* source, std::int32_t length) {
    for (std::int32_t i = 0; i < length; ++i) {
        target[i] = source[i];
    }
}

/// The decode loop, up to `end`; 0 or a fault.
std::int32_t decode(TbBlockState& state, const TbDecoder& decoder, std::uint8_t* end) {
    TbBitReader reader = state.reader;
    std::uint8_t* write = state.write;
    const std::uint8_t* source = state.match_source;
    std::int32_t pending = 0;
    std::int32_t fault = 0;
    while (write < end) {
        const std::uint32_t symbol =
            tb_decode_symbol<tb_root_bits>(reader, decoder.decode_table.data());
        if (symbol < literals) {
            *write++ = static_cast<std::uint8_t>(symbol);
            continue;
        }
        const std::uint32_t match = symbol - literals;
        const std::uint32_t length_class = match & class_mask;
        const std::ptrdiff_t distance = decoder.distances[match >> class_bits];
        if (distance < state.output - write) {
            fault = tb_fault(tb_broken_file, place_match);
            break;
        }
        source = write + distance;
        std::int32_t length = static_cast<std::int32_t>(length_class) + 1;
        if (length_class <= longest_short_class) {
            copy_match(write, source, short_copy);  // the slack behind the block takes the surplus
        } else {
            if (length_class > longest_plain_class) {
                length = long_match(reader, length_class);
            }
            copy_match(write, source,
                       static_cast<std::int32_t>(std::min<std::ptrdiff_t>(length, end - write)));
        }
        if (length > end - write) {
            pending = length - static_cast<std::int32_t>(end - write);
            length -= pending;
        }
        write += length;
        source += length;
    }
    if (fault == 0 && reader.overran()) {
        fault = tb_fault(tb_broken_file, place_input_end);
    }
    state.reader = reader;
    state.write = write;
    state.match_source = source;
    state.pending = pending;
    return fault;
}

/// The rest of a match that an earlier call cut, as far as `end`.
void finish_match(TbBlockState& state, const std::uint8_t* end) {
    const std::int32_t length =
        std::min(state.pending, static_cast<std::int32_t>(end - state.write));
    copy_match(state.write, state.match_source, length);
    state.write += length;
    state.match_source += length;
    state.pending -= length;
}

std::uint32_t decoded_checksum_of(const TbDecoder& decoder, std::int32_t block) {
    return decoder.block_crc[std::size_t{2} * static_cast<std::size_t>(block)];
}

std::uint32_t stored_checksum_of(const TbDecoder& decoder, std::int32_t block) {
    return decoder.block_crc[std::size_t{2} * static_cast<std::size_t>(block) + 1];
}

std::uint32_t checksum_of(const std::uint8_t* bytes, std::int32_t length) {
    return tb_checksum({bytes, static_cast<std::size_t>(length)});
}

}  // namespace

TbBlockState* tb_decode_block = nullptr;

std::int32_t TbNewBlockState(TbBlockState** out, std::int32_t size) {
    void* const memory = std::calloc(1, sizeof(TbBlockState) + static_cast<std::size_t>(size));
    if (memory == nullptr) {
        return tb_fault(tb_no_memory, place_state_memory);
    }
    auto* const state = static_cast<TbBlockState*>(memory);
    state->input = reinterpret_cast<std::uint8_t*>(state + 1);
    state->input_size = size;
    TbInitBlockState(*state, nullptr);
    tb_decoder_bytes += size;
    *out = state;
    return 0;
}

void TbFreeBlockState(TbBlockState* state) {
    std::free(state);
}

void TbInitBlockState(TbBlockState& state, std::uint8_t* buffer) {
    std::uint8_t* const input = state.input;
    const std::int32_t input_size = state.input_size;
    state = {};
    state.input = input;
    state.input_size = input_size;
    state.output = buffer;
    state.write = buffer;
    state.block_read = -1;
    state.magic = TbBlockState::right_magic;
}

std::int32_t TbReadBlock(TbBlockState& state, const TbDecoder& decoder, std::FILE* file,
                         std::int32_t block) {
    if (state.magic != TbBlockState::right_magic || decoder.magic != TbDecoder::right_magic) {
        return tb_fault(tb_wrong_argument, place_read_state);
    }
    if (block < 0 || block >= decoder.block_count) {
        return tb_fault(tb_wrong_argument, place_block_number);
    }
    const std::uint32_t* const offset = decoder.block_offsets + block;
    const std::uint32_t stored_length = offset[1] - offset[0];
    if (stored_length > static_cast<std::uint32_t>(state.input_size)) {
        return tb_fault(tb_wrong_argument, place_stored_length);
    }
    state.block = block;
    state.block_read = -1;  // at rest until all bytes are there
    state.decoded_length =
        block == decoder.block_count - 1 ? decoder.last_block_size : decoder.block_size;
    state.size = state.decoded_length;
    state.stored_length = static_cast<std::int32_t>(stored_length);
    if (!seek_binary(file, offset[0]) ||
        std::fread(state.input, 1, stored_length, file) != stored_length) {
        return tb_fault(tb_read_fault, place_stored_bytes);
    }
    if (decoder.has_crc != 0 &&
        checksum_of(state.input, state.stored_length) != stored_checksum_of(decoder, block)) {
        return tb_fault(tb_broken_file, place_stored_checksum);
    }
    state.data = state.output;
    state.write = state.output;
    state.match_source = state.output;
    state.available = 0;
    state.pending = 0;
    state.reader = TbBitReader({state.input, stored_length});
    state.block_read = block;
    if (state.stored_length == state.decoded_length) {
        std::memcpy(state.output, state.input, stored_length);
        state.available = state.stored_length;
        state.write += stored_length;
    }
    return 0;
}

std::int32_t TbDecodeBlock(TbBlockState& state, const TbDecoder& decoder, std::int32_t length,
                           std::uint32_t keep_crc) {
    if (state.magic != TbBlockState::right_magic || state.block_read < 0) {
        return tb_fault(tb_wrong_argument, place_decode_state);
    }
    if (length < 1 || length > state.decoded_length) {
        return tb_fault(tb_wrong_argument, place_length);
    }
    if (state.available < length) {
        std::uint8_t* const end = state.output + length;
        finish_match(state, end);
        if (state.pending == 0) {
            if (const std::int32_t fault = decode(state, decoder, end)) {
                state.block_read = -1;  // nothing goes on behind a fault
                return fault;
            }
        }
        state.available = length;
    }
    if (keep_crc != 0 && decoder.has_crc != 0 && state.available == state.decoded_length &&
        checksum_of(state.output, state.decoded_length) !=
            decoded_checksum_of(decoder, state.block_read)) {
        return tb_fault(tb_broken_file, place_decoded_checksum);
    }
    return 0;
}
