// SPDX-License-Identifier: MIT
// The second pass plays the words of each game on a board of its own, which tells where a short
// move comes from, and writes the moves one by one. A game that goes astray ends there; what was
// written of it stays.
#include "book/book_builder.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>
#include <system_error>

#include "board/generate.h"
#include "board/make.h"
#include "board/set_up.h"
#include "book/book_files.h"
#include "book/build_progress.h"
#include "book/pgn_words.h"
#include "book/short_algebraic.h"
#include "platform/console.h"
#include "platform/text_file.h"
#include "shell/log.h"
#include "shell/position_text.h"
#include "shell/word_reader.h"

namespace {

constexpr std::string_view first_move_number = "1.";
constexpr std::string_view short_castling = "O-O";
constexpr std::string_view long_castling = "O-O-O";

/// Characters of a word that are kept. No move is longer than four.
constexpr std::size_t longest_word = 300;

/// A castling word as a move of the king; `text` goes to the book.
struct CastlingWord {
    std::string_view word;
    std::string_view text;
    Side side;
    Move move;
};

// Intended(book-castling-label): White's long castling carries Black's short label. Making a move
// does not read it.
constexpr std::array<CastlingWord, 4> castling_words = {{
    {short_castling, "e1g1", white, {e1, g1, label_white_short}},
    {short_castling, "e8g8", black, {e8, g8, label_black_short}},
    {long_castling, "e1c1", white, {e1, c1, label_black_short}},
    {long_castling, "e8c8", black, {e8, c8, label_black_long}},
}};

/// The castling that a word means for a side, or null. Castling with zeroes is not known.
const CastlingWord* find_castling(std::string_view word, Side side) {
    for (const CastlingWord& castling : castling_words) {
        if (castling.word == word && castling.side == side) {
            return &castling;
        }
    }
    return nullptr;
}

/// Reads the next word of a text; false at its end.
bool next_word(TextFile& text, std::string& word) {
    word.clear();
    int byte = text.next_byte();
    while (is_white_space(byte)) {
        byte = text.next_byte();
    }
    while (byte != end_of_text && !is_white_space(byte)) {
        if (word.size() < longest_word) {
            word.push_back(static_cast<char>(byte));
        }
        byte = text.next_byte();
    }
    return !word.empty();
}

/// The games of a text of words, one after the other.
class GameWriter {
  public:
    explicit GameWriter(BookFiles& files) : files_(files) { start_position(); }
    GameWriter(const GameWriter&) = delete;
    GameWriter& operator=(const GameWriter&) = delete;

    /// Takes the next word. True if a game begins with it.
    bool take(std::string_view word) {
        take_result(word);
        if (skip_game_ && word != first_move_number) {
            return false;
        }
        if (word == first_move_number && game_open_) {
            begin_game();
            return true;
        }
        game_open_ = true;
        if (word.back() != '.') {
            take_move(word);
        }
        return false;
    }

  private:
    void start_position() {
        place_start_position(table_);
        generate();
    }

    void generate() {
        cur_moves = &moves_;
        gen_all(table_, table_.side);
    }

    /// A lone letter is a result wherever it stands, in a game that is skipped too: the letter of
    /// the next game comes before its first number.
    void take_result(std::string_view word) {
        if (equal_caseless(word, {&letter_white_won, 1})) {
            result_side_ = result_white_won;
        } else if (equal_caseless(word, {&letter_black_won, 1})) {
            result_side_ = result_black_won;
        } else if (equal_caseless(word, {&letter_draw, 1})) {
            result_side_ = result_draw;
        }
    }

    /// The line end opens this game's line in its own files; it does not close the last game's.
    void begin_game() {
        skip_game_ = false;
        files_.write(result_side_, "\n");
        start_position();
        ply_count_ = 0;
    }

    void take_move(std::string_view word) {
        if (const CastlingWord* const castling = find_castling(word, table_.side)) {
            files_.write(result_side_, castling->text);
            play(castling->move);
        } else if (is_as_long_as_a_move(word)) {
            const std::int32_t slot = find_short_algebraic(word, table_, moves_);
            if (slot == 0) {
                skip_game_ = true;
                return;
            }
            const Move move = moves_.move(slot);
            files_.write(result_side_, square_names[static_cast<std::size_t>(move.posFrom)]);
            files_.write(result_side_, target_of(word));
            play(move);
        }
    }

    void play(const Move& move) {
        make_plain(table_, move.posFrom, move.posTo, move.posInfo);
        table_.side ^= 1;
        generate();
        ++ply_count_;
        if (ply_count_ == book_line_plies) {
            skip_game_ = true;
        }
    }

    BookFiles& files_;
    Table table_;
    MoveList moves_;
    std::int32_t result_side_ = result_draw;
    std::int32_t ply_count_ = 0;
    bool skip_game_ = false;
    bool game_open_ = false;
};

std::ostream* progress_output() {
    return error_output_is_terminal() ? &std::cerr : nullptr;
}

/// Bytes of a file, 0 if that is not known.
std::uint64_t size_of(const std::string& name) {
    std::error_code fault;
    const std::uintmax_t size = std::filesystem::file_size(name, fault);
    return fault ? 0 : size;
}

/// The first pass. False if the temporary file could not be filled.
bool strip(TextFile& pgn, std::ofstream& words, std::uint64_t pgn_size) {
    BuildProgress progress(progress_output(), "Reading games", pgn_size);
    return write_pgn_words(pgn, *words.rdbuf(), progress);
}

/// The second pass. False if the books could not be written; they are then as before.
bool write_books() {
    TextFile words(book_words_name);
    BookFiles files;
    GameWriter games(files);
    {
        BuildProgress progress(progress_output(), "Writing the book", size_of(book_words_name));
        std::string word;
        while (files.is_good() && next_word(words, word)) {
            if (games.take(word)) {
                progress.count_game(words.bytes_read());
            }
        }
    }
    // Both books get it, whichever had the last game.
    files.write(result_draw, "\n");
    return files.finish();
}

}  // namespace

void createbook(const std::string& name) {
    mirror("Creating BOOK!", end_line);
    {
        TextFile pgn(name);
        if (!pgn.is_open()) {
            mirror("Can't find PGN: ", name, end_line);
            return;
        }
        std::ofstream words(book_words_name);
        if (!words.is_open()) {
            // Intended(temporary-name-not-printed): the line ends where a name might stand.
            mirror("Can't write TMP: ", end_line);
            return;
        }
        if (!strip(pgn, words, size_of(name))) {
            std::cerr << "Cannot write to " << book_words_name
                      << "; the opening book is left as it was.\n";
            return;
        }
    }
    if (write_books()) {
        mirror("Done", end_line);
    }
}
