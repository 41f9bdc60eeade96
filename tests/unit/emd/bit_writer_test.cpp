// SPDX-License-Identifier: MIT
// Bits put together come out as the engine's reader takes them.
#include "emd/bit_writer.h"

#include <gtest/gtest.h>
#include <utility>

#include "support/packed_file.h"
#include "tb/bit_reader.h"

namespace {

TEST(EmdBitWriter, NothingIsNoByte) {
    EmdBitWriter writer;
    EXPECT_EQ(writer.bit_count(), 0U);
    EXPECT_EQ(writer.bytes(), PackBytes{});
    writer.put(0xffffffff, 0);
    EXPECT_EQ(writer.bit_count(), 0U);
    EXPECT_EQ(writer.bytes(), PackBytes{});
}

TEST(EmdBitWriter, HighestBitFirst) {
    EmdBitWriter writer;
    writer.put(1, 1);
    EXPECT_EQ(writer.bytes(), PackBytes{0x80});
    writer.put(2, 3);
    EXPECT_EQ(writer.bytes(), PackBytes{0xa0});
    writer.put(0x12345, 16);  // the bits above the sixteenth do not count
    EXPECT_EQ(writer.bytes(), (PackBytes{0xa2, 0x34, 0x50}));
    EXPECT_EQ(writer.bit_count(), 20U);
}

TEST(EmdBitWriter, WholeWords) {
    EmdBitWriter writer;
    writer.put(0x89abcdef, 32);
    EXPECT_EQ(writer.bytes(), (PackBytes{0x89, 0xab, 0xcd, 0xef}));
    writer.put(0x7f, 7);
    writer.put(0x89abcdef, 32);
    EXPECT_EQ(writer.bytes(), (PackBytes{0x89, 0xab, 0xcd, 0xef, 0xff, 0x13, 0x57, 0x9b, 0xde}));
    EXPECT_EQ(writer.bit_count(), 71U);
}

TEST(EmdBitWriter, TheReaderTakesWhatWasPut) {
    PackRandom random(3);
    std::vector<std::pair<std::uint32_t, unsigned>> values;
    EmdBitWriter writer;
    std::size_t bits = 0;
    for (int i = 0; i < 5000; ++i) {
        const auto count = static_cast<unsigned>(random_below(random, 33));
        const std::uint64_t mask = (std::uint64_t{1} << count) - 1;
        const auto value = static_cast<std::uint32_t>(random());
        writer.put(value, count);
        values.emplace_back(static_cast<std::uint32_t>(value & mask), count);
        bits += count;
    }
    EXPECT_EQ(writer.bit_count(), bits);
    const PackBytes bytes = writer.bytes();
    EXPECT_EQ(bytes.size(), (bits + 7) / 8);
    TbBitReader reader(bytes);
    for (const auto& [value, count] : values) {
        ASSERT_EQ(reader.take_wide(count), value);
    }
    EXPECT_FALSE(reader.overran());
}

}  // namespace
