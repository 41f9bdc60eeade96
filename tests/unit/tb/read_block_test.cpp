// SPDX-License-Identifier: MIT
// Reading the stored bytes of a block: where they lie, blocks stored raw, checksums, the working
// state, and the faults of a wrong call.
#include <algorithm>
#include <climits>
#include <gtest/gtest.h>

#include "support/emd_blocks.h"
#include "tb/tb_memory.h"
#include "tb/tb_types.h"

namespace {

/// Blocks of 16 bytes: a coded one, a raw one, and a coded one of seven bytes.
const std::string first_text = "aaaaaaaaaaaaaaaa";
const std::string second_text = "0123456789abcdef";
const std::string third_text = "seventh";

EmdFile three_blocks() {
    EmdFile file = flat_file(4,
                             {FlatBlock().literals("a").match(0, 14).bytes(), bytes_of(second_text),
                              FlatBlock().literals(third_text).bytes()},
                             7);
    file.distances.fill(1);
    file.decoded_checksums = {tb_checksum(bytes_of(first_text)), tb_checksum(bytes_of(second_text)),
                              tb_checksum(bytes_of(third_text))};
    return file;
}

/// A file in memory, its decoder, and a state to decode with.
struct Scene {
    explicit Scene(const Bytes& file_bytes, std::uint32_t keep_crc = 0)
        : bytes(file_bytes),
          decoder(sound_decoder(bytes, keep_crc)),
          file(bytes),
          state(decoder->max_stored),
          room(static_cast<std::size_t>(decoder->block_size)) {
        TbInitBlockState(*state, room.data());
    }
    std::int32_t read(std::int32_t block) {
        return tb_fault_kind(TbReadBlock(*state, *decoder, file.get(), block));
    }
    std::int32_t decode(std::int32_t length, std::uint32_t keep_crc = 0) {
        return tb_fault_kind(TbDecodeBlock(*state, *decoder, length, keep_crc));
    }
    std::string text() { return text_of(room.first(static_cast<std::size_t>(state->available))); }

    Bytes bytes;
    DecoderPointer decoder;
    OpenedBytes file;
    OwnState state;
    GuardedRoom room;
};

/// What a file of three blocks gives, as kinds of faults: of reading a block, or else of decoding.
std::int32_t kind_of_block(const Bytes& bytes, std::int32_t block, std::uint32_t kept_by_header,
                           std::uint32_t kept_by_block) {
    Scene scene(bytes, kept_by_header);
    const std::int32_t fault = scene.read(block);
    return fault != 0 ? fault : scene.decode(scene.state->decoded_length, kept_by_block);
}

}  // namespace

TEST(ReadBlock, BlocksInAnyOrder) {
    Scene scene(emd_file_bytes(three_blocks()));
    const std::vector<std::string> texts{first_text, second_text, third_text};
    for (const std::int32_t block : {2, 0, 1, 1, 0, 2}) {
        TbInitBlockState(*scene.state, scene.room.data());
        ASSERT_EQ(scene.read(block), 0) << block;
        ASSERT_EQ(scene.decode(scene.state->decoded_length), 0) << block;
        EXPECT_EQ(scene.text(), texts[static_cast<std::size_t>(block)]);
    }
}

/// The room is the same for both, and the second begins at its start again.
TEST(ReadBlock, BlockAfterBlockWithoutInit) {
    Scene scene(emd_file_bytes(three_blocks()));
    for (const std::int32_t block : {0, 2, 1, 2}) {
        ASSERT_EQ(scene.read(block), 0) << block;
        ASSERT_EQ(scene.decode(scene.state->decoded_length), 0) << block;
        EXPECT_EQ(scene.text(), block == 0 ? first_text : block == 1 ? second_text : third_text);
    }
    EXPECT_TRUE(scene.room.is_intact());
}

TEST(ReadBlock, StateOfACodedBlock) {
    Scene scene(emd_file_bytes(three_blocks()));
    scene.state->pending = 5;
    scene.state->available = 3;
    ASSERT_EQ(scene.read(2), 0);
    const TbBlockState& state = *scene.state;
    EXPECT_EQ(state.block, 2);
    EXPECT_EQ(state.block_read, 2);
    EXPECT_EQ(state.decoded_length, 7);
    EXPECT_EQ(state.size, 7);
    EXPECT_EQ(state.stored_length, 9);
    EXPECT_EQ(state.available, 0);
    EXPECT_EQ(state.pending, 0);
    EXPECT_EQ(state.data, scene.room.data());
    EXPECT_EQ(state.write, scene.room.data());
    EXPECT_EQ(scene.room.first(16), Bytes(16, GuardedRoom::filler)) << "nothing is decoded yet";
    ASSERT_EQ(scene.read(0), 0);
    EXPECT_EQ(state.decoded_length, 16);
    EXPECT_EQ(state.stored_length, 3);
}

