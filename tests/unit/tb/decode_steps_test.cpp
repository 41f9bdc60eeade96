// SPDX-License-Identifier: MIT
// A block that is decoded in steps: each call goes on where the one before ended, also in the
// middle of a match.
#include <gtest/gtest.h>

#include "support/emd_blocks.h"
#include "tb/tb_types.h"

namespace {

/// Matches of all kinds, short and long, one behind the other; 74 bytes.
FlatBlock many_matches() {
    return FlatBlock()
        .literals("abcdefg")
        .match(1, 0)
        .match(4, 2)
        .match(6, 3)
        .match(0, 1)
        .literals("h")
        .match(2, 10)
        .match(9, 14)
        .literals("ij")
        .match(11, 15, 1)
        .match(0, 3)
        .match(12, 2)
        .match(3, 3);
}
constexpr std::int32_t many_length = 74;

std::string whole_text() {
    return text_of(decode_flat(many_matches(), many_length).bytes);
}

}  // namespace

TEST(DecodeSteps, TextOfTheWholeBlock) {
    EXPECT_EQ(whole_text(),
              "abcdefgfdefefgfffhffhffhffhfffhffhffhfffhffhijffhfffhffhijffhfffffffhiffhi");
}

TEST(DecodeSteps, TwoStepsGiveTheSameAsOne) {
    const std::string whole = whole_text();
    for (std::int32_t first = 1; first <= many_length; ++first) {
        const DecodedBlock part = decode_flat(many_matches(), many_length, {first});
        EXPECT_EQ(text_of(part.bytes), whole.substr(0, static_cast<std::size_t>(first))) << first;
        EXPECT_TRUE(part.guards_intact);
        const DecodedBlock result = decode_flat(many_matches(), many_length, {first, many_length});
        EXPECT_EQ(text_of(result.bytes), whole) << first;
        EXPECT_EQ(result.pending, 0) << first;
    }
}

TEST(DecodeSteps, ByteByByte) {
    const Bytes bytes = emd_file_bytes(flat_file(8, {many_matches().bytes()}, many_length));
    const DecoderPointer header = sound_decoder(bytes, 0);
    const OpenedBytes file(bytes);
    const OwnState state(header->max_stored);
    GuardedRoom room(256);
    TbInitBlockState(*state, room.data());
    ASSERT_EQ(TbReadBlock(*state, *header, file.get(), 0), 0);
    for (std::int32_t length = 1; length <= many_length; ++length) {
        ASSERT_EQ(TbDecodeBlock(*state, *header, length, 0), 0) << length;
        EXPECT_EQ(state->available, length);
        EXPECT_EQ(state->write, room.data() + length);
    }
    EXPECT_EQ(text_of(room.first(many_length)), whole_text());
    EXPECT_TRUE(room.is_intact());
}

/// One match over several steps: the rest of it is kept, and nothing more is read for it.
TEST(DecodeSteps, PendingRestOfAMatchShrinksStepByStep) {
    const FlatBlock block = FlatBlock().literals("ab").match(1, 17, 3).literals("Z");  // 25 bytes
    EXPECT_EQ(decode_flat(block, 28, {5}).pending, 22);
    EXPECT_EQ(decode_flat(block, 28, {5, 6}).pending, 21);
    EXPECT_EQ(decode_flat(block, 28, {5, 6, 26}).pending, 1);
    EXPECT_EQ(decode_flat(block, 28, {5, 6, 26, 27}).pending, 0);
    EXPECT_EQ(text_of(decode_flat(block, 28, {5, 6, 26, 27, 28}).bytes),
              "abababababababababababababaZ");
}

TEST(DecodeSteps, LengthThatIsThereAlreadyChangesNothing) {
    const DecodedBlock result =
        decode_flat(many_matches(), many_length, {many_length, 10, 1, many_length});
    EXPECT_EQ(text_of(result.bytes), whole_text());
    EXPECT_EQ(result.fault, 0);
}

/// Stored bytes that are cut: what they still tell can be had, and no more.
TEST(DecodeSteps, FaultShowsWithTheStepThatMeetsIt) {
    Bytes stored = FlatBlock().literals("abcdefgh").bytes();
    stored.resize(5);
    EXPECT_EQ(text_of(decode_stored(stored, 8, {4}).bytes), "abcd");
    EXPECT_EQ(tb_fault_kind(decode_stored(stored, 8, {4, 5}).fault), tb_broken_file);
}

/// After a fault there is nothing to go on with: the block has to be read again.
TEST(DecodeSteps, NothingGoesOnBehindABrokenMatch) {
    const FlatBlock block = FlatBlock().literals("ab").match(3, 7).literals("cdefghijkl");
    const Bytes bytes = emd_file_bytes(flat_file(8, {block.bytes()}, 20));
    const DecoderPointer header = sound_decoder(bytes, 0);
    const OpenedBytes file(bytes);
    const OwnState state(header->max_stored);
    GuardedRoom room(256);
    TbInitBlockState(*state, room.data());
    ASSERT_EQ(TbReadBlock(*state, *header, file.get(), 0), 0);
    EXPECT_EQ(tb_fault_kind(TbDecodeBlock(*state, *header, 20, 0)), tb_broken_file);
    EXPECT_EQ(tb_fault_kind(TbDecodeBlock(*state, *header, 20, 0)), tb_wrong_argument);
}

TEST(DecodeSteps, NothingGoesOnBehindABlockThatCannotBeRead) {
    const Bytes bytes = emd_file_bytes(flat_file(8, {FlatBlock().literals("abcdefgh").bytes()}, 8));
    const DecoderPointer header = sound_decoder(bytes, 0);
    const OpenedBytes file(bytes);
    const OpenedBytes shorter(std::span<const std::uint8_t>(bytes).first(bytes.size() - 1));
    const OwnState state(header->max_stored);
    GuardedRoom room(256);
    TbInitBlockState(*state, room.data());
    ASSERT_EQ(TbReadBlock(*state, *header, file.get(), 0), 0);
    ASSERT_EQ(TbDecodeBlock(*state, *header, 8, 0), 0);
    EXPECT_EQ(tb_fault_kind(TbReadBlock(*state, *header, shorter.get(), 0)), tb_read_fault);
    EXPECT_EQ(tb_fault_kind(TbDecodeBlock(*state, *header, 8, 0)), tb_wrong_argument);
}
