// SPDX-License-Identifier: MIT
// Lengths of code words: complete, the cheapest there are, and within the limit.
#include "emd/huffman.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <queue>
#include <vector>

#include "support/packed_file.h"

namespace {

using Counts = std::vector<std::uint64_t>;
using Lengths = std::vector<std::uint8_t>;

/// How much of all bit patterns the words use up, in parts of 2^-31.
std::uint64_t used_patterns(const Lengths& lengths) {
    std::uint64_t used = 0;
    for (const std::uint8_t length : lengths) {
        used += length > 0 ? std::uint64_t{1} << (31U - length) : 0;
    }
    return used;
}

constexpr std::uint64_t all_patterns = std::uint64_t{1} << 31U;

std::uint64_t cost_of(const Counts& counts, const Lengths& lengths) {
    std::uint64_t cost = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        cost += counts[i] * lengths[i];
    }
    return cost;
}

/// Cost of the best code without a limit: each joining of the two rarest adds their weight.
std::uint64_t joined_cost(const Counts& counts) {
    std::priority_queue<std::uint64_t, Counts, std::greater<>> weights;
    for (const std::uint64_t count : counts) {
        if (count > 0) {
            weights.push(count);
        }
    }
    std::uint64_t cost = 0;
    while (weights.size() > 1) {
        std::uint64_t joined = weights.top();
        weights.pop();
        joined += weights.top();
        weights.pop();
        cost += joined;
        weights.push(joined);
    }
    return cost;
}

/// The cheapest complete code whose words have at most `longest` bits, found by trying how many
/// words have each length. `counts` fall; `open` is how many words of this length are still free.
std::uint64_t tried_cost(const Counts& counts, std::size_t from, std::uint64_t open,
                         unsigned length, unsigned longest) {
    if (from == counts.size()) {
        return open == 0 ? 0 : UINT64_MAX;
    }
    if (length > longest || open == 0 || open > counts.size() - from) {
        return UINT64_MAX;
    }
    std::uint64_t best = UINT64_MAX;
    std::uint64_t cost = 0;
    for (std::size_t taken = 0; taken <= open; ++taken) {
        const std::uint64_t rest =
            tried_cost(counts, from + taken, 2 * (open - taken), length + 1, longest);
        if (rest != UINT64_MAX) {
            best = std::min(best, cost + rest);
        }
        if (from + taken < counts.size()) {
            cost += counts[from + taken] * length;
        }
    }
    return best;
}

Counts fibonacci_counts(std::size_t size) {
    Counts counts(size, 1);
    for (std::size_t i = 2; i < size; ++i) {
        counts[i] = counts[i - 1] + counts[i - 2];
    }
    return counts;
}

TEST(Huffman, NoSymbolHasNoWord) {
    EXPECT_EQ(emd_huffman_lengths(Counts(5), 31), Lengths(5));
    EXPECT_EQ(emd_huffman_lengths(Counts{}, 31), Lengths{});
}

TEST(Huffman, OneSymbolAloneHasTheLengthOne) {
    EXPECT_EQ(emd_huffman_lengths(Counts{0, 0, 7, 0}, 31), (Lengths{0, 0, 1, 0}));
    EXPECT_EQ(emd_huffman_lengths(Counts{7}, 1), (Lengths{1}));
}

TEST(Huffman, SmallCodes) {
    EXPECT_EQ(emd_huffman_lengths(Counts{1, 1}, 31), (Lengths{1, 1}));
    EXPECT_EQ(emd_huffman_lengths(Counts{1, 0, 1000000}, 31), (Lengths{1, 0, 1}));
    EXPECT_EQ(emd_huffman_lengths(Counts{1, 1, 2, 4}, 31), (Lengths{3, 3, 2, 1}));
    EXPECT_EQ(emd_huffman_lengths(Counts{4, 2, 1, 1}, 31), (Lengths{1, 2, 3, 3}));
    EXPECT_EQ(emd_huffman_lengths(Counts{5, 5, 5, 5}, 31), (Lengths{2, 2, 2, 2}));
    EXPECT_EQ(emd_huffman_lengths(Counts{1, 1, 2, 4}, 2), (Lengths{2, 2, 2, 2}));
}

