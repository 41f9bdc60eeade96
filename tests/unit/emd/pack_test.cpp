// SPDX-License-Identifier: MIT
// Whole halves packed: what comes of them is no larger than what another packer made of them, and
// the same each time.
#include "emd/pack.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "support/packed_file.h"

namespace {

const std::string data_folder = CORVANE_TEST_DATA "/tb/";

TEST(EmdPack, NothingIsRefused) {
    EXPECT_TRUE(emd_pack({}, {}).empty());
}

TEST(EmdPack, TheBlockSizeIsTheEnginesUnlessTold) {
    PackedFile file(emd_pack(PackBytes{1, 2, 3}, {}));
    ASSERT_TRUE(file.is_open());
    EXPECT_EQ(file.decoder().block_shift, 13);
}

TEST(EmdPack, HalvesAreNoLargerThanByAnotherPacker) {
    std::size_t halves = 0;
    std::size_t size = 0;
    for (const std::string name :
         {"kqk.nbw", "kqk.nbb", "krk.nbw", "krk.nbb", "kpk.nbw", "kpk.nbb"}) {
        const PackBytes bytes = read_bytes(data_folder + name);
        PackedFile file(emd_pack(bytes, {}));
        EXPECT_EQ(file.unpack(), bytes) << name;
        EXPECT_LE(file.size(), std::filesystem::file_size(data_folder + name + ".emd")) << name;
        size += file.size();
        ++halves;
    }
    EXPECT_EQ(halves, 6U);
    EXPECT_LE(size, 52050U);  // the other packer's have 52707
}

TEST(EmdPack, HalvesOfHardlyAnyValues) {
    std::size_t halves = 0;
    for (const std::string name : {"kbk.nbw", "kbk.nbb", "knk.nbw", "knk.nbb"}) {
        const PackBytes bytes = read_bytes(data_folder + name);
        PackedFile file(emd_pack(bytes, {}));
        EXPECT_EQ(file.unpack(), bytes) << name;
        EXPECT_LE(file.size(), name == "kbk.nbw" ? 1200U : 190U) << name;
        ++halves;
    }
    EXPECT_EQ(halves, 4U);
}

TEST(EmdPack, TheSameEachTime) {
    const PackBytes bytes = read_bytes(data_folder + "krk.nbb");
    EmdPackOptions options;
    options.block_shift = 9;
    EXPECT_EQ(emd_pack(bytes, options), emd_pack(bytes, options));
}

}  // namespace
