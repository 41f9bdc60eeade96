// SPDX-License-Identifier: MIT
// All tables of several directories: their order, what is given back, the memory that is told, and
// registration that is done again.
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "support/cache_buffer.h"
#include "support/endgame_files.h"
#include "support/open_files.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/block_cache.h"
#include "tb/index/enumeration.h"
#include "tb/key_tree.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kpk = 1;
constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;
constexpr TbCounts white_rook = {0, 0, 0, 1, 0, 0, 0, 0, 0, 0};

class RegisterAll : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    static std::string path_of(std::int32_t id, std::size_t half) {
        const char* const path = TbCatalogue[static_cast<std::size_t>(id)].path[half];
        return path != nullptr ? path : "(none)";
    }

    /// The file that is found for the first half of krk.
    static std::string found_in(const std::string& path) {
        const std::int32_t men = TbRegisterAll(path);
        EXPECT_EQ(men, path_of(krk, 0) == "(none)" ? 0 : 3);
        return path_of(krk, 0);
    }

    /// krk.nbw in the working directory and in each of the directories, of other lengths.
    static void put_rooks(std::initializer_list<const char*> directories) {
        std::uint32_t length = 10;
        put_half("krk.nbw", length, {});
        for (const char* const directory : directories) {
            fs::create_directory(directory);
            put_half(std::string(directory) + "/krk.nbw", ++length, {});
        }
    }

    /// What registration gives for one file alone.
    static std::int32_t men_with(const std::string& name, std::uint32_t size) {
        put_half(name, size, {});
        const std::int32_t men = TbRegisterAll("");
        fs::remove(name);
        return men;
    }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(RegisterAll, GivesTheMenOfTheLargestTable) {
    EXPECT_EQ(TbRegisterAll(""), 0);
    EXPECT_EQ(men_with("kpk.nbw", 81664), 3);
    EXPECT_EQ(men_with("kqk.nbb", 28644), 3);
    EXPECT_EQ(men_with("kpkp.nbw", 3863492), 4);
    EXPECT_EQ(men_with("kqqk.nbb", 873642), 4);
    EXPECT_EQ(men_with("kppkp.nbb", 89391280), 5);
    EXPECT_EQ(men_with("kppkp.nbw", 84219361), 5);
    EXPECT_EQ(men_with("kqqqk.nbw", 12479974), 5);
    EXPECT_EQ(men_with("kk.nbw", 100), 0);
    EXPECT_EQ(men_with("kqqqqk.nbw", 100), 0);
}

