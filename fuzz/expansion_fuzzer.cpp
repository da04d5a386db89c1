#include <optional>

#include "fuzz/Playlists.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/PlainForms.h"

namespace {

using Defines = std::shared_ptr<VELHLSDefineMap>;

/// What an expansion did, and the variables that it left.
template <typename Expand>
std::string outcomeOfExpansion(const Defines& defines, Expand expand) {
    const std::string outcome = playlist::outcomeOf([&] { return expand(); });
    return outcome + "\nvariables:\n" + (defines == nullptr ? "" : playlist::describe(*defines));
}

std::string described(const std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments) {
    std::string text;
    for (const auto& segment : segments)
        text += playlist::describe(*segment);
    return text;
}

/// The segments of an expanded text, read one by one.
std::string segmentsReadOneByOne(const std::string& text, const Defines& defines) {
    std::istringstream input(text);
    std::vector<std::shared_ptr<VELHLSMediaSegment>> segments;
    std::shared_ptr<VELHLSMediaSegment> previous;
    for (std::string line; std::getline(input, line);) {
        if (input.eof()) break;
        std::shared_ptr<VELHLSMediaPattern> ignored;
        previous =
            VELHLSMediaSegment::parseNextSegment(previous, line, input, ignored, 100, 7, defines, nullptr);
        if (previous == nullptr) return "none";
        segments.push_back(previous);
    }
    return described(segments);
}

}  // namespace

/// The first byte gives the repeat count, the next lines are variables, up to an empty one; the rest is the body.
VELHLS_FUZZ_TARGET(expansion) {
    if (text.empty()) return;
    const std::uint64_t repeatCount = static_cast<unsigned char>(text.front()) % 8;
    fuzz::Parts parts(std::string_view(text).substr(1));
    VELHLSDefineMap variables;
    for (std::string line = parts.next(); !line.empty(); line = parts.next())
        variables[line.substr(0, line.find('='))] =
            line.substr(std::min(line.find('='), line.size() - 1) + 1);
    const VELHLSMediaPattern pattern("p", parts.rest(), repeatCount);
    const bool hasDefines = static_cast<unsigned char>(text.front()) < 240;
    const auto copy = [&] { return hasDefines ? std::make_shared<VELHLSDefineMap>(variables) : nullptr; };

    // Values that double each other come to a mebibyte for each line and pass, so the plain form is not asked then.
    const std::size_t mostPlain = std::size_t{1} << 20;
    const Defines defines = copy();
    std::optional<std::string> expanded;
    const fuzz::Cost cost{0, 6 * VELHLSMediaPattern::maximumExpansionBytes, 0.0, 60.0};
    const std::string outcome = outcomeOfExpansion(defines, [&]() -> std::string {
        const auto stream =
            fuzz::bounded(text.size(), cost, [&] { return pattern.expandMediaPattern(defines); });
        if (stream == nullptr) return "fails";
        expanded = stream->str();
        return *expanded;
    });
    fuzz::expect(outcome.size() <= 2 * VELHLSMediaPattern::maximumExpansionBytes, "the text is bounded");
    if (outcome.size() > mostPlain) return;

    const Defines plainDefines = copy();
    const std::string expected = outcomeOfExpansion(plainDefines, [&] {
        return plain::expanded(pattern.body, repeatCount, plainDefines).value_or("fails");
    });
    fuzz::expectEqual(outcome, expected, "the expansion as its plain form");

    const Defines definesOfSegments = copy();
    const std::string segments = outcomeOfExpansion(definesOfSegments, [&]() -> std::string {
        const auto made = pattern.createMediaSegments(nullptr, 100, 7, definesOfSegments, nullptr);
        return made == nullptr ? "none" : described(*made);
    });
    if (!expanded) return;
    fuzz::expectEqual(segments,
                      outcomeOfExpansion(defines, [&] { return segmentsReadOneByOne(*expanded, defines); }),
                      "the segments as those of the text read one by one");
}
