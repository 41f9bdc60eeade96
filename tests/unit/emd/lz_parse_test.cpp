// SPDX-License-Identifier: MIT
// Paths through blocks: they give the block again, cost what they are said to cost, and hardly ever
// more than the best of all paths.
#include "emd/lz_parse.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "support/packed_file.h"

namespace {

using Steps = std::vector<EmdStep>;

/// Whether the steps are these; a test that shows them where they are not.
void expect_steps(const Steps& steps, const Steps& expected) {
    EXPECT_EQ(steps.size(), expected.size());
    for (std::size_t i = 0; i < std::min(steps.size(), expected.size()); ++i) {
        EXPECT_TRUE(steps[i] == expected[i])
            << "step " << i << ": length " << steps[i].length << ", slot " << int{steps[i].slot}
            << ", class " << int{steps[i].length_class};
    }
}

/// Costs in bits of some symbols; the others cannot be written.
EmdCosts costs_of(std::initializer_list<std::pair<std::size_t, std::uint32_t>> symbols) {
    EmdCosts costs;
    costs.fill(emd_unreachable);
    for (const auto& [symbol, bits] : symbols) {
        costs[symbol] = bits * emd_bit_cost;
    }
    return costs;
}

PackBytes text(std::string_view letters) {
    return {letters.begin(), letters.end()};
}

/// The distances of the first slots.
EmdDistances distances_of(std::initializer_list<std::uint32_t> distances) {
    EmdDistances all{};
    std::copy(distances.begin(), distances.end(), all.begin());
    return all;
}

std::uint32_t cost_of_step(const EmdStep& step, std::uint8_t byte, const EmdCosts& costs) {
    return costs[emd_symbol_of(step, byte)] +
           (step.is_literal() ? 0 : emd_extra_bits(step.length_class) * emd_bit_cost);
}

/// Follows a path, which must be one of the block from `begin` on; gives its cost.
std::uint32_t follow(const PackBytes& block, std::size_t begin, const EmdDistances& distances,
                     const EmdCosts& costs, const Steps& steps) {
    std::size_t at = begin;
    std::uint32_t cost = 0;
    for (const EmdStep& step : steps) {
        cost += cost_of_step(step, block[at], costs);
        if (!step.is_literal()) {
            const std::size_t distance = distances[step.slot];
            EXPECT_GT(distance, 0U);
            EXPECT_LE(distance, at);
            for (std::size_t i = at; i < at + step.length; ++i) {
                EXPECT_EQ(block[i], block[i - distance]);
            }
            const std::uint32_t longest = emd_longest_of(step.length_class);
            EXPECT_LE(step.length, longest);
            EXPECT_TRUE(step.length >= emd_shortest_of(step.length_class) ||
                        at + step.length == block.size());
        }
        at += step.length;
    }
    EXPECT_EQ(at, block.size());
    return cost;
}

/// The cheapest cost, by trying every slot, length and class at every place.
std::uint32_t least_cost(const PackBytes& block, std::size_t begin, const EmdDistances& distances,
                         const EmdCosts& costs) {
    std::vector<std::uint32_t> rest(block.size() + 1, 0);
    for (std::size_t at = block.size(); at-- > begin;) {
        std::uint32_t best = costs[block[at]] + rest[at + 1];
        for (std::uint8_t slot = 0; slot < emd_slots; ++slot) {
            const std::size_t distance = distances[slot];
            for (std::uint32_t length = 1; at + length <= block.size(); ++length) {
                const std::size_t last = at + length - 1;
                if (distance == 0 || distance > at || block[last] != block[last - distance]) {
                    break;
                }
                for (unsigned c = emd_class_of(length); c < emd_length_classes; ++c) {
                    const EmdStep step{length, slot, static_cast<std::uint8_t>(c)};
                    best = std::min(best, cost_of_step(step, 0, costs) + rest[at + length]);
                    if (at + length < block.size()) {
                        break;  // only the last match may be of a class that is too long
                    }
                }
            }
        }
        rest[at] = std::min(best, emd_unreachable);
    }
    return rest[begin];
}

EmdCosts random_costs(PackRandom& random) {
    EmdCosts costs;
    for (std::uint32_t& cost : costs) {
        cost = random_below(random, 8) == 0
                   ? emd_unreachable
                   : static_cast<std::uint32_t>(1 + random_below(random, 16 * emd_bit_cost));
    }
    for (std::size_t byte = 0; byte < emd_literals; ++byte) {
        costs[byte] = static_cast<std::uint32_t>(1 + random_below(random, 12 * emd_bit_cost));
    }
    return costs;
}

EmdDistances random_distances(PackRandom& random, std::size_t below) {
    EmdDistances distances{};
    for (std::uint32_t& distance : distances) {
        distance = static_cast<std::uint32_t>(random_below(random, below));
    }
    return distances;
}

TEST(LzParse, LiteralsWhereNothingMatches) {
    const EmdCosts costs = costs_of({{'a', 2}, {'b', 3}, {'c', 1}, {emd_match_symbol(0, 0), 1}});
    const EmdPath path = EmdParser(distances_of({1}), costs).parse(text("abc"), 0);
    expect_steps(path.steps, {{}, {}, {}});
    EXPECT_EQ(path.cost, 6 * emd_bit_cost);
}

TEST(LzParse, AMatchThatCostsMoreIsNotTaken) {
    const PackBytes block = text("aaaa");
    const EmdDistances distances = distances_of({1});
    const auto parse = [&](std::uint32_t match_bits) {
        return EmdParser(distances, costs_of({{'a', 2}, {emd_match_symbol(0, 2), match_bits}}))
            .parse(block, 0);
    };
    expect_steps(parse(5).steps, {{}, {3, 0, 2}});
    EXPECT_EQ(parse(5).cost, 7 * emd_bit_cost);
    expect_steps(parse(7).steps, {{}, {}, {}, {}});
    EXPECT_EQ(parse(7).cost, 8 * emd_bit_cost);
}

TEST(LzParse, TheCheapestSlotOfThoseThatMatch) {
    // "ab" again and again matches at 2 and 4, from the fifth letter on at both.
    const PackBytes block = text("ababababX");
    const EmdDistances distances = distances_of({4, 2});
    EmdCosts costs = costs_of({{'a', 9},
                               {'b', 9},
                               {'X', 9},
                               {emd_match_symbol(0, 3), 2},
                               {emd_match_symbol(1, 1), 3},
                               {emd_match_symbol(1, 3), 4}});
    expect_steps(EmdParser(distances, costs).parse(block, 0).steps,
                 {{}, {}, {2, 1, 1}, {4, 0, 3}, {}});
    costs[emd_match_symbol(1, 5)] = emd_bit_cost;
    expect_steps(EmdParser(distances, costs).parse(block, 0).steps, {{}, {}, {6, 1, 5}, {}});
}

TEST(LzParse, SlotsOfAllThreePartsOfASet) {
    PackRandom random(11);
    const PackBytes block = periodic_bytes(random, 100, 40);
    for (const std::uint8_t slot : PackBytes{0, 7, 8, 15, 16, 23}) {
        EmdCosts costs = random_costs(random);
        std::fill(costs.begin() + emd_literals, costs.end(), emd_unreachable);
        costs[emd_match_symbol(slot, 9)] = 1;
        EmdDistances distances{};
        distances[slot] = 40;
        const Steps steps = EmdParser(distances, costs).parse(block, 0).steps;
        EXPECT_EQ(std::count(steps.begin(), steps.end(), EmdStep{10, slot, 9}), 6);
    }
}

TEST(LzParse, AMatchMayOverlapItself) {
    const EmdCosts costs = costs_of({{'a', 8}, {'b', 8}, {'X', 8}, {emd_match_symbol(0, 15), 4}});
    const EmdPath path = EmdParser(distances_of({2}), costs).parse(text("abababababababababaX"), 0);
    expect_steps(path.steps, {{}, {}, {17, 0, 15}, {}});
}

TEST(LzParse, NoMatchBeginsBeforeTheBlock) {
    const EmdCosts costs = costs_of({{'a', 30}, {emd_match_symbol(0, 0), 1}});
    EXPECT_EQ(EmdParser(distances_of({4}), costs).parse(text("aaaaa"), 0).steps.size(), 5U);
    expect_steps(EmdParser(distances_of({4}), costs).parse(text("aaaaa"), 0).steps,
                 {{}, {}, {}, {}, {1, 0, 0}});
}

TEST(LzParse, APathMayBeginWithinTheBlock) {
    const EmdCosts costs =
        costs_of({{'a', 8}, {'b', 8}, {'c', 8}, {'X', 8}, {emd_match_symbol(0, 2), 4}});
    expect_steps(EmdParser(distances_of({3}), costs).parse(text("abcabcX"), 3).steps,
                 {{3, 0, 2}, {}});
    expect_steps(EmdParser(distances_of({3}), costs).parse(text("abcabcX"), 5).steps, {{}, {}});
}

TEST(LzParse, TheLastMatchMayRunPastTheEnd) {
    const PackBytes block = text("abcabcab");
    const EmdDistances distances = distances_of({3});
    for (const std::uint8_t length_class : PackBytes{4, 5, 14, 15, 22, 30, 31}) {
        const EmdCosts costs =
            costs_of({{'a', 20}, {'b', 20}, {'c', 20}, {emd_match_symbol(0, length_class), 4}});
        const EmdPath path = EmdParser(distances, costs).parse(block, 0);
        expect_steps(path.steps, {{}, {}, {}, {5, 0, length_class}});
        EXPECT_EQ(path.cost, (64 + emd_extra_bits(length_class)) * emd_bit_cost);
    }
    // A short class may go as far as it reaches, and run past the end in a second match.
    const EmdCosts costs = costs_of({{'a', 20},
                                     {'b', 20},
                                     {'c', 20},
                                     {emd_match_symbol(0, 3), 4},
                                     {emd_match_symbol(0, 9), 9}});
    expect_steps(EmdParser(distances, costs).parse(block, 0).steps,
                 {{}, {}, {}, {4, 0, 3}, {1, 0, 3}});
}

TEST(LzParse, LongMatchesAtTheirFullLengthOrThatOfAShorterClass) {
    PackBytes block(1 + 100, 'a');
    block.push_back('X');
    const auto full = static_cast<std::uint8_t>(emd_class_of(100));
    const EmdDistances distances = distances_of({1});
    const auto parse = [&](std::uint8_t length_class, std::uint8_t other_class) {
        return EmdParser(distances, costs_of({{'a', 9},
                                              {'X', 9},
                                              {emd_match_symbol(0, length_class), 1},
                                              {emd_match_symbol(0, other_class), 1}}))
            .parse(block, 0);
    };
    expect_steps(parse(full, 3).steps, {{}, {100, 0, full}, {}});
    // 26 bytes cost two bits in the short class, and the rest six in the long one.
    const auto below = static_cast<std::uint8_t>(full - 1);
    const EmdPath path = parse(below, 12);
    const auto of_class = [](const EmdPath& of, std::uint8_t length_class) {
        return std::count_if(of.steps.begin(), of.steps.end(), [&](const EmdStep& step) {
            return !step.is_literal() && step.length_class == length_class;
        });
    };
    EXPECT_EQ(of_class(path, below), 1);
    EXPECT_EQ(of_class(path, 12), 2);
    EXPECT_EQ(path.cost, (9 + 2 + 6 + 9) * emd_bit_cost);
    // Classes between may be without a word.
    const auto far_below = static_cast<std::uint8_t>(full - 4);
    EXPECT_EQ(of_class(parse(far_below, far_below), far_below), 4);
}

TEST(LzParse, ABlockThatCannotBeWritten) {
    const EmdParser parser(distances_of({1}), costs_of({{'a', 1}, {emd_match_symbol(0, 0), 1}}));
    EXPECT_EQ(parser.parse(text("aab"), 0).cost, emd_unreachable);
    EXPECT_EQ(parser.parse(text("aaa"), 0).cost, 3 * emd_bit_cost);
    EXPECT_EQ(parser.parse(PackBytes(65536, 'b'), 0).cost, emd_unreachable);
}

TEST(LzParse, ShortBlocksTakeTheBestOfAllPaths) {
    PackRandom random(12);
    int blocks = 0;
    std::size_t matches = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::size_t size = 1 + random_below(random, 16);
        const PackBytes block = random_bytes(random, size, 1 + random_below(random, 4));
        const std::size_t begin = random_below(random, size);
        const EmdCosts costs = random_costs(random);
        const EmdDistances distances = random_distances(random, 1 + size);
        const EmdPath path = EmdParser(distances, costs).parse(block, begin);
        ASSERT_EQ(follow(block, begin, distances, costs, path.steps), path.cost) << i;
        ASSERT_EQ(path.cost, least_cost(block, begin, distances, costs)) << i;
        matches += static_cast<std::size_t>(std::count_if(
            path.steps.begin(), path.steps.end(), [](auto step) { return !step.is_literal(); }));
        ++blocks;
    }
    EXPECT_EQ(blocks, 3000);
    EXPECT_GT(matches, 3000U);
}

TEST(LzParse, LongerBlocksTakeNearlyTheBest) {
    PackRandom random(13);
    std::uint64_t cost = 0;
    std::uint64_t least = 0;
    for (int i = 0; i < 60; ++i) {
        const std::size_t size = 100 + random_below(random, 300);
        PackBytes block = periodic_bytes(random, size, 1 + random_below(random, 30));
        for (std::size_t faults = random_below(random, 10); faults > 0; --faults) {
            block[random_below(random, size)] = 0;
        }
        EmdCosts costs;
        costs.fill(10 * emd_bit_cost);
        for (std::size_t symbol = 0; symbol < emd_symbols; symbol += 3) {
            costs[symbol] =
                static_cast<std::uint32_t>((6 + random_below(random, 4))) * emd_bit_cost;
        }
        const EmdDistances distances = random_distances(random, 60);
        const EmdPath path = EmdParser(distances, costs).parse(block, 0);
        ASSERT_EQ(follow(block, 0, distances, costs, path.steps), path.cost) << i;
        const std::uint32_t best = least_cost(block, 0, distances, costs);
        ASSERT_GE(path.cost, best) << i;
        cost += path.cost;
        least += best;
    }
    EXPECT_LE(cost * 100, least * 101);
}

}  // namespace
