// SPDX-License-Identifier: MIT
// Halves on disk: which ones count as there, and reading them whole.
#include "tbgen/table_folder.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "support/endgame_layout.h"
#include "support/temporary_folder.h"
#include "tb/index/enumeration.h"
#include "tbgen/half_length.h"

namespace {

namespace fs = std::filesystem;
const std::string data_folder = CORVANE_TEST_DATA "/tb";

class TableFolderTest : public testing::Test {
  protected:
    TableFolderTest() { tb_build_enumeration(); }

    /// The bytes of a half; empty at a fault, which has to be told.
    static std::optional<Bytes> loaded(const TableFolder& folder, const char* name,
                                       std::int32_t half, std::size_t threads) {
        std::string fault;
        const auto bytes = folder.load(row_of_name(name), half, threads, fault);
        EXPECT_EQ(fault.empty(), bytes.has_value()) << fault;
        return bytes;
    }

    static void copy(const std::string& name) { fs::copy_file(data_folder + "/" + name, name); }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(TableFolderTest, NamesOfFiles) {
    const TableFolder folder("some/where");
    EXPECT_EQ(folder.file_name(5, 0, TableForm::packed), "some/where/kqk.nbw.emd");
    EXPECT_EQ(folder.file_name(5, 1, TableForm::plain), "some/where/kqk.nbb");
    EXPECT_EQ(TableFolder("").file_name(5, 1, TableForm::plain), "kqk.nbb");
}

TEST_F(TableFolderTest, FoldersAreMade) {
    EXPECT_EQ(TableFolder("a/b/c").make(), "");
    EXPECT_TRUE(fs::is_directory("a/b/c"));
    EXPECT_EQ(TableFolder("a/b/c").make(), "") << "there already";
    EXPECT_EQ(TableFolder("").make(), "");
    write_file("file", "x");
    EXPECT_EQ(TableFolder("file").make().find("file: "), 0U);
    EXPECT_EQ(TableFolder("file/below").make().find("file/below: "), 0U);
}

TEST_F(TableFolderTest, TableIsThereWithBothHalvesOfOneForm) {
    const TableFolder folder("");
    const std::int32_t kqk = row_of_name("kqk");
    copy("kqk.nbw");
    EXPECT_FALSE(folder.has(kqk, TableForm::plain));
    copy("kqk.nbb.emd");
    EXPECT_FALSE(folder.has(kqk, TableForm::plain));
    EXPECT_FALSE(folder.has_any(kqk)) << "halves of two forms";
    copy("kqk.nbb");
    EXPECT_TRUE(folder.has(kqk, TableForm::plain));
    EXPECT_FALSE(folder.has(kqk, TableForm::packed));
    EXPECT_TRUE(folder.has_any(kqk));
    fs::remove("kqk.nbb");
    copy("kqk.nbw.emd");
    EXPECT_TRUE(folder.has(kqk, TableForm::packed));
    EXPECT_TRUE(folder.has_any(kqk));
}

TEST_F(TableFolderTest, FilesOfAnotherLengthAreNone) {
    const TableFolder folder("");
    const std::int32_t krk = row_of_name("krk");
    copy("krk.nbw");
    copy("krk.nbb");
    EXPECT_TRUE(folder.has(krk, TableForm::plain));
    EXPECT_EQ(folder.find_broken(), "");
    fs::resize_file("krk.nbb", half_length(krk, 1) - 1);
    EXPECT_FALSE(folder.has(krk, TableForm::plain));
    EXPECT_EQ(folder.find_broken(), "krk.nbb: is broken");
    EXPECT_FALSE(loaded(folder, "krk", 1, 1));
    fs::resize_file("krk.nbb", 0);
    EXPECT_FALSE(folder.has(krk, TableForm::plain));
    fs::copy_file(data_folder + "/kqk.nbw.emd", "krk.nbw.emd");
    EXPECT_FALSE(folder.has(krk, TableForm::packed));
}

TEST_F(TableFolderTest, LoadsPlainAndPackedHalves) {
    const TableFolder folder(data_folder);
    for (const char* const name : {"kpk", "kqk", "krk"}) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const auto known = three_men_bytes(row_of_name(name), half);
            EXPECT_EQ(loaded(folder, name, half, 2), known) << name;
        }
    }
    copy("kpk.nbb.emd");
    for (const std::size_t threads : {1U, 2U, 3U, 16U}) {
        EXPECT_EQ(loaded(TableFolder(""), "kpk", 1, threads),
                  three_men_bytes(row_of_name("kpk"), 1));
    }
}

