// SPDX-License-Identifier: MIT
// Three calls: the file, its mapping, the view of it.
#include "platform/mapped_file.h"

#include <windows.h>

namespace {

SystemHandle as_system_handle(HANDLE handle) {
    return reinterpret_cast<SystemHandle>(handle);
}

}  // namespace

MapStep map_file(const char* name, MappedFile& out) {
    const HANDLE file = CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return MapStep::opened_nothing;
    }
    LARGE_INTEGER size{};
    const HANDLE mapping = GetFileSizeEx(file, &size) != 0 && size.QuadPart > 0
                               ? CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr)
                               : nullptr;
    if (mapping == nullptr) {
        CloseHandle(file);
        return MapStep::opened_file;
    }
    const void* const view = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
    if (view == nullptr) {
        CloseHandle(mapping);
        CloseHandle(file);
        return MapStep::made_mapping;
    }
    out = {static_cast<const std::uint8_t*>(view), static_cast<std::size_t>(size.QuadPart),
           as_system_handle(file), as_system_handle(mapping)};
    return MapStep::done;
}

bool unmap_bytes(const std::uint8_t* bytes, std::size_t /*size*/) {
    return UnmapViewOfFile(bytes) != 0;
}

void close_handle(SystemHandle handle) {
    if (handle != no_handle) {
        CloseHandle(reinterpret_cast<HANDLE>(handle));
    }
}
