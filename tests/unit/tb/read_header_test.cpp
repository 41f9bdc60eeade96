// SPDX-License-Identifier: MIT
// Headers of compressed files: what a sound one tells.
#include <algorithm>
#include <gtest/gtest.h>

#include "support/emd_blocks.h"
#include "tb/code_table.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

/// Three blocks of up to 16 bytes; the second is stored in as many, the last has 5.
EmdFile small_file() {
    EmdFile file = flat_file(4, {Bytes(7, 'a'), Bytes(16, 'b'), Bytes(9, 'c')}, 5);
    for (std::uint32_t& distance : file.distances) {
        distance %= 16;
    }
    file.decoded_checksums = {0x11223344, 0x99aabbcc, 0xfedcba98};
    return file;
}

const std::uint32_t* words_behind(const TbDecoder& decoder) {
    return reinterpret_cast<const std::uint32_t*>(&decoder + 1);
}

std::vector<std::uint32_t> offsets_of(const TbDecoder& decoder) {
    return {decoder.block_offsets, decoder.block_offsets + decoder.block_count + 1};
}

}  // namespace

TEST(ReadHeader, TellsEveryField) {
    const Bytes bytes = emd_file_bytes(small_file());
    const DecoderPointer header = sound_decoder(bytes, 0);
    const TbDecoder& decoder = *header;
    EXPECT_EQ(decoder.block_shift, 4);
    EXPECT_EQ(decoder.block_size, 16);
    EXPECT_EQ(decoder.block_count, 3);
    EXPECT_EQ(decoder.last_block_size, 5);
    EXPECT_EQ(decoder.max_stored, 16 + 32);
    EXPECT_EQ(decoder.has_crc, 0U);
    EXPECT_EQ(decoder.reserved, 0U);
    EXPECT_EQ(decoder.magic, 0x5ABC947FU);
    const std::uint32_t begin = header_length(bytes);
    EXPECT_EQ(bytes.size(), begin + 7U + 16 + 9);
    EXPECT_EQ(offsets_of(decoder),
              (std::vector<std::uint32_t>{begin, begin + 7, begin + 23, begin + 32}));
}

TEST(ReadHeader, StoresDistancesNegated) {
    const DecoderPointer header = sound_decoder(emd_file_bytes(small_file()), 0);
    for (std::int32_t i = 0; i < 24; ++i) {
        EXPECT_EQ(header->distances[static_cast<std::size_t>(i)], -((i + 1) % 16)) << i;
    }
}

TEST(ReadHeader, BuildsTheTableOfItsCode) {
    Bytes lengths(tb_symbols, 0);
    for (std::uint8_t i = 1; i <= 20; ++i) {
        lengths[50 * std::size_t{i}] = i;
    }
    lengths[1023] = 20;
    std::array<std::int16_t, TbDecoder::table_size> table{};
    ASSERT_TRUE(tb_build_code_table(lengths, 13, table));
    EmdFile file = small_file();
    file.code = emd_code_description(lengths);
    const DecoderPointer header = sound_decoder(emd_file_bytes(file), 0);
    EXPECT_EQ(header->decode_table, table);
    EXPECT_EQ(table.size(), 10240U);

    file.code = emd_code_description(Bytes(tb_symbols, 0));
    const DecoderPointer empty = sound_decoder(emd_file_bytes(file), 0);
    EXPECT_EQ(empty->decode_table, (std::array<std::int16_t, TbDecoder::table_size>{}));
}

TEST(ReadHeader, KeepsChecksumsWhereItIsTold) {
    const EmdFile file = small_file();
    const Bytes bytes = emd_file_bytes(file);
    for (const std::uint32_t keep_crc : {1U, 2U}) {
        const DecoderPointer header = sound_decoder(bytes, keep_crc);
        const TbDecoder& decoder = *header;
        EXPECT_EQ(decoder.has_crc, 1U);
        EXPECT_EQ(decoder.block_crc, words_behind(decoder));
        EXPECT_EQ(decoder.block_offsets, decoder.block_crc + 6);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(decoder.block_crc[2 * i], file.decoded_checksums[i]) << i;
            EXPECT_EQ(decoder.block_crc[2 * i + 1], tb_checksum(file.stored[i])) << i;
        }
        EXPECT_EQ(offsets_of(decoder), offsets_of(*sound_decoder(bytes, 0)));
    }
}

TEST(ReadHeader, WithoutChecksumsBothArraysAreTheOffsets) {
    const DecoderPointer header = sound_decoder(emd_file_bytes(small_file()), 0);
    EXPECT_EQ(header->block_crc, words_behind(*header));
    EXPECT_EQ(header->block_offsets, header->block_crc);
}

TEST(ReadHeader, CountsItsMemory) {
    const Bytes bytes = emd_file_bytes(small_file());
    tb_decoder_bytes = 1000;
    EXPECT_NE(sound_decoder(bytes, 0), nullptr);
    const auto without = static_cast<std::int32_t>(sizeof(TbDecoder) + (3 + 1) * 4);
    EXPECT_EQ(tb_decoder_bytes, 1000 + without);
    EXPECT_NE(sound_decoder(bytes, 1), nullptr);
    const auto with = static_cast<std::int32_t>(sizeof(TbDecoder) + (3 * 3 + 1) * 4);
    EXPECT_EQ(tb_decoder_bytes, 1000 + without + with);
    tb_decoder_bytes = 0;
}

