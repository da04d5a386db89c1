#include "velhls/common/VELHLSStopWatch.h"

void VELHLSStopWatch::start() {
    if (running) return;
    running = true;
    startTime = now();
}

void VELHLSStopWatch::stop() {
    if (!running) return;
    running = false;
    calculateInternalDuration();
}

void VELHLSStopWatch::reset() {
    duration = 0.0;
    if (running) startTime = now();
}

double VELHLSStopWatch::getDuration() {
    if (running) calculateInternalDuration();
    return duration;
}

void VELHLSStopWatch::calculateInternalDuration() {
    const TimePoint moment = now();
    duration += static_cast<double>((moment - startTime).count()) / 1e9;
    startTime = moment;
}

VELHLSStopWatch::TimePoint VELHLSStopWatch::now() {
    return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now());
}
