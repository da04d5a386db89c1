// Sums up the advertisement breaks of a media playlist, from each EXT-X-CUE-OUT up to the next EXT-X-CUE-IN, wherever they
// stand, and compares each with what its cue announces.
//
//     example_sum_ad_breaks ad-breaks.m3u8
//
// It reads the text. The model holds only the cue markers that stand among a segment's other tags: those that it does not
// hold are named, with their lines.

#include <cstddef>
#include <exception>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>

#include "velhls/VELHLSCheck.h"

#include "examples/RunOnFiles.h"

namespace {

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

/// The breaks of a playlist, told one after the other.
class Breaks {
  public:
    /// Looks at a line: a cue marker holds from the next URI on.
    void take(const VELHLSLine& line) {
        if (line.name == "EXT-X-CUE-IN" && cue_) end("");
        if (line.name != "EXT-X-CUE-OUT") return;
        if (cue_) end(" up to the next break");
        cue_ = line.value;
    }

    void addSegment(double duration) {
        if (cue_) seconds_ += duration;
    }

    void endPlaylist() {
        if (cue_) end(" and not ended");
        std::cout << sum_ << " s in all\n";
    }

  private:
    void end(const char* how) {
        std::cout << seconds_ << " s" << how << ", announced: ";
        if (const auto seconds = announced(*cue_)) {
            std::cout << *seconds << " s\n";
        } else {
            std::cout << "nothing\n";
        }
        sum_ += seconds_;
        seconds_ = 0.0;
        cue_.reset();
    }

    /// What follows the colon of the break's EXT-X-CUE-OUT; nothing outside of a break.
    std::optional<std::string> cue_;
    double seconds_ = 0.0;
    double sum_ = 0.0;
};

/// Prints each break and their sum.
void showBreaks(const VELHLSDocument& document) {
    const VELHLSStructure structure(document);
    Breaks breaks;
    std::size_t number = 1;
    for (const VELHLSStructure::Segment segment : structure.segments()) {
        for (; number <= segment.lastLine; ++number)
            breaks.take(document.line(number));
        breaks.addSegment(segment.duration);
    }
    breaks.endPlaylist();
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
    const VELHLSDocument document(example::contentOf(path));
    if (document.kind() != VELHLSDocument::Media) {
        std::cerr << path << ": no media playlist\n";
        return 1;
    }
    std::cout << std::fixed << std::setprecision(1);
    showBreaks(document);
    if (!holdsAllCues(path, document.text()))
        std::cout << "so a sum over the model's segments would be another\n";
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 2, "example_sum_ad_breaks MEDIA",
                          [&] { return run(arguments[1]); });
}
