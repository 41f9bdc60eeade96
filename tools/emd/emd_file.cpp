// SPDX-License-Identifier: MIT
// The header's fields in the order in which they lie. All numbers are big-endian.
#include "emd/emd_file.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "emd/bit_writer.h"
#include "tb/checksum.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr unsigned word_bits = 32;
constexpr unsigned byte_bits = 8;
constexpr std::size_t checksum_size = 4;
constexpr std::uint8_t distance_slots = 24;
constexpr std::uint32_t format_word = 0x4001F5;

// The stamp: the text that readers look for, a middle of our own, a line end, four zero bytes.
constexpr std::string_view stamp_beginning = "Compressed by DATACOMP v 1.0 ";
constexpr std::string_view stamp_middle = "for Corvane's own table files";
constexpr std::string_view stamp_ending{"\r\n\0\0\0\0", 6};
static_assert(stamp_beginning.size() + stamp_middle.size() + stamp_ending.size() == 64);

void put_text(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void put_bytes(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void put_word(Bytes& bytes, std::uint32_t word) {
    for (unsigned shift = word_bits; shift > 0; shift -= byte_bits) {
        bytes.push_back(static_cast<std::uint8_t>(word >> (shift - byte_bits)));
    }
}

/// Stored lengths, decoded length of the last block, distances. The bit writer cuts a whole block's
/// size to its width, which leaves 0: so it is meant.
Bytes sizes_and_distances(const EmdFile& file) {
    EmdBitWriter writer;
    for (const Bytes& block : file.stored) {
        writer.put(static_cast<std::uint32_t>(block.size()), file.block_shift);
    }
    writer.put(file.last_block_size, file.block_shift);
    for (const std::uint32_t distance : file.distances) {
        writer.put(distance, file.block_shift);
    }
    return writer.bytes();
}

}  // namespace

std::vector<std::uint8_t> emd_file_bytes(const EmdFile& file) {
    Bytes variable;
    for (std::size_t i = 0; i < file.stored.size(); ++i) {
        put_word(variable, file.decoded_checksums[i]);
        put_word(variable, tb_checksum(file.stored[i]));
    }
    put_bytes(variable, sizes_and_distances(file));
    put_bytes(variable, file.code);

    Bytes bytes;
    put_text(bytes, stamp_beginning);
    put_text(bytes, stamp_middle);
    put_text(bytes, stamp_ending);
    constexpr std::size_t fixed_size = 80;
    put_word(bytes, static_cast<std::uint32_t>(fixed_size + variable.size() + checksum_size));
    bytes.insert(bytes.end(), {0, 0});  // nobody reads these two
    bytes.push_back(static_cast<std::uint8_t>(file.block_shift));
    bytes.push_back(distance_slots);
    put_word(bytes, static_cast<std::uint32_t>(file.stored.size()));
    put_word(bytes, format_word);
    put_bytes(bytes, variable);
    put_word(bytes, tb_checksum(bytes));
    for (const Bytes& block : file.stored) {
        put_bytes(bytes, block);
    }
    return bytes;
}
