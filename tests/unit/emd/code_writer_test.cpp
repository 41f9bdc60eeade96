// SPDX-License-Identifier: MIT
// Code words, and descriptions of codes that the engine's reader takes back.
#include "emd/code_writer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "emd/huffman.h"
#include "support/packed_file.h"
#include "tb/code_table.h"
#include "tb/decoder.h"

namespace {

using Lengths = std::vector<std::uint8_t>;

/// What the engine reads from a description; empty if it refuses, or something but padding is left.
Lengths read_back(const PackBytes& description) {
    TbBitReader reader(description);
    Lengths lengths(emd_symbols, 77);
    if (!tb_read_code_lengths(reader, lengths)) {
        return {};
    }
    reader.skip(8);
    return reader.overran() ? lengths : Lengths{};
}

/// The description of some lengths, which must come back from it.
PackBytes sound_description(const Lengths& lengths) {
    PackBytes description = emd_code_description(lengths);
    EXPECT_EQ(read_back(description), lengths);
    return description;
}

/// A code of random symbols, some of them far more frequent than others.
Lengths random_code(PackRandom& random, std::size_t symbols, unsigned longest) {
    std::vector<std::uint64_t> counts(emd_symbols);
    for (std::size_t i = 0; i < symbols; ++i) {
        counts[random_below(random, emd_symbols)] = std::uint64_t{1} << random_below(random, 40);
    }
    return emd_huffman_lengths(counts, longest);
}

std::string bits_of(const EmdBitWriter& writer) {
    const PackBytes bytes = writer.bytes();
    std::string text;
    for (std::size_t i = 0; i < writer.bit_count(); ++i) {
        text += (bytes[i / 8] >> (7 - i % 8) & 1) != 0 ? '1' : '0';
    }
    return text;
}

TEST(CodeWriter, WordsInTheOrderOfLengthThenSymbol) {
    EXPECT_EQ(emd_code_words(Lengths{2, 1, 3, 0, 3}),
              (std::vector<std::uint32_t>{0b10, 0b0, 0b110, 0, 0b111}));
    EXPECT_EQ(emd_code_words(Lengths{2, 2, 2, 2}), (std::vector<std::uint32_t>{0, 1, 2, 3}));
    EXPECT_EQ(emd_code_words(Lengths{0, 0, 1}), (std::vector<std::uint32_t>{0, 0, 0}));
    EXPECT_EQ(emd_code_words(Lengths{}), std::vector<std::uint32_t>{});
}

TEST(CodeWriter, WordsOfThirtyOneBits) {
    Lengths lengths(32, 31);
    for (std::uint8_t i = 0; i < 31; ++i) {
        lengths[i] = i + 1;
    }
    const std::vector<std::uint32_t> words = emd_code_words(lengths);
    for (std::uint32_t i = 0; i < 31; ++i) {
        EXPECT_EQ(words[i], (1U << (i + 1)) - 2);
    }
    EXPECT_EQ(words[31], (1U << 31U) - 1);
}

TEST(CodeWriter, SymbolsAreWrittenByTheirWords) {
    const EmdCode code(Lengths{2, 1, 3, 0, 3});
    EmdBitWriter writer;
    for (const std::size_t symbol : {4U, 1U, 0U, 2U, 1U}) {
        code.put(writer, symbol);
    }
    EXPECT_EQ(bits_of(writer), "1110101100");
}

TEST(CodeWriter, ASymbolAloneTakesNoBits) {
    const EmdCode code(Lengths{0, 0, 1, 0});
    EmdBitWriter writer;
    code.put(writer, 2);
    EXPECT_EQ(writer.bit_count(), 0U);
}

TEST(CodeWriter, TheEngineReadsTheSymbols) {
    PackRandom random(4);
    std::size_t symbols = 0;
    std::size_t long_words = 0;
    for (int i = 0; i < 20; ++i) {
        const Lengths lengths = random_code(random, 2 + random_below(random, 600), 31);
        std::vector<std::int16_t> table(TbDecoder::table_size);
        ASSERT_TRUE(tb_build_code_table(lengths, tb_root_bits, table));
        const EmdCode code(lengths);
        EmdBitWriter writer;
        for (std::size_t symbol = 0; symbol < emd_symbols; ++symbol) {
            if (lengths[symbol] > 0) {
                code.put(writer, symbol);
            }
        }
        const PackBytes bytes = writer.bytes();
        TbBitReader reader(bytes);
        for (std::size_t symbol = 0; symbol < emd_symbols; ++symbol) {
            if (lengths[symbol] > 0) {
                ASSERT_EQ(tb_decode_symbol<tb_root_bits>(reader, table.data()), symbol);
                ++symbols;
                long_words += lengths[symbol] > tb_root_bits ? 1U : 0U;
            }
        }
    }
    EXPECT_GT(symbols, 2000U);
    EXPECT_GT(long_words, 500U);
}

TEST(CodeWriter, NoCodeIsDescribedByOneBit) {
    EXPECT_EQ(sound_description(Lengths(emd_symbols)), PackBytes{0x80});
}

TEST(CodeWriter, DescriptionsOfRandomCodes) {
    PackRandom random(5);
    int codes = 0;
    int longest_codes = 0;
    int codes_behind_root = 0;
    for (int i = 0; i < 60; ++i) {
        const std::size_t symbols = std::size_t{1} << random_below(random, 11);
        const Lengths lengths = random_code(random, symbols, i % 2 == 0 ? 31 : 13);
        sound_description(lengths);
        const std::uint8_t longest = *std::max_element(lengths.begin(), lengths.end());
        codes_behind_root += longest > tb_root_bits ? 1 : 0;
        longest_codes += longest == tb_longest_code ? 1 : 0;
        ++codes;
    }
    EXPECT_EQ(codes, 60);
    EXPECT_GT(codes_behind_root, 10);
    EXPECT_GT(longest_codes, 5);
}

TEST(CodeWriter, DescriptionsOfAnyLengths) {
    PackRandom random(6);
    int lists = 0;
    for (const std::size_t values : {2U, 3U, 5U, 16U, 32U}) {
        for (const std::size_t longest_run : {1U, 2U, 9U, 70U, 400U}) {
            Lengths lengths;
            while (lengths.size() < emd_symbols) {
                const std::size_t run = 1 + random_below(random, longest_run);
                lengths.insert(lengths.end(), run,
                               static_cast<std::uint8_t>(random_below(random, values)));
            }
            lengths.resize(emd_symbols);
            sound_description(lengths);
            ++lists;
        }
    }
    EXPECT_EQ(lists, 25);
}

TEST(CodeWriter, RunsOfEveryClass) {
    int runs = 0;
    for (const std::size_t run :
         {1U,  2U,  3U,  4U,  31U, 32U,  33U,  34U,  35U,  36U,  37U,  40U,  41U,  48U,   49U,  64U,
          65U, 96U, 97U, 98U, 99U, 160U, 161U, 288U, 289U, 544U, 545U, 600U, 999U, 1023U, 1024U}) {
        for (const std::uint8_t repeated : Lengths{0, 9, 31}) {
            Lengths lengths(emd_symbols, repeated);
            for (std::size_t i = run; i < emd_symbols; ++i) {
                lengths[i] = i % 2 == 0 ? 3 : 4;
            }
            std::rotate(lengths.begin(), lengths.begin() + 300, lengths.end());
            sound_description(lengths);
            ++runs;
        }
    }
    EXPECT_EQ(runs, 93);
}

TEST(CodeWriter, RunsMakeDescriptionsShort) {
    // The two alphabets, then one run of all positions: neither symbol takes a bit.
    EXPECT_EQ(sound_description(Lengths(emd_symbols, 10)).size(), 8U);
    // Two words of one bit among zeros: three runs and two lengths.
    Lengths two(emd_symbols);
    two[100] = two[700] = 1;
    EXPECT_EQ(sound_description(two).size(), 15U);
}

TEST(CodeWriter, DescriptionsOfUsualCodesAreShort) {
    // As tables have them: few values, the short classes of all slots, some slots above others.
    std::size_t size = 0;
    for (std::uint64_t rarity = 1; rarity < 2000; rarity *= 3) {
        std::vector<std::uint64_t> counts(emd_symbols);
        for (std::size_t byte = 0; byte < emd_literals; ++byte) {
            counts[byte] = byte < 4 || byte > 220 ? 1 + 20000 / (byte % 32 + 1) / rarity : 0;
        }
        for (std::size_t slot = 0; slot < emd_slots; ++slot) {
            for (unsigned length_class = 0; length_class < 14; ++length_class) {
                counts[emd_match_symbol(slot, length_class)] =
                    40000 / ((slot * 7 % 24 + 1) * (length_class * length_class % 11 + 1) * rarity);
            }
        }
        size += sound_description(emd_huffman_lengths(counts, 31)).size();
    }
    EXPECT_LE(size, 1102U);  // seven codes
}

TEST(CodeWriter, DescriptionsBeatAFixedWidth) {
    PackRandom random(7);
    for (int i = 0; i < 10; ++i) {
        Lengths lengths = random_bytes(random, emd_symbols, 32);
        constexpr std::size_t alphabets = 60;
        EXPECT_LE(sound_description(lengths).size(), emd_symbols * 5 / 8 + alphabets) << i;
        std::generate(lengths.begin(), lengths.end(), [&] {
            return static_cast<std::uint8_t>(random_below(random, 8) == 0 ? 12 : 8);
        });
        // An eighth of one kind: 0.54 bits a length.
        EXPECT_LE(sound_description(lengths).size(), emd_symbols * 7 / 8 / 8 + alphabets) << i;
    }
}

}  // namespace
