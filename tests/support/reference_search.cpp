// SPDX-License-Identifier: MIT
// Written for reading beside the rules, not for speed.
#include "support/reference_search.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"
#include "board/position_keys.h"
#include "shell/game_record.h"
#include "support/position.h"

namespace {

constexpr int mate = 600000;
constexpr int last_ply = 69;
constexpr int never_cut = 1000000;

/// An index; past the limit of plies all further ones share the last row.
std::size_t at(int number) {
    return std::min(static_cast<std::size_t>(number), ReferenceSearch::rows - 1);
}

char kind_of(PieceCode code) {
    constexpr std::array<std::pair<PieceCode, char>, 10> kinds = {{{w_knight, 'N'},
                                                                   {w_bishop, 'B'},
                                                                   {w_rook, 'R'},
                                                                   {w_queen, 'Q'},
                                                                   {w_king, 'K'},
                                                                   {b_knight, 'N'},
                                                                   {b_bishop, 'B'},
                                                                   {b_rook, 'R'},
                                                                   {b_queen, 'Q'},
                                                                   {b_king, 'K'}}};
    for (const auto& [known, letter] : kinds) {
        if (known == code) {
            return letter;
        }
    }
    return 'P';
}

/// The victim first, then the cheaper attacker; a knight that takes a bishop stands apart.
int capture_score(char attacker, char victim) {
    if (attacker == 'N' && victim == 'B') {
        return 26;
    }
    const int of_victim = victim == 'K'                    ? 0
                          : victim == 'Q'                  ? 6
                          : victim == 'R'                  ? 12
                          : victim == 'N' || victim == 'B' ? 18
                                                           : 30;
    const int of_attacker = attacker == 'P'                      ? 1
                            : attacker == 'N' || attacker == 'B' ? 2
                            : attacker == 'R'                    ? 4
                            : attacker == 'Q'                    ? 5
                                                                 : 6;
    return of_victim + of_attacker;
}

int rank_number(Square square) {
    return 10 - square / 10;
}

bool goes_to_seventh(const Table& position, Square from) {
    return (position.at(from) == w_pawn && rank_number(from) == 6) ||
           (position.at(from) == b_pawn && rank_number(from) == 3);
}

int officers(const Table& position, Side side) {
    return side == white ? std::popcount(position.WKnight | position.WBishop | position.WRook |
                                         position.WQuins)
                         : std::popcount(position.BKnight | position.BBishop | position.BRook |
                                         position.BQuins);
}

bool stood_twice(const Table& position, Side to_move) {
    return game_repeated_twice(to_move, position.Array.data());
}

std::string text_of(const Move& move) {
    return move_text(move.posFrom, move.posTo, move.posInfo);
}

}  // namespace

ReferenceSearch::ReferenceSearch(std::size_t slot_count)
    : slots(slot_count), lines(rows, std::vector<Move>(rows, Move{})), lengths(rows, 0) {
    for (auto& row : cutting) {
        row.fill(never_cut);
    }
}

void ReferenceSearch::begin(const Table& position) {
    root_position_ = position;
    compute_keys(root_position_);
    MoveList list;
    cur_moves = &list;
    gen_legal(root_position_, root_position_.side);
    root_moves_.clear();
    for (int i = 1; i <= list.count; ++i) {
        root_moves_.push_back(list.move(i));
    }
    root_results.assign(root_moves_.size(), 0);
    for (std::size_t from = 0; from < raised.size(); ++from) {
        raised[from].fill(0);
        cutting[from].fill(never_cut);
    }
    for (auto& row : lines) {
        std::fill(row.begin(), row.end(), Move{});
    }
    nodes = 0;
    age = age == '1' ? '0' : '1';
    ++readings;
    start_tick = ticks;
    ticks += ticks_per_reading;
}

