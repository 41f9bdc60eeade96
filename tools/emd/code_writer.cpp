// SPDX-License-Identifier: MIT
// Code words, and lengths packed with two small codes: one of lengths and one of runs. Both codes
// follow from what is to be written and decide how it is best written, so they are found twice.
#include "emd/code_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#include "emd/huffman.h"

namespace {

constexpr unsigned longest_word = 31;

// The coded form. A symbol of the length alphabet is a length, or a length that is repeated; then a
// symbol of the run alphabet tells how often.
constexpr std::size_t alphabet_size = 64;
constexpr std::uint8_t repeats = 32;
constexpr std::size_t shortest_run = 2;
constexpr std::size_t plain_runs = 32;  ///< runs that are a symbol each; longer ones have more bits

/// A length at a position, or at `run` positions in a row.
struct Piece {
    std::uint8_t length = 0;
    std::size_t run = 1;
};

struct RunSymbol {
    std::size_t symbol = 0;
    unsigned extra_bits = 0;
    std::uint32_t extra = 0;
};

RunSymbol run_symbol(std::size_t run) {
    if (run - shortest_run < plain_runs) {
        return {run - shortest_run, 0, 0};
    }
    const std::size_t beyond = run - shortest_run - plain_runs + 1;
    const auto extra_bits = static_cast<std::uint8_t>(std::bit_width(beyond) - 1);
    return {plain_runs + extra_bits, extra_bits,
            static_cast<std::uint32_t>(beyond - (std::size_t{1} << extra_bits))};
}

std::size_t length_symbol(const Piece& piece) {
    return piece.length + std::size_t{piece.run > 1 ? repeats : std::uint8_t{0}};
}

/// Bits that each symbol of the two alphabets costs.
struct Costs {
    std::array<unsigned, alphabet_size> lengths{};
    std::array<unsigned, alphabet_size> runs{};

    [[nodiscard]] unsigned of(const Piece& piece) const {
        const unsigned plain = lengths[length_symbol(piece)];
        if (piece.run == 1) {
            return plain;
        }
        const RunSymbol run = run_symbol(piece.run);
        return plain + runs[run.symbol] + run.extra_bits;
    }
};

/// The cheapest way to write the lengths, found from the end on. A run is tried as a whole, and the
/// beginning of it at every length that has a symbol of its own.
std::vector<Piece> cheapest_pieces(std::span<const std::uint8_t> lengths, const Costs& costs) {
    constexpr std::size_t longest_tried = plain_runs + shortest_run - 1;
    std::vector<unsigned> cost_from(lengths.size() + 1, 0);
    std::vector<std::size_t> best_run(lengths.size(), 1);
    std::size_t equal = 0;  // positions from here on with the same length
    for (std::size_t at = lengths.size(); at-- > 0;) {
        equal = at + 1 < lengths.size() && lengths[at] == lengths[at + 1] ? equal + 1 : 1;
        cost_from[at] = std::numeric_limits<unsigned>::max();
        const auto try_run = [&](std::size_t run) {
            const unsigned cost = costs.of({lengths[at], run}) + cost_from[at + run];
            if (cost < cost_from[at]) {
                cost_from[at] = cost;
                best_run[at] = run;
            }
        };
        for (std::size_t run = 1; run <= std::min(equal, longest_tried); ++run) {
            try_run(run);
        }
        try_run(equal);
    }
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at < lengths.size(); at += best_run[at]) {
        pieces.push_back({lengths[at], best_run[at]});
    }
    return pieces;
}

/// Lengths of the words of both alphabets, one behind the other.
std::vector<std::uint8_t> alphabets_for(std::span<const Piece> pieces, unsigned longest) {
    std::array<std::uint64_t, alphabet_size> length_counts{};
    std::array<std::uint64_t, alphabet_size> run_counts{};
    for (const Piece& piece : pieces) {
        ++length_counts[length_symbol(piece)];
        if (piece.run > 1) {
            ++run_counts[run_symbol(piece.run).symbol];
        }
    }
    std::vector<std::uint8_t> alphabets = emd_huffman_lengths(length_counts, longest);
    const std::vector<std::uint8_t> runs = emd_huffman_lengths(run_counts, longest);
    alphabets.insert(alphabets.end(), runs.begin(), runs.end());
    return alphabets;
}

