// SPDX-License-Identifier: MIT
// Files seen as memory: their bytes, their handles, and how far a fault lets a mapping come.
#include "platform/mapped_file.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/open_files.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

class MappedFileTest : public testing::Test {
  protected:
    /// A mapping that stops after a step changes nothing and leaves nothing open.
    static void expect_stop(const std::string& name, MapStep step) {
        static constexpr std::uint8_t byte = 0;
        const int before = open_files();
        MappedFile mapped = {&byte, 55, 66, 77};
        EXPECT_EQ(map_file(name.c_str(), mapped), step) << name;
        EXPECT_EQ(mapped.bytes, &byte);
        EXPECT_EQ(mapped.size, 55U);
        EXPECT_EQ(mapped.file, 66);
        EXPECT_EQ(mapped.mapping, 77);
        EXPECT_EQ(open_files(), before);
    }

    static void close_and_unmap(const MappedFile& mapped) {
        close_handle(mapped.mapping);
        close_handle(mapped.file);
        EXPECT_TRUE(unmap_bytes(mapped.bytes, mapped.size));
    }

  private:
    TemporaryFolder folder_;
};

std::string text_of(const MappedFile& mapped) {
    return {mapped.bytes, mapped.bytes + mapped.size};
}

}  // namespace

TEST_F(MappedFileTest, HasTheBytesOfTheFile) {
    std::string bytes;
    for (int i = 0; i < 100'000; ++i) {
        bytes += static_cast<char>(i * 7 + i / 256);
    }
    for (const std::size_t size : {1U, 4095U, 4096U, 4097U, 100'000U}) {
        write_file("file", bytes.substr(0, size));
        MappedFile mapped;
        ASSERT_EQ(map_file("file", mapped), MapStep::done);
        EXPECT_EQ(mapped.size, size);
        EXPECT_EQ(text_of(mapped), bytes.substr(0, size));
        close_and_unmap(mapped);
    }
}

TEST_F(MappedFileTest, HandlesStayOpenUntilTheyAreClosed) {
    write_file("file", "abc");
    const int before = open_files();
    MappedFile mapped;
    ASSERT_EQ(map_file("file", mapped), MapStep::done);
    EXPECT_NE(mapped.file, no_handle);
    EXPECT_EQ(open_files(), before + 1);
    close_handle(mapped.mapping);
    close_handle(mapped.file);
    EXPECT_EQ(open_files(), before);
    EXPECT_EQ(text_of(mapped), "abc");
    EXPECT_TRUE(unmap_bytes(mapped.bytes, mapped.size));
}

TEST_F(MappedFileTest, LivesOnWithoutItsName) {
    write_file("file", "abc");
    MappedFile mapped;
    ASSERT_EQ(map_file("file", mapped), MapStep::done);
    fs::remove("file");
    EXPECT_EQ(text_of(mapped), "abc");
    close_and_unmap(mapped);
}

TEST_F(MappedFileTest, TwoMappingsOfAFileAreApart) {
    write_file("file", "abc");
    MappedFile first;
    MappedFile second;
    ASSERT_EQ(map_file("file", first), MapStep::done);
    ASSERT_EQ(map_file("file", second), MapStep::done);
    EXPECT_NE(first.bytes, second.bytes);
    close_and_unmap(first);
    EXPECT_EQ(text_of(second), "abc");
    close_and_unmap(second);
}

TEST_F(MappedFileTest, FollowsALink) {
    write_file("file", "abc");
    fs::create_symlink("file", "link");
    MappedFile mapped;
    ASSERT_EQ(map_file("link", mapped), MapStep::done);
    EXPECT_EQ(text_of(mapped), "abc");
    close_and_unmap(mapped);
}

TEST_F(MappedFileTest, AbsentFileOpensNothing) {
    expect_stop("file", MapStep::opened_nothing);
    expect_stop("", MapStep::opened_nothing);
    expect_stop("folder/file", MapStep::opened_nothing);
    fs::create_symlink("nothing", "loose");
    expect_stop("loose", MapStep::opened_nothing);
    write_file("file", "abc");
    const OpenFileLimit limit(0);
    expect_stop("file", MapStep::opened_nothing);
}

TEST_F(MappedFileTest, EmptyFileIsOpenedOnly) {
    write_file("file", "");
    expect_stop("file", MapStep::opened_file);
}

TEST_F(MappedFileTest, FolderPipeAndDeviceAreOpenedOnly) {
    fs::create_directory("folder");
    expect_stop("folder", MapStep::opened_file);
    ASSERT_EQ(mkfifo("pipe", S_IRUSR | S_IWUSR), 0);
    expect_stop("pipe", MapStep::opened_file);
    expect_stop("/dev/zero", MapStep::opened_file);
}

TEST_F(MappedFileTest, FileWithoutRoomForItStopsBeforeTheEnd) {
    write_file("file", "abc");
    const auto try_it = [] {
        const rlimit nothing_more = {0, RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &nothing_more);
        MappedFile mapped;
        const int before = open_files();
        const bool stopped = map_file("file", mapped) == MapStep::made_mapping;
        const bool untouched = mapped.bytes == nullptr && mapped.file == no_handle;
        _exit(stopped && untouched && open_files() == before ? 0 : 1);
    };
    EXPECT_EXIT(try_it(), testing::ExitedWithCode(0), "");
}

TEST_F(MappedFileTest, UnmappingNothingIsAFault) {
    EXPECT_FALSE(unmap_bytes(nullptr, 0));
    static constexpr std::uint8_t byte = 0;
    EXPECT_FALSE(unmap_bytes(&byte, 0));
}

TEST_F(MappedFileTest, CannotBeWrittenTo) {
    write_file("file", "abc");
    MappedFile mapped;
    ASSERT_EQ(map_file("file", mapped), MapStep::done);
    std::ifstream maps("/proc/self/maps");
    std::string line;
    int mappings = 0;
    while (std::getline(maps, line)) {
        if (line.ends_with("/file")) {
            EXPECT_NE(line.find(" r--s "), std::string::npos) << line;
            ++mappings;
        }
    }
    EXPECT_EQ(mappings, 1);
    close_and_unmap(mapped);
}

TEST_F(MappedFileTest, ProgramWithoutStandardInputMapsToo) {
    write_file("file", "abc");
    const auto try_it = [] {
        close(STDIN_FILENO);
        MappedFile mapped;
        const bool done = map_file("file", mapped) == MapStep::done;
        _exit(done && mapped.file == STDIN_FILENO && text_of(mapped) == "abc" ? 0 : 1);
    };
    EXPECT_EXIT(try_it(), testing::ExitedWithCode(0), "");
}

TEST_F(MappedFileTest, ClosingNoHandleDoesNothing) {
    errno = 0;
    close_handle(no_handle);
    EXPECT_EQ(errno, 0);
}