/// A size that does not fit its field is written 0.
TEST(ReadHeader, SizeOfZeroIsAWholeBlock) {
    const DecoderPointer header =
        sound_decoder(emd_file_bytes(flat_file(4, {Bytes(16, 'a'), Bytes(3, 'b')}, 16)), 0);
    EXPECT_EQ(header->last_block_size, 16);
    EXPECT_EQ(header->block_offsets[1] - header->block_offsets[0], 16U);
    EXPECT_EQ(header->block_offsets[2] - header->block_offsets[1], 3U);
}

TEST(ReadHeader, LargestStoredLengthCountsTheLastBlocksSizeToo) {
    const auto largest = [](std::size_t first, std::size_t second, std::uint32_t last_size) {
        const EmdFile file = flat_file(13, {Bytes(first, 'a'), Bytes(second, 'b')}, last_size);
        return sound_decoder(emd_file_bytes(file), 0)->max_stored;
    };
    EXPECT_EQ(largest(100, 60, 70), 132);
    EXPECT_EQ(largest(60, 100, 70), 132);
    EXPECT_EQ(largest(60, 70, 100), 132);
    EXPECT_EQ(largest(60, 70, 8192), 8192 + 32);
}

TEST(ReadHeader, OneBlockHasItsStoredAndItsDecodedLength) {
    const Bytes bytes = emd_file_bytes(flat_file(13, {Bytes(40, 'a')}, 4000));
    const DecoderPointer header = sound_decoder(bytes, 0);
    EXPECT_EQ(header->block_count, 1);
    EXPECT_EQ(header->last_block_size, 4000);
    EXPECT_EQ(offsets_of(*header),
              (std::vector<std::uint32_t>{header_length(bytes), header_length(bytes) + 40}));
}

TEST(ReadHeader, FieldsHaveAsManyBitsAsTheBlockSize) {
    int shifts = 0;
    for (unsigned shift = 0; shift <= 16; ++shift, ++shifts) {
        const std::uint32_t block_size = 1U << shift;
        EmdFile file = flat_file(shift, {Bytes(block_size, 'a'), Bytes((block_size + 1) / 2, 'b')},
                                 block_size == 1 ? 1 : block_size - 1);
        for (std::uint32_t i = 0; i < file.distances.size(); ++i) {
            file.distances[i] = (block_size - 1) >> (i % 3);
        }
        const DecoderPointer header = sound_decoder(emd_file_bytes(file), 1);
        const TbDecoder& decoder = *header;
        EXPECT_EQ(decoder.block_shift, static_cast<std::int32_t>(shift));
        EXPECT_EQ(decoder.block_size, static_cast<std::int32_t>(block_size));
        EXPECT_EQ(decoder.last_block_size, static_cast<std::int32_t>(file.last_block_size));
        EXPECT_EQ(decoder.max_stored, static_cast<std::int32_t>(block_size + 32));
        EXPECT_EQ(decoder.block_offsets[1] - decoder.block_offsets[0], block_size);
        EXPECT_EQ(decoder.block_offsets[2] - decoder.block_offsets[1], (block_size + 1) / 2);
        for (std::size_t i = 0; i < file.distances.size(); ++i) {
            EXPECT_EQ(decoder.distances[i], -static_cast<std::int32_t>(file.distances[i])) << i;
        }
    }
    EXPECT_EQ(shifts, 17);
}

TEST(ReadHeader, LooksAtTheFilesStartWhereverItStands) {
    const OpenedBytes file(emd_file_bytes(small_file()));
    TbDecoder* decoder = nullptr;
    ASSERT_EQ(std::fseek(file.get(), 100, SEEK_SET), 0);
    ASSERT_EQ(TbReadHeader(&decoder, file.get(), 0), 0);
    EXPECT_EQ(decoder->block_count, 3);
    TbFreeDecoder(decoder);
}

/// The blocks themselves are not looked at.
TEST(ReadHeader, NeedsTheHeaderAlone) {
    const Bytes bytes = emd_file_bytes(small_file());
    const std::span<const std::uint8_t> header(bytes.data(), header_length(bytes));
    EXPECT_NE(sound_decoder(header, 1), nullptr);
}

/// Places are told in 32 bits: the last block may end there, and not a byte behind.
TEST(ReadHeader, BlocksMayReachToTheEndOf32Bits) {
    constexpr std::size_t blocks = 65526;
    const auto bytes_with_last = [](std::size_t stored) {
        std::vector<Bytes> all(blocks);  // a length of 0 is that of a whole block
        all.back().assign(stored, 'x');
        return emd_file_bytes(flat_file(16, all, 65536));
    };
    const std::uint32_t last_begins = header_length(bytes_with_last(1)) + 65536U * (blocks - 1);
    const std::size_t room = 0xffffffffU - last_begins;
    ASSERT_LT(room, 65536U);
    const DecoderPointer header = sound_decoder(bytes_with_last(room), 0);
    EXPECT_EQ(header->block_offsets[blocks - 1], last_begins);
    EXPECT_EQ(header->block_offsets[blocks], 0xffffffffU);
    const OpenedBytes beyond(bytes_with_last(room + 1));
    TbDecoder* decoder = nullptr;
    EXPECT_EQ(tb_fault_kind(TbReadHeader(&decoder, beyond.get(), 0)), tb_broken_file);
}
