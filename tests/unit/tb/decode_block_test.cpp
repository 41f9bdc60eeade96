// SPDX-License-Identifier: MIT
// Literals and matches of a block, each said symbol by symbol: lengths of every class, distances,
// matches that overlap or are cut, and what makes a block a broken one.
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>

#include "support/emd_blocks.h"
#include "support/slow_block.h"
#include "tb/code_table.h"
#include "tb/tb_types.h"

namespace {

constexpr std::uint32_t longest_block = 65536;
constexpr char filler = static_cast<char>(GuardedRoom::filler);

/// The block as text; "(fault <kind>)" if it is broken.
std::string decoded(const FlatBlock& block, std::uint32_t length) {
    const DecodedBlock result = decode_flat(block, length);
    EXPECT_EQ(result.read_fault, 0);
    EXPECT_TRUE(result.guards_intact);
    return result.fault == 0 ? text_of(result.bytes)
                             : "(fault " + std::to_string(tb_fault_kind(result.fault)) + ")";
}

const std::string broken = "(fault 6)";

/// Length of a match of a class: the classes from 15 on double their range each.
std::uint32_t match_length(std::uint32_t length_class, std::uint32_t further) {
    std::uint32_t length = length_class + 1;
    for (std::uint32_t i = 15; i < length_class; ++i) {
        length += (1U << (i - 14)) - 1;
    }
    return length + further;
}

/// One block under another code.
DecodedBlock decode_coded(const Bytes& lengths, const Bytes& stored, std::uint32_t length,
                          std::array<std::uint32_t, 24> distances) {
    EmdFile file = flat_file(16, {stored}, length);
    file.distances = distances;
    const Bytes bytes = emd_file_bytes(file);
    const DecoderPointer decoder = sound_decoder(bytes, 0);
    EXPECT_TRUE(tb_build_code_table(lengths, tb_root_bits, decoder->decode_table));
    return decode_block(*decoder, bytes, 0, 0);
}

}  // namespace

TEST(DecodeBlock, LiteralsAreBytes) {
    EXPECT_EQ(decoded(FlatBlock().literals("a \n\x7f\x80\xff"), 6), "a \n\x7f\x80\xff");
    EXPECT_EQ(decoded(FlatBlock().literals(std::string(2, '\0') + "z"), 3),
              std::string(2, '\0') + "z");
}

TEST(DecodeBlock, ShortMatchesGiveOneToFourBytes) {
    const auto with_match = [](std::uint32_t length_class) {
        return FlatBlock().literals("abcdefgh").match(7, length_class).literals("XYZ");
    };
    EXPECT_EQ(decoded(with_match(0), 12), "abcdefghaXYZ");
    EXPECT_EQ(decoded(with_match(1), 13), "abcdefghabXYZ");
    EXPECT_EQ(decoded(with_match(2), 14), "abcdefghabcXYZ");
    EXPECT_EQ(decoded(with_match(3), 15), "abcdefghabcdXYZ");
    EXPECT_EQ(decoded(with_match(4), 16), "abcdefghabcdeXYZ");
}

/// Every class with the least, the most and some further bits between; a literal behind shows
/// where the match ends, and where the room is too small, the rest that is pending does.
TEST(DecodeBlock, LengthsOfEveryClass) {
    ASSERT_EQ(match_length(14, 0), 15U);
    ASSERT_EQ(match_length(15, 0), 16U);
    ASSERT_EQ(match_length(16, 0), 18U);
    ASSERT_EQ(match_length(31, 0), 131072U + 14);
    int fitting = 0;
    int cut = 0;
    for (std::uint32_t length_class = 0; length_class < 32; ++length_class) {
        const std::uint32_t most = length_class < 15 ? 0 : (1U << (length_class - 14)) - 1;
        for (const std::uint32_t further : {0U, most, most / 3, most / 2 + 1, most & 0xaaaaU}) {
            if (further > most) {
                continue;
            }
            const std::uint32_t length = match_length(length_class, further);
            const FlatBlock block =
                FlatBlock().literals("a").match(0, length_class, further).literals("Z");
            if (length + 2 <= longest_block) {
                EXPECT_TRUE(decoded(block, length + 2) == std::string(length + 1, 'a') + "Z")
                    << length_class << ' ' << further;
                ++fitting;
            } else {
                const DecodedBlock result = decode_flat(block, longest_block);
                EXPECT_EQ(result.fault, 0);
                EXPECT_TRUE(result.bytes == Bytes(longest_block, 'a'));
                EXPECT_EQ(static_cast<std::uint32_t>(result.pending), length - (longest_block - 1))
                    << length_class << ' ' << further;
                EXPECT_TRUE(result.guards_intact);
                ++cut;
            }
        }
    }
    EXPECT_GT(fitting, 80);
    EXPECT_GE(cut, 10);
}

TEST(DecodeBlock, FurtherBitsOfAMatchAreItsOwn) {
    EXPECT_EQ(decoded(FlatBlock().literals("a").match(0, 15, 1).literals("b").match(0, 16, 2), 39),
              std::string(18, 'a') + std::string(21, 'b'));
}

