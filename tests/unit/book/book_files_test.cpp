// SPDX-License-Identifier: MIT
// The two book files: who gets a line, what stays, and what is taken back after a failed write.
#include "book/book_files.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "support/captured_errors.h"
#include "support/file_size_limit.h"
#include "support/temporary_folder.h"

namespace {

const std::string white_complaint = "Cannot write to cwhite; the opening book is left as it was.\n";
const std::string black_complaint = "Cannot write to cblack; the opening book is left as it was.\n";

}  // namespace

class BookFilesTest : public testing::Test {
  protected:
    /// Writes one text and finishes. Gives what standard error got.
    std::string write(std::int32_t result_side, const std::string& text) {
        const CapturedErrors errors;
        BookFiles files;
        files.write(result_side, text);
        finished_ = files.finish();
        return errors.text();
    }

    bool finished_ = false;

  private:
    TemporaryFolder folder_;
};

TEST_F(BookFilesTest, WhitesWinsGoToWhitesFile) {
    EXPECT_EQ(write(result_white_won, "e2e4"), "");
    EXPECT_TRUE(finished_);
    EXPECT_EQ(read_file("cwhite"), "e2e4");
    EXPECT_EQ(read_file("cblack"), "");
}

TEST_F(BookFilesTest, BlacksWinsGoToBlacksFile) {
    EXPECT_EQ(write(result_black_won, "e2e4"), "");
    EXPECT_TRUE(finished_);
    EXPECT_EQ(read_file("cwhite"), "");
    EXPECT_EQ(read_file("cblack"), "e2e4");
}

TEST_F(BookFilesTest, DrawsGoToBothFiles) {
    for (const std::int32_t draw : {result_draw, 2, -2}) {
        EXPECT_EQ(write(draw, "e2e4"), "") << draw;
        EXPECT_TRUE(finished_);
        EXPECT_EQ(read_file("cwhite"), "e2e4");
        EXPECT_EQ(read_file("cblack"), "e2e4");
        std::filesystem::remove("cwhite");
        std::filesystem::remove("cblack");
    }
}

TEST_F(BookFilesTest, BothFilesAreCreatedEvenWithoutALine) {
    write(result_draw, "");
    EXPECT_TRUE(finished_);
    EXPECT_EQ(read_file("cwhite"), "");
    EXPECT_EQ(read_file("cblack"), "");
}

TEST_F(BookFilesTest, LinesAreAddedBehindTheOldOnes) {
    write_file("cwhite", "d2d4\n");
    write_file("cblack", "c2c4");
    write(result_draw, "e2e4");
    write(result_draw, "e7e5\n");
    EXPECT_EQ(read_file("cwhite"), "d2d4\ne2e4e7e5\n");
    EXPECT_EQ(read_file("cblack"), "c2c4e2e4e7e5\n");
}

TEST_F(BookFilesTest, TextsOfARunStandInTheirOrder) {
    BookFiles files;
    files.write(result_white_won, "a");
    files.write(result_black_won, "b");
    files.write(result_draw, "c");
    files.write(result_white_won, "d");
    EXPECT_TRUE(files.is_good());
    EXPECT_TRUE(files.finish());
    EXPECT_EQ(read_file("cwhite"), "acd");
    EXPECT_EQ(read_file("cblack"), "bc");
}

TEST_F(BookFilesTest, FolderInThePlaceOfWhitesFileLeavesBlacksAsItWas) {
    std::filesystem::create_directory("cwhite");
    write_file("cblack", "old\n");
    EXPECT_EQ(write(result_draw, "e2e4"), white_complaint);
    EXPECT_FALSE(finished_);
    EXPECT_EQ(read_file("cblack"), "old\n");
    EXPECT_TRUE(std::filesystem::is_directory("cwhite"));
}

TEST_F(BookFilesTest, FolderInThePlaceOfBlacksFileLeavesWhitesAsItWas) {
    std::filesystem::create_directory("cblack");
    write_file("cwhite", "old\n");
    EXPECT_EQ(write(result_draw, "e2e4"), black_complaint);
    EXPECT_FALSE(finished_);
    EXPECT_EQ(read_file("cwhite"), "old\n");
    EXPECT_TRUE(std::filesystem::is_directory("cblack"));
}

