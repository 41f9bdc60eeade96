// SPDX-License-Identifier: MIT
// Takes the place of the platform's clock.
#include "ending_clock.h"

#include "platform/clock.h"
#include "search/search_state.h"

namespace {

std::uint32_t readings = 0;
std::uint32_t start_seen = 0;

}  // namespace

std::uint32_t GetTickCount() {
    constexpr std::uint32_t readings_of_a_search = 3000;
    if (search_start_tick != start_seen) {
        start_seen = search_start_tick;
        readings = 0;
    }
    ++readings;
    // Once the time is up it stays up, as time does: quiescence has no other reason to return.
    return readings > readings_of_a_search ? search_start_tick + time_limit_ms : search_start_tick;
}

std::uint32_t calendar_seconds() {
    return 0;
}

void reset_ending_clock() {
    readings = 0;
    start_seen = search_start_tick;
}
