// SPDX-License-Identifier: MIT
// Codes of captures en passant: which ones can be reached, and when they become won or lost.
#include "tbgen/en_passant.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"
#include "tbgen/legality.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int slabs_a_table = 40;
#else
constexpr int slabs_a_table = 4;
#endif
constexpr std::uint32_t seed = 2024;

/// Values behind all captures are a draw.
std::optional<Bytes> all_drawn(std::int32_t row, std::int32_t half) {
    std::optional<Bytes> bytes = made_up_bytes(row, half);
    std::fill(bytes->begin(), bytes->end(), std::uint8_t{0});
    return bytes;
}

/// A table with both sides' legal positions, and the codes of one side to move.
class Scene {
  public:
    Scene(const char* name, std::uint8_t to_move, const LoadHalf& load)
        : layout_((tb_build_enumeration(), name)),
          to_move_(to_move),
          open_(layout_.empty_set()),
          other_(layout_.empty_set()),
          writer_(layout_.endgame(), layout_.pairs(), to_move),
          codes_(layout_.endgame(), layout_.pairs(), to_move) {
        const EndgameMan captured{static_cast<std::uint8_t>(to_move ^ 1U), tb_pawn};
        const MenList& men = layout_.endgame().men;
        for (std::size_t i = 0; i < men.size() && captures_.empty(); ++i) {
            if (men[i] == captured) {
                captures_.push_back(
                    {captured, OutsideValues(layout_.pairs(), men.without(i), to_move,
                                             OutsideValues::Kind::capture)});
            }
        }
        is_filled_ = captures_[0].values.fill(load, 2);
    }

    void begin(std::size_t slab) {
        EXPECT_TRUE(is_filled_);
        const Endgame& endgame = layout_.endgame();
        const KingSquares& kings = layout_.pairs().kings(slab);
        for (std::size_t word = 0; word < endgame.slab_words(); ++word) {
            const SquareSet possible = possible_squares(endgame, kings, word);
            if (possible == 0) continue;
            open_.slab(slab)[word] = possible & ~attacking_squares(endgame, kings, word, to_move_);
            other_.slab(slab)[word] =
                possible & ~attacking_squares(endgame, kings, word, to_move_ ^ 1U);
        }
        codes_.begin(slab, captures_, open_, other_, writer_);
    }

    /// The pawn of a man's place has passed: the code of the position.
    [[nodiscard]] LayoutPlace code_of(SlowPosition position, std::size_t man) const {
        std::uint32_t& square = position.men[man].square;
        square = square % 8 + (to_move_ == 1 ? 0 : 56);
        return layout_.place_of(position);
    }

    /// A position of "a1 h8 e4 d4": the kings, then the men in the order of the layout.
    [[nodiscard]] SlowPosition position(std::string_view text) const {
        SlowPosition result{
            {named_square(text.substr(0)), named_square(text.substr(3))}, {}, to_move_};
        std::size_t at = 6;
        for (const EndgameMan& man : layout_.endgame().men) {
            result.men.push_back({man.side, man.kind, named_square(text.substr(at))});
            at += 3;
        }
        return result;
    }

    /// Whether the code of a position whose pawn `man` has passed can be reached.
    [[nodiscard]] bool is_reached(std::string_view text, std::size_t man) {
        const SlowPosition at = position(text);
        const LayoutPlace place = code_of(at, man);
        begin(place.slab);
        return place.is_in(open_);
    }

    EndgameLayout layout_;
    std::uint8_t to_move_;
    PositionSet open_;
    PositionSet other_;
    HalfWriter writer_;
    EnPassant codes_;
    std::vector<CaptureValues> captures_;
    bool is_filled_ = false;
};

/// The position with a right to capture the pawn of a man's place; empty unless a legal double
/// step leads to it.
std::optional<SlowPosition> after_double_step(SlowPosition position, std::size_t man) {
    const std::uint32_t square = position.men[man].square;
    const bool is_up = position.men[man].side == 0;
    SlowPosition before = position;
    before.to_move ^= 1U;
    before.men[man].square = is_up ? square - 16 : square + 16;
    if (!slow_legal(before)) {
        return std::nullopt;
    }
    for (const SlowMove& move : slow_moves(before)) {
        if (move.is_legal && move.moved == man && move.captured == before.men.size() &&
            move.after.men[man].square == square && move.after.en_passant != tb_no_en_passant) {
            return move.after;
        }
    }
    return std::nullopt;
}

struct Parameter {
    std::uint8_t to_move;
    bool is_made_up;  ///< values behind captures that no real table has

