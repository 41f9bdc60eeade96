// SPDX-License-Identifier: MIT
// The other table may name the sides the other way round; then the board is seen from the other
// end.
#include "tbgen/half_bytes.h"

#include "tb/index/index_squares.h"

OtherHalf::OtherHalf(const MenList& men, std::uint8_t to_move)
    : address_(address_of(men)), men_(men.size()) {
    half_ = to_move ^ (address_.swapped ? 1 : 0);
    flip_ = address_.swapped && men.has_pawns() ? tb_rank_mask : 0;
    if (address_.row != 0) {
        numbering_.emplace(address_.row, half_);
    }
}

bool OtherHalf::load(const LoadHalf& load_half) {
    if (address_.row == 0) {
        return true;
    }
    std::optional<Bytes> bytes = load_half(address_.row, half_);
    if (!bytes) {
        return false;
    }
    bytes_ = std::move(*bytes);
    return true;
}

Numbering::Frame OtherHalf::frame(const KingSquares& kings) const {
    if (!numbering_) {
        return {};
    }
    const std::size_t first = address_.swapped ? 1 : 0;
    return numbering_->frame({kings[first] ^ flip_, kings[first ^ 1U] ^ flip_});
}

Value OtherHalf::value(const Numbering::Frame& frame, const MenSquares& men) const {
    if (!numbering_) {
        return drawn;  // bare kings
    }
    MenSquares ordered{};
    for (std::size_t i = 0; i < men_; ++i) {
        ordered[i] = men[address_.order[i]] ^ flip_;
    }
    const std::uint32_t number = numbering_->number(frame, ordered);
    return number < bytes_.size() ? static_cast<Value>(bytes_[number]) : not_reachable;
}
