// SPDX-License-Identifier: MIT
// The clock is coarse and cheap, so it may be read for every game.
#include "book/build_progress.h"

#include <algorithm>
#include <ostream>

#include "platform/clock.h"

namespace {

constexpr std::uint32_t ms_between_lines = 200;
constexpr std::uint64_t ms_per_second = 1000;
constexpr std::uint64_t percent = 100;

// Back to the first column, and clear to the end of the line.
constexpr std::string_view wipe = "\r\x1b[K";

}  // namespace

BuildProgress::BuildProgress(std::ostream* out, std::string_view what, std::uint64_t file_size)
    : out_(out), what_(what), file_size_(file_size), start_(GetTickCount()) {}

BuildProgress::~BuildProgress() {
    if (out_ != nullptr && shown_ != 0) {
        *out_ << wipe << std::flush;
    }
}

void BuildProgress::count_game(std::uint64_t bytes_read) {
    ++games_;
    advance(bytes_read);
}

void BuildProgress::advance(std::uint64_t bytes_read) {
    if (out_ == nullptr) {
        return;
    }
    const std::uint32_t elapsed_ms = GetTickCount() - start_;
    if (elapsed_ms - shown_ >= ms_between_lines) {
        shown_ = std::max<std::uint32_t>(elapsed_ms, 1);
        show(bytes_read, shown_);
    }
}

void BuildProgress::show(std::uint64_t bytes_read, std::uint32_t elapsed_ms) {
    *out_ << wipe << what_ << ": ";
    if (file_size_ != 0) {
        *out_ << std::min(percent, bytes_read * percent / file_size_) << "% of the file, ";
    }
    *out_ << games_ << " games, " << games_ * ms_per_second / elapsed_ms << " games/s"
          << std::flush;
}