/// Costs by the alphabets' lengths. A symbol without a word may still pay: in the next round it
/// has one.
Costs costs_of(std::span<const std::uint8_t> alphabets) {
    constexpr unsigned cost_of_new = 9;
    const auto cost = [&](std::size_t i) { return alphabets[i] > 0 ? alphabets[i] : cost_of_new; };
    Costs costs;
    for (std::size_t i = 0; i < alphabet_size; ++i) {
        costs.lengths[i] = cost(i);
        costs.runs[i] = cost(alphabet_size + i);
    }
    return costs;
}

/// The simple form: every length in the same number of bits, and a short run behind each 0.
void put_simple_form(EmdBitWriter& writer, std::span<const std::uint8_t> lengths) {
    constexpr unsigned width_bits = 5;
    constexpr unsigned run_bits = 4;
    constexpr std::uint32_t longest_run = (1U << run_bits) - 1;
    const unsigned longest = *std::max_element(lengths.begin(), lengths.end());
    const auto width = static_cast<std::uint8_t>(std::bit_width(longest));
    writer.put(0, 1);
    writer.put(width, width_bits);
    for (std::size_t at = 0; at < lengths.size(); ++at) {
        writer.put(lengths[at], width);
        if (lengths[at] == 0) {
            std::uint32_t zeros = 0;
            while (zeros < longest_run && at + 1 < lengths.size() && lengths[at + 1] == 0) {
                ++zeros;
                ++at;
            }
            writer.put(zeros, run_bits);
        }
    }
}

void put_piece(EmdBitWriter& writer, const Piece& piece, const EmdCode& length_code,
               const EmdCode& run_code) {
    length_code.put(writer, length_symbol(piece));
    if (piece.run > 1) {
        const RunSymbol run = run_symbol(piece.run);
        run_code.put(writer, run.symbol);
        writer.put(run.extra, run.extra_bits);
    }
}

EmdBitWriter coded_form(std::span<const Piece> pieces, std::span<const std::uint8_t> alphabets) {
    const EmdCode length_code(alphabets.first(alphabet_size));
    const EmdCode run_code(alphabets.last(alphabet_size));
    EmdBitWriter writer;
    writer.put(0, 1);
    put_simple_form(writer, alphabets);
    for (const Piece& piece : pieces) {
        put_piece(writer, piece, length_code, run_code);
    }
    return writer;
}

/// The coded form with alphabets whose words have at most `longest` bits. The first round finds
/// what the symbols cost.
EmdBitWriter good_coded_form(std::span<const std::uint8_t> lengths, unsigned longest) {
    constexpr unsigned first_cost = 4;  // of a symbol, before anything is known
    Costs costs;
    costs.lengths.fill(first_cost);
    costs.runs.fill(first_cost);
    costs = costs_of(alphabets_for(cheapest_pieces(lengths, costs), longest));
    const std::vector<Piece> pieces = cheapest_pieces(lengths, costs);
    return coded_form(pieces, alphabets_for(pieces, longest));
}

}  // namespace

std::vector<std::uint32_t> emd_code_words(std::span<const std::uint8_t> lengths) {
    std::vector<std::uint32_t> words(lengths.size());
    std::uint32_t word = 0;
    for (unsigned length = 1; length <= longest_word; ++length) {
        word <<= 1U;
        for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
            if (lengths[symbol] == length) {
                words[symbol] = word++;
            }
        }
    }
    return words;
}

EmdCode::EmdCode(std::span<const std::uint8_t> lengths)
    : lengths_(lengths.begin(), lengths.end()), words_(emd_code_words(lengths)) {
    const auto unused = std::count(lengths_.begin(), lengths_.end(), 0);
    if (lengths_.size() - static_cast<std::size_t>(unused) == 1) {
        std::fill(lengths_.begin(), lengths_.end(), std::uint8_t{0});
    }
}

std::vector<std::uint8_t> emd_code_description(std::span<const std::uint8_t> lengths) {
    if (std::all_of(lengths.begin(), lengths.end(), [](auto length) { return length == 0; })) {
        EmdBitWriter writer;
        writer.put(1, 1);
        return writer.bytes();
    }
    // Longer words of the alphabets make a better fit and a list of their lengths that may take
    // more.
    const EmdBitWriter shorter = good_coded_form(lengths, 6);
    const EmdBitWriter longer = good_coded_form(lengths, 7);
    return (shorter.bit_count() < longer.bit_count() ? shorter : longer).bytes();
}
