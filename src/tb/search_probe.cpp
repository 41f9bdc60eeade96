// SPDX-License-Identifier: MIT
// From cheap to costly: the key first, the boards and the index only if there is a file.
#include "tb/search_probe.h"

#include <algorithm>
#include <array>
#include <bit>

#include "tb/catalogue.h"
#include "tb/probe_raw.h"

TbCounts tb_counts{};

namespace {

constexpr std::int32_t tb_mate_base = 32640;

/// The men of both colours by the codes of the scratch boards.
struct ScratchBoards {
    TbBoard tb_white_board{};
    TbBoard tb_black_board{};
};

// The codes of the board have one bit a kind, White's six below Black's six, in the order of the
// codes of the scratch boards.
constexpr PieceCode kind_bits = 0xfff;
constexpr int kinds_a_side = 6;

constexpr std::int32_t kind_of(PieceCode man) {
    return std::countr_zero(man & kind_bits) % kinds_a_side + 1;
}
static_assert(kind_of(w_pawn) == tb_pawn && kind_of(b_pawn) == tb_pawn);
static_assert(kind_of(w_queen) == tb_queen && kind_of(b_queen) == tb_queen);
static_assert(kind_of(w_king) == tb_king && kind_of(b_king) == tb_king);

bool is_man(PieceCode entry) {
    return (entry & kind_bits) != 0;
}

void fill_boards(const Table& position, ScratchBoards& boards) {
    for (std::size_t square = 0; square < mailbox_size; ++square) {
        const PieceCode man = position.Array[square];
        if (is_man(man)) {
            TbBoard& board = w_figure(man) != 0 ? boards.tb_white_board : boards.tb_black_board;
            board[square] = kind_of(man);
        }
    }
}

/// Seven positions of kppkp, Black to move, whose stored bytes are wrong: they stand at these
/// places.
constexpr std::int32_t fixed_row = 36;
constexpr std::int32_t fixed_half = 1;
constexpr std::int32_t fixed_score = -32639;
constexpr std::array<std::uint32_t, 7> fixed_places = {
    0x362BC7C, 0x362DE44, 0x3637648, 0x3639810, 0x38D4F29, 0x40A2CAB, 0x43C778C,
};

bool has_fixed_answer(std::int32_t id, std::int32_t half, std::uint32_t index) {
    return id == fixed_row && half == fixed_half &&
           std::find(fixed_places.begin(), fixed_places.end(), index) != fixed_places.end();
}

/// Intended(tb-odd-scores): the two ends of the bytes lie outside the order of the others. A side
/// that is mated on the board scores better than one that will be, and what no game reaches counts
/// as nearly won.
std::int32_t score_of(std::int8_t value) {
    constexpr std::int8_t mated_on_the_board = -127;
    constexpr std::int8_t not_reachable = -128;
    switch (value) {
        case 0: return 0;
        case mated_on_the_board: return -tb_mate_base;
        case not_reachable: return tb_mate_base;
        default: return value > 0 ? value + tb_mate_base : value - tb_mate_base;
    }
}

}  // namespace

void TbCountMen(const Table& table) {
    tb_counts = {};
    for (const PieceCode man : table.Array) {
        if (is_man(man) && kind_of(man) != tb_king) {
            const std::size_t side_at = w_figure(man) != 0 ? 0 : tb_kinds_a_side;
            ++tb_counts[side_at + static_cast<std::size_t>(kind_of(man) - tb_pawn)];
        }
    }
}

std::int32_t TbProbe(std::int32_t id, std::int32_t half, std::uint32_t index) {
    // Intended(tb-fixed-answers): these are not read at all.
    if (has_fixed_answer(id, half, index)) {
        return fixed_score;
    }
    // Intended(tb-no-value): a byte that cannot be had counts, once, as better than any mate.
    return score_of(TbProbeRaw(id, half, index));
}

TbAddress tb_address(const Table& position) {
    TbCountMen(position);
    TbAddress address;
    address.tb_key = TbLookupKey(tb_counts);
    address.tb_flip = address.tb_key < 0 ? 1U : 0U;
    address.row = address.tb_flip != 0 ? -address.tb_key : address.tb_key;
    address.tb_half = static_cast<std::int32_t>(position.side ^ address.tb_flip);
    return address;
}

std::uint32_t tb_index_of(const Table& position, const TbAddress& address) {
    ScratchBoards boards;
    fill_boards(position, boards);
    const bool white_is_first = address.tb_flip == 0;
    TbBoard& first = white_is_first ? boards.tb_white_board : boards.tb_black_board;
    TbBoard& second = white_is_first ? boards.tb_black_board : boards.tb_white_board;
    const TbEntry& row = TbCatalogue[static_cast<std::size_t>(address.row)];
    const TbIndexFunction index_fn = row.index_fn[static_cast<std::size_t>(address.tb_half)];
    // Intended(tb-no-en-passant): a capture en passant that is possible is not told to the table.
    return index_fn(first, second, tb_no_en_passant, address.tb_flip);
}

std::optional<std::int32_t> tb_answer(const Table& position) {
    const TbAddress address = tb_address(position);
    if (address.tb_key == 0) {
        return std::nullopt;
    }
    const TbEntry& row = TbCatalogue[static_cast<std::size_t>(address.row)];
    if (row.path[static_cast<std::size_t>(address.tb_half)] == nullptr) {
        return std::nullopt;
    }
    const std::uint32_t tb_index = tb_index_of(position, address);
    return TbProbe(address.row, address.tb_half, tb_index);
}
