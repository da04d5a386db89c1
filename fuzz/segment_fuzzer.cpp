#include "fuzz/Playlists.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/MediaRoundTrip.h"
#include "tests/support/PlainPlaylists.h"

namespace {

using Segment = std::shared_ptr<VELHLSMediaSegment>;

/// All that can be seen of reading segments one after the other until one is rejected.
template <typename ParseNext>
std::string outcomeOfSegments(const std::string& text, ParseNext parseNext, std::vector<Segment>& segments) {
    std::istringstream input(text);
    const auto defines = std::make_shared<VELHLSDefineMap>();
    VELHLSParsingStatus status;
    std::shared_ptr<VELHLSMediaPattern> pattern;
    std::string outcome = playlist::outcomeOf([&] {
        Segment previous;
        for (std::string line; std::getline(input, line);) {
            previous = parseNext(previous, line, input, pattern, 7, 3, defines, &status);
            if (previous == nullptr) break;
            segments.push_back(previous);
        }
        return std::string("read");
    });
    for (const Segment& segment : segments)
        outcome += "\n" + playlist::describe(*segment);
    outcome += "\nvariables:\n" + playlist::describe(*defines);
    if (pattern != nullptr) outcome += "pattern " + pattern->name + ": " + pattern->body;
    return outcome + "\nerror " + std::to_string(status.error) + ": " + status.message +
           (status.hasMediaPatterns ? ", patterns" : "");
}

}  // namespace

VELHLS_FUZZ_TARGET(segment) {
    std::vector<Segment> segments;
    std::vector<Segment> plainSegments;
    const std::string outcome = fuzz::bounded(text.size(), {128}, [&] {
        return outcomeOfSegments(text, VELHLSMediaSegment::parseNextSegment, segments);
    });
    fuzz::expectEqual(outcome, outcomeOfSegments(text, plain::nextSegment, plainSegments),
                      "the segments as their plain form");
    VELHLSMediaStream stream;
    for (const Segment& segment : segments) {
        fuzz::expect(segment->validate(), "what parses validates");
        std::string rendered;
        fuzz::expect(segment->render(rendered, true, true) == 0, "what validates renders");
        const Segment next = VELHLSMediaSegment::buildNextSegment(segment, 4.0, nullptr, "next.ts");
        fuzz::expect(next->validate(), "what is built on a valid segment validates");
        stream.segments.push_back(segment);
    }
    if (segments.empty()) return;
    stream.mediaSequence = 7;
    stream.discontinuitySequence = 3;
    fuzz::expectEqual(playlist::differencesAfterRoundTrip(stream), "",
                      "what they render parses to equal ones");
}
