// SPDX-License-Identifier: MIT
// Halves held whole in memory: read or mapped, each byte as through the cache, and the way back.
#include "tb/resident.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/cache_buffer.h"
#include "support/cache_lists.h"
#include "support/endgame_files.h"
#include "support/failing_seeks.h"
#include "support/open_files.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;

class Resident : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    static TbEntry& row_of(std::int32_t id) { return TbCatalogue[static_cast<std::size_t>(id)]; }

    /// Gives back what TbLoadHalf took from TbAlloc.
    static void free_view(TbEntry& row, std::size_t half) {
        std::free(const_cast<std::uint8_t*>(row.view[half]));
        row.view[half] = nullptr;
    }

    /// All bytes of a half as they are probed.
    static std::string probed(std::int32_t id, std::int32_t half) {
        std::string bytes;
        for (std::uint32_t at = 0; at < row_of(id).size[static_cast<std::size_t>(half)]; ++at) {
            bytes += static_cast<char>(TbProbeRaw(id, half, at));
        }
        return bytes;
    }

    /// A mapped half is given back.
    static void unmap(std::int32_t id, std::int32_t half) {
        TbUnmapHalf(id, half, no_handle, no_handle);
    }

  private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(Resident, LoadedIntoABufferOfTheCaller) {
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    std::vector<std::uint8_t> buffer(25629 + 1, 0x55);
    const std::uint32_t memory_before = tb_alloc_total;
    const int open_before = open_files();
    TbLoadHalf(kqk, 0, buffer.data());
    const TbEntry& row = row_of(kqk);
    EXPECT_EQ(row.view[0], buffer.data());
    EXPECT_EQ(row.view_size[0], 25629U);
    EXPECT_EQ(row.view[1], nullptr);
    EXPECT_EQ(row.file[0], nullptr);
    EXPECT_EQ(buffer.back(), 0x55);
    EXPECT_EQ(tb_alloc_total, memory_before);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_EQ(probed(kqk, 0), read_file("kqk.nbw"));
}

TEST_F(Resident, LoadedIntoMemoryOfItsOwn) {
    copy_half("kqk.nbb");
    ASSERT_EQ(TbRegisterAll(""), 3);
    const std::uint32_t memory_before = tb_alloc_total;
    TbLoadHalf(kqk, 1, nullptr);
    ASSERT_NE(row_of(kqk).view[1], nullptr);
    EXPECT_EQ(row_of(kqk).view_size[1], 28644U);
    EXPECT_EQ(tb_alloc_total, memory_before + 28644);
    EXPECT_EQ(probed(kqk, 1), read_file("kqk.nbb"));
    free_view(row_of(kqk), 1);
}

TEST_F(Resident, Mapped) {
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    const int open_before = open_files();
    TbMapHalf(kqk, 0);
    ASSERT_NE(row_of(kqk).view[0], nullptr);
    EXPECT_EQ(row_of(kqk).view_size[0], 25629U);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_EQ(probed(kqk, 0), read_file("kqk.nbw"));
    EXPECT_EQ(TbProbeRaw(kqk, 0, 25629), 127);
    unmap(kqk, 0);
}

TEST_F(Resident, MappedWithHandlesAndUnmapped) {
    const CacheBuffer cache(2 * tb_entry_size);
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    const int open_before = open_files();
    SystemHandle file = no_handle;
    SystemHandle mapping = no_handle;
    TbMapHalfHandles(kqk, 0, file, mapping);
    EXPECT_NE(file, no_handle);
    EXPECT_EQ(open_files(), open_before + 1);
    EXPECT_EQ(probed(kqk, 0), read_file("kqk.nbw"));
    EXPECT_TRUE(cached_blocks().empty());
    TbUnmapHalf(kqk, 0, file, mapping);
    EXPECT_EQ(row_of(kqk).view[0], nullptr);
    EXPECT_EQ(row_of(kqk).view_size[0], 0U);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_NE(row_of(kqk).path[0], nullptr);
    EXPECT_EQ(probed(kqk, 0), read_file("kqk.nbw"));
    EXPECT_EQ(cached_blocks().size(), 2U);
}

TEST_F(Resident, EveryRealHalfGivesTheSameBytesByEachWay) {
    const CacheBuffer cache(2 * tb_entry_size);
    ASSERT_EQ(TbRegisterAll(endgame_data), 3);
    int halves = 0;
    for (std::int32_t id = 1; id <= krk + 1; ++id) {
        for (const std::int32_t half : {0, 1}) {
            const std::string cached = probed(id, half);
            TbLoadHalf(id, half, nullptr);
            EXPECT_EQ(probed(id, half), cached);
            free_view(row_of(id), static_cast<std::size_t>(half));
            TbMapHalf(id, half);
            EXPECT_EQ(probed(id, half), cached);
            unmap(id, half);
            ++halves;
        }
    }
    EXPECT_EQ(halves, 10);
}