TEST(DecodeBlock, DistanceOfOneRepeatsAByte) {
    EXPECT_EQ(decoded(FlatBlock().literals("ab").match(0, 16, 2).literals("c"), 23),
              "a" + std::string(21, 'b') + "c");
}

TEST(DecodeBlock, SourceThatOverlapsItsTargetRepeatsItself) {
    const FlatBlock plain = FlatBlock().literals("abc").match(2, 9).literals("-");
    EXPECT_EQ(decoded(plain, 14), "abcabcabcabca-");
    const FlatBlock by_two = FlatBlock().literals("ab").match(1, 3).literals("-");
    EXPECT_EQ(decoded(by_two, 7), "ababab-");
    const FlatBlock by_one = FlatBlock().literals("ab").match(0, 3).literals("-");
    EXPECT_EQ(decoded(by_one, 7), "abbbbb-");
    const FlatBlock by_three = FlatBlock().literals("abc").match(2, 3).literals("-");
    EXPECT_EQ(decoded(by_three, 8), "abcabca-");
    const FlatBlock by_seventeen =
        FlatBlock().literals("abcdefghijklmnopq").match(16, 17, 5).literals("-");
    EXPECT_EQ(decoded(by_seventeen, 45), "abcdefghijklmnopqabcdefghijklmnopqabcdefghij-");
}

TEST(DecodeBlock, EverySlotHasItsDistance) {
    const std::string alphabet = "abcdefghijklmnopqrstuvwx";
    for (std::uint32_t slot = 0; slot < 24; ++slot) {
        EXPECT_EQ(decoded(FlatBlock().literals(alphabet).match(slot, 0), 25),
                  alphabet + alphabet[23 - slot])
            << slot;
    }
}

TEST(DecodeBlock, FarthestDistance) {
    EmdFile file = flat_file(
        16, {FlatBlock().literals("Za").match(0, 29, 65533 - 32768 - 14).match(23, 0).bytes()},
        longest_block);
    file.distances[23] = 65535;
    const Bytes bytes = emd_file_bytes(file);
    const std::string text = text_of(decode_block(*sound_decoder(bytes, 0), bytes, 0, 0).bytes);
    EXPECT_TRUE(text == "Z" + std::string(65534, 'a') + "Z");
}

TEST(DecodeBlock, MatchMayBeginWithTheBlockButNotBefore) {
    for (std::uint32_t slot = 0; slot < 24; ++slot) {
        const std::string text(slot, 'x');
        for (const std::uint32_t length_class : {0U, 3U, 4U, 14U, 15U, 31U}) {
            const FlatBlock from_begin = FlatBlock().literals(text + "y").match(slot, length_class);
            EXPECT_EQ(decoded(from_begin, slot + 2), text + "y" + (slot == 0 ? "y" : "x"));
            const FlatBlock from_before = FlatBlock().literals(text).match(slot, length_class);
            EXPECT_EQ(decoded(from_before, slot + 1), broken) << slot;
        }
    }
}

/// A slot without a distance leaves the room as it was.
TEST(DecodeBlock, DistanceOfZeroStays) {
    std::array<std::uint32_t, 24> distances{};
    for (const std::uint32_t length_class : {2U, 9U, 15U}) {
        const Bytes stored = FlatBlock().literals("a").match(5, length_class).bytes();
        const std::uint32_t length = 1 + match_length(length_class, 0);
        EXPECT_EQ(text_of(decode_coded(flat_lengths(), stored, length, distances).bytes),
                  "a" + std::string(length - 1, filler));
    }
}

TEST(DecodeBlock, ShortMatchAtTheEndWritesIntoTheSlackAlone) {
    for (std::uint32_t length_class = 0; length_class < 4; ++length_class) {
        const DecodedBlock result =
            decode_flat(FlatBlock().literals("ab").match(0, length_class), 3);
        EXPECT_EQ(text_of(result.bytes), "abb");
        EXPECT_EQ(result.pending, static_cast<std::int32_t>(length_class));
        EXPECT_TRUE(result.guards_intact);
    }
}

TEST(DecodeBlock, LongMatchWritesNothingBehindTheEnd) {
    const Bytes bytes =
        emd_file_bytes(flat_file(8, {FlatBlock().literals("ab").match(0, 20, 40).bytes()}, 9));
    const DecoderPointer header = sound_decoder(bytes, 0);
    const OpenedBytes file(bytes);
    const OwnState state(header->max_stored);
    GuardedRoom room(9);
    TbInitBlockState(*state, room.data());
    ASSERT_EQ(TbReadBlock(*state, *header, file.get(), 0), 0);
    ASSERT_EQ(TbDecodeBlock(*state, *header, 9, 0), 0);
    EXPECT_EQ(text_of(room.first(9 + tb_output_slack)),
              "abbbbbbbb" + std::string(tb_output_slack, filler));
    EXPECT_EQ(state->write, room.data() + 9);
    EXPECT_EQ(state->available, 9);
    EXPECT_EQ(state->pending, 64 + 40 + 14 - 7);
}

