// SPDX-License-Identifier: MIT
// The messages name the calls of one system and are the same on all.
#include "tb/resident.h"

#include <cstdio>

#include "platform/binary_file.h"
#include "shell/log.h"
#include "tb/catalogue.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

namespace {

TbEntry& row_of(std::int32_t id) {
    return TbCatalogue[static_cast<std::size_t>(id)];
}

bool can_be_held(const TbEntry& row, std::size_t half) {
    return row.path[half] != nullptr && row.decoder[half] == nullptr;
}

/// The length of an open file, bytes; it stands at its start afterwards.
std::uint32_t length_from_start(std::FILE* file, const char* name) {
    const auto length = length_of_binary(file);
    if (!length) {
        mirror("*** Cannot find length of ", name, end_line);
        tb_give_up();
    }
    if (!seek_binary(file, 0)) {
        mirror("*** Seek in ", name, " failed", end_line);
        tb_give_up();
    }
    return static_cast<std::uint32_t>(*length);
}

void tell_if_wanted(const char* name, const char* what) {
    if (tb_verbose) {
        mirror(name, " ", what, end_line);
    }
}

}  // namespace

void TbLoadHalf(std::int32_t id, std::int32_t half, std::uint8_t* buffer) {
    TbEntry& row = row_of(id);
    const auto h = static_cast<std::size_t>(half);
    if (!can_be_held(row, h)) {
        return;
    }
    const char* const name = row.path[h];
    std::FILE* const file = open_binary(name);
    if (file == nullptr) {
        mirror("*** Read from ", name, " failed", end_line);
        tb_give_up();
    }
    // The buffer's room is the registered size: a file that has grown since is not read further.
    const std::uint32_t size = row.size[h];
    const std::uint32_t length = size != 0 ? length_from_start(file, name) : 0;
    std::uint8_t* const bytes = buffer != nullptr ? buffer : tb_alloc_array<std::uint8_t>(size);
    if (length < size || std::fread(bytes, 1, size, file) != size) {
        mirror("*** Read from ", name, " failed", end_line);
        tb_give_up();
    }
    std::fclose(file);
    row.view[h] = bytes;
    row.view_size[h] = size;
}

void TbMapHalf(std::int32_t id, std::int32_t half) {
    SystemHandle file = no_handle;
    SystemHandle mapping = no_handle;
    TbMapHalfHandles(id, half, file, mapping);
    close_handle(mapping);  // the mapping lives on without them
    close_handle(file);
}

void TbMapHalfHandles(std::int32_t id, std::int32_t half, SystemHandle& file,
                      SystemHandle& mapping) {
    TbEntry& row = row_of(id);
    const auto h = static_cast<std::size_t>(half);
    if (!can_be_held(row, h)) {
        return;
    }
    const char* const name = row.path[h];
    MappedFile mapped;
    switch (map_file(name, mapped)) {
        case MapStep::opened_nothing:
            mirror("*** Couldn't open file ", name, " with CreateFile()", end_line);
            tb_give_up();
        case MapStep::opened_file:
            mirror("*** Couldn't open file ", name, " mapping with CreateFileMapping()", end_line);
            tb_give_up();
        case MapStep::made_mapping:
            mirror("*** Couldn't map view of file ", name, " with MapViewOfFile()", end_line);
            tb_give_up();
        case MapStep::done: break;
    }
    row.view[h] = mapped.bytes;
    row.view_size[h] = static_cast<std::uint32_t>(mapped.size);
    file = mapped.file;
    mapping = mapped.mapping;
    tell_if_wanted(name, "mapped");
}

void TbUnmapHalf(std::int32_t id, std::int32_t half, SystemHandle file, SystemHandle mapping) {
    TbEntry& row = row_of(id);
    const auto h = static_cast<std::size_t>(half);
    if (!unmap_bytes(row.view[h], row.view_size[h])) {
        mirror("*** Couldn't unmap file", end_line);
        tb_give_up();
    }
    close_handle(mapping);
    close_handle(file);
    row.view[h] = nullptr;
    row.view_size[h] = 0;
    tell_if_wanted(row.path[h] != nullptr ? row.path[h] : row.name.data(), "unmapped");
}