int ReferenceSearch::iterate(int depth, int alpha, int beta) {
    iteration = depth;
    std::fill(root_results.begin(), root_results.end(), 0);
    ply = 0;
    following = true;
    stopped = false;
    const int score = root(depth, alpha, beta);
    if (stopped) {
        return score;
    }
    // A stable sort, high to low.
    for (std::size_t done = 1; done < root_moves_.size(); ++done) {
        for (std::size_t i = done; i > 0 && root_results[i - 1] < root_results[i]; --i) {
            std::swap(root_results[i - 1], root_results[i]);
            std::swap(root_moves_[i - 1], root_moves_[i]);
        }
    }
    return score;
}

bool ReferenceSearch::time_is_over() {
    ++readings;
    const std::uint32_t now = ticks;
    ticks += ticks_per_reading;
    return now - start_tick >= limit_ms;
}

bool ReferenceSearch::clock_says_stop() {
    if (nodes % 2048 == 0) {
        return false;
    }
    if (time_is_over()) {
        stopped = true;
        return true;
    }
    return false;
}

void ReferenceSearch::take_line(int at_ply, const Move& move) {
    std::vector<Move>& own = lines[at(at_ply)];
    const std::vector<Move>& next = lines[at(at_ply + 1)];
    own[at(at_ply)] = move;
    for (int column = at_ply + 1; column < lengths[at(at_ply + 1)]; ++column) {
        own[at(column)] = next[at(column)];
    }
    lengths[at(at_ply)] = lengths[at(at_ply + 1)];
}

int ReferenceSearch::root(int depth, int alpha, int beta) {
    ++nodes;
    if (time_is_over()) {
        stopped = true;
        return alpha;
    }
    lengths[at(ply)] = ply;
    const bool checked = in_check(root_position_, root_position_.side);
    int legal = 0;
    for (std::size_t i = 0; i < root_moves_.size(); ++i) {
        if (time_is_over()) {
            stopped = true;
            return alpha;
        }
        const Move move = root_moves_[i];
        Table copy = root_position_;
        make_plain(copy, move.posFrom, move.posTo, move.posInfo);
        if (stood_twice(copy, 1 - copy.side)) {
            root_results[i] = 0;
            if (alpha < 0) {
                take_line(ply, move);
                alpha = 0;
            }
            continue;
        }
        ply = ply + 1;
        ++legal;
        copy.side = 1 - copy.side;
        int move_depth = depth;
        if (depth == 1 && in_check(copy, copy.side)) {
            move_depth = 2;
        }
        const int score = -search(Node::normal, copy, move_depth - 1, -beta, -alpha);
        root_results[i] = score;
        ply = ply - 1;
        if (score > alpha) {
            raised[at(move.posFrom)][at(move.posTo)] += 3 * depth;
            if (score >= beta) {
                cutting[at(move.posFrom)][at(move.posTo)] -= 3 * depth;
                return beta;
            }
            alpha = score;
            take_line(ply, move);
        }
    }
    if (legal > 0) {
        return alpha;
    }
    return checked ? ply - mate : 0;
}

int ReferenceSearch::order(const Table& position, const Move& move, bool with_hash_move) const {
    const PieceCode victim = position.at(move.posTo);
    if (victim != empty_square) {
        const char attacker = kind_of(position.at(move.posFrom));
        const bool queen_takes_pawn = attacker == 'Q' && kind_of(victim) == 'P';
        if (with_hash_move || !queen_takes_pawn) {
            return capture_score(attacker, kind_of(victim));
        }
    }
    const int cut = cutting[at(move.posFrom)][at(move.posTo)];
    return cut < never_cut ? cut : never_cut - raised[at(move.posFrom)][at(move.posTo)];
}

