#include "velhls/common/VELHLSStopWatch.h"

#include <chrono>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Moment = VELHLSStopWatch::TimePoint;
using std::chrono::milliseconds;
using std::chrono::seconds;

static_assert(std::is_same_v<decltype(VELHLSStopWatch::duration), double>);
static_assert(std::is_same_v<decltype(VELHLSStopWatch::running), bool>);
static_assert(std::is_same_v<Moment::clock, std::chrono::steady_clock>);
static_assert(std::is_same_v<Moment::duration, std::chrono::nanoseconds>);

Moment now() {
    return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now());
}

double secondsBetween(Moment earlier, Moment later) {
    return static_cast<double>((later - earlier).count()) / 1e9;
}

/// A stopwatch that has been running for ten seconds.
VELHLSStopWatch runningForTenSeconds() {
    VELHLSStopWatch stopWatch;
    stopWatch.start();
    stopWatch.startTime = now() - seconds(10);
    return stopWatch;
}

TEST(VELHLSStopWatch, StandsStillAtZeroWhenNew) {
    const Moment before = now();
    VELHLSStopWatch stopWatch;
    EXPECT_EQ(stopWatch.duration, 0.0);
    EXPECT_FALSE(stopWatch.running);
    EXPECT_GE(stopWatch.startTime, before);
    EXPECT_LE(stopWatch.startTime, now());
    EXPECT_EQ(stopWatch.getDuration(), 0.0);
}

TEST(VELHLSStopWatch, RunsFromTheMomentOfStart) {
    VELHLSStopWatch stopWatch;
    stopWatch.startTime -= seconds(10);
    const Moment before = now();
    stopWatch.start();
    EXPECT_TRUE(stopWatch.running);
    EXPECT_GE(stopWatch.startTime, before);
    EXPECT_LE(stopWatch.startTime, now());
    EXPECT_EQ(stopWatch.duration, 0.0);
}

TEST(VELHLSStopWatch, StartKeepsWhatWasAddedUpBefore) {
    VELHLSStopWatch stopWatch;
    stopWatch.duration = 3.5;
    stopWatch.start();
    EXPECT_EQ(stopWatch.duration, 3.5);
}

TEST(VELHLSStopWatch, SecondStartDoesNotRestartTheStretch) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    const Moment firstStart = stopWatch.startTime;
    stopWatch.start();
    EXPECT_TRUE(stopWatch.running);
    EXPECT_EQ(stopWatch.startTime, firstStart);
    EXPECT_EQ(stopWatch.duration, 0.0);
    stopWatch.stop();
    EXPECT_GE(stopWatch.duration, 10.0);
}

TEST(VELHLSStopWatch, StopAddsTheStretchInSeconds) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    const Moment started = stopWatch.startTime;
    const Moment before = now();
    stopWatch.stop();
    const Moment after = now();
    EXPECT_FALSE(stopWatch.running);
    EXPECT_GE(stopWatch.duration, secondsBetween(started, before));
    EXPECT_LE(stopWatch.duration, secondsBetween(started, after));
}

TEST(VELHLSStopWatch, StopMovesStartTimeToNow) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    const Moment started = stopWatch.startTime;
    const Moment before = now();
    stopWatch.stop();
    EXPECT_GE(stopWatch.startTime, before);
    EXPECT_LE(stopWatch.startTime, now());
    EXPECT_EQ(stopWatch.duration, secondsBetween(started, stopWatch.startTime));
}

TEST(VELHLSStopWatch, StopOnAStoppedOneDoesNothing) {
    VELHLSStopWatch stopWatch;
    stopWatch.duration = 2.5;
    stopWatch.startTime -= seconds(10);
    const Moment started = stopWatch.startTime;
    stopWatch.stop();
    EXPECT_FALSE(stopWatch.running);
    EXPECT_EQ(stopWatch.duration, 2.5);
    EXPECT_EQ(stopWatch.startTime, started);
}

TEST(VELHLSStopWatch, AddsUpSeveralStretches) {
    VELHLSStopWatch stopWatch;
    for (int stretch = 1; stretch <= 3; ++stretch) {
        stopWatch.start();
        stopWatch.startTime -= seconds(100);
        stopWatch.stop();
        EXPECT_GE(stopWatch.duration, 100.0 * stretch);
    }
    EXPECT_LT(stopWatch.duration, 400.0);
}