TEST_F(RegisterAll, LargestTableSaysNothingOfTheOthers) {
    put_half("kqqqk.nbb", 17472840, {});
    put_half("kpk.nbw", 81664, {});
    EXPECT_EQ(TbRegisterAll(""), 5);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 3, 0, 0, 0, 0, 0}), 145);
    EXPECT_EQ(TbLookupKey({1, 0, 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(TbLookupKey({0, 0, 0, 0, 2, 0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(path_of(145, 0), "(none)");
    EXPECT_EQ(path_of(145, 1), "kqqqk.nbb");
}

TEST_F(RegisterAll, LargestTableCountsInWhicheverDirectoryItLies) {
    fs::create_directory("five");
    fs::create_directory("three");
    put_half("five/kqqqk.nbw", 12479974, {});
    put_half("three/kqk.nbw", 25629, {});
    EXPECT_EQ(TbRegisterAll("five,three"), 5);
    EXPECT_EQ(TbRegisterAll("three,five"), 5);
}

TEST_F(RegisterAll, FindsBothHalvesOfEveryTable) {
    int halves = 0;
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        for (const std::size_t half : {0U, 1U}) {
            const std::uint32_t size = TbCatalogue[id].size[half];
            put_half(TbCatalogue[id].name.data() + std::string(half == 0 ? ".nbw" : ".nbb"),
                     size != 0 ? size : 100, {});
        }
    }
    EXPECT_EQ(TbRegisterAll(""), 5);
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        const std::string name = TbCatalogue[id].name.data();
        EXPECT_EQ(path_of(static_cast<std::int32_t>(id), 0), name + ".nbw");
        EXPECT_EQ(path_of(static_cast<std::int32_t>(id), 1), name + ".nbb");
        halves += 2;
    }
    EXPECT_EQ(halves, 290);
    EXPECT_EQ(TbCatalogue[0].path[0], nullptr);
}

TEST_F(RegisterAll, LeavesItsResultToTheCaller) {
    copy_half("krk.nbw");
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(tb_max_men, 0);
}

TEST_F(RegisterAll, DirectoriesStandBetweenCommasAndSemicolons) {
    put_rooks({"a", "b", "c d"});
    EXPECT_EQ(found_in("a"), "a/krk.nbw");
    EXPECT_EQ(found_in("x,a"), "a/krk.nbw");
    EXPECT_EQ(found_in("x;a"), "a/krk.nbw");
    EXPECT_EQ(found_in("x,y;z,b;y"), "b/krk.nbw");
    EXPECT_EQ(found_in("x;c d"), "c d/krk.nbw");
    EXPECT_EQ(found_in("x:a"), "(none)");
    EXPECT_EQ(found_in("x a"), "(none)");
    EXPECT_EQ(found_in("x|a"), "(none)");
}

TEST_F(RegisterAll, BlanksAroundADirectoryBelongToIt) {
    put_rooks({"a", " b"});
    EXPECT_EQ(found_in("x, a"), "(none)");
    EXPECT_EQ(found_in("a ,x"), "(none)");
    EXPECT_EQ(found_in("x, b"), " b/krk.nbw");
}

TEST_F(RegisterAll, FirstDirectoryWins) {
    put_rooks({"a", "b"});
    EXPECT_EQ(found_in("a,b"), "a/krk.nbw");
    EXPECT_EQ(found_in("b;a"), "b/krk.nbw");
    EXPECT_EQ(TbCatalogue[krk].size[0], 12U);
    EXPECT_EQ(found_in("x,b,a,b"), "b/krk.nbw");
}

TEST_F(RegisterAll, CompressedHalfOfAnEarlierDirectoryWinsOverAPlainOne) {
    fs::create_directory("a");
    fs::create_directory("b");
    fs::copy_file(endgame_data + "/krk.nbw.emd", "a/krk.nbw.emd");
    fs::copy_file(endgame_data + "/krk.nbw", "b/krk.nbw");
    EXPECT_EQ(found_in("a,b"), "a/krk.nbw.emd");
    EXPECT_EQ(found_in("b,a"), "b/krk.nbw");
}

TEST_F(RegisterAll, HalvesMayLieInDifferentDirectories) {
    fs::create_directory("a");
    fs::create_directory("b");
    fs::copy_file(endgame_data + "/kqk.nbw", "a/kqk.nbw");
    fs::copy_file(endgame_data + "/kqk.nbb", "b/kqk.nbb");
    EXPECT_EQ(TbRegisterAll("a,b"), 3);
    EXPECT_EQ(path_of(kqk, 0), "a/kqk.nbw");
    EXPECT_EQ(path_of(kqk, 1), "b/kqk.nbb");
}

TEST_F(RegisterAll, EmptyPieceIsTheWorkingDirectory) {
    put_rooks({"a"});
    for (const char* const path : {"", ",", ";", ",;", ",a", ";a", ",,a", "x,,a", "x;,", "x,;x"}) {
        EXPECT_EQ(found_in(path), "krk.nbw") << path;
    }
    EXPECT_EQ(found_in("a,,x"), "a/krk.nbw");
}

TEST_F(RegisterAll, SeparatorAtTheEndAddsNoDirectory) {
    put_rooks({"a"});
    EXPECT_EQ(found_in("x,"), "(none)");
    EXPECT_EQ(found_in("x;"), "(none)");
    EXPECT_EQ(found_in("x,y;"), "(none)");
    EXPECT_EQ(found_in("a;"), "a/krk.nbw");
}

TEST_F(RegisterAll, ManyDirectories) {
    put_rooks({"a"});
    std::string path;
    for (int i = 0; i < 500; ++i) {
        path += "x" + std::to_string(i) + (i % 2 == 0 ? "," : ";");
    }
    EXPECT_EQ(found_in(path), "(none)");
    EXPECT_EQ(found_in(path + "a"), "a/krk.nbw");
}

TEST_F(RegisterAll, CompressedFilesAreCountedAndHaveOneBlockToDecodeIn) {
    for (const char* const name : {"kqk.nbw.emd", "kqk.nbb.emd", "krk.nbw.emd", "krk.nbb"}) {
        copy_half(name);
    }
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(tb_emd_count, 3);
    ASSERT_NE(tb_decode_block, nullptr);
    EXPECT_EQ(tb_decode_block->input_size, 8192);
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(tb_emd_count, 3);
    EXPECT_NE(tb_decode_block, nullptr);
    EXPECT_EQ(TbRegisterAll("there-is-no-such-folder"), 0);
    EXPECT_EQ(tb_emd_count, 0);
    EXPECT_EQ(tb_decode_block, nullptr);
}

TEST_F(RegisterAll, PlainFilesNeedNoBlockToDecodeIn) {
    copy_half("krk.nbw");
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(tb_emd_count, 0);
    EXPECT_EQ(tb_decode_block, nullptr);
    EXPECT_EQ(tb_decoder_bytes, 0);
}

TEST_F(RegisterAll, MemoryIsCountedAnewEachTime) {
    copy_half("krk.nbw.emd");
    copy_half("kqk.nbw");
    constexpr std::uint32_t names = sizeof "krk.nbw.emd" + sizeof "kqk.nbw";
    tb_build_enumeration();  // once in a process: the first registration would count it
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(TbRegisterAll(""), 3);
        EXPECT_EQ(tb_alloc_total, names + 2 * 128);
        EXPECT_EQ(tb_decoder_bytes, static_cast<std::int32_t>(sizeof(TbDecoder)) + 5 * 4 + 8192);
    }
    EXPECT_EQ(TbRegisterAll("there-is-no-such-folder"), 0);
    EXPECT_EQ(tb_alloc_total, 0U);
    EXPECT_EQ(tb_decoder_bytes, 0);
}

TEST_F(RegisterAll, FilesAndMemoryAreToldWhenWanted) {
    copy_half("krk.nbw.emd");
    copy_half("kqk.nbb");
    copy_half("kpk.nbw");
    tb_verbose = true;
    const CapturedOutput output;
    EXPECT_EQ(TbRegisterAll(""), 3);
    const auto bytes = static_cast<int>(sizeof(TbDecoder)) + 5 * 4 + 8192;
    EXPECT_EQ(output.text(),
              "kpk.nbw registered\nkrk.nbw.emd registered\nkqk.nbb registered\nAllocated " +
                  std::to_string((bytes + 1023) / 1024) +
                  "Kb for decompression tables, indices, and buffers.\n");
}

TEST_F(RegisterAll, MemoryIsNotToldOfPlainFiles) {
    copy_half("krk.nbw");
    tb_verbose = true;
    const CapturedOutput output;
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(output.text(), "krk.nbw registered\n");
}

TEST_F(RegisterAll, NothingIsSaidOtherwise) {
    copy_half("krk.nbw.emd");
    const CapturedOutput output;
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(output.text(), "");
}

TEST_F(RegisterAll, DoneAgainFindsOtherFiles) {
    put_rooks({"a"});
    copy_half("kqk.nbb.emd");
    copy_half("kpk.nbw");
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(path_of(krk, 0), "krk.nbw");
    EXPECT_EQ(TbRegisterAll("a"), 3);
    EXPECT_EQ(path_of(krk, 0), "a/krk.nbw");
    EXPECT_EQ(TbCatalogue[krk].size[0], 11U);
    for (const TbEntry& row : TbCatalogue) {
        for (const std::size_t half : {0U, 1U}) {
            const bool is_found = row.id == krk && half == 0;
            EXPECT_EQ(row.path[half] != nullptr, is_found);
            EXPECT_EQ(row.buckets[half] != nullptr, is_found);
            EXPECT_EQ(row.decoder[half], nullptr);
            EXPECT_EQ(row.size[half], is_found ? 11U : tb_known_size(row.id)[half]);
        }
    }
}

TEST_F(RegisterAll, DoneAgainKeepsTheKeys) {
    copy_half("krk.nbw");
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbRegisterAll("there-is-no-such-folder"), 0);
    EXPECT_EQ(TbLookupKey(white_rook), krk);
    EXPECT_EQ(path_of(krk, 0), "(none)");
}

TEST_F(RegisterAll, DoneAgainForgetsWhatWasRead) {
    const CacheBuffer cache(10 * tb_entry_size);
    write_file("krk.nbw", "\x01");
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 1);
    write_file("krk.nbw", "\x02");
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 1);
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(tb_lru_newest, tb_no_entry);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 2);
}