    friend std::ostream& operator<<(std::ostream& out, const Parameter& parameter) {
        return out << int{parameter.to_move} << parameter.is_made_up;
    }
};

/// A code, its position, and the men that may capture.
struct Code {
    LayoutPlace place;
    LayoutPlace plain;
    SlowPosition position;
};

/// Calls `visit(position, man)` for each pawn that may just have made a double step in a slab with
/// two pawns.
template <class Visit>
void for_each_passed_pawn(const Scene& scene, std::size_t slab, const Visit& visit) {
    for (std::size_t word = 8; word < 56; ++word) {
        for (TbSquare runner = 8; runner < 56; ++runner) {
            const SlowPosition position =
                scene.layout_.position({slab, word, runner}, scene.to_move_);
            const std::size_t man = scene.to_move_ == 1 ? 0 : 1;
            const std::uint32_t rank = scene.to_move_ == 1 ? 3 : 4;
            if (position.men[man].square / 8 == rank) {
                visit(position, man);
            }
        }
    }
}

class EnPassantTest : public testing::TestWithParam<Parameter> {
  protected:
    static LoadHalf load() { return GetParam().is_made_up ? made_up_bytes : three_men_bytes; }

    /// Some slabs, each once.
    static std::vector<std::size_t> drawn_slabs(const Scene& scene) {
        std::vector<std::size_t> slabs(scene.layout_.pairs().slabs());
        std::iota(slabs.begin(), slabs.end(), std::size_t{0});
        LayoutRandom random(seed);
        std::shuffle(slabs.begin(), slabs.end(), random);
        slabs.resize(slabs_a_table);
        return slabs;
    }
};

TEST_P(EnPassantTest, CodesAreThePositionsAfterLegalDoubleSteps) {
    Scene scene("kpkp", GetParam().to_move, load());
    int reached = 0;
    for (const std::size_t slab : drawn_slabs(scene)) {
        scene.begin(slab);
        for_each_passed_pawn(scene, slab, [&](const SlowPosition& position, std::size_t man) {
            const LayoutPlace place = scene.code_of(position, man);
            const bool is_reached =
                slow_legal(position) && after_double_step(position, man).has_value();
            EXPECT_EQ(place.is_in(scene.open_), is_reached)
                << slab << ' ' << position.men[0].square << ' ' << position.men[1].square;
            reached += is_reached ? 1 : 0;
        });
    }
    EXPECT_GT(reached, slabs_a_table * 5);
}

TEST_P(EnPassantTest, CodesAreDecidedWithTheirPlainPositionsAndTheirCaptures) {
    Scene scene("kpkp", GetParam().to_move, load());
    SlowTables tables(load());
    LayoutRandom random(seed);
    constexpr int most_moves = 30;
    int won = 0;
    int lost = 0;
    for (const std::size_t slab : drawn_slabs(scene)) {
        scene.begin(slab);
        // Each plain position is won or lost in some moves, or neither, and codes follow.
        std::map<std::pair<std::size_t, TbSquare>, int> plain;  // moves; lost ones below 0
        std::vector<Code> codes;
        for_each_passed_pawn(scene, slab, [&](const SlowPosition& position, std::size_t man) {
            const auto after = after_double_step(position, man);
            if (!slow_legal(position) || !after) return;
            codes.push_back(
                {scene.code_of(position, man), scene.layout_.place_of(position), *after});
            plain.emplace(std::pair{codes.back().plain.word, codes.back().plain.square},
                          static_cast<int>(random() % (3 * most_moves)) - 2 * most_moves);
        });
        std::map<std::pair<std::size_t, TbSquare>, int> found;
        for (int moves = 1; moves <= most_moves + 2; ++moves) {
            for (const bool is_win : {true, false}) {
                std::vector<SquareSet> words(scene.layout_.endgame().slab_words());
                for (const auto& [place, when] : plain) {
                    words[place.first] |=
                        when == (is_win ? moves : -moves) ? square_bit(place.second) : SquareSet{0};
                }
                const std::vector<SquareSet> before = words;
                const bool any =
                    is_win ? scene.codes_.add_won(slab, moves, words.data(), scene.writer_)
                           : scene.codes_.add_lost(slab, moves, words.data(), scene.writer_);
                EXPECT_EQ(any, words != before);
                for (const Code& code : codes) {
                    if ((words[code.place.word] & square_bit(code.place.square)) != 0) {
                        const bool is_new =
                            found
                                .emplace(std::pair{code.place.word, code.place.square},
                                         is_win ? moves : -moves)
                                .second;
                        EXPECT_TRUE(is_new) << "a code is decided once";
                    }
                }
            }
        }
        for (const Code& code : codes) {
            Value capture = not_reachable;
            bool is_pinned = false;
            for (const SlowMove& move : slow_moves(code.position)) {
                const bool is_capture = move.moved < code.position.men.size() &&
                                        move.after.men.size() < code.position.men.size() &&
                                        move.after.men[0].square == code.position.en_passant;
                if (!is_capture) continue;
                is_pinned = !move.is_legal;
                capture = tables.value_behind(code.position, move);
            }
            if (is_pinned && GetParam().is_made_up) continue;  // has a made-up value all the same
            const int when = plain.at({code.plain.word, code.plain.square});
            int expected = 0;
            for (int moves = 1; moves <= most_moves + 2 && expected == 0; ++moves) {
                if (when == moves || (capture < drawn && capture == mated_in(moves - 1))) {
                    expected = capture == not_reachable && when != moves ? 0 : moves;
                }
                const bool capture_loses =
                    capture == not_reachable || (capture > drawn && capture >= mates_in(moves));
                if (expected == 0 && when < 0 && -when <= moves && capture_loses) {
                    expected = -moves;
                }
            }
            const auto at = found.find({code.place.word, code.place.square});
            EXPECT_EQ(at == found.end() ? 0 : at->second, expected)
                << "plain " << when << " capture " << int{capture};
            won += expected > 0 ? 1 : 0;
            lost += expected < 0 ? 1 : 0;
        }
    }
    EXPECT_GT(won, slabs_a_table);
    // Whoever has captured has the only pawn, and the other side does not win.
    EXPECT_GT(lost, GetParam().is_made_up ? slabs_a_table : -1);
}

