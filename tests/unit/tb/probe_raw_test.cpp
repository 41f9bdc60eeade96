// SPDX-License-Identifier: MIT
// One byte of a half: every byte of the real tables, plain, compressed and in memory, and places
// behind the end.
#include "tb/probe_raw.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "support/cache_buffer.h"
#include "support/cache_lists.h"
#include "support/endgame_files.h"
#include "support/open_files.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/block_cache.h"
#include "tb/register.h"
#include "tb/tb_settings.h"

namespace {

constexpr std::int32_t kbk = 3;
constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;
constexpr std::uint32_t block = 8192;
constexpr std::array<const char*, 2> extensions = {".nbw", ".nbb"};

class ProbeRaw : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    /// Bytes with no two blocks alike.
    static std::string random_text(std::size_t size) {
        std::mt19937 random(static_cast<unsigned>(size));
        std::string text(size, '\0');
        for (char& letter : text) {
            letter = static_cast<char>(random());
        }
        return text;
    }

    static std::int8_t byte_at(const std::string& text, std::size_t at) {
        return static_cast<std::int8_t>(text[at]);
    }

  private:
    TemporaryFolder folder_;
};

/// Compares all bytes of a half, rising and then at random places; gives how many.
std::size_t compare_half(std::int32_t id, std::int32_t half, const std::string& bytes) {
    std::size_t compared = 0;
    int wrong = 0;
    for (std::uint32_t index = 0; index < bytes.size(); ++index) {
        wrong += TbProbeRaw(id, half, index) != static_cast<std::int8_t>(bytes[index]) ? 1 : 0;
        ++compared;
    }
    std::mt19937 random(static_cast<unsigned>(id));
    for (int i = 0; i < 500; ++i) {
        const std::size_t index = random() % bytes.size();
        wrong += TbProbeRaw(id, half, static_cast<std::uint32_t>(index)) !=
                         static_cast<std::int8_t>(bytes[index])
                     ? 1
                     : 0;
    }
    EXPECT_EQ(wrong, 0) << TbCatalogue[static_cast<std::size_t>(id)].name.data() << half;
    return compared;
}

}  // namespace

TEST_F(ProbeRaw, EveryByteOfThePlainTables) {
    const CacheBuffer cache(3 * tb_entry_size);
    ASSERT_EQ(TbRegisterAll(endgame_data), 3);
    std::size_t compared = 0;
    for (std::int32_t id = 1; id <= 5; ++id) {
        const TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
        for (const std::int32_t half : {0, 1}) {
            const auto h = static_cast<std::size_t>(half);
            ASSERT_EQ(row.decoder[h], nullptr);
            const std::string name = endgame_data + "/" + row.name.data() + extensions[h];
            compared += compare_half(id, half, read_file(name));
        }
    }
    EXPECT_EQ(compared, 386436U);
}

TEST_F(ProbeRaw, EveryByteOfTheCompressedTables) {
    const CacheBuffer cache(3 * tb_entry_size);
    for (const std::uint32_t checksums : {0U, 1U}) {
        std::size_t compared = 0;
        tb_use_crc = checksums;
        for (const std::string name : {"kpk", "krk", "kqk"}) {
            for (const char* const extension : extensions) {
                if (checksums == 0) copy_half(name + extension + ".emd");
            }
        }
        ASSERT_EQ(TbRegisterAll(""), 3);
        for (const std::int32_t id : {1, krk, kqk}) {
            const TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
            for (const std::int32_t half : {0, 1}) {
                const auto h = static_cast<std::size_t>(half);
                ASSERT_NE(row.decoder[h], nullptr);
                const std::string name = endgame_data + "/" + row.name.data() + extensions[h];
                compared += compare_half(id, half, read_file(name));
            }
        }
        EXPECT_EQ(compared, 275623U);
    }
}

