// A program of its own: it replaces the wall clock of the whole process by one that it sets.

#include <cstdint>
#include <sys/time.h>

#include <gtest/gtest.h>

#include "velhls/common/VELHLSUtility.h"

namespace {

struct WallClock {
    int result = 0;
    timeval time = {};
};

WallClock wallClock;

}  // namespace

extern "C" int gettimeofday(timeval* time, void* /*timezone*/) noexcept {
    *time = wallClock.time;
    return wallClock.result;
}

namespace {

std::int64_t timeNowAt(std::int64_t seconds, std::int64_t microseconds) {
    wallClock.result = 0;
    wallClock.time.tv_sec = static_cast<time_t>(seconds);
    wallClock.time.tv_usec = static_cast<suseconds_t>(microseconds);
    return VELHLSUtility::getTimeNow();
}

TEST(VELHLSUtilityClock, TimeNowTruncatesMicrosecondsToMilliseconds) {
    EXPECT_EQ(timeNowAt(0, 0), 0);
    EXPECT_EQ(timeNowAt(0, 999), 0);
    EXPECT_EQ(timeNowAt(0, 1000), 1);
    EXPECT_EQ(timeNowAt(0, 1999), 1);
    EXPECT_EQ(timeNowAt(1, 0), 1000);
    EXPECT_EQ(timeNowAt(1600000000, 123999), 1600000000123);
    EXPECT_EQ(timeNowAt(1600000000, 999999), 1600000000999);
}

TEST(VELHLSUtilityClock, TimeNowHoldsTimesBeyondThirtyTwoBits) {
    EXPECT_EQ(timeNowAt(2147483647, 999999), 2147483647999);
    EXPECT_EQ(timeNowAt(4294967296, 500000), 4294967296500);
}

TEST(VELHLSUtilityClock, TimeNowIsMinusOneWhenTheClockCannotBeRead) {
    ASSERT_EQ(timeNowAt(1600000000, 0), 1600000000000);
    wallClock.result = -1;
    EXPECT_EQ(VELHLSUtility::getTimeNow(), -1);
    wallClock.time = {};
    EXPECT_EQ(VELHLSUtility::getTimeNow(), -1);
}

TEST(VELHLSUtilityClock, TimeNowRecoversWithTheClock) {
    wallClock.result = -1;
    ASSERT_EQ(VELHLSUtility::getTimeNow(), -1);
    EXPECT_EQ(timeNowAt(7, 8000), 7008);
}

}  // namespace
