// SPDX-License-Identifier: MIT
// The share of the clock, to the millisecond, and what becomes of it at the ends of the 32 bits.
#include "search/time_limit.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

/// A control of so many moves with so many made, without fixed time.
ClockState moves_control(std::int32_t clock, std::int32_t all, std::int32_t made,
                         std::int32_t plus) {
    return {clock, all, made, plus, false, 0};
}

ClockState sudden_death(std::int32_t clock, std::int32_t plus) {
    return moves_control(clock, 0, 0, plus);
}

ClockState fixed_time(std::int32_t st_time) {
    return {30000, 40, 0, 0, true, st_time};
}

std::uint32_t limit_of(const ClockState& state) {
    return time_for_move(state).limit_ms;
}

std::uint32_t as_unsigned(std::int32_t value) {
    return static_cast<std::uint32_t>(value);
}

/// A value cut to 32 bits, as a signed word.
std::int64_t cut(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// The same rule in 64 bits, cut after each operation.
std::int64_t limit_in_64_bits(const ClockState& state) {
    const std::int64_t clock = cut(10 * std::int64_t{state.clock_left});
    std::int64_t divisor = 30;
    if (state.all_moves_game != 0) {
        divisor = cut(std::int64_t{state.all_moves_game} + 1 - state.make_moves_game);
        divisor = divisor == 0 ? 1 : divisor;
    }
    const std::int64_t share = cut(clock / divisor);
    const std::int64_t longer = cut(share + cut(1000 * std::int64_t{state.time_plus}));
    const std::int64_t limit = clock > longer ? longer : share;
    return state.st_mode ? cut(10 * std::int64_t{state.st_time}) : limit;
}

}  // namespace

TEST(TimeLimit, FirstMoveOfFortyGetsAFortyFirstPart) {
    const TimeLimit time = time_for_move(moves_control(30000, 40, 0, 0));
    EXPECT_EQ(time.limit_ms, 7317U);  // 300000 / 41
    EXPECT_EQ(time.clock_ms, 300000);
}

TEST(TimeLimit, LastMoveOfTheControlGetsHalfTheClock) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 39, 0)), 150000U);
}

TEST(TimeLimit, OneMoveOfReserveIsAlwaysKept) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 38, 0)), 100000U);
    EXPECT_EQ(limit_of(moves_control(30000, 1, 0, 0)), 150000U);
}

TEST(TimeLimit, SuddenDeathSharesAmongThirtyMovesAndAddsTheIncrement) {
    EXPECT_EQ(limit_of(sudden_death(30000, 12)), 22000U);  // 10000 + 12000
    EXPECT_EQ(limit_of(sudden_death(30000, 0)), 10000U);
}

TEST(TimeLimit, SuddenDeathDoesNotLookAtTheMovesMade) {
    EXPECT_EQ(limit_of(moves_control(30000, 0, 29, 12)), 22000U);
    EXPECT_EQ(limit_of(moves_control(30000, 0, 500, 12)), 22000U);
}

TEST(TimeLimit, IncrementThatWouldEmptyTheClockDoesNotCount) {
    EXPECT_EQ(limit_of(sudden_death(150, 2)), 50U);  // 50 + 2000 is above 1500
}

TEST(TimeLimit, IncrementCountsOnlyIfSomethingIsLeft) {
    EXPECT_EQ(limit_of(sudden_death(3000, 28)), 29000U);  // 1000 + 28000 of 30000
    EXPECT_EQ(limit_of(sudden_death(3000, 29)), 1000U);   // 1000 + 29000 leaves nothing
}

TEST(TimeLimit, IncrementCountsInAControlOfMovesToo) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 0, 5)), 12317U);
    EXPECT_EQ(limit_of(moves_control(410, 40, 0, 5)), 100U);  // 4100 / 41; 5100 is above 4100
}

TEST(TimeLimit, FixedTimeIsTakenAsHundredths) {
    EXPECT_EQ(limit_of(fixed_time(500)), 5000U);
    EXPECT_EQ(limit_of(fixed_time(5)), 50U);
    EXPECT_EQ(limit_of(fixed_time(0)), 0U);
}

TEST(TimeLimit, FixedTimeOverrulesClockAndLevel) {
    EXPECT_EQ(limit_of({1, 40, 45, 300, true, 500}), 5000U);
    EXPECT_EQ(limit_of({-1, 0, 0, -300, true, 500}), 5000U);
}

TEST(TimeLimit, NoClockNoTime) {
    EXPECT_EQ(limit_of(sudden_death(0, 0)), 0U);
    EXPECT_EQ(limit_of(moves_control(0, 40, 0, 0)), 0U);
    EXPECT_EQ(limit_of(sudden_death(0, 10)), 0U);
}

TEST(TimeLimit, DivisionTruncatesTowardsZero) {
    EXPECT_EQ(limit_of(moves_control(4, 40, 0, 0)), 0U);                   // 40 / 41
    EXPECT_EQ(limit_of(sudden_death(-1, 0)), 0U);                          // -10 / 30
    EXPECT_EQ(limit_of(moves_control(-100, 40, 0, 0)), as_unsigned(-24));  // -1000 / 41
}

