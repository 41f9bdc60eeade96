// SPDX-License-Identifier: MIT
// Text files read by lines. A line ends with byte 10 or with the file; its length is not bounded.
#pragma once

#include <fstream>
#include <string>

/// The lines of one text file.
class TextFile {
  public:
    explicit TextFile(const std::string& name);

    /// Whether the file could be opened.
    [[nodiscard]] bool is_open() const { return stream_.is_open(); }

    /// Reads the next line into `line` without its line feed. True when a line feed ended it,
    /// false when the file did: `line` then holds what stood behind the last line feed, maybe
    /// nothing. A read error counts as the end of the file.
    [[nodiscard]] bool next_line(std::string& line);

  private:
    std::ifstream stream_;
};
