// SPDX-License-Identifier: MIT
// Headers that are damaged, each in one place: which fault is told, and that nothing is left
// behind.
#include <gtest/gtest.h>
#include <string_view>

#include "support/emd_blocks.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

constexpr std::size_t header_length_at = 64;
constexpr std::size_t unread_at = 68;
constexpr std::size_t block_shift_at = 70;
constexpr std::size_t slots_at = 71;
constexpr std::size_t block_count_at = 72;
constexpr std::size_t format_at = 76;
constexpr std::size_t fixed_size = 80;

void put_word(Bytes& bytes, std::size_t at, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
    }
}

/// Two blocks, the header as short as it can be: without spare bytes behind the code.
Bytes small_file() {
    EmdFile file = flat_file(8, {Bytes(7, 'a'), Bytes(9, 'c')}, 5);
    return emd_file_bytes(file);
}

/// Writes the checksum anew, behind a header of the length told.
Bytes with_checksum(Bytes bytes) {
    const std::size_t at = header_length(bytes) - 4;
    put_word(bytes, at, tb_checksum({bytes.data(), at}));
    return bytes;
}

/// The small file with one word of the header changed, and the right checksum.
Bytes with_word(std::size_t at, std::uint32_t word) {
    Bytes bytes = small_file();
    put_word(bytes, at, word);
    return with_checksum(bytes);
}

Bytes with_byte(std::size_t at, std::uint8_t byte) {
    Bytes bytes = small_file();
    bytes[at] = byte;
    return with_checksum(bytes);
}

/// The kind of the fault, 0 if there is none. At a fault nothing has been given out or counted.
std::int32_t kind_of(std::span<const std::uint8_t> bytes) {
    const OpenedBytes file(bytes);
    std::int32_t kind = 0;
    for (const std::uint32_t keep_crc : {0U, 1U}) {
        TbDecoder untouched{};
        TbDecoder* decoder = &untouched;
        tb_decoder_bytes = 77;
        const std::int32_t fault = TbReadHeader(&decoder, file.get(), keep_crc);
        if (fault != 0) {
            EXPECT_EQ(decoder, &untouched);
            EXPECT_EQ(tb_decoder_bytes, 77);
            EXPECT_GT(fault >> 8, 0) << "the place is told";
        } else {
            EXPECT_NE(decoder, &untouched);
            EXPECT_GT(tb_decoder_bytes, 77);
            TbFreeDecoder(decoder);
        }
        EXPECT_TRUE(keep_crc == 0 || tb_fault_kind(fault) == kind);
        kind = tb_fault_kind(fault);
    }
    tb_decoder_bytes = 0;
    return kind;
}

}  // namespace

TEST(HeaderFaults, KindsAreTheNumbersThatMessagesGoBy) {
    EXPECT_EQ(tb_read_fault, 2);
    EXPECT_EQ(tb_no_memory, 5);
    EXPECT_EQ(tb_broken_file, 6);
    EXPECT_EQ(tb_wrong_argument, 7);
}

TEST(HeaderFaults, SmallFileIsSound) {
    EXPECT_EQ(kind_of(small_file()), 0);
}

/// A file that ends within the first 80 bytes cannot be read; one that ends later in its header is
/// told as lack of memory.
TEST(HeaderFaults, FileThatEndsInItsHeaderIsToldAsLackOfMemory) {
    const Bytes bytes = small_file();
    const std::size_t length = header_length(bytes);
    for (std::size_t end = 0; end <= bytes.size(); ++end) {
        const std::int32_t expected = end < fixed_size ? tb_read_fault
                                      : end < length   ? tb_no_memory
                                                       : 0;
        EXPECT_EQ(kind_of({bytes.data(), end}), expected) << end;
    }
    EXPECT_EQ(bytes.size(), length + 16);
}

TEST(HeaderFaults, EveryKnownByteOfTheStampIsCompared) {
    int compared = 0;
    for (std::size_t at = 0; at < 64; ++at) {
        const bool known = at < 29 || at >= 58;
        for (const std::uint8_t change : Bytes{0x01, 0x20, 0xff}) {
            const auto byte = static_cast<std::uint8_t>(small_file()[at] ^ change);
            EXPECT_EQ(kind_of(with_byte(at, byte)), known ? tb_read_fault : 0) << at;
        }
        compared += known ? 1 : 0;
    }
    EXPECT_EQ(compared, 29 + 6);
}

