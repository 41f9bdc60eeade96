// SPDX-License-Identifier: MIT
// The file of one half: which name it is looked for by, which of several is taken, and what is
// known of the half afterwards.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "support/endgame_files.h"
#include "support/open_files.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/block_cache.h"
#include "tb/key_tree.h"
#include "tb/register.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;
constexpr std::int32_t krbkn = 77;
constexpr TbCounts white_queen = {0, 0, 0, 0, 1, 0, 0, 0, 0, 0};
constexpr TbCounts black_queen = {0, 0, 0, 0, 0, 0, 0, 0, 0, 1};

class RegisterFile : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    /// The file found for a half; "(none)" if there is none.
    static std::string path_of(std::int32_t id, std::size_t half) {
        const char* const path = TbCatalogue[static_cast<std::size_t>(id)].path[half];
        return path != nullptr ? path : "(none)";
    }

    static void expect_absent(std::string_view directory, std::int32_t id, std::int32_t half) {
        EXPECT_EQ(TbRegisterFile(directory, id, half), 0);
        const TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
        const auto h = static_cast<std::size_t>(half);
        EXPECT_EQ(row.path[h], nullptr);
        EXPECT_EQ(row.decoder[h], nullptr);
        EXPECT_EQ(row.buckets[h], nullptr);
        EXPECT_EQ(row.size[h], tb_known_size(id)[h]);
        EXPECT_EQ(tb_emd_count, 0);
    }

  private:
    TemporaryFolder folder_;
};

/// Another user for the life of an object: to the superuser every file is open.
class OrdinaryUser {
  public:
    OrdinaryUser() : user_before_(geteuid()) {
        if (user_before_ == 0 && seteuid(nobody) != 0) {
            throw std::runtime_error("no other user");
        }
    }
    ~OrdinaryUser() {
        if (geteuid() != user_before_ && seteuid(user_before_) != 0) {
            std::abort();
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    static constexpr uid_t nobody = 65534;
    uid_t user_before_;
};

}  // namespace

TEST_F(RegisterFile, PlainHalfIsKnownAfterwards) {
    fs::create_directory("tables");
    fs::copy_file(endgame_data + "/kqk.nbw", "tables/kqk.nbw");
    tb_alloc_total = 0;
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    const TbEntry& row = TbCatalogue[kqk];
    EXPECT_EQ(path_of(kqk, 0), "tables/kqk.nbw");
    EXPECT_EQ(row.decoder[0], nullptr);
    EXPECT_EQ(row.file[0], nullptr);
    EXPECT_EQ(row.view[0], nullptr);
    EXPECT_EQ(row.size[0], 25629U);
    ASSERT_NE(row.buckets[0], nullptr);
    EXPECT_EQ(std::count(row.buckets[0]->begin(), row.buckets[0]->end(), tb_no_entry), 32);
    EXPECT_EQ(tb_alloc_total, std::string("tables/kqk.nbw").size() + 1 + 128);
    EXPECT_EQ(tb_emd_count, 0);
}

TEST_F(RegisterFile, OtherHalfIsNotTouched) {
    copy_half("kqk.nbb");
    EXPECT_EQ(TbRegisterFile("", kqk, 1), 1);
    EXPECT_EQ(path_of(kqk, 1), "kqk.nbb");
    EXPECT_EQ(path_of(kqk, 0), "(none)");
    EXPECT_EQ(TbCatalogue[kqk].buckets[0], nullptr);
    expect_absent("", kqk, 0);
}

TEST_F(RegisterFile, EitherHalfMakesTheTableKnownByItsMen) {
    copy_half("kqk.nbb");
    EXPECT_EQ(TbLookupKey(white_queen), 0);
    EXPECT_EQ(TbRegisterFile("", kqk, 1), 1);
    EXPECT_EQ(TbLookupKey(white_queen), +5);
    EXPECT_EQ(TbLookupKey(black_queen), -5);
}

TEST_F(RegisterFile, AbsentHalfLeavesNothingBehind) {
    expect_absent("", kqk, 0);
    expect_absent("there-is-no-such-folder", kqk, 0);
    EXPECT_EQ(TbLookupKey(white_queen), 0);
}

TEST_F(RegisterFile, WorkingDirectoryHasNoSeparator) {
    copy_half("kqk.nbw");
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "kqk.nbw");
}