std::vector<ReferenceSearch::Candidate> ReferenceSearch::generated(
    const Table& position, void (*generate)(const Table&, Side), const Slot* hash_move) {
    MoveList moves;
    cur_moves = &moves;
    generate(position, position.side);
    std::vector<Candidate> list;
    for (int i = 1; i <= moves.count; ++i) {
        const Move& move = moves.move(i);
        list.push_back({move, order(position, move, hash_move != nullptr)});
    }
    if (hash_move != nullptr) {
        for (Candidate& candidate : list) {
            const Move& move = candidate.move;
            if (move.posFrom == hash_move->from && move.posTo == hash_move->to &&
                move.posInfo == static_cast<PieceCode>(hash_move->info)) {
                candidate.score = -10000000;
                break;
            }
        }
    }
    return list;
}

void ReferenceSearch::mark_line_move(std::vector<Candidate>& list) {
    if (!following) {
        return;
    }
    following = false;
    for (Candidate& candidate : list) {
        if (candidate.move == lines[0][at(ply)]) {
            candidate.score = -100000;
            following = true;
            return;
        }
    }
}

ReferenceSearch::Candidate ReferenceSearch::take_best(std::vector<Candidate>& list,
                                                      std::size_t& place) {
    place = 0;
    for (std::size_t i = 1; i < list.size(); ++i) {
        if (list[i].score < list[place].score) {
            place = i;
        }
    }
    return list[place];
}

int ReferenceSearch::search(Node kind, Table& position, int depth, int alpha, int beta) {
    // 1, 2, 3: repetition, line, limit.
    if (kind != Node::null && ply < 3 && stood_twice(position, position.side)) {
        return 0;
    }
    lengths[at(ply)] = ply;
    if (ply >= last_ply) {
        return quiesce(position, alpha, beta);
    }
    // 4, 5: horizon.
    const bool checked = in_check(position, position.side);
    if (depth < 1 && !checked) {
        return quiesce(position, alpha, beta);
    }
    ++nodes;
    // 6: table.
    Slot& slot = slots[position.hash_index % slots.size()];
    bool use_hash_move = false;
    if (kind != Node::null && !following && slot.key == position.hash_lock &&
        slot.side == static_cast<int>(position.side)) {
        if (slot.depth < depth) {
            use_hash_move = slot.has_move && (kind == Node::normal || depth - slot.depth < 4);
        } else {
            if (slot.type == 0) {
                return slot.score;
            }
            if (slot.type == 1 && slot.score >= beta) {
                return slot.score;
            }
            if (slot.type == 2 && slot.score <= alpha) {
                return slot.score;
            }
        }
    }
    // 7: stop.
    if (stopped || clock_says_stop()) {
        return alpha;
    }
    // 10: static cut.
    if (kind == Node::normal && iteration >= 3 && depth <= 2 && !checked &&
        position.capture_flag == 0 && Table::evaluate(position, alpha, beta) - 50 >= beta) {
        return beta;
    }
    // 11: null move.
    if (kind == Node::normal && position.capture_flag == 0 && !checked && beta < 3000 &&
        officers(position, position.side) >= 2) {
        if (depth >= 4 || Table::evaluate(position, alpha, beta) >= beta) {
            position.side = 1 - position.side;
            const int score = -search(Node::null, position, depth - 4, -beta, 1 - beta);
            position.side = 1 - position.side;
            if (score >= beta) {
                return beta;
            }
        }
    }
    // 12, 13, 14: moves.
    std::vector<Candidate> list =
        generated(position, checked ? gen_evasions : gen_all, use_hash_move ? &slot : nullptr);
    mark_line_move(list);
    // 15: loop.
    int legal = 0;
    bool improved = false;
    Move best{};
    while (!list.empty()) {
        std::size_t place = 0;
        const Move move = take_best(list, place).move;
        const bool pawn_note = kind != Node::null && goes_to_seventh(position, move.posFrom);
        UndoRecord undo;
        make(position, move.posFrom, move.posTo, move.posInfo, undo);
        list[place] = list.back();
        list.pop_back();
        if (in_check(position, position.side)) {
            unmake(position, undo);
            continue;
        }
        ++legal;
        ++ply;
        position.side = 1 - position.side;
        const bool extended = in_check(position, position.side) || pawn_note;
        Node next = kind;
        if (kind == Node::normal && extended) {
            next = Node::extended;
        } else if (kind == Node::extended) {
            next = Node::normal;
        }
        const int score = -search(next, position, extended ? depth : depth - 1, -beta, -alpha);
        unmake(position, undo);
        position.side = 1 - position.side;
        if (stopped) {
            return alpha;
        }
        --ply;
        if (score <= alpha) {
            continue;
        }
        raised[at(move.posFrom)][at(move.posTo)] += depth;
        alpha = score;
        if (alpha >= beta) {
            // 17: cut.
            cutting[at(move.posFrom)][at(move.posTo)] -= depth;
            if (kind != Node::null && !following && !(slot.depth >= depth && slot.age == age)) {
                slot = {position.hash_lock,
                        score,
                        depth,
                        1,
                        static_cast<int>(position.side),
                        true,
                        move.posFrom,
                        move.posTo,
                        static_cast<std::int8_t>(move.posInfo),
                        age};
            }
            return score;
        }
        take_line(ply, move);
        improved = true;
        best = move;
    }
    // 16: end of the list.
    if (legal == 0) {
        return checked ? ply - mate : 0;
    }
    if (kind == Node::null || following || (slot.depth >= depth && slot.age == age)) {
        return alpha;
    }
    slot.key = position.hash_lock;
    slot.age = age;
    slot.side = static_cast<int>(position.side);
    slot.depth = depth;
    slot.score = alpha;
    slot.type = improved ? 0 : 2;
    slot.has_move = improved;
    if (improved) {
        slot.from = best.posFrom;
        slot.to = best.posTo;
        slot.info = static_cast<std::int8_t>(best.posInfo);
    }
    return alpha;
}

