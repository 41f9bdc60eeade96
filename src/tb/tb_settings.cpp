// SPDX-License-Identifier: MIT
// Three words and their reset.
#include "tb/tb_settings.h"

bool tb_verbose = false;
bool tb_enum_verbose = false;
std::uint32_t tb_use_crc = 0;

void reset_tb_settings() {
    tb_verbose = false;
    tb_enum_verbose = false;
    tb_use_crc = 0;
}
