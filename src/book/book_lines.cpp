// SPDX-License-Identifier: MIT
// A line counts once its line feed has been read, so a last line without one is lost.
#include "book/book_lines.h"

#include "platform/clock.h"
#include "platform/random.h"
#include "platform/text_file.h"
#include "shell/engine_state.h"
#include "shell/log.h"

BookLines book_white_lines{};
std::int32_t book_white_count = 0;
BookLines book_black_lines{};
std::int32_t book_black_count = 0;

namespace {

/// Fills rows from the first one on; gives the number of rows that a line feed completed.
std::int32_t read_rows(TextFile& file, BookLines& lines) {
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < book_rows) {
        const int byte = file.next_byte();
        if (byte == end_of_text) {
            break;
        }
        if (byte == '\n') {
            lines[row][column] = '\0';
            ++row;
            column = 0;
        } else if (column < book_line_length) {
            lines[row][column] = static_cast<char>(byte);
            ++column;
        }
    }
    return static_cast<std::int32_t>(row);
}

void load(TextFile& file, BookLines& lines, std::int32_t& count) {
    count = read_rows(file, lines);
    engine.book_out = false;
}

}  // namespace

bool LoadBooks() {
    TextFile white_book(white_book_name);
    if (!white_book.is_open()) {
        mirror("Book for white side not found!", end_line);
    }
    TextFile black_book(black_book_name);
    if (!black_book.is_open()) {
        mirror("Book for black side not found!", end_line);
    }
    if (!white_book.is_open() || !black_book.is_open()) {
        return false;
    }
    load(white_book, book_white_lines, book_white_count);
    mirror("Loading white book...", end_line);
    seed_random(calendar_seconds());
    load(black_book, book_black_lines, book_black_count);
    mirror("Loading black book...", end_line);
    seed_random(calendar_seconds());
    return true;
}

void reset_book_lines() {
    book_white_lines = {};
    book_white_count = 0;
    book_black_lines = {};
    book_black_count = 0;
}
