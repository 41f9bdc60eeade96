// SPDX-License-Identifier: MIT
// Text files, read once from front to back by bytes or by lines. Every line ends with byte 10 or
// with the file: the pair CR LF is given as the one byte LF, on every system. A file is never held
// in memory as a whole.
#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <string>

/// Bytes of a line that are kept; what is longer is read and dropped.
inline constexpr std::size_t max_line = std::size_t{1} << 24;

/// What TextFile::next_byte gives behind the last byte.
inline constexpr int end_of_text = -1;

/// The bytes of one text file.
class TextFile {
  public:
    explicit TextFile(const std::string& name);

    /// Whether the file could be opened.
    [[nodiscard]] bool is_open() const { return stream_.is_open(); }

    /// The next byte, 0 to 255, or `end_of_text`. A read error counts as the end of the file.
    [[nodiscard]] int next_byte() {
        const int byte = raw_byte();
        return byte == '\r' && peek() == '\n' ? raw_byte() : byte;
    }

    /// Reads the next line into `line` without its line feed; no more than `max_line` bytes are
    /// kept. The last line needs no line feed. False, and `line` empty, when there is none left.
    [[nodiscard]] bool next_line(std::string& line);

    /// Bytes read so far, a buffer's length at most ahead of what was given.
    [[nodiscard]] std::uint64_t bytes_read() const { return bytes_read_; }

  private:
    static constexpr std::size_t buffer_size = std::size_t{1} << 16;

    [[nodiscard]] int raw_byte() {
        const int byte = peek();
        at_ += byte == end_of_text ? 0U : 1U;
        return byte;
    }

    [[nodiscard]] int peek() {
        if (at_ == filled_ && !refill()) {
            return end_of_text;
        }
        return static_cast<unsigned char>(buffer_[at_]);
    }

    [[nodiscard]] bool refill();

    std::ifstream stream_;
    std::array<char, buffer_size> buffer_;
    std::size_t at_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t bytes_read_ = 0;
};
