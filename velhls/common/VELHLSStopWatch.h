#pragma once

#include <chrono>

#include "velhls/common/VELHLSExport.h"

/// Adds up running time on a monotonic clock. The parse entry points time themselves with one.
class VELHLS_API VELHLSStopWatch {
  public:
    /// A moment of the monotonic clock, in nanoseconds.
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

    /// Starts running. On a running stopwatch nothing happens: the stretch that runs is not restarted.
    void start();

    /// Stops running and adds the stretch to `duration`. On a stopped stopwatch nothing happens.
    void stop();

    /// Sets `duration` back to 0. A running stopwatch keeps running, from zero.
    void reset();

    /// The accumulated running time in seconds. On a running stopwatch the stretch so far is first added to
    /// `duration`; on a stopped one every call gives the same value.
    [[nodiscard]] double getDuration();

    /// Adds the time since `startTime` to `duration` and sets `startTime` to now, whether running or not: the
    /// common step of `stop` and `getDuration`.
    void calculateInternalDuration();

    /// Accumulated running time in seconds, up to `startTime`.
    double duration = 0.0;

    /// True between `start` and `stop`.
    bool running = false;

    /// The moment from which the current running stretch is measured.
    TimePoint startTime = now();

  private:
    static TimePoint now();
};
