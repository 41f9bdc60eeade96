// SPDX-License-Identifier: MIT
// The computer's move: the opening book is asked; else the clock is divided, the search deepens
// inside an aspiration window, the move is made, stored and announced. Nothing reads the input
// meanwhile.
#include "search/computer_move.h"

#include <array>
#include <cstdlib>
#include <string>

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/position_keys.h"
#include "board/square_tables.h"
#include "book/book_move.h"
#include "platform/int32_math.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_state.h"
#include "search/thinking_line.h"
#include "search/time_limit.h"
#include "shell/draw_claims.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "shell/position_text.h"

std::int32_t expected_clock = 0;

namespace {

constexpr std::int32_t infinity = 60000001;
constexpr std::int32_t narrow_limit = 75;  ///< a window no wider than this is retried wider first
constexpr std::int32_t half_window = 37;
constexpr std::int32_t retry_width = 200;
constexpr std::int32_t strange_margin = 90;  ///< a jump of the score that asks for more time
constexpr std::int32_t strange_first_depth = 3;
constexpr std::uint32_t strange_time_factor = 3;
constexpr std::int32_t resign_below = -50000;
constexpr std::int32_t ms_per_hundredth = 10;

// Kept between calls.
std::int32_t last_score = 0;  ///< of the last iteration that ended inside its window
std::int32_t prev_score = 0;  ///< `last_score` when the previous search's move was played
bool prev_score_valid = false;
bool strange_armed = false;  ///< the time may still be extended in this search

/// The aspiration window of the next iteration.
struct RootWindow {
    std::int32_t RootAlpha = -infinity;
    std::int32_t RootBeta = infinity;

    [[nodiscard]] bool is_narrow() const { return RootBeta - RootAlpha <= narrow_limit; }

    void around(std::int32_t score) {
        RootAlpha = score - half_window;
        RootBeta = score + half_window;
    }

    /// A window of the retry width below a score that failed low, or all that lies below.
    void after_fail_low(std::int32_t score) {
        if (is_narrow()) {
            RootBeta = score + 1;
            RootAlpha = RootBeta - retry_width;
        } else {
            RootAlpha = -infinity;
        }
    }

