// SPDX-License-Identifier: MIT
// The state of a table's half on disk is set here and, where a file fails later, cleared by the
// probe; nothing else changes it.
#include "tb/register.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/binary_file.h"
#include "shell/log.h"
#include "tb/block_cache.h"
#include "tb/index/enumeration.h"
#include "tb/key_tree.h"
#include "tb/table_names.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

std::int32_t tb_max_men = 0;
std::int32_t tb_emd_count = 0;

namespace {

#if defined(_WIN32)
constexpr char separator = '\\';
#else
constexpr char separator = '/';
#endif

constexpr std::string_view path_ends = ",;";
constexpr std::string_view packed_extension = ".emd";
constexpr std::array<std::string_view, tb_halves> extensions = {".nbw", ".nbb"};

/// Forgets the file of a half. What is held in memory stays, and with it the chains of its blocks.
void forget_half(TbEntry& row, std::size_t half) {
    if (row.view[half] == nullptr) {
        std::free(row.buckets[half]);
        row.buckets[half] = nullptr;
        row.size[half] = tb_known_size(row.id)[half];  // the next file may have another length
    }
    std::free(row.path[half]);
    row.path[half] = nullptr;
    TbFreeDecoder(row.decoder[half]);
    row.decoder[half] = nullptr;
}

void forget_files() {
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        for (std::size_t half = 0; half < tb_halves; ++half) {
            forget_half(TbCatalogue[id], half);
        }
    }
    TbFreeBlockState(tb_decode_block);
    tb_decode_block = nullptr;
    tb_emd_count = 0;
}

std::string full_name(std::string_view directory, std::int32_t id, std::size_t half) {
    std::string name(directory);
    if (!name.empty()) {
        name += separator;
    }
    return name.append(tb_names[static_cast<std::size_t>(id)]).append(extensions[half]);
}

/// A file found for a half.
struct FoundFile {
    std::string name;
    std::uint64_t length = 0;      ///< bytes, decoded
    TbDecoder* decoder = nullptr;  ///< null for a plain file
};

[[noreturn]] void refuse_as_corrupted(const std::string& name) {
    mirror("*** ", name, " corrupted", end_line);
    tb_give_up();
}

void check_length(const TbEntry& row, std::size_t half, const FoundFile& found) {
    if (row.size[half] != 0 && row.size[half] != found.length) {
        refuse_as_corrupted(found.name);
    }
    if (found.length > UINT32_MAX) {
        refuse_as_corrupted(found.name);  // no half is larger: it has no numbers for more
    }
}

FoundFile measure_plain(const std::string& name, std::FILE* file) {
    const auto length = length_of_binary(file);
    if (!length) {
        mirror("*** Seek in ", name, " failed", end_line);
        tb_give_up();
    }
    return {name, *length, nullptr};
}

[[noreturn]] void refuse_header(const std::string& name, std::int32_t fault) {
    mirror("*** Unable to read ", name, " - ");
    switch (tb_fault_kind(fault)) {
        case tb_read_fault: mirror("read error", end_line); break;
        case tb_no_memory: mirror("out of memory", end_line); break;
        case tb_broken_file: mirror("file broken", end_line); break;
        default: mirror("error ", fault, end_line); break;
    }
    tb_give_up();
}

FoundFile measure_packed(const std::string& name, std::FILE* file) {
    ++tb_emd_count;
    TbDecoder* decoder = nullptr;
    if (const std::int32_t fault = TbReadHeader(&decoder, file, tb_use_crc)) {
        refuse_header(name, fault);
    }
    if (decoder->block_size != tb_block_size) {
        mirror("*** ", name, ": Unsupported block size ", decoder->block_size, end_line);
        tb_give_up();
    }
    const auto whole_blocks = static_cast<std::uint64_t>(decoder->block_count - 1);
    return {name,
            whole_blocks * tb_block_size + static_cast<std::uint64_t>(decoder->last_block_size),
            decoder};
}

