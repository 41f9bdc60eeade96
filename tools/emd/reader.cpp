// SPDX-License-Identifier: MIT
// One decoder, one state, one block at a time.
#include "emd/reader.h"

namespace {

constexpr std::uint32_t keep_checksums = 1;

}  // namespace

EmdReader::EmdReader(std::FILE* file) : file_(file) {
    TbDecoder* decoder = nullptr;
    if (TbReadHeader(&decoder, file, keep_checksums) != 0) {
        return;
    }
    decoder_.reset(decoder);
    TbBlockState* state = nullptr;
    if (TbNewBlockState(&state, decoder->max_stored) == 0) {
        state_.reset(state);
        output_.resize(static_cast<std::size_t>(decoder->block_size) +
                       static_cast<std::size_t>(tb_output_slack));
    }
}

std::optional<std::span<const std::uint8_t>> EmdReader::block(std::int32_t number) {
    TbInitBlockState(*state_, output_.data());
    if (TbReadBlock(*state_, *decoder_, file_, number) != 0 ||
        TbDecodeBlock(*state_, *decoder_, state_->decoded_length, keep_checksums) != 0) {
        return std::nullopt;
    }
    return std::span(output_).first(static_cast<std::size_t>(state_->decoded_length));
}
