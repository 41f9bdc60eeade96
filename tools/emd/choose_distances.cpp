// SPDX-License-Identifier: MIT
// Greedy: the distance that saves most is taken, then the one that saves most of what is left. What
// a distance saves shrinks as others are taken, hardly ever grows; so only those are looked at anew
// whose last figure is above the best new one.
#include "emd/choose_distances.h"

#include <algorithm>
#include <queue>

namespace {

/// Cost of the part of a stretch in front of each place, and of all of it.
using CostSums = std::vector<std::uint64_t>;

/// What the bytes cost now; a match's cost is spread over its bytes.
CostSums cost_sums(const EmdStretch& stretch, const EmdParser& parser, const EmdCosts& costs) {
    CostSums sums{0};
    std::size_t at = stretch.begin;
    for (const EmdStep& step : parser.parse(stretch.block, stretch.begin).steps) {
        const std::uint64_t before = sums.back();
        const std::uint64_t cost =
            costs[emd_symbol_of(step, stretch.block[at])] +
            (step.is_literal() ? 0 : emd_extra_bits(step.length_class) * emd_bit_cost);
        for (std::uint32_t i = 1; i <= step.length; ++i) {
            sums.push_back(before + cost * i / step.length);
        }
        at += step.length;
    }
    return sums;
}

/// What matches cost, by their class; slots do not differ.
using MatchCosts = std::array<std::uint64_t, emd_length_classes>;

MatchCosts match_costs(const EmdCosts& costs) {
    MatchCosts matches;
    for (unsigned length_class = 0; length_class < emd_length_classes; ++length_class) {
        matches[length_class] =
            costs[emd_match_symbol(0, length_class)] + emd_extra_bits(length_class) * emd_bit_cost;
    }
    return matches;
}

/// What the matches of a distance would save on a stretch. Shorter ones than `least` save next to
/// nothing and are passed over, so that where nothing matches one byte in so many is looked at.
std::uint64_t saving(const EmdStretch& stretch, const CostSums& sums, std::size_t distance,
                     const MatchCosts& matches) {
    constexpr std::size_t least = 4;
    const std::uint8_t* const bytes = stretch.block.data();
    const std::size_t end = stretch.block.size();
    std::uint64_t saved = 0;
    std::size_t begin = std::max(stretch.begin, distance);  // a match may begin here
    while (begin + least <= end) {
        std::size_t first = begin + least;
        while (first > begin && bytes[first - 1] == bytes[first - 1 - distance]) {
            --first;
        }
        if (first > begin) {
            begin = first;
            continue;
        }
        std::size_t behind = begin + least;
        while (behind < end && bytes[behind] == bytes[behind - distance]) {
            ++behind;
        }
        const std::uint64_t now = sums[behind - stretch.begin] - sums[begin - stretch.begin];
        const std::uint64_t then =
            matches[emd_class_of(static_cast<std::uint32_t>(behind - begin))];
        saved += now > then ? now - then : 0;
        begin = behind + 1;
    }
    return saved;
}

struct Candidate {
    std::uint64_t saved = 0;
    std::size_t distance = 0;
    std::size_t round = 0;  ///< of choice, when `saved` was found

    bool operator<(const Candidate& other) const {
        return saved != other.saved ? saved < other.saved : distance > other.distance;
    }
};

class DistanceChoice {
  public:
    DistanceChoice(std::span<const EmdStretch> stretches, const EmdCosts& costs)
        : stretches_(stretches), costs_(costs), matches_(match_costs(costs)) {}

    EmdDistances choose(std::size_t block_size) {
        spread_costs();
        for (std::size_t distance = 1; distance < block_size; ++distance) {
            candidates_.push({saved_by(distance), distance, 0});
        }
        while (chosen_ < emd_slots && !candidates_.empty() && candidates_.top().saved > 0) {
            Candidate best = candidates_.top();
            candidates_.pop();
            if (best.round == chosen_) {
                distances_[chosen_++] = static_cast<std::uint32_t>(best.distance);
                spread_costs();
            } else {
                best.saved = saved_by(best.distance);
                best.round = chosen_;
                candidates_.push(best);
            }
        }
        std::sort(distances_.begin(), distances_.begin() + static_cast<std::ptrdiff_t>(chosen_));
        return distances_;
    }

  private:
    void spread_costs() {
        sums_.clear();
        const EmdParser parser(distances_, costs_);
        for (const EmdStretch& stretch : stretches_) {
            sums_.push_back(cost_sums(stretch, parser, costs_));
        }
    }

    [[nodiscard]] std::uint64_t saved_by(std::size_t distance) const {
        std::uint64_t saved = 0;
        for (std::size_t i = 0; i < stretches_.size(); ++i) {
            saved += saving(stretches_[i], sums_[i], distance, matches_);
        }
        return saved;
    }

    std::span<const EmdStretch> stretches_;
    const EmdCosts& costs_;
    MatchCosts matches_;
    std::vector<CostSums> sums_;
    std::priority_queue<Candidate> candidates_;
    EmdDistances distances_{};
    std::size_t chosen_ = 0;
};

}  // namespace

std::vector<EmdStretch> emd_stretches(std::span<const std::uint8_t> bytes, std::size_t block_size,
                                      std::size_t most_compared) {
    // A byte is compared with all before it in its block.
    constexpr std::size_t stretch_size = 1024;
    std::vector<EmdStretch> stretches;
    if (bytes.size() * (std::min(bytes.size(), block_size) / 2) <= most_compared) {
        for (std::size_t at = 0; at < bytes.size(); at += block_size) {
            stretches.push_back({bytes.subspan(at, std::min(block_size, bytes.size() - at)), 0});
        }
        return stretches;
    }
    const std::size_t count =
        std::max<std::size_t>(1, most_compared / (stretch_size * (block_size / 2)));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = bytes.size() / count * i;
        const std::size_t block_at = at / block_size * block_size;
        const std::size_t end = std::min({at + stretch_size, block_at + block_size, bytes.size()});
        stretches.push_back({bytes.subspan(block_at, end - block_at), at - block_at});
    }
    return stretches;
}

EmdDistances emd_choose_distances(std::span<const EmdStretch> stretches, std::size_t block_size,
                                  const EmdCosts& costs) {
    return DistanceChoice(stretches, costs).choose(block_size);
}
