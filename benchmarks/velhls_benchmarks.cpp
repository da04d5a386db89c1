// Times each work beside its floor, pair by pair in one process, so that their ratio means something on a noisy
// machine. WARM: the allocator keeps what it was given back.
#include <algorithm>
#include <chrono>
#include <thread>

#include <benchmark/benchmark.h>

#include "Warm.h"
#include "Works.h"

namespace {

constexpr int pairs = 31;

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Seconds of one run.
double timed(Work& work, std::size_t runs) {
    double seconds = 0.0;
    work.prepare();
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t run = 0; run < runs; ++run)
        work.run();
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    work.drop();
    return seconds / static_cast<double>(runs);
}

void besideItsFloor(benchmark::State& state, const std::string& name) {
    const Measurement measurement = makeMeasurement(name);
    timed(*measurement.work, measurement.runsPerSample);
    timed(*measurement.floor, measurement.runsPerSample);
    std::vector<double> ratios;
    std::vector<double> workSeconds;
    for ([[maybe_unused]] auto iteration : state) {
        const double floor = timed(*measurement.floor, measurement.runsPerSample);
        const double work = timed(*measurement.work, measurement.runsPerSample);
        ratios.push_back(work / floor);
        workSeconds.push_back(work);
        state.SetIterationTime(work);
    }
    const double seconds = medianOf(workSeconds);
    state.counters["items"] = static_cast<double>(measurement.items);
    state.counters["ns_per_item"] = seconds * 1e9 / static_cast<double>(measurement.items);
    state.counters["MB_per_second"] = static_cast<double>(measurement.bytes) / seconds / 1e6;
    state.counters["ratio"] = medianOf(ratios);
    state.SetLabel(measurement.floorName);
}

/// The time of one segment among a million over that of one among a hundred thousand.
void growth(benchmark::State& state) {
    const Measurement many = makeMeasurement("parse/vod/100000");
    const Measurement million = makeMeasurement("parse/vod/1000000");
    std::vector<double> ratios;
    for ([[maybe_unused]] auto iteration : state) {
        const double secondsOfMillion = timed(*million.work, 1);
        ratios.push_back(secondsOfMillion / static_cast<double>(million.items) /
                         (timed(*many.work, 1) / static_cast<double>(many.items)));
        state.SetIterationTime(secondsOfMillion);
    }
    state.counters["ratio"] = medianOf(ratios);
    state.SetLabel("a tenth of it");
}

/// How much faster two threads read a playlist each than one thread reads both.
void twoThreads(benchmark::State& state) {
    const Measurement first = makeMeasurement("parse/vod/100000");
    const Measurement second = makeMeasurement("parse/vod/100000");
    std::vector<double> speedUps;
    for ([[maybe_unused]] auto iteration : state) {
        const double inTurn = timed(*first.work, 1) + timed(*second.work, 1);
        first.work->prepare();
        second.work->prepare();
        const auto start = std::chrono::steady_clock::now();
        std::thread other([&] { second.work->run(); });
        first.work->run();
        other.join();
        const double together =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        first.work->drop();
        second.work->drop();
        speedUps.push_back(inTurn / together);
        state.SetIterationTime(together);
    }
    state.counters["ratio"] = medianOf(speedUps);
    state.SetLabel("one thread");
}

}  // namespace

int main(int argc, char** argv) {
    keepFreedMemory();

    for (const std::string& name : measurementNames()) {
        benchmark::RegisterBenchmark(name.c_str(), besideItsFloor, name)->UseManualTime()->Iterations(pairs);
    }
    benchmark::RegisterBenchmark("parse/growth", growth)->UseManualTime()->Iterations(pairs);
    benchmark::RegisterBenchmark("parse/two-threads", twoThreads)->UseManualTime()->Iterations(pairs);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