/// Also one of a whole block's size, whose length is written 0.
TEST(ReadBlock, RawBlockIsThereAtOnce) {
    Scene scene(emd_file_bytes(three_blocks()));
    ASSERT_EQ(scene.read(1), 0);
    EXPECT_EQ(scene.state->stored_length, 16);
    EXPECT_EQ(scene.state->available, 16);
    EXPECT_EQ(scene.state->write, scene.room.data() + 16);
    EXPECT_EQ(scene.text(), second_text);
    EXPECT_EQ(scene.decode(16), 0);
    EXPECT_EQ(scene.decode(3), 0);
    EXPECT_EQ(scene.text(), second_text);
    EXPECT_TRUE(scene.room.is_intact());
}

TEST(ReadBlock, LastBlockIsRawWhereItsLengthsAreEqual) {
    Scene raw(emd_file_bytes(flat_file(4, {Bytes(16, 'x'), bytes_of("short")}, 5)));
    ASSERT_EQ(raw.read(1), 0);
    EXPECT_EQ(raw.text(), "short");
    EXPECT_EQ(raw.decode(6), tb_wrong_argument);

    const Bytes sixteen = FlatBlock().literals("abcdefghijkl").bytes();
    ASSERT_EQ(sixteen.size(), 15U);
    Scene longer(emd_file_bytes(flat_file(4, {bytes_of(second_text), sixteen}, 12)));
    ASSERT_EQ(longer.read(1), 0);
    EXPECT_EQ(longer.state->available, 0) << "stored in more bytes than it has";
    ASSERT_EQ(longer.decode(12), 0);
    EXPECT_EQ(longer.text(), "abcdefghijkl");
}

TEST(ReadBlock, BlocksThatAreNotThereAreRefused) {
    Scene scene(emd_file_bytes(three_blocks()));
    for (const std::int32_t block : {-1, 3, 4, INT_MIN, INT_MAX}) {
        EXPECT_EQ(scene.read(block), tb_wrong_argument) << block;
    }
    EXPECT_EQ(scene.state->block_read, -1);
    EXPECT_EQ(scene.read(2), 0);
    scene.decoder->block_count = 2;  // what lies behind the last block's end is not looked at
    EXPECT_EQ(scene.read(2), tb_wrong_argument);
    EXPECT_EQ(scene.read(1), 0);
}

TEST(ReadBlock, FileThatEndsInABlock) {
    const Bytes whole = emd_file_bytes(three_blocks());
    const Bytes in_third(whole.begin(), whole.end() - 1);
    EXPECT_EQ(Scene(in_third).read(2), tb_read_fault);
    EXPECT_EQ(Scene(in_third).read(1), 0);
    const Bytes in_second(whole.begin(), whole.end() - 9 - 1);
    EXPECT_EQ(Scene(in_second).read(2), tb_read_fault);
    EXPECT_EQ(Scene(in_second).read(1), tb_read_fault);
    EXPECT_EQ(Scene(in_second).read(0), 0);
}

/// A block longer than the room for stored bytes is refused before a byte of it is read.
TEST(ReadBlock, RoomForStoredBytesIsNotExceeded) {
    Scene scene(emd_file_bytes(three_blocks()));
    const OwnState exact(16);
    TbInitBlockState(*exact, scene.room.data());
    EXPECT_EQ(TbReadBlock(*exact, *scene.decoder, scene.file.get(), 1), 0);
    const OwnState small(15);
    TbInitBlockState(*small, scene.room.data());
    const std::int32_t fault = TbReadBlock(*small, *scene.decoder, scene.file.get(), 1);
    EXPECT_EQ(tb_fault_kind(fault), tb_wrong_argument);
    EXPECT_EQ(TbReadBlock(*small, *scene.decoder, scene.file.get(), 2), 0);
}

TEST(ReadBlock, WrongMagicNumbersAreRefused) {
    Scene scene(emd_file_bytes(three_blocks()));
    scene.state->magic ^= 1;
    EXPECT_EQ(scene.read(0), tb_wrong_argument);
    scene.state->magic ^= 1;
    scene.decoder->magic ^= 1;
    EXPECT_EQ(scene.read(0), tb_wrong_argument);
    scene.decoder->magic ^= 1;
    ASSERT_EQ(scene.read(0), 0);
    scene.state->magic ^= 1;
    EXPECT_EQ(scene.decode(16), tb_wrong_argument);
    scene.state->magic ^= 1;
    EXPECT_EQ(scene.state->magic, 0x79A3F29DU);
    EXPECT_EQ(scene.decode(16), 0);
}

TEST(ReadBlock, LengthsToDecodeAreOneToThatOfTheBlock) {
    Scene scene(emd_file_bytes(three_blocks()));
    EXPECT_EQ(scene.decode(1), tb_wrong_argument) << "no block has been read";
    ASSERT_EQ(scene.read(2), 0);
    for (const std::int32_t length : {0, -1, 8, 16, INT_MIN, INT_MAX}) {
        EXPECT_EQ(scene.decode(length), tb_wrong_argument) << length;
    }
    EXPECT_EQ(scene.decode(1), 0);
    EXPECT_EQ(scene.decode(7), 0);
    EXPECT_EQ(scene.text(), third_text);
}