TEST_F(RegisterFile, OneSeparatorIsPutBehindEveryDirectory) {
    fs::create_directories("a/b");
    fs::copy_file(endgame_data + "/krk.nbw", "a/b/krk.nbw");
    fs::copy_file(endgame_data + "/krk.nbb", "a/krk.nbb");
    EXPECT_EQ(TbRegisterFile("a/b", krk, 0), 1);
    EXPECT_EQ(path_of(krk, 0), "a/b/krk.nbw");
    EXPECT_EQ(TbRegisterFile("a/", krk, 1), 1);
    EXPECT_EQ(path_of(krk, 1), "a//krk.nbb");
}

TEST_F(RegisterFile, DirectoriesMayHaveOddNames) {
    int names = 0;
    for (const char* const name : {" tables with blanks ", "100%s%n", "..", ".",
                                   "t\xc3\xa4"
                                   "bl",
                                   "a.emd"}) {
        fs::create_directories(name);
        fs::copy_file(endgame_data + "/krk.nbw", std::string(name) + "/krk.nbw");
        EXPECT_EQ(TbRegisterFile(name, krk, 0), 1);
        EXPECT_EQ(path_of(krk, 0), std::string(name) + "/krk.nbw");
        fs::remove(std::string(name) + "/krk.nbw");
        reset_all();
        ++names;
    }
    EXPECT_EQ(names, 6);
}

TEST_F(RegisterFile, DirectoriesMayHaveLongNames) {
    std::string directory;
    for (int depth = 0; depth < 15; ++depth) {
        directory += std::string(depth == 0 ? 0 : 1, '/') + std::string(200, 'd');
        fs::create_directories(directory);
        put_half(directory + "/krbkn.nbw", 100, {});
        EXPECT_EQ(TbRegisterFile(directory, krbkn, 0), 1);
        EXPECT_EQ(path_of(krbkn, 0), directory + "/krbkn.nbw");
        reset_all();
    }
    EXPECT_GT(directory.size(), 3000U);
}

TEST_F(RegisterFile, NamesBeyondWhatTheSystemTakesAreAbsent) {
    expect_absent(std::string(100'000, 'd'), kqk, 0);
    expect_absent(std::string(256, 'd'), kqk, 0);
}

TEST_F(RegisterFile, CompressedHalfIsKnownAfterwards) {
    copy_half("kqk.nbw.emd");
    tb_alloc_total = 0;
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    const TbEntry& row = TbCatalogue[kqk];
    EXPECT_EQ(path_of(kqk, 0), "kqk.nbw.emd");
    ASSERT_NE(row.decoder[0], nullptr);
    EXPECT_EQ(row.decoder[0]->block_count, 4);
    EXPECT_EQ(row.decoder[0]->has_crc, 0U);
    EXPECT_EQ(row.size[0], 25629U);
    EXPECT_EQ(row.file[0], nullptr);
    EXPECT_NE(row.buckets[0], nullptr);
    EXPECT_EQ(tb_alloc_total, std::string("kqk.nbw.emd").size() + 1 + 128);
    EXPECT_EQ(TbLookupKey(white_queen), +5);
    EXPECT_EQ(tb_emd_count, 1);
}

TEST_F(RegisterFile, ChecksumsAreKeptWhenWanted) {
    copy_half("kqk.nbw.emd");
    tb_use_crc = 1;
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(TbCatalogue[kqk].decoder[0]->has_crc, 1U);
}

TEST_F(RegisterFile, NameOfEightAndThreeLettersIsTriedLast) {
    fs::create_directory("tables");
    const auto copy = [](const char* from, const char* to) {
        fs::copy_file(endgame_data + "/" + from, std::string("tables/") + to);
    };
    copy("kqk.nbw.emd", "kqknbw.emd");
    copy("kqk.nbb.emd", "kqknbb.emd");
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("tables", kqk, 1), 1);
    EXPECT_EQ(path_of(kqk, 0), "tables/kqknbw.emd");
    EXPECT_EQ(path_of(kqk, 1), "tables/kqknbb.emd");
    EXPECT_NE(TbCatalogue[kqk].decoder[0], nullptr);
    reset_all();
    copy("kqk.nbw.emd", "kqk.nbw.emd");
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "tables/kqk.nbw.emd");
    reset_all();
    copy("kqk.nbw", "kqk.nbw");
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "tables/kqk.nbw");
    EXPECT_EQ(TbCatalogue[kqk].decoder[0], nullptr);
    EXPECT_EQ(tb_emd_count, 0);
}

