// SPDX-License-Identifier: MIT
// From a position to a score: counting the men, the half they belong to, the boards, and what each
// stored byte stands for. The numbers of places are tested elsewhere.
#include "tb/search_probe.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "support/endgame_files.h"
#include "support/position.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/catalogue.h"
#include "tb/probe_raw.h"
#include "tb/resident.h"

namespace {

constexpr std::int32_t no_value = 32767;
constexpr std::int32_t kqk = 5;
constexpr std::int32_t kppkp = 36;
constexpr std::int32_t fixed_score = -32639;

/// The places of kppkp, Black to move, that have a fixed answer, and positions that lie there.
struct FixedPlace {
    std::uint32_t index;
    const char* fen;
};
constexpr std::array<FixedPlace, 7> fixed_places = {{
    {56802428, "8/1p6/8/8/4P3/k1K1P3/8/8 b - -"},
    {56811076, "8/8/1p6/8/4P3/k1K1P3/8/8 b - -"},
    {56849992, "8/1p6/8/8/4P3/k2KP3/8/8 b - -"},
    {56858640, "8/8/1p6/8/4P3/k2KP3/8/8 b - -"},
    {59592489, "8/8/8/1p6/4P3/1k1KP3/8/8 b - -"},
    {67775659, "8/8/8/1p6/4P3/2K1P3/k7/8 b - -"},
    {71071628, "8/8/8/1p6/4P3/4P3/1k6/3K4 b - -"},
}};

class SearchProbe : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    static TbAddress address_of(const char* fen) { return tb_address(position_from_fen(fen)); }

    static void expect_address(const char* fen, std::int32_t key, std::int32_t half,
                               std::uint32_t flip) {
        const TbAddress address = address_of(fen);
        EXPECT_EQ(address.tb_key, key) << fen;
        EXPECT_EQ(address.row, key < 0 ? -key : key) << fen;
        EXPECT_EQ(address.tb_half, half) << fen;
        EXPECT_EQ(address.tb_flip, flip) << fen;
    }
};

/// The score of a byte, rule by rule.
std::int32_t expected_score(std::int32_t value) {
    if (value == 0) return 0;
    if (value == -128) return 32640;
    if (value == -127) return -32640;
    return value > 0 ? 32640 + value : -32640 + value;
}

}  // namespace

TEST_F(SearchProbe, CountsMenOfBothColoursKindByKind) {
    TbCountMen(start_position());
    EXPECT_EQ(tb_counts, (TbCounts{8, 2, 2, 2, 1, 8, 2, 2, 2, 1}));
    TbCountMen(position_from_fen("knnnnbbb/rrq5/pppppp2/8/8/PNNBBBRR/RRQQQQQ1/K7 w - -"));
    EXPECT_EQ(tb_counts, (TbCounts{1, 2, 3, 4, 5, 6, 4, 3, 2, 1}));
}

TEST_F(SearchProbe, CountsAreTakenAnewAndWithoutTheKings) {
    TbCountMen(start_position());
    TbCountMen(position_from_fen("7k/8/8/8/8/8/8/K7 w - -"));
    EXPECT_EQ(tb_counts, TbCounts{});
}

TEST_F(SearchProbe, HalfIsThatOfTheSideToMoveAsTheTableSeesIt) {
    know_all_tables();
    expect_address("7k/8/8/8/8/1Q6/8/K7 w - -", +kqk, 0, 0);
    expect_address("7k/8/8/8/8/1Q6/8/K7 b - -", +kqk, 1, 0);
    expect_address("7k/8/8/8/8/1q6/8/K7 b - -", -kqk, 0, 1);
    expect_address("7k/8/8/8/8/1q6/8/K7 w - -", -kqk, 1, 1);
}

TEST_F(SearchProbe, EqualSidesAreAskedWithTheColoursExchanged) {
    know_all_tables();
    int tables = 0;
    for (const auto& [name, board] :
         {std::pair("kpkp", "7k/7p/8/8/8/8/P7/K7"), std::pair("knkn", "7k/7n/8/8/8/8/N7/K7"),
          std::pair("kbkb", "7k/7b/8/8/8/8/B7/K7"), std::pair("krkr", "7k/7r/8/8/8/8/R7/K7"),
          std::pair("kqkq", "7k/7q/8/8/8/8/Q7/K7")}) {
        const std::int32_t row = row_named(name);
        expect_address((std::string(board) + " w - -").c_str(), -row, 1, 1);
        expect_address((std::string(board) + " b - -").c_str(), -row, 0, 1);
        ++tables;
    }
    EXPECT_EQ(tables, 5);
    EXPECT_EQ(address_of("7k/7p/8/8/8/8/P7/K7 w - -").tb_key, -6);
}

TEST_F(SearchProbe, MaterialWithoutATableHasNoKey) {
    know_all_tables();
    for (const char* const fen : {"7k/8/8/8/8/8/8/K7 w - -", "7k/8/8/8/8/8/8/K7 b - -",
                                  "7k/8/8/8/8/QQQQ4/8/K7 w - -", "7k/7n/7n/8/8/8/8/K5RR w - -"}) {
        EXPECT_EQ(address_of(fen).tb_key, 0) << fen;
        EXPECT_EQ(tb_answer(position_from_fen(fen)), std::nullopt) << fen;
    }
    reset_all();
    EXPECT_EQ(address_of("7k/8/8/8/8/1Q6/8/K7 w - -").tb_key, 0);
}

