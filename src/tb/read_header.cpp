// SPDX-License-Identifier: MIT
// The header is read whole before anything of it is believed: its length and checksum first, then
// the fields of variable length.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "platform/binary_file.h"
#include "tb/checksum.h"
#include "tb/code_table.h"
#include "tb/decoder.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

// The fixed part, bytes from the start of the file. All numbers are big-endian.
constexpr std::size_t fixed_size = 80;
constexpr std::size_t stamp_size = 64;
constexpr std::size_t header_length_at = 64;
constexpr std::size_t block_shift_at = 70;
constexpr std::size_t distance_slots_at = 71;
constexpr std::size_t block_count_at = 72;
constexpr std::size_t format_at = 76;
constexpr std::size_t checksum_size = 4;

constexpr std::uint32_t shortest_header = 84;
constexpr std::uint32_t largest_shift = 16;
constexpr std::uint32_t right_format = 0x4001F5;

// The stamp: a text that is known but for its middle, a line end, four zero bytes.
constexpr std::string_view stamp_beginning = "Compressed by DATACOMP v 1.0 ";
constexpr std::size_t stamp_ending_at = 58;
constexpr std::string_view stamp_ending{"\r\n\0\0\0\0", 6};

/// Places of faults in this file.
enum Place : std::int32_t {
    place_fixed_part = 0x101,
    place_stamp,
    place_block_shift,
    place_header_length,
    place_distance_slots,
    place_format,
    place_header_memory,
    place_header_rest,
    place_checksum,
    place_block_count,
    place_decoder_memory,
    place_code,
    place_offsets,
};

std::uint32_t big_endian(Bytes bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) << 24U |
           static_cast<std::uint32_t>(bytes[at + 1]) << 16U |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8U | bytes[at + 3];
}

bool has_stamp(Bytes header) {
    const std::string_view stamp(reinterpret_cast<const char*>(header.data()), stamp_size);
    return stamp.starts_with(stamp_beginning) && stamp.substr(stamp_ending_at) == stamp_ending;
}

struct FixedFields {
    std::uint32_t header_length = 0;
    std::uint32_t block_shift = 0;
    std::uint32_t block_count = 0;
};

/// The fields of the fixed part; 0 or a fault.
std::int32_t read_fixed_part(Bytes header, FixedFields& out) {
    if (!has_stamp(header)) {
        return tb_fault(tb_read_fault, place_stamp);
    }
    const FixedFields fields{big_endian(header, header_length_at), header[block_shift_at],
                             big_endian(header, block_count_at)};
    if (fields.block_shift > largest_shift) {
        return tb_fault(tb_broken_file, place_block_shift);
    }
    if (fields.header_length < shortest_header) {
        return tb_fault(tb_broken_file, place_header_length);
    }
    if (header[distance_slots_at] != tb_distance_slots) {
        return tb_fault(tb_broken_file, place_distance_slots);
    }
    if (big_endian(header, format_at) != right_format) {
        return tb_fault(tb_broken_file, place_format);
    }
    out = fields;
    return 0;
}

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

/// The whole header; empty if there is no memory for it or the file is shorter, which is asked
/// first: a damaged length may be gigabytes.
using HeaderMemory = std::unique_ptr<std::uint8_t, FreeMemory>;
std::int32_t read_whole_header(std::FILE* file, std::uint32_t length, Bytes fixed_part,
                               HeaderMemory& out) {
    // Intended(tb-short-header): a file that ends inside its header is told as lack of memory.
    const std::int32_t too_short = tb_fault(tb_no_memory, place_header_rest);
    const std::optional<std::uint64_t> file_length = length_of_binary(file);
    if (!file_length || *file_length < length) {
        return too_short;
    }
    HeaderMemory header(static_cast<std::uint8_t*>(std::malloc(length)));
    if (header == nullptr) {
        return tb_fault(tb_no_memory, place_header_memory);
    }
    std::memcpy(header.get(), fixed_part.data(), fixed_size);
    const std::size_t rest = length - fixed_size;
    if (!seek_binary(file, fixed_size) ||
        std::fread(header.get() + fixed_size, 1, rest, file) != rest) {
        return too_short;
    }
    out = std::move(header);
    return 0;
}

/// Where the parts of variable length lie, bytes from the start of the header.
struct VariableParts {
    std::size_t sizes_at;
    std::size_t code_at;
    std::size_t end;
};

/// Empty if they do not fit in front of the checksum, or there is no block.
std::optional<VariableParts> find_parts(const FixedFields& fields) {
    constexpr std::uint64_t checksums_a_block = 2 * checksum_size;
    constexpr std::uint64_t byte_bits = 8;
    const std::uint64_t blocks = fields.block_count;
    const std::uint64_t sizes_at = fixed_size + checksums_a_block * blocks;
    const std::uint64_t size_bits = (blocks + 1 + tb_distance_slots) * fields.block_shift;
    const std::uint64_t code_at = sizes_at + (size_bits + byte_bits - 1) / byte_bits;
    const std::uint64_t end = fields.header_length - checksum_size;
    if (blocks == 0 || code_at > end) {
        return std::nullopt;
    }
    return VariableParts{sizes_at, code_at, end};
}

using DecoderMemory = std::unique_ptr<TbDecoder, FreeMemory>;

std::size_t decoder_bytes(std::uint32_t blocks, std::uint32_t keep_crc) {
    const std::size_t words = keep_crc != 0 ? std::size_t{3} * blocks + 1 : std::size_t{1} + blocks;
    return sizeof(TbDecoder) + words * sizeof(std::uint32_t);
}