/// A foreign file is no compressed one, whatever its other fields are.
TEST(HeaderFaults, StampComesBeforeTheFields) {
    Bytes bytes(200, 0xff);
    EXPECT_EQ(kind_of(bytes), tb_read_fault);
}

TEST(HeaderFaults, BlocksOfMoreThan16Bits) {
    for (const std::uint8_t shift : Bytes{17, 18, 32, 128, 255}) {
        EXPECT_EQ(kind_of(with_byte(block_shift_at, shift)), tb_broken_file) << +shift;
    }
    EXPECT_EQ(kind_of(emd_file_bytes(flat_file(16, {Bytes(7, 'a')}, 5))), 0);
    EXPECT_EQ(kind_of(emd_file_bytes(flat_file(17, {Bytes(7, 'a')}, 5))), tb_broken_file)
        << "also where all fields are that wide";
}

TEST(HeaderFaults, NumberOfDistancesOtherThan24) {
    for (unsigned slots = 0; slots < 256; ++slots) {
        EXPECT_EQ(kind_of(with_byte(slots_at, static_cast<std::uint8_t>(slots))),
                  slots == 24 ? 0 : tb_broken_file)
            << slots;
    }
}

TEST(HeaderFaults, EveryBitOfTheFormatWord) {
    for (unsigned bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(kind_of(with_word(format_at, 0x4001F5U ^ 1U << bit)), tb_broken_file) << bit;
    }
    EXPECT_EQ(kind_of(with_word(format_at, 0x4001F5)), 0);
}

TEST(HeaderFaults, TwoBytesAreNotRead) {
    for (const std::uint8_t byte : Bytes{1, 13, 255}) {
        EXPECT_EQ(kind_of(with_byte(unread_at, byte)), 0);
        EXPECT_EQ(kind_of(with_byte(unread_at + 1, byte)), 0);
    }
}

TEST(HeaderFaults, EveryBitUnderTheChecksum) {
    const Bytes sound = small_file();
    int bits = 0;
    for (std::size_t at = fixed_size; at < header_length(sound); ++at) {
        for (unsigned bit = 0; bit < 8; ++bit, ++bits) {
            Bytes bytes = sound;
            bytes[at] ^= static_cast<std::uint8_t>(1U << bit);
            EXPECT_EQ(kind_of(bytes), tb_broken_file) << at << ' ' << bit;
        }
    }
    Bytes bytes = sound;
    bytes[unread_at] ^= 1;
    EXPECT_EQ(kind_of(bytes), tb_broken_file) << "what is not read is summed up too";
    EXPECT_GT(bits, 400);
}

TEST(HeaderFaults, LengthBelow84) {
    for (const std::uint32_t length : {0U, 4U, 64U, 79U, 80U, 83U}) {
        Bytes bytes = small_file();
        put_word(bytes, header_length_at, length);
        EXPECT_EQ(kind_of(bytes), tb_broken_file) << length;
    }
}

TEST(HeaderFaults, LengthBehindTheEndOfTheFile) {
    const auto size = static_cast<std::uint32_t>(small_file().size());
    for (const std::uint32_t length : {size + 1, size + 1000, 0x7fffffffU, 0xffffffffU}) {
        Bytes bytes = small_file();
        put_word(bytes, header_length_at, length);
        EXPECT_EQ(kind_of(bytes), tb_no_memory) << length;
    }
}

/// Fields and description must end where the checksum begins, or before.
TEST(HeaderFaults, PartsThatRunIntoTheChecksum) {
    const std::uint32_t right = header_length(small_file());
    int lengths = 0;
    for (std::uint32_t length = 84; length < right; ++length, ++lengths) {
        EXPECT_EQ(kind_of(with_word(header_length_at, length)), tb_broken_file) << length;
    }
    EXPECT_EQ(lengths, static_cast<int>(right) - 84);
}

