// SPDX-License-Identifier: MIT
// One move of a random game.
#include "support/random_game.h"

#include <vector>

#include "support/generated.h"

bool play_random_move(Table& table, RandomNumbers& random) {
    std::vector<Move> moves = generated(gen_legal, table);
    if (moves.empty()) {
        return false;
    }
    if (random.below(6) == 0) {
        std::vector<Move> sharp;
        for (const Move& move : moves) {
            if (move.posInfo != 0 || table.at(move.posTo) != empty_square) {
                sharp.push_back(move);
            }
        }
        if (!sharp.empty()) {
            moves = sharp;
        }
    }
    const Move move = moves[random.below(static_cast<std::uint32_t>(moves.size()))];
    make_plain(table, move.posFrom, move.posTo, move.posInfo);
    table.side ^= 1;
    return true;
}
