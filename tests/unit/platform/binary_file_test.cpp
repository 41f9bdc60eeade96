// SPDX-License-Identifier: MIT
// Binary files: which are opened, places in them, and their lengths.
#include "platform/binary_file.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "support/failing_seeks.h"
#include "support/open_files.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

using OpenedFile = BinaryStream;

OpenedFile opened(const std::string& name) {
    return OpenedFile(open_binary(name.c_str()));
}

class BinaryFile : public testing::Test {
  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(BinaryFile, BytesAreReadAsTheyAre) {
    const std::string bytes("a\r\n\x1a\0b\xff", 7);
    write_file("file", bytes);
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    std::string read(10, '-');
    EXPECT_EQ(std::fread(read.data(), 1, read.size(), file.get()), 7U);
    EXPECT_EQ(read, bytes + "---");
}

TEST_F(BinaryFile, IsNotWritten) {
    write_file("file", "abc");
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fputc('x', file.get()), EOF);
}

TEST_F(BinaryFile, AbsentFileIsNotOpened) {
    const int before = open_files();
    EXPECT_EQ(opened("file"), nullptr);
    EXPECT_EQ(opened(""), nullptr);
    EXPECT_EQ(opened("folder/file"), nullptr);
    EXPECT_EQ(opened(std::string(10'000, 'x')), nullptr);
    EXPECT_FALSE(fs::exists("file"));
    EXPECT_EQ(open_files(), before);
}

TEST_F(BinaryFile, FolderIsNotOpened) {
    fs::create_directory("folder");
    EXPECT_EQ(opened("folder"), nullptr);
    EXPECT_EQ(opened("."), nullptr);
}

TEST_F(BinaryFile, PipeAndDeviceAreNotOpened) {
    ASSERT_EQ(mkfifo("pipe", S_IRUSR | S_IWUSR), 0);
    EXPECT_EQ(opened("pipe"), nullptr);
    EXPECT_EQ(opened("/dev/null"), nullptr);
}

TEST_F(BinaryFile, LinkToAFileIsOpened) {
    write_file("file", "abc");
    fs::create_symlink("file", "link");
    fs::create_symlink("nothing", "loose");
    fs::create_symlink(".", "to_folder");
    EXPECT_NE(opened("link"), nullptr);
    EXPECT_EQ(opened("loose"), nullptr);
    EXPECT_EQ(opened("to_folder"), nullptr);
}

TEST_F(BinaryFile, NothingIsOpenedBeyondTheLimitOfFiles) {
    write_file("file", "abc");
    const OpenFileLimit limit(1);
    const OpenedFile first = opened("file");
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(opened("file"), nullptr);
}

TEST_F(BinaryFile, PlacesAreCountedFromTheStart) {
    write_file("file", "abcdef");
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(seek_binary(file.get(), 4));
    EXPECT_EQ(std::fgetc(file.get()), 'e');
    EXPECT_TRUE(seek_binary(file.get(), 1));
    EXPECT_EQ(std::fgetc(file.get()), 'b');
    EXPECT_TRUE(seek_binary(file.get(), 0));
    EXPECT_EQ(std::fgetc(file.get()), 'a');
}

TEST_F(BinaryFile, PlaceBehindTheEndIsNoFaultAndHasNothingToRead) {
    write_file("file", "abc");
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    for (const std::uint64_t place : {3ULL, 4ULL, 1ULL << 32U, (1ULL << 40U) + 1}) {
        EXPECT_TRUE(seek_binary(file.get(), place)) << place;
        EXPECT_EQ(std::fgetc(file.get()), EOF) << place;
        EXPECT_EQ(std::ferror(file.get()), 0) << place;
    }
    EXPECT_TRUE(seek_binary(file.get(), 2));
    EXPECT_EQ(std::fgetc(file.get()), 'c');
}

TEST_F(BinaryFile, PlaceBeyondWhatTheSystemCountsIsAFault) {
    write_file("file", "abc");
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    for (const std::uint64_t place : {std::uint64_t{1} << 63U, ~std::uint64_t{0}}) {
        EXPECT_FALSE(seek_binary(file.get(), place)) << place;
    }
    const FailingSeeks seeks(SeekFault::of_place);
    EXPECT_FALSE(seek_binary(file.get(), 0));
}

TEST_F(BinaryFile, PlacesBeyondFourGigabytesAreReached) {
    constexpr std::uint64_t place = (std::uint64_t{1} << 32U) + 5;
    { const std::ofstream empty("file"); }
    fs::resize_file("file", place);
    { std::ofstream("file", std::ios::app) << "x"; }
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(length_of_binary(file.get()), place + 1);
    EXPECT_TRUE(seek_binary(file.get(), place));
    EXPECT_EQ(std::fgetc(file.get()), 'x');
    EXPECT_TRUE(seek_binary(file.get(), place - 1));
    EXPECT_EQ(std::fgetc(file.get()), 0);
}

TEST_F(BinaryFile, LengthIsCountedInBytesAndLeavesTheEnd) {
    for (const std::size_t length : {0U, 1U, 5000U, 100'000U}) {
        write_file("file", std::string(length, 'x'));
        const OpenedFile file = opened("file");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(length_of_binary(file.get()), length);
        EXPECT_EQ(std::fgetc(file.get()), EOF);
        EXPECT_EQ(length_of_binary(file.get()), length);
    }
}

TEST_F(BinaryFile, IsReadWhole) {
    for (const std::size_t length : {0U, 1U, 100'000U}) {
        write_file("file", std::string(length, 'x'));
        EXPECT_EQ(read_binary("file"), std::vector<std::uint8_t>(length, 'x'));
    }
    EXPECT_EQ(read_binary("absent"), std::nullopt);
    EXPECT_EQ(read_binary("."), std::nullopt);
    const FailingSeeks seeks(SeekFault::of_end);
    EXPECT_EQ(read_binary("file"), std::nullopt);
}

TEST_F(BinaryFile, LengthThatCannotBeFoundIsEmpty) {
    write_file("file", "abc");
    const OpenedFile file = opened("file");
    ASSERT_NE(file, nullptr);
    for (const SeekFault fault : {SeekFault::of_end, SeekFault::of_telling}) {
        const FailingSeeks seeks(fault);
        EXPECT_EQ(length_of_binary(file.get()), std::nullopt);
    }
    EXPECT_EQ(length_of_binary(file.get()), 3U);
}