int ReferenceSearch::quiesce(Table& position, int alpha, int beta) {
    ++nodes;
    if (clock_says_stop()) {
        return alpha;
    }
    const int stand_pat = Table::evaluate(position, alpha, beta);
    if (stand_pat > alpha) {
        if (stand_pat >= beta) {
            return stand_pat;
        }
        alpha = stand_pat;
    }
    const bool checked = in_check(position, position.side);
    const Slot& slot = slots[position.hash_index % slots.size()];
    if (slot.key == position.hash_lock && slot.side == static_cast<int>(position.side) &&
        slot.depth >= 1) {
        if (slot.type == 0 || (slot.type == 1 && slot.score >= beta) ||
            (slot.type == 2 && slot.score <= alpha)) {
            return slot.score;
        }
    }
    std::vector<Candidate> list =
        generated(position, checked ? gen_evasions : gen_captures, nullptr);
    mark_line_move(list);
    int legal = 0;
    while (!list.empty()) {
        std::size_t place = 0;
        const Move move = take_best(list, place).move;
        UndoRecord undo;
        make(position, move.posFrom, move.posTo, move.posInfo, undo);
        list[place] = list.back();
        list.pop_back();
        if (in_check(position, position.side)) {
            unmake(position, undo);
            continue;
        }
        ++ply;
        ++legal;
        lengths[at(ply)] = ply;
        if (ply >= last_ply) {
            return Table::evaluate(position, alpha, beta);
        }
        position.side = 1 - position.side;
        const int score = -quiesce(position, -beta, -alpha);
        unmake(position, undo);
        position.side = 1 - position.side;
        --ply;
        if (score <= alpha) {
            continue;
        }
        if (score >= beta) {
            return beta;
        }
        alpha = score;
        take_line(ply, move);
    }
    return legal == 0 && checked ? ply - mate : alpha;
}

std::string ReferenceSearch::line() const {
    std::string text;
    for (int i = 0; i < lengths[0]; ++i) {
        text += text.empty() ? "" : " ";
        text += text_of(lines[0][at(i)]);
    }
    return text;
}
