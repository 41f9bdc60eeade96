// SPDX-License-Identifier: MIT
// The search once more, in the plainest way and without a line of the engine's: a node is one
// function that goes through its steps from top to bottom. Move generation, making moves, the check
// test, the evaluation and the game record are the engine's own; tables, ordering, clock, lines and
// history are not. Slow; for comparing trees.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "board/move.h"
#include "board/table.h"

class ReferenceSearch {
  public:
    enum class Node { normal, extended, null };

    /// One slot of its table, with the values of an empty one.
    struct Slot {
        std::uint32_t key = 777;
        int score = 220;
        int depth = -50;
        int type = 100;
        int side = 5;
        bool has_move = false;
        int from = 0;
        int to = 0;
        int info = 0;
        int age = 0;
    };

    explicit ReferenceSearch(std::size_t slots);

    /// A new search of a position: root list, empty history, the other age, clock read once.
    void begin(const Table& position);

    /// One iteration with the window, sorted afterwards unless the time ran out.
    int iterate(int iteration, int alpha, int beta);

    /// One node at the current `ply`; `position` is put back.
    int search(Node kind, Table& position, int depth, int alpha, int beta);
    int quiesce(Table& position, int alpha, int beta);

    /// Row 0 of the line as text.
    [[nodiscard]] std::string line() const;

    /// The first difference between this state and the engine's globals; empty if there is none.
    /// `lines`: the table of lines is compared too.
    [[nodiscard]] std::string difference_from_engine(bool lines) const;

    /// Rows of the table of lines. More than the engine has: past the limit of 69 plies the count
    /// of plies can drift.
    static constexpr std::size_t rows = 400;

    std::uint32_t nodes = 0;
    int ply = 0;
    int iteration = 0;
    bool stopped = false;
    bool following = false;

    std::uint32_t ticks = 0;
    std::uint32_t ticks_per_reading = 0;
    std::uint32_t readings = 0;
    std::uint32_t start_tick = 0;
    std::uint32_t limit_ms = 0xffffffff;

    char age = '1';
    std::vector<Slot> slots;
    std::array<std::array<int, 120>, 120> raised{};   ///< from, to: how much it raised alpha
    std::array<std::array<int, 120>, 120> cutting{};  ///< from, to: 1000000 less the cuts
    std::vector<std::vector<Move>> lines;
    std::vector<int> lengths;
    std::vector<int> root_results;

  private:
    struct Candidate {
        Move move;
        int score;
    };

    bool time_is_over();
    bool clock_says_stop();
    int root(int depth, int alpha, int beta);
    void take_line(int at_ply, const Move& move);
    [[nodiscard]] int order(const Table& position, const Move& move, bool with_hash_move) const;
    std::vector<Candidate> generated(const Table& position, void (*generate)(const Table&, Side),
                                     const Slot* hash_move);
    void mark_line_move(std::vector<Candidate>& list);
    static Candidate take_best(std::vector<Candidate>& list, std::size_t& place);

    Table root_position_{};
    std::vector<Move> root_moves_;
};
