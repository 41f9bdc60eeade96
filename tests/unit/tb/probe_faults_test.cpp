// SPDX-License-Identifier: MIT
// Files that fail while a game is played: the half gives no value and is out of use from then on,
// nothing is said, and all other halves go on.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "support/cache_buffer.h"
#include "support/cache_lists.h"
#include "support/emd_scene.h"
#include "support/endgame_files.h"
#include "support/failing_seeks.h"
#include "support/open_files.h"
#include "support/raw_packed.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/block_cache.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_settings.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kpk = 1;
constexpr std::int32_t krk = 4;
constexpr std::int32_t kqk = 5;
constexpr std::uint32_t block = 8192;

class ProbeFaults : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    /// A first probe of a half that fails, in a cache where other blocks are.
    static void expect_out_of_use(std::int32_t id, std::int32_t half, std::uint32_t index) {
        const CapturedOutput output;
        const std::size_t free_before = free_entries();
        const std::vector<CachedBlock> blocks_before = cached_blocks();
        const TbEntry& row = TbCatalogue[static_cast<std::size_t>(id)];
        const auto h = static_cast<std::size_t>(half);
        const char* const other_before = row.path[1 - h];
        ASSERT_NE(row.path[h], nullptr);
        EXPECT_EQ(TbProbeRaw(id, half, index), 127);
        EXPECT_EQ(row.path[h], nullptr);
        EXPECT_EQ(row.path[1 - h], other_before);
        EXPECT_EQ(free_entries(), free_before);
        EXPECT_EQ(cached_blocks(), blocks_before);
        EXPECT_EQ(cache_fault(), "");
        EXPECT_EQ(TbProbeRaw(id, half, index), 127);
        EXPECT_EQ(free_entries(), free_before);
        EXPECT_EQ(output.text(), "");
    }

    /// The files are registered and krk.nbb has a block in the cache.
    static void register_beside_a_sound_half() {
        fs::copy_file(endgame_data + "/krk.nbb", "krk.nbb");
        ASSERT_EQ(TbRegisterAll(""), 3);
        EXPECT_EQ(TbProbeRaw(krk, 1, 0), static_cast<std::int8_t>(read_file("krk.nbb")[0]));
    }

  private:
    TemporaryFolder folder_;
};

void swap_for_unreadable(const std::string& name) {
    fs::remove(name);
    fs::create_symlink("/proc/self/mem", name);  // opens, and its first bytes cannot be read
}

}  // namespace

TEST_F(ProbeFaults, FileThatVanished) {
    for (const std::string name : {"krk.nbw", "krk.nbw.emd"}) {
        const CacheBuffer cache(4 * tb_entry_size);
        copy_half(name);
        register_beside_a_sound_half();
        fs::remove(name);
        expect_out_of_use(krk, 0, 0);
        EXPECT_EQ(TbProbeRaw(krk, 1, 2 * block),
                  static_cast<std::int8_t>(read_file("krk.nbb")[2 * block]));
        fs::remove("krk.nbb");
        reset_all();
    }
}

TEST_F(ProbeFaults, FileThatBecameAFolder) {
    const CacheBuffer cache(4 * tb_entry_size);
    copy_half("krk.nbw");
    register_beside_a_sound_half();
    fs::remove("krk.nbw");
    fs::create_directory("krk.nbw");
    expect_out_of_use(krk, 0, 0);
}

TEST_F(ProbeFaults, FileThatCannotBeRead) {
    for (const std::string name : {"krk.nbw", "krk.nbw.emd"}) {
        const CacheBuffer cache(4 * tb_entry_size);
        copy_half(name);
        register_beside_a_sound_half();
        swap_for_unreadable(name);
        expect_out_of_use(krk, 0, 0);
        fs::remove("krk.nbb");
        fs::remove(name);
        reset_all();
    }
}

TEST_F(ProbeFaults, PlaceThatCannotBeFound) {
    for (const std::string name : {"krk.nbw", "krk.nbw.emd"}) {
        const CacheBuffer cache(4 * tb_entry_size);
        copy_half(name);
        register_beside_a_sound_half();
        {
            const FailingSeeks seeks(SeekFault::of_place);
            expect_out_of_use(krk, 0, block);
        }
        EXPECT_EQ(TbProbeRaw(krk, 1, block), static_cast<std::int8_t>(read_file("krk.nbb")[block]));
        fs::remove("krk.nbb");
        fs::remove(name);
        reset_all();
    }
}

TEST_F(ProbeFaults, BlockOfAFailedHalfIsStillServedFromTheCache) {
    const CacheBuffer cache(4 * tb_entry_size);
    copy_half("krk.nbw");
    register_beside_a_sound_half();
    const std::int8_t byte = TbProbeRaw(krk, 0, 100);
    TbCloseFiles();
    fs::remove("krk.nbw");
    expect_out_of_use(krk, 0, block);
    EXPECT_EQ(TbProbeRaw(krk, 0, 100), byte);
}

