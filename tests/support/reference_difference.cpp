// SPDX-License-Identifier: MIT
// The state of the second writing against the engine's globals.
#include <array>
#include <string>

#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/reference_search.h"

namespace {

std::string text_of(const Move& move) {
    return move_text(move.posFrom, move.posTo, move.posInfo);
}

/// A slot of either table, in the order of the entry's words.
struct SlotWords {
    std::array<long long, 10> words;

    bool operator==(const SlotWords&) const = default;

    [[nodiscard]] std::string text() const {
        std::string text;
        for (const long long word : words) {
            text += std::to_string(word) + " ";
        }
        return text;
    }
};

SlotWords words_of(const ReferenceSearch::Slot& slot) {
    return {{slot.key, slot.score, slot.depth, slot.type, slot.side, slot.has_move ? 1 : 0,
             slot.from, slot.to, slot.info, slot.age}};
}

SlotWords words_of(const HashEntry& entry) {
    return {{entry.key, entry.score, entry.depth, entry.type, entry.side, entry.has_move,
             entry.from, entry.to, entry.info, entry.age}};
}

}  // namespace

std::string ReferenceSearch::difference_from_engine(bool with_lines) const {
    const auto differ = [](const std::string& what, long long own, long long engines) {
        return what + ": expected " + std::to_string(own) + ", engine " + std::to_string(engines);
    };
    if (nodes != TotalNodes) return differ("nodes", nodes, TotalNodes);
    if (ply != ::ply) return differ("ply", ply, ::ply);
    if (stopped != (stop_flag != 0)) return differ("stop flag", stopped, stop_flag);
    if (following != (follow_pv != 0)) return differ("walk", following, follow_pv);
    if (readings != fake_clock_readings) return differ("clock", readings, fake_clock_readings);
    for (std::size_t from = 0; from < raised.size(); ++from) {
        if (raised[from] != history_good[from]) return "raised from " + std::to_string(from);
        if (cutting[from] != history_cut[from]) return "cut from " + std::to_string(from);
    }
    if (slots.size() != hash_entries) {
        return differ("slots", static_cast<long long>(slots.size()), hash_entries);
    }
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (words_of(slots[i]) != words_of(hash_table[i])) {
            return "slot " + std::to_string(i) + ": expected " + words_of(slots[i]).text() +
                   ", engine " + words_of(hash_table[i]).text();
        }
    }
    for (std::size_t row = 0; with_lines && row < vetka.size(); ++row) {
        if (lengths[row] != length_vetka[row]) {
            return differ("length " + std::to_string(row), lengths[row], length_vetka[row]);
        }
        for (std::size_t column = 0; column < vetka.size(); ++column) {
            if (lines[row][column] != vetka[row][column]) {
                return "line " + std::to_string(row) + " " + std::to_string(column) +
                       ": expected " + text_of(lines[row][column]) + ", engine " +
                       text_of(vetka[row][column]);
            }
        }
    }
    return "";
}
