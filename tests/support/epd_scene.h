// SPDX-License-Identifier: MIT
// Suites of test positions in an empty folder, and a position whose search is known to the node.
#pragma once

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/epd_line.h"
#include "drivers/epd_test.h"
#include "shell/position_text.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

/// One legal move, a8b8.
inline const std::string one_move_line = "K7/8/1k6/8/8/8/8/7r w - - ";

/// Two legal moves, a1a2 and b1, in this order.
inline const std::string two_moves_line = "8/8/8/8/8/2k5/8/K7 w - - ";

/// The position of a line, on a board of its own.
inline Table epd_position(std::string_view line) {
    Table table;
    set_epd_position(line, table);
    return table;
}

class EpdScene : public testing::Test {
  protected:
    EpdScene() { begin_scene(); }
    ~EpdScene() override { begin_scene(); }

    /// Writes a suite and runs it; gives what was printed.
    static std::string run(const std::string& suite, std::int32_t seconds) {
        write_file("suite", suite);
        const CapturedOutput output;
        epd_test(seconds, "suite");
        return output.text();
    }

    /// The lines printed between "Start..." and the verdict of the first test.
    static std::vector<std::string> iterations(const std::string& suite, std::int32_t seconds) {
        std::istringstream in(run(suite, seconds));
        std::vector<std::string> lines;
        bool started = false;
        for (std::string line; std::getline(in, line) && !line.starts_with("move: ");) {
            if (started) {
                lines.push_back(line);
            }
            started = started || line == "Start...";
        }
        return lines;
    }

    /// The first line of what was printed that begins so; the text behind the beginning.
    static std::string line_of(const std::string& text, const std::string& beginning) {
        const std::size_t at = text.find("\n" + beginning);
        if (at == std::string::npos) {
            return "(none)";
        }
        const std::size_t start = at + 1 + beginning.size();
        return text.substr(start, text.find('\n', start) - start);
    }

    /// The board of a line as it is dumped.
    static std::string dumped(const std::string& line) {
        const CapturedOutput output;
        dump_position(epd_position(line));
        return output.text();
    }

    /// Both moves of `two_moves_line` lead to positions that have stood twice: an iteration is one
    /// node, four readings of the clock with the one for its line, and a score of 0.
    static void repeat_both_moves() {
        const Table position = epd_position(two_moves_line);
        stood_in_game(after(position, {"a1a2"}), 2);
        stood_in_game(after(position, {"a1b1"}), 2);
    }

  private:
    TemporaryFolder folder_;
};