TEST_F(TableFolderTest, PlainFileIsTakenBeforeThePackedOne) {
    copy("kqk.nbw.emd");
    Bytes other = three_men_bytes(row_of_name("kqk"), 0).value();
    other[5] ^= 1U;
    EXPECT_EQ(TableFolder("").save(row_of_name("kqk"), 0, TableForm::plain, other), "");
    EXPECT_EQ(loaded(TableFolder(""), "kqk", 0, 1), other);
}

TEST_F(TableFolderTest, BrokenFilesAreNotRead) {
    const TableFolder folder("");
    EXPECT_FALSE(loaded(folder, "kqk", 0, 2)) << "no file";
    copy("kpk.nbw.emd");
    const std::string sound = read_file("kpk.nbw.emd");
    std::string damaged = sound;
    damaged[sound.size() - 100] = static_cast<char>(~damaged[sound.size() - 100]);
    write_file("kpk.nbw.emd", damaged);
    EXPECT_FALSE(loaded(folder, "kpk", 0, 2)) << "a block";
    write_file("kpk.nbw.emd", sound.substr(0, sound.size() / 2));
    EXPECT_FALSE(loaded(folder, "kpk", 0, 2)) << "cut";
    write_file("kpk.nbw.emd", "no table");
    EXPECT_FALSE(loaded(folder, "kpk", 0, 2)) << "header";
    write_file("kpk.nbw.emd", "");
    EXPECT_FALSE(loaded(folder, "kpk", 0, 2)) << "empty";
    EXPECT_EQ(folder.find_broken(), "kpk.nbw.emd: is broken");
}

TEST_F(TableFolderTest, SavesWholeFilesUnderTheirNames) {
    const TableFolder folder("out");
    ASSERT_EQ(folder.make(), "");
    EXPECT_EQ(folder.save(1, 0, TableForm::plain, {65, 66}), "");
    EXPECT_EQ(read_file("out/kpk.nbw"), "AB");
    EXPECT_EQ(folder.save(1, 1, TableForm::packed, {67}), "");
    EXPECT_EQ(read_file("out/kpk.nbb.emd"), "C");
    EXPECT_EQ(TableFolder("none").save(1, 0, TableForm::plain, {65}),
              "none/kpk.nbw: No such file or directory");
}

TEST_F(TableFolderTest, OldPartsOfTablesAreRemovedAndNothingElse) {
    for (const char* const name : {"kqk.nbw.a1b2.part", "kqk.nbb.emd.a1b2.part", "notes.part",
                                   "kqk.nbw", "kqk.txt", "krk.nbw.a1b2.part"}) {
        write_file(name, "x");
        fs::last_write_time(name, fs::file_time_type::clock::now() - std::chrono::hours(2));
    }
    fs::last_write_time("krk.nbw.a1b2.part", fs::file_time_type::clock::now());
    TableFolder("").remove_old_parts();
    EXPECT_FALSE(fs::exists("kqk.nbw.a1b2.part"));
    EXPECT_FALSE(fs::exists("kqk.nbb.emd.a1b2.part"));
    EXPECT_TRUE(fs::exists("krk.nbw.a1b2.part")) << "somebody may be writing it";
    EXPECT_TRUE(fs::exists("notes.part"));
    EXPECT_TRUE(fs::exists("kqk.nbw"));
    EXPECT_TRUE(fs::exists("kqk.txt"));
    TableFolder("no-such-folder").remove_old_parts();
}

TEST_F(TableFolderTest, LengthsOfKnownHalves) {
    for (std::int32_t row = 1; row < tb_first_four_men; ++row) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            EXPECT_EQ(half_length(row, half), three_men_bytes(row, half)->size()) << row;
        }
    }
    EXPECT_EQ(half_length(row_of_name("kqqk"), 0), 698'739U);
    EXPECT_EQ(half_length(row_of_name("kqqk"), 1), 873'642U);
    EXPECT_EQ(half_length(row_of_name("kpkp"), 0), 3'863'492U);
    EXPECT_EQ(half_length(row_of_name("krkn"), 0), 1'649'196U);
    EXPECT_EQ(half_length(row_of_name("kbnk"), 0), 1'550'620U);
    EXPECT_EQ(half_length(row_of_name("knkp"), 0), 4'931'904U);
}
