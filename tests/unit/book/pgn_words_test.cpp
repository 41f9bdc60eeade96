// SPDX-License-Identifier: MIT
// The first pass of book building: what of a PGN file goes into the temporary file. Texts are small
// and odd on purpose; whole games stand in book_builder_test.
#include "book/pgn_words.h"

#include <gtest/gtest.h>
#include <sstream>

#include "support/fake_clock.h"
#include "support/temporary_folder.h"

namespace {

/// A buffer that takes some bytes and then no more, as a full disk does.
class FullBuffer : public std::streambuf {
  public:
    explicit FullBuffer(int room) : room_(room) {}

    [[nodiscard]] int refused() const { return refused_; }

  protected:
    int_type overflow(int_type byte) override {
        if (room_ == 0) {
            ++refused_;
            return traits_type::eof();
        }
        --room_;
        return byte;
    }

  private:
    int room_;
    int refused_ = 0;
};

/// A buffer that takes everything and fails when it is asked to write it out.
class UnsyncedBuffer : public std::stringbuf {
  protected:
    int sync() override { return -1; }
};

}  // namespace

class PgnWords : public testing::Test {
  protected:
    PgnWords() { reset_fake_clock(); }

    /// What a PGN file with this content becomes.
    static std::string words_of(const std::string& pgn) {
        std::stringbuf words;
        EXPECT_TRUE(write(pgn, words));
        return words.str();
    }