TEST(DecodeBlock, MatchThatEndsWithTheBlockIsNotCut) {
    for (const std::uint32_t length_class : {0U, 3U, 4U, 14U, 15U}) {
        const std::uint32_t length = 1 + match_length(length_class, 0);
        const DecodedBlock result =
            decode_flat(FlatBlock().literals("a").match(0, length_class), length);
        EXPECT_EQ(result.bytes, Bytes(length, 'a'));
        EXPECT_EQ(result.pending, 0);
    }
}

/// Ten bits a symbol: four symbols end with a byte.
TEST(DecodeBlock, StoredBytesMayBeUsedUpButNotOverrun) {
    const Bytes stored = FlatBlock().literals("abcdefgh").bytes();
    ASSERT_EQ(stored.size(), 10U);
    EXPECT_EQ(text_of(decode_stored(stored, 8).bytes), "abcdefgh");
    EXPECT_EQ(tb_fault_kind(decode_stored(stored, 9).fault), tb_broken_file);
    for (std::size_t size = 1; size < stored.size(); ++size) {
        const Bytes cut(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(size));
        if (size != 8) {  // eight bytes for eight are a raw block
            EXPECT_EQ(tb_fault_kind(decode_stored(cut, 8).fault), tb_broken_file) << size;
        }
        const auto whole_symbols = static_cast<std::uint32_t>(size * 8 / flat_word_bits);
        if (whole_symbols > 0 && whole_symbols != size) {
            EXPECT_EQ(text_of(decode_stored(cut, whole_symbols).bytes),
                      std::string("abcdefgh").substr(0, whole_symbols));
        }
    }
}

TEST(DecodeBlock, FurtherBitsBehindTheStoredBytesAreAFaultAsWell) {
    const Bytes stored = FlatBlock().literals("abc").match(0, 31, 0).bytes();
    ASSERT_EQ(stored.size(), 8U);  // 57 bits
    const Bytes cut(stored.begin(), stored.begin() + 5);
    EXPECT_EQ(text_of(decode_stored(stored, 9).bytes), "abccccccc");
    EXPECT_EQ(tb_fault_kind(decode_stored(cut, 9).fault), tb_broken_file);
}

TEST(DecodeBlock, BytesBehindTheLastSymbolAreNotLookedAt) {
    Bytes stored = FlatBlock().literals("abcd").bytes();
    stored.insert(stored.end(), 20, 0xff);
    EXPECT_EQ(text_of(decode_stored(stored, 4).bytes), "abcd");
}

TEST(DecodeBlock, OneSymbolAloneIsTheWholeBlockAtNoCost) {
    Bytes lengths(tb_symbols, 0);
    lengths['x'] = 1;
    EXPECT_EQ(decode_coded(lengths, {0xff}, 5000, rising_distances()).bytes, Bytes(5000, 'x'));
    lengths['x'] = 0;
    EXPECT_EQ(decode_coded(lengths, {0xff}, 5000, rising_distances()).bytes, Bytes(5000, 0));
    lengths[256 + 3] = 1;  // matches of four bytes, which have nothing before them
    EXPECT_EQ(tb_fault_kind(decode_coded(lengths, {0xff}, 50, rising_distances()).fault),
              tb_broken_file);
    EXPECT_EQ(decode_coded(lengths, {0xff}, 50, {}).bytes, Bytes(50, GuardedRoom::filler));
}

/// Any code, any stored bytes: as by the slow way, whether the block is sound or broken.
TEST(DecodeBlock, RandomBlocksAsByTheSlowWay) {
    int sound = 0;
    int faulty = 0;
    for (std::uint32_t seed = 0; seed < 600; ++seed) {
        std::mt19937 random(seed);
        Bytes lengths{0};
        while (lengths.size() < 2 + seed % 200) {
            const std::size_t leaf = random() % lengths.size();
            if (lengths[leaf] < 31) {
                lengths.push_back(++lengths[leaf]);
            }
        }
        lengths.resize(256 + seed % 300, 0);  // more literals than matches
        std::shuffle(lengths.begin(), lengths.end(), random);
        lengths.resize(tb_symbols, 0);
        std::array<std::uint32_t, 24> distances{};
        for (std::uint32_t& distance : distances) {
            distance = static_cast<std::uint32_t>(random() % 6);
        }
        Bytes stored(100 + random() % 400);
        for (std::uint8_t& byte : stored) {
            byte = static_cast<std::uint8_t>(random());
        }
        const auto length = static_cast<std::uint32_t>(1 + random() % stored.size() / 2);
        const auto expected =
            slow_block(SlowCode(lengths), distances, stored, length, GuardedRoom::filler);
        const DecodedBlock result = decode_coded(lengths, stored, length, distances);
        ASSERT_EQ(result.fault == 0, expected.has_value()) << "seed " << seed;
        ASSERT_EQ(result.bytes, expected.value_or(Bytes{})) << "seed " << seed;
        ASSERT_TRUE(result.guards_intact) << "seed " << seed;
        (expected ? sound : faulty) += 1;
    }
    EXPECT_GT(sound, 100);
    EXPECT_GT(faulty, 100);
}
