// SPDX-License-Identifier: MIT
// EPD files, whatever they hold: positions, searches and verdicts.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include "drivers/epd_test.h"
#include "ending_clock.h"
#include "support/captured_output.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::int32_t seconds = 1;
    static const TemporaryFolder folder;
    write_file("suite", std::string(data, data + size));
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    epd_test(seconds, "suite");
    return 0;
}
