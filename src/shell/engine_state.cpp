// SPDX-License-Identifier: MIT
// The instance and its start values.
#include "shell/engine_state.h"

#include <algorithm>

EngineState engine;

void reset_engine_state() {
    engine = EngineState{};
}

void set_strong_level(std::int32_t level) {
    constexpr std::int32_t highest_level = 1000;
    engine.strong_level = std::clamp(level, 0, highest_level);
}
