// SPDX-License-Identifier: MIT
// Compressed files that another program made, each to show one feature of the format: all blocks
// of all of them, by the digest of what they hold, and against the plain file where there is one.
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "support/emd_scene.h"
#include "support/sha256.h"
#include "tb/tb_types.h"

namespace {

const std::string data_folder = CORVANE_TEST_DATA "/tb/";
const std::string variants_folder = data_folder + "variants/";

/// All blocks of a file, one behind the other; a test fails at a fault.
Bytes unpacked(const Bytes& file, std::uint32_t keep_crc) {
    Bytes bytes;
    const DecoderPointer header = sound_decoder(file, keep_crc);
    for (std::int32_t i = 0; i < header->block_count; ++i) {
        const DecodedBlock block = decode_block(*header, file, i, keep_crc);
        EXPECT_EQ(block.read_fault, 0) << i;
        EXPECT_EQ(block.fault, 0) << i;
        EXPECT_TRUE(block.guards_intact) << i;
        bytes.insert(bytes.end(), block.bytes.begin(), block.bytes.end());
    }
    return bytes;
}

struct Variant {
    std::string name;
    std::size_t length = 0;
    std::string sha256;
};

std::vector<Variant> all_variants() {
    std::vector<Variant> variants;
    std::ifstream file(variants_folder + "MANIFEST.tsv");
    std::string line;
    while (std::getline(file, line)) {
        if (!line.starts_with('#')) {
            std::istringstream words(line);
            Variant variant;
            words >> variant.name >> variant.length >> variant.sha256;
            variants.push_back(variant);
        }
    }
    return variants;
}

/// What the name of a file promises, counted over its blocks.
struct Traits {
    std::int32_t blocks = 0;
    std::int32_t raw = 0;    ///< stored as they are
    std::int32_t cut = 0;    ///< whose last match goes on behind their end
    std::int32_t pairs = 0;  ///< entries of the code's table for words longer than the root
    std::int32_t last_size = 0;
    friend bool operator==(const Traits&, const Traits&) = default;
};

Traits traits_of(const std::string& name) {
    const Bytes file = bytes_of_file(variants_folder + name);
    const DecoderPointer header = sound_decoder(file, 0);
    const TbDecoder& decoder = *header;
    Traits traits{decoder.block_count, 0, 0, 0, decoder.last_block_size};
    for (std::int32_t i = 0; i < decoder.block_count; ++i) {
        const auto stored =
            static_cast<std::int32_t>(decoder.block_offsets[i + 1] - decoder.block_offsets[i]);
        const bool last = i + 1 == decoder.block_count;
        traits.raw += stored == (last ? decoder.last_block_size : decoder.block_size) ? 1 : 0;
        traits.cut += decode_block(decoder, file, i, 0).pending > 0 ? 1 : 0;
    }
    for (std::size_t i = 0; i < std::size_t{1} << tb_root_bits; ++i) {
        traits.pairs += decoder.decode_table[i] < 0 ? 1 : 0;
    }
    return traits;
}

}  // namespace

TEST(Sha256, KnownDigests) {
    EXPECT_EQ(Sha256::digits({}),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Sha256::digits(Bytes{'a', 'b', 'c'}),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Sha256::digits(Bytes(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(EmdVariants, DecodeToTheirDigestsWithAndWithoutChecksums) {
    const std::vector<Variant> variants = all_variants();
    for (const Variant& variant : variants) {
        SCOPED_TRACE(variant.name);
        const Bytes file = bytes_of_file(variants_folder + variant.name);
        for (const std::uint32_t keep_crc : {0U, 1U}) {
            const Bytes bytes = unpacked(file, keep_crc);
            EXPECT_EQ(bytes.size(), variant.length);
            EXPECT_EQ(Sha256::digits(bytes), variant.sha256);
        }
    }
    EXPECT_EQ(variants.size(), 14U);
}

/// Each file shows what it is there for: else the test above would prove less than it seems to.
TEST(EmdVariants, ShowWhatTheyAreThereFor) {
    EXPECT_EQ(traits_of("kqk-raw.nbw.emd"), (Traits{4, 4, 0, 0, 25629 - 3 * 8192}));
    EXPECT_EQ(traits_of("kqk-raw2.nbb.emd"), (Traits{4, 2, 0, 0, 28644 - 3 * 8192}));
    EXPECT_EQ(traits_of("krk-raw3.nbb.emd"), (Traits{4, 2, 0, 0, 28644 - 3 * 8192}));
    EXPECT_EQ(traits_of("krk-overrun.nbw.emd").cut, 2);
    EXPECT_GT(traits_of("kqk-skew.nbb.emd").pairs, 0);
    EXPECT_EQ(traits_of("wide.bin.emd"), (Traits{2, 0, 2, 0, 8192}));
    EXPECT_EQ(traits_of("full-block.bin.emd"), (Traits{2, 0, 0, 0, 8192}));
    EXPECT_EQ(traits_of("one-byte.bin.emd"), (Traits{1, 1, 0, 0, 1}));
    EXPECT_EQ(traits_of("random.bin.emd"), (Traits{2, 2, 0, 0, 9000 - 8192}));
    EXPECT_EQ(traits_of("constant.bin.emd"), (Traits{3, 0, 0, 0, 20000 - 2 * 8192}));
}

TEST(EmdVariants, PackedHalvesHoldThePlainOnes) {
    int halves = 0;
    for (const char* const table : {"kqk", "kpk", "krk"}) {
        for (const char* const half : {".nbw", ".nbb"}) {
            const std::string name = data_folder + table + half;
            SCOPED_TRACE(name);
            const Bytes plain = bytes_of_file(name);
            EXPECT_GT(plain.size(), 25000U);
            EXPECT_EQ(unpacked(bytes_of_file(name + ".emd"), 1), plain);
            ++halves;
        }
    }
    EXPECT_EQ(halves, 6);
}

/// No state passes from block to block: one state decodes them backwards as well.
TEST(EmdVariants, BlocksDoNotNeedEachOther) {
    const Bytes plain = bytes_of_file(data_folder + "kpk.nbw");
    const Bytes file = bytes_of_file(data_folder + "kpk.nbw.emd");
    const DecoderPointer header = sound_decoder(file, 0);
    const OpenedBytes opened(file);
    const OwnState state(header->max_stored);
    GuardedRoom room(tb_block_size);
    for (std::int32_t i = header->block_count - 1; i >= 0; --i) {
        TbInitBlockState(*state, room.data());
        ASSERT_EQ(TbReadBlock(*state, *header, opened.get(), i), 0);
        ASSERT_EQ(TbDecodeBlock(*state, *header, state->decoded_length, 0), 0);
        const Bytes bytes = room.first(static_cast<std::size_t>(state->decoded_length));
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(),
                               plain.begin() + std::ptrdiff_t{i} * tb_block_size))
            << i;
    }
    EXPECT_EQ(header->block_count, 10);
}