INSTANTIATE_TEST_SUITE_P(BothSides, EnPassantTest,
                         testing::Values(Parameter{0, false}, Parameter{1, false},
                                         Parameter{0, true}, Parameter{1, true}));

TEST(EnPassant, TablesWithPawnsOfOneSideHaveNoCodes) {
    tb_build_enumeration();
    const EndgameLayout layout("kppk");
    EnPassant codes(layout.endgame(), layout.pairs(), 1);
    PositionSet open = layout.empty_set();
    HalfWriter writer(layout.endgame(), layout.pairs(), 1);
    codes.begin(0, {}, open, open, writer);
    std::vector<SquareSet> words(layout.endgame().slab_words(), all_squares);
    EXPECT_FALSE(codes.add_won(0, 1, words.data(), writer));
    EXPECT_FALSE(codes.add_lost(0, 1, words.data(), writer));
}

// Kings, White's pawn, Black's pawn; Black is to move and may capture.
TEST(EnPassant, PawnThatHasPassedAnEnemyPawn) {
    Scene scene("kpkp", 1, all_drawn);
    EXPECT_TRUE(scene.is_reached("a1 h8 e4 d4", 0));
    EXPECT_TRUE(scene.is_reached("a1 h8 a4 b4", 0));
    EXPECT_TRUE(scene.is_reached("a1 h8 h4 g4", 0));
    EXPECT_FALSE(scene.is_reached("a1 h8 e4 c4", 0)) << "nobody stands beside";
    EXPECT_FALSE(scene.is_reached("a1 h8 h4 a5", 0)) << "not round the board";
}

TEST(EnPassant, DoubleStepThatAKingStandsInTheWayOf) {
    Scene scene("kpkp", 1, all_drawn);
    EXPECT_FALSE(scene.is_reached("c3 e3 e4 d4", 0)) << "on the square passed over";
    EXPECT_FALSE(scene.is_reached("c1 e3 e4 d4", 0)) << "on the square passed over";
    EXPECT_FALSE(scene.is_reached("a1 e2 e4 d4", 0)) << "on the start";
    EXPECT_FALSE(scene.is_reached("b2 h8 b4 c4", 0)) << "on the start";
    EXPECT_TRUE(scene.is_reached("c2 h8 b4 c4", 0));
}

TEST(EnPassant, DoubleStepOfASideThatHadGivenCheck) {
    Scene scene("kpkp", 1, all_drawn);
    // On e2 the pawn would have attacked the king on d3 or f3 with its own side to move.
    EXPECT_FALSE(scene.is_reached("a1 d3 e4 d4", 0));
    EXPECT_FALSE(scene.is_reached("a1 f3 e4 d4", 0));
    EXPECT_TRUE(scene.is_reached("a1 g3 e4 d4", 0));
    // The pawn that passed gives check from e4: that is what a move may do.
    EXPECT_TRUE(scene.is_reached("a1 f5 e4 d4", 0));
}