TEST_F(ProbeRaw, ByteHasASign) {
    const CacheBuffer cache(tb_entry_size);
    write_file("krk.nbw", std::string("\x00\x01\x7f\x80\xff", 5));
    ASSERT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 0);
    EXPECT_EQ(TbProbeRaw(krk, 0, 1), 1);
    EXPECT_EQ(TbProbeRaw(krk, 0, 2), 127);
    EXPECT_EQ(TbProbeRaw(krk, 0, 3), -128);
    EXPECT_EQ(TbProbeRaw(krk, 0, 4), -1);
}

TEST_F(ProbeRaw, FileIsOpenedAtTheFirstProbeAndStaysOpen) {
    const CacheBuffer cache(10 * tb_entry_size);
    copy_half("krk.nbw");
    copy_half("krk.nbb.emd");
    ASSERT_EQ(TbRegisterAll(""), 3);
    const int before = open_files();
    for (const std::uint32_t index : {0U, block, 2 * block, 0U}) {
        EXPECT_NE(TbProbeRaw(krk, 0, index), tb_no_value);
        EXPECT_EQ(open_files(), before + 1);
    }
    EXPECT_EQ(TbCatalogue[krk].file[1], nullptr);
    for (const std::uint32_t index : {0U, block, 2 * block, 0U}) {
        EXPECT_NE(TbProbeRaw(krk, 1, index), tb_no_value);
        EXPECT_EQ(open_files(), before + 2);
    }
}

TEST_F(ProbeRaw, CacheThatIsOffGivesNoValueAndOpensNothing) {
    copy_half("krk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
    }
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
}

TEST_F(ProbeRaw, HalfThatWasNeverFoundGivesNoValue) {
    const CacheBuffer cache(2 * tb_entry_size);
    copy_half("krk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbProbeRaw(krk, 1, 0), 127);
    EXPECT_EQ(TbProbeRaw(145, 0, 0), 127);
    EXPECT_EQ(free_entries(), 2U);
}

TEST_F(ProbeRaw, HalfInMemoryNeedsNoCache) {
    constexpr std::array<std::uint8_t, 3> bytes = {0x05, 0x80, 0x7f};
    TbCatalogue[krk].view[1] = bytes.data();
    TbCatalogue[krk].view_size[1] = bytes.size();
    EXPECT_EQ(TbProbeRaw(krk, 1, 0), 5);
    EXPECT_EQ(TbProbeRaw(krk, 1, 1), -128);
    EXPECT_EQ(TbProbeRaw(krk, 1, 2), 127);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), tb_no_value);
}

TEST_F(ProbeRaw, HalfInMemoryIsAskedBeforeTheCache) {
    constexpr std::array<std::uint8_t, 3> bytes = {1, 2, 3};
    const CacheBuffer cache(2 * tb_entry_size);
    put_half("krk.nbw", 3, {{0, 11}, {1, 12}, {2, 13}});
    ASSERT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, 1), 12);
    TbCatalogue[krk].view[0] = bytes.data();
    TbCatalogue[krk].view_size[0] = bytes.size();
    EXPECT_EQ(TbProbeRaw(krk, 0, 1), 2);
}

TEST_F(ProbeRaw, BehindTheEndOfAHalfInMemoryThereIsNoValue) {
    constexpr std::array<std::uint8_t, 4> bytes = {1, 2, 3, 4};
    TbCatalogue[krk].view[0] = bytes.data();
    TbCatalogue[krk].view_size[0] = 3;
    EXPECT_EQ(TbProbeRaw(krk, 0, 2), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, 3), 127);
    EXPECT_EQ(TbProbeRaw(krk, 0, UINT32_MAX), 127);
    TbCatalogue[krk].view_size[0] = 0;
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
}

