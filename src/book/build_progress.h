// SPDX-License-Identifier: MIT
// How far the building of a book has come, for a person who watches a terminal: one line that is
// written again and again, and wiped away at the end.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

/// The progress line of one pass over one file.
class BuildProgress {
  public:
    /// `out`: where the line goes, null for nowhere. `what`: a word for the pass. `file_size` in
    /// bytes; 0 if it is not known, and then no share is shown.
    BuildProgress(std::ostream* out, std::string_view what, std::uint64_t file_size);
    BuildProgress(const BuildProgress&) = delete;
    BuildProgress& operator=(const BuildProgress&) = delete;
    ~BuildProgress();

    /// Counts one game and shows the line, a few times a second at most. `bytes_read`: of the file.
    void count_game(std::uint64_t bytes_read);

    /// Shows the line if it is due, without counting a game.
    void advance(std::uint64_t bytes_read);

  private:
    void show(std::uint64_t bytes_read, std::uint32_t elapsed_ms);

    std::ostream* out_;
    std::string_view what_;
    std::uint64_t file_size_;
    std::uint64_t games_ = 0;
    std::uint32_t start_;
    std::uint32_t shown_ = 0;  ///< milliseconds after the start
};
