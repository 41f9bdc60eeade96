// SPDX-License-Identifier: MIT
// A fault in a running game must not end the search: whatever goes wrong takes the half out of use
// and the search goes on without it.
#include "tb/probe_raw.h"

#include <cstdlib>

#include "platform/binary_file.h"
#include "tb/block_cache.h"

namespace {

/// The open file of a half, null if it cannot be had. The system may allow no further file; then
/// all the others are closed first.
std::FILE* open_half(TbEntry& row, std::size_t half) {
    std::FILE*& file = row.file[half];
    const char* const path = row.path[half];
    if (file == nullptr && path != nullptr) {
        file = open_binary(path);
        if (file == nullptr) {
            TbCloseFiles();
            file = open_binary(path);
        }
    }
    return file;
}

bool read_compressed(const TbDecoder& decoder, std::FILE* file, std::int32_t block,
                     std::uint8_t* room) {
    if (tb_decode_block == nullptr) {
        return false;
    }
    TbBlockState& state = *tb_decode_block;
    TbInitBlockState(state, room);
    return TbReadBlock(state, decoder, file, block) == 0 &&
           TbDecodeBlock(state, decoder, state.decoded_length, decoder.has_crc) == 0;
}

/// The last block may be short: what lies behind its end is whatever the room held.
bool read_plain(std::FILE* file, std::uint32_t start, std::uint8_t* room) {
    if (!seek_binary(file, start)) {
        return false;
    }
    const std::size_t read = std::fread(room, 1, tb_block_size, file);
    return read == tb_block_size || std::ferror(file) == 0;
}

/// Fills an entry from disk.
bool read_block(TbEntry& row, std::size_t half, const TbCacheEntry& entry) {
    std::FILE* const file = open_half(row, half);
    if (file == nullptr) {
        return false;
    }
    std::uint8_t* const room = tb_cache_data(entry);
    const TbDecoder* const decoder = row.decoder[half];
    return decoder == nullptr
               ? read_plain(file, entry.start, room)
               : read_compressed(*decoder, file,
                                 static_cast<std::int32_t>(entry.start / tb_block_size), room);
}

}  // namespace

std::int8_t TbProbeRaw(std::int32_t id, std::int32_t half, std::uint32_t index) {
    TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
    const auto h = static_cast<std::size_t>(half);
    if (row.view[h] != nullptr) {
        return index < row.view_size[h] ? static_cast<std::int8_t>(row.view[h][index])
                                        : tb_no_value;
    }
    if (tb_cache_entries == 0 || row.buckets[h] == nullptr) {
        return tb_no_value;
    }
    TbEntryRef ref = tb_cache_find(id, half, index);
    if (ref == tb_no_entry) {
        ref = tb_cache_take();
        TbCacheEntry& entry = tb_cache_entry(ref);
        entry.table_id = id;
        entry.half = half;
        entry.start = index / tb_block_size * tb_block_size;
        if (!read_block(row, h, entry)) {
            std::free(row.path[h]);
            row.path[h] = nullptr;
            tb_cache_give_back(ref);
            return tb_no_value;
        }
        tb_cache_enter(ref);
    }
    const TbCacheEntry& entry = tb_cache_entry(ref);
    return static_cast<std::int8_t>(tb_cache_data(entry)[index - entry.start]);
}
