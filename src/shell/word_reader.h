// SPDX-License-Identifier: MIT
// Words and numbers from a stream, as the protocol and the configuration file give them: separated
// by white space, line ends meaning nothing.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

/// Characters of a word that are kept; what is longer is read and dropped.
inline constexpr std::size_t max_word = std::size_t{1} << 24;

/// Reads one stream by words. A number that cannot be read leaves its word for the next reading,
/// so that no input can stop the stream.
class WordReader {
  public:
    explicit WordReader(std::istream& stream) : stream_(stream) {}

    /// The next word; empty at the end of the input or when the input fails.
    [[nodiscard]] std::optional<std::string> word();

    /// The number at the head of the next word, in decimal with an optional sign. What follows the
    /// digits stays as the next word. Empty, and the word stays, if there is no number or it does
    /// not fit 32 bits.
    [[nodiscard]] std::optional<std::int32_t> integer();

  private:
    [[nodiscard]] std::optional<std::string> read_word();

    std::istream& stream_;
    std::optional<std::string> waiting_;  ///< a word, or its rest, that was put back
};

/// White space of the classic locale: what stands between words.
[[nodiscard]] constexpr bool is_white_space(int character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Whether two words are equal but for the case of ASCII letters.
[[nodiscard]] bool equal_caseless(std::string_view a, std::string_view b);
