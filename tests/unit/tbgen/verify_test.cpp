// SPDX-License-Identifier: MIT
// The proof of finished tables: sound ones pass, a single wrong byte is found.
#include "tbgen/verify.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "support/captured_output.h"
#include "support/endgame_layout.h"
#include "support/temporary_folder.h"
#include "tb/index/enumeration.h"
#include "tbgen/successors.h"

namespace {

namespace fs = std::filesystem;

void no_report(double /*share*/) {}

/// The plain tables of three men in the working directory.
class VerifyTest : public testing::Test {
  protected:
    VerifyTest() {
        tb_build_enumeration();
        for (const std::string name : {"kpk", "knk", "kbk", "krk", "kqk"}) {
            for (const std::string half : {".nbw", ".nbb"}) {
                fs::copy_file(CORVANE_TEST_DATA "/tb/" + name + half, name + half);
            }
        }
    }

    static VerifyResult verified(const char* name) {
        const CapturedOutput output;
        StoredHalves stored(".");
        return verify_table(row_of_name(name), stored, 2, no_report);
    }

    /// Changes one byte of a half.
    static void spoil(const std::string& name, std::size_t at, char byte) {
        std::string text = read_file(name);
        ASSERT_LT(at, text.size());
        ASSERT_NE(text[at], byte);
        text[at] = byte;
        write_file(name, text);
    }

    /// Where a half has its n-th byte of a value.
    static std::size_t place_of(const std::string& name, Value value, std::size_t n) {
        const std::string text = read_file(name);
        std::size_t at = text.find(static_cast<char>(value));
        while (n-- > 0 && at != std::string::npos) {
            at = text.find(static_cast<char>(value), at + 1);
        }
        return at;
    }

  private:
    TemporaryFolder folder_;
};

/// Single positions of kpk and what it leads to.
class SuccessorsTest : public VerifyTest {
  protected:
    SuccessorsTest() {
        const CapturedOutput output;
        stored_ = std::make_unique<StoredHalves>(".");
        MenList men;
        men.push_back({0, tb_pawn});
        material_ = Material::read(men, 2, *stored_, fault_);
    }

    /// Kings, then the pawn.
    [[nodiscard]] static MenPosition position(const char* first, const char* second,
                                              const char* pawn, std::uint8_t to_move) {
        return {{named_square(first), named_square(second)}, {named_square(pawn)}, to_move};
    }

    std::unique_ptr<StoredHalves> stored_;
    std::unique_ptr<Material> material_;
    std::string fault_;
};

}  // namespace

TEST_F(VerifyTest, SoundTablesPass) {
    std::vector<double> shares;
    const CapturedOutput output;
    StoredHalves stored(".");
    const VerifyResult result =
        verify_table(row_of_name("krk"), stored, 1, [&](double share) { shares.push_back(share); });
    EXPECT_EQ(result.fault, "");
    EXPECT_GT(result.positions, 45'000U);
    EXPECT_EQ(shares.size(), 462U);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 1);
}

