// SPDX-License-Identifier: MIT
// The file's descriptor is the one handle; a mapping has none of its own.
#include "platform/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

MapStep map_file(const char* name, MappedFile& out) {
    const int file = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        return MapStep::opened_nothing;
    }
    struct stat facts {};
    if (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size <= 0) {
        close(file);
        return MapStep::opened_file;
    }
    const std::size_t size = static_cast<std::size_t>(facts.st_size);
    void* const view = mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0);
    if (view == MAP_FAILED) {
        close(file);
        return MapStep::made_mapping;
    }
    // A hint alone: without it the system reads ahead what nobody asks for.
    static_cast<void>(posix_madvise(view, size, POSIX_MADV_RANDOM));
    out = {static_cast<const std::uint8_t*>(view), size, file, no_handle};
    return MapStep::done;
}

bool unmap_bytes(const std::uint8_t* bytes, std::size_t size) {
    // The call wants a writable pointer and writes nothing.
    return munmap(const_cast<std::uint8_t*>(bytes), size) == 0;
}

void close_handle(SystemHandle handle) {
    if (handle != no_handle) {
        close(static_cast<int>(handle));
    }
}