TEST(VELHLSStopWatch, DoesNotCountTheTimeBetweenStretches) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    stopWatch.stop();
    const double afterFirst = stopWatch.duration;
    stopWatch.startTime -= seconds(1000);
    const Moment before = now();
    stopWatch.start();
    stopWatch.stop();
    EXPECT_LE(stopWatch.duration - afterFirst, secondsBetween(before, now()) + 1e-6);
}

TEST(VELHLSStopWatch, ResetOfAStoppedOneOnlyClearsTheDuration) {
    VELHLSStopWatch stopWatch;
    stopWatch.duration = 4.0;
    stopWatch.startTime -= seconds(10);
    const Moment started = stopWatch.startTime;
    stopWatch.reset();
    EXPECT_EQ(stopWatch.duration, 0.0);
    EXPECT_FALSE(stopWatch.running);
    EXPECT_EQ(stopWatch.startTime, started);
}

TEST(VELHLSStopWatch, ResetOfARunningOneKeepsItRunningFromZero) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    stopWatch.duration = 4.0;
    const Moment before = now();
    stopWatch.reset();
    EXPECT_TRUE(stopWatch.running);
    EXPECT_EQ(stopWatch.duration, 0.0);
    EXPECT_GE(stopWatch.startTime, before);
    EXPECT_LE(stopWatch.startTime, now());
    const double sinceReset = stopWatch.getDuration();
    EXPECT_GE(sinceReset, 0.0);
    EXPECT_LE(sinceReset, secondsBetween(before, now()));
    EXPECT_TRUE(stopWatch.running);
}

TEST(VELHLSStopWatch, GetDurationOfARunningOneFoldsTheStretchIn) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    stopWatch.duration = 1.0;
    const Moment started = stopWatch.startTime;
    const Moment before = now();
    const double total = stopWatch.getDuration();
    EXPECT_TRUE(stopWatch.running);
    EXPECT_EQ(total, stopWatch.duration);
    EXPECT_EQ(total, 1.0 + secondsBetween(started, stopWatch.startTime));
    EXPECT_GE(stopWatch.startTime, before);
    EXPECT_LE(stopWatch.startTime, now());
}

TEST(VELHLSStopWatch, GetDurationOfARunningOneGrowsAndCountsNothingTwice) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    const Moment started = stopWatch.startTime;
    double last = 0.0;
    for (int reading = 0; reading < 100; ++reading) {
        const double total = stopWatch.getDuration();
        EXPECT_GE(total, last);
        EXPECT_LE(total, secondsBetween(started, now()) + 1e-6);
        last = total;
    }
}

TEST(VELHLSStopWatch, GetDurationOfAStoppedOneNeverChanges) {
    VELHLSStopWatch stopWatch = runningForTenSeconds();
    stopWatch.stop();
    stopWatch.startTime -= seconds(1000);
    const Moment started = stopWatch.startTime;
    const double total = stopWatch.getDuration();
    EXPECT_GE(total, 10.0);
    EXPECT_LT(total, 1000.0);
    EXPECT_EQ(stopWatch.getDuration(), total);
    EXPECT_EQ(stopWatch.getDuration(), total);
    EXPECT_EQ(stopWatch.startTime, started);
}

TEST(VELHLSStopWatch, CalculateInternalDurationAddsWhetherRunningOrNot) {
    for (const bool running : {false, true}) {
        SCOPED_TRACE(running);
        VELHLSStopWatch stopWatch;
        stopWatch.running = running;
        stopWatch.duration = 1.0;
        stopWatch.startTime -= milliseconds(2500);
        const Moment started = stopWatch.startTime;
        stopWatch.calculateInternalDuration();
        EXPECT_EQ(stopWatch.running, running);
        EXPECT_GE(stopWatch.duration, 3.5);
        EXPECT_EQ(stopWatch.duration, 1.0 + secondsBetween(started, stopWatch.startTime));
        EXPECT_LE(stopWatch.startTime, now());
    }
}

}  // namespace
