// SPDX-License-Identifier: MIT
// Binary files that are read at any place. Only ordinary files are opened: a folder cannot be read
// and a pipe would keep the program waiting.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

/// Opens a file for reading; null when it is absent, may not be read or is no ordinary file. The
/// caller closes it with std::fclose.
[[nodiscard]] std::FILE* open_binary(const char* name);

/// Moves to a place, in bytes from the start. Places behind the end are fine. False on a fault.
[[nodiscard]] bool seek_binary(std::FILE* file, std::uint64_t place);

/// Length of an open file in bytes; the file then stands at its end. Empty on a fault.
[[nodiscard]] std::optional<std::uint64_t> length_of_binary(std::FILE* file);

struct CloseBinary {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file that closes itself.
using BinaryStream = std::unique_ptr<std::FILE, CloseBinary>;

/// All bytes of a file; empty when it cannot be opened or read.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> read_binary(const char* name);
