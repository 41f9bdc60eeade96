// SPDX-License-Identifier: MIT
// Bytes of every kind packed and taken back by the engine's decoder, with all checksums. The tests
// assert that what they are about did occur: raw blocks, long words, symbols that are alone.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "emd/block_packer.h"
#include "emd/pack.h"
#include "emd/symbol_costs.h"
#include "support/packed_file.h"
#include "tb/decoder.h"

namespace {

EmdPackOptions options_of(unsigned block_shift) {
    EmdPackOptions options;
    options.block_shift = block_shift;
    return options;
}

/// Packs, unpacks, compares; gives the size and how many of the blocks are raw.
struct Trip {
    std::size_t size = 0;
    int blocks = 0;
    int raw_blocks = 0;
};
Trip trip(const PackBytes& bytes, unsigned block_shift) {
    PackedFile file(emd_pack(bytes, options_of(block_shift)));
    if (!file.is_open()) {
        ADD_FAILURE() << "the header is broken";
        return {};
    }
    EXPECT_EQ(file.decoder().block_shift, static_cast<std::int32_t>(block_shift));
    EXPECT_TRUE(file.unpack() == bytes);
    return {file.size(), file.decoder().block_count, file.raw_blocks()};
}

/// How often the paths of a model through the data use words of more than `longer_than` bits.
int long_words(const PackBytes& bytes, const EmdModel& model, unsigned longer_than) {
    const EmdParser parser(model.distances, emd_code_costs(model.lengths));
    EmdCounts counts{};
    const std::size_t block_size = std::size_t{1} << model.block_shift;
    for (std::size_t at = 0; at < bytes.size(); at += block_size) {
        const auto block = std::span(bytes).subspan(at, std::min(block_size, bytes.size() - at));
        emd_count_symbols(block, parser.parse(block, 0), counts);
    }
    int used = 0;
    for (std::size_t symbol = 0; symbol < emd_symbols; ++symbol) {
        used += model.lengths[symbol] > longer_than ? static_cast<int>(counts[symbol]) : 0;
    }
    return used;
}

/// A run, a copy from before, noise, a period, a ramp: pieces in any order.
PackBytes patchwork(PackRandom& random, std::size_t size) {
    PackBytes bytes;
    while (bytes.size() < size) {
        const std::size_t length = 1 + random_below(random, 1 + random_below(random, 700));
        const auto value = static_cast<std::uint8_t>(random());
        PackBytes piece;
        switch (random_below(random, 5)) {
            case 0: piece.assign(length, value); break;
            case 1:
                for (std::size_t i = 0; i < length; ++i) {
                    piece.push_back(bytes.empty() ? value : bytes[i % bytes.size()]);
                }
                break;
            case 2: piece = random_bytes(random, length, 1 + value); break;
            case 3: piece = periodic_bytes(random, length, 1 + value % 40); break;
            default:
                for (std::size_t i = 0; i < length; ++i) {
                    piece.push_back(static_cast<std::uint8_t>(value + i));
                }
        }
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    bytes.resize(size);
    return bytes;
}

TEST(EmdRoundTrip, OneByte) {
    const Trip one = trip({42}, 13);
    EXPECT_EQ(one.raw_blocks, 1);
    EXPECT_EQ(one.size, 80U + 8 + (26 * 13 + 7) / 8 + 1 + 4 + 1);
}

TEST(EmdRoundTrip, NoiseIsStoredRaw) {
    PackRandom random(40);
    int blocks = 0;
    for (const std::size_t size : {2U, 100U, 8191U, 8192U, 8193U, 16384U, 20000U}) {
        const Trip noise = trip(random_bytes(random, size, 256), 13);
        EXPECT_EQ(noise.raw_blocks, noise.blocks) << size;
        EXPECT_LE(noise.size, size + 200) << size;
        blocks += noise.raw_blocks;
    }
    EXPECT_EQ(blocks, 11);
}

TEST(EmdRoundTrip, SizesAroundABlock) {
    PackRandom random(41);
    int packed_blocks = 0;
    for (const std::size_t size : {8191U, 8192U, 8193U, 16383U, 16384U, 16385U}) {
        const Trip packed = trip(random_bytes(random, size, 3), 13);
        EXPECT_EQ(packed.blocks, static_cast<int>((size + 8191) / 8192)) << size;
        EXPECT_LT(packed.size, size / 3) << size;
        packed_blocks += packed.blocks - packed.raw_blocks;
    }
    // The blocks of one byte behind the others are raw.
    EXPECT_EQ(packed_blocks, 1 + 1 + 1 + 2 + 2 + 2);
}

TEST(EmdRoundTrip, OneValueAlone) {
    for (const std::uint8_t value : PackBytes{0, 1, 255}) {
        const EmdModel model = emd_choose_model(PackBytes(8192, value), options_of(13));
        EXPECT_EQ(std::count(model.lengths.begin(), model.lengths.end(), 0),
                  std::ptrdiff_t{emd_symbols} - 1);
        EXPECT_EQ(model.lengths[value], 1);
        const Trip alone = trip(PackBytes(8192, value), 13);
        EXPECT_EQ(alone.raw_blocks, 0);
        EXPECT_LE(alone.size, 160U);
        EXPECT_LE(trip(PackBytes(50000, value), 13).size, 240U);
    }
}

TEST(EmdRoundTrip, Periods) {
    PackRandom random(42);
    int periods = 0;
    for (const std::size_t period : {1U, 2U, 3U, 7U, 64U, 462U, 1023U, 4000U}) {
        const PackBytes bytes = periodic_bytes(random, 16000, period);
        const Trip packed = trip(bytes, 13);
        EXPECT_LT(packed.size, 600 + 3 * period) << period;
        ++periods;
    }
    EXPECT_EQ(periods, 8);
}

TEST(EmdRoundTrip, WordsBehindTheRootOfTheTable) {
    // The rarest bytes occur once among thirty thousand.
    PackBytes bytes;
    std::size_t last = 1;
    std::size_t count = 1;
    for (std::uint8_t value = 0; bytes.size() < 30000; ++value) {
        bytes.insert(bytes.end(), count, value);
        last = std::exchange(count, count + last);
    }
    PackRandom random(43);
    for (std::size_t i = bytes.size(); i > 1; --i) {
        std::swap(bytes[i - 1], bytes[random_below(random, i)]);
    }
    const EmdModel model = emd_choose_model(bytes, options_of(13));
    EXPECT_GT(long_words(bytes, model, tb_root_bits), 3);
    EXPECT_EQ(trip(bytes, 13).raw_blocks, 0);
}

TEST(EmdRoundTrip, RawBlocksBetweenOthers) {
    PackRandom random(44);
    PackBytes bytes;
    for (int i = 0; i < 8; ++i) {
        const PackBytes piece = random_bytes(random, 1024, i % 2 == 0 ? 256 : 5);
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    const Trip mixed = trip(bytes, 10);
    EXPECT_EQ(mixed.blocks, 8);
    EXPECT_EQ(mixed.raw_blocks, 4);
    EXPECT_LT(mixed.size, 4 * 1024 + 4 * 400 + 300U);
}

TEST(EmdRoundTrip, EveryBlockSize) {
    const PackBytes half = read_bytes(CORVANE_TEST_DATA "/tb/krk.nbw");
    const std::span<const std::uint8_t> part(half.data() + 9000, 3000);
    int shifts = 0;
    std::size_t last_size = 30000;
    for (unsigned shift = 0; shift <= 16; ++shift) {
        const Trip packed = trip({part.begin(), part.end()}, shift);
        EXPECT_EQ(packed.blocks, (3000 + (1 << shift) - 1) >> shift);
        EXPECT_LT(packed.size, last_size + 60) << shift;
        last_size = packed.size;
        ++shifts;
    }
    EXPECT_EQ(shifts, 17);
    EXPECT_LT(last_size, 1000U);
}

TEST(EmdRoundTrip, WholeBlocksOfTheLargestSize) {
    PackRandom random(45);
    PackBytes bytes(65536, 3);
    const PackBytes noise = random_bytes(random, 65536, 256);
    bytes.insert(bytes.end(), noise.begin(), noise.end());
    const Trip packed = trip(bytes, 16);
    EXPECT_EQ(packed.blocks, 2);
    EXPECT_EQ(packed.raw_blocks, 1);
    EXPECT_LT(packed.size, 65536U + 300);
}

TEST(EmdRoundTrip, Patchwork) {
    int inputs = 0;
    int raw = 0;
    int packed = 0;
    for (std::uint32_t seed = 0; seed < 160; ++seed) {
        PackRandom random(seed);
        const auto shift = static_cast<unsigned>(4 + random_below(random, 10));
        const std::size_t block_size = std::size_t{1} << shift;
        const std::size_t size = seed % 3 == 0 ? block_size * (1 + random_below(random, 2))
                                               : 1 + random_below(random, 3000);
        const Trip made = trip(patchwork(random, std::min<std::size_t>(size, 4096)), shift);
        raw += made.raw_blocks;
        packed += made.blocks - made.raw_blocks;
        ++inputs;
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
    EXPECT_EQ(inputs, 160);
    EXPECT_GT(raw, 100);
    EXPECT_GT(packed, 300);
}

}  // namespace
