// SPDX-License-Identifier: MIT
// Building a book where files are missing, full, huge or no PGN at all, and in the midst of a game.
// Whatever happens, the books are either complete or as before.
#include <filesystem>
#include <sstream>

#include "board/set_up.h"
#include "book/book_builder.h"
#include "shell/command_loop.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/book_scene.h"
#include "support/captured_errors.h"
#include "support/file_size_limit.h"

namespace {

const std::string begins = "Creating BOOK!\n";
const std::string all_went_well = "Creating BOOK!\nDone\n";
const std::string one_game = "[Result \"1/2-1/2\"]\n1. e4 e5 2. Nf3 Nc6 1/2-1/2\n";

/// A PGN text that makes more of each book than buffers hold back.
std::string many_games(int games) {
    std::string text;
    for (int i = 0; i < games; ++i) {
        text += one_game;
    }
    return text;
}

}  // namespace

class BookBuilderFaults : public BookScene {
  protected:
    /// Builds from a PGN text; what standard error got stands in `errors_`.
    std::string build_and_listen(const std::string& pgn) {
        const CapturedErrors errors;
        std::string said = build(pgn);
        errors_ = errors.text();
        return said;
    }

    static void write_old_books() {
        write_file("cwhite", "old white\n");
        write_file("cblack", "older black");
    }

    static void expect_old_books() {
        EXPECT_EQ(read_file("cwhite"), "old white\n");
        EXPECT_EQ(read_file("cblack"), "older black");
    }

    static void expect_no_books() {
        EXPECT_FALSE(std::filesystem::exists("cwhite"));
        EXPECT_FALSE(std::filesystem::exists("cblack"));
    }

    std::string errors_;
};

TEST_F(BookBuilderFaults, MissingPgnIsNamedAndNothingIsWritten) {
    EXPECT_EQ(build_from("no such file.pgn"), begins + "Can't find PGN: no such file.pgn\n");
    EXPECT_FALSE(std::filesystem::exists("corvane.tmp"));
    expect_no_books();
}

TEST_F(BookBuilderFaults, MissingPgnLeavesBooksAndTemporaryFile) {
    write_old_books();
    write_file("corvane.tmp", "w 1. e4");
    EXPECT_EQ(build_from(""), begins + "Can't find PGN: \n");
    expect_old_books();
    EXPECT_EQ(read_file("corvane.tmp"), "w 1. e4");
}

TEST_F(BookBuilderFaults, TemporaryFileThatCannotBeWrittenIsNotNamed) {
    write_old_books();
    std::filesystem::create_directory("corvane.tmp");
    EXPECT_EQ(build_and_listen(one_game), begins + "Can't write TMP: \n");
    EXPECT_EQ(errors_, "");
    expect_old_books();
}

TEST_F(BookBuilderFaults, FullTemporaryFileIsSaidOnStandardError) {
    write_old_books();
    std::filesystem::create_symlink("/dev/full", "corvane.tmp");
    for (const int games : {1, 1000}) {
        EXPECT_EQ(build_and_listen(many_games(games)), begins);
        EXPECT_EQ(errors_, "Cannot write to corvane.tmp; the opening book is left as it was.\n");
        expect_old_books();
    }
}

TEST_F(BookBuilderFaults, TemporaryFileThatOutgrowsTheDiskLeavesNoBooks) {
    for (const int games : {1, 1000}) {
        const std::string pgn = many_games(games);
        write_file("games.pgn", pgn);
        const CapturedErrors errors;
        std::string said;
        {
            const FileSizeLimit limit(20);
            said = build_from("games.pgn");
        }
        EXPECT_EQ(said, begins);
        EXPECT_EQ(errors.text(),
                  "Cannot write to corvane.tmp; the opening book is left as it was.\n");
        expect_no_books();
    }
}

