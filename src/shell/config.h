// SPDX-License-Identifier: MIT
// The configuration file, corvane.ini in the working directory: read once at start-up, written with
// defaults when it holds no setting.
#pragma once

#include <iosfwd>

/// Reads settings from the words of a stream, without defaults. True: at least one word was a key.
[[nodiscard]] bool read_config_words(std::istream& stream);

/// Reads the settings into the log's switches, the size of the hash table and the engine state. A
/// value that is no number, or none that fits, leaves its setting as it was. When no key was found
/// a line says so and the default file is written; the defaults are in force.
void read_config();