TEST_F(RegisterFile, DotsOfTheDirectoryStay) {
    fs::create_directory("a.nbw.b");
    fs::copy_file(endgame_data + "/kqk.nbw.emd", "a.nbw.b/kqknbw.emd");
    EXPECT_EQ(TbRegisterFile("a.nbw.b", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "a.nbw.b/kqknbw.emd");
}

TEST_F(RegisterFile, OtherNamesAreNoTables) {
    int names = 0;
    for (const char* const name : {"KQK.NBW", "kqk.NBW", "kqk", "kqknbw", "kqk.nbw.", "kqk.nbw.EMD",
                                   "kqk.emd", "kqk.nb", "kqk.nbwemd", " kqk.nbw", "kqk.nbx"}) {
        write_file(name, "no table");
        expect_absent("", kqk, 0);
        ++names;
    }
    EXPECT_EQ(names, 11);
}

TEST_F(RegisterFile, HalfThatHasAFileIsNotLookedForAgain) {
    fs::create_directories("first");
    fs::create_directories("second");
    fs::copy_file(endgame_data + "/kqk.nbw", "first/kqk.nbw");
    write_file("second/kqk.nbw", "of a wrong length");
    EXPECT_EQ(TbRegisterFile("first", kqk, 0), 1);
    TbBuckets* const buckets = TbCatalogue[kqk].buckets[0];
    tb_alloc_total = 0;
    EXPECT_EQ(TbRegisterFile("second", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("there-is-no-such-folder", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "first/kqk.nbw");
    EXPECT_EQ(TbCatalogue[kqk].buckets[0], buckets);
    EXPECT_EQ(tb_alloc_total, 0U);
}

TEST_F(RegisterFile, HalfInMemoryIsNotLookedFor) {
    constexpr std::uint8_t byte = 0;
    copy_half("kqk.nbw");
    TbCatalogue[kqk].view[0] = &byte;
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "(none)");
    EXPECT_EQ(TbCatalogue[kqk].buckets[0], nullptr);
}

TEST_F(RegisterFile, LengthIsTakenFromTheFileWhereItIsUnknown) {
    for (const std::uint32_t length : {0U, 1U, 8191U, 8192U, 8193U, 1U << 31U, UINT32_MAX}) {
        put_half("krk.nbw", length, {});
        EXPECT_EQ(TbRegisterFile("", krk, 0), 1);
        EXPECT_EQ(TbCatalogue[krk].size[0], length);
        reset_all();
        EXPECT_EQ(TbCatalogue[krk].size[0], 0U);
    }
}

TEST_F(RegisterFile, LengthOfACompressedHalfIsThatOfItsBlocks) {
    for (const std::size_t length : {1U, 8191U, 8192U, 8193U, 16384U, 20000U}) {
        put_raw_packed("krk.nbb.emd", std::string(length, 'x'));
        EXPECT_EQ(TbRegisterFile("", krk, 1), 1);
        EXPECT_EQ(TbCatalogue[krk].size[1], length);
        reset_all();
    }
}

TEST_F(RegisterFile, KnownLengthOfEveryHalfIsAccepted) {
    int halves = 0;
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        for (const std::size_t half : {0U, 1U}) {
            const TbEntry& row = TbCatalogue[id];
            if (row.size[half] == 0) continue;
            put_half(std::string(row.name.data()) + (half == 0 ? ".nbw" : ".nbb"), row.size[half],
                     {});
            EXPECT_EQ(TbRegisterFile("", row.id, static_cast<std::int32_t>(half)), 1);
            ++halves;
        }
    }
    EXPECT_EQ(halves, 22);
}

TEST_F(RegisterFile, FoldersAreNoTables) {
    fs::create_directory("kqk.nbw");
    fs::create_directory("kqk.nbw.emd");
    fs::create_directory("kqknbw.emd");
    expect_absent("", kqk, 0);
    fs::remove("kqknbw.emd");
    fs::copy_file(endgame_data + "/kqk.nbw.emd", "kqknbw.emd");
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "kqknbw.emd");
}

