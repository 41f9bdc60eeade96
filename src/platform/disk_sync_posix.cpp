// SPDX-License-Identifier: MIT
// A pipe or a device cannot be synchronised; that is no fault.
#include "platform/disk_sync.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

bool sync_file(std::FILE* file) {
    return fsync(fileno(file)) == 0 || errno == EINVAL;
}

void sync_folder_of(const std::string& name) {
    const std::string folder = std::filesystem::path(name).parent_path().string();
    const int handle = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (handle >= 0) {
        static_cast<void>(fsync(handle));
        static_cast<void>(close(handle));
    }
}
