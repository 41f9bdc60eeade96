// SPDX-License-Identifier: MIT
// The numbers are those of the files. A man may not stand where it attacks the enemy king at once
// from a neighbouring square (a knight from its own distance): the side to move cannot have its
// opponent in check. Attacks from afar depend on the men between and are kept.
#include "tb/index/enumeration.h"

#include <string_view>

#include "shell/log.h"
#include "tb/index/choose.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

const TbSquarePairTable<std::uint8_t>* tb_ordinal = nullptr;
const TbSquareTable<std::uint8_t>* tb_count = nullptr;
const TbSquarePairTable<std::int16_t>* tb_kk_pawn = nullptr;
const TbSquarePairTable<std::int16_t>* tb_kk_pawnless = nullptr;
std::array<std::array<const std::uint32_t*, tb_sets1>, 2> tb_offset1{};
std::array<std::array<const std::uint32_t*, tb_sets2>, 2> tb_offset2{};
std::array<std::array<const std::uint32_t*, tb_sets3>, 2> tb_offset3{};
std::array<std::array<std::uint32_t, tb_sets1 + tb_sets2 + tb_sets3>, 2> tb_total{};

namespace {

struct Distance {
    std::int32_t files;  ///< towards the h-file
    std::int32_t ranks;  ///< towards the eighth rank
};

Distance distance(std::uint32_t from, std::uint32_t to) {
    return {
        static_cast<std::int32_t>(file_index(to)) - static_cast<std::int32_t>(file_index(from)),
        static_cast<std::int32_t>(rank_index(to)) - static_cast<std::int32_t>(rank_index(from))};
}

bool is_adjacent(Distance d) {
    return d.files * d.files <= 1 && d.ranks * d.ranks <= 1;
}

/// Whether a man on a square away from the king attacks it with no square between.
bool touches_king(std::uint32_t kind, std::uint32_t square, std::uint32_t king) {
    const Distance d = distance(square, king);
    const std::int32_t file_steps = d.files * d.files;
    const std::int32_t rank_steps = d.ranks * d.ranks;
    switch (kind) {
        case tb_pawn: return d.ranks == 1 && file_steps == 1;
        case tb_knight: return file_steps + rank_steps == 5;
        case tb_bishop: return file_steps == 1 && rank_steps == 1;
        case tb_rook: return file_steps + rank_steps == 1;
        case tb_queen: return is_adjacent(d);
        default: return false;
    }
}

bool is_allowed(std::uint32_t kind, std::uint32_t square, std::uint32_t king) {
    constexpr std::uint32_t last_pawn_rank = 6;
    const bool is_pawn = kind <= tb_pawn;
    const std::uint32_t rank = rank_index(square);
    return square != king && (!is_pawn || (rank >= 1 && rank <= last_pawn_rank)) &&
           !touches_king(kind, square, king);
}

void build_squares() {
    auto* const ordinal = tb_alloc_array<TbSquarePairTable<std::uint8_t>>(tb_kinds);
    auto* const count = tb_alloc_array<TbSquareTable<std::uint8_t>>(tb_kinds);
    for (std::uint32_t kind = 0; kind < tb_kinds; ++kind) {
        for (std::uint32_t king = 0; king < tb_squares; ++king) {
            std::uint8_t next = 0;
            for (std::uint32_t square = 0; square < tb_squares; ++square) {
                ordinal[kind][king][square] =
                    is_allowed(kind, square, king) ? next++ : tb_no_square;
            }
            count[kind][king] = next;
        }
    }
    tb_ordinal = ordinal;
    tb_count = count;
}

/// Numbers the pairs of kings that `is_used` accepts, in rising order.
template <class IsUsed>
const TbSquarePairTable<std::int16_t>* number_pairs(IsUsed is_used) {
    auto* const pairs = tb_alloc_array<TbSquarePairTable<std::int16_t>>(1);
    std::int16_t next = 0;
    for (std::uint32_t own = 0; own < tb_squares; ++own) {
        for (std::uint32_t other = 0; other < tb_squares; ++other) {
            const bool used = !is_adjacent(distance(own, other)) && is_used(own, other);
            (*pairs)[own][other] = used ? next++ : tb_no_pair;
        }
    }
    return pairs;
}

/// In how many ways the men of a set can be placed, the kings standing. Men of different kinds are
/// not kept apart from each other.
std::uint32_t placements(const TbKindSet& set, std::uint32_t own, std::uint32_t other) {
    std::uint32_t product = 1;
    std::size_t i = 0;
    while (i < set.men) {
        const std::uint32_t kind = set.kinds[i];
        std::uint32_t alike = 0;
        while (i < set.men && set.kinds[i] == kind) {
            ++alike;
            ++i;
        }
        const bool own_king_in_the_way = tb_ordinal[kind][other][own] != tb_no_square;
        const std::uint32_t squares = tb_count[kind][other] - (own_king_in_the_way ? 1U : 0U);
        product *= choose(squares, alike);
    }
    return product;
}

void print_total(const TbKindSet& set) {
    constexpr std::string_view letters = "pPNBRQ";
    mirror(set.pawnless ? "pawnless " : "");
    for (std::size_t i = 0; i < set.men; ++i) {
        mirror(letters.substr(set.kinds[i], 1));
    }
    mirror(" - ", tb_total[set.pawnless][tb_set_number(set)], " enumerated positions", end_line);
}

/// The offsets and the total of one set.
void build_set(const TbKindSet& set) {
    const auto& pairs = set.pawnless ? *tb_kk_pawnless : *tb_kk_pawn;
    auto* const offsets =
        tb_alloc_array<std::uint32_t>(set.pawnless ? tb_pawnless_pairs : tb_pawn_pairs);
    std::uint32_t sum = 0;
    std::size_t next = 0;
    for (std::uint32_t own = 0; own < tb_squares; ++own) {
        for (std::uint32_t other = 0; other < tb_squares; ++other) {
            if (pairs[own][other] == tb_no_pair) continue;
            offsets[next++] = sum;
            sum += placements(set, own, other);
        }
    }
    const std::size_t number = tb_set_number(set);
    switch (set.men) {
        case 1: tb_offset1[set.pawnless][number] = offsets; break;
        case 2: tb_offset2[set.pawnless][number - tb_sets1] = offsets; break;
        default: tb_offset3[set.pawnless][number - tb_sets1 - tb_sets2] = offsets; break;
    }
    tb_total[set.pawnless][number] = sum;
    if (tb_enum_verbose) {
        print_total(set);
    }
}

/// All sets of one size, the kinds falling from man to man as in the tables' names. Pawns of the
/// kind without a test of attack stand among themselves alone.
void build_sets(bool pawnless, std::uint8_t men) {
    const std::uint8_t lowest = pawnless ? tb_knight : tb_pawn_any;
    for (std::uint8_t a = lowest; a < tb_kinds; ++a) {
        const std::uint8_t last_b = men > 1 ? a : 0;
        for (std::uint8_t b = men > 1 ? lowest : 0; b <= last_b; ++b) {
            const std::uint8_t last_c = men > 2 ? b : 0;
            for (std::uint8_t c = men > 2 ? lowest : 0; c <= last_c; ++c) {
                const TbKindSet set{pawnless, men, {a, b, c}};
                const bool mixes_pawns =
                    a != tb_pawn_any && set.kinds[men - std::size_t{1}] == tb_pawn_any;
                if (!mixes_pawns) {
                    build_set(set);
                }
            }
        }
    }
}

}  // namespace

void tb_build_enumeration() {
    if (tb_ordinal != nullptr) {
        return;
    }
    build_squares();
    tb_kk_pawn =
        number_pairs([](std::uint32_t own, std::uint32_t) { return file_mask_of(own) == 0; });
    tb_kk_pawnless = number_pairs(triangle_test);
    for (std::uint8_t men = 1; men <= tb_most_men; ++men) {
        build_sets(false, men);
        build_sets(true, men);
    }
    if (tb_enum_verbose) {
        constexpr std::uint32_t kilobyte = 1024;
        mirror(end_line);
        mirror("Allocated ", (tb_alloc_total + kilobyte - 1) / kilobyte, "k", end_line);
        mirror(end_line);
    }
}