TEST_F(RegisterFile, PipesAreNoTablesAndNobodyWaitsForThem) {
    ASSERT_EQ(mkfifo("kqk.nbw", S_IRUSR | S_IWUSR), 0);
    ASSERT_EQ(mkfifo("kqk.nbw.emd", S_IRUSR | S_IWUSR), 0);
    expect_absent("", kqk, 0);
}

TEST_F(RegisterFile, LinksAreFollowed) {
    fs::create_symlink("nowhere", "kqk.nbw");
    fs::create_symlink("kqk.nbb", "kqk.nbb");
    expect_absent("", kqk, 0);
    expect_absent("", kqk, 1);
    fs::create_symlink(endgame_data + "/krk.nbw", "krk.nbw");
    EXPECT_EQ(TbRegisterFile("", krk, 0), 1);
    EXPECT_EQ(path_of(krk, 0), "krk.nbw");
    EXPECT_EQ(TbCatalogue[krk].size[0], 27030U);
}

TEST_F(RegisterFile, FileThatMayNotBeReadIsPassedOver) {
    fs::permissions(".", fs::perms::all);
    write_file("kqk.nbw", "of a wrong length");
    fs::copy_file(endgame_data + "/kqk.nbw.emd", "kqk.nbw.emd");
    fs::permissions("kqk.nbw", fs::perms::none);
    const OrdinaryUser user;
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(path_of(kqk, 0), "kqk.nbw.emd");
}

TEST_F(RegisterFile, NothingIsFoundWhereNoFileCanBeOpened) {
    copy_half("kqk.nbw");
    {
        const OpenFileLimit limit(0);
        expect_absent("", kqk, 0);
    }
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
}

TEST_F(RegisterFile, NoFileStaysOpen) {
    copy_half("kqk.nbw");
    copy_half("kqk.nbb.emd");
    const int before = open_files();
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("", kqk, 1), 1);
    EXPECT_EQ(open_files(), before);
}

TEST_F(RegisterFile, FileIsToldWhenWanted) {
    fs::create_directory("tables");
    fs::copy_file(endgame_data + "/kqk.nbw", "tables/kqk.nbw");
    copy_half("kqk.nbb.emd");
    const CapturedOutput output;
    EXPECT_EQ(TbRegisterFile("", krk, 0), 0);
    tb_verbose = true;
    EXPECT_EQ(TbRegisterFile("", krk, 0), 0);
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("tables", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("", kqk, 1), 1);
    EXPECT_EQ(output.text(), "tables/kqk.nbw registered\nkqk.nbb.emd registered\n");
}

TEST_F(RegisterFile, NothingIsSaidOtherwise) {
    copy_half("kqk.nbw");
    copy_half("kqk.nbb.emd");
    const CapturedOutput output;
    EXPECT_EQ(TbRegisterFile("", kqk, 0), 1);
    EXPECT_EQ(TbRegisterFile("", kqk, 1), 1);
    EXPECT_EQ(output.text(), "");
}

TEST_F(RegisterFile, TableOfTooManyMenIsRefusedAndNotStored) {
    TbEntry row{};
    row.id = 99;
    row.name = {'k', 'q', 'q', 'q', 'q', 'k'};
    EXPECT_FALSE(TbRegisterTable(row));
    row.name = {'k', 'q', 'q', 'k', 'r', 'r'};
    EXPECT_FALSE(TbRegisterTable(row));
    row.name = {'k', 'q', 'q', 'k', 'r'};
    EXPECT_TRUE(TbRegisterTable(row));
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 2, 0, 0, 0, 1, 0}), +99);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 1, 0, 0, 0, 0, 0, 2}), -99);
}