TEST_F(ProbeFaults, FailureCostsTheOldestBlock) {
    const CacheBuffer cache(2 * tb_entry_size);
    copy_half("krk.nbw");
    register_beside_a_sound_half();
    EXPECT_NE(TbProbeRaw(krk, 1, block), 127);
    ASSERT_EQ(free_entries(), 0U);
    fs::remove("krk.nbw");
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
    EXPECT_EQ(cached_blocks(), (std::vector<CachedBlock>{{krk, 1, block}}));
    EXPECT_EQ(free_entries(), 1U);
    EXPECT_EQ(cache_fault(), "");
    EXPECT_NE(TbProbeRaw(krk, 1, 0), 127);
    EXPECT_EQ(free_entries(), 0U);
}

TEST_F(ProbeFaults, PlainFileThatWasCutIsNoFault) {
    const CacheBuffer cache(2 * tb_entry_size);
    copy_half("krk.nbw");
    ASSERT_EQ(TbRegisterAll(""), 3);
    const std::string whole = read_file("krk.nbw");
    fs::resize_file("krk.nbw", block + 10);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), static_cast<std::int8_t>(whole[0]));
    EXPECT_EQ(TbProbeRaw(krk, 0, block + 9), static_cast<std::int8_t>(whole[block + 9]));
    EXPECT_EQ(TbProbeRaw(krk, 0, block + 10), 0);  // what the entry held
    EXPECT_EQ(TbProbeRaw(krk, 0, 2 * block), static_cast<std::int8_t>(whole[0]));
    EXPECT_NE(TbCatalogue[krk].path[0], nullptr);
}

TEST_F(ProbeFaults, CompressedFileThatWasCut) {
    const CacheBuffer cache(4 * tb_entry_size);
    copy_half("krk.nbw.emd");
    register_beside_a_sound_half();
    const std::uint32_t end_of_first = TbCatalogue[krk].decoder[0]->block_offsets[1];
    const std::string sound = read_file(endgame_data + "/krk.nbw");
    fs::resize_file("krk.nbw.emd", end_of_first);
    EXPECT_EQ(TbProbeRaw(krk, 0, 17), static_cast<std::int8_t>(sound[17]));
    TbCloseFiles();
    expect_out_of_use(krk, 0, block);
    EXPECT_EQ(TbProbeRaw(krk, 0, 17), static_cast<std::int8_t>(sound[17]));
}

TEST_F(ProbeFaults, BlockThatCannotBeReadIsNotDecoded) {
    const CacheBuffer cache(4 * tb_entry_size);
    const std::string sound = read_file(endgame_data + "/krk.nbw");
    put_raw_packed("krk.nbw.emd", sound);  // its code would make zeros of nothing
    register_beside_a_sound_half();
    fs::resize_file("krk.nbw.emd", TbCatalogue[krk].decoder[0]->block_offsets[2] - 1);
    EXPECT_EQ(TbProbeRaw(krk, 0, 17), static_cast<std::int8_t>(sound[17]));
    expect_out_of_use(krk, 0, block);
}

TEST_F(ProbeFaults, CompressedFileWithoutABlockToDecodeIn) {
    const CacheBuffer cache(4 * tb_entry_size);
    copy_half("krk.nbw.emd");
    ASSERT_EQ(TbRegisterFile("", krk, 0), 1);
    ASSERT_EQ(tb_decode_block, nullptr);
    expect_out_of_use(krk, 0, 0);
}

TEST_F(ProbeFaults, OtherFilesAreClosedWhereNoneMoreCanBeOpened) {
    const CacheBuffer cache(8 * tb_entry_size);
    for (const char* const name : {"krk.nbw", "krk.nbb.emd", "kqk.nbw", "kqk.nbb", "kpk.nbw"}) {
        copy_half(name);
    }
    ASSERT_EQ(TbRegisterAll(""), 3);
    const OpenFileLimit limit(2);
    EXPECT_NE(TbProbeRaw(krk, 0, 0), 127);
    EXPECT_NE(TbProbeRaw(krk, 1, 0), 127);
    EXPECT_NE(TbProbeRaw(kqk, 0, 0), 127);
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    EXPECT_EQ(TbCatalogue[krk].file[1], nullptr);
    EXPECT_NE(TbCatalogue[kqk].file[0], nullptr);
    EXPECT_EQ(cached_blocks().size(), 3U);
    EXPECT_NE(TbProbeRaw(kqk, 1, 0), 127);
    EXPECT_NE(TbProbeRaw(kpk, 0, 0), 127);
    EXPECT_EQ(TbCatalogue[kqk].file[0], nullptr);
    EXPECT_EQ(TbCatalogue[kqk].file[1], nullptr);
    for (const std::uint32_t index : {block, 2 * block}) {
        for (const auto& [id, half] : {std::pair(krk, 0), {krk, 1}, {kqk, 0}, {kqk, 1}}) {
            EXPECT_NE(TbProbeRaw(id, half, index), 127);
        }
    }
    EXPECT_EQ(cache_fault(), "");
}