    /// The same above a score that failed high.
    void after_fail_high(std::int32_t score) {
        if (is_narrow()) {
            RootAlpha = score - 1;
            RootBeta = RootAlpha + retry_width;
        } else {
            RootBeta = infinity;
        }
    }
};

/// A king's castling move and the label that it is announced with.
struct CastlingMove {
    PieceCode king;
    Square from;
    Square to;
    PieceCode label;
};

constexpr std::array<CastlingMove, 4> castling_moves = {{
    {w_king, e1, g1, label_white_short},
    {w_king, e1, c1, label_white_long},
    {b_king, e8, g8, label_black_short},
    {b_king, e8, c8, label_black_long},
}};

/// The label of a king's castling move on `position`; 0 for any other move.
PieceCode castling_label(const Table& position, const Move& move) {
    for (const CastlingMove& castling : castling_moves) {
        if (move.posFrom == castling.from && move.posTo == castling.to &&
            position.at(castling.from) == castling.king) {
            return castling.label;
        }
    }
    return 0;
}

/// Announces and makes a move of the book.
void play_book_move(Table& position, const Move& move) {
    const PieceCode info = castling_label(position, move);
    ++engine.game_plies;
    mirror("move ");
    print_move(move.posFrom, move.posTo, info);
    mirror(end_line);
    // Intended(book-move-leaves-no-record): the game record, the count to fifty moves and the clock
    // are not touched, and the count of moves is not wrapped at the end of a control.
    make_plain(position, move.posFrom, move.posTo, info);
    ++engine.make_moves_game;
    engine.game_line += square_names[at_square(move.posFrom)];
    engine.game_line += square_names[at_square(move.posTo)];
}

/// Plays a move of the opening book, unless it is out of use or has none.
bool book_has_played(Table& position) {
    if (engine.book_out) {
        return false;
    }
    const Move move = BookMove();
    if (engine.book_out) {
        log_info("OPEN BOOK DO NOT", end_line);
        return false;
    }
    play_book_move(position, move);
    return true;
}

/// How the deepening ended.
struct SearchResult {
    Move best_move;
    std::int32_t score = 0;  ///< of the last call of the root search; 0 where none ran
    bool resigned = false;
};

void log_time(const TimeLimit& time) {
    log_info(">>>>>>> Time for analyze: time_begin = ", search_start_tick, end_line);
    if (engine.st_mode) {
        log_info("ST_MODE IN Table::Mashine_chod()", end_line, time.limit_ms, end_line);
    }
    log_info(">>>>>>> Time for analyze: all_moves_game = ", engine.all_moves_game, end_line);
    log_info(">>>>>>> Time for analyze: make_moves_game = ", engine.make_moves_game, end_line);
    log_info(">>>>>>> Time for analyze:  time_plus = ", engine.time_plus, end_line);
    log_info(end_line);
    log_info(">>>>>>> Time for analyze: Time=", time.clock_ms, end_line);
    log_info(">>>>>>> Time for analyze: ", time.limit_ms, end_line);
    log_info(">>>>>>> Time for analyze: not DWORD", time.sudden_death_signed, end_line);
}

void log_window(const RootWindow& window) {
    constexpr std::size_t indent = 41;
    log_info(std::string(indent, ' '), ">>>>>>> ", "RootAlpha = ", window.RootAlpha, " - ",
             " RootBeta = ", window.RootBeta, end_line);
}

void start_search(const Table& position) {
    ++engine.game_plies;
    engine.root_side = position.side;
    TotalNodes = 0;
    ply = 0;
    vetka = {};
    search_start_tick = GetTickCount();
    const TimeLimit time =
        time_for_move({engine.clock_left, engine.all_moves_game, engine.make_moves_game,
                       engine.time_plus, engine.st_mode, engine.st_time});
    time_limit_ms = time.limit_ms;
    log_time(time);
}

/// Fills the root list. The history that scores it is still that of the last search.
void prepare_root(Table& position, MoveList& list) {
    cur_moves = &list;
    gen_legal(position, position.side);
    score_moves(position, list);
    history_reset();
    compute_keys(position);
    hash_flip_age();
}

void note_hint() {
    engine.hint_move = vetka[0][1];
    engine.hint_valid = true;
}

/// Gives the search more time, once, if the score has jumped since the last move.
void extend_time_if_strange(std::int32_t score) {
    if (iteration_depth >= strange_first_depth && prev_score_valid && strange_armed &&
        std::abs(wrap_sub(prev_score, score)) >= strange_margin) {
        time_limit_ms *= strange_time_factor;
        strange_armed = false;
        prev_score = score;
        mirror("Warning: Very strange value! ", end_line);
    }
}

/// Iterative deepening. A move that only failed high is not played unless the re-search confirms
/// it.
SearchResult deepen(const Table& position, MoveList& list) {
    SearchResult result{list.move(1)};
    RootWindow window;
    iteration_depth = 1;
    while (list.count > 1 && iteration_depth <= engine.max_depth) {
        reset_root_scores(list.count);
        ply = 0;
        follow_pv = 1;
        stop_flag = 0;
        log_window(window);
        const std::int32_t score =
            Table::search_root(position, iteration_depth, window.RootAlpha, window.RootBeta, list);
        result.score = score;
        if (stop_flag != 0) {
            break;
        }
        sort_root_list(list);
        if (score <= window.RootAlpha) {
            window.after_fail_low(score);
            continue;
        }
        if (score >= window.RootBeta) {
            print_thinking_line(score);
            note_hint();
            window.after_fail_high(score);
            continue;
        }
        result.best_move = list.move(1);
        extend_time_if_strange(score);
        print_thinking_line(score);
        last_score = score;
        note_hint();
        if (engine.resign_on && score < resign_below) {
            mirror("resign", end_line);
            result.resigned = true;
            return result;
        }
        window.around(score);
        ++iteration_depth;
    }
    return result;
}

/// Plays the move on the game's position, stores it and makes the claims.
void play_move(Table& position, const SearchResult& result) {
    const Move& move = result.best_move;
    const Side opponent = position.side ^ 1;
    make_plain(position, move.posFrom, move.posTo, move.posInfo);
    game_store(opponent, position.Array.data());
    claim_after_computer_move(position, opponent, result.score);
    // Intended(fifty-count-after-move): counted after the move is made, when its from-square is
    // empty and its target occupied, so every searched move sets the count to 0.
    count_fifty(position, move.posFrom, move.posTo);
}

void announce(const Move& move) {
    mirror("move ");
    prev_score_valid = true;
    prev_score = last_score;
    print_move(move.posFrom, move.posTo, move.posInfo);
    mirror(end_line);
}

void count_move() {
    ++engine.make_moves_game;
    if (engine.make_moves_game == engine.all_moves_game) {
        engine.make_moves_game = 0;
    }
}

}  // namespace

void forget_previous_score() {
    prev_score_valid = false;
}

void reset_computer_move() {
    expected_clock = 0;
    last_score = 0;
    prev_score = 0;
    prev_score_valid = false;
    strange_armed = false;
}

void Table::Mashine_chod() {
    strange_armed = true;
    engine.root_side = side;
    if (book_has_played(*this)) {
        return;
    }
    start_search(*this);
    MoveList list;
    list.move(1) = Move{};  // what is announced when there is not even a move to try
    prepare_root(*this, list);
    const SearchResult result = deepen(*this, list);
    if (result.resigned) {
        return;
    }
    if (list.count > 0) {
        play_move(*this, result);
    }
    count_move();
    announce(result.best_move);
    const std::uint32_t used_ms = GetTickCount() - search_start_tick;
    log_info(">>>>>>> Used time: ", used_ms, end_line);
    expected_clock =
        wrap_sub(wrap_mul(ms_per_hundredth, engine.clock_left), static_cast<std::int32_t>(used_ms));
}
