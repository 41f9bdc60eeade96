// SPDX-License-Identifier: MIT
// Blocks packed by models made by hand, so that the engine's decoder meets every class of lengths
// and words of every length.
#include "emd/block_packer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <thread>
#include <utility>

#include "support/packed_file.h"
#include "tb/checksum.h"

namespace {

constexpr unsigned widest_shift = 16;

/// A model with lengths for some symbols; the slot's distance is told with it.
EmdModel model_of(unsigned block_shift, std::size_t slot, std::uint32_t distance,
                  std::initializer_list<std::pair<std::size_t, std::uint8_t>> symbols) {
    EmdModel model;
    model.block_shift = block_shift;
    model.distances[slot] = distance;
    for (const auto& [symbol, length] : symbols) {
        model.lengths[symbol] = length;
    }
    return model;
}

/// Packs one block, sees that the engine gets it back, and gives its stored length.
std::size_t stored_length(const EmdModel& model, const PackBytes& block) {
    PackedFile file(emd_join(model, {EmdBlockPacker(model).pack(block)},
                             static_cast<std::uint32_t>(block.size())));
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(file.unpack(), block);
    return file.stored_length(0);
}

std::size_t bytes_for(std::size_t bits) {
    return (bits + 7) / 8;
}

TEST(BlockPacker, MatchesOfEveryClass) {
    int matches = 0;
    for (unsigned length_class = 0; length_class < 30; ++length_class) {
        const std::size_t slot = length_class % emd_slots;
        const EmdModel model = model_of(
            widest_shift, slot, 1, {{'a', 2}, {'X', 2}, {emd_match_symbol(slot, length_class), 1}});
        const std::uint32_t shortest = emd_shortest_of(length_class);
        const std::uint32_t longest = std::min(emd_longest_of(length_class), 65534U);
        for (const std::uint32_t length :
             {shortest, shortest + (longest - shortest) / 3, longest}) {
            PackBytes block(1 + length, 'a');
            block.push_back('X');
            EXPECT_EQ(stored_length(model, block), bytes_for(5 + emd_extra_bits(length_class)))
                << length_class << ' ' << length;
            ++matches;
        }
    }
    EXPECT_EQ(matches, 90);
}

TEST(BlockPacker, LastMatchesOfEveryClassRunPastTheEnd) {
    int matches = 0;
    for (unsigned length_class = 1; length_class < emd_length_classes; ++length_class) {
        const std::size_t slot = 23 - length_class % emd_slots;
        const EmdModel model = model_of(
            widest_shift, slot, 2, {{'a', 2}, {'b', 2}, {emd_match_symbol(slot, length_class), 1}});
        const std::uint32_t last = std::min(emd_shortest_of(length_class) - 1, 60000U);
        for (const std::uint32_t length : {last / 3 + 1, last / 2 + 1, last}) {
            PackBytes block(2 + length);
            for (std::size_t i = 0; i < block.size(); ++i) {
                block[i] = i % 2 == 0 ? 'a' : 'b';
            }
            const std::size_t coded = bytes_for(5 + emd_extra_bits(length_class));
            EXPECT_EQ(stored_length(model, block), std::min(coded, block.size()))
                << length_class << ' ' << length;
            ++matches;
        }
    }
    EXPECT_EQ(matches, 93);
}

TEST(BlockPacker, BitsOfAMatchThatRunsPastTheEnd) {
    // 0 for the literal, 1 for the match, two further bits, which are those of the shortest length.
    const EmdModel model = model_of(13, 0, 1, {{'a', 1}, {emd_match_symbol(0, 16), 1}});
    EXPECT_EQ(EmdBlockPacker(model).pack(PackBytes(1 + 9, 'a')).stored, PackBytes{0x40});
    EXPECT_EQ(EmdBlockPacker(model).pack(PackBytes(1 + 20, 'a')).stored, PackBytes{0x60});
}

TEST(BlockPacker, FilesOfManyBytes) {
    const EmdModel model = model_of(widest_shift, 0, 0, {});
    std::vector<EmdPackedBlock> blocks;
    for (std::uint8_t i = 0; i < 40; ++i) {
        blocks.push_back(EmdBlockPacker(model).pack(PackBytes(65536, i)));
    }
    PackedFile file(emd_join(model, blocks, 65536));
    const PackBytes bytes = file.unpack();
    ASSERT_EQ(bytes.size(), 40U * 65536);
    EXPECT_EQ(bytes.back(), 39);
}

/// A code with a literal for each length of a word, the byte telling the length, and one match,
/// whose word is of the greatest length too.
EmdModel model_of_all_lengths(std::uint32_t distance) {
    EmdModel model = model_of(13, 0, distance, {{emd_match_symbol(0, 16), 31}});
    for (std::uint8_t length = 1; length <= 31; ++length) {
        model.lengths[length] = length;
    }
    return model;
}

TEST(BlockPacker, WordsOfEveryLength) {
    PackBytes block;
    std::size_t bits = 0;
    for (std::uint8_t byte = 1; byte <= 31; ++byte) {
        block.insert(block.end(),
                     {byte, 1, byte, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
        bits += 2U * byte + 17 + 2;
    }
    EXPECT_EQ(stored_length(model_of_all_lengths(0), block), bytes_for(bits));
}

TEST(BlockPacker, AMatchWithTheLongestWord) {
    PackBytes block(100, 1);
    block.insert(block.end(), {9, 9, 9, 9, 9, 9, 9, 1, 1, 1, 9, 9, 9, 9, 9, 9, 9, 9, 1, 1});
    block.insert(block.end(), block.begin() + 100, block.begin() + 120);
    block.insert(block.end(), 50, 1);
    const std::size_t bits = 100 + 15 * 9 + 5 + 31 + 2 + 50;  // the match is the second twenty
    EXPECT_EQ(stored_length(model_of_all_lengths(20), block), bytes_for(bits));
}

TEST(BlockPacker, ASymbolAloneTakesOneByteABlock) {
    const EmdModel model = model_of(13, 0, 0, {{'z', 1}});
    EXPECT_EQ(stored_length(model, PackBytes(8192, 'z')), 1U);
    EXPECT_EQ(stored_length(model, PackBytes(2, 'z')), 1U);
    EXPECT_EQ(stored_length(model, PackBytes(1, 'z')), 1U);
    EXPECT_EQ(stored_length(model, PackBytes(2, 'y')), 2U);
}

TEST(BlockPacker, WithoutACodeBlocksAreRaw) {
    const EmdModel model = model_of(13, 0, 0, {});
    EXPECT_EQ(stored_length(model, PackBytes(8192, 0)), 8192U);
    EXPECT_EQ(stored_length(model, PackBytes(5, 3)), 5U);
}

TEST(BlockPacker, ABlockThatComesOutAsLongAsItselfIsRaw) {
    // Words of 7, 8 and 9 bits around a block of ten bytes.
    EmdModel model;
    for (std::size_t byte = 0; byte < 64; ++byte) {
        model.lengths[byte] = 7;
        model.lengths[64 + byte] = 8;
    }
    for (std::size_t byte = 128; byte < 256; ++byte) {
        model.lengths[byte] = 9;
    }
    EXPECT_EQ(stored_length(model, PackBytes(10, 1)), 9U);
    PackBytes block(10, 200);
    std::fill_n(block.begin(), 9, std::uint8_t{100});
    EXPECT_EQ(stored_length(model, block), 10U);  // 81 bits would be 11 bytes
    std::fill_n(block.begin(), 10, std::uint8_t{100});
    const EmdPackedBlock exact = EmdBlockPacker(model).pack(block);
    EXPECT_EQ(exact.stored, block);  // the 80 bits of its words are other bytes
    EXPECT_EQ(exact.decoded_checksum, tb_checksum(block));
}

TEST(BlockPacker, ABlockWithAByteThatHasNoWordIsRaw) {
    const EmdModel model = model_of(13, 0, 1, {{'a', 1}, {emd_match_symbol(0, 20), 1}});
    PackBytes block(1000, 'a');
    EXPECT_LT(stored_length(model, block), 20U);
    block[500] = 'b';
    EXPECT_EQ(stored_length(model, block), 1000U);
}

TEST(BlockPacker, ThreadsMayShareAPacker) {
    const PackBytes bytes = read_bytes(CORVANE_TEST_DATA "/tb/kqk.nbw");
    EmdPackOptions options;
    options.block_shift = 10;
    const EmdModel model = emd_choose_model(bytes, options);
    const EmdBlockPacker packer(model);
    const std::size_t count = (bytes.size() + 1023) / 1024;
    const auto block = [&](std::size_t i) {
        return std::span(bytes).subspan(i * 1024,
                                        std::min<std::size_t>(1024, bytes.size() - i * 1024));
    };
    std::vector<EmdPackedBlock> blocks(count);
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < 4; ++first) {
        threads.emplace_back([&, first] {
            for (std::size_t i = first; i < count; i += 4) {
                blocks[i] = packer.pack(block(i));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(blocks[i].stored, packer.pack(block(i)).stored) << i;
    }
    PackedFile file(emd_join(model, blocks, static_cast<std::uint32_t>(bytes.size() % 1024)));
    EXPECT_EQ(file.unpack(), bytes);
    EXPECT_EQ(count, 26U);
}

}  // namespace
