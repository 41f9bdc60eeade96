// SPDX-License-Identifier: MIT
// Text files by lines.
#include "platform/text_file.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "support/temporary_folder.h"

namespace {

/// Lines of a file with the answer of each reading, up to the first false.
std::vector<std::pair<std::string, bool>> lines_of(const std::string& content) {
    write_file("file", content);
    TextFile file("file");
    EXPECT_TRUE(file.is_open());
    std::vector<std::pair<std::string, bool>> lines;
    bool more = true;
    while (more) {
        std::string line = "left over";
        more = file.next_line(line);
        lines.emplace_back(line, more);
    }
    return lines;
}

using Lines = std::vector<std::pair<std::string, bool>>;

}  // namespace

class TextFileTest : public testing::Test {
  private:
    TemporaryFolder folder_;
};

TEST_F(TextFileTest, LineFeedEndsALine) {
    EXPECT_EQ(lines_of("one\ntwo\n"), (Lines{{"one", true}, {"two", true}, {"", false}}));
}

TEST_F(TextFileTest, EndOfTheFileEndsALineToo) {
    EXPECT_EQ(lines_of("one\ntwo"), (Lines{{"one", true}, {"two", false}}));
}

TEST_F(TextFileTest, EmptyLinesAndEmptyFiles) {
    EXPECT_EQ(lines_of(""), (Lines{{"", false}}));
    EXPECT_EQ(lines_of("\n\n"), (Lines{{"", true}, {"", true}, {"", false}}));
}

TEST_F(TextFileTest, OtherBytesStay) {
    const std::string odd = std::string("a\r\t\0b", 5) + "\xff";
    EXPECT_EQ(lines_of(odd + "\n"), (Lines{{odd, true}, {"", false}}));
}

TEST_F(TextFileTest, LongLinesAreSimplyLong) {
    const std::string line(200000, 'x');
    EXPECT_EQ(lines_of(line + "\n"), (Lines{{line, true}, {"", false}}));
}

TEST_F(TextFileTest, ReadingBehindTheEndGivesEmptyLines) {
    write_file("file", "one");
    TextFile file("file");
    std::string line;
    EXPECT_FALSE(file.next_line(line));
    line = "left over";
    EXPECT_FALSE(file.next_line(line));
    EXPECT_EQ(line, "");
}

TEST_F(TextFileTest, MissingFileIsNotOpen) {
    TextFile file("nowhere");
    EXPECT_FALSE(file.is_open());
    std::string line = "left over";
    EXPECT_FALSE(file.next_line(line));
    EXPECT_EQ(line, "");
}

TEST_F(TextFileTest, FolderEndsAtOnce) {
    std::filesystem::create_directory("folder");
    TextFile file("folder");
    std::string line = "left over";
    EXPECT_FALSE(file.next_line(line));
    EXPECT_EQ(line, "");
}
