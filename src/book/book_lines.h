// SPDX-License-Identifier: MIT
// The opening book in memory: two tables of game beginnings, one for each colour, read from two
// text files when the program starts. How they are looked up stands in book_move, how the files are
// made in book_builder.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Lines of a book that are kept; the rest of the file is passed over.
inline constexpr std::size_t book_rows = 2500;

/// Characters of a line that are kept. The twenty-third ply, characters 88 to 91, has lost its last
/// one, so a line serves for 22 plies.
inline constexpr std::size_t book_line_length = 91;

inline constexpr std::size_t book_row_bytes = 100;

// The files, in the working directory.
inline constexpr const char* white_book_name = "cwhite";
inline constexpr const char* black_book_name = "cblack";

/// One game beginning: four characters a ply, White's first move in front, ended by a zero.
using BookRow = std::array<char, book_row_bytes>;
using BookLines = std::array<BookRow, book_rows>;

/// The book for the side that plays White, and the rows in use.
extern BookLines book_white_lines;
extern std::int32_t book_white_count;

/// The book for the side that plays Black. Its lines begin with White's move as well.
extern BookLines book_black_lines;
extern std::int32_t book_black_count;

/// Reads `cwhite` and `cblack` from the working directory, says so, clears `book_out` and seeds the
/// random numbers with the calendar time after each of them. False if either is missing: that is
/// said, and neither is read.
bool LoadBooks();

/// Both tables empty, as at program start.
void reset_book_lines();