TEST_F(SearchProbe, FirstBoardIsThatOfTheSideNamedFirst) {
    know_all_tables();
    const std::int32_t krbkn = row_named("krbkn");
    const TbEntry& row = TbCatalogue[static_cast<std::size_t>(krbkn)];
    int cases = 0;
    for (const std::int32_t half : {0, 1}) {
        for (const bool black_is_first : {false, true}) {
            const bool black_moves = (half == 1) != black_is_first;
            const std::string board =
                black_is_first ? "2k5/8/1r6/5b2/8/4N3/8/6K1 " : "2K5/8/1R6/5B2/8/4n3/8/6k1 ";
            const Table position = position_from_fen(board + (black_moves ? "b" : "w") + " - -");
            TbBoard first{};
            first[c8] = tb_king;
            first[b6] = tb_rook;
            first[f5] = tb_bishop;
            TbBoard second{};
            second[g1] = tb_king;
            second[e3] = tb_knight;
            const std::uint32_t flip = black_is_first ? 1 : 0;
            const std::uint32_t index =
                row.index_fn[static_cast<std::size_t>(half)](first, second, 65, flip);
            const TbAddress address = tb_address(position);
            EXPECT_EQ(address.row, krbkn);
            EXPECT_EQ(address.tb_half, half);
            EXPECT_EQ(address.tb_flip, flip);
            EXPECT_EQ(tb_index_of(position, address), index);
            ++cases;
        }
    }
    EXPECT_EQ(cases, 4);
}

TEST_F(SearchProbe, CaptureEnPassantIsNotSeen) {
    constexpr std::uint32_t kpkp_size = 3863492;
    constexpr std::uint32_t d6_of_table = 43;
    const TemporaryFolder folder;
    const Table without = position_from_fen("8/7k/8/3pP3/8/8/8/K7 w - -");
    const Table with = position_from_fen("8/7k/8/3pP3/8/8/8/K7 w - d6");
    ASSERT_EQ(with.ep_flag, 1);
    know_all_tables();
    const TbAddress address = tb_address(with);
    const std::uint32_t index = tb_index_of(without, address);
    EXPECT_EQ(tb_index_of(with, address), index);

    // The table has another place for the position with the capture.
    TbBoard first{};
    first[h7] = tb_king;
    first[d5] = tb_pawn;
    TbBoard second{};
    second[a1] = tb_king;
    second[e5] = tb_pawn;
    EXPECT_NE(TbCatalogue[6].index_fn[1](first, second, d6_of_table, 1), index);

    put_half("kpkp.nbb", kpkp_size, {{index, 100}});
    start_endgame_tables("");
    EXPECT_EQ(tb_answer(without), 32740);
    EXPECT_EQ(tb_answer(with), 32740);
}

TEST_F(SearchProbe, EveryByteHasItsScore) {
    const TemporaryFolder folder;
    std::string all_bytes;
    for (int value = 0; value < 256; ++value) {
        all_bytes += static_cast<char>(value);
    }
    write_file("krk.nbw", all_bytes);
    start_endgame_tables("");
    const std::int32_t krk = row_named("krk");
    for (std::int32_t value = -128; value < 128; ++value) {
        const auto index = static_cast<std::uint32_t>(value & 255);
        EXPECT_EQ(TbProbe(krk, 0, index), expected_score(value)) << value;
    }
}

TEST_F(SearchProbe, EndsOfTheScale) {
    const TemporaryFolder folder;
    write_file("krk.nbw", std::string("\x00\x01\x7e\x7f\x80\x81\x82\xff", 8));
    start_endgame_tables("");
    const std::int32_t krk = row_named("krk");
    EXPECT_EQ(TbProbe(krk, 0, 0), 0);
    EXPECT_EQ(TbProbe(krk, 0, 1), 32641);
    EXPECT_EQ(TbProbe(krk, 0, 2), 32766);
    EXPECT_EQ(TbProbe(krk, 0, 3), 32767);
    EXPECT_EQ(TbProbe(krk, 0, 4), 32640);
    EXPECT_EQ(TbProbe(krk, 0, 5), -32640);
    EXPECT_EQ(TbProbe(krk, 0, 6), -32766);
    EXPECT_EQ(TbProbe(krk, 0, 7), -32641);
}

TEST_F(SearchProbe, SideThatIsMatedScoresBetterThanOneThatWillBe) {
    start_endgame_tables(endgame_data);
    const Table mated = position_from_fen("7k/6Q1/6K1/8/8/8/8/8 b - -");
    const Table mate_in_one = position_from_fen("7k/1Q6/6K1/8/8/8/8/8 w - -");
    const Table mated_in_one = position_from_fen("6k1/1Q6/5K2/8/8/8/8/8 b - -");
    EXPECT_EQ(tb_answer(mated), -32640);
    EXPECT_EQ(tb_answer(mate_in_one), 32766);
    EXPECT_EQ(tb_answer(mated_in_one), -32766);
}

