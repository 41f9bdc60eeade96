// SPDX-License-Identifier: MIT
// A description comes in two forms. The simple one lists the lengths and runs of zeros. The coded
// one packs them with two codes of their own, whose description is of the simple form.
#include "tb/code_table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

namespace {

constexpr std::size_t simple_form_most = 128;  ///< more lengths than these come in the coded form

// The two alphabets of the coded form.
constexpr std::size_t alphabet_size = 64;
constexpr unsigned alphabet_root_bits = 8;
constexpr std::size_t alphabet_table_size = (1U << alphabet_root_bits) + 2 * alphabet_size;
using AlphabetTable = std::array<std::int16_t, alphabet_table_size>;

/// A length as it is kept: what no code word can have stays such.
std::uint8_t kept_length(std::uint32_t length) {
    return static_cast<std::uint8_t>(std::min(length, tb_longest_code + 1));
}

bool read_simple_form(TbBitReader& reader, std::span<std::uint8_t> lengths) {
    constexpr unsigned width_bits = 5;
    constexpr unsigned run_bits = 4;
    const unsigned width = reader.take(width_bits);
    std::size_t at = 0;
    while (at < lengths.size()) {
        const std::uint32_t length = reader.take_wide(width);
        lengths[at++] = kept_length(length);
        if (length == 0) {
            const std::size_t zeros = reader.take(run_bits);
            if (zeros > lengths.size() - at) {
                return false;
            }
            std::fill_n(lengths.begin() + static_cast<std::ptrdiff_t>(at), zeros, std::uint8_t{0});
            at += zeros;
        }
    }
    return true;
}

/// How many positions a symbol of the run alphabet stands for; empty if it is none.
std::optional<std::size_t> read_run(TbBitReader& reader, std::uint32_t symbol) {
    constexpr std::uint32_t plain_runs = 32;  // symbols below are the run itself, less 2
    constexpr std::uint32_t shortest_run = 2;
    if (symbol < plain_runs) {
        return symbol + shortest_run;
    }
    const unsigned extra_bits = symbol - plain_runs;
    if (extra_bits > TbBitReader::most_bits) {
        return std::nullopt;
    }
    const std::size_t beyond = (std::size_t{1} << extra_bits) + reader.take(extra_bits);
    return beyond + plain_runs - 1 + shortest_run;
}

bool read_coded_form(TbBitReader& reader, std::span<std::uint8_t> lengths) {
    constexpr std::uint32_t repeats = 32;  // symbols from here on stand for a run
    std::array<std::uint8_t, 2 * alphabet_size> alphabets{};
    AlphabetTable length_table{};
    AlphabetTable run_table{};
    if (!tb_read_code_lengths(reader, alphabets) ||
        !tb_build_code_table(std::span(alphabets).first<alphabet_size>(), alphabet_root_bits,
                             length_table) ||
        !tb_build_code_table(std::span(alphabets).last<alphabet_size>(), alphabet_root_bits,
                             run_table)) {
        return false;
    }
    std::size_t at = 0;
    while (at < lengths.size()) {
        const std::uint32_t symbol =
            tb_decode_symbol<alphabet_root_bits>(reader, length_table.data());
        std::size_t run = 1;  // the position at hand counts
        if (symbol >= repeats) {
            const auto told =
                read_run(reader, tb_decode_symbol<alphabet_root_bits>(reader, run_table.data()));
            if (!told || *told > lengths.size() - at) {
                return false;
            }
            run = *told;
        }
        std::fill_n(lengths.begin() + static_cast<std::ptrdiff_t>(at), run,
                    kept_length(symbol % repeats));
        at += run;
    }
    return true;
}

/// How many symbols have each length; empty if a length is beyond the longest.
constexpr std::size_t length_values = 32;  // 0 and 1 to `tb_longest_code`
using LengthCounts = std::array<std::uint32_t, length_values>;
std::optional<LengthCounts> count_lengths(std::span<const std::uint8_t> lengths) {
    LengthCounts counts{};
    for (const std::uint8_t length : lengths) {
        if (length > tb_longest_code) {
            return std::nullopt;
        }
        ++counts[length];
    }
    return counts;
}

/// Whether code words of these lengths use up all bit patterns, none of them twice.
bool is_complete(const LengthCounts& counts) {
    std::uint32_t carry = 0;
    for (std::uint32_t length = tb_longest_code; length > 0; --length) {
        carry += counts[length];
        if (carry % 2 != 0) {
            return false;
        }
        carry /= 2;
    }
    return carry == 1;
}

/// The table while it is being filled.
class TableFiller {
  public:
    TableFiller(unsigned root_bits, std::span<std::int16_t> table)
        : root_bits_(root_bits), table_(table), next_pair_(std::size_t{1} << root_bits) {}

