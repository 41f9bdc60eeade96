// SPDX-License-Identifier: MIT
// From the end of the block backwards: what the rest costs is known at each place, and at each slot
// how long a match could be. A match of 15 bytes or fewer is tried at every length; a longer one at
// its full length and at the longest of the next class below, since a byte more in the same class
// hardly ever costs anything.
#include "emd/lz_parse.h"

#include <algorithm>

namespace {

constexpr unsigned slot_bits = 5;
constexpr std::uint32_t slot_mask = (1U << slot_bits) - 1;
constexpr std::uint32_t no_slot = emd_unreachable << slot_bits;

}  // namespace

std::size_t emd_symbol_of(const EmdStep& step, std::uint8_t byte) {
    return step.is_literal() ? byte : emd_match_symbol(step.slot, step.length_class);
}

EmdParser::EmdParser(const EmdDistances& distances, const EmdCosts& costs)
    : distances_(distances), costs_(costs) {
    for (unsigned length_class = 0; length_class < emd_longest_plain; ++length_class) {
        for (std::size_t part = 0; part < mask_parts; ++part) {
            auto& cheapest = cheapest_plain_[length_class][part];
            cheapest[0] = no_slot;
            for (std::uint32_t set = 1; set < part_values; ++set) {
                const auto low = static_cast<std::size_t>(std::countr_zero(set));
                const std::size_t slot = part * part_bits + low;
                const std::uint32_t packed =
                    cost_of(slot, length_class) << slot_bits | static_cast<std::uint32_t>(slot);
                cheapest[set] = std::min(packed, cheapest[set & (set - 1)]);
            }
        }
    }
    for (std::size_t slot = 0; slot < emd_slots; ++slot) {
        auto best = static_cast<std::uint8_t>(emd_length_classes - 1);
        for (unsigned length_class = emd_length_classes; length_class-- > 0;) {
            if (cost_of(slot, length_class) < cost_of(slot, best)) {
                best = static_cast<std::uint8_t>(length_class);
            }
            class_past_end_[slot][length_class] = best;
        }
        std::uint8_t below = 0;
        for (unsigned length_class = 0; length_class < emd_length_classes; ++length_class) {
            class_below_[slot][length_class] = below;
            if (cost_of(slot, length_class) < emd_unreachable) {
                below = static_cast<std::uint8_t>(length_class);
            }
        }
    }
}

std::uint32_t EmdParser::cost_of(std::size_t slot, unsigned length_class) const {
    const std::uint32_t symbol = costs_[emd_match_symbol(slot, length_class)];
    return std::min(symbol + emd_extra_bits(length_class) * emd_bit_cost, emd_unreachable);
}

/// One block while it is being parsed.
class EmdParser::Walk {
  public:
    Walk(const EmdParser& parser, std::span<const std::uint8_t> block, std::size_t begin)
        : parser_(parser),
          block_(block),
          begin_(begin),
          matching_(block.size() - begin),
          rest_(block.size() - begin + 1),
          choices_(block.size() - begin) {
        find_matching();
        longer_[0] = all_slots;
    }

    EmdPath walk() {
        for (at_ = block_.size(); at_-- > begin_;) {
            choice_ = {};
            cost_ = std::min(parser_.costs_[block_[at_]] + rest_at(at_ + 1), emd_unreachable);
            if (update_runs()) {
                try_plain();
                try_long(longer_.back());
                try_to_the_end();
            }
            rest_[at_ - begin_] = cost_;
            choices_[at_ - begin_] = choice_;
        }
        EmdPath path;
        path.cost = rest_[0];
        for (std::size_t i = 0; i < choices_.size(); i += choices_[i].length) {
            path.steps.push_back(choices_[i]);
        }
        return path;
    }

  private:
    static constexpr std::uint32_t all_slots = (1U << emd_slots) - 1;

    [[nodiscard]] std::uint32_t rest_at(std::size_t place) const { return rest_[place - begin_]; }

