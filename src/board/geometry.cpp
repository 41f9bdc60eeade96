// SPDX-License-Identifier: MIT
// The geometry tables are worked out by the compiler. Steps of the ten-wide board need no bounds
// test: a step off the board meets a mask of 0 or an entry that is not an empty square.
#include "board/geometry.h"

#include <span>

namespace {

constexpr Square first_square = a8;
constexpr Square last_square = h1;

constexpr std::array<Square, 2> white_pawn_steps = {-11, -9};
constexpr std::array<Square, 2> black_pawn_steps = {11, 9};
constexpr std::array<Square, 4> bishop_steps = {11, -11, 9, -9};
constexpr std::array<Square, 4> rook_steps = {10, -10, 1, -1};

constexpr Mailbox<Bitboard> make_step_attacks(std::span<const Square> steps) {
    Mailbox<Bitboard> attacks{};
    for (Square s = first_square; s <= last_square; ++s) {
        for (const Square step : steps) {
            const Square to = s + step;
            if (to >= 0 && to < static_cast<Square>(mailbox_size)) {
                attacks[at_square(s)] |= mask_of(to);
            }
        }
    }
    return attacks;
}

/// The squares passed on an empty board, the edge included and nothing beyond it.
constexpr Mailbox<Bitboard> make_rays(std::span<const Square> steps) {
    Mailbox<Bitboard> rays{};
    for (Square s = first_square; s <= last_square; ++s) {
        for (const Square step : steps) {
            for (Square to = s + step; empty_board[at_square(to)] == empty_square; to += step) {
                rays[at_square(s)] |= mask_of(to);
            }
        }
    }
    return rays;
}

constexpr Mailbox<Bitboard> unite(const Mailbox<Bitboard>& a, const Mailbox<Bitboard>& b) {
    Mailbox<Bitboard> both{};
    for (std::size_t i = 0; i < mailbox_size; ++i) {
        both[i] = a[i] | b[i];
    }
    return both;
}

constexpr bool differ_by(Square a, Square b, std::span<const Square> steps) {
    for (const Square step : steps) {
        if (a - b == step) {
            return true;
        }
    }
    return false;
}

/// Filled over all pairs of indices, off-board ones included; a square is not related to itself.
template <class Relation>
constexpr RelationTable make_relation(Relation related) {
    RelationTable table{};
    for (std::size_t a = 0; a < mailbox_size; ++a) {
        for (std::size_t b = 0; b < mailbox_size; ++b) {
            table[a][b] = a != b && related(static_cast<Square>(a), static_cast<Square>(b)) ? 1 : 0;
        }
    }
    return table;
}

constexpr bool share_line_or_knight(Square a, Square b) {
    const std::size_t i = at_square(a);
    const std::size_t j = at_square(b);
    return file_of[i] == file_of[j] || rank_of[i] == rank_of[j] || diag_a1h8[i] == diag_a1h8[j] ||
           diag_a8h1[i] == diag_a8h1[j] || differ_by(a, b, knight_steps);
}

constexpr std::array<Bitboard, 64> make_bit_mask() {
    std::array<Bitboard, 64> masks{};
    for (std::size_t bit = 0; bit < masks.size(); ++bit) {
        masks[bit] = Bitboard{1} << bit;
    }
    return masks;
}

constexpr std::array<Bitboard, 8> make_file_mask() {
    constexpr Bitboard file_a = 0x0101010101010101;
    std::array<Bitboard, 8> masks{};
    for (std::size_t file = 0; file < masks.size(); ++file) {
        masks[file] = file_a << file;
    }
    return masks;
}

constexpr std::array<std::uint8_t, 65536> make_pop_table() {
    std::array<std::uint8_t, 65536> table{};
    for (std::size_t v = 1; v + 1 < table.size(); ++v) {
        table[v] = static_cast<std::uint8_t>(table[v / 2] + (v & 1));
    }
    return table;
}

}  // namespace

constinit const std::array<Bitboard, 64> bit_mask = make_bit_mask();
constinit const std::array<Bitboard, 8> file_mask = make_file_mask();

constinit const Mailbox<Bitboard> knight_attacks = make_step_attacks(knight_steps);
constinit const Mailbox<Bitboard> king_attacks = make_step_attacks(king_steps);
constinit const Mailbox<Bitboard> white_pawn_attacks = make_step_attacks(white_pawn_steps);
constinit const Mailbox<Bitboard> black_pawn_attacks = make_step_attacks(black_pawn_steps);
constinit const Mailbox<Bitboard> bishop_rays = make_rays(bishop_steps);
constinit const Mailbox<Bitboard> rook_rays = make_rays(rook_steps);
constinit const Mailbox<Bitboard> queen_rays =
    unite(make_rays(bishop_steps), make_rays(rook_steps));

constinit const RelationTable line_or_knight = make_relation(share_line_or_knight);
constinit const RelationTable king_step =
    make_relation([](Square a, Square b) { return differ_by(a, b, king_steps); });
constinit const RelationTable knight_step =
    make_relation([](Square a, Square b) { return differ_by(a, b, knight_steps); });

constinit const std::array<std::uint8_t, 65536> pop_table = make_pop_table();