TEST(Huffman, EqualCountsMakeShortWords) {
    // The pair of the rare ones weighs as much as each of the others. Those join with each other.
    const Lengths lengths = emd_huffman_lengths(Counts{2, 1, 1, 2}, 31);
    EXPECT_EQ(*std::max_element(lengths.begin(), lengths.end()), 2);
}

TEST(Huffman, RandomCountsMakeTheCheapestCompleteCode) {
    PackRandom random(20);
    int codes = 0;
    int limited = 0;
    for (int i = 0; i < 200; ++i) {
        Counts counts(2 + random_below(random, 1023));
        for (std::uint64_t& count : counts) {
            count = random_below(random, 3) == 0 ? 0 : random() >> random_below(random, 32);
        }
        counts[0] = 1;
        counts[1] = 2;
        const std::uint64_t least = joined_cost(counts);
        ASSERT_EQ(cost_of(counts, emd_huffman_lengths(counts, 60)), least) << i;
        const Lengths lengths = emd_huffman_lengths(counts, 31);
        ASSERT_EQ(used_patterns(lengths), all_patterns) << i;
        ASSERT_GE(cost_of(counts, lengths), least) << i;
        for (std::size_t symbol = 0; symbol < counts.size(); ++symbol) {
            ASSERT_EQ(lengths[symbol] > 0, counts[symbol] > 0) << i << ' ' << symbol;
        }
        limited += cost_of(counts, lengths) > least ? 1 : 0;
        ++codes;
    }
    EXPECT_EQ(codes, 200);
    EXPECT_GT(limited, 10);
}

TEST(Huffman, WordsWithinALimitAreTheCheapestOfThem) {
    PackRandom random(21);
    int codes = 0;
    for (const unsigned longest : {3U, 4U, 5U, 6U}) {
        for (int i = 0; i < 30; ++i) {
            Counts counts(2 + random_below(random, 7));
            for (std::uint64_t& count : counts) {
                count = 1 + (random() >> random_below(random, 32));
            }
            std::sort(counts.begin(), counts.end(), std::greater<>());
            const Lengths lengths = emd_huffman_lengths(counts, longest);
            ASSERT_EQ(used_patterns(lengths), all_patterns);
            ASSERT_LE(*std::max_element(lengths.begin(), lengths.end()), longest);
            ASSERT_EQ(cost_of(counts, lengths), tried_cost(counts, 0, 2, 1, longest));
            ++codes;
        }
    }
    EXPECT_EQ(codes, 120);
}

TEST(Huffman, LimitsOfALongCode) {
    const Counts counts = fibonacci_counts(40);
    const Lengths free = emd_huffman_lengths(counts, 39);
    EXPECT_EQ(*std::max_element(free.begin(), free.end()), 39);
    std::uint64_t last_cost = cost_of(counts, free);
    for (const unsigned longest : {31U, 20U, 13U, 8U, 6U}) {
        const Lengths lengths = emd_huffman_lengths(counts, longest);
        EXPECT_EQ(*std::max_element(lengths.begin(), lengths.end()), longest);
        EXPECT_EQ(used_patterns(lengths), all_patterns);
        EXPECT_GT(cost_of(counts, lengths), last_cost);
        last_cost = cost_of(counts, lengths);
    }
}

TEST(Huffman, AsManySymbolsAsTheLimitAllows) {
    EXPECT_EQ(emd_huffman_lengths(fibonacci_counts(32), 5), Lengths(32, 5));
    EXPECT_EQ(emd_huffman_lengths(fibonacci_counts(64), 6), Lengths(64, 6));
}

}  // namespace
