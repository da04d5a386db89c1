// Our own side of the comparison with peers; peer.mjs and peer.py do the same. WARM.
//
//   velhls_peer FILE parse|write
//
// prints {"items": segments or variants, "first": seconds of the first parse in this process, "seconds": of a parse or
// write when warm, "with_freeing": the same with the freeing of what was made}.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"

#include "../Warm.h"

namespace {

constexpr double secondsOfRuns = 0.7;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Seconds {
    double run;
    double runAndFreeing;
};

/// The medians of many runs; the first third of them is a warm-up.
template <typename Run>
Seconds warmSeconds(const Run& run) {
    std::vector<double> runs;
    std::vector<double> runsAndFreeing;
    const auto begin = Clock::now();
    while (runs.empty() || secondsSince(begin) < secondsOfRuns) {
        const auto start = Clock::now();
        {
            const auto result = run();
            runs.push_back(secondsSince(start));
        }
        runsAndFreeing.push_back(secondsSince(start));
    }
    const auto warm = static_cast<std::ptrdiff_t>(runs.size() / 3);
    return {medianOf({runs.begin() + warm, runs.end()}),
            medianOf({runsAndFreeing.begin() + warm, runsAndFreeing.end()})};
}

/// `parse` returns a playlist, and `records` are its segments or variants.
template <typename Parse, typename Records>
void measure(const std::string& work, const Parse& parse, Records records) {
    const auto start = Clock::now();
    const auto playlist = parse();
    const double first = secondsSince(start);
    if (playlist == nullptr) throw std::runtime_error("the playlist is rejected");
    const auto write = [&] {
        std::ostringstream output;
        if (playlist->render(output) != 0) throw std::runtime_error("the playlist does not render");
        return output;
    };
    const Seconds seconds = work == "parse" ? warmSeconds(parse) : warmSeconds(write);
    std::cout << "{\"items\": " << ((*playlist).*records).size() << ", \"first\": " << first
              << ", \"seconds\": " << seconds.run << ", \"with_freeing\": " << seconds.runAndFreeing << "}\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: velhls_peer FILE parse|write\n";
        return 2;
    }
    keepFreedMemory();
    std::ifstream file(argv[1], std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    const std::string text = content.str();
    const auto parseMedia = [&] {
        std::istringstream input(text);
        return VELHLSMediaStream::parseMediaStream(input, nullptr);
    };
    const auto parseMaster = [&] {
        std::istringstream input(text);
        return VELHLSParsedManifest::parseManifest(input, nullptr);
    };
    if (text.find("#EXTINF:") != std::string::npos) {
        measure(argv[2], parseMedia, &VELHLSMediaStream::segments);
    } else {
        measure(argv[2], parseMaster, &VELHLSParsedManifest::variants);
    }
    return 0;
}
