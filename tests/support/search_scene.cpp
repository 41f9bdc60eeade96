// SPDX-License-Identifier: MIT
// Every scene begins from the resets.
#include "support/search_scene.h"

#include <fstream>
#include <gtest/gtest.h>
#include <limits>

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "shell/game_record.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

std::vector<Move> generated(const Table& position, void (*generate)(const Table&, Side)) {
    MoveList list;
    cur_moves = &list;
    generate(position, position.side);
    std::vector<Move> moves;
    for (std::int32_t i = 1; i <= list.count; ++i) {
        moves.push_back(list.move(i));
    }
    return moves;
}

std::string text_of(const Move& move) {
    return move_text(move.posFrom, move.posTo, move.posInfo);
}

std::vector<std::string> legal_texts(const Table& position, const std::vector<Move>& moves) {
    std::vector<std::string> texts;
    for (const Move& move : moves) {
        Table copy = position;
        make_plain(copy, move.posFrom, move.posTo, move.posInfo);
        if (!in_check(copy, copy.side)) {
            texts.push_back(text_of(move));
        }
    }
    return texts;
}

}  // namespace

void begin_scene() {
    reset_all();
    reset_fake_clock();
    time_limit_ms = std::numeric_limits<std::uint32_t>::max();
    iteration_depth = 1;
}

Move move_of(const Table& position, std::string_view text) {
    for (const Move& move : generated(position, gen_all)) {
        if (text_of(move) == text) {
            return move;
        }
    }
    ADD_FAILURE() << "no move " << text << " in " << fen_of(position);
    return {};
}

Table after(Table position, const std::vector<std::string_view>& moves) {
    for (const std::string_view text : moves) {
        const Move move = move_of(position, text);
        make_plain(position, move.posFrom, move.posTo, move.posInfo);
        position.side ^= 1;
    }
    return position;
}

std::vector<std::string> legal_moves(const Table& position) {
    return legal_texts(position, generated(position, gen_legal));
}

std::vector<std::string> legal_captures(const Table& position) {
    return legal_texts(position, generated(position, gen_captures));
}

std::int32_t raised_by(const Move& move) {
    return history_good[static_cast<std::size_t>(move.posFrom)]
                       [static_cast<std::size_t>(move.posTo)];
}

std::int32_t cut_by(const Move& move) {
    return history_cut[static_cast<std::size_t>(move.posFrom)]
                      [static_cast<std::size_t>(move.posTo)];
}

void stood_in_game(const Table& position, int times) {
    for (int i = 0; i < times; ++i) {
        game_store(position.side, position.Array.data());
    }
}

HashEntry& put_entry(const Table& position, std::int32_t depth, HashType type, std::int32_t score) {
    HashEntry& entry = hash_slot(position);
    entry = {};
    entry.key = position.hash_lock;
    entry.score = score;
    entry.depth = static_cast<std::int8_t>(depth);
    entry.type = type;
    entry.side = static_cast<std::int8_t>(position.side);
    entry.age = hash_age;
    return entry;
}

HashEntry& put_entry_with_move(const Table& position, std::int32_t depth, HashType type,
                               std::int32_t score, const Move& move) {
    HashEntry& entry = put_entry(position, depth, type, score);
    entry.has_move = 1;
    entry.from = static_cast<std::uint8_t>(move.posFrom);
    entry.to = static_cast<std::uint8_t>(move.posTo);
    entry.info = static_cast<std::int8_t>(move.posInfo);
    return entry;
}

bool is_stored(const Table& position) {
    return hash_slot(position).key == position.hash_lock &&
           hash_slot(position).side == static_cast<std::int8_t>(position.side);
}

std::vector<std::string> log_lines() {
    std::ifstream file("corvane.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}
