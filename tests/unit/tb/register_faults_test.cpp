// SPDX-License-Identifier: MIT
// Files that are there and cannot be used: each ends the program with its message. The user has to
// know, since a search that met the fault later would cost the game.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "support/endgame_files.h"
#include "support/expect_exit.h"
#include "support/failing_seeks.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/register.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;
constexpr std::uint32_t kqk_size = 25629;

class RegisterFaults : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    static void expect_exit_of(const std::string& directory, std::int32_t id, std::int32_t half,
                               const std::string& message) {
        expect_exit(message, [&] { TbRegisterFile(directory, id, half); });
    }

    /// The compressed krk.nbw with some bytes replaced, its checksum as it was.
    static void put_damaged(const std::string& name, std::size_t at, const std::string& bytes) {
        std::string file = read_file(endgame_data + "/krk.nbw.emd");
        file.replace(at, bytes.size(), bytes);
        write_file(name, file);
    }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(RegisterFaults, FileOneByteShortOrLong) {
    for (const std::uint32_t size : {kqk_size - 1, kqk_size + 1, 0U, 1U}) {
        put_half("kqk.nbw", size, {});
        expect_exit_of("", kqk, 0, "*** kqk.nbw corrupted\n");
    }
}

TEST_F(RegisterFaults, EveryKnownLengthIsCompared) {
    int halves = 0;
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        for (const std::size_t half : {0U, 1U}) {
            const TbEntry& row = TbCatalogue[id];
            if (row.size[half] == 0) continue;
            const std::string name = std::string(row.name.data()) + (half == 0 ? ".nbw" : ".nbb");
            put_half(name, row.size[half] - 1, {});
            expect_exit_of("", row.id, static_cast<std::int32_t>(half),
                           "*** " + name + " corrupted\n");
            ++halves;
        }
    }
    EXPECT_EQ(halves, 22);
}

TEST_F(RegisterFaults, MessageNamesTheDirectory) {
    fs::create_directories("my tables/three");
    write_file("my tables/three/kqk.nbb", "");
    expect_exit_of("my tables/three", kqk, 1, "*** my tables/three/kqk.nbb corrupted\n");
}

TEST_F(RegisterFaults, FileThatIsLargerThanAnyHalf) {
    put_half("krk.nbw", 0, {});
    fs::resize_file("krk.nbw", std::uintmax_t{1} << 32U);
    expect_exit_of("", krk, 0, "*** krk.nbw corrupted\n");
}

TEST_F(RegisterFaults, SizesBeyondThirtyTwoBitsDoNotWrapToTheKnownOne) {
    put_half("kqk.nbw", 0, {});
    fs::resize_file("kqk.nbw", (std::uintmax_t{1} << 32U) + kqk_size);
    expect_exit_of("", kqk, 0, "*** kqk.nbw corrupted\n");
}

TEST_F(RegisterFaults, CompressedHalfThatDecodesToAnotherLength) {
    for (const std::uint32_t size : {kqk_size - 1, kqk_size + 1, kqk_size + 8192, 1U}) {
        put_raw_packed("kqk.nbw.emd", std::string(size, 'x'));
        expect_exit_of("", kqk, 0, "*** kqk.nbw.emd corrupted\n");
    }
}

TEST_F(RegisterFaults, LengthThatCannotBeFound) {
    copy_half("krk.nbw");
    for (const SeekFault fault : {SeekFault::of_end, SeekFault::of_telling}) {
        const FailingSeeks seeks(fault);
        expect_exit_of("", krk, 0, "*** Seek in krk.nbw failed\n");
    }
}

TEST_F(RegisterFaults, CompressedFileWithoutABeginning) {
    const std::string whole = read_file(endgame_data + "/krk.nbw.emd");
    for (const std::size_t length : {0U, 1U, 64U, 79U}) {
        write_file("krk.nbw.emd", whole.substr(0, length));
        expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - read error\n");
    }
    put_damaged("krk.nbw.emd", 0, "x");
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - read error\n");
    write_file("krk.nbw.emd", whole);
    const FailingSeeks seeks(SeekFault::of_place);
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - read error\n");
}

TEST_F(RegisterFaults, CompressedFileThatEndsInItsHeader) {
    const std::string whole = read_file(endgame_data + "/krk.nbw.emd");
    write_file("krk.nbw.emd", whole.substr(0, 80));
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - out of memory\n");
    write_file("krk.nbw.emd", whole.substr(0, 150));
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - out of memory\n");
}

TEST_F(RegisterFaults, CompressedFileWithABrokenHeader) {
    put_damaged("krk.nbw.emd", 70, std::string(1, '\x11'));
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - file broken\n");
    put_damaged("krk.nbw.emd", 71, std::string(1, '\x19'));
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - file broken\n");
    put_damaged("krk.nbw.emd", 100, "x");
    expect_exit_of("", krk, 0, "*** Unable to read krk.nbw.emd - file broken\n");
}

TEST_F(RegisterFaults, MessageNamesTheFileThatWasOpened) {
    fs::create_directory("tables");
    put_damaged("tables/krknbb.emd", 0, "x");
    expect_exit_of("tables", krk, 1, "*** Unable to read tables/krknbb.emd - read error\n");
    put_raw_packed("tables/kqknbb.emd", "x");
    expect_exit_of("tables", kqk, 1, "*** tables/kqknbb.emd corrupted\n");
}

TEST_F(RegisterFaults, BlocksOfAnotherSize) {
    int shifts = 0;
    for (const unsigned shift : {0U, 1U, 12U, 14U, 15U, 16U}) {
        put_packed("kqk.nbw.emd", raw_packed(std::string(shift < 4 ? 40 : kqk_size, 'x'), shift));
        expect_exit_of(
            "", kqk, 0,
            "*** kqk.nbw.emd: Unsupported block size " + std::to_string(1 << shift) + "\n");
        ++shifts;
    }
    EXPECT_EQ(shifts, 6);
}

TEST_F(RegisterFaults, TableOfTooManyMen) {
    write_file("krk.nbw", "x");
    write_file("krk.nbb.emd", "x");
    put_raw_packed("krk.nbb.emd", "x");
    TbCatalogue[krk].name = {'k', 'r', 'r', 'r', 'r', 'k'};
    expect_exit_of("", krk, 0, "*** Unable to register krk.nbw\n");
    expect_exit_of("", krk, 1, "*** Unable to register krk.nbb.emd\n");
    TbCatalogue[krk].name = {'k', 'r', 'k'};
}

TEST_F(RegisterFaults, OneFaultAmongAllTablesEndsTheProgram) {
    copy_half("kpk.nbw");
    copy_half("kqk.nbb");
    put_half("kqqqk.nbb", 100, {});
    expect_exit("*** kqqqk.nbb corrupted\n", [] { static_cast<void>(TbRegisterAll("")); });
}

TEST_F(RegisterFaults, BrokenFileThatIsNotReachedIsNoFault) {
    fs::create_directories("sound");
    fs::create_directories("broken");
    fs::copy_file(endgame_data + "/kqk.nbw", "sound/kqk.nbw");
    put_damaged("sound/kqk.nbw.emd", 0, "x");
    write_file("broken/kqk.nbw", "of a wrong length");
    EXPECT_EQ(TbRegisterAll("sound,broken"), 3);
    expect_exit("*** broken/kqk.nbw corrupted\n",
                [] { static_cast<void>(TbRegisterAll("broken,sound")); });
}