TEST_F(Resident, AbsentHalfCannotBeHeld) {
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    std::vector<std::uint8_t> buffer(100'000);
    SystemHandle file = 77;
    SystemHandle mapping = 78;
    TbLoadHalf(kqk, 1, buffer.data());
    TbLoadHalf(krk, 0, nullptr);
    TbMapHalf(kqk, 1);
    TbMapHalfHandles(kqk, 1, file, mapping);
    EXPECT_EQ(file, 77);
    EXPECT_EQ(mapping, 78);
    EXPECT_EQ(row_of(kqk).view[1], nullptr);
    EXPECT_EQ(row_of(krk).view[0], nullptr);
}

TEST_F(Resident, CompressedHalfCannotBeHeld) {
    copy_half("kqk.nbw.emd");
    ASSERT_EQ(TbRegisterAll(""), 3);
    std::vector<std::uint8_t> buffer(100'000);
    SystemHandle file = 77;
    SystemHandle mapping = 78;
    TbLoadHalf(kqk, 0, buffer.data());
    TbLoadHalf(kqk, 0, nullptr);
    TbMapHalf(kqk, 0);
    TbMapHalfHandles(kqk, 0, file, mapping);
    EXPECT_EQ(file, 77);
    EXPECT_EQ(mapping, 78);
    EXPECT_EQ(row_of(kqk).view[0], nullptr);
    EXPECT_EQ(row_of(kqk).view_size[0], 0U);
}

TEST_F(Resident, HalfThatFailedCannotBeHeld) {
    const CacheBuffer cache(2 * tb_entry_size);
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    fs::rename("kqk.nbw", "elsewhere");
    EXPECT_EQ(TbProbeRaw(kqk, 0, 0), 127);
    fs::rename("elsewhere", "kqk.nbw");
    TbMapHalf(kqk, 0);
    TbLoadHalf(kqk, 0, nullptr);
    EXPECT_EQ(row_of(kqk).view[0], nullptr);
}

TEST_F(Resident, FileThatHasGrownIsLoadedAsFarAsItWas) {
    write_file("krk.nbw", "abc");
    ASSERT_EQ(TbRegisterAll(""), 3);
    write_file("krk.nbw", "abcdef");
    std::vector<std::uint8_t> buffer(4, 'x');
    TbLoadHalf(krk, 0, buffer.data());
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "abcx");
    EXPECT_EQ(row_of(krk).view_size[0], 3U);
    EXPECT_EQ(TbProbeRaw(krk, 0, 3), 127);
}

TEST_F(Resident, FileIsMappedAsItIsNow) {
    write_file("krk.nbw", "abc");
    ASSERT_EQ(TbRegisterAll(""), 3);
    write_file("krk.nbw", "ab");
    TbMapHalf(krk, 0);
    EXPECT_EQ(row_of(krk).view_size[0], 2U);
    EXPECT_EQ(TbProbeRaw(krk, 0, 1), 'b');
    EXPECT_EQ(TbProbeRaw(krk, 0, 2), 127);
    unmap(krk, 0);
}

TEST_F(Resident, HalfOfNoBytesIsLoadedAndHasNoValue) {
    put_half("krk.nbw", 0, {});
    ASSERT_EQ(TbRegisterAll(""), 3);
    const FailingSeeks seeks(SeekFault::of_end);  // nothing is sought where there is nothing
    TbLoadHalf(krk, 0, nullptr);
    EXPECT_NE(row_of(krk).view[0], nullptr);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
    free_view(row_of(krk), 0);
}

TEST_F(Resident, MappingIsToldWhenWanted) {
    fs::create_directory("tables");
    fs::copy_file(endgame_data + "/kqk.nbw", "tables/kqk.nbw");
    ASSERT_EQ(TbRegisterAll("tables"), 3);
    const CapturedOutput output;
    TbMapHalf(kqk, 0);
    unmap(kqk, 0);
    EXPECT_EQ(output.text(), "");
    tb_verbose = true;
    TbMapHalf(kqk, 1);
    TbMapHalf(kqk, 0);
    EXPECT_EQ(output.text(), "tables/kqk.nbw mapped\n");
    unmap(kqk, 0);
    EXPECT_EQ(output.text(), "tables/kqk.nbw mapped\ntables/kqk.nbw unmapped\n");
}

TEST_F(Resident, UnmappingAHalfWithoutItsFileNamesTheTable) {
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    TbMapHalf(kqk, 0);
    ASSERT_EQ(TbRegisterAll("there-is-no-such-folder"), 3);
    tb_verbose = true;
    const CapturedOutput output;
    unmap(kqk, 0);
    EXPECT_EQ(output.text(), "kqk unmapped\n");
    EXPECT_EQ(TbRegisterAll("there-is-no-such-folder"), 0);
}

TEST_F(Resident, LoadingIsNotTold) {
    copy_half("kqk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    tb_verbose = true;
    const CapturedOutput output;
    std::vector<std::uint8_t> buffer(25629);
    TbLoadHalf(kqk, 0, buffer.data());
    EXPECT_EQ(output.text(), "");
}