TEST_F(ProbeRaw, BehindTheEndOfAPlainHalfStandsWhatTheEntryHeld) {
    const CacheBuffer cache(tb_entry_size);
    const std::string old = random_text(block);
    const std::string half = random_text(block + 100);
    write_file("krk.nbw", half);
    write_file("kbk.nbw", old);
    ASSERT_EQ(TbRegisterAll(""), 3);
    ASSERT_EQ(TbProbeRaw(kbk, 0, 0), byte_at(old, 0));
    EXPECT_EQ(TbProbeRaw(krk, 0, block + 99), byte_at(half, block + 99));
    int behind = 0;
    for (std::uint32_t at = 100; at < block; ++at) {
        behind += TbProbeRaw(krk, 0, block + at) == byte_at(old, at) ? 1 : 0;
    }
    EXPECT_EQ(behind, 8092);
    EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
}

TEST_F(ProbeRaw, FarBehindTheEndOfAPlainHalfStandsWhatTheEntryHeld) {
    const std::string old = random_text(block);
    write_file("krk.nbw", "abc");
    write_file("kbk.nbw", old);
    int places = 0;
    for (const std::uint32_t index : {block, 5 * block + 77, 1U << 31U, UINT32_MAX}) {
        const CacheBuffer cache(tb_entry_size);
        ASSERT_EQ(TbRegisterAll(""), 3);
        ASSERT_EQ(TbProbeRaw(kbk, 0, 0), byte_at(old, 0));
        EXPECT_EQ(TbProbeRaw(krk, 0, index), byte_at(old, index % block)) << index;
        EXPECT_EQ(cached_blocks(), (std::vector<CachedBlock>{{krk, 0, index / block * block}}));
        EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
        EXPECT_EQ(TbProbeRaw(krk, 0, 1), 'b');
        ++places;
    }
    EXPECT_EQ(places, 4);
}

TEST_F(ProbeRaw, InAShortLastBlockOfACompressedHalfStandsWhatWasDecoded) {
    const CacheBuffer cache(tb_entry_size);
    const std::string old = random_text(block);
    const std::string half = random_text(block + 100);
    put_raw_packed("krk.nbw.emd", half);
    write_file("kbk.nbw", old);
    ASSERT_EQ(TbRegisterAll(""), 3);
    ASSERT_EQ(TbProbeRaw(kbk, 0, 0), byte_at(old, 0));
    EXPECT_EQ(TbProbeRaw(krk, 0, block), byte_at(half, block));
    EXPECT_EQ(TbProbeRaw(krk, 0, block + 99), byte_at(half, block + 99));
    EXPECT_EQ(TbProbeRaw(krk, 0, block + 100), byte_at(old, 100));
    EXPECT_EQ(TbProbeRaw(krk, 0, 2 * block - 1), byte_at(old, block - 1));
    EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
}

TEST_F(ProbeRaw, BehindTheLastBlockOfACompressedHalfThereIsNoValue) {
    put_raw_packed("krk.nbw.emd", random_text(block + 100));
    int places = 0;
    for (const std::uint32_t index : {2 * block, 3 * block, 1U << 31U, UINT32_MAX}) {
        const CacheBuffer cache(2 * tb_entry_size);
        ASSERT_EQ(TbRegisterAll(""), 3);
        EXPECT_EQ(TbProbeRaw(krk, 0, index), 127);
        EXPECT_EQ(TbCatalogue[krk].path[0], nullptr);
        EXPECT_EQ(free_entries(), 2U);
        EXPECT_EQ(cache_fault(), "");
        ++places;
    }
    EXPECT_EQ(places, 4);
}

TEST_F(ProbeRaw, PlacesBeyondTwoGigabytesAreReached) {
    constexpr std::uint32_t size = 0xfffffffe;
    const CacheBuffer cache(2 * tb_entry_size);
    put_half("krk.nbw", size, {{0, 1}, {0x7fffffff, 2}, {0x80000000, 3}, {size - 1, 4}});
    ASSERT_EQ(TbRegisterAll(""), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 1);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0x7fffffff), 2);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0x80000000), 3);
    EXPECT_EQ(TbProbeRaw(krk, 0, size - 1), 4);
    EXPECT_EQ(TbProbeRaw(krk, 0, size - 2), 0);
}