TEST(ReadBlock, StoredBytesAreSummedUpWhereChecksumsAreKept) {
    const Bytes sound = emd_file_bytes(three_blocks());
    for (std::int32_t block = 0; block < 3; ++block) {
        for (const std::uint32_t keep_crc : {0U, 1U}) {
            EXPECT_EQ(kind_of_block(sound, block, keep_crc, keep_crc), 0) << block;
        }
    }
    // The last bits of the coded blocks are padding: their change shows in the checksum alone.
    Bytes damaged = sound;
    damaged.back() ^= 1;
    EXPECT_EQ(kind_of_block(damaged, 2, 1, 1), tb_broken_file);
    EXPECT_EQ(Scene(damaged, 1).read(2), tb_broken_file) << "before it is decoded";
    EXPECT_EQ(kind_of_block(damaged, 2, 1, 0), tb_broken_file) << "the header decides";
    EXPECT_EQ(kind_of_block(damaged, 2, 0, 0), 0);
    EXPECT_EQ(kind_of_block(damaged, 2, 0, 1), 0);
    EXPECT_EQ(kind_of_block(damaged, 1, 1, 1), 0) << "its neighbour is sound";
}

TEST(ReadBlock, DecodedBytesAreSummedUpWhereBothWantIt) {
    for (std::int32_t block = 0; block < 3; ++block) {
        EmdFile file = three_blocks();
        file.decoded_checksums[static_cast<std::size_t>(block)] ^= 0x80000000U;
        const Bytes bytes = emd_file_bytes(file);
        EXPECT_EQ(Scene(bytes, 1).read(block), 0) << block;
        EXPECT_EQ(kind_of_block(bytes, block, 1, 1), tb_broken_file) << block;
        EXPECT_EQ(kind_of_block(bytes, block, 1, 0), 0) << block;
        EXPECT_EQ(kind_of_block(bytes, block, 0, 1), 0) << block;
        EXPECT_EQ(kind_of_block(bytes, (block + 1) % 3, 1, 1), 0) << block;
    }
}

/// Of a part of a block there is no checksum.
TEST(ReadBlock, WholeBlocksAloneAreSummedUp) {
    EmdFile file = three_blocks();
    file.decoded_checksums[0] ^= 1;
    Scene scene(emd_file_bytes(file), 1);
    ASSERT_EQ(scene.read(0), 0);
    EXPECT_EQ(scene.decode(15, 1), 0);
    EXPECT_EQ(scene.decode(16, 1), tb_broken_file);
}

TEST(ReadBlock, NewStateIsAtRestAndCounted) {
    tb_decoder_bytes = 500;
    TbBlockState* state = nullptr;
    ASSERT_EQ(TbNewBlockState(&state, 8192), 0);
    EXPECT_EQ(tb_decoder_bytes, 500 + 8192);
    EXPECT_EQ(state->input_size, 8192);
    EXPECT_EQ(state->input, reinterpret_cast<std::uint8_t*>(state + 1));
    EXPECT_EQ(state->block_read, -1);
    EXPECT_EQ(state->magic, 0x79A3F29DU);
    EXPECT_EQ(state->output, nullptr);
    EXPECT_EQ(state->available, 0);
    std::fill_n(state->input, 8192, std::uint8_t{1});  // all of it is there
    TbFreeBlockState(state);
    TbFreeBlockState(nullptr);
    TbFreeDecoder(nullptr);
    tb_decoder_bytes = 0;
}

TEST(ReadBlock, InitSetsBackAllButTheRoomForStoredBytes) {
    Scene scene(emd_file_bytes(three_blocks()));
    ASSERT_EQ(scene.read(2), 0);
    ASSERT_EQ(scene.decode(5), 0);
    scene.state->pending = 9;
    const std::uint8_t* const input = scene.state->input;
    const std::int32_t input_size = scene.state->input_size;
    std::array<std::uint8_t, 100> other{};
    TbInitBlockState(*scene.state, other.data());
    const TbBlockState& state = *scene.state;
    EXPECT_EQ(state.input, input);
    EXPECT_EQ(state.input_size, input_size);
    EXPECT_EQ(state.output, other.data());
    EXPECT_EQ(state.write, other.data());
    EXPECT_EQ(state.data, nullptr);
    EXPECT_EQ(state.match_source, nullptr);
    EXPECT_EQ(state.block_read, -1);
    EXPECT_EQ(state.magic, 0x79A3F29DU);
    for (const std::int32_t field : {state.available, state.size, state.block, state.decoded_length,
                                     state.stored_length, state.pending}) {
        EXPECT_EQ(field, 0);
    }
    EXPECT_EQ(scene.decode(1), tb_wrong_argument);
}
