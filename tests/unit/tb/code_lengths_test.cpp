// SPDX-License-Identifier: MIT
// Descriptions of codes, written bit by bit: the simple form with its runs of zeros, the coded form
// with its two alphabets, and every way in which a description is broken.
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include "emd/bit_writer.h"
#include "emd/code_writer.h"
#include "tb/code_table.h"

namespace {

using Lengths = std::vector<std::uint8_t>;

/// What a description gives for `count` symbols; empty if it is broken. It ends where the marker
/// begins that is put behind it.
std::optional<Lengths> lengths_of(const EmdBitWriter& description, std::size_t count) {
    constexpr std::uint32_t marker = 0xb7e1;
    EmdBitWriter writer = description;
    writer.put(marker, 16);
    const std::vector<std::uint8_t> bytes = writer.bytes();
    TbBitReader reader(bytes);
    Lengths lengths(count, 77);
    if (!tb_read_code_lengths(reader, lengths)) {
        return std::nullopt;
    }
    EXPECT_EQ(reader.take(16), marker);
    return lengths;
}

bool makes_code(const Lengths& lengths) {
    std::vector<std::int16_t> table(8192 + 2 * lengths.size());
    return tb_build_code_table(lengths, 13, table);
}

EmdBitWriter simple_form(unsigned width) {
    EmdBitWriter writer;
    writer.put(0, 1);
    writer.put(width, 5);
    return writer;
}

/// The simple form of lengths below 32, with a run of no further zeros behind each 0.
void put_simple_form(EmdBitWriter& writer, const Lengths& lengths) {
    writer.put(0, 1);
    writer.put(5, 5);
    for (const std::uint8_t length : lengths) {
        writer.put(length, 5);
        writer.put(0, length == 0 ? 4 : 0);
    }
}

/// The coded form with alphabets of these lengths, up to the first of its symbols.
EmdBitWriter coded_form(Lengths length_alphabet, Lengths run_alphabet) {
    length_alphabet.resize(64, 0);
    run_alphabet.resize(64, 0);
    length_alphabet.insert(length_alphabet.end(), run_alphabet.begin(), run_alphabet.end());
    EmdBitWriter writer;
    writer.put(0, 1);
    put_simple_form(writer, length_alphabet);
    return writer;
}

/// With words of six bits in both alphabets: a word is the symbol itself.
EmdBitWriter flat_coded_form() {
    return coded_form(Lengths(64, 6), Lengths(64, 6));
}

void put_run(EmdBitWriter& writer, std::uint32_t length, std::uint32_t run_symbol,
             std::uint32_t further) {
    writer.put(32 + length, 6);
    writer.put(run_symbol, 6);
    writer.put(further, run_symbol > 32 ? run_symbol - 32 : 0);
}

Lengths joined(std::initializer_list<Lengths> parts) {
    Lengths all;
    for (const Lengths& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

}  // namespace

TEST(CodeLengths, OneBitTellsThatAllAreZero) {
    for (const std::size_t count : {1U, 64U, 128U, 129U, 1024U}) {
        EmdBitWriter writer;
        writer.put(1, 1);
        EXPECT_EQ(lengths_of(writer, count), Lengths(count, 0)) << count;
    }
}

TEST(CodeLengths, SimpleFormListsThem) {
    EmdBitWriter writer = simple_form(3);
    for (const std::uint32_t length : {1U, 2U, 7U, 7U, 5U}) {
        writer.put(length, 3);
    }
    EXPECT_EQ(lengths_of(writer, 5), (Lengths{1, 2, 7, 7, 5}));
}

TEST(CodeLengths, ZeroIsFollowedByARunOfZeros) {
    for (unsigned run = 0; run < 16; ++run) {
        EmdBitWriter writer = simple_form(4);
        writer.put(9, 4);
        writer.put(0, 4);
        writer.put(run, 4);
        writer.put(8, 4);
        EXPECT_EQ(lengths_of(writer, run + 3), joined({{9}, Lengths(run + 1, 0), {8}})) << run;
    }
}

TEST(CodeLengths, RunOfZerosMayEndWithTheListButNotBehindIt) {
    for (unsigned run = 1; run < 16; ++run) {
        EmdBitWriter writer = simple_form(2);
        writer.put(3, 2);
        writer.put(0, 2);
        writer.put(run, 4);
        EXPECT_EQ(lengths_of(writer, run + 2), joined({{3}, Lengths(run + 1, 0)})) << run;
        EXPECT_EQ(lengths_of(writer, run + 1), std::nullopt) << run;
        EXPECT_EQ(lengths_of(writer, 2), std::nullopt) << run;
    }
}

TEST(CodeLengths, WidthOfZeroLeavesTheRunsAlone) {
    EmdBitWriter writer = simple_form(0);
    writer.put(15, 4);
    writer.put(0, 4);
    writer.put(2, 4);
    EXPECT_EQ(lengths_of(writer, 20), Lengths(20, 0));
    EXPECT_EQ(lengths_of(writer, 19), std::nullopt);
}

TEST(CodeLengths, EveryWidth) {
    for (unsigned width = 1; width < 32; ++width) {
        const auto last = static_cast<std::uint8_t>(width < 5 ? (1U << width) - 1 : 31U);
        EmdBitWriter writer = simple_form(width);
        writer.put(1, width);
        writer.put(0, width);
        writer.put(1, 4);
        writer.put(last, width);
        EXPECT_EQ(lengths_of(writer, 4), (Lengths{1, 0, 0, last})) << width;
    }
}

/// A length of many bits is none, whatever its lowest ones are; without its highest bit these
/// lists would be codes.
TEST(CodeLengths, LengthsBeyondTheLongestMakeNoCode) {
    ASSERT_TRUE(makes_code({1, 1, 0}));
    for (unsigned width = 6; width < 32; ++width) {
        for (const std::uint32_t low : {0U, 1U}) {
            EmdBitWriter writer = simple_form(width);
            writer.put(1, width);
            writer.put(1U << (width - 1) | low, width);
            writer.put(low == 0 ? 1 : 0, width);
            writer.put(0, low == 0 ? 0 : 4);
            const auto lengths = lengths_of(writer, 3);
            ASSERT_TRUE(lengths.has_value()) << width;
            EXPECT_FALSE(makes_code(*lengths)) << width << ' ' << low;
        }
    }
}

TEST(CodeLengths, CodedFormBeginsBehind128) {
    EmdBitWriter simple = simple_form(5);
    for (int i = 0; i < 128; ++i) {
        simple.put(7, 5);
    }
    EXPECT_EQ(lengths_of(simple, 128), Lengths(128, 7));
    EmdBitWriter coded = flat_coded_form();
    put_run(coded, 7, 38, 129 - 33 - 64);
    EXPECT_EQ(lengths_of(coded, 129), Lengths(129, 7));
    EXPECT_NE(lengths_of(simple, 129), Lengths(129, 7));
}

TEST(CodeLengths, SymbolsBelow32AreLengths) {
    EmdBitWriter writer = flat_coded_form();
    Lengths expected;
    for (std::uint32_t i = 0; i < 150; ++i) {
        writer.put(i % 32, 6);
        expected.push_back(static_cast<std::uint8_t>(i % 32));
    }
    EXPECT_EQ(lengths_of(writer, 150), expected) << "a single 0 has no run behind it here";
}

TEST(CodeLengths, SymbolsFrom32OnAreRuns) {
    EmdBitWriter writer = flat_coded_form();
    put_run(writer, 0, 0, 0);
    put_run(writer, 31, 1, 0);
    writer.put(31, 6);
    put_run(writer, 1, 31, 0);
    put_run(writer, 2, 32, 0);
    put_run(writer, 3, 33, 0);
    put_run(writer, 4, 33, 1);
    put_run(writer, 5, 34, 3);
    const Lengths expected = joined({Lengths(2, 0),
                                     Lengths(3, 31),
                                     {31},
                                     Lengths(33, 1),
                                     Lengths(34, 2),
                                     Lengths(35, 3),
                                     Lengths(36, 4),
                                     Lengths(40, 5)});
    EXPECT_EQ(lengths_of(writer, 184), expected);
}

TEST(CodeLengths, RunMayEndWithTheListButNotBehindIt) {
    for (std::uint32_t run_symbol = 0; run_symbol <= 41; ++run_symbol) {
        const unsigned bits = run_symbol > 32 ? run_symbol - 32 : 0;
        const std::size_t run = run_symbol < 32 ? run_symbol + 2 : (std::size_t{1} << bits) + 33;
        EmdBitWriter writer = flat_coded_form();
        for (int i = 0; i < 128; ++i) {
            writer.put(1, 6);
        }
        put_run(writer, 9, run_symbol, 0);
        EXPECT_EQ(lengths_of(writer, 128 + run), joined({Lengths(128, 1), Lengths(run, 9)}))
            << run_symbol;
        EXPECT_EQ(lengths_of(writer, 128 + run - 1), std::nullopt) << run_symbol;
        EXPECT_EQ(lengths_of(writer, 129), std::nullopt) << run_symbol;
    }
}

/// The longest run has 16 further bits; symbols above stand for none, however long the list.
TEST(CodeLengths, RunSymbolsEndAt48) {
    EmdBitWriter longest = flat_coded_form();
    put_run(longest, 3, 48, 0xffff);
    EXPECT_EQ(lengths_of(longest, 65536 + 65535 + 33), Lengths(65536 + 65535 + 33, 3));
    for (std::uint32_t run_symbol = 49; run_symbol < 64; ++run_symbol) {
        EmdBitWriter writer = flat_coded_form();
        put_run(writer, 3, run_symbol, 0);
        const std::size_t would_be = (std::size_t{1} << std::min(run_symbol - 32, 20U)) + 33;
        EXPECT_EQ(lengths_of(writer, would_be), std::nullopt) << run_symbol;
    }
}

TEST(CodeLengths, OneSymbolAloneInAnAlphabetTakesNoBits) {
    Lengths ten(64, 0);
    ten[10] = 1;
    EXPECT_EQ(lengths_of(coded_form(ten, Lengths(64, 0)), 1024), Lengths(1024, 10));
    Lengths runs_of_seven(64, 0);
    runs_of_seven[32 + 7] = 1;
    Lengths four(64, 0);
    four[2] = 1;
    EXPECT_EQ(lengths_of(coded_form(runs_of_seven, four), 1024), Lengths(1024, 7));
}

TEST(CodeLengths, AlphabetsWithoutSymbolsMakeAllZero) {
    EmdBitWriter writer;
    writer.put(0, 1);
    writer.put(1, 1);
    EXPECT_EQ(lengths_of(writer, 129), Lengths(129, 0));
}

/// Words of the alphabets that are longer than their root of eight bits.
TEST(CodeLengths, LongWordsOfTheAlphabets) {
    Lengths steps;
    for (std::uint8_t length = 1; length <= 31; ++length) {
        steps.push_back(length);
    }
    steps.push_back(31);
    const EmdCode code(joined({steps, Lengths(32, 0)}));
    EmdBitWriter writer = coded_form(steps, Lengths(64, 0));
    Lengths expected;
    for (std::uint8_t i = 0; i < 160; ++i) {
        code.put(writer, i % 32);
        expected.push_back(i % 32);
    }
    EXPECT_EQ(lengths_of(writer, 160), expected);
}

TEST(CodeLengths, AlphabetsThatMakeNoCodeAreRefused) {
    const Lengths flat(64, 6);
    Lengths short_by_one = flat;
    short_by_one[63] = 0;
    Lengths alone(64, 0);
    alone[5] = 2;
    for (const Lengths& broken : {short_by_one, alone}) {
        EmdBitWriter lengths = coded_form(broken, flat);
        EmdBitWriter runs = coded_form(flat, broken);
        for (int i = 0; i < 129; ++i) {
            lengths.put(1, 6);
            runs.put(1, 6);
        }
        EXPECT_EQ(lengths_of(lengths, 129), std::nullopt);
        EXPECT_EQ(lengths_of(runs, 129), std::nullopt);
    }
}

/// Behind the end come zeros, which are symbols as well: only the end itself tells the fault.
TEST(CodeLengths, DescriptionsThatEndTooEarlyAreRefused) {
    EmdBitWriter simple = simple_form(4);
    EmdBitWriter coded = flat_coded_form();
    for (int i = 0; i < 128; ++i) {
        simple.put(7, 4);
        coded.put(7, 6);
    }
    put_run(coded, 4, 32, 0);
    int cuts = 0;
    for (const auto& [writer, count] : {std::pair{simple, 128}, std::pair{coded, 128 + 34}}) {
        const std::vector<std::uint8_t> bytes = writer.bytes();
        Lengths lengths(static_cast<std::size_t>(count));
        TbBitReader whole(bytes);
        EXPECT_TRUE(tb_read_code_lengths(whole, lengths));
        for (std::size_t cut = 0; cut < bytes.size(); ++cut, ++cuts) {
            TbBitReader reader({bytes.data(), cut});
            EXPECT_FALSE(tb_read_code_lengths(reader, lengths)) << cut;
        }
    }
    EXPECT_EQ(cuts, 65 + 179);
}

TEST(CodeLengths, OneBitMayBeTheLast) {
    const std::array<std::uint8_t, 1> bytes{1};
    TbBitReader reader(bytes);
    reader.skip(7);
    Lengths lengths(1024, 77);
    EXPECT_TRUE(tb_read_code_lengths(reader, lengths));
    EXPECT_EQ(lengths, Lengths(1024, 0));
    EXPECT_FALSE(tb_read_code_lengths(reader, lengths)) << "not one bit is left";
}
