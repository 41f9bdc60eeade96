// SPDX-License-Identifier: MIT
// The header's fields, byte by byte, and files that the engine opens.
#include "emd/emd_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "emd/code_writer.h"
#include "support/packed_file.h"
#include "tb/checksum.h"

namespace {

const PackBytes no_code{0x80};

std::uint32_t word_at(const PackBytes& bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) << 24U |
           static_cast<std::uint32_t>(bytes[at + 1]) << 16U |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8U | bytes[at + 3];
}

/// A file of raw blocks.
EmdFile raw_file(unsigned block_shift, const PackBytes& bytes) {
    EmdFile file;
    file.block_shift = block_shift;
    file.code = no_code;
    const std::size_t block_size = std::size_t{1} << block_shift;
    for (std::size_t at = 0; at < bytes.size(); at += block_size) {
        const std::size_t size = std::min(block_size, bytes.size() - at);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        file.stored.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(size));
        file.decoded_checksums.push_back(tb_checksum(file.stored.back()));
        file.last_block_size = static_cast<std::uint32_t>(size);
    }
    return file;
}

TEST(EmdFile, FixedFields) {
    const PackBytes bytes = emd_file_bytes(raw_file(4, {1, 2, 3}));
    const std::string stamp(bytes.begin(), bytes.begin() + 64);
    EXPECT_EQ(stamp.substr(29, 29), "for Corvane's own table files");
    EXPECT_EQ(stamp.substr(58), std::string("\r\n\0\0\0\0", 6));
    const std::uint32_t header_length = 80 + 8 + (26 * 4 + 7) / 8 + 1 + 4;
    EXPECT_EQ(word_at(bytes, 64), header_length);
    EXPECT_EQ(word_at(bytes, 68), 4U << 8U | 24U);
    EXPECT_EQ(word_at(bytes, 72), 1U);
    EXPECT_EQ(word_at(bytes, 76), 0x4001F5U);
    EXPECT_EQ(bytes.size(), header_length + 3);
    EXPECT_EQ(word_at(bytes, header_length - 4), tb_checksum({bytes.data(), header_length - 4}));
}

TEST(EmdFile, ChecksumsOfDecodedAndStoredBlocks) {
    EmdFile file = raw_file(4, {1, 2, 3});
    file.decoded_checksums[0] = 0x12345678;
    const PackBytes bytes = emd_file_bytes(file);
    EXPECT_EQ(word_at(bytes, 80), 0x12345678U);
    EXPECT_EQ(word_at(bytes, 84), tb_checksum(PackBytes{1, 2, 3}));
}

TEST(EmdFile, SizesAndDistances) {
    EmdFile file = raw_file(4, PackBytes(16 + 3, 9));
    file.distances[0] = 1;
    file.distances[1] = 15;
    file.distances[23] = 6;
    const PackBytes bytes = emd_file_bytes(file);
    // Sizes 16, 3 and again 3; then 24 distances; four bits each, padded.
    const PackBytes expected{0x03, 0x31, 0xf0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x60, 0x80};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + 80 + 2 * 8));
}

TEST(EmdFile, BlocksFollowTheHeader) {
    PackRandom random(8);
    const PackBytes data = random_bytes(random, 50, 256);
    const PackBytes bytes = emd_file_bytes(raw_file(3, data));
    EXPECT_EQ(bytes.size() - word_at(bytes, 64), data.size());
    EXPECT_TRUE(std::equal(data.begin(), data.end(), bytes.end() - 50));
}

TEST(EmdFile, TheEngineOpensFilesOfEveryBlockSize) {
    PackRandom random(9);
    int files = 0;
    for (unsigned shift = 0; shift <= 16; ++shift) {
        const std::size_t block_size = std::size_t{1} << shift;
        for (const std::size_t size :
             {std::size_t{1}, block_size, block_size + 1, 3 * block_size - 1}) {
            const PackBytes data = random_bytes(random, size, 256);
            EmdFile file = raw_file(shift, data);
            for (std::uint32_t& distance : file.distances) {
                distance = static_cast<std::uint32_t>(random_below(random, block_size));
            }
            PackedFile packed(emd_file_bytes(file));
            ASSERT_TRUE(packed.is_open()) << shift << ' ' << size;
            EXPECT_EQ(packed.decoder().block_shift, static_cast<std::int32_t>(shift));
            for (std::size_t slot = 0; slot < emd_slots; ++slot) {
                EXPECT_EQ(packed.decoder().distances[slot],
                          -static_cast<std::int32_t>(file.distances[slot]));
            }
            EXPECT_EQ(packed.raw_blocks(), packed.decoder().block_count);
            EXPECT_EQ(packed.unpack(), data);
            ++files;
        }
    }
    EXPECT_EQ(files, 68);
}

TEST(EmdFile, AWrongChecksumIsSeen) {
    EmdFile file = raw_file(4, PackBytes(20, 1));
    file.decoded_checksums[1] ^= 1;
    PackedFile packed(emd_file_bytes(file));
    ASSERT_TRUE(packed.is_open());
    EXPECT_EQ(packed.unpack(), PackBytes{});
}

}  // namespace