TEST_F(BookBuilderFaults, FolderNamedAsWhitesBookLeavesBlacksAsItWas) {
    std::filesystem::create_directory("cwhite");
    write_file("cblack", "older black");
    for (const int games : {1, 5000}) {
        EXPECT_EQ(build_and_listen(many_games(games)), begins);
        EXPECT_EQ(errors_, "Cannot write to cwhite; the opening book is left as it was.\n");
        EXPECT_EQ(read_file("cblack"), "older black");
    }
}

TEST_F(BookBuilderFaults, FolderNamedAsBlacksBookLeavesWhitesAsItWas) {
    write_file("cwhite", "old white\n");
    std::filesystem::create_directory("cblack");
    for (const int games : {1, 5000}) {
        EXPECT_EQ(build_and_listen(many_games(games)), begins);
        EXPECT_EQ(errors_, "Cannot write to cblack; the opening book is left as it was.\n");
        EXPECT_EQ(read_file("cwhite"), "old white\n");
    }
}

TEST_F(BookBuilderFaults, FullDeviceAsWhitesBookLeavesBlacksAsItWas) {
    std::filesystem::create_symlink("/dev/full", "cwhite");
    write_file("cblack", "older black");
    for (const int games : {1, 5000}) {
        EXPECT_EQ(build_and_listen(many_games(games)), begins);
        EXPECT_EQ(errors_, "Cannot write to cwhite; the opening book is left as it was.\n");
        EXPECT_EQ(read_file("cblack"), "older black");
    }
    EXPECT_TRUE(std::filesystem::is_symlink("cwhite"));
}

TEST_F(BookBuilderFaults, FullDeviceAsBlacksBookLeavesWhitesAsItWas) {
    write_file("cwhite", "old white\n");
    std::filesystem::create_symlink("/dev/full", "cblack");
    for (const int games : {1, 5000}) {
        EXPECT_EQ(build_and_listen(many_games(games)), begins);
        EXPECT_EQ(errors_, "Cannot write to cblack; the opening book is left as it was.\n");
        EXPECT_EQ(read_file("cwhite"), "old white\n");
    }
}

TEST_F(BookBuilderFaults, NewBookIsTakenAwayAgainWhereTheOtherFails) {
    std::filesystem::create_symlink("/dev/full", "cblack");
    EXPECT_EQ(build_and_listen(many_games(5000)), begins);
    EXPECT_FALSE(std::filesystem::exists("cwhite"));
}

TEST_F(BookBuilderFaults, BookThatOutgrowsTheDiskIsAsBefore) {
    // A game takes 38 bytes of the temporary file and 17 of a book.
    const std::string old_lines(50000, 'o');
    for (const int games : {60, 1500}) {
        write_file("cwhite", old_lines);
        write_file("cblack", "older black");
        write_file("games.pgn", many_games(games));
        const CapturedErrors errors;
        std::string said;
        {
            const FileSizeLimit limit(games == 60 ? 50900 : 60000);
            said = build_from("games.pgn");
        }
        EXPECT_EQ(said, begins) << games;
        EXPECT_EQ(errors.text(), "Cannot write to cwhite; the opening book is left as it was.\n");
        EXPECT_TRUE(read_file("cwhite") == old_lines) << read_file("cwhite").size();
        EXPECT_EQ(read_file("cblack"), "older black");
    }
}

TEST_F(BookBuilderFaults, BuildingWorksAgainAfterAFault) {
    std::filesystem::create_directory("cblack");
    build_and_listen(one_game);
    std::filesystem::remove("cblack");
    EXPECT_EQ(build_and_listen(one_game), all_went_well);
    EXPECT_EQ(errors_, "");
    EXPECT_EQ(read_file("cblack"), "\ne2e4e7e5g1f3b8c6\n");
}

TEST_F(BookBuilderFaults, NothingIsSaidOnStandardErrorWhereAllGoesWell) {
    fake_ticks_per_reading = 300;  // every look at the clock would show a progress line
    EXPECT_EQ(build_and_listen(many_games(100)), all_went_well);
    EXPECT_EQ(errors_, "");
}

