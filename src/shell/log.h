// SPDX-License-Identifier: MIT
// Everything that the program says. Mirrored output goes to standard output and to the log alike;
// information goes to the log alone. The log is opened and closed around each fragment, so that
// nothing is lost and nothing stays open.
#pragma once

#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>

extern bool log_enabled;          ///< the log is written
extern bool add_info_in_log;      ///< information for the log alone is written too
extern bool new_log_after_start;  ///< the log is emptied when the program starts

/// A line end as a fragment: it flushes standard output, which interfaces depend on.
struct LineEnd {};
inline constexpr LineEnd end_line{};

/// Writes one fragment to standard output and, if the log is on, to the log. A log that cannot be
/// written loses the fragment; nothing else happens.
void mirror_fragment(std::string_view text);
void mirror_fragment(LineEnd);

/// Writes one fragment to the log, whatever the switches say.
void log_fragment(std::string_view text);
void log_fragment(LineEnd);

template <std::integral Number>
void mirror_fragment(Number number) {
    mirror_fragment(std::string_view(std::to_string(number)));
}

template <std::integral Number>
void log_fragment(Number number) {
    log_fragment(std::string_view(std::to_string(number)));
}

/// Mirrored output: each argument is a fragment.
template <class... Fragments>
void mirror(const Fragments&... fragments) {
    (mirror_fragment(fragments), ...);
}

/// Information for the log: needs `log_enabled` and `add_info_in_log`.
template <class... Fragments>
void log_info(const Fragments&... fragments) {
    if (log_enabled && add_info_in_log) {
        (log_fragment(fragments), ...);
    }
}

/// Makes the log exist, emptied if `new_log_after_start`, when the log is on.
void open_log();

/// Puts another stream in the place of standard output; gives the one that stood there before.
std::ostream* exchange_output(std::ostream* stream);

/// The switches as at program start: log on, the others off.
void reset_log();
