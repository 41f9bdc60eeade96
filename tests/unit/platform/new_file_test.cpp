// SPDX-License-Identifier: MIT
// A file gets its name whole or not at all.
#include "platform/new_file.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "support/file_size_limit.h"
#include "support/open_files.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

class NewFileTest : public testing::Test {
  protected:
    static std::vector<std::uint8_t> bytes_of(const std::string& text) {
        return {text.begin(), text.end()};
    }

    /// How many files lie in the folder.
    static std::ptrdiff_t files() {
        return std::distance(fs::directory_iterator("."), fs::directory_iterator());
    }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(NewFileTest, FinishGivesTheName) {
    NewFile file("table");
    EXPECT_TRUE(file.write({}));
    EXPECT_TRUE(file.write(bytes_of("abc")));
    EXPECT_TRUE(file.write(bytes_of(std::string("\0\r\n\xff", 4))));
    EXPECT_FALSE(fs::exists("table"));
    const std::string part = fs::directory_iterator(".")->path().filename().string();
    EXPECT_EQ(files(), 1);
    EXPECT_TRUE(part.starts_with("table.") && part.ends_with(".part")) << part;
    EXPECT_TRUE(file.finish());
    EXPECT_EQ(file.error(), "");
    EXPECT_EQ(read_file("table"), std::string("abc\0\r\n\xff", 7));
    EXPECT_EQ(files(), 1);
}

TEST_F(NewFileTest, OldFileStaysUntilTheNewOneIsFinished) {
    write_file("table", "old");
    NewFile file("table");
    EXPECT_TRUE(file.write(bytes_of("new")));
    EXPECT_EQ(read_file("table"), "old");
    EXPECT_TRUE(file.finish());
    EXPECT_EQ(read_file("table"), "new");
    EXPECT_EQ(files(), 1);
}

TEST_F(NewFileTest, UnfinishedFileLeavesNothing) {
    write_file("table", "old");
    const int open_before = open_files();
    {
        NewFile file("table");
        EXPECT_TRUE(file.write(bytes_of("new")));
    }
    EXPECT_EQ(read_file("table"), "old");
    EXPECT_EQ(files(), 1);
    EXPECT_EQ(open_files(), open_before);
}

TEST_F(NewFileTest, TwoWritersOfOneNameDoNotMeet) {
    NewFile first("table");
    NewFile second("table");
    EXPECT_EQ(files(), 2);
    EXPECT_TRUE(first.write(bytes_of("first")));
    EXPECT_TRUE(second.write(bytes_of("second")));
    EXPECT_TRUE(first.write(bytes_of("...")));
    EXPECT_TRUE(first.finish());
    EXPECT_EQ(read_file("table"), "first...");
    EXPECT_TRUE(second.finish());
    EXPECT_EQ(read_file("table"), "second");
    EXPECT_EQ(files(), 1);
}

TEST_F(NewFileTest, FolderThatIsNotThere) {
    const int open_before = open_files();
    {
        NewFile file("folder/table");
        EXPECT_EQ(file.error(), "No such file or directory");
        EXPECT_FALSE(file.write(bytes_of("new")));
        EXPECT_FALSE(file.finish());
        EXPECT_EQ(file.error(), "No such file or directory");
    }
    EXPECT_EQ(files(), 0);
    EXPECT_EQ(open_files(), open_before);
}

TEST_F(NewFileTest, NameThatIsTakenByAFolder) {
    fs::create_directory("table");
    write_file("table/inside", "x");
    {
        NewFile file("table");
        EXPECT_TRUE(file.write(bytes_of("new")));
        EXPECT_FALSE(file.finish());
        EXPECT_NE(file.error(), "");
    }
    EXPECT_TRUE(fs::is_directory("table"));
    EXPECT_EQ(files(), 1) << "the part is gone";
}

TEST_F(NewFileTest, FullDiskIsToldWhenWriting) {
    write_file("table", "old");
    const FileSizeLimit limit(100'000);
    {
        NewFile file("table");
        EXPECT_FALSE(file.write(std::vector<std::uint8_t>(200'000, 7)) && file.finish());
        EXPECT_EQ(file.error(), "File too large");
        EXPECT_FALSE(file.write(bytes_of("more")));
        EXPECT_FALSE(file.finish());
    }
    EXPECT_EQ(read_file("table"), "old");
    EXPECT_EQ(files(), 1);
}

TEST_F(NewFileTest, FullDiskIsToldWhenFinishing) {
    write_file("table", "old");
    const FileSizeLimit limit(10);
    {
        NewFile file("table");
        EXPECT_TRUE(file.write(std::vector<std::uint8_t>(100, 7))) << "still in the buffer";
        EXPECT_FALSE(file.finish());
        EXPECT_EQ(file.error(), "File too large");
    }
    EXPECT_EQ(read_file("table"), "old");
    EXPECT_EQ(files(), 1);
}