TEST_F(RegisterAll, DoneAgainClosesTheFiles) {
    const CacheBuffer cache(10 * tb_entry_size);
    copy_half("krk.nbw");
    copy_half("kpk.nbb.emd");
    const int before = open_files();
    EXPECT_EQ(TbRegisterAll(""), 3);
    static_cast<void>(TbProbeRaw(krk, 0, 0));
    static_cast<void>(TbProbeRaw(kpk, 1, 0));
    EXPECT_EQ(open_files(), before + 2);
    EXPECT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(open_files(), before);
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    EXPECT_EQ(TbCatalogue[kpk].file[1], nullptr);
}

TEST_F(RegisterAll, HalfInMemoryOutlivesIt) {
    constexpr std::uint8_t bytes[] = {7, 8, 9};
    copy_half("krk.nbw");
    EXPECT_EQ(TbRegisterAll(""), 3);
    TbEntry& row = TbCatalogue[krk];
    row.view[0] = bytes;
    row.view_size[0] = sizeof bytes;
    TbBuckets* const buckets = row.buckets[0];
    EXPECT_EQ(TbRegisterAll("there-is-no-such-folder"), 3);
    EXPECT_EQ(row.view[0], bytes);
    EXPECT_EQ(row.buckets[0], buckets);
    EXPECT_EQ(row.size[0], 27030U);
    EXPECT_EQ(row.path[0], nullptr);
    EXPECT_EQ(TbProbeRaw(krk, 0, 2), 9);
}