    static bool write(const std::string& pgn, std::streambuf& words) {
        write_file("games.pgn", pgn);
        TextFile file("games.pgn");
        EXPECT_TRUE(file.is_open());
        BuildProgress progress(nullptr, "", 0);
        return write_pgn_words(file, words, progress);
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(PgnWords, EmptyFileGivesNothing) {
    EXPECT_EQ(words_of(""), "");
}

TEST_F(PgnWords, SignsOfCheckAndCaptureAreDropped) {
    EXPECT_EQ(words_of("1. Nxe5+ dxe4 2. R1xe2++"), "1. Ne5 de4 2. R1e2");
}

TEST_F(PgnWords, SignsAreDroppedInCommentsToo) {
    EXPECT_EQ(words_of("{ extra + 2xRook ; x }"), "{ etra  2Rook ;  }");
}

TEST_F(PgnWords, SignsInTagsBelongToTheTag) {
    EXPECT_EQ(words_of("[\"1x-0\"][\"1+-0\"]"), "");
    EXPECT_EQ(words_of("[x\"1-0\"+]"), "w ");
}

TEST_F(PgnWords, OtherSignsStay) {
    EXPECT_EQ(words_of("1. e8=Q# e4! (1... X) $3 \"a\" ] *"), "1. e8=Q# e4! (1... X) $3 \"a\" ] *");
}

TEST_F(PgnWords, LineEndBecomesOneBlank) {
    EXPECT_EQ(words_of("1. e4\ne5\n\n2. d4\n"), "1. e4 e5  2. d4 ");
}

TEST_F(PgnWords, CarriageReturnBeforeALineFeedIsPartOfTheLineEnd) {
    EXPECT_EQ(words_of("1. e4\r\ne5\r\n\r\n2. d4\r\n"), "1. e4 e5  2. d4 ");
}

TEST_F(PgnWords, LoneCarriageReturnIsCopied) {
    EXPECT_EQ(words_of("1. e4\re5\r"), "1. e4\re5\r");
}

TEST_F(PgnWords, EveryOtherByteIsCopied) {
    std::string bytes;
    for (int byte = 0; byte < 255; ++byte) {
        const auto character = static_cast<char>(byte);
        if (std::string_view("+x\n[").find(character) == std::string_view::npos) {
            bytes.push_back(character);
        }
    }
    EXPECT_EQ(bytes.size(), 251U);
    EXPECT_EQ(words_of(bytes), bytes);
}

TEST_F(PgnWords, Byte255EndsTheFile) {
    EXPECT_EQ(words_of("1. e4\xff e5 [\"1-0\"]\n"), "1. e4");
    EXPECT_EQ(words_of("\xff[\"1-0\"]"), "");
}

TEST_F(PgnWords, Byte255EndsTheFileInATagToo) {
    EXPECT_EQ(words_of("a[Event \"\xff\"] 1. e4"), "a\n");
    EXPECT_EQ(words_of("[Result \"1-0\xff\"]\n1. e4"), "w ");
}

TEST_F(PgnWords, TagsAreNotCopied) {
    EXPECT_EQ(words_of("[Event \"open\"]\n[White \"A, B.\"]\n1. e4"), "  1. e4");
}

TEST_F(PgnWords, ResultTagsBecomeLetters) {
    EXPECT_EQ(words_of("[Result \"1-0\"]"), "w ");
    EXPECT_EQ(words_of("[Result \"0-1\"]"), "b ");
    EXPECT_EQ(words_of("[Result \"1/2-1/2\"]"), "d ");
    EXPECT_EQ(words_of("[Result \"*\"]"), "");
}

TEST_F(PgnWords, NameOfATagIsNotLookedAt) {
    EXPECT_EQ(words_of("[Round \"1-0\"]"), "w ");
    EXPECT_EQ(words_of("[\"0-1\"]"), "b ");
    EXPECT_EQ(words_of("[1/2-1/2]"), "d ");
    EXPECT_EQ(words_of("[Result 1-0]"), "");
}

TEST_F(PgnWords, EveryQuoteBeginsTheTextAnew) {
    EXPECT_EQ(words_of("[Result \"\"1-0\"\"]"), "w ");
    EXPECT_EQ(words_of("[\"1-0\"0-1\"1/2-1/2\"]"), "w b d ");
    EXPECT_EQ(words_of("[\"1-\"0\"]"), "");
}

TEST_F(PgnWords, ValueThatBeginsWithAResultCountsAtOnce) {
    EXPECT_EQ(words_of("[Result \"1-0 forfeit\"]"), "w ");
    EXPECT_EQ(words_of("[Site \"0-1-0\"]"), "b ");
    EXPECT_EQ(words_of("[Site \"1/2-1/2 agreed\"]"), "d ");
}

TEST_F(PgnWords, ResultInsideAValueDoesNotCount) {
    EXPECT_EQ(words_of("[Result \" 1-0\"]"), "");
    EXPECT_EQ(words_of("[Site \"11-0\"][Site \"a0-1\"][Site \"1-\"][Site \"1/2\"]"), "");
    EXPECT_EQ(words_of("[Site \"1/2-1/3\"][Site \"1-1\"][Site \"0-0\"]"), "");
}

TEST_F(PgnWords, LineEndInATagIsPartOfItsText) {
    EXPECT_EQ(words_of("[Result \"1-\n0\"]"), "");
    EXPECT_EQ(words_of("[Result\n\"1-0\"\n]"), "w ");
    EXPECT_EQ(words_of("[Result \"1-\r\n0\"]"), "");
}

TEST_F(PgnWords, BracketInATagIsPartOfItsText) {
    EXPECT_EQ(words_of("1[ [ \"1-0\" [ ]2"), "1\nw 2");
}

TEST_F(PgnWords, TagEndsAtItsFirstBracketEvenBetweenQuotes) {
    EXPECT_EQ(words_of("[Event \"a]b\"]"), "b\"]");
}

TEST_F(PgnWords, TagBehindMovesBeginsANewLine) {
    EXPECT_EQ(words_of("1. e4 [Event \"\"] 1. d4"), "1. e4 \n 1. d4");
}

TEST_F(PgnWords, LineEndComesBeforeTheLetterOfTheTag) {
    EXPECT_EQ(words_of("1. e4\n[Result \"1-0\"]\n1. d4"), "1. e4 \nw  1. d4");
}

TEST_F(PgnWords, NextTagsOfAGameBeginNoLine) {
    EXPECT_EQ(words_of("e4[A \"\"][B \"\"]\n[C \"\"]d4"), "e4\n d4");
}

TEST_F(PgnWords, LineEndsAndDroppedSignsAreNoMoves) {
    EXPECT_EQ(words_of("\n\r\n[A]"), "  ");
    EXPECT_EQ(words_of("+x+x[A]"), "");
    EXPECT_EQ(words_of("e4[A]\n+x\n[B]"), "e4\n  ");
}

TEST_F(PgnWords, LineEndsAndDroppedSignsDoNotTakeBackWhatWasSeen) {
    EXPECT_EQ(words_of("e4\n+x\n[A]"), "e4  \n");
}

TEST_F(PgnWords, BlankCountsAsAMove) {
    EXPECT_EQ(words_of(" [A]"), " \n");
    EXPECT_EQ(words_of("[A] [B]"), " \n");
}

TEST_F(PgnWords, LetterOfATagIsNotAMove) {
    EXPECT_EQ(words_of("[\"1-0\"][\"0-1\"]"), "w b ");
}

TEST_F(PgnWords, BracketInACommentIsATag) {
    EXPECT_EQ(words_of("1. e4 {see [%clk 1:00]} e5"), "1. e4 {see \n} e5");
    EXPECT_EQ(words_of("1. e4 {[0-1]} e5"), "1. e4 {\nb } e5");
}

TEST_F(PgnWords, LastGameGetsNoLineEnd) {
    EXPECT_EQ(words_of("[Result \"1-0\"]\n1. e4\n\n[Result \"0-1\"]\n1. d4"),
              "w  1. e4  \nb  1. d4");
}

TEST_F(PgnWords, TagThatIsNeverClosedTakesTheRest) {
    EXPECT_EQ(words_of("1. e4 [Event \"a\"\n1. d4 \"1-0\"\n" + std::string(100000, 'e')),
              "1. e4 \nw ");
}

TEST_F(PgnWords, LongTextsPassTheBuffersWhole) {
    const std::string moves(200001, 'e');
    EXPECT_TRUE(words_of("[" + moves + "\"0-1\"]" + moves) == "b " + moves);
}

TEST_F(PgnWords, WordsThatCannotBeWrittenAreAFault) {
    for (const int room : {0, 1, 6}) {
        FullBuffer full(room);
        EXPECT_FALSE(write("1. e4 e5", full)) << room;
        EXPECT_EQ(full.refused(), 1) << "it goes on after a fault";
    }
    FullBuffer enough(8);
    EXPECT_TRUE(write("1. e4 e5", enough));
}

TEST_F(PgnWords, LettersThatCannotBeWrittenAreAFaultToo) {
    FullBuffer full(0);
    EXPECT_FALSE(write("[\"1-0\"]", full));
    FullBuffer no_blank(1);
    EXPECT_FALSE(write("[\"1-0\"]", no_blank));
    FullBuffer no_line(1);
    EXPECT_FALSE(write("a[]", no_line));
}

TEST_F(PgnWords, WordsThatAreHeldBackForGoodAreAFault) {
    UnsyncedBuffer held;
    EXPECT_FALSE(write("1. e4 e5", held));
}
