// SPDX-License-Identifier: MIT
// Memory that registration takes, counted for its reports, and the one way in which it gives up.
#pragma once

#include <cstddef>
#include <cstdint>

/// Bytes taken through TbAlloc since registration began; wraps in 32 bits.
extern std::uint32_t tb_alloc_total;

/// Bytes taken by decoders and the decode block since registration began.
extern std::int32_t tb_decoder_bytes;

/// Zeroed memory, counted in `tb_alloc_total`; std::free gives it back. Where there is none, the
/// program ends with exit code 1 and a message.
[[nodiscard]] void* TbAlloc(std::size_t bytes);

/// Zeroed memory for `count` values, through TbAlloc.
template <class Value>
[[nodiscard]] Value* tb_alloc_array(std::size_t count) {
    return static_cast<Value*>(TbAlloc(count * sizeof(Value)));
}

/// Ends the program with exit code 1, for an installation of tables that cannot be used. The
/// message has been printed before.
[[noreturn]] void tb_give_up();
