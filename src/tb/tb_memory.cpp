// SPDX-License-Identifier: MIT
// Registration ends the program where it cannot go on: a fault that a search met later would cost
// the game.
#include "tb/tb_memory.h"

#include <cstdlib>

#include "shell/log.h"

std::uint32_t tb_alloc_total = 0;
std::int32_t tb_decoder_bytes = 0;

void* TbAlloc(std::size_t bytes) {
    constexpr std::size_t one = 1;
    void* const memory = std::calloc(bytes == 0 ? one : bytes, one);
    if (memory == nullptr) {
        mirror("*** Cannot allocate ", bytes, " bytes of memory", end_line);
        tb_give_up();
    }
    tb_alloc_total += static_cast<std::uint32_t>(bytes);
    return memory;
}

void tb_give_up() {
    std::exit(1);
}
