// SPDX-License-Identifier: MIT
// One block under any code: the input tells how the code's tree branches, which symbols hang on it,
// the distances, and the lengths to decode to, one after the other; what is left are the stored
// bytes. The block must come out as by the slow way, and nothing may be written outside its room.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "support/slow_block.h"
#include "tb/code_table.h"
#include "tb/decoder.h"
#include "tb/tb_types.h"

namespace {

constexpr std::size_t guard_bytes = 64;  // on both sides of the room and its slack
constexpr std::uint8_t filler = 0xa5;

void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// The input from its front on; zeros behind its end.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    std::uint32_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const std::uint32_t value = rest_.front();
        rest_ = rest_.subspan(1);
        return value;
    }
    std::uint32_t word() {
        const std::uint32_t high = byte();
        return high << 8U | byte();
    }
    [[nodiscard]] std::span<const std::uint8_t> rest() const { return rest_; }

  private:
    std::span<const std::uint8_t> rest_;
};

struct BlockCase {
    std::array<std::uint8_t, tb_symbols> lengths{};
    std::array<std::uint32_t, tb_distance_slots> distances{};
    std::array<std::size_t, 2> parts{};  // lengths to decode to before the whole one
    std::size_t length = 0;
    std::vector<std::uint8_t> stored;
};

/// Lengths of a complete code: leaves are split, then symbols are hung on them.
void read_lengths(Input& input, std::span<std::uint8_t> lengths) {
    std::vector<std::uint8_t> leaves{0};
    for (std::size_t splits = input.word() % lengths.size(); splits > 0; --splits) {
        std::uint8_t& leaf = leaves[input.byte() % leaves.size()];
        if (leaf < tb_longest_code) {
            const auto deeper = static_cast<std::uint8_t>(leaf + 1);
            leaf = deeper;
            leaves.push_back(deeper);
        }
    }
    if (leaves.size() == 1) {
        leaves[0] = input.byte() % 2 == 0 ? 0 : 1;  // no symbol at all, or one alone
    }
    for (const std::uint8_t leaf : leaves) {
        std::size_t symbol = input.word() % lengths.size();
        while (lengths[symbol] != 0) {
            symbol = (symbol + 1) % lengths.size();
        }
        lengths[symbol] = leaf;
    }
}

BlockCase read_case(Input input) {
    BlockCase block;
    read_lengths(input, block.lengths);
    for (std::uint32_t& distance : block.distances) {
        distance = input.word();
    }
    block.length = input.word() + 1;
    for (std::size_t& part : block.parts) {
        part = input.word() % block.length + 1;
    }
    block.stored.assign(input.rest().begin(), input.rest().end());
    return block;
}

/// A file of one block: its stored bytes alone, from the file's start.
struct OneBlock {
    explicit OneBlock(BlockCase& block) {
        demand(tb_build_code_table(block.lengths, tb_root_bits, decoder->decode_table));
        for (std::size_t i = 0; i < tb_distance_slots; ++i) {
            decoder->distances[i] = -static_cast<std::int32_t>(block.distances[i]);
        }
        const auto stored = static_cast<std::uint32_t>(block.stored.size());
        offsets = {0, stored};
        decoder->block_offsets = offsets.data();
        decoder->block_crc = offsets.data();
        decoder->block_size = static_cast<std::int32_t>(block.length);
        decoder->last_block_size = decoder->block_size;
        decoder->block_count = 1;
        decoder->max_stored = static_cast<std::int32_t>(stored);
        decoder->magic = TbDecoder::right_magic;
        file = fmemopen(block.stored.data(), block.stored.size(), "rb");
        demand(file != nullptr && TbNewBlockState(&state, decoder->max_stored) == 0);
    }
    ~OneBlock() {
        std::fclose(file);
        TbFreeBlockState(state);
    }
    OneBlock(const OneBlock&) = delete;
    OneBlock& operator=(const OneBlock&) = delete;

    std::unique_ptr<TbDecoder> decoder = std::make_unique<TbDecoder>();
    std::array<std::uint32_t, 2> offsets{};
    TbBlockState* state = nullptr;
    std::FILE* file = nullptr;
};

/// Decodes to each of the lengths in turn; empty at a fault.
std::optional<std::vector<std::uint8_t>> decode(OneBlock& block,
                                                std::initializer_list<std::size_t> lengths) {
    const auto room = static_cast<std::size_t>(block.decoder->block_size);
    std::vector<std::uint8_t> memory(guard_bytes + room + tb_output_slack + guard_bytes, filler);
    TbInitBlockState(*block.state, memory.data() + guard_bytes);
    demand(TbReadBlock(*block.state, *block.decoder, block.file, 0) == 0);
    std::int32_t fault = 0;
    for (const std::size_t length : lengths) {
        if (fault == 0) {
            fault =
                TbDecodeBlock(*block.state, *block.decoder, static_cast<std::int32_t>(length), 1);
        }
    }
    demand(fault == 0 || tb_fault_kind(fault) == tb_broken_file);
    const auto room_begin = memory.begin() + guard_bytes;
    const auto room_end = room_begin + static_cast<std::ptrdiff_t>(room);
    const auto is_filler = [](std::uint8_t byte) { return byte == filler; };
    demand(std::all_of(memory.begin(), room_begin, is_filler));
    demand(std::all_of(room_end + tb_output_slack, memory.end(), is_filler));
    if (fault != 0) {
        return std::nullopt;
    }
    return std::vector<std::uint8_t>(room_begin, room_end);
}

std::optional<std::vector<std::uint8_t>> expected(const BlockCase& block) {
    if (block.stored.size() == block.length) {
        return block.stored;  // stored raw
    }
    return slow_block(SlowCode(block.lengths), block.distances, block.stored, block.length, filler);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    BlockCase input = read_case(Input(data, size));
    if (input.stored.empty()) {
        return 0;  // no block is stored in no bytes
    }
    OneBlock block(input);
    const auto bytes = expected(input);
    demand(decode(block, {input.length}) == bytes);
    demand(decode(block, {input.parts[0], input.parts[1], input.length}) == bytes);
    return 0;
}