TEST_F(RegisterAll, ResetForgetsEverything) {
    copy_half("krk.nbw.emd");
    copy_half("krk.nbb");
    start_endgame_tables("");
    ASSERT_EQ(tb_max_men, 3);
    tb_verbose = true;
    tb_enum_verbose = true;
    tb_use_crc = 1;
    EXPECT_NE(TbProbeRaw(krk, 0, 0), tb_no_value);
    reset_tables();
    EXPECT_EQ(tb_max_men, 0);
    EXPECT_EQ(tb_emd_count, 0);
    EXPECT_EQ(tb_decode_block, nullptr);
    EXPECT_EQ(tb_cache_entries, 0U);
    EXPECT_EQ(tb_cache_base, nullptr);
    EXPECT_EQ(TbLookupKey(white_rook), 0);
    EXPECT_FALSE(tb_verbose);
    EXPECT_FALSE(tb_enum_verbose);
    EXPECT_EQ(tb_use_crc, 0U);
    for (const std::size_t half : {0U, 1U}) {
        EXPECT_EQ(path_of(krk, half), "(none)");
        EXPECT_EQ(TbCatalogue[krk].file[half], nullptr);
        EXPECT_EQ(TbCatalogue[krk].decoder[half], nullptr);
        EXPECT_EQ(TbCatalogue[krk].buckets[half], nullptr);
        EXPECT_EQ(TbCatalogue[krk].size[half], 0U);
    }
}

TEST(RegisterAllDeathTest, BuildsTheEnumeration) {
    // It is built once a process; another test may have done so in this one.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto register_in_child = [] {
        const bool is_built_before = tb_ordinal != nullptr;
        static_cast<void>(TbRegisterAll("there-is-no-such-folder"));
        std::exit(!is_built_before && tb_ordinal != nullptr ? 0 : 1);
    };
    EXPECT_EXIT(register_in_child(), testing::ExitedWithCode(0), "");
}