/// The file of a half in a directory; false if there is none.
bool find_file(const std::string& plain_name, FoundFile& out) {
    if (std::FILE* const file = open_binary(plain_name.c_str())) {
        out = measure_plain(plain_name, file);
        std::fclose(file);
        return true;
    }
    const std::string packed_name = std::string(plain_name).append(packed_extension);
    std::string short_name = packed_name;
    short_name.erase(plain_name.size() - extensions[0].size(), 1);  // the dot within the name
    for (const std::string& name : {packed_name, short_name}) {
        if (std::FILE* const file = open_binary(name.c_str())) {
            out = measure_packed(name, file);
            std::fclose(file);
            return true;
        }
    }
    return false;
}

/// The row of the highest table found in a directory; 0 for none.
std::int32_t register_directory(std::string_view directory) {
    std::int32_t highest = 0;
    for (std::int32_t id = 1; id < tb_rows; ++id) {
        const std::int32_t first = TbRegisterFile(directory, id, 0);
        const std::int32_t second = TbRegisterFile(directory, id, 1);
        if (first == 1 || second == 1) {
            highest = id;
        }
    }
    return highest;
}

/// All directories in their order. A separator at the end adds no directory.
std::int32_t register_directories(std::string_view path) {
    std::int32_t highest = 0;
    do {
        const std::size_t end = std::min(path.find_first_of(path_ends), path.size());
        highest = std::max(highest, register_directory(path.substr(0, end)));
        path.remove_prefix(std::min(end + 1, path.size()));
    } while (!path.empty());
    return highest;
}

void make_decode_block() {
    constexpr std::int32_t kilobyte = 1024;
    if (const std::int32_t fault = TbNewBlockState(&tb_decode_block, tb_block_size)) {
        mirror("*** Cannot allocate decode block: error code ", fault, end_line);
        tb_give_up();
    }
    if (tb_verbose) {
        mirror("Allocated ", (tb_decoder_bytes + kilobyte - 1) / kilobyte,
               "Kb for decompression tables, indices, and buffers.", end_line);
    }
}

std::int32_t men_of_row(std::int32_t row) {
    if (row >= tb_first_five_men) return 5;
    if (row >= tb_first_four_men) return 4;
    return row >= 1 ? 3 : 0;
}

}  // namespace

std::int32_t TbRegisterAll(std::string_view path) {
    tb_decoder_bytes = 0;
    tb_alloc_total = 0;
    TbCacheReset();  // its blocks are of files that may be others now
    tb_build_enumeration();
    forget_files();
    const std::int32_t highest = register_directories(path);
    if (tb_emd_count != 0) {
        make_decode_block();
    }
    return men_of_row(highest);
}

std::int32_t TbRegisterFile(std::string_view directory, std::int32_t id, std::int32_t half) {
    TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
    const auto h = static_cast<std::size_t>(half);
    if (row.path[h] != nullptr || row.view[h] != nullptr) {
        return 1;
    }
    FoundFile found;
    if (!find_file(full_name(directory, id, h), found)) {
        return 0;
    }
    check_length(row, h, found);
    row.size[h] = static_cast<std::uint32_t>(found.length);
    if (!TbRegisterTable(row)) {
        mirror("*** Unable to register ", found.name, end_line);
        tb_give_up();
    }
    row.path[h] = tb_alloc_array<char>(found.name.size() + 1);
    std::memcpy(row.path[h], found.name.c_str(), found.name.size() + 1);
    row.buckets[h] = tb_alloc_array<TbBuckets>(1);
    row.decoder[h] = found.decoder;
    if (tb_verbose) {
        mirror(found.name, " registered", end_line);
    }
    return 1;
}

bool TbRegisterTable(const TbEntry& row) {
    TbCounts counts{};
    TbParseName(counts, row.name.data());
    if (!TbInsertKey(row.id, counts)) {
        return false;
    }
    // Intended(tb-equal-sides): with equal men the second key replaces the first, and such a table
    // is always asked with the colours exchanged.
    std::swap_ranges(counts.begin(), counts.begin() + tb_kinds_a_side,
                     counts.begin() + tb_kinds_a_side);
    return TbInsertKey(-row.id, counts);
}

void reset_tables() {
    TbCacheInit(nullptr, 0);
    for (TbEntry& row : TbCatalogue) {
        row.view = {};
        row.view_size = {};
    }
    forget_files();
    reset_key_tree();
    tb_max_men = 0;
    reset_tb_settings();
}
