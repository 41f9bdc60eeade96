// SPDX-License-Identifier: MIT
// The two reports, mirrored like all output.
#include "board/make_report.h"

#include "board/search_line.h"
#include "shell/log.h"
#include "shell/position_text.h"

namespace {

/// Intended(black-report-is-short): after the node count Black's report goes straight to its
/// closing line, without the ply and the line of moves.
constexpr bool reports_line(Side side) {
    return side == white;
}

void report_line_of_moves() {
    mirror("ply =  ", ply, end_line);
    mirror("length_vetka[ply] =  ", line_length(ply), end_line);
    for (std::int32_t i = 0; i < line_length(ply) && i < line_rows; ++i) {
        const std::size_t column = line_slot(i);
        const Move& move = vetka[column][column];
        print_move(move.posFrom, move.posTo, move.posInfo);
    }
    mirror(end_line);
}

}  // namespace

void report_unknown_promotion(PieceCode info) {
    mirror("ERRPR net takoi figuri pos Info: ", info, end_line);
}

void report_wrong_promotion(const Table& table, Side side, Square from, Square to, PieceCode info) {
    mirror(side == white ? "SUPER ERROR w_figure(posInfo)  == 0 pos Info: "
                         : "SUPER ERROR b_figure(posInfo)  == 0 pos Info: ",
           info, end_line);
    mirror("Array[posTo] =  ", table.at(to), end_line);
    mirror("posTo =  ", to, end_line);
    mirror("posFrom =  ", from, end_line);
    dump_position(table);
    mirror("TotalNodes =  ", TotalNodes, end_line);
    if (reports_line(side)) {
        report_line_of_moves();
    }
    mirror("____________________________________", end_line);
}
