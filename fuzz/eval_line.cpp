// SPDX-License-Identifier: MIT
// Lines of evaluation tests: a position and its mirror image, at rest and with their captures.
#include <cstddef>
#include <cstdint>
#include <string>

#include "drivers/eval_test.h"
#include "ending_clock.h"
#include "support/captured_output.h"
#include "support/reset_all.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(data, data + size);
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    static_cast<void>(eval_test_line(line, eval_test_static));
    static_cast<void>(eval_test_line(line, eval_test_quiescence));
    return 0;
}
