// SPDX-License-Identifier: MIT
// A file that gets its name only when all of it is safe on the disk. Until then it lies beside,
// under the name with a random word and ".part" behind it; what was there under the final name
// stays untouched.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/binary_file.h"

class NewFile {
  public:
    /// Begins the file.
    explicit NewFile(std::string name);

    /// Removes the part if the file was not finished.
    ~NewFile();

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Appends bytes. False on a fault, now or before; error() then tells which.
    [[nodiscard]] bool write(std::span<const std::uint8_t> bytes);

    /// Brings the file to the disk and gives it its name. False, and nothing is left of it, if not
    /// all of it could be written.
    [[nodiscard]] bool finish();

    /// The fault that came first, in the system's words; empty if there was none.
    [[nodiscard]] const std::string& error() const { return error_; }

  private:
    /// Takes down the system's words for what has just failed; gives false.
    bool fail();

    std::string name_;
    std::string part_name_;
    std::string error_;
    BinaryStream file_;
};
