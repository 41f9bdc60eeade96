// SPDX-License-Identifier: MIT
// The stream is read in blocks through its own checked call: a source that cannot be read (a folder
// opened as a file, say) is then an empty file instead of an exception.
#include "platform/text_file.h"

TextFile::TextFile(const std::string& name) : stream_(name, std::ios::binary) {}

bool TextFile::refill() {
    if (!stream_.good()) {
        return false;
    }
    stream_.read(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    at_ = 0;
    filled_ = static_cast<std::size_t>(stream_.gcount());
    bytes_read_ += filled_;
    return filled_ > 0;
}

bool TextFile::next_line(std::string& line) {
    line.clear();
    int byte = next_byte();
    const bool found = byte != end_of_text;
    while (byte != '\n' && byte != end_of_text) {
        if (line.size() < max_line) {
            line.push_back(static_cast<char>(byte));
        }
        byte = next_byte();
    }
    return found;
}