/// An empty decoder with its arrays; null without memory.
DecoderMemory new_decoder(const FixedFields& fields, std::uint32_t keep_crc) {
    DecoderMemory decoder(
        static_cast<TbDecoder*>(std::calloc(1, decoder_bytes(fields.block_count, keep_crc))));
    if (decoder != nullptr) {
        auto* const words = reinterpret_cast<std::uint32_t*>(decoder.get() + 1);
        const std::size_t crc_words = keep_crc != 0 ? std::size_t{2} * fields.block_count : 0;
        decoder->block_crc = words;
        decoder->block_offsets = words + crc_words;
        decoder->block_shift = static_cast<std::int32_t>(fields.block_shift);
        decoder->block_size = 1 << fields.block_shift;
        decoder->block_count = static_cast<std::int32_t>(fields.block_count);
        decoder->has_crc = keep_crc != 0 ? 1 : 0;
    }
    return decoder;
}

void read_checksums(Bytes header, TbDecoder& decoder) {
    const std::size_t words = std::size_t{2} * static_cast<std::size_t>(decoder.block_count);
    for (std::size_t i = 0; i < words; ++i) {
        decoder.block_crc[i] = big_endian(header, fixed_size + i * checksum_size);
    }
}

/// Stored lengths of the blocks, decoded length of the last one, distances.
void read_sizes(Bytes part, TbDecoder& decoder) {
    constexpr std::uint32_t input_margin = 32;
    TbBitReader reader(part);
    const auto width = static_cast<unsigned>(decoder.block_shift);
    const std::span<std::uint32_t> sizes(decoder.block_offsets,
                                         static_cast<std::size_t>(decoder.block_count) + 1);
    std::uint32_t largest = 0;
    for (std::uint32_t& size : sizes) {
        const std::uint32_t value = reader.take(width);
        size = value == 0 ? static_cast<std::uint32_t>(decoder.block_size) : value;
        largest = std::max(largest, size);
    }
    decoder.max_stored = static_cast<std::int32_t>(largest + input_margin);
    for (std::int32_t& distance : decoder.distances) {
        distance = -static_cast<std::int32_t>(reader.take(width));
    }
}

bool read_code(Bytes part, TbDecoder& decoder) {
    TbBitReader reader(part);
    std::array<std::uint8_t, tb_symbols> lengths{};
    return tb_read_code_lengths(reader, lengths) &&
           tb_build_code_table(lengths, tb_root_bits, decoder.decode_table);
}

/// Turns lengths into places in the file. False if they lie beyond what 32 bits can tell.
bool sum_up_offsets(std::uint32_t header_length, TbDecoder& decoder) {
    const auto blocks = static_cast<std::size_t>(decoder.block_count);
    decoder.last_block_size = static_cast<std::int32_t>(decoder.block_offsets[blocks]);
    decoder.block_offsets[blocks] = 0;
    std::uint64_t place = header_length;
    for (std::size_t i = 0; i <= blocks; ++i) {
        const std::uint32_t length = decoder.block_offsets[i];
        decoder.block_offsets[i] = static_cast<std::uint32_t>(place);
        place += length;
    }
    return place <= UINT32_MAX;
}

/// A decoder from a header whose checksum is right; 0 or a fault.
std::int32_t make_decoder(Bytes header, const FixedFields& fields, std::uint32_t keep_crc,
                          DecoderMemory& out) {
    const std::optional<VariableParts> parts = find_parts(fields);
    if (!parts) {
        return tb_fault(tb_broken_file, place_block_count);
    }
    DecoderMemory decoder = new_decoder(fields, keep_crc);
    if (decoder == nullptr) {
        return tb_fault(tb_no_memory, place_decoder_memory);
    }
    if (keep_crc != 0) {
        read_checksums(header, *decoder);
    }
    read_sizes(header.subspan(parts->sizes_at, parts->code_at - parts->sizes_at), *decoder);
    if (!read_code(header.subspan(parts->code_at, parts->end - parts->code_at), *decoder)) {
        return tb_fault(tb_broken_file, place_code);
    }
    if (!sum_up_offsets(fields.header_length, *decoder)) {
        return tb_fault(tb_broken_file, place_offsets);
    }
    out = std::move(decoder);
    return 0;
}

}  // namespace

std::int32_t TbReadHeader(TbDecoder** out, std::FILE* file, std::uint32_t keep_crc) {
    std::array<std::uint8_t, fixed_size> fixed_part{};
    if (!seek_binary(file, 0) ||
        std::fread(fixed_part.data(), 1, fixed_part.size(), file) != fixed_part.size()) {
        return tb_fault(tb_read_fault, place_fixed_part);
    }
    FixedFields fields;
    if (const std::int32_t fault = read_fixed_part(fixed_part, fields)) {
        return fault;
    }
    HeaderMemory memory;
    if (const std::int32_t fault =
            read_whole_header(file, fields.header_length, fixed_part, memory)) {
        return fault;
    }
    const Bytes header(memory.get(), fields.header_length);
    const std::size_t checksum_at = header.size() - checksum_size;
    if (tb_checksum(header.first(checksum_at)) != big_endian(header, checksum_at)) {
        return tb_fault(tb_broken_file, place_checksum);
    }
    DecoderMemory decoder;
    if (const std::int32_t fault = make_decoder(header, fields, keep_crc, decoder)) {
        return fault;
    }
    decoder->magic = TbDecoder::right_magic;
    tb_decoder_bytes += static_cast<std::int32_t>(decoder_bytes(fields.block_count, keep_crc));
    *out = decoder.release();
    return 0;
}

void TbFreeDecoder(TbDecoder* decoder) {
    std::free(decoder);
}