TEST_F(VerifyTest, TableWithPromotionsPasses) {
    const VerifyResult result = verified("kpk");
    EXPECT_EQ(result.fault, "");
    EXPECT_GT(result.positions, 150'000U);
}

TEST_F(VerifyTest, WrongWinIsFound) {
    spoil("krk.nbw", place_of("krk.nbw", mates_in(5), 300), static_cast<char>(mates_in(4)));
    const std::string fault = verified("krk").fault;
    EXPECT_EQ(fault.find("krk: kings "), 0U) << fault;
    EXPECT_NE(fault.find("stored "), std::string::npos) << fault;
}

TEST_F(VerifyTest, WrongDrawIsFound) {
    spoil("krk.nbb", place_of("krk.nbb", drawn, 20), static_cast<char>(mated_in(3)));
    EXPECT_NE(verified("krk").fault, "");
}

TEST_F(VerifyTest, PositionCalledImpossibleIsFound) {
    spoil("kqk.nbb", place_of("kqk.nbb", mated_in(10), 0), static_cast<char>(not_reachable));
    EXPECT_NE(verified("kqk").fault, "");
}

TEST_F(VerifyTest, ValueWhereNoPositionIsIsFound) {
    spoil("kqk.nbw", place_of("kqk.nbw", not_reachable, 500), static_cast<char>(mates_in(3)));
    EXPECT_EQ(verified("kqk").fault.find("kqk: a value at "), 0U);
}

TEST_F(VerifyTest, WrongBytesOfATableBehindPromotionsAreFound) {
    std::string text = read_file("kqk.nbb");
    std::replace(text.begin(), text.end(), static_cast<char>(mated_in(7)), '\0');
    write_file("kqk.nbb", text);
    EXPECT_EQ(verified("kpk").fault.find("kpk: kings "), 0U);
}

TEST_F(VerifyTest, MissingHalvesAreTold) {
    fs::remove("krk.nbb");
    EXPECT_EQ(verified("kpk").fault, "krk (second half) is not there");
}

TEST_F(SuccessorsTest, MateAndStalemateOnTheBoard) {
    ASSERT_NE(material_, nullptr) << fault_;
    EXPECT_EQ(value_by_successors(*material_, position("c6", "c8", "c7", 1)), drawn);
    EXPECT_EQ(value_by_successors(*material_, position("b6", "a8", "h2", 1)),
              material_->value(position("b6", "a8", "h2", 1)));
    MenList rook;
    rook.push_back({0, tb_rook});
    const auto material = Material::read(rook, 1, *stored_, fault_);
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(value_by_successors(*material, position("g6", "h8", "a8", 1)), mated_in(0));
    EXPECT_EQ(value_by_successors(*material, position("g6", "h8", "a1", 0)), mates_in(1));
    EXPECT_EQ(value_by_successors(*material, position("a1", "h8", "h7", 1)), drawn);
}

TEST_F(SuccessorsTest, PromotionsLookAtEveryPiece) {
    ASSERT_NE(material_, nullptr) << fault_;
    // A queen would be a stalemate or slower; a rook or a queen decides it.
    for (const char* const king : {"a7", "c6", "b6"}) {
        const MenPosition at = position(king, "h3", "c7", 0);
        EXPECT_EQ(value_by_successors(*material_, at), material_->value(at)) << king;
        EXPECT_GT(material_->value(at), drawn);
    }
    EXPECT_EQ(material_->promoted(0, tb_pawn), nullptr);
    ASSERT_NE(material_->promoted(0, tb_queen), nullptr);
    ASSERT_NE(material_->without(0), nullptr);
    EXPECT_EQ(material_->without(0)->value(position("a1", "h8", "c7", 0)), drawn);
    EXPECT_FALSE(material_->keeps_en_passant());
}

TEST_F(SuccessorsTest, ChecksFromBothEndsOfTheBoard) {
    MenList men;
    men.push_back({1, tb_pawn});
    EXPECT_TRUE(is_in_check(men, position("d4", "h8", "e5", 0), 0));
    EXPECT_FALSE(is_in_check(men, position("d4", "h8", "e3", 0), 0));
    EXPECT_FALSE(is_in_check(men, position("d4", "h8", "e5", 0), 1)) << "its own pawn";
}

TEST_F(SuccessorsTest, SidesExchangedAreSeenFromTheOtherEnd) {
    MenList men;
    men.push_back({1, tb_pawn});
    const auto material = Material::read(men, 1, *stored_, fault_);
    ASSERT_NE(material, nullptr);
    const MenPosition at = position("h6", "c3", "c2", 1);
    EXPECT_EQ(material->value(at), material_->value(position("c6", "h3", "c7", 0)));
    EXPECT_EQ(value_by_successors(*material, at), material->value(at));
}