TEST_F(BookBuilderFaults, EmptyPgnAddsALineEnd) {
    write_old_books();
    EXPECT_EQ(build_and_listen(""), all_went_well);
    EXPECT_EQ(read_file("corvane.tmp"), "");
    EXPECT_EQ(read_file("cwhite"), "old white\n\n");
    EXPECT_EQ(read_file("cblack"), "older black\n");
}

TEST_F(BookBuilderFaults, FolderIsAnEmptyPgn) {
    std::filesystem::create_directory("games");
    EXPECT_EQ(build_from("games"), all_went_well);
    EXPECT_EQ(read_file("corvane.tmp"), "");
    EXPECT_EQ(read_file("cwhite"), "\n");
    EXPECT_EQ(read_file("cblack"), "\n");
}

TEST_F(BookBuilderFaults, TagThatIsNeverClosedIsAnEmptyPgn) {
    EXPECT_EQ(build("[Result \"1-0\"\n" + many_games(1).substr(1, 15)), all_went_well);
    EXPECT_EQ(read_file("cwhite"), "\n");
}

TEST_F(BookBuilderFaults, BytesOfAnyKindAreNoGames) {
    std::string bytes;
    std::uint32_t state = 4971;
    for (int i = 0; i < 300000; ++i) {
        state = state * 1664525 + 1013904223;
        bytes.push_back(static_cast<char>((state >> 24) % 255));
    }
    EXPECT_EQ(build_and_listen(bytes), all_went_well);
    EXPECT_EQ(errors_, "");
    EXPECT_TRUE(read_file("cwhite").ends_with('\n'));
}

TEST_F(BookBuilderFaults, EndlessWordsArePassedOver) {
    const std::string word(3000000, 'e');
    EXPECT_EQ(line_of("1. e4 " + word + " e5 " + word + ". Nf3 " + word), "e2e4e7e5g1f3");
}

TEST_F(BookBuilderFaults, WordWhoseBeginningIsAMoveIsNoMove) {
    // 300 characters are kept of a word: neither they nor the rest may count as words.
    const std::string word(300, '-');
    EXPECT_EQ(line_of("1. e4 " + word + "e5 e6 " + word + "1. d4"), "e2e4e7e6d2d4");
}

TEST_F(BookBuilderFaults, GameGoesOnAsIfNoBookHadBeenBuilt) {
    const CapturedOutput output;
    Table table;
    Table without;
    std::int32_t stored[2] = {};
    for (Table* const one : {&table, &without}) {
        reset_all(1);
        set_start_position(*one);
        write_file("games.pgn", one_game);
        const std::string build_or_not = one == &table ? "createbook games.pgn " : "";
        std::istringstream words("force d2d4 g8f6 c2c4 " + build_or_not + "e7e5 c4c5 b7b5");
        run_command_loop(words, *one);
        EXPECT_EQ(engine.game_line, "d2d4g8f6c2c4e7e5c4c5b7b5");
        EXPECT_EQ(engine.game_plies, 6);
        stored[one == &table ? 1 : 0] = game_top;
        EXPECT_EQ(engine.fifty_count, 0);
    }
    EXPECT_TRUE(table == without);
    EXPECT_EQ(stored[0], stored[1]);
    EXPECT_EQ(read_file("cwhite"), "\ne2e4e7e5g1f3b8c6\n");
}

TEST_F(BookBuilderFaults, BoardAndRecordAreNotTouched) {
    const CapturedOutput output;
    Table table;
    set_start_position(table);
    std::istringstream words("force d2d4 g8f6");
    run_command_loop(words, table);
    const Table before = table;
    const std::int32_t stored = game_top;
    build(one_game);
    EXPECT_TRUE(table == before);
    EXPECT_EQ(game_top, stored);
    EXPECT_EQ(engine.game_line, "d2d4g8f6");
    EXPECT_EQ(engine.game_plies, 2);
    EXPECT_FALSE(engine.book_out);
}
