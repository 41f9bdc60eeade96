// SPDX-License-Identifier: MIT
// Reading lines: std::getline tells by its end-of-file mark whether a line feed was there.
#include "platform/text_file.h"

TextFile::TextFile(const std::string& name) : stream_(name) {}

bool TextFile::next_line(std::string& line) {
    line.clear();
    std::getline(stream_, line);
    return stream_.good();
}
