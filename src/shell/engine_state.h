// SPDX-License-Identifier: MIT
// The engine-wide variables of the shell: clocks, level, modes, the game's line and the settings
// of the configuration file. One structure, one instance.
#pragma once

#include <string>

#include "board/move.h"

/// Deepest iteration unless `sd` says otherwise.
inline constexpr std::int32_t usual_max_depth = 70;

struct EngineState {
    // The clock. The protocol counts in hundredths of a second.
    std::int32_t clock_left = 30000;   ///< own clock, hundredths of a second
    std::int32_t other_clock = 555;    ///< the opponent's; goes to the log and nowhere else
    std::int32_t all_moves_game = 40;  ///< moves per control; 0: all the rest of the game
    std::int32_t make_moves_game = 0;  ///< moves made by the computer in this control
    std::int32_t time_plus = 0;        ///< increment, seconds
    bool st_mode = false;              ///< fixed time per move
    std::int32_t st_time = 0;          ///< that time, hundredths of a second
    std::int32_t max_depth = usual_max_depth;

    // The game.
    bool force_mode = false;       ///< moves are recorded without an answer
    std::int32_t fifty_count = 0;  ///< half moves counted for the fifty-move claim
    std::int32_t game_plies = 0;   ///< half moves of the game
    bool book_out = false;         ///< the opening book is not consulted
    std::string game_line;         ///< the moves so far, squares only, without blanks
    Side root_side = white;        ///< the side that the computer last thought for
    bool hint_valid = false;
    Move hint_move{};  ///< the reply expected to the computer's last move

    // Settings.
    std::int32_t strong_level = 0;         ///< 0..1000; stored and read by nothing
    std::string TbPath;                    ///< where endgame tables lie; empty: nowhere
    std::int32_t tb_cache_megabytes = 32;  ///< cache of the endgame tables, megabytes
    bool resign_on = false;                ///< a lost game may be given up
    bool check_on = false;                 ///< unknown words are reported
};

/// The one instance.
extern EngineState engine;

/// All as at program start.
void reset_engine_state();

/// Stores the `strong` level, clamped to 0..1000.
void set_strong_level(std::int32_t level);
