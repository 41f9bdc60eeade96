// SPDX-License-Identifier: MIT
// Words and numbers from a stream.
#include "shell/word_reader.h"

#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string> words_of(const std::string& text) {
    std::istringstream stream(text);
    WordReader in(stream);
    std::vector<std::string> words;
    while (const auto word = in.word()) {
        words.push_back(*word);
    }
    return words;
}

using Words = std::vector<std::string>;

/// A number read from the head of a text, and what follows it as words.
struct NumberAndRest {
    std::optional<std::int32_t> number;
    Words rest;
    friend bool operator==(const NumberAndRest&, const NumberAndRest&) = default;
};

NumberAndRest number_of(const std::string& text) {
    std::istringstream stream(text);
    WordReader in(stream);
    NumberAndRest read{in.integer(), {}};
    while (const auto word = in.word()) {
        read.rest.push_back(*word);
    }
    return read;
}

/// A stream buffer that gives some characters and then throws, as a folder opened as a file can.
class FailingBuffer : public std::streambuf {
  protected:
    int_type underflow() override {
        if (given_) {
            throw std::runtime_error("input fails");
        }
        given_ = true;
        setg(text_.data(), text_.data(), text_.data() + text_.size());
        return traits_type::to_int_type(text_[0]);
    }

  private:
    std::string text_ = "one tw";
    bool given_ = false;
};

}  // namespace

TEST(WordReader, SplitsAtWhiteSpaceOfAnyKind) {
    EXPECT_EQ(words_of("  a bb\tccc\nd\r\ne\v\ff \n"), (Words{"a", "bb", "ccc", "d", "e", "f"}));
    EXPECT_EQ(words_of(""), Words{});
    EXPECT_EQ(words_of(" \n\t "), Words{});
    EXPECT_EQ(words_of("last"), Words{"last"});
}

TEST(WordReader, OtherBytesBelongToWords) {
    const std::string odd = std::string("a\0b", 3) + "\x80\xff\x01";
    EXPECT_EQ(words_of(odd + " c"), (Words{odd, "c"}));
}

TEST(WordReader, LongWordsAreSimplyLong) {
    const std::string word(100000, 'x');
    EXPECT_EQ(words_of(word + " y"), (Words{word, "y"}));
}

TEST(WordReader, EndOfInputStaysTheEnd) {
    std::istringstream stream("a");
    WordReader in(stream);
    EXPECT_EQ(in.word(), "a");
    EXPECT_EQ(in.word(), std::nullopt);
    EXPECT_EQ(in.word(), std::nullopt);
    EXPECT_EQ(in.integer(), std::nullopt);
}

TEST(WordReader, InputThatFailsEnds) {
    FailingBuffer buffer;
    std::istream stream(&buffer);
    WordReader in(stream);
    EXPECT_EQ(in.word(), "one");
    EXPECT_EQ(in.word(), "tw");
    EXPECT_EQ(in.word(), std::nullopt);
}

TEST(WordReader, ReadsNumbersWithASign) {
    EXPECT_EQ(number_of("40 x"), (NumberAndRest{40, {"x"}}));
    EXPECT_EQ(number_of("\n -7"), (NumberAndRest{-7, {}}));
    EXPECT_EQ(number_of("+7"), (NumberAndRest{7, {}}));
    EXPECT_EQ(number_of("007"), (NumberAndRest{7, {}}));
    EXPECT_EQ(number_of("-0"), (NumberAndRest{0, {}}));
}

TEST(WordReader, RestOfAWordBehindItsDigitsIsTheNextWord) {
    EXPECT_EQ(number_of("5:00 x"), (NumberAndRest{5, {":00", "x"}}));
    EXPECT_EQ(number_of("0.5"), (NumberAndRest{0, {".5"}}));
    EXPECT_EQ(number_of("0x10"), (NumberAndRest{0, {"x10"}}));
    EXPECT_EQ(number_of("12-3"), (NumberAndRest{12, {"-3"}}));
}

TEST(WordReader, WordThatIsNoNumberStays) {
    for (const char* text : {"abc", "-", "+", "+-5", "--5", "-+5", ".5", "x5", "e2e4"}) {
        EXPECT_EQ(number_of(text), (NumberAndRest{std::nullopt, {text}}));
    }
    EXPECT_EQ(number_of("go 5"), (NumberAndRest{std::nullopt, {"go", "5"}}));
}

TEST(WordReader, NumberThatDoesNotFitStays) {
    EXPECT_EQ(number_of("2147483647").number, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(number_of("-2147483648").number, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(number_of("2147483648"), (NumberAndRest{std::nullopt, {"2147483648"}}));
    EXPECT_EQ(number_of("-2147483649"), (NumberAndRest{std::nullopt, {"-2147483649"}}));
    EXPECT_EQ(number_of("99999999999999999999"),
              (NumberAndRest{std::nullopt, {"99999999999999999999"}}));
}

TEST(WordReader, WordThatStaysIsTriedAgainAsANumber) {
    std::istringstream stream("abc 5");
    WordReader in(stream);
    EXPECT_EQ(in.integer(), std::nullopt);
    EXPECT_EQ(in.integer(), std::nullopt);
    EXPECT_EQ(in.word(), "abc");
    EXPECT_EQ(in.integer(), 5);
}

TEST(WordReader, ComparesWholeWordsWithoutCase) {
    EXPECT_TRUE(equal_caseless("quit", "QuIt"));
    EXPECT_TRUE(equal_caseless("TbPath:", "tbpath:"));
    EXPECT_TRUE(equal_caseless("", ""));
    EXPECT_FALSE(equal_caseless("quit", "qui"));
    EXPECT_FALSE(equal_caseless("qui", "quit"));
    EXPECT_FALSE(equal_caseless("@[`{", "`{@["));
    EXPECT_FALSE(equal_caseless("\xc4", "\xe4")) << "letters are those of ASCII";
}