TEST_F(SearchProbe, SevenPlacesOfKppkpNeedNoFile) {
    for (const FixedPlace& place : fixed_places) {
        EXPECT_EQ(TbProbe(kppkp, 1, place.index), fixed_score);
        EXPECT_EQ(TbProbe(kppkp, 1, place.index - 1), no_value);
        EXPECT_EQ(TbProbe(kppkp, 1, place.index + 1), no_value);
        EXPECT_EQ(TbProbe(kppkp, 0, place.index), no_value);
        EXPECT_EQ(TbProbe(kppkp - 1, 1, place.index), no_value);
        EXPECT_EQ(TbProbe(kppkp + 1, 1, place.index), no_value);
    }
}

TEST_F(SearchProbe, SevenPositionsOfKppkpAreNotRead) {
    constexpr std::uint32_t kppkp_size = 89391280;
    const TemporaryFolder folder;
    put_half("kppkp.nbb", kppkp_size, {});
    start_endgame_tables("");
    ASSERT_EQ(tb_max_men, 5);
    const TbEntry& row = TbCatalogue[kppkp];
    for (const FixedPlace& place : fixed_places) {
        const Table position = position_from_fen(place.fen);
        EXPECT_EQ(tb_answer(position), fixed_score) << place.fen;
        EXPECT_EQ(tb_answer(mirrored(position)), fixed_score) << place.fen;
    }
    EXPECT_EQ(row.file[1], nullptr);
    for (const FixedPlace& place : fixed_places) {
        EXPECT_EQ(TbProbe(kppkp, 1, place.index - 1), 0);
    }
    EXPECT_NE(row.file[1], nullptr);
}

TEST_F(SearchProbe, SixMenAreNotAskedFor) {
    const Table bare = position_from_fen("7k/8/8/8/8/8/8/K7 w - -");
    const Table five = position_from_fen("7k/8/8/8/8/QQQ5/8/K7 w - -");
    const Table six = position_from_fen("7k/8/8/8/8/QQQQ4/8/K7 w - -");
    for (const std::int32_t men : {1, 3, 4, 5}) {
        tb_max_men = men;
        EXPECT_TRUE(tb_may_answer(bare));
        EXPECT_TRUE(tb_may_answer(five));
        EXPECT_FALSE(tb_may_answer(six));
        EXPECT_FALSE(tb_may_answer(start_position()));
    }
    for (const std::int32_t men : {0, -1}) {
        tb_max_men = men;
        EXPECT_FALSE(tb_may_answer(bare));
        EXPECT_FALSE(tb_may_answer(five));
        EXPECT_FALSE(tb_may_answer(six));
    }
}

TEST_F(SearchProbe, OtherHalfIsNoHelp) {
    const TemporaryFolder folder;
    copy_half("kqk.nbw");
    start_endgame_tables("");
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 w - -")), 32760);
        EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 b - -")), std::nullopt);
        EXPECT_EQ(tb_answer(position_from_fen("k7/8/1q6/8/8/8/8/7K b - -")), 32760);
        EXPECT_EQ(tb_answer(position_from_fen("k7/8/1q6/8/8/8/8/7K w - -")), std::nullopt);
    }
}

TEST_F(SearchProbe, TableWithoutFilesIsNoHelp) {
    know_all_tables();
    EXPECT_EQ(address_of("7k/8/8/8/8/1Q6/8/K7 w - -").tb_key, kqk);
    EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 w - -")), std::nullopt);
}

TEST_F(SearchProbe, FileThatVanishedGivesNoValueOnceAndThenNoAnswer) {
    const TemporaryFolder folder;
    copy_half("kqk.nbw");
    copy_half("kqk.nbb");
    start_endgame_tables("");
    std::filesystem::remove("kqk.nbw");
    const Table position = position_from_fen("7k/8/8/8/8/1Q6/8/K7 w - -");
    EXPECT_EQ(tb_answer(position), no_value);
    EXPECT_EQ(tb_answer(position), std::nullopt);
    EXPECT_EQ(tb_answer(mirrored(position)), std::nullopt);
    EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 b - -")), -32759);
}

TEST_F(SearchProbe, WithoutACacheEveryProbeGivesNoValue) {
    const CapturedOutput output;
    tb_start_tables(endgame_data, 0);
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 w - -")), no_value);
        EXPECT_EQ(tb_answer(position_from_fen("7k/8/8/8/8/1Q6/8/K7 b - -")), no_value);
    }
}

TEST_F(SearchProbe, HalfInMemoryAnswersAsLongAsItsFileIsKnown) {
    start_endgame_tables(endgame_data);
    std::array<std::uint8_t, 25629> half{};
    TbLoadHalf(kqk, 0, half.data());
    const Table position = position_from_fen("7k/8/8/8/8/1Q6/8/K7 w - -");
    EXPECT_EQ(tb_answer(position), 32760);
    start_endgame_tables("there-is-no-such-folder");
    EXPECT_EQ(tb_answer(position), std::nullopt);
}
