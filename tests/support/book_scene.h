// SPDX-License-Identifier: MIT
// A folder in which an opening book is built.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "book/book_builder.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"

class BookScene : public testing::Test {
  protected:
    BookScene() {
        reset_all(1);
        reset_fake_clock();
    }
    ~BookScene() override { reset_all(1); }

    /// Adds the games of a PGN text to the books; gives what was printed.
    static std::string build(const std::string& pgn) {
        write_file("games.pgn", pgn);
        return build_from("games.pgn");
    }

    static std::string build_from(const std::string& name) {
        const CapturedOutput output;
        createbook(name);
        return output.text();
    }

    /// What a PGN text without a result adds to both books, without the line end of the last line.
    static std::string line_of(const std::string& pgn) {
        write_file("cwhite", "");
        write_file("cblack", "");
        EXPECT_EQ(build(pgn), "Creating BOOK!\nDone\n");
        std::string line = read_file("cwhite");
        EXPECT_EQ(read_file("cblack"), line);
        EXPECT_TRUE(line.ends_with('\n'));
        line.pop_back();
        return line;
    }

  private:
    TemporaryFolder folder_;
};
