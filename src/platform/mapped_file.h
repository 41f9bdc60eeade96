// SPDX-License-Identifier: MIT
// A whole file seen as memory, read-only, for reads at random places. One source a system.
#pragma once

#include <cstddef>
#include <cstdint>

/// What the system calls its open files and mappings; `no_handle` where there is none.
using SystemHandle = std::intptr_t;
inline constexpr SystemHandle no_handle = -1;

/// A file in memory. The handles stay open until they are closed.
struct MappedFile {
    const std::uint8_t* bytes = nullptr;
    std::size_t size = 0;  ///< bytes
    SystemHandle file = no_handle;
    SystemHandle mapping = no_handle;  ///< `no_handle` on systems that need none
};

/// How far map_file came.
enum class MapStep { opened_nothing, opened_file, made_mapping, done };

/// Maps a file. On a fault tells the last step that went well; nothing stays open then and `out` is
/// untouched. An empty file cannot be mapped: it stops after `opened_file`.
[[nodiscard]] MapStep map_file(const char* name, MappedFile& out);

/// Takes the memory away. False when there was no such mapping.
[[nodiscard]] bool unmap_bytes(const std::uint8_t* bytes, std::size_t size);

/// Closes a handle of map_file; `no_handle` is passed over. A mapping lives on without its handles.
void close_handle(SystemHandle handle);
