// SPDX-License-Identifier: MIT
// Times in words, and the line that is drawn only where it is shown.
#include "tbgen/progress.h"

#include <gtest/gtest.h>
#include <string>

TEST(Progress, TimesInWords) {
    EXPECT_EQ(time_text(0), "0 s");
    EXPECT_EQ(time_text(0.2), "1 s");
    EXPECT_EQ(time_text(11.5), "12 s");
    EXPECT_EQ(time_text(59), "59 s");
    EXPECT_EQ(time_text(60), "1 min");
    EXPECT_EQ(time_text(170), "3 min");
    EXPECT_EQ(time_text(3500), "58 min");
    EXPECT_EQ(time_text(3600), "1 h 0 min");
    EXPECT_EQ(time_text(4800), "1 h 20 min");
    EXPECT_EQ(time_text(7170), "2 h 0 min");
    EXPECT_EQ(time_text(90000), "25 h 0 min");
}

TEST(Progress, NothingIsPrintedUnlessShown) {
    testing::internal::CaptureStderr();
    {
        Progress progress(10, false);
        progress.begin("kqk", 10);
        progress.report("move 1", 0.5);
        progress.end();
        progress.clear();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Progress, LineTellsTableAndPhaseAndShareAndIsTakenAway) {
    testing::internal::CaptureStderr();
    {
        Progress progress(40, true);
        progress.begin("kqk", 10);
        progress.end();
        progress.begin("krk", 20);
        progress.report("move 1", 0.5);
        progress.report("move 2", 0.6);  // too soon to be drawn
    }
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text.find("\r\033[Kkrk  move 1  50 %  "), 0U) << text;
    EXPECT_EQ(text.find("move 2"), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 4), "\r\033[K");
    EXPECT_EQ(text.find("kqk"), std::string::npos);
}

TEST(Progress, NoTimeIsTakenForGrantedBeforeAnyWork) {
    testing::internal::CaptureStderr();
    {
        Progress progress(10, true);
        progress.begin("kqk", 10);
        progress.report("other tables", 0);
        progress.clear();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\r\033[Kkqk  other tables  0 %  \r\033[K");
}
