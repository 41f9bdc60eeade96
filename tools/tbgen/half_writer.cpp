// SPDX-License-Identifier: MIT
// Alike men have all their placements in the layout and one number in the half.
#include "tbgen/half_writer.h"

#include "tb/index/half_index.h"
#include "tb/index/index_family.h"

namespace {

constexpr std::uint32_t no_flip = 0;

}  // namespace

HalfWriter::HalfWriter(const Endgame& endgame, const KingPairs& pairs, std::int32_t half)
    : endgame_(endgame),
      pairs_(pairs),
      half_(half),
      numbering_(endgame.row, half),
      address_(address_of(endgame.men)),
      bytes_(tb_half_positions(tb_plan_of(endgame.row, half)),
             static_cast<std::uint8_t>(not_reachable)) {
    frames_.reserve(pairs.slabs());
    for (std::size_t slab = 0; slab < pairs.slabs(); ++slab) {
        frames_.push_back(numbering_.frame(pairs.kings(slab)));
    }
}

SquareSet HalfWriter::in_order(std::size_t word, SquareSet bits) const {
    for (std::size_t post = 0; post < endgame_.posts(); ++post) {
        if (!(endgame_.men[post] == endgame_.men[post + 1])) continue;
        const TbSquare square = endgame_.post_square(word, post);
        if (post + 1 < endgame_.posts()) {
            bits = square < endgame_.post_square(word, post + 1) ? bits : 0;
        } else {
            bits &= ~(square_bit(square) - 1);  // the runner stands above
        }
    }
    return bits;
}

void HalfWriter::write(std::size_t slab, std::size_t word, SquareSet bits, Value value) {
    const Numbering::Frame& frame = frames_[slab];
    MenSquares squares{};
    std::size_t runner_at = 0;
    for (std::size_t i = 0; i < endgame_.men.size(); ++i) {
        const std::size_t man = address_.order[i];
        if (man == endgame_.posts()) {
            runner_at = i;
        } else {
            squares[i] = endgame_.post_square(word, man);
        }
    }
    for_each_square(in_order(word, bits), [&](TbSquare square) {
        squares[runner_at] = square;
        const std::uint32_t number = numbering_.number_apart(frame, squares);
        if (number < bytes_.size()) {
            bytes_[number] = static_cast<std::uint8_t>(value);
        }
    });
}

void HalfWriter::write_en_passant(std::size_t slab, const MenSquares& men, TbSquare target,
                                  Value value) {
    if (tb_plan_of(endgame_.row, half_).en_passant_numbers == 0) {
        return;
    }
    const std::uint32_t number = tb_squares_index(
        tb_plan_of(endgame_.row, half_),
        squares_by_name(address_, endgame_.men, pairs_.kings(slab), men), target, no_flip);
    if (number < bytes_.size()) {
        bytes_[number] = static_cast<std::uint8_t>(value);
    }
}

Bytes HalfWriter::take_bytes() {
    while (!bytes_.empty() && static_cast<Value>(bytes_.back()) == not_reachable) {
        bytes_.pop_back();
    }
    return std::move(bytes_);
}
