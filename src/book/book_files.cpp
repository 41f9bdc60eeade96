// SPDX-License-Identifier: MIT
// A failed write shows itself only when the stream hands its buffer on, so the judgement falls when
// the files are closed.
#include "book/book_files.h"

#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

#include "book/book_lines.h"

GrowingFile::GrowingFile(std::string name) : name_(std::move(name)) {
    std::error_code fault;
    was_there_ = std::filesystem::exists(name_, fault);
    old_size_ = std::filesystem::file_size(name_, fault);
    if (fault) {
        old_size_ = 0;
    }
    stream_.open(name_, std::ios::app);
    was_opened_ = stream_.is_open();
}

void GrowingFile::restore() {
    stream_.close();
    std::error_code ignored;
    if (was_there_) {
        // Only a file that was opened here may have grown; a device has no size to go back to.
        if (was_opened_ && std::filesystem::is_regular_file(name_, ignored)) {
            std::filesystem::resize_file(name_, old_size_, ignored);
        }
    } else {
        std::filesystem::remove(name_, ignored);
    }
}

BookFiles::BookFiles() : white_(white_book_name), black_(black_book_name) {}

void BookFiles::write(std::int32_t result_side, std::string_view text) {
    if (result_side != result_black_won) {
        white_.write(text);
    }
    if (result_side != result_white_won) {
        black_.write(text);
    }
}

bool BookFiles::finish() {
    white_.finish();
    black_.finish();
    if (is_good()) {
        return true;
    }
    const GrowingFile& failed = white_.is_good() ? black_ : white_;
    std::cerr << "Cannot write to " << failed.name() << "; the opening book is left as it was.\n";
    white_.restore();
    black_.restore();
    return false;
}