TEST_F(ProbeFaults, NoFileAtAllCanBeOpened) {
    const CacheBuffer cache(4 * tb_entry_size);
    copy_half("krk.nbw");
    register_beside_a_sound_half();
    TbCloseFiles();
    const OpenFileLimit limit(0);
    expect_out_of_use(krk, 0, 0);
}

TEST_F(ProbeFaults, DamagedBlockIsFoundByItsChecksums) {
    const std::string text = read_file(endgame_data + "/krk.nbw");
    constexpr unsigned usual_shift = 13;
    EmdFile stored = raw_packed(text, usual_shift);
    stored.stored[1][5] ^= 1;
    EmdFile decoded = raw_packed(text, usual_shift);
    decoded.decoded_checksums[1] ^= 1;
    int files = 0;
    for (const EmdFile& file : {stored, decoded}) {
        const CacheBuffer cache(4 * tb_entry_size);
        put_packed("krk.nbw.emd", file);
        tb_use_crc = 1;
        register_beside_a_sound_half();
        EXPECT_EQ(TbProbeRaw(krk, 0, 0), static_cast<std::int8_t>(text[0]));
        expect_out_of_use(krk, 0, block);
        fs::remove("krk.nbb");
        reset_all();
        ++files;
    }
    EXPECT_EQ(files, 2);
}

TEST_F(ProbeFaults, DamagedBytesOnDiskAreFoundByTheirChecksums) {
    const CacheBuffer cache(4 * tb_entry_size);
    put_raw_packed("krk.nbw.emd", read_file(endgame_data + "/krk.nbw"));
    tb_use_crc = 1;
    register_beside_a_sound_half();
    std::string bytes = read_file("krk.nbw.emd");
    bytes[TbCatalogue[krk].decoder[0]->block_offsets[2] + 7] ^= 1;
    write_file("krk.nbw.emd", bytes);
    EXPECT_NE(TbProbeRaw(krk, 0, 0), 127);
    expect_out_of_use(krk, 0, 2 * block);
}

TEST_F(ProbeFaults, DamageIsNotSeenWithoutChecksums) {
    const CacheBuffer cache(4 * tb_entry_size);
    std::string text = read_file(endgame_data + "/krk.nbw");
    put_raw_packed("krk.nbw.emd", text);
    ASSERT_EQ(TbRegisterAll(""), 3);
    std::string bytes = read_file("krk.nbw.emd");
    const std::size_t place = TbCatalogue[krk].decoder[0]->block_offsets[2] + 7;
    bytes[place] ^= 1;
    write_file("krk.nbw.emd", bytes);
    text[2 * block + 7] ^= 1;
    for (std::uint32_t index = 2 * block; index < 3 * block; ++index) {
        ASSERT_EQ(TbProbeRaw(krk, 0, index), static_cast<std::int8_t>(text[index]));
    }
}

TEST_F(ProbeFaults, DamagedBlockGivesWhatItDecodesTo) {
    const std::string sound = read_file(endgame_data + "/krk.nbw.emd");
    const DecoderPointer decoder = sound_decoder(bytes_of_file(endgame_data + "/krk.nbw.emd"), 0);
    int broken = 0;
    int decoded_otherwise = 0;
    for (std::uint32_t place = 1; place < 1200; place += 13) {
        std::string damaged = sound;
        damaged[decoder->block_offsets[1] + place] ^= static_cast<char>(0x5a);
        write_file("krk.nbw.emd", damaged);
        const CacheBuffer cache(4 * tb_entry_size);
        ASSERT_EQ(TbRegisterAll(""), 3);
        const Bytes file = {damaged.begin(), damaged.end()};
        const DecodedBlock expected = decode_block(*decoder, file, 1, 0);
        if (expected.fault != 0) {
            EXPECT_EQ(TbProbeRaw(krk, 0, block), 127);
            EXPECT_EQ(TbCatalogue[krk].path[0], nullptr);
            ++broken;
            continue;
        }
        for (std::uint32_t at = 0; at < block; ++at) {
            ASSERT_EQ(TbProbeRaw(krk, 0, block + at), static_cast<std::int8_t>(expected.bytes[at]));
        }
        ++decoded_otherwise;
    }
    EXPECT_GT(broken, 0);
    EXPECT_GT(decoded_otherwise, 0);
}
