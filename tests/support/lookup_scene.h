// SPDX-License-Identifier: MIT
// A game somewhere in its opening, and books to look it up in.
#pragma once

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "book/book_move.h"
#include "shell/engine_state.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/loaded_books.h"
#include "support/reset_all.h"

class LookupScene : public testing::Test {
  protected:
    LookupScene() {
        reset_all(1);
        reset_fake_clock();
    }
    ~LookupScene() override { reset_all(1); }

    /// The game so far.
    static void played(const std::string& line) {
        engine.game_line = line;
        engine.game_plies = static_cast<std::int32_t>(line.size() / 4);
    }

    /// A lookup; gives what it printed.
    std::string lookup() {
        const CapturedOutput output;
        move_ = BookMove();
        return output.text();
    }

    /// The same in White's book of this text, with an empty one for Black.
    std::string lookup_in(const std::string& white_text) {
        load_books(white_text, "");
        return lookup();
    }

    static std::string hint() {
        const CapturedOutput output;
        BookHint();
        return output.text();
    }

    [[nodiscard]] static std::string repeated(const std::string& text, std::size_t times) {
        std::string all;
        for (std::size_t i = 0; i < times; ++i) {
            all += text;
        }
        return all;
    }

    /// Lines of one move each, all different: a1a1, a1a2 and so on. They need not be legal.
    [[nodiscard]] static std::vector<std::string> different_lines(std::size_t count) {
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < count; ++i) {
            std::string line = "a1";
            line += static_cast<char>('a' + i / 8 % 8);
            line += static_cast<char>('1' + i % 8);
            lines.push_back(line + "\n");
        }
        return lines;
    }

    [[nodiscard]] static std::string joined(const std::vector<std::string>& lines) {
        std::string all;
        for (const std::string& line : lines) {
            all += line;
        }
        return all;
    }

    Move move_{};  ///< what the last lookup gave
};
