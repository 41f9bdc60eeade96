// SPDX-License-Identifier: MIT
// Reading is done through the stream's own checked calls: a source that fails half-way (a folder
// opened as a file, say) then ends the input instead of the program.
#include "shell/word_reader.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <utility>

namespace {

using Traits = std::istream::traits_type;

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::optional<std::string> WordReader::word() {
    if (waiting_) {
        return std::exchange(waiting_, std::nullopt);
    }
    return read_word();
}

std::optional<std::int32_t> WordReader::integer() {
    std::optional<std::string> text = word();
    if (!text) {
        return std::nullopt;
    }
    // A plus sign is accepted as streams do; std::from_chars alone knows the minus sign only.
    const bool plus = text->size() > 1 && text->front() == '+' && (*text)[1] != '-';
    const char* const begin = text->data() + (plus ? 1 : 0);
    const char* const end = text->data() + text->size();
    std::int32_t number = 0;
    const auto [rest, fault] = std::from_chars(begin, end, number);
    if (fault != std::errc()) {
        waiting_ = std::move(text);
        return std::nullopt;
    }
    if (rest != end) {
        waiting_ = std::string(rest, end);
    }
    return number;
}

std::optional<std::string> WordReader::read_word() {
    int next = stream_.get();
    while (next != Traits::eof() && is_white_space(next)) {
        next = stream_.get();
    }
    if (next == Traits::eof()) {
        return std::nullopt;
    }
    std::string text;
    while (next != Traits::eof() && !is_white_space(next)) {
        if (text.size() < max_word) {
            text.push_back(static_cast<char>(next));
        }
        next = stream_.get();
    }
    return text;
}

bool equal_caseless(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}
