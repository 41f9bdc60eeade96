// SPDX-License-Identifier: MIT
// The two files of the opening book while lines are added to them. Either all that a run adds stays
// or, where a disk is full, nothing of it: the old lines are never damaged.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

// Who won a game; any other number is a draw.
inline constexpr std::int32_t result_white_won = 1;
inline constexpr std::int32_t result_black_won = -1;
inline constexpr std::int32_t result_draw = 0;

/// One text file that is added to.
class GrowingFile {
  public:
    /// Opens `name` at its end; what is missing is created.
    explicit GrowingFile(std::string name);

    void write(std::string_view text) { stream_ << text; }

    /// Whether the file could be opened and everything so far could be written.
    [[nodiscard]] bool is_good() const { return stream_.good(); }

    /// Hands over what is still held back. `is_good` then speaks for all of it.
    void finish() { stream_.close(); }

    /// Takes back all that was added.
    void restore();

    [[nodiscard]] const std::string& name() const { return name_; }

  private:
    std::string name_;
    bool was_there_;
    std::uintmax_t old_size_;  ///< bytes
    std::ofstream stream_;
    bool was_opened_;
};

/// `cwhite` and `cblack`, and which of them a game goes to.
class BookFiles {
  public:
    BookFiles();

    /// Adds `text` to the files that learn from a result: White's from its wins, Black's
    /// from its wins, both from draws.
    void write(std::int32_t result_side, std::string_view text);

    /// Ends both files, whichever had the last game. False if anything could not be written: both
    /// are then as they were before, and standard error says so.
    [[nodiscard]] bool finish();

    /// Whether all went well so far.
    [[nodiscard]] bool is_good() const { return white_.is_good() && black_.is_good(); }

  private:
    GrowingFile white_;
    GrowingFile black_;
};