    /// Enters a code word. False when the room for pairs is used up.
    [[nodiscard]] bool enter(std::uint32_t symbol, std::uint32_t word, unsigned length) {
        if (length <= root_bits_) {
            const unsigned free_bits = root_bits_ - length;
            const std::size_t first = std::size_t{word} << free_bits;
            std::fill_n(table_.begin() + static_cast<std::ptrdiff_t>(first),
                        std::size_t{1} << free_bits,
                        static_cast<std::int16_t>((symbol << tb_entry_length_bits) | length));
            return true;
        }
        unsigned bits_left = length - root_bits_;
        std::size_t place = word >> bits_left;
        while (bits_left > 0) {
            if (table_[place] == 0 && !open_pair(place)) {
                return false;
            }
            --bits_left;
            place = static_cast<std::size_t>(-table_[place]) + ((word >> bits_left) & 1U);
        }
        table_[place] = static_cast<std::int16_t>(symbol);
        return true;
    }

  private:
    [[nodiscard]] bool open_pair(std::size_t place) {
        if (next_pair_ + 2 > table_.size()) {
            return false;
        }
        table_[place] = static_cast<std::int16_t>(-static_cast<std::int32_t>(next_pair_));
        next_pair_ += 2;
        return true;
    }

    unsigned root_bits_;
    std::span<std::int16_t> table_;
    std::size_t next_pair_;
};

}  // namespace

bool tb_read_code_lengths(TbBitReader& reader, std::span<std::uint8_t> lengths) {
    const bool all_zero = reader.take(1) == 1;
    if (all_zero) {
        std::fill(lengths.begin(), lengths.end(), std::uint8_t{0});
        return !reader.overran();
    }
    const bool read = lengths.size() <= simple_form_most ? read_simple_form(reader, lengths)
                                                         : read_coded_form(reader, lengths);
    return read && !reader.overran();
}

bool tb_build_code_table(std::span<const std::uint8_t> lengths, unsigned root_bits,
                         std::span<std::int16_t> table) {
    const auto counts = count_lengths(lengths);
    if (!counts) {
        return false;
    }
    std::fill(table.begin(), table.end(), std::int16_t{0});
    const std::size_t symbols = lengths.size() - (*counts)[0];
    if (symbols == 0) {
        return true;  // every look-up gives symbol 0 and costs nothing
    }
    if (symbols == 1) {
        const auto only =
            std::find_if(lengths.begin(), lengths.end(), [](auto l) { return l > 0; });
        const auto symbol = static_cast<std::uint32_t>(only - lengths.begin());
        std::fill_n(table.begin(), std::size_t{1} << root_bits,
                    static_cast<std::int16_t>(symbol << tb_entry_length_bits));
        return *only == 1;
    }
    if (!is_complete(*counts)) {
        return false;
    }
    // Words are dealt out in the order of their length, and of the symbols within a length.
    TableFiller filler(root_bits, table);
    std::uint32_t word = 0;
    for (unsigned length = 1; length <= tb_longest_code; ++length) {
        word <<= 1U;
        for (std::uint32_t symbol = 0; symbol < lengths.size(); ++symbol) {
            if (lengths[symbol] == length && !filler.enter(symbol, word++, length)) {
                return false;
            }
        }
    }
    return true;
}
