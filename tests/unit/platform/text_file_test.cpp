// SPDX-License-Identifier: MIT
// Text files by lines.
#include "platform/text_file.h"

#include <gtest/gtest.h>
#include <vector>

#include "support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

Lines lines_of(const std::string& content) {
    write_file("file", content);
    TextFile file("file");
    EXPECT_TRUE(file.is_open());
    Lines lines;
    std::string line = "left over";
    while (file.next_line(line)) {
        lines.push_back(line);
    }
    EXPECT_EQ(line, "");
    return lines;
}

}  // namespace

class TextFileTest : public testing::Test {
  private:
    TemporaryFolder folder_;
};

TEST_F(TextFileTest, LineFeedEndsALine) {
    EXPECT_EQ(lines_of("one\ntwo\n"), (Lines{"one", "two"}));
}

TEST_F(TextFileTest, EndOfTheFileEndsALineToo) {
    EXPECT_EQ(lines_of("one\ntwo"), (Lines{"one", "two"}));
}

TEST_F(TextFileTest, EmptyLinesAndEmptyFiles) {
    EXPECT_EQ(lines_of(""), Lines{});
    EXPECT_EQ(lines_of("\n\n"), (Lines{"", ""}));
}

TEST_F(TextFileTest, OtherBytesStay) {
    const std::string odd = std::string("a\r\r\t\0b", 6) + "\xff";
    EXPECT_EQ(lines_of(odd + "\n"), (Lines{odd}));
}

TEST_F(TextFileTest, CarriageReturnBeforeALineFeedBelongsToTheLineEnd) {
    EXPECT_EQ(lines_of("a\r\n\r\n\r\r\nb\r"), (Lines{"a", "", "\r", "b\r"}));
}

TEST_F(TextFileTest, PairAcrossTheEdgeOfABufferIsOneLineEnd) {
    for (const std::size_t length : {65534U, 65535U, 65536U}) {
        const std::string line(length, 'x');
        EXPECT_EQ(lines_of(line + "\r\nb"), (Lines{line, "b"}));
    }
}

TEST_F(TextFileTest, EndlessLinesAreCut) {
    const std::string line(max_line + 100, 'x');
    EXPECT_EQ(lines_of(line + "\nb"), (Lines{line.substr(0, max_line), "b"}));
}

TEST_F(TextFileTest, BytesAreCountedByTheBuffer) {
    write_file("file", std::string(100000, 'x'));
    TextFile file("file");
    EXPECT_EQ(file.bytes_read(), 0U);
    EXPECT_EQ(file.next_byte(), 'x');
    EXPECT_EQ(file.bytes_read(), 65536U);
}

TEST_F(TextFileTest, LongLinesAreSimplyLong) {
    const std::string line(200000, 'x');
    EXPECT_EQ(lines_of(line + "\n"), (Lines{line}));
}

TEST_F(TextFileTest, NothingIsLeftBehindTheEnd) {
    write_file("file", "one");
    TextFile file("file");
    std::string line;
    EXPECT_TRUE(file.next_line(line));
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
