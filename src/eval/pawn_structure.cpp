// SPDX-License-Identifier: MIT
// Isolated, doubled, backward and passed pawns. A doubled pawn pays for each pawn of its file; an
// isolated pawn pays no backward penalty.
#include "eval/pawn_structure.h"

#include <algorithm>

#include "eval/eval_side.h"
#include "eval/passed_pawn.h"

namespace {

constexpr std::int32_t passed_weight = 15;

std::size_t file_index(Square square) {
    return static_cast<std::size_t>(file_of[at_square(square)]);
}

/// Counts and the rearmost pawns of each file.
template <Side S>
void count_files(const Table& table, PawnEntry& entry) {
    using Own = EvalSide<S>;
    for (Bitboard pawns = table.*Own::pawns; pawns != 0;) {
        const Square square = take_first_square(pawns);
        const std::int32_t row = row_of[at_square(square)];
        ++(entry.*Own::count)[file_index(square)];
        std::int32_t& rear = (entry.*Own::rear)[file_index(square)];
        rear = S == white ? std::max(rear, row) : std::min(rear, row);
    }
}

/// Whether no own pawn on a neighbouring file stands level with the pawn or behind it.
template <Side S>
bool is_backward(const PawnEntry& entry, std::size_t f, std::int32_t row) {
    const FileCounts& rear = entry.*EvalSide<S>::rear;
    return S == white ? rear[f - 1] < row && rear[f + 1] < row
                      : rear[f - 1] > row && rear[f + 1] > row;
}

/// One pawn's share, in its own side's view.
template <Side S>
std::int32_t pawn_term(const PawnEntry& entry, std::size_t f, std::int32_t row) {
    using Own = EvalSide<S>;
    const FileCounts& count = entry.*Own::count;
    const bool doubled = count[f] > 1;
    std::int32_t term = 0;
    if (count[f - 1] == 0 && count[f + 1] == 0) {
        term -= isolated_penalty[f];
        if (doubled) {
            term -= isolated_doubled_penalty[f];
        }
    } else {
        if (doubled) {
            term -= doubled_penalty[f];
        }
        if (is_backward<S>(entry, f, row)) {
            term -= backward_penalty[f];
        }
    }
    if (is_passed<S>(entry, f, row)) {
        term += Own::advance(row) * passed_weight;
    }
    return term;
}

template <Side S>
std::int32_t pawn_terms(const Table& table, const PawnEntry& entry) {
    std::int32_t sum = 0;
    for (Bitboard pawns = table.*EvalSide<S>::pawns; pawns != 0;) {
        const Square square = take_first_square(pawns);
        sum += pawn_term<S>(entry, file_index(square), row_of[at_square(square)]);
    }
    return sum;
}

}  // namespace

void fill_pawn_entry(const Table& table, PawnEntry& entry) {
    constexpr std::int32_t no_white_pawn = -1;
    constexpr std::int32_t no_black_pawn = 8;
    entry.w_count.fill(0);
    entry.b_count.fill(0);
    entry.w_rear.fill(no_white_pawn);
    entry.b_rear.fill(no_black_pawn);
    count_files<white>(table, entry);
    count_files<black>(table, entry);
    entry.pawn_score = pawn_terms<white>(table, entry) - pawn_terms<black>(table, entry);
    entry.key = table.pawn_hash;
}
