// SPDX-License-Identifier: MIT
// Rows of fields between bars; the file's head tells their meaning.
#include "support/perft_positions.h"

#include <fstream>
#include <sstream>

namespace {

constexpr const char* separator = " | ";

std::vector<std::string> fields_of(const std::string& line) {
    std::vector<std::string> fields;
    const std::string bar = separator;
    std::size_t begin = 0;
    for (std::size_t end = line.find(bar); end != std::string::npos; end = line.find(bar, begin)) {
        fields.push_back(line.substr(begin, end - begin));
        begin = end + bar.size();
    }
    fields.push_back(line.substr(begin));
    return fields;
}

std::vector<std::uint64_t> numbers_of(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t number = 0; in >> number;) {
        numbers.push_back(number);
    }
    return numbers;
}

}  // namespace

std::vector<PerftPosition> read_perft_positions(const std::string& file_name) {
    std::ifstream file(file_name);
    std::vector<PerftPosition> positions;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::vector<std::string> fields = fields_of(line);
        PerftPosition position;
        position.name = fields[0];
        position.fen = fields.size() > 1 ? fields[1] : "";
        position.chess = numbers_of(fields.size() > 2 ? fields[2] : "");
        position.here = numbers_of(fields.size() > 3 ? fields[3] : "");
        positions.push_back(position);
    }
    return positions;
}

std::size_t depths_up_to(const std::vector<std::uint64_t>& counts, std::uint64_t most) {
    std::size_t depths = 0;
    while (depths < counts.size() && counts[depths] <= most) {
        ++depths;
    }
    return depths;
}
