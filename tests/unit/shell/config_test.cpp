// SPDX-License-Identifier: MIT
// The configuration file, each time in a folder of its own.
#include "shell/config.h"

#include <gtest/gtest.h>

#include "search/hash_table.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"

namespace {

const std::string ini_file = "corvane.ini";
const std::string log_file = "corvane.log";
const std::string default_file = "hash: 16\nresign: off\n      \n      \n";
const std::string complaint = "Can not open Corvane.ini file!\n";

}  // namespace

class Config : public testing::Test {
  protected:
    Config() {
        reset_all();
        reset_log();
        hash_mb = 5;  // the default is set by the reading, not by the variable
    }
    ~Config() override { reset_all(); }

    /// Reads a file with this content; gives what was printed.
    static std::string read(const std::string& content) {
        write_file(ini_file, content);
        return read_as_it_is();
    }

    static std::string read_as_it_is() {
        const CapturedOutput output;
        read_config();
        return output.text();
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(Config, MissingFileIsReportedAndWritten) {
    EXPECT_EQ(read_as_it_is(), complaint);
    EXPECT_EQ(read_file(ini_file), default_file);
    EXPECT_EQ(read_file(log_file), complaint);
    EXPECT_EQ(hash_mb, 16);
    EXPECT_EQ(engine.TbPath, "");
    EXPECT_FALSE(engine.resign_on);
    EXPECT_TRUE(log_enabled);
    EXPECT_FALSE(add_info_in_log);
    EXPECT_FALSE(new_log_after_start);
    EXPECT_EQ(engine.tb_cache_megabytes, 32);
    EXPECT_FALSE(engine.check_on);
    EXPECT_EQ(engine.strong_level, 0);
}

TEST_F(Config, NextStartFindsTheDefaultFileAndPrintsNothing) {
    EXPECT_EQ(read(""), complaint);
    EXPECT_EQ(read_file(ini_file), default_file);
    EXPECT_EQ(read_as_it_is(), "");
    EXPECT_EQ(read_file(ini_file), default_file);
    EXPECT_EQ(hash_mb, 16);
}

TEST_F(Config, FileWithoutAKeyIsReplaced) {
    EXPECT_EQ(read("hash 64\nlog off : hash\n"), complaint);
    EXPECT_EQ(read_file(ini_file), default_file);
    EXPECT_TRUE(log_enabled);
}

TEST_F(Config, OneKeyIsEnoughAndTheFileStays) {
    EXPECT_EQ(read("hash: 64\n"), "");
    EXPECT_EQ(hash_mb, 64);
    EXPECT_EQ(read_file(ini_file), "hash: 64\n");
    EXPECT_EQ(read_file(log_file), "(none)");
}

TEST_F(Config, EveryKeyIsRead) {
    EXPECT_EQ(read("hash: 3\nTbPath: /tb/nalimov\nresign: on\nTBCacheSize: 8\ncheck: on\n"
                   "strong: 700\nlog: off\nadd_info_in_log: on\nnew_log_after_start: on\n"),
              "");
    EXPECT_EQ(hash_mb, 3);
    EXPECT_EQ(engine.TbPath, "/tb/nalimov");
    EXPECT_TRUE(engine.resign_on);
    EXPECT_EQ(engine.tb_cache_megabytes, 8);
    EXPECT_TRUE(engine.check_on);
    EXPECT_EQ(engine.strong_level, 700);
    EXPECT_FALSE(log_enabled);
    EXPECT_TRUE(add_info_in_log);
    EXPECT_TRUE(new_log_after_start);
}

TEST_F(Config, KeysAndSwitchesIgnoreCase) {
    EXPECT_EQ(read("HASH: 7 tbpath: X tbCACHEsize: 2 Check: ON LOG: Off Add_Info_In_Log: oN"), "");
    EXPECT_EQ(hash_mb, 7);
    EXPECT_EQ(engine.TbPath, "X");
    EXPECT_EQ(engine.tb_cache_megabytes, 2);
    EXPECT_TRUE(engine.check_on);
    EXPECT_FALSE(log_enabled);
    EXPECT_TRUE(add_info_in_log);
}

TEST_F(Config, KeysAreWholeWords) {
    EXPECT_EQ(read("hash:64 xhash: 64 hash:: 64 log :\n"), complaint);
    EXPECT_EQ(hash_mb, 16);
}

TEST_F(Config, WordThatIsNoKeyIsSkippedAlone) {
    EXPECT_EQ(read("my settings: hash: 9 megabytes log: off"), "");
    EXPECT_EQ(hash_mb, 9);
    EXPECT_FALSE(log_enabled);
}

TEST_F(Config, ValueMayStandOnTheNextLineOrBeAKey) {
    read("hash:\n\n 12\nTbPath: resign: on");
    EXPECT_EQ(hash_mb, 12);
    EXPECT_EQ(engine.TbPath, "resign:");
    EXPECT_FALSE(engine.resign_on) << "the word was taken for the path";
}

TEST_F(Config, LastValueOfAKeyCounts) {
    read("hash: 1 resign: on log: off hash: 2 resign: off log: on TbPath: a TbPath: b");
    EXPECT_EQ(hash_mb, 2);
    EXPECT_FALSE(engine.resign_on);
    EXPECT_TRUE(log_enabled);
    EXPECT_EQ(engine.TbPath, "b");
}

TEST_F(Config, CheckStaysOnOnceItIsOn) {
    read("check: on check: off");
    EXPECT_TRUE(engine.check_on);
    read("resign: on resign: off");
    EXPECT_TRUE(engine.check_on) << "the reading does not set it back";
    EXPECT_FALSE(engine.resign_on);
}

TEST_F(Config, CheckIsOffUnlessItIsOn) {
    read("check: yes check: 1 check: onn");
    EXPECT_FALSE(engine.check_on);
}

TEST_F(Config, OtherWordsMeanOff) {
    read("log: yes resign: 1 add_info_in_log: true new_log_after_start: onon");
    EXPECT_FALSE(log_enabled);
    EXPECT_FALSE(engine.resign_on);
    EXPECT_FALSE(add_info_in_log);
    EXPECT_FALSE(new_log_after_start);
}

TEST_F(Config, StrongIsClamped) {
    read("strong: 5000");
    EXPECT_EQ(engine.strong_level, 1000);
    read("strong: -3");
    EXPECT_EQ(engine.strong_level, 0);
    read("strong: 1000");
    EXPECT_EQ(engine.strong_level, 1000);
    read("strong: 999");
    EXPECT_EQ(engine.strong_level, 999);
}

TEST_F(Config, NumberThatIsNoneKeepsTheDefaultAndTheWalkGoesOn) {
    EXPECT_EQ(read("hash: lots TBCacheSize: - strong: x resign: on"), "");
    EXPECT_EQ(hash_mb, 16);
    EXPECT_EQ(engine.tb_cache_megabytes, 32);
    EXPECT_EQ(engine.strong_level, 0);
    EXPECT_TRUE(engine.resign_on);
}

TEST_F(Config, WordThatWasNoNumberMayBeAKey) {
    EXPECT_EQ(read("hash: resign: on"), "");
    EXPECT_EQ(hash_mb, 16);
    EXPECT_TRUE(engine.resign_on);
}

TEST_F(Config, NumberOutOfRangeKeepsTheDefault) {
    EXPECT_EQ(read("hash: 99999999999 strong: -99999999999"), "");
    EXPECT_EQ(hash_mb, 16);
    EXPECT_EQ(engine.strong_level, 0);
}

TEST_F(Config, SwitchWithoutAValueAtTheEndIsOff) {
    for (const char* key : {"log:", "log: \n"}) {
        EXPECT_EQ(read(key), "");
        EXPECT_FALSE(log_enabled);
    }
    read("add_info_in_log: on add_info_in_log:");
    EXPECT_FALSE(add_info_in_log);
    read("new_log_after_start: on new_log_after_start:");
    EXPECT_FALSE(new_log_after_start);
    read("resign: on resign:");
    EXPECT_FALSE(engine.resign_on);
}

TEST_F(Config, ValueMissingAtTheEndKeepsTheSetting) {
    EXPECT_EQ(read("hash:"), "");
    EXPECT_EQ(hash_mb, 16);
    read("TbPath: here TbPath:");
    EXPECT_EQ(engine.TbPath, "here");
    read("check: on check:");
    EXPECT_TRUE(engine.check_on);
}

TEST_F(Config, ReadingSetsItsDefaultsFirst) {
    engine.TbPath = "old";
    engine.resign_on = true;
    log_enabled = false;
    add_info_in_log = true;
    new_log_after_start = true;
    engine.tb_cache_megabytes = 77;
    engine.strong_level = 5;
    read("hash: 1");
    EXPECT_EQ(engine.TbPath, "");
    EXPECT_FALSE(engine.resign_on);
    EXPECT_TRUE(log_enabled);
    EXPECT_FALSE(add_info_in_log);
    EXPECT_FALSE(new_log_after_start);
    EXPECT_EQ(engine.tb_cache_megabytes, 77) << "no default is set for this one";
    EXPECT_EQ(engine.strong_level, 5);
}

TEST_F(Config, FolderInPlaceOfTheFileIsReportedAndLeftAlone) {
    std::filesystem::create_directory(ini_file);
    EXPECT_EQ(read_as_it_is(), complaint);
    EXPECT_TRUE(std::filesystem::is_directory(ini_file));
    EXPECT_EQ(hash_mb, 16);
}