TEST(TimeLimit, NegativeShareReadWithoutSignIsHuge) {
    EXPECT_EQ(limit_of(moves_control(-100, 40, 0, 0)), 4294967272U);
}

TEST(TimeLimit, DivisorOfZeroCountsAsOne) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 40, 0)), 300000U);  // 1
    EXPECT_EQ(limit_of(moves_control(30000, 40, 41, 0)), 300000U);  // 0
    EXPECT_EQ(limit_of(moves_control(30000, -1, 0, 0)), 300000U);   // 0
}

TEST(TimeLimit, DivisorBelowZeroIsUsedAsItIs) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 42, 0)), as_unsigned(-300000));  // -1
    EXPECT_EQ(limit_of(moves_control(30000, 2, 5, 0)), as_unsigned(-150000));    // -2
    EXPECT_EQ(limit_of(moves_control(600000, -100, 0, 0)), 4294906690U);         // -99
    EXPECT_EQ(limit_of(moves_control(-600000, -100, 0, 0)), 60606U) << "of a clock below 0 too";
}

TEST(TimeLimit, IncrementCanLiftANegativeShareAboveZero) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 100, 7)), 1916U);             // 7000 - 5084
    EXPECT_EQ(limit_of(moves_control(30000, 40, 100, 5)), as_unsigned(-84));  // 5000 - 5084
}

TEST(TimeLimit, LowestClockByMinusOneWraps) {
    const TimeLimit time = time_for_move(moves_control(1 << 30, 40, 42, 0));
    EXPECT_EQ(time.clock_ms, lowest);  // 10737418240 less twice 4294967296
    EXPECT_EQ(time.limit_ms, 2147483648U);
}

TEST(TimeLimit, WholeClockLeavesNoRoomForAnIncrement) {
    EXPECT_EQ(limit_of(moves_control(30000, 40, 41, 2)), 300000U);
}

TEST(TimeLimit, ClockInMillisecondsWraps) {
    EXPECT_EQ(time_for_move(sudden_death(214748364, 0)).clock_ms, 2147483640);
    EXPECT_EQ(limit_of(sudden_death(214748364, 0)), 71582788U);
    EXPECT_EQ(time_for_move(sudden_death(214748365, 0)).clock_ms, -2147483646);
    EXPECT_EQ(limit_of(sudden_death(214748365, 0)), as_unsigned(-71582788));
}

TEST(TimeLimit, ClockOfAnAnalysisGivesTensOfMillions) {
    // 9999999990 less twice 4294967296.
    EXPECT_EQ(time_for_move(moves_control(999999999, 40, 0, 0)).clock_ms, 1410065398);
    EXPECT_EQ(limit_of(moves_control(999999999, 40, 0, 0)), 34391838U);
    EXPECT_EQ(limit_of(sudden_death(999999999, 0)), 47002179U);
}

TEST(TimeLimit, FixedTimeWraps) {
    EXPECT_EQ(limit_of(fixed_time(429496730)), 4U);
    EXPECT_EQ(limit_of(fixed_time(highest)), as_unsigned(-10));
    EXPECT_EQ(limit_of(fixed_time(lowest)), 0U);
    EXPECT_EQ(limit_of(fixed_time(-1)), as_unsigned(-10));
}

TEST(TimeLimit, NegativeIncrementIsTakenOff) {
    EXPECT_EQ(limit_of(sudden_death(30000, -3)), 7000U);
    EXPECT_EQ(limit_of(sudden_death(30000, -12)), as_unsigned(-2000));
}

TEST(TimeLimit, SignedValueForTheLogIsOfSuddenDeathAlone) {
    EXPECT_EQ(time_for_move(sudden_death(30000, 12)).sudden_death_signed, 22000);
    EXPECT_EQ(time_for_move(sudden_death(-300, 0)).sudden_death_signed, -100);
    EXPECT_EQ(time_for_move(moves_control(30000, 40, 0, 12)).sudden_death_signed, 0);
}

TEST(TimeLimit, SignedValueForTheLogIsThatBeforeAFixedTime) {
    const TimeLimit time = time_for_move({30000, 0, 0, 12, true, 500});
    EXPECT_EQ(time.limit_ms, 5000U);
    EXPECT_EQ(time.sudden_death_signed, 22000);
    EXPECT_EQ(time.clock_ms, 300000);
}

TEST(TimeLimit, ExtremesWrapAsIn64BitsCutTo32) {
    const std::vector<std::int32_t> values = {
        lowest, lowest + 1, -214748365, -2147484,  -41,       -1,      0,           1,      39,
        41,     2147483,    214748364,  214748365, 429496730, 1 << 30, highest - 1, highest};
    int cases = 0;
    for (const std::int32_t clock : values) {
        for (const std::int32_t all : values) {
            for (const std::int32_t made : values) {
                for (const std::int32_t plus : values) {
                    for (const bool st_mode : {false, true}) {
                        const ClockState state{clock, all, made, plus, st_mode, plus};
                        ASSERT_EQ(limit_of(state),
                                  as_unsigned(static_cast<std::int32_t>(limit_in_64_bits(state))))
                            << clock << " " << all << " " << made << " " << plus << " " << st_mode;
                        ++cases;
                    }
                }
            }
        }
    }
    EXPECT_EQ(cases, 17 * 17 * 17 * 17 * 2);
}
