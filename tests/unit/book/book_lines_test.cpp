// SPDX-License-Identifier: MIT
// Reading the two book files: what is said, what counts as a line and how much of it is kept.
#include "book/book_lines.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>

#include "platform/random.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/loaded_books.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"

namespace {

constexpr const char* loading_both = "Loading white book...\nLoading black book...\n";
constexpr const char* no_white_book = "Book for white side not found!\n";
constexpr const char* no_black_book = "Book for black side not found!\n";

constexpr std::uint32_t old_seed = 99;

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// The next number of the generator after a seed.
std::int32_t first_number(std::uint32_t seed) {
    seed_random(seed);
    return next_random();
}

class BookLinesTest : public testing::Test {
  protected:
    BookLinesTest() {
        reset_all(1);
        reset_fake_clock();
        seed_random(old_seed);
    }
    ~BookLinesTest() override { reset_all(1); }

    /// Loads from the working directory as it is.
    bool load() {
        const CapturedOutput output;
        const bool loaded = LoadBooks();
        output_ = output.text();
        return loaded;
    }

    /// White's book of this text, Black's empty.
    static void load_white(const std::string& text) {
        EXPECT_EQ(load_books(text, ""), loading_both);
    }

    /// Both books of two older lines.
    static void load_old_books() { load_books("d2d4d7d5\nc2c4\n", "c2c4c7c5\nd2d4\n"); }

    static void expect_old_books() {
        ASSERT_EQ(book_white_count, 2);
        ASSERT_EQ(book_black_count, 2);
        EXPECT_EQ(row_text(book_white_lines, 0), "d2d4d7d5");
        EXPECT_EQ(row_text(book_black_lines, 0), "c2c4c7c5");
    }

