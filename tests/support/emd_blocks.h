// SPDX-License-Identifier: MIT
// Compressed files made by hand, for tests that say each symbol of a block themselves: under a code
// whose words are the symbols as they are, ten bits each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "emd/bit_writer.h"
#include "emd/code_writer.h"
#include "emd/emd_file.h"
#include "support/emd_scene.h"
#include "tb/checksum.h"

inline constexpr unsigned flat_word_bits = 10;

[[nodiscard]] inline Bytes flat_lengths() {
    return Bytes(tb_symbols, flat_word_bits);
}

/// Its description, which takes long to find.
[[nodiscard]] inline const Bytes& flat_code() {
    static const Bytes code = emd_code_description(flat_lengths());
    return code;
}

/// The symbols of a block, one after the other.
class FlatBlock {
  public:
    FlatBlock& literals(std::string_view text) {
        for (const char letter : text) {
            writer_.put(static_cast<std::uint8_t>(letter), flat_word_bits);
        }
        return *this;
    }

    /// A match of a class of lengths at the distance of a slot, with what its further bits are.
    FlatBlock& match(std::uint32_t slot, std::uint32_t length_class, std::uint32_t further = 0) {
        writer_.put(256 + slot * 32 + length_class, flat_word_bits);
        writer_.put(further, length_class > 14 ? length_class - 14 : 0);
        return *this;
    }

    [[nodiscard]] Bytes bytes() const { return writer_.bytes(); }
    [[nodiscard]] std::size_t bit_count() const { return writer_.bit_count(); }

  private:
    EmdBitWriter writer_;
};

/// Distances 1 to 24 in the slots 0 to 23.
[[nodiscard]] inline std::array<std::uint32_t, 24> rising_distances() {
    std::array<std::uint32_t, 24> distances{};
    std::iota(distances.begin(), distances.end(), 1U);
    return distances;
}

/// A file of blocks that are stored so, under the flat code with rising distances. The checksums of
/// the decoded blocks are 0 until they are told.
[[nodiscard]] inline EmdFile flat_file(unsigned block_shift, std::vector<Bytes> stored,
                                       std::uint32_t last_block_size) {
    EmdFile file;
    file.block_shift = block_shift;
    file.distances = rising_distances();
    file.decoded_checksums.assign(stored.size(), 0);
    file.stored = std::move(stored);
    file.last_block_size = last_block_size;
    file.code = flat_code();
    return file;
}

/// Length of a file's header, as it tells it itself.
[[nodiscard]] inline std::uint32_t header_length(const Bytes& file) {
    std::uint32_t length = 0;
    for (std::size_t at = 64; at < 68; ++at) {
        length = length << 8U | file[at];
    }
    return length;
}

/// Decodes the only block of a file, of `length` bytes and without checksums, in steps if there
/// are any.
[[nodiscard]] inline DecodedBlock decode_stored(const Bytes& stored, std::uint32_t length,
                                                std::initializer_list<std::int32_t> steps = {}) {
    const Bytes bytes = emd_file_bytes(flat_file(16, {stored}, length));
    return decode_block(*sound_decoder(bytes, 0), bytes, 0, 0, steps);
}

/// The same of symbols. As many stored bytes as decoded ones would be a raw block: there, one more
/// is put behind.
[[nodiscard]] inline DecodedBlock decode_flat(const FlatBlock& block, std::uint32_t length,
                                              std::initializer_list<std::int32_t> steps = {}) {
    Bytes stored = block.bytes();
    if (stored.size() == length) {
        stored.push_back(0);
    }
    return decode_stored(stored, length, steps);
}

/// Bytes as text, to compare with what a test says.
[[nodiscard]] inline std::string text_of(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

[[nodiscard]] inline Bytes bytes_of(std::string_view text) {
    return {text.begin(), text.end()};
}
