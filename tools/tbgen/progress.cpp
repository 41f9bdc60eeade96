// SPDX-License-Identifier: MIT
// The line is drawn a few times a second at most.
#include "tbgen/progress.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr auto shortest_pause = std::chrono::milliseconds(200);

}  // namespace

std::string time_text(double seconds) {
    if (seconds < minute) {
        return std::to_string(std::lround(std::ceil(seconds))) + " s";
    }
    if (seconds < hour) {
        return std::to_string(std::lround(seconds / minute)) + " min";
    }
    const long minutes = std::lround(seconds / minute);
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

Progress::Progress(double work, bool is_shown) : work_(work), is_shown_(is_shown) {}

Progress::~Progress() {
    clear();
}

void Progress::begin(std::string name, double work) {
    name_ = std::move(name);
    table_ = work;
}

void Progress::report(const std::string& phase, double share) {
    const Clock::time_point now = Clock::now();
    if (!is_shown_ || (is_drawn_ && now - drawn_ < shortest_pause)) {
        return;
    }
    const double done = (done_ + table_ * share) / work_;
    const double spent = std::chrono::duration<double>(now - began_).count();
    const std::string left = done > 0 ? time_text(spent * (1 - done) / done) + " left" : "";
    std::fprintf(stderr, "\r\033[K%s  %s  %d %%  %s", name_.c_str(), phase.c_str(),
                 static_cast<int>(done * 100), left.c_str());
    std::fflush(stderr);
    is_drawn_ = true;
    drawn_ = now;
}

void Progress::end() {
    done_ += table_;
    table_ = 0;
}

void Progress::clear() {
    if (is_drawn_) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
        is_drawn_ = false;
    }
}
