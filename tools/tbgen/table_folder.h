// SPDX-License-Identifier: MIT
// The folder in which the tables lie: what is there, reading halves whole, writing new ones.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tbgen/half_bytes.h"

enum class TableForm : std::uint8_t { packed, plain };

class TableFolder {
  public:
    /// An empty path is the working directory.
    explicit TableFolder(std::string path) : path_(std::move(path)) {}

    /// Makes the folder and those above it. Empty if it is there then; else the fault.
    [[nodiscard]] std::string make() const;

    /// The full name of a half's file.
    [[nodiscard]] std::string file_name(std::int32_t row, std::int32_t half, TableForm form) const;

    /// Removes parts of files that an interrupted run has left.
    void remove_old_parts() const;

    /// Tells of a file under the name of a half that is none, going by its length; empty if there
    /// is no such file.
    [[nodiscard]] std::string find_broken() const;

    /// Whether both halves of a table are there, in one form or in any, going by their lengths.
    [[nodiscard]] bool has(std::int32_t row, TableForm form) const;
    [[nodiscard]] bool has_any(std::int32_t row) const;

    /// The decoded bytes of a half, the plain file first as the engine has it. Empty, and `fault`
    /// tells why, if there is none, it cannot be read or has not the half's length.
    [[nodiscard]] std::optional<Bytes> load(std::int32_t row, std::int32_t half,
                                            std::size_t threads, std::string& fault) const;

    /// Writes a half's file whole or not at all. Empty if it is written; else the fault.
    [[nodiscard]] std::string save(std::int32_t row, std::int32_t half, TableForm form,
                                   const Bytes& file) const;

  private:
    [[nodiscard]] bool has_half(std::int32_t row, std::int32_t half, TableForm form) const;

    std::string path_;
};
