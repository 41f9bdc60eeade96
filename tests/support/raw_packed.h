// SPDX-License-Identifier: MIT
// Compressed files whose blocks are stored as they are, so that a test knows where each byte lies.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "emd/emd_file.h"
#include "support/temporary_folder.h"
#include "tb/checksum.h"

/// A compressed file that decodes to some bytes, at least one.
[[nodiscard]] inline EmdFile raw_packed(std::string_view bytes, unsigned block_shift) {
    constexpr std::uint8_t no_code = 0x80;  // one bit: all lengths are 0
    EmdFile file;
    file.block_shift = block_shift;
    file.code = {no_code};
    const std::size_t block_size = std::size_t{1} << block_shift;
    for (std::size_t at = 0; at < bytes.size(); at += block_size) {
        const std::string_view block = bytes.substr(at, block_size);
        file.stored.emplace_back(block.begin(), block.end());
        file.decoded_checksums.push_back(tb_checksum(file.stored.back()));
        file.last_block_size = static_cast<std::uint32_t>(block.size());
    }
    return file;
}

/// Writes it into the working directory.
inline void put_packed(const std::string& name, const EmdFile& file) {
    const std::vector<std::uint8_t> bytes = emd_file_bytes(file);
    write_file(name, {bytes.begin(), bytes.end()});
}

inline void put_raw_packed(const std::string& name, std::string_view bytes) {
    constexpr unsigned usual_shift = 13;
    put_packed(name, raw_packed(bytes, usual_shift));
}