TEST_F(BookFilesTest, FileThatWasNotThereIsNotThereAfterAFault) {
    std::filesystem::create_directory("cwhite");
    write(result_draw, "e2e4");
    EXPECT_FALSE(std::filesystem::exists("cblack"));
}

TEST_F(BookFilesTest, FaultIsKnownBeforeTheEnd) {
    std::filesystem::create_directory("cblack");
    const CapturedErrors errors;
    BookFiles files;
    EXPECT_FALSE(files.is_good());
    EXPECT_FALSE(files.finish());
}

TEST_F(BookFilesTest, WhitesFileIsNamedWhereBothFail) {
    std::filesystem::create_directory("cwhite");
    std::filesystem::create_directory("cblack");
    EXPECT_EQ(write(result_draw, "e2e4"), white_complaint);
}

TEST_F(BookFilesTest, FullDeviceIsAFaultAndLeavesTheOtherFile) {
    std::filesystem::create_symlink("/dev/full", "cwhite");
    write_file("cblack", "old\n");
    EXPECT_EQ(write(result_draw, "e2e4"), white_complaint);
    EXPECT_FALSE(finished_);
    EXPECT_EQ(read_file("cblack"), "old\n");
    EXPECT_TRUE(std::filesystem::is_symlink("cwhite"));
}

TEST_F(BookFilesTest, ShortTextThatDoesNotFitIsTakenBack) {
    write_file("cwhite", "old\n");
    write_file("cblack", "much older\n");
    std::string said;
    {
        const FileSizeLimit limit(8);
        said = write(result_white_won, "e2e4e7e5");
    }
    EXPECT_EQ(said, white_complaint);
    EXPECT_FALSE(finished_);
    EXPECT_EQ(read_file("cwhite"), "old\n");
    EXPECT_EQ(read_file("cblack"), "much older\n");
}

TEST_F(BookFilesTest, LongTextThatDoesNotFitIsTakenBackFromBoth) {
    const std::string old_lines(5000, 'o');
    write_file("cwhite", "old\n");
    write_file("cblack", old_lines);
    std::string said;
    {
        const FileSizeLimit limit(103000);
        said = write(result_draw, std::string(100000, 'e'));
    }
    EXPECT_EQ(said, black_complaint);
    EXPECT_FALSE(finished_);
    EXPECT_EQ(std::filesystem::file_size("cwhite"), 4U);
    EXPECT_EQ(read_file("cwhite").substr(0, 4), "old\n");
    EXPECT_TRUE(read_file("cblack") == old_lines) << read_file("cblack").size();
}

TEST_F(BookFilesTest, FilesThatWereNotThereGoWhereTextDoesNotFit) {
    std::string said;
    {
        const FileSizeLimit limit(3);
        said = write(result_white_won, "e2e4");
    }
    EXPECT_EQ(said, white_complaint);
    EXPECT_FALSE(std::filesystem::exists("cwhite"));
    EXPECT_FALSE(std::filesystem::exists("cblack"));
}

TEST_F(BookFilesTest, EmptyFilesStayThereWhereTextDoesNotFit) {
    write_file("cwhite", "");
    write_file("cblack", "");
    {
        const FileSizeLimit limit(3);
        write(result_draw, "e2e4");
    }
    EXPECT_EQ(read_file("cwhite"), "");
    EXPECT_EQ(read_file("cblack"), "");
}

TEST_F(BookFilesTest, TextThatJustFitsIsKept) {
    write_file("cwhite", "old\n");
    {
        const FileSizeLimit limit(8);
        EXPECT_EQ(write(result_white_won, "e2e4"), "");
    }
    EXPECT_TRUE(finished_);
    EXPECT_EQ(read_file("cwhite"), "old\ne2e4");
}

TEST_F(BookFilesTest, GrowingFileKnowsItsName) {
    EXPECT_EQ(GrowingFile("some name").name(), "some name");
}
