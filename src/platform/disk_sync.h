// SPDX-License-Identifier: MIT
// Bringing what was written to the disk itself. One source a system.
#pragma once

#include <cstdio>
#include <string>

/// Waits until a file that was flushed is on the disk. False on a fault, with errno set.
[[nodiscard]] bool sync_file(std::FILE* file);

/// The same for the entry of a file in its folder, as far as the system can.
void sync_folder_of(const std::string& name);
