// SPDX-License-Identifier: MIT
// Mirrored output and the log.
#include "shell/log.h"

#include <gtest/gtest.h>
#include <limits>

#include "support/captured_output.h"
#include "support/temporary_folder.h"

namespace {

const std::string log_file = "corvane.log";

/// Counts how often it is flushed.
class CountingBuffer : public std::stringbuf {
  public:
    int flushes = 0;

  protected:
    int sync() override {
        ++flushes;
        return 0;
    }
};

}  // namespace

class Log : public testing::Test {
  protected:
    Log() { reset_log(); }
    ~Log() override { reset_log(); }

  private:
    TemporaryFolder folder_;
};

TEST_F(Log, StartsOnWithoutInformation) {
    EXPECT_TRUE(log_enabled);
    EXPECT_FALSE(add_info_in_log);
    EXPECT_FALSE(new_log_after_start);
}

TEST_F(Log, MirrorWritesToBoth) {
    const CapturedOutput output;
    mirror("move ", std::string("e2e4 "), 17, end_line);
    mirror("Hashsize ", std::numeric_limits<std::uint64_t>::max(), " ", -5, end_line);
    EXPECT_EQ(output.text(), "move e2e4 17\nHashsize 18446744073709551615 -5\n");
    EXPECT_EQ(read_file(log_file), output.text());
}

TEST_F(Log, MirrorWithTheLogOffWritesToTheOutputAlone) {
    const CapturedOutput output;
    log_enabled = false;
    add_info_in_log = true;
    mirror("text", end_line);
    log_info("information", end_line);
    EXPECT_EQ(output.text(), "text\n");
    EXPECT_EQ(read_file(log_file), "(none)");
}

TEST_F(Log, InformationNeedsBothSwitches) {
    const CapturedOutput output;
    log_info("1", end_line);
    EXPECT_EQ(read_file(log_file), "(none)");
    add_info_in_log = true;
    log_info("2 ", 3U, end_line);
    EXPECT_EQ(read_file(log_file), "2 3\n");
    EXPECT_EQ(output.text(), "");
}

TEST_F(Log, EveryFragmentIsAppendedAtTheEndOfTheFile) {
    const CapturedOutput output;
    write_file(log_file, "old\n");
    mirror("one");
    EXPECT_EQ(read_file(log_file), "old\none");
    write_file(log_file, "between\n");
    mirror("two");
    EXPECT_EQ(read_file(log_file), "between\ntwo");
    std::filesystem::remove(log_file);
    mirror("three");
    EXPECT_EQ(read_file(log_file), "three");
}

TEST_F(Log, LineEndFlushesTheOutput) {
    CountingBuffer buffer;
    std::ostream stream(&buffer);
    std::ostream* const before = exchange_output(&stream);
    mirror("no line end");
    EXPECT_EQ(buffer.flushes, 0);
    mirror(end_line);
    EXPECT_EQ(buffer.flushes, 1);
    EXPECT_EQ(exchange_output(before), &stream);
}

TEST_F(Log, OpeningMakesAnEmptyLogAndKeepsAnOldOne) {
    open_log();
    EXPECT_EQ(read_file(log_file), "");
    write_file(log_file, "old\n");
    open_log();
    EXPECT_EQ(read_file(log_file), "old\n");
}

TEST_F(Log, OpeningANewLogEmptiesIt) {
    write_file(log_file, "old\n");
    new_log_after_start = true;
    open_log();
    EXPECT_EQ(read_file(log_file), "");
}

TEST_F(Log, OpeningWithTheLogOffTouchesNothing) {
    log_enabled = false;
    new_log_after_start = true;
    open_log();
    EXPECT_EQ(read_file(log_file), "(none)");
    write_file(log_file, "old\n");
    open_log();
    EXPECT_EQ(read_file(log_file), "old\n");
}

TEST_F(Log, LogThatCannotBeWrittenIsDoneWithout) {
    std::filesystem::create_directory(log_file);
    add_info_in_log = true;
    const CapturedOutput output;
    open_log();
    mirror("text", end_line);
    log_info("information", end_line);
    EXPECT_EQ(output.text(), "text\n");
    EXPECT_TRUE(std::filesystem::is_directory(log_file));
}