    void find_matching() {
        for (std::size_t slot = 0; slot < emd_slots; ++slot) {
            const std::size_t distance = parser_.distances_[slot];
            if (distance == 0) {
                continue;
            }
            const std::uint8_t* const target = block_.data();
            std::uint32_t* const matching = matching_.data();
            for (std::size_t at = std::max(begin_, distance); at < block_.size(); ++at) {
                matching[at - begin_] |= std::uint32_t{target[at] == target[at - distance]} << slot;
            }
        }
    }

    /// Lengthens or ends the match of each slot. False where none matches.
    bool update_runs() {
        const std::uint32_t matching = matching_[at_ - begin_];
        for (std::uint32_t fresh = matching & ~longer_[1]; fresh != 0; fresh &= fresh - 1) {
            run_end_[static_cast<std::size_t>(std::countr_zero(fresh))] = at_ + 1;
        }
        to_the_end_ &= matching;
        for (std::size_t length = longer_.size() - 1; length > 0; --length) {
            longer_[length] = longer_[length - 1] & matching;
        }
        return matching != 0;
    }

    void choose(std::uint32_t cost, std::size_t length, std::size_t slot, unsigned length_class) {
        if (cost < cost_) {
            cost_ = cost;
            choice_ = {static_cast<std::uint32_t>(length), static_cast<std::uint8_t>(slot),
                       static_cast<std::uint8_t>(length_class)};
        }
    }

    void try_plain() {
        constexpr std::uint32_t part_mask = part_values - 1;
        const std::uint32_t* const rest = rest_.data() + (at_ - begin_);
        for (unsigned length = 1; length <= emd_longest_plain && longer_[length] != 0; ++length) {
            const auto& cheapest = parser_.cheapest_plain_[length - 1];
            const std::uint32_t slots = longer_[length];
            const std::uint32_t best = std::min({cheapest[0][slots & part_mask],
                                                 cheapest[1][slots >> part_bits & part_mask],
                                                 cheapest[2][slots >> 2 * part_bits]});
            choose((best >> slot_bits) + rest[length], length, best & slot_mask, length - 1);
        }
    }

    void try_long(std::uint32_t slots) {
        for (; slots != 0; slots &= slots - 1) {
            const auto slot = static_cast<std::size_t>(std::countr_zero(slots));
            const std::size_t run = run_end_[slot] - at_;
            const unsigned length_class = emd_class_of(static_cast<std::uint32_t>(run));
            choose(parser_.cost_of(slot, length_class) + rest_at(at_ + run), run, slot,
                   length_class);
            const unsigned shorter_class = parser_.class_below_[slot][length_class];
            const std::size_t shorter = emd_longest_of(shorter_class);
            choose(parser_.cost_of(slot, shorter_class) + rest_at(at_ + shorter), shorter, slot,
                   shorter_class);
        }
    }

    /// Matches as far as the end of the block may run past it, and have a cheaper class there.
    void try_to_the_end() {
        const std::size_t length = block_.size() - at_;
        const unsigned least_class = emd_class_of(static_cast<std::uint32_t>(length));
        for (std::uint32_t slots = to_the_end_; slots != 0; slots &= slots - 1) {
            const auto slot = static_cast<std::size_t>(std::countr_zero(slots));
            const unsigned length_class = parser_.class_past_end_[slot][least_class];
            choose(parser_.cost_of(slot, length_class), length, slot, length_class);
        }
    }

    const EmdParser& parser_;
    std::span<const std::uint8_t> block_;
    std::size_t begin_;
    std::size_t at_ = 0;
    std::vector<std::uint32_t> matching_;  ///< slots whose byte is the same, of each place
    std::vector<std::uint32_t> rest_;      ///< cost from each place on
    std::vector<EmdStep> choices_;
    std::array<std::size_t, emd_slots> run_end_{};  ///< where the match of each slot ends
    std::array<std::uint32_t, emd_longest_plain + 2> longer_{};  ///< slots with that much at least
    std::uint32_t to_the_end_ = all_slots;  ///< slots whose match goes on to the end of the block
    std::uint32_t cost_ = 0;                ///< at the place, and its step
    EmdStep choice_;
};

EmdPath EmdParser::parse(std::span<const std::uint8_t> block, std::size_t begin) const {
    return Walk(*this, block, begin).walk();
}
