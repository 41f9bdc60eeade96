// SPDX-License-Identifier: MIT
// Comments are not known: they pass through as words, and a bracket in one is taken for a tag. A
// tag's name is not looked at either: its value alone makes it a result.
#include "book/pgn_words.h"

#include <array>
#include <string_view>

namespace {

constexpr int byte_that_ends = 255;

struct ResultText {
    std::string_view text;
    char letter;
};

constexpr std::array<ResultText, 3> results = {{
    {"0-1", letter_black_won},
    {"1-0", letter_white_won},
    {"1/2-1/2", letter_draw},
}};

/// What a tag's value begins with: no more than tells whether it is a result.
class TagText {
  public:
    void clear() { length_ = 0; }

    void add(char character) {
        if (length_ < text_.size()) {
            text_[length_] = character;
        }
        ++length_;
    }

    /// Whether the text is `other`, whole.
    [[nodiscard]] bool is(std::string_view other) const {
        return length_ == other.size() && other == std::string_view(text_.data(), length_);
    }

  private:
    static constexpr std::size_t longest_result = 7;
    std::array<char, longest_result> text_{};
    std::size_t length_ = 0;
};

/// The pass itself.
class TagStripper {
  public:
    TagStripper(TextFile& pgn, std::streambuf& words, BuildProgress& progress)
        : pgn_(pgn), words_(words), progress_(progress) {}

    /// Takes the whole file; false if the words could not be written.
    bool run() {
        for (int byte = next(); byte != end_of_text && !failed_; byte = next()) {
            take(static_cast<char>(byte));
        }
        return !failed_ && words_.pubsync() == 0;
    }

  private:
    /// The next byte; after the byte that ends the input, in a tag as elsewhere, nothing more.
    int next() {
        const int byte = ended_ ? end_of_text : pgn_.next_byte();
        ended_ = byte == byte_that_ends || byte == end_of_text;
        return ended_ ? end_of_text : byte;
    }

    void put(char character) {
        failed_ = failed_ || std::streambuf::traits_type::eq_int_type(
                                 words_.sputc(character), std::streambuf::traits_type::eof());
    }

    void take(char character) {
        switch (character) {
            case '+':
            case 'x': break;
            case '\n':
                put(' ');
                progress_.advance(pgn_.bytes_read());
                break;
            case '[':
                end_game();
                take_tag();
                break;
            default:
                put(character);
                moves_seen_ = true;
                break;
        }
    }

    /// The line of a game ends where the tags of the next one begin.
    void end_game() {
        if (moves_seen_) {
            moves_seen_ = false;
            put('\n');
            progress_.count_game(pgn_.bytes_read());
        }
    }

    /// Reads a tag up to its bracket. Each byte may complete a result, so a longer value that
    /// begins with one counts too.
    void take_tag() {
        TagText text;
        for (int byte = next(); byte != end_of_text && byte != ']'; byte = next()) {
            if (byte == '"') {
                text.clear();
            } else {
                text.add(static_cast<char>(byte));
            }
            for (const ResultText& result : results) {
                if (text.is(result.text)) {
                    put(result.letter);
                    put(' ');
                }
            }
        }
    }

    TextFile& pgn_;
    std::streambuf& words_;
    BuildProgress& progress_;
    bool moves_seen_ = false;
    bool ended_ = false;
    bool failed_ = false;
};

}  // namespace

bool write_pgn_words(TextFile& pgn, std::streambuf& words, BuildProgress& progress) {
    return TagStripper(pgn, words, progress).run();
}