TEST(EnPassant, CaptureThatIsTheOnlyMove) {
    // Without the right to capture it is a stalemate; with it the capture decides.
    for (const auto& [behind, expected] :
         {std::pair{mates_in(9), 9}, std::pair{drawn, -1}, std::pair{mated_in(3), -1}}) {
        Scene scene("kpkp", 1, [value = behind](std::int32_t row, std::int32_t half) {
            std::optional<Bytes> bytes = all_drawn(row, half);
            std::fill(bytes->begin(), bytes->end(), static_cast<std::uint8_t>(value));
            return bytes;
        });
        const SlowPosition at = scene.position("b3 a1 c4 d4");
        const LayoutPlace plain = scene.layout_.place_of(at);
        scene.begin(plain.slab);
        ASSERT_TRUE(scene.code_of(at, 0).is_in(scene.open_));
        std::vector<SquareSet> words(64);
        scene.codes_.note_stalemates(plain.slab, plain.word, square_bit(plain.square));
        int lost_in = -1;
        for (int moves = 0; moves <= longest_told && lost_in < 0; ++moves) {
            const bool any = scene.codes_.add_lost(plain.slab, moves, words.data(), scene.writer_);
            lost_in = any ? moves : -1;
        }
        EXPECT_EQ(lost_in, expected);
    }
}

TEST(EnPassant, StalemateWithoutACaptureStaysADraw) {
    // The capture would leave the king attacked: it has no value.
    Scene scene("kpkp", 1, [](std::int32_t row, std::int32_t half) {
        std::optional<Bytes> bytes = all_drawn(row, half);
        std::fill(bytes->begin(), bytes->end(), static_cast<std::uint8_t>(not_reachable));
        return bytes;
    });
    const SlowPosition at = scene.position("b3 a1 c4 d4");
    const LayoutPlace plain = scene.layout_.place_of(at);
    scene.begin(plain.slab);
    std::vector<SquareSet> words(64);
    scene.codes_.note_stalemates(plain.slab, plain.word, square_bit(plain.square));
    for (int moves = 0; moves <= longest_told; ++moves) {
        EXPECT_FALSE(scene.codes_.add_lost(plain.slab, moves, words.data(), scene.writer_));
    }
}

TEST(EnPassant, MateOnTheBoardUnlessTheCaptureHelps) {
    Scene no_help("kpkp", 1, [](std::int32_t row, std::int32_t half) {
        std::optional<Bytes> bytes = all_drawn(row, half);
        std::fill(bytes->begin(), bytes->end(), static_cast<std::uint8_t>(not_reachable));
        return bytes;
    });
    Scene helps("kpkp", 1, all_drawn);
    for (Scene* scene : {&no_help, &helps}) {
        const SlowPosition at = scene->position("a1 f5 e4 d4");
        const LayoutPlace plain = scene->layout_.place_of(at);
        const LayoutPlace code = scene->code_of(at, 0);
        scene->begin(plain.slab);
        std::vector<SquareSet> lost(64);
        lost[plain.word] = square_bit(plain.square);
        const bool any = scene->codes_.add_lost(plain.slab, 0, lost.data(), scene->writer_);
        EXPECT_EQ(any, scene == &no_help);
        EXPECT_EQ((lost[code.word] & square_bit(code.square)) != 0, scene == &no_help);
    }
}

TEST(EnPassant, ValuesAreWrittenWhereTheEngineLooks) {
    Scene scene("kpkp", 1, all_drawn);
    const SlowPosition at = scene.position("a1 h8 e4 d4");
    const LayoutPlace plain = scene.layout_.place_of(at);
    scene.begin(plain.slab);
    std::vector<SquareSet> won(64);
    won[plain.word] = square_bit(plain.square);
    EXPECT_TRUE(scene.codes_.add_won(plain.slab, 12, won.data(), scene.writer_));
    EXPECT_FALSE(scene.codes_.add_won(plain.slab, 13, won.data(), scene.writer_));
    const Bytes bytes = scene.writer_.take_bytes();
    SlowTables tables([&](std::int32_t, std::int32_t) { return std::optional(bytes); });
    SlowPosition with_right = at;
    with_right.en_passant = named_square("e3");
    EXPECT_EQ(tables.value(with_right), mates_in(12));
    SlowPosition undecided = scene.position("a1 h8 c4 d4");
    undecided.en_passant = named_square("c3");
    EXPECT_EQ(tables.value(undecided), drawn);
}

}  // namespace
