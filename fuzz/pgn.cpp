// SPDX-License-Identifier: MIT
// Bytes of any kind as a PGN file: whatever they are, every line of the books is a row of moves in
// four characters. The files lie in a folder of the process's own, in the working directory, and
// the books are taken away before each run.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "book/book_builder.h"
#include "book/book_lines.h"
#include "ending_clock.h"
#include "support/captured_output.h"
#include "support/temporary_folder.h"

namespace {

constexpr const char* pgn_name = "games.pgn";
constexpr std::size_t move_length = 4;

/// A folder to work in for the life of the process, taken away at its end.
class ScratchFolder {
  public:
    ScratchFolder()
        : folder_("fuzz-pgn-" + std::to_string(getpid())),
          before_(std::filesystem::current_path()) {
        std::filesystem::create_directory(folder_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(before_ / folder_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    void enter() const { std::filesystem::current_path(before_ / folder_); }
    void leave() const { std::filesystem::current_path(before_); }

  private:
    std::filesystem::path folder_;
    std::filesystem::path before_;
};

void check(bool holds, const char* what, const std::string& text) {
    if (!holds) {
        std::fprintf(stderr, "%s: %s\n", what, text.c_str());
        std::abort();
    }
}

bool is_square(const std::string& line, std::size_t at) {
    return line[at] >= 'a' && line[at] <= 'h' && line[at + 1] >= '1' && line[at + 1] <= '8';
}

/// Rows of moves, the last of them ended. A letter in a comment sends the rest of a game to the end
/// of a line of the other book, so there is no length that a line may not have.
void check_book(const char* name) {
    const std::string book = read_file(name);
    check(!book.empty() && book.back() == '\n', "a book without a line end", name);
    std::size_t begin = 0;
    while (begin < book.size()) {
        const std::size_t end = book.find('\n', begin);
        const std::string line = book.substr(begin, end - begin);
        check(line.size() % move_length == 0, "a line with a piece of a move", line);
        for (std::size_t at = 0; at < line.size(); at += 2) {
            check(is_square(line, at), "a line with what is no square", line);
        }
        begin = end + 1;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder folder;
    folder.enter();
    reset_ending_clock();
    log_enabled = false;
    std::filesystem::remove(white_book_name);
    std::filesystem::remove(black_book_name);
    write_file(pgn_name, std::string(data, data + size));
    const CapturedOutput output;
    createbook(pgn_name);
    check(output.text() == "Creating BOOK!\nDone\n", "other words than usual", output.text());
    check_book(white_book_name);
    check_book(black_book_name);
    folder.leave();
    return 0;
}
