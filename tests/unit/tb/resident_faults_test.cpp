// SPDX-License-Identifier: MIT
// Halves that were to be held in memory and cannot be: each fault ends the program with its
// message.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

#include "support/endgame_files.h"
#include "support/expect_exit.h"
#include "support/failing_seeks.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/register.h"
#include "tb/resident.h"
#include "tb/tb_memory.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;

class ResidentFaults : public testing::Test {
  protected:
    void SetUp() override {
        reset_all();
        fs::create_directory("tables");
        fs::copy_file(endgame_data + "/krk.nbw", "tables/krk.nbw");
        ASSERT_EQ(TbRegisterAll("tables"), 3);
    }
    void TearDown() override { reset_all(); }

    static void expect_load_exit(const std::string& message) {
        expect_exit(message, [] { TbLoadHalf(krk, 0, nullptr); });
    }

    static void expect_map_exit(const std::string& message) {
        expect_exit(message, [] { TbMapHalf(krk, 0); });
        expect_exit(message, [] {
            SystemHandle file = no_handle;
            SystemHandle mapping = no_handle;
            TbMapHalfHandles(krk, 0, file, mapping);
        });
    }

  private:
    TemporaryFolder folder_;
};

/// No more address space than the process has now, but for `further` bytes.
void limit_address_space(rlim_t further) {
    std::ifstream facts("/proc/self/statm");
    rlim_t pages = 0;
    facts >> pages;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + further;
    setrlimit(RLIMIT_AS, &limit);
}

}  // namespace

TEST_F(ResidentFaults, LoadedFileThatVanished) {
    fs::remove("tables/krk.nbw");
    expect_load_exit("*** Read from tables/krk.nbw failed\n");
}

TEST_F(ResidentFaults, LoadedFileThatWasCut) {
    for (const std::uint32_t size : {27029U, 1U, 0U}) {
        fs::resize_file("tables/krk.nbw", size);
        expect_load_exit("*** Read from tables/krk.nbw failed\n");
    }
}

TEST_F(ResidentFaults, LoadedFileThatCannotBeRead) {
    fs::remove("tables/krk.nbw");
    fs::create_symlink("/proc/self/mem", "tables/krk.nbw");
    expect_load_exit("*** Read from tables/krk.nbw failed\n");
}

TEST_F(ResidentFaults, LengthOfALoadedFileThatCannotBeFound) {
    for (const SeekFault fault : {SeekFault::of_end, SeekFault::of_telling}) {
        const FailingSeeks seeks(fault);
        expect_load_exit("*** Cannot find length of tables/krk.nbw\n");
    }
}

TEST_F(ResidentFaults, StartOfALoadedFileThatCannotBeFound) {
    const FailingSeeks seeks(SeekFault::of_place);
    expect_load_exit("*** Seek in tables/krk.nbw failed\n");
}

TEST_F(ResidentFaults, MappedFileThatVanished) {
    fs::remove("tables/krk.nbw");
    expect_map_exit("*** Couldn't open file tables/krk.nbw with CreateFile()\n");
}

TEST_F(ResidentFaults, MappedFileThatIsEmptyOrAFolder) {
    const std::string message =
        "*** Couldn't open file tables/krk.nbw mapping with CreateFileMapping()\n";
    fs::resize_file("tables/krk.nbw", 0);
    expect_map_exit(message);
    fs::remove("tables/krk.nbw");
    fs::create_directory("tables/krk.nbw");
    expect_map_exit(message);
}

TEST_F(ResidentFaults, MappedFileWithoutRoomForIt) {
    constexpr rlim_t megabyte = rlim_t{1} << 20U;
    fs::resize_file("tables/krk.nbw", 256 * megabyte);
    expect_exit("*** Couldn't map view of file tables/krk.nbw with MapViewOfFile()\n", [] {
        limit_address_space(64 * megabyte);
        TbMapHalf(krk, 0);
    });
}

TEST_F(ResidentFaults, UnmappingWhatIsNotMapped) {
    const auto unmap = [] { TbUnmapHalf(krk, 0, no_handle, no_handle); };
    expect_exit("*** Couldn't unmap file\n", unmap);
    TbMapHalf(krk, 0);
    unmap();
    expect_exit("*** Couldn't unmap file\n", unmap);
    expect_exit("*** Couldn't unmap file\n", [] { TbUnmapHalf(kqk, 1, no_handle, no_handle); });
}
