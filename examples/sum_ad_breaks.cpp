// Sums up the advertisement breaks of a media playlist, from the segment with an EXT-X-CUE-OUT up to the one with an
// EXT-X-CUE-IN, and compares each with what its cue announces.
//
//     example_sum_ad_breaks ad-breaks.m3u8
//
// The model holds cue markers that stand among a segment's tags. Those that it does not hold are named, with their lines:
// then the sums are not those of the playlist.

#include <cstddef>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

namespace {

/// The text of the file; nothing when it cannot be read.
std::optional<std::string> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) return std::nullopt;
    return text.str();
}

/// The seconds that a cue announces: "30", or "DURATION=30" among other attributes. Nothing when it does not say.
std::optional<double> announced(const std::string& cueOut) {
    const std::string name = "DURATION=";
    const std::size_t at = cueOut.find(name);
    const std::size_t start = at == std::string::npos ? 0 : at + name.size();
    try {
        return std::stod(cueOut.substr(start));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// Prints each break and their sum.
void showBreaks(const VELHLSMediaStream& stream) {
    double sum = 0.0;
    double inBreak = 0.0;
    std::string cue;
    const auto endBreak = [&](const std::string& how) {
        std::cout << inBreak << " s" << how << ", announced: ";
        if (const auto seconds = announced(cue)) {
            std::cout << *seconds << " s\n";
        } else {
            std::cout << "nothing\n";
        }
        sum += inBreak;
        inBreak = 0.0;
        cue.clear();
    };
    for (const auto& segment : stream.segments) {
        if (!cue.empty() && segment->cueIn) endBreak("");
        if (!cue.empty() && !segment->cueOut.empty()) endBreak(" up to the next break");
        if (!segment->cueOut.empty()) cue = segment->cueOut;
        if (!cue.empty()) inBreak += segment->duration;
    }
    if (!cue.empty()) endBreak(" and not ended");
    std::cout << sum << " s in all\n";
}

/// Names the cue markers that the model does not hold. False when there are any.
bool holdsAllCues(const std::string& path, const std::string& text) {
    bool holdsAll = true;
    const VELHLSDiagnostics::Options options = {VELHLSDiagnostics::Media,
                                                {VELHLSDiagnostics::Profile::library}};
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
        const bool isLostCue = finding.ruleId == "cue-in-dropped" || finding.ruleId == "cue-out-ignored";
        if (!isLostCue) continue;
        std::cout << path << ":" << finding.line << ": the model does not hold this cue: " << finding.message
                  << "\n";
        holdsAll = false;
    }
    return holdsAll;
}

int run(const std::string& path) {
    const std::optional<std::string> text = contentOf(path);
    if (!text) {
        std::cerr << path << ": cannot be read\n";
        return 1;
    }
    std::istringstream input(*text);
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    if (stream == nullptr) {
        std::cerr << path << ": no media playlist\n";
        return 1;
    }
    std::cout << std::fixed << std::setprecision(1);
    showBreaks(*stream);
    if (!holdsAllCues(path, *text)) std::cout << "so these sums are not those of the playlist\n";
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: example_sum_ad_breaks MEDIA\n";
        return 2;
    }
    try {
        return run(arguments[1]);
    } catch (const std::exception& error) {
        // A number that is none leaves the parse as an exception.
        std::cerr << arguments[1] << ": " << error.what() << "\n";
        return 1;
    }
}