    std::string output_;

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(BookLinesTest, EachFileFillsItsOwnTableInTheOrderOfItsLines) {
    write_file("cwhite", "e2e4e7e5\nd2d4\n");
    write_file("cblack", "e2e4c7c5\nc2c4\ng1f3\n");
    EXPECT_TRUE(load());
    EXPECT_EQ(output_, loading_both);
    ASSERT_EQ(book_white_count, 2);
    EXPECT_EQ(row_text(book_white_lines, 0), "e2e4e7e5");
    EXPECT_EQ(row_text(book_white_lines, 1), "d2d4");
    ASSERT_EQ(book_black_count, 3);
    EXPECT_EQ(row_text(book_black_lines, 0), "e2e4c7c5");
    EXPECT_EQ(row_text(book_black_lines, 1), "c2c4");
    EXPECT_EQ(row_text(book_black_lines, 2), "g1f3");
}

TEST_F(BookLinesTest, LoadingOpensTheBookForTheGame) {
    engine.book_out = true;
    load_white("e2e4\n");
    EXPECT_FALSE(engine.book_out);
}

TEST_F(BookLinesTest, CalendarSeedsTheGenerator) {
    for (const std::uint32_t seconds : {0U, 12345U, 4294967295U}) {
        seed_random(old_seed);
        fake_calendar_seconds = seconds;
        load_white("");
        const std::int32_t number = next_random();
        EXPECT_EQ(number, first_number(seconds));
        EXPECT_NE(number, first_number(old_seed));
    }
}

TEST_F(BookLinesTest, ClockIsNotRead) {
    load_white("e2e4\n");
    EXPECT_EQ(fake_clock_readings, 0U);
}

TEST_F(BookLinesTest, WithoutFilesBothAreMissedWhitesFirst) {
    EXPECT_FALSE(load());
    EXPECT_EQ(output_, std::string(no_white_book) + no_black_book);
}

TEST_F(BookLinesTest, WithoutBlacksFileWhitesIsNotReadEither) {
    load_old_books();
    write_file("cwhite", "e2e4\n");
    EXPECT_FALSE(load());
    EXPECT_EQ(output_, no_black_book);
    expect_old_books();
}

TEST_F(BookLinesTest, WithoutWhitesFileBlacksIsNotReadEither) {
    load_old_books();
    write_file("cblack", "e2e4\n");
    EXPECT_FALSE(load());
    EXPECT_EQ(output_, no_white_book);
    expect_old_books();
}

TEST_F(BookLinesTest, MissingFileLeavesTheGameAndTheGenerator) {
    fake_calendar_seconds = 12345;
    for (const char* name : {"cwhite", "cblack"}) {
        write_file(name, "e2e4\n");
        seed_random(old_seed);
        engine.book_out = true;
        EXPECT_FALSE(load());
        EXPECT_TRUE(engine.book_out);
        const std::int32_t number = next_random();
        EXPECT_EQ(number, first_number(old_seed));
        std::filesystem::remove(name);
    }
}

TEST_F(BookLinesTest, NamesAreSmallLetters) {
    write_file("CWHITE", "e2e4\n");
    write_file("cblack", "e2e4\n");
    EXPECT_FALSE(load());
    EXPECT_EQ(output_, no_white_book);
}

TEST_F(BookLinesTest, EmptyFilesAreBooksWithoutALine) {
    load_old_books();
    EXPECT_EQ(load_books("", ""), loading_both);
    EXPECT_EQ(book_white_count, 0);
    EXPECT_EQ(book_black_count, 0);
}

TEST_F(BookLinesTest, FoldersAreBooksWithoutALine) {
    load_old_books();
    std::filesystem::create_directory("cwhite");
    std::filesystem::create_directory("cblack");
    EXPECT_TRUE(load());
    EXPECT_EQ(output_, loading_both);
    EXPECT_EQ(book_white_count, 0);
    EXPECT_EQ(book_black_count, 0);
}

TEST_F(BookLinesTest, LastLineWithoutALineEndIsLost) {
    load_white("e2e4\nd2d4");
    EXPECT_EQ(book_white_count, 1);
    load_white("d2d4");
    EXPECT_EQ(book_white_count, 0);
}

TEST_F(BookLinesTest, EmptyLinesAreRows) {
    load_white("\n\ne2e4\n\n");
    ASSERT_EQ(book_white_count, 4);
    EXPECT_EQ(row_text(book_white_lines, 1), "");
    EXPECT_EQ(row_text(book_white_lines, 2), "e2e4");
}

TEST_F(BookLinesTest, LoadingAgainReplacesEveryLine) {
    load_white("e2e4e7e5g1f3\nd2d4\nc2c4\n");
    load_white("d2d4d7d5\n\n");
    ASSERT_EQ(book_white_count, 2);
    EXPECT_EQ(row_text(book_white_lines, 0), "d2d4d7d5");
    EXPECT_EQ(row_text(book_white_lines, 1), "");
}

TEST_F(BookLinesTest, TwoThousandFiveHundredLinesAreKept) {
    struct Case {
        std::size_t lines;
        std::int32_t kept;
    };
    for (const Case& each : {Case{2499, 2499}, Case{2500, 2500}, Case{2501, 2500}}) {
        const std::string text = repeated("e2e4\n", each.lines - 1) + "d2d4\n";
        load_books(text, text);
        EXPECT_EQ(book_white_count, each.kept);
        EXPECT_EQ(book_black_count, each.kept);
        const std::string last = each.lines > 2500 ? "e2e4" : "d2d4";
        EXPECT_EQ(row_text(book_white_lines, static_cast<std::size_t>(each.kept) - 1), last);
        EXPECT_EQ(row_text(book_black_lines, static_cast<std::size_t>(each.kept) - 1), last);
    }
}

TEST_F(BookLinesTest, EmptyLinesCountAmongThem) {
    load_white(repeated("\n", 2499) + "e2e4\nd2d4\n");
    ASSERT_EQ(book_white_count, 2500);
    EXPECT_EQ(row_text(book_white_lines, 2499), "e2e4");
}

TEST_F(BookLinesTest, NinetyOneCharactersOfALineAreKept) {
    for (const std::size_t length : {90U, 91U, 92U, 100U, 101U, 200000U}) {
        const std::string line = repeated("0123456789", 9) + "x" + std::string(length - 90, 'y');
        load_white(line.substr(0, length) + "\ne2e4\n");
        ASSERT_EQ(book_white_count, 2);
        EXPECT_EQ(row_text(book_white_lines, 0), line.substr(0, std::min<std::size_t>(length, 91)));
        EXPECT_EQ(row_text(book_white_lines, 1), "e2e4");
    }
}

TEST_F(BookLinesTest, CarriageReturnBeforeALineFeedBelongsToTheLineEnd) {
    load_white("e2e4\r\n\r\nd2d4\n" + std::string(91, 'x') + "\r\n");
    ASSERT_EQ(book_white_count, 4);
    EXPECT_EQ(row_text(book_white_lines, 0), "e2e4");
    EXPECT_EQ(row_text(book_white_lines, 1), "");
    EXPECT_EQ(row_text(book_white_lines, 2), "d2d4");
    EXPECT_EQ(row_text(book_white_lines, 3), std::string(91, 'x'));
}

TEST_F(BookLinesTest, OtherBytesStay) {
    const std::string odd = std::string("\re2\t \0\x80\xff", 8) + "e4\rx";
    load_white(odd + "\n");
    ASSERT_EQ(book_white_count, 1);
    EXPECT_EQ(std::string_view(book_white_lines[0].data(), odd.size() + 1), odd + '\0');
}

TEST_F(BookLinesTest, MessagesGoToTheLogAsWell) {
    log_enabled = true;
    load();
    write_file("cwhite", "");
    write_file("cblack", "");
    load();
    EXPECT_EQ(read_file("corvane.log"), std::string(no_white_book) + no_black_book + loading_both);
}

TEST_F(BookLinesTest, ResetForgetsBothBooks) {
    load_old_books();
    reset_book_lines();
    EXPECT_EQ(book_white_count, 0);
    EXPECT_EQ(book_black_count, 0);
    EXPECT_EQ(row_text(book_white_lines, 0), "");
    EXPECT_EQ(row_text(book_black_lines, 0), "");
}
