// SPDX-License-Identifier: MIT
// Models of whole data: when there is none, what a sample has to be made up by, what rare symbols
// are worth.
#include "emd/model.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "emd/block_packer.h"
#include "support/packed_file.h"
#include "tb/code_table.h"
#include "tb/decoder.h"

namespace {

using Lengths = std::array<std::uint8_t, emd_symbols>;

EmdPackOptions options_of(unsigned block_shift) {
    EmdPackOptions options;
    options.block_shift = block_shift;
    return options;
}

std::size_t words_of(const EmdModel& model) {
    return emd_symbols -
           static_cast<std::size_t>(std::count(model.lengths.begin(), model.lengths.end(), 0));
}

/// Blocks whose every second one cannot be packed.
PackBytes mixed_bytes(std::size_t pairs) {
    PackRandom random(31);
    PackBytes bytes;
    for (std::size_t i = 0; i < pairs; ++i) {
        const PackBytes noise = random_bytes(random, 1024, 256);
        bytes.insert(bytes.end(), noise.begin(), noise.end());
        const PackBytes tame = random_bytes(random, 1024, 4);
        bytes.insert(bytes.end(), tame.begin(), tame.end());
    }
    return bytes;
}

TEST(EmdModel, NoCodeForNoise) {
    PackRandom random(32);
    for (const std::size_t size : {std::size_t{1}, std::size_t{300}, std::size_t{20000}}) {
        const EmdModel model = emd_choose_model(random_bytes(random, size, 256), options_of(13));
        EXPECT_EQ(model.lengths, Lengths{}) << size;
        EXPECT_EQ(model.distances, EmdDistances{}) << size;
        EXPECT_EQ(model.block_shift, 13U);
    }
}

TEST(EmdModel, NoCodeThatIsLongerThanWhatItSaves) {
    // Ten bytes saved and a description of more than ten.
    PackRandom random(33);
    PackBytes bytes = random_bytes(random, 400, 256);
    std::fill_n(bytes.begin() + 200, 18, std::uint8_t{5});
    EXPECT_EQ(emd_choose_model(bytes, options_of(13)).lengths, Lengths{});
    bytes.insert(bytes.end(), 2000, 5);
    EXPECT_NE(emd_choose_model(bytes, options_of(13)).lengths, Lengths{});
}

TEST(EmdModel, OneWordForABlockOfOneByte) {
    const EmdModel model = emd_choose_model(PackBytes(8192, 77), options_of(13));
    Lengths expected{};
    expected[77] = 1;
    EXPECT_EQ(model.lengths, expected);
}

TEST(EmdModel, CodesAreComplete) {
    std::vector<std::int16_t> table(TbDecoder::table_size);
    PackRandom random(34);
    int models = 0;
    for (std::size_t values = 2; values <= 256; values += values / 3 + 1) {
        const EmdModel model = emd_choose_model(random_bytes(random, 3000, values), options_of(10));
        EXPECT_TRUE(tb_build_code_table(model.lengths, tb_root_bits, table)) << values;
        ++models;
    }
    EXPECT_GT(models, 10);
}

TEST(EmdModel, RawBlocksTakeNoWordsAway) {
    const EmdModel model = emd_choose_model(mixed_bytes(6), options_of(10));
    EXPECT_LT(words_of(model), 40U);
    for (std::size_t byte = 0; byte < 4; ++byte) {
        EXPECT_GE(model.lengths[byte], 1) << byte;
        EXPECT_LE(model.lengths[byte], 4) << byte;
    }
}

TEST(EmdModel, ARareMatchHasAWordWhereItSavesMuch) {
    // One long match in all; without it the block would be raw.
    PackRandom random(35);
    const PackBytes bytes = periodic_bytes(random, 4000, 900);
    const EmdModel model = emd_choose_model(bytes, options_of(13));
    EXPECT_LT(EmdBlockPacker(model).pack(bytes).stored.size(), 1000U);
}

TEST(EmdModel, RareMatchesHaveNoWordsWhereTheySaveLittle) {
    // Literals of two values take a bit each. Now and then a piece of odd length comes back.
    PackRandom random(38);
    PackBytes bytes = random_bytes(random, 6000, 2);
    for (std::size_t i = 0; i < 12; ++i) {
        const auto target = bytes.begin() + static_cast<std::ptrdiff_t>(1000 + 400 * i);
        std::copy_n(target - 300, 14 + i, target);
    }
    EXPECT_LT(words_of(emd_choose_model(bytes, options_of(13))), 40U);
}

TEST(EmdModel, OnlyTheSampleIsLookedAt) {
    PackRandom random(36);
    PackBytes bytes = random_bytes(random, 64 * 1024, 3);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(bytes[i] + (i / 1024 % 4 == 0 ? 0 : 100));
    }
    EmdPackOptions options = options_of(10);
    options.sample_size = 16 * 1024;  // every fourth block
    const EmdModel model = emd_choose_model(bytes, options);
    for (std::size_t byte = 0; byte < 3; ++byte) {
        EXPECT_LE(model.lengths[byte], 3);
        EXPECT_GE(model.lengths[100 + byte], 4);
    }
}

TEST(EmdModel, BytesOutsideTheSampleHaveWords) {
    PackRandom random(39);
    PackBytes bytes = random_bytes(random, 64 * 1024, 3);
    EmdPackOptions options = options_of(10);
    options.sample_size = 16 * 1024;
    bytes[1024 + 5] = 200;  // in blocks between those of the sample
    bytes[62 * 1024] = 201;
    const EmdModel model = emd_choose_model(bytes, options);
    EXPECT_GT(model.lengths[200], 0);
    EXPECT_GT(model.lengths[201], 0);
    EXPECT_EQ(model.lengths[202], 0);
    const EmdBlockPacker packer(model);
    for (const std::size_t block : {1U, 62U, 63U}) {
        const auto stored = packer.pack(std::span(bytes).subspan(block * 1024, 1024)).stored;
        EXPECT_LT(stored.size(), 300U);
    }
}

TEST(EmdModel, TheSampleIsSpreadOverTheData) {
    PackRandom random(37);
    // The second half has other bytes than the first: a sample of the beginning would miss them.
    PackBytes bytes = random_bytes(random, 64 * 1024, 4);
    std::for_each(bytes.begin() + 32 * 1024, bytes.end(), [](std::uint8_t& byte) { byte += 100; });
    EmdPackOptions options = options_of(10);
    options.sample_size = 8 * 1024;
    const EmdModel model = emd_choose_model(bytes, options);
    for (std::size_t byte = 0; byte < 4; ++byte) {
        EXPECT_LE(model.lengths[byte], 5);
        EXPECT_LE(model.lengths[100 + byte], 5);
    }
}

}  // namespace
