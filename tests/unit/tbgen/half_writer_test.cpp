// SPDX-License-Identifier: MIT
// Words written into bytes, and each position found again by the engine's index.
#include "tbgen/half_writer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

constexpr int positions_a_half = 150;

class HalfWriterTest : public testing::Test {
  protected:
    HalfWriterTest() { tb_build_enumeration(); }
};

/// All placements of a position that differ by an exchange of alike men.
std::vector<SlowPosition> alike(const SlowPosition& position) {
    std::vector<SlowPosition> all = {position};
    for (std::size_t i = 0; i < position.men.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const SlowMan a = position.men[i];
            const SlowMan b = position.men[j];
            if (a.kind != b.kind || a.side != b.side) continue;
            const std::size_t count = all.size();
            for (std::size_t k = 0; k < count; ++k) {
                SlowPosition exchanged = all[k];
                std::swap(exchanged.men[i].square, exchanged.men[j].square);
                all.push_back(exchanged);
            }
        }
    }
    return all;
}

/// Writes drawn positions with values of their own and looks them up.
void compare(const char* name, std::uint8_t to_move) {
    const EndgameLayout layout(name);
    HalfWriter writer(layout.endgame(), layout.pairs(), to_move);
    LayoutRandom random(3);
    std::vector<std::pair<SlowPosition, Value>> written;
    for (std::size_t slab = 0; slab < positions_a_half; ++slab) {
        const SlowPosition position = layout.draw(random, slab, to_move);
        const auto value = static_cast<Value>(static_cast<int>(slab) - 120);
        for (const SlowPosition& placement : alike(position)) {
            const LayoutPlace place = layout.place_of(placement);
            writer.write(place.slab, place.word, square_bit(place.square), value);
        }
        written.emplace_back(position, value);
    }
    const Bytes bytes = writer.take_bytes();
    ASSERT_FALSE(bytes.empty());
    EXPECT_NE(static_cast<Value>(bytes.back()), not_reachable) << "cut behind the last position";
    SlowTables tables([&](std::int32_t, std::int32_t) { return std::optional(bytes); });
    for (const auto& [position, value] : written) {
        EXPECT_EQ(tables.value(position), value) << name << ' ' << int{to_move};
    }
    const auto set = std::count_if(bytes.begin(), bytes.end(), [](std::uint8_t byte) {
        return static_cast<Value>(byte) != not_reachable;
    });
    EXPECT_EQ(set, positions_a_half) << name;
}

}  // namespace

TEST_F(HalfWriterTest, WritesWhereTheEngineReads) {
    for (const char* const name : {"kqk", "kpk", "krkn", "kqqk", "kppk"}) {
        compare(name, 0);
        compare(name, 1);
    }
}

TEST_F(HalfWriterTest, WritesAllBitsOfAWordWithOneValue) {
    const EndgameLayout layout("krkn");
    HalfWriter writer(layout.endgame(), layout.pairs(), 1);
    const std::size_t slab = layout.slab_of({named_square("b1"), named_square("h7")});
    const SquareSet bits = rank_set(3) | rank_set(4);
    writer.write(slab, named_square("d1"), bits, mates_in(7));
    const Bytes bytes = writer.take_bytes();
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(mates_in(7))), 16);
    SlowTables tables([&](std::int32_t, std::int32_t) { return std::optional(bytes); });
    SlowPosition position = layout.position({slab, named_square("d1"), named_square("f4")}, 1);
    EXPECT_EQ(tables.value(position), mates_in(7));
}

TEST_F(HalfWriterTest, NothingWrittenIsNoByte) {
    const EndgameLayout layout("kqk");
    HalfWriter writer(layout.endgame(), layout.pairs(), 0);
    EXPECT_TRUE(writer.take_bytes().empty());
}

TEST_F(HalfWriterTest, CapturesEnPassantHaveBytesOfTheirOwnInKpkp) {
    const EndgameLayout layout("kpkp");  // p0 p1
    const std::size_t slab = layout.slab_of({named_square("a1"), named_square("h8")});
    HalfWriter writer(layout.endgame(), layout.pairs(), 1);
    const MenSquares men = {named_square("e4"), named_square("d4")};
    writer.write_en_passant(slab, men, named_square("e3"), mates_in(3));
    const Bytes bytes = writer.take_bytes();
    SlowTables tables([&](std::int32_t, std::int32_t) { return std::optional(bytes); });
    SlowPosition position{layout.pairs().kings(slab),
                          {{0, tb_pawn, men[0]}, {1, tb_pawn, men[1]}},
                          1,
                          named_square("e3")};
    EXPECT_EQ(tables.value(position), mates_in(3));
    position.en_passant = tb_no_en_passant;
    EXPECT_EQ(tables.value(position), not_reachable);
}

#ifdef CORVANE_MANY_POSITIONS
// Cutting 250 million bytes one by one takes long without optimisation.
TEST_F(HalfWriterTest, TablesWithoutSuchBytesPassThemOver) {
    const EndgameLayout layout("krpkp");  // p0 p1 r0
    HalfWriter writer(layout.endgame(), layout.pairs(), 1);
    writer.write_en_passant(0, {named_square("e4"), named_square("d4"), named_square("h7")},
                            named_square("e3"), mates_in(3));
    EXPECT_TRUE(writer.take_bytes().empty());
}
#endif
