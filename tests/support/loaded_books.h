// SPDX-License-Identifier: MIT
// Opening books for tests: the two files, read the way the program reads them.
#pragma once

#include <string>

#include "book/book_lines.h"
#include "support/captured_output.h"
#include "support/temporary_folder.h"

/// Loads books of these texts from a folder of their own; gives what was printed.
inline std::string load_books(const std::string& white_text, const std::string& black_text) {
    const TemporaryFolder folder;
    write_file(white_book_name, white_text);
    write_file(black_book_name, black_text);
    const CapturedOutput output;
    LoadBooks();
    return output.text();
}

/// The kept characters of a row.
[[nodiscard]] inline std::string row_text(const BookLines& lines, std::size_t row) {
    return lines.at(row).data();
}