TEST(HeaderFaults, SpareBytesBehindTheDescriptionDoNoHarm) {
    const std::uint32_t right = header_length(small_file());
    for (std::uint32_t spare = 1; spare <= 16; ++spare) {
        const Bytes bytes = with_word(header_length_at, right + spare);
        const DecoderPointer header = sound_decoder(bytes, 0);
        EXPECT_EQ(header->block_offsets[0], right + spare) << "blocks begin behind it";
    }
}

TEST(HeaderFaults, NumbersOfBlocksThatDoNotFit) {
    for (const std::uint32_t blocks :
         {0U, 40U, 1000U, 0x0fffffffU, 0x10000000U, 0x1fffffffU, 0x20000000U, 0x40000000U,
          0x7fffffffU, 0x80000000U, 0xe0000000U, 0xffffffffU}) {
        EXPECT_EQ(kind_of(with_word(block_count_at, blocks)), tb_broken_file) << blocks;
    }
}

/// Blocks of one byte need no bits for their sizes: only their checksums take room.
TEST(HeaderFaults, NumbersOfBlocksWithoutSizes) {
    const EmdFile file = flat_file(0, {Bytes{'x'}}, 1);
    for (const std::uint32_t blocks : {0x20000000U, 0x20000001U, 0xe0000001U, 0xffffffffU}) {
        Bytes bytes = emd_file_bytes(file);
        put_word(bytes, block_count_at, blocks);
        EXPECT_EQ(kind_of(with_checksum(bytes)), tb_broken_file) << blocks;
    }
    EXPECT_EQ(kind_of(emd_file_bytes(file)), 0);
}

TEST(HeaderFaults, FileWithoutABlock) {
    EXPECT_EQ(kind_of(emd_file_bytes(flat_file(8, {}, 5))), tb_broken_file);
}

/// A header with room for a block's checksums and nothing else, under blocks of one byte.
TEST(HeaderFaults, HeaderWithoutADescription) {
    EmdFile file = flat_file(0, {Bytes{'x'}}, 1);
    file.code = {};
    const Bytes bytes = emd_file_bytes(file);
    EXPECT_EQ(header_length(bytes), 92U);
    EXPECT_EQ(kind_of(bytes), tb_broken_file);
    file.code = {0x80};
    EXPECT_EQ(kind_of(emd_file_bytes(file)), 0);
}

TEST(HeaderFaults, DescriptionsThatMakeNoCode) {
    EmdFile file = flat_file(8, {Bytes(7, 'a')}, 5);
    Bytes lengths = flat_lengths();
    lengths[500] = 0;
    file.code = emd_code_description(lengths);
    EXPECT_EQ(kind_of(emd_file_bytes(file)), tb_broken_file) << "a word too few";
    lengths[500] = 9;
    file.code = emd_code_description(lengths);
    EXPECT_EQ(kind_of(emd_file_bytes(file)), tb_broken_file) << "too short a word";
    lengths.assign(tb_symbols, 0);
    lengths[7] = 2;
    file.code = emd_code_description(lengths);
    EXPECT_EQ(kind_of(emd_file_bytes(file)), tb_broken_file) << "one word, of two bits";
    EmdBitWriter writer;
    writer.put(0, 1);
    writer.put(0b0'00011, 6);  // two alphabets, listed in three bits each
    for (int i = 0; i < 128; ++i) {
        writer.put(6, 3);
    }
    writer.put(32 + 10, 6);
    EmdBitWriter fitting = writer;
    fitting.put(41, 6);  // 545 positions of length 10, and 479 more
    fitting.put(0, 9);
    fitting.put(32 + 10, 6);
    fitting.put(40, 6);
    fitting.put(479 - 256 - 33, 8);
    file.code = fitting.bytes();
    EXPECT_EQ(kind_of(emd_file_bytes(file)), 0);
    writer.put(42, 6);  // 1057 positions of 1024
    writer.put(0, 32);
    file.code = writer.bytes();
    EXPECT_EQ(kind_of(emd_file_bytes(file)), tb_broken_file) << "a run behind the last symbol";
    lengths[7] = 1;
    file.code = emd_code_description(lengths);
    EXPECT_EQ(kind_of(emd_file_bytes(file)), 0);
}
