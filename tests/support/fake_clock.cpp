// SPDX-License-Identifier: MIT
// Takes the place of the platform's clock.
#include "support/fake_clock.h"

#include "platform/clock.h"

std::uint32_t fake_ticks = 0;
std::uint32_t fake_ticks_per_reading = 0;
std::uint32_t fake_clock_readings = 0;
std::uint32_t fake_calendar_seconds = 0;

std::uint32_t GetTickCount() {
    ++fake_clock_readings;
    const std::uint32_t now = fake_ticks;
    fake_ticks += fake_ticks_per_reading;
    return now;
}

std::uint32_t calendar_seconds() {
    return fake_calendar_seconds;
}

void reset_fake_clock() {
    fake_ticks = 0;
    fake_ticks_per_reading = 0;
    fake_clock_readings = 0;
    fake_calendar_seconds = 0;
}
